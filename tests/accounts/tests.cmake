# Tests of the accounts subsystem: vorkam_add_test(name SOURCES accounts/tst_X.cpp) or with UI for windows.
vorkam_add_test(tst_cTili SOURCES accounts/tst_cTili.cpp)
vorkam_add_test(tst_ChartOfAccounts SOURCES accounts/tst_ChartOfAccounts.cpp)
vorkam_add_test(tst_frmTilitNew UI SOURCES accounts/tst_frmTilitNew.cpp)
vorkam_add_test(tst_frmTilikartta UI SOURCES accounts/tst_frmTilikartta.cpp)
# The balances and the chart printouts read the report definitions of the program's folder.
vorkam_add_test(tst_cTilienSaldot SOURCES accounts/tst_cTilienSaldot.cpp)
add_dependencies(tst_cTilienSaldot vorkam_reports)
# The account inspection, the balances and daily balances, their windows and the voucher window's links.
vorkam_add_test(tst_cTiliTarkastelut SOURCES accounts/tst_cTiliTarkastelut.cpp)
vorkam_add_test(tst_frmTilitarkastelu UI SOURCES accounts/tst_frmTilitarkastelu.cpp)
add_dependencies(tst_frmTilitarkastelu vorkam_reports)
