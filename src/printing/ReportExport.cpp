#include "ReportExport.h"

#include "Dates.h"
#include "OutputFile.h"
#include "ReportDocument.h"
#include "ReportError.h"

#include <QFile>
#include <cmath>
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

} // namespace

namespace ReportExport {

void writeCsv(const ReportDocument& document, const QString& path)
{
    const ReportDefinition& d = document.definition();
    QByteArray out("\xEF\xBB\xBF");
    const auto line = [&out](const QStringList& cells) { out += cells.join(u';').toUtf8() + "\r\n"; };
    line({ csvCell(document.title(), CellFormat::Text) });
    QStringList heads;
    for (int c = 0; c < int(d.columns.size()); ++c)
        heads.append(csvCell(document.columnCaption(c), CellFormat::Text));
    line(heads);
    for (const ReportDocument::TableRow& row : document.tableRows()) {
        QStringList cells;
        for (int c = 0; c < int(d.columns.size()); ++c)
            cells.append(csvCell(row.cells.at(c), d.columns[c].format));
        line(cells);
    }
    OutputFile file(path);
    QFile f(file.temporaryPath());
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate) || f.write(out) != out.size() || !f.flush())
        throw ReportError(OutputFile::failure(path, f.errorString()));
    f.close();
    file.commit();
}

void writeXlsx(const ReportDocument& document, const QString& path)
{
    const ReportDefinition& d = document.definition();
    OutputFile file(path);
    lxw_workbook* wb = workbook_new(QFile::encodeName(file.temporaryPath()).constData());
    if (!wb)
        throw ReportError(OutputFile::failure(path, QStringLiteral("taulukkotiedostoa ei voitu luoda.")));
    lxw_worksheet* ws = workbook_add_worksheet(wb, "Raportti");
    lxw_format* bold = workbook_add_format(wb);
    format_set_bold(bold);
    lxw_format* titleFormat = workbook_add_format(wb);
    format_set_bold(titleFormat);
    format_set_font_size(titleFormat, 12);
    lxw_format* formats[2][5] = {};
    for (int b = 0; b < 2; ++b) {
        for (int f = 0; f < 5; ++f) {
            lxw_format* format = workbook_add_format(wb);
            if (b)
                format_set_bold(format);
            switch (CellFormat(f)) {
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
                format_set_num_format(format, "0.0");
                break;
            case CellFormat::Text:
                break;
            }
            formats[b][f] = format;
        }
    }
    lxw_error error = LXW_NO_ERROR;
    const auto check = [&error](lxw_error e) {
        if (error == LXW_NO_ERROR)
            error = e;
    };
    check(worksheet_write_string(ws, 0, 0, document.title().toUtf8().constData(), titleFormat));
    double weights = 0;
    for (const ReportColumn& c : d.columns)
        weights += c.width;
    for (int c = 0; c < int(d.columns.size()); ++c) {
        check(worksheet_set_column(
            ws, lxw_col_t(c), lxw_col_t(c), std::max(8.0, 90.0 * d.columns[c].width / weights), nullptr));
        check(worksheet_write_string(
            ws, 2, lxw_col_t(c), document.columnCaption(int(c)).toUtf8().constData(), bold));
    }
    lxw_row_t r = 3;
    for (const ReportDocument::TableRow& row : document.tableRows()) {
        const bool strong = row.kind != ReportDocument::RowKind::Detail;
        for (int c = 0; c < int(d.columns.size()); ++c) {
            const QVariant& v = row.cells.at(c);
            if (v.isNull())
                continue;
            lxw_format* format = formats[strong ? 1 : 0][int(d.columns[c].format)];
            const lxw_col_t col = lxw_col_t(c);
            if (v.typeId() == QMetaType::QDate) {
                lxw_datetime dt { v.toDate().year(), v.toDate().month(), v.toDate().day(), 0, 0, 0 };
                check(worksheet_write_datetime(ws, r, col, &dt, format));
            } else if (v.typeId() == QMetaType::Double || v.typeId() == QMetaType::LongLong
                || v.typeId() == QMetaType::Int) {
                check(worksheet_write_number(ws, r, col, v.toDouble(), format));
            } else {
                check(worksheet_write_string(
                    ws, r, col, v.toString().toUtf8().constData(), strong ? bold : nullptr));
            }
        }
        ++r;
    }
    check(workbook_close(wb));
    if (error != LXW_NO_ERROR)
        throw ReportError(OutputFile::failure(path, QString::fromUtf8(lxw_strerror(error))));
    file.commit();
}

} // namespace ReportExport
