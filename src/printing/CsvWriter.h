#pragma once

#include "printing/ReportDefinition.h"

#include <QString>
#include <QVariant>
#include <optional>

class ReportDocument;

// A report as semicolon-separated UTF-8 text with a byte-order mark and decimal commas, as
// Finnish spreadsheet programs read it: data, with one heading row and no title, the rows and
// totals in printing order, an account's number apart from its name, a summary's labels apart
// from their numbers. Written whole or not at all; a failure throws ReportError.
namespace CsvWriter {

// Writes `path`; the number of rows written below the heading.
int write(const ReportDocument& document, const QString& path);

// One value as the text of a cell: money and percentages with a decimal comma, dates as d.M.yyyy,
// quoted when it holds a separator, a quote or a line break.
QString cell(const QVariant& value, CellFormat format);
// The number in a summary's text ("25 978,80", "90") of a money or integer column; none for
// other text.
std::optional<double> summaryNumber(const QString& text, CellFormat format);

} // namespace CsvWriter
