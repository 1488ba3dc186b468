# Tests of the report engine, print options and date dialogs.
vorkam_add_test(tst_SelectionFormula SOURCES printing/tst_SelectionFormula.cpp)
vorkam_add_test(tst_ReportLayout SOURCES printing/tst_ReportLayout.cpp)
