#include "printing/ReportExport.h"

#include "core/Dates.h"
#include "printing/OutputFile.h"
#include "printing/ReportDocument.h"
#include "printing/ReportError.h"

#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <unistd.h>
#include <xlsxwriter.h>

namespace {

QString csvCell(const QVariant& v, CellFormat format)
{
    if (v.isNull())
        return {};
    switch (format) {
    case CellFormat::Money:
        if (v.typeId() == QMetaType::Double)
            return QString::number(v.toDouble(), 'f', 2).replace(u'.', u',');
        break;
    case CellFormat::Percentage:
        if (v.typeId() == QMetaType::Double)
            return QString::number(v.toDouble(), 'f', 1).replace(u'.', u',');
        break;
    case CellFormat::Date:
        if (v.typeId() == QMetaType::QDate)
            return Dates::format(v.toDate());
        break;
    case CellFormat::Integer:
    case CellFormat::Text:
        break;
    }
    QString text = v.toString();
    if (text.contains(u';') || text.contains(u'"') || text.contains(u'\n') || text.contains(u'\r'))
        text = u'"' + text.replace(u'"', QStringLiteral("\"\"")) + u'"';
    return text;
}

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

// The number in a summary's text ("25 978,80", "90") of a money or integer column; none for
// other text.
std::optional<double> summaryNumber(const QString& text, CellFormat format)
{
    if (format != CellFormat::Money && format != CellFormat::Integer)
        return std::nullopt;
    QString t = text.trimmed();
    t.remove(u' ').remove(QChar(0xa0));
    static const QRegularExpression number(QStringLiteral("^-?\\d+(,\\d+)?$"));
    if (t.isEmpty() || !number.match(t).hasMatch())
        return std::nullopt;
    bool ok = false;
    const double n = t.replace(u',', u'.').toDouble(&ok);
    return ok ? std::optional<double>(n) : std::nullopt;
}

} // namespace

