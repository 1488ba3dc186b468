#include "printing/XlsxWriter.h"

#include "core/Dates.h"
#include "printing/CsvWriter.h"
#include "printing/OutputFile.h"
#include "printing/ReportDocument.h"
#include "printing/ReportError.h"

#include <QFile>
#include <QHash>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <unistd.h>
#include <xlsxwriter.h>

namespace {

// The error stream silenced while it lives: libxlsxwriter writes "[ERROR]" lines of its own.
class QuietErrors final {
public:
    QuietErrors()
    {
        std::fflush(stderr);
        m_saved = ::dup(STDERR_FILENO);
        const int null = ::open("/dev/null", O_WRONLY);
        if (m_saved >= 0 && null >= 0)
            ::dup2(null, STDERR_FILENO);
        if (null >= 0)
            ::close(null);
    }
    ~QuietErrors()
    {
        std::fflush(stderr);
        if (m_saved >= 0) {
            ::dup2(m_saved, STDERR_FILENO);
            ::close(m_saved);
        }
    }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;

private:
    int m_saved = -1;
};

// A worksheet's name from the report's heading: its words before the period ("Päiväkirja",
// "Kirjanpidon tuloslaskelma"), without the characters a sheet name may not hold, at most 31.
QString sheetName(const QString& heading)
{
    QString name = heading;
    for (const QString& cut : { QStringLiteral(" -- "), QStringLiteral(" : ") })
        if (const qsizetype at = name.indexOf(cut); at > 0)
            name.truncate(at);
    for (const QChar c : { u'[', u']', u':', u'*', u'?', u'/', u'\\' })
        name.remove(c);
    name = name.trimmed().left(31).trimmed();
    return name.isEmpty() ? QStringLiteral("Raportti") : name;
}

int firstTextColumn(const ReportDefinition& d)
{
    for (int c = 0; c < int(d.columns.size()); ++c)
        if (d.columns[c].format == CellFormat::Text)
            return c;
    return -1;
}

} // namespace

