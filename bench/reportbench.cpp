// Times the report engine on the stress association and on a synthetic long report, each
// beside a plain baseline of the same run (see README.md).
#include "Timing.h"
#include "accounts/AccountReports.h"
#include "accounts/cTilienSaldot.h"
#include "core/Paths.h"
#include "printing/PagePainter.h"
#include "printing/PdfWriter.h"
#include "printing/ReportDocument.h"
#include "printing/ReportEngine.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSqlQuery>
#include <QVariant>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

void line(const char* name, double vorkam, double baseline, const char* target)
{
    std::printf("%-44s %9.2f ms %9.2f ms %8.2fx   %s\n", name, vorkam, baseline,
        vorkam / std::max(baseline, 1e-3), target);
}

// A journal-like report of `rows` rows: number, date, description, debit, credit.
std::unique_ptr<ReportDocument> synthetic(int rows)
{
    const QByteArray json = R"({
      "query": { "select": "SELECT 1" },
      "formulas": { "Seurannimi": "Rasitusyhdistys ry", "Otsake": "Päiväkirja" },
      "title": ["{Seurannimi}", "{Otsake}"],
      "columns": [
        { "field": "Numero", "caption": "Tosite", "width": 1, "format": "integer" },
        { "field": "Paiva", "caption": "Päivä", "width": 1.3, "format": "date" },
        { "field": "Selite", "caption": "Selite", "width": 5, "format": "text" },
        { "field": "Debet", "caption": "Debet", "width": 1.6, "format": "money", "total": true },
        { "field": "Kredit", "caption": "Kredit", "width": 1.6, "format": "money", "total": true } ],
      "grandTotal": "Yhteensä" })";
    ReportDefinition d = ReportDefinition::parse(json, QStringLiteral("synteettinen.rpt"));
    auto data = std::make_shared<ReportData>(std::vector<ReportData::Field> {
        { QStringLiteral("Numero"), CellFormat::Integer }, { QStringLiteral("Paiva"), CellFormat::Date },
        { QStringLiteral("Selite"), CellFormat::Text }, { QStringLiteral("Debet"), CellFormat::Money },
        { QStringLiteral("Kredit"), CellFormat::Money } });
    data->reserve(rows);
    const QStringList selitteet = { QStringLiteral("Jäsenmaksu"), QStringLiteral("Kerhohuoneen vuokra"),
        QStringLiteral("Retken osallistumismaksut, kesäkuu"), QStringLiteral("Pankkikulut") };
    const qint64 day = QDate(2011, 1, 1).toJulianDay();
    for (int r = 0; r < rows; ++r) {
        data->appendRow();
        data->setNumber(r, 0, r / 3 + 1);
        data->setNumber(r, 1, day + (r / 3) % 365);
        data->setText(r, 2, selitteet[r % 4]);
        data->setNumber(r, r % 3 == 0 ? 3 : 4, qint64(r % 977 + 1) * 12345);
    }
    LayoutOptions o;
    o.fonts = d.fonts;
    o.printDate = QDate(2011, 12, 31);
    return std::make_unique<ReportDocument>(std::move(d), std::move(data), std::move(o));
}

} // namespace

int reportBench(const QSqlDatabase& db, const QString& binDir)
{
    std::printf("\n%-44s %12s %12s %9s   %s\n", "report engine", "Vorkam", "baseline", "ratio", "target");
    Paths::setProgramDir(binDir);
    const QString pdf = QDir::tempPath() + QStringLiteral("/vorkam_reportbench.pdf");

    cTilienSaldot saldot(db);
    const double laske = medianMs(5, [&saldot] { saldot.Laske(); });
    const double summa = medianMs(5, [&db] {
        QSqlQuery q(db);
        q.setForwardOnly(true);
        q.exec(QStringLiteral(
            "SELECT vi.vitlID, SUM(CASE WHEN vi.viTyyppi = 'D' THEN vi.viArvo ELSE 0 END), "
            "SUM(CASE WHEN vi.viTyyppi = 'K' THEN vi.viArvo ELSE 0 END) FROM vi INNER JOIN \"to\" "
            "ON \"to\".toID = vi.vitoID WHERE vi.viAutomaatti = 0 GROUP BY +vi.vitlID"));
        while (q.next()) { }
    });
    line("account balances into tlSaldot", laske, summa, "< 300 ms, ratio <= 3");

    int sivuja = 0;
    const double saldoPdf = medianMs(5, [&] {
        const auto doc = ReportEngine::run(db, AccountReports::tilienSaldot());
        PdfWriter::write(*doc, pdf);
        sivuja = doc->pageCount();
    });
    const double saldoRivit = medianMs(5, [&db] {
        QSqlQuery q(db);
        q.setForwardOnly(true);
        q.exec(QStringLiteral("SELECT Tili, Debet, Kredit, Erotus FROM tlSaldot ORDER BY tlsID"));
        while (q.next()) { }
    });
    std::printf("(%d rows, %d pages)\n", int(saldot.rivit().size()), sivuja);
    line("balances report to PDF", saldoPdf, saldoRivit, "< 200 ms");

    // Rows per page of the synthetic layout, then a report of 8,000 pages.
    const int perPage = synthetic(200)->pageCount() > 1 ? 200 / (synthetic(200)->pageCount() - 1) : 60;
    int rows = 8000 * perPage;
    while (synthetic(rows)->pageCount() > 8000)
        rows -= perPage / 2;
    int pages = 0;
    const double layoutPdf = medianMs(3, [&] {
        const auto doc = synthetic(rows);
        pages = doc->pageCount();
        PdfWriter::write(*doc, pdf);
    });
    // The least any output must do: every cell formatted and the text written to a file.
    const auto plain = synthetic(rows);
    const double text = medianMs(3, [&] {
        QByteArray out;
        out.reserve(qsizetype(rows) * 64);
        for (int r = 0; r < rows; ++r) {
            for (int f = 0; f < plain->data().fieldCount(); ++f) {
                plain->data().appendDisplay(out, r, f);
                out += ';';
            }
            out += '\n';
        }
        QFile f(pdf);
        f.open(QIODevice::WriteOnly);
        f.write(out);
    });
    std::printf("(%d rows, %d pages, %.1f MB)\n", rows, pages, double(QFile(pdf).size()) / 1e6);
    line("8,000-page report laid out and written to PDF", layoutPdf, text, "< 1250 ms");

    QImage image(794, 1123, QImage::Format_RGB32); // A4 at 96 dpi
    const double preview = medianMs(3, [&] {
        const auto doc = synthetic(rows);
        image.fill(Qt::white);
        QPainter p(&image);
        p.scale(96.0 / 72.0, 96.0 / 72.0);
        PagePainter::paint(p, *doc, 0);
    });
    const double paintOnly = medianMs(3, [&] {
        image.fill(Qt::white);
        QPainter p(&image);
        p.scale(96.0 / 72.0, 96.0 / 72.0);
        PagePainter::paint(p, *plain, 0);
    });
    line("8,000-page report: first preview page", preview, paintOnly, "< 1000 ms");
    QFile::remove(pdf);
    return 0;
}
