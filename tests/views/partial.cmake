# Partial window: window moves, size changes and source changes around it.
xola_add_test(tst_partialmodel tst_partialmodel.cpp)
