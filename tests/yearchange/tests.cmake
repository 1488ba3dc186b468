# Tests of the fiscal year change: the change without a window, and the window offscreen on a
# copy of the demo association.
vorkam_add_test(tst_FiscalYearChange SOURCES yearchange/tst_FiscalYearChange.cpp)
vorkam_add_test(tst_frmKaudenVaihto UI SOURCES yearchange/tst_frmKaudenVaihto.cpp)
add_dependencies(tst_frmKaudenVaihto vorkam_data)
