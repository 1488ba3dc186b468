#include "printing/CsvWriter.h"

#include "core/Dates.h"
#include "printing/OutputFile.h"
#include "printing/ReportDocument.h"
#include "printing/ReportError.h"

#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <cerrno>

namespace CsvWriter {

QString cell(const QVariant& v, CellFormat format)
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

int write(const ReportDocument& document, const QString& path)
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
            << cell(m.hasMatch() ? m.captured(2) : text, CellFormat::Text);
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
        heads << cell(document.columnCaption(c), CellFormat::Text);
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
                cells << cell(heading[size_t(k)], CellFormat::Text);
        }
        // A summary's texts are split where a label and its number share a cell ("Tositteita: 90"):
        // the number goes into the next cell when it is free. Its amounts become numbers.
        std::vector<QString> values(static_cast<size_t>(columns));
        std::vector<bool> number(static_cast<size_t>(columns), false);
        for (int c = 0; c < columns; ++c) {
            if (row.kind != ReportDocument::RowKind::Summary) {
                values[size_t(c)] = cell(row.cells.at(c), d.columns[c].format);
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
                values[size_t(c)] = cell(text.left(colon), CellFormat::Text);
                values[size_t(c) + 1] = *n;
                number[size_t(c) + 1] = true;
            } else if (const auto m = amount(text)) {
                values[size_t(c)] = *m;
                number[size_t(c)] = true;
            } else {
                values[size_t(c)] = cell(text, CellFormat::Text);
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

} // namespace CsvWriter
