#pragma once

#include <QString>

class ReportDocument;

// A report as an XLSX workbook: the report's title above its column heads, then the rows and
// totals in printing order (group headers, detail rows, group and grand totals). Amounts are
// numbers with two decimals and dates are dates. Written whole or not at all; a failure throws
// ReportError.
namespace XlsxWriter {

// Writes `path`; the number of rows written below the heading.
int write(const ReportDocument& document, const QString& path);

} // namespace XlsxWriter
