#pragma once

#include <QString>

class ReportDocument;

// The rows and totals of a report for a spreadsheet, in printing order (group headers, detail
// rows, group and grand totals); the XLSX has the report's title above its column heads. Amounts
// are numbers with two decimals and dates are dates. Both files are written whole or not at all;
// a failure throws ReportError.
namespace ReportExport {

// Semicolon-separated UTF-8 text with a byte-order mark and decimal commas, as Finnish
// spreadsheet programs read it: data, with one heading row and no title, an account's number
// apart from its name, a summary's labels apart from their numbers.
// Each gives the number of rows written below the heading.
int writeCsv(const ReportDocument& document, const QString& path);
int writeXlsx(const ReportDocument& document, const QString& path);

} // namespace ReportExport
