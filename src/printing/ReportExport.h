#pragma once

#include <QString>

class ReportDocument;

// The rows and totals of a report for a spreadsheet: a title row, the column heads, then the
// rows in printing order (group headers, detail rows, group and grand totals). Amounts are
// numbers with two decimals and dates are dates. Both files are written whole or not at all;
// a failure throws ReportError.
namespace ReportExport {

// Semicolon-separated UTF-8 text with a byte-order mark and decimal commas, as Finnish
// spreadsheet programs read it.
void writeCsv(const ReportDocument& document, const QString& path);
void writeXlsx(const ReportDocument& document, const QString& path);

} // namespace ReportExport
