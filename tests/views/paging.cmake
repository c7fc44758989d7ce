# Paging view: page arithmetic, page moves and the announced row count.
xola_add_test(tst_pagingmodel tst_pagingmodel.cpp)
