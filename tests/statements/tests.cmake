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
# The template editor's rules, the template checks and the printing of the statements.
vorkam_add_test(tst_TemplateEditor SOURCES statements/tst_TemplateEditor.cpp)
vorkam_add_test(tst_TemplateChecks SOURCES statements/tst_TemplateChecks.cpp)
add_dependencies(tst_TemplateChecks vorkam_data)
vorkam_add_test(tst_StatementPrint SOURCES statements/tst_StatementPrint.cpp)
add_dependencies(tst_StatementPrint vorkam_data vorkam_reports)
# The statement window and the check window, offscreen.
vorkam_add_test(tst_frmNewTulosJaTase UI SOURCES statements/tst_frmNewTulosJaTase.cpp)