namespace XlsxWriter {

int write(const ReportDocument& document, const QString& path)
{
    const ReportDefinition& d = document.definition();
    const int columns = int(d.columns.size());
    const std::vector<ReportDocument::TableRow> rows = document.tableRows();
    OutputFile file(path);
    // The library tells its failures on the error stream in English; the user gets them in Finnish.
    const QuietErrors quiet;
    lxw_workbook* wb = workbook_new(QFile::encodeName(file.temporaryPath()).constData());
    if (!wb)
        throw ReportError(OutputFile::failure(
            path, file.writeFailure(QStringLiteral("taulukkotiedostoa ei voitu luoda."))));
    const QStringList& titleLines = document.titleLines();
    lxw_worksheet* ws = workbook_add_worksheet(wb, sheetName(titleLines.value(1)).toUtf8().constData());
    lxw_format* titleFormat = workbook_add_format(wb);
    format_set_bold(titleFormat);
    format_set_font_size(titleFormat, 12);
    lxw_format* headFormat = workbook_add_format(wb);
    format_set_bold(headFormat);
    format_set_bottom(headFormat, LXW_BORDER_THIN);
    // A cell's format by its column's format, boldness and indentation, each made once.
    QHash<int, lxw_format*> formats;
    const auto formatOf = [&](CellFormat f, bool bold, int level) {
        const int key = int(f) * 1000 + (bold ? 100 : 0) + std::min(level, 15);
        if (lxw_format* made = formats.value(key))
            return made;
        lxw_format* format = workbook_add_format(wb);
        if (bold)
            format_set_bold(format);
        if (level > 0)
            format_set_indent(format, uint8_t(std::min(level, 15)));
        switch (f) {
        case CellFormat::Money:
            format_set_num_format(format, "#,##0.00");
            break;
        case CellFormat::Date:
            format_set_num_format(format, "d.m.yyyy");
            break;
        case CellFormat::Integer:
            format_set_num_format(format, "0");
            break;
        case CellFormat::Percentage:
            format_set_num_format(format, "0.0%");
            break;
        case CellFormat::Text:
            break;
        }
        formats.insert(key, format);
        return format;
    };
    lxw_error error = LXW_NO_ERROR;
    const auto check = [&error](lxw_error e) {
        if (error == LXW_NO_ERROR)
            error = e;
    };
    // The association and the report's heading (which names its period) above the table.
    lxw_row_t r = 0;
    for (const QString& line : titleLines.mid(0, 2))
        check(worksheet_write_string(ws, r++, 0, line.toUtf8().constData(), titleFormat));
    ++r;
    const lxw_row_t headRow = r;
    std::vector<qsizetype> widths(size_t(columns), 0);
    for (int c = 0; c < columns; ++c) {
        const QString caption = document.columnCaption(c);
        widths[size_t(c)] = caption.size();
        check(worksheet_write_string(ws, headRow, lxw_col_t(c), caption.toUtf8().constData(), headFormat));
    }
    ++r;
    for (const ReportDocument::TableRow& row : rows) {
        const bool strong = row.bold || row.kind != ReportDocument::RowKind::Detail;
        for (int c = 0; c < columns; ++c) {
            const QVariant& v = row.cells.at(c);
            if (v.isNull())
                continue;
            const CellFormat cf = d.columns[c].format;
            const lxw_col_t col = lxw_col_t(c);
            // Only the caption column is indented: the first text column.
            const int level = cf == CellFormat::Text && c == firstTextColumn(d) ? row.level : 0;
            const QString shown = v.typeId() == QMetaType::QString ? v.toString() : CsvWriter::cell(v, cf);
            widths[size_t(c)] = std::max(widths[size_t(c)], shown.size() + 2 * level);
            if (v.typeId() == QMetaType::QDate) {
                lxw_datetime dt { v.toDate().year(), v.toDate().month(), v.toDate().day(), 0, 0, 0 };
                check(worksheet_write_datetime(ws, r, col, &dt, formatOf(cf, strong, 0)));
            } else if (v.typeId() == QMetaType::Double || v.typeId() == QMetaType::LongLong
                || v.typeId() == QMetaType::Int) {
                // Percentages are stored as parts of one, as a spreadsheet counts them.
                const double n = cf == CellFormat::Percentage ? v.toDouble() / 100.0 : v.toDouble();
                check(worksheet_write_number(ws, r, col, n, formatOf(cf, strong, 0)));
            } else if (const std::optional<double> n = CsvWriter::summaryNumber(v.toString(), cf)) {
                // A summary's amount or count, filled into its text: a number all the same.
                check(worksheet_write_number(ws, r, col, *n, formatOf(cf, strong, 0)));
            } else {
                check(worksheet_write_string(ws, r, col, v.toString().toUtf8().constData(),
                    formatOf(CellFormat::Text, strong, level)));
            }
        }
        ++r;
    }
    for (int c = 0; c < columns; ++c)
        check(worksheet_set_column(ws, lxw_col_t(c), lxw_col_t(c),
            double(std::clamp<qsizetype>(widths[size_t(c)] + 2, 8, 70)), nullptr));
    // The heading row stays in sight while scrolling and is printed on every page.
    worksheet_freeze_panes(ws, headRow + 1, 0);
    check(worksheet_repeat_rows(ws, headRow, headRow));
    if (document.landscape())
        worksheet_set_landscape(ws);
    check(workbook_close(wb));
    if (error != LXW_NO_ERROR)
        throw ReportError(OutputFile::failure(path,
            file.writeFailure(QStringLiteral("taulukkotiedostoa ei voitu kirjoittaa.\n")
                + QString::fromUtf8(lxw_strerror(error)))));
    file.commit();
    return int(rows.size());
}

} // namespace XlsxWriter
