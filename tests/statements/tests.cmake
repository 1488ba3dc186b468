# Tests of the statements subsystem: templates, income statement, balance sheet, profit entries.
vorkam_add_test(tst_cMalli SOURCES statements/tst_cMalli.cpp)
vorkam_add_test(tst_IncomeStatement SOURCES statements/tst_IncomeStatement.cpp)
vorkam_add_test(tst_BalanceSheet SOURCES statements/tst_BalanceSheet.cpp)
vorkam_add_test(tst_ProfitEntries SOURCES statements/tst_ProfitEntries.cpp)
# Every shipped book, and the demo's statements as golden files.
vorkam_add_test(tst_Statements SOURCES statements/tst_Statements.cpp)
add_dependencies(tst_Statements vorkam_data)
# vorkam_report's statements on a copy of the demo association.
vorkam_add_test(tst_StatementReport SOURCES statements/tst_StatementReport.cpp)
add_dependencies(tst_StatementReport vorkam_report vorkam_data)
