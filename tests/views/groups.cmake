# Group view: grouping by a role and following the source in both modes.
xola_add_test(tst_groupmodel tst_groupmodel.cpp)
