# Filter view: rule evaluation and live following of the source.
xola_add_test(tst_filterrules tst_filterrules.cpp)
xola_add_test(tst_filtermodel tst_filtermodel.cpp)