namespace ReportExport {

int writeCsv(const ReportDocument& document, const QString& path)
{
    const ReportDefinition& d = document.definition();
    const int columns = int(d.columns.size());
    const std::vector<ReportDocument::TableRow> rows = document.tableRows();
    // Data, not a printout: one heading row, then rows with one field a column. A group heading
    // that is one text (the ledger's account) becomes leading columns of each row under it, and
    // an account ("1910 Pankkitili") is split into its number and its name.
    static const QRegularExpression account(QStringLiteral("^(\\d+) (.+)$"));
    // The text of a group heading: its first cell.
    const auto headingText = [](const ReportDocument::TableRow& row) {
        for (const QVariant& v : row.cells)
            if (!v.toString().isEmpty())
                return v.toString();
        return QString();
    };
    const auto isAccount = [](const QVariant& v) { return account.match(v.toString()).hasMatch(); };
    const int levels = int(d.groups.size());
    std::vector<bool> leading(size_t(levels), false), leadingAccount(size_t(levels), true);
    for (int k = 0; k < levels; ++k)
        leading[size_t(k)] = d.groups[k].headerCells.isEmpty() ? !d.groups[k].header.isEmpty()
                                                               : d.groups[k].headerCells.size() == 1;
    std::vector<bool> split(size_t(columns), false);
    for (int c = 0; c < columns; ++c) {
        if (d.columns[c].format != CellFormat::Text)
            continue;
        bool any = false, all = true;
        for (const auto& row : rows)
            if (row.kind == ReportDocument::RowKind::Detail && !row.cells.at(c).toString().isEmpty()) {
                any = true;
                all = all && isAccount(row.cells.at(c));
            }
        split[size_t(c)] = any && all;
    }
    for (const auto& row : rows)
        if (row.kind == ReportDocument::RowKind::GroupHeader && row.group >= 0 && leading[size_t(row.group)])
            leadingAccount[size_t(row.group)]
                = leadingAccount[size_t(row.group)] && isAccount(headingText(row));
    const auto accountCells = [](QStringList& out, const QString& text) {
        const QRegularExpressionMatch m = account.match(text);
        out << (m.hasMatch() ? m.captured(1) : QString())
            << csvCell(m.hasMatch() ? m.captured(2) : text, CellFormat::Text);
    };

    // A report of one account (the inspection) names it on every row.
    const QString subject = document.formula(QStringLiteral("Tili"));
    const bool subjectAccount = account.match(subject).hasMatch();

    QByteArray out("\xEF\xBB\xBF");
    const auto line = [&out](const QStringList& cells) { out += cells.join(u';').toUtf8() + "\r\n"; };
    int written = 0;
    QStringList heads;
    if (subjectAccount)
        heads << QStringLiteral("Tilinumero") << QStringLiteral("Tili");
    for (int k = 0; k < levels; ++k)
        if (leading[size_t(k)])
            heads << (leadingAccount[size_t(k)]
                    ? QStringList { QStringLiteral("Tilinumero"), QStringLiteral("Tili") }
                    : QStringList { QStringLiteral("Ryhmä") });
    for (int c = 0; c < columns; ++c) {
        if (split[size_t(c)])
            heads << QStringLiteral("Tilinumero");
        heads << csvCell(document.columnCaption(c), CellFormat::Text);
    }
    line(heads);
    std::vector<QString> heading(static_cast<size_t>(levels));
    for (const ReportDocument::TableRow& row : rows) {
        if (row.kind == ReportDocument::RowKind::GroupHeader && row.group >= 0
            && leading[size_t(row.group)]) {
            heading[size_t(row.group)] = headingText(row);
            std::fill(heading.begin() + row.group + 1, heading.end(), QString());
            continue;
        }
        if (row.kind == ReportDocument::RowKind::GrandTotal || row.kind == ReportDocument::RowKind::Summary)
            std::fill(heading.begin(), heading.end(), QString());
        QStringList cells;
        if (subjectAccount)
            accountCells(cells, subject);
        for (int k = 0; k < levels; ++k) {
            if (!leading[size_t(k)])
                continue;
            if (leadingAccount[size_t(k)])
                accountCells(cells, heading[size_t(k)]);
            else
                cells << csvCell(heading[size_t(k)], CellFormat::Text);
        }
        // A summary's texts are split where a label and its number share a cell ("Tositteita: 90"):
        // the number goes into the next cell when it is free. Its amounts become numbers.
        std::vector<QString> values(static_cast<size_t>(columns));
        std::vector<bool> number(static_cast<size_t>(columns), false);
        for (int c = 0; c < columns; ++c) {
            if (row.kind != ReportDocument::RowKind::Summary) {
                values[size_t(c)] = csvCell(row.cells.at(c), d.columns[c].format);
                continue;
            }
            const QString text = row.cells.at(c).toString().trimmed();
            if (text.isEmpty() || !values[size_t(c)].isEmpty())
                continue;
            const qsizetype colon = text.lastIndexOf(QStringLiteral(": "));
            const auto amount = [](const QString& t) -> std::optional<QString> {
                const auto n = summaryNumber(t, CellFormat::Money);
                if (!n)
                    return std::nullopt;
                return QString::number(*n, 'f', t.contains(u',') ? 2 : 0).replace(u'.', u',');
            };
            if (const auto n = colon > 0 ? amount(text.mid(colon + 2)) : std::nullopt;
                n && c + 1 < columns && row.cells.at(c + 1).toString().trimmed().isEmpty()) {
                values[size_t(c)] = csvCell(text.left(colon), CellFormat::Text);
                values[size_t(c) + 1] = *n;
                number[size_t(c) + 1] = true;
            } else if (const auto m = amount(text)) {
                values[size_t(c)] = *m;
                number[size_t(c)] = true;
            } else {
                values[size_t(c)] = csvCell(text, CellFormat::Text);
            }
        }
        for (int c = 0; c < columns; ++c) {
            if (split[size_t(c)] && !number[size_t(c)] && row.kind == ReportDocument::RowKind::Detail)
                accountCells(cells, row.cells.at(c).toString());
            else if (split[size_t(c)])
                cells << QString() << values[size_t(c)];
            else
                cells << values[size_t(c)];
        }
        line(cells);
        ++written;
    }
    OutputFile file(path);
    QFile f(file.temporaryPath());
    errno = 0;
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate) || f.write(out) != out.size() || !f.flush()) {
        const int error = errno;
        throw ReportError(OutputFile::failure(path,
            error != 0 ? OutputFile::reason(error)
                       : file.writeFailure(
                           QStringLiteral("CSV-tiedostoa ei voitu kirjoittaa.\n") + f.errorString())));
    }
    f.close();
    file.commit();
    return written;
}

int writeXlsx(const ReportDocument& document, const QString& path)
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
            const QString shown = v.typeId() == QMetaType::QString ? v.toString() : csvCell(v, cf);
            widths[size_t(c)] = std::max(widths[size_t(c)], shown.size() + 2 * level);
            if (v.typeId() == QMetaType::QDate) {
                lxw_datetime dt { v.toDate().year(), v.toDate().month(), v.toDate().day(), 0, 0, 0 };
                check(worksheet_write_datetime(ws, r, col, &dt, formatOf(cf, strong, 0)));
            } else if (v.typeId() == QMetaType::Double || v.typeId() == QMetaType::LongLong
                || v.typeId() == QMetaType::Int) {
                // Percentages are stored as parts of one, as a spreadsheet counts them.
                const double n = cf == CellFormat::Percentage ? v.toDouble() / 100.0 : v.toDouble();
                check(worksheet_write_number(ws, r, col, n, formatOf(cf, strong, 0)));
            } else if (const std::optional<double> n = summaryNumber(v.toString(), cf)) {
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

} // namespace ReportExport
