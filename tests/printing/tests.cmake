# Tests of the report engine, print options and date dialogs.
vorkam_add_test(tst_SelectionFormula SOURCES printing/tst_SelectionFormula.cpp)
vorkam_add_test(tst_ReportLayout SOURCES printing/tst_ReportLayout.cpp)
vorkam_add_test(tst_PrintDialogs UI SOURCES printing/tst_PrintDialogs.cpp)
# vorkam_report on a copy of the demo association: its reports agree and never write to the books,
# and the files and arguments it must refuse.
vorkam_add_test(tst_vorkam_report SOURCES printing/tst_vorkam_report.cpp)
add_dependencies(tst_vorkam_report vorkam_report vorkam_data vorkam_reports)
# Cells of group headers, footers and summaries, wrapping, and columns hidden in detail rows.
vorkam_add_test(tst_ReportCells SOURCES printing/tst_ReportCells.cpp)
