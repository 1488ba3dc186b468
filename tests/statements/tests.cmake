# Tests of the statements subsystem: templates, income statement, balance sheet, profit entries.
vorkam_add_test(tst_cMalli SOURCES statements/tst_cMalli.cpp)
vorkam_add_test(tst_IncomeStatement SOURCES statements/tst_IncomeStatement.cpp)
vorkam_add_test(tst_BalanceSheet SOURCES statements/tst_BalanceSheet.cpp)
