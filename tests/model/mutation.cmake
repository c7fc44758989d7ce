# Insertion, list loading, removal and cross-thread suites of the core model.
xola_add_test(tst_insertion tst_insertion.cpp)
xola_add_test(tst_listoperations tst_listoperations.cpp)
xola_add_test(tst_removal tst_removal.cpp)
xola_add_test(tst_worker tst_worker.cpp)
