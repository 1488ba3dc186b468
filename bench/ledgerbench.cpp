// Times the account inspection, the daily balances with their chart, the journal and the general
// ledger on the stress association, each beside a plain baseline of the same run (see README.md).
#include "Timing.h"
#include "accounts/cTiliTarkastelut.h"
#include "accounts/frmPaivaSaldot.h"
#include "accounts/frmTilitarkastelu.h"
#include "core/Paths.h"
#include "core/ProgramSettings.h"
#include "printing/PagePainter.h"
#include "printing/PdfWriter.h"
#include "printing/ReportDefinition.h"
#include "printing/ReportDocument.h"
#include "printing/ReportEngine.h"
#include "vouchers/JournalPrinting.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSqlQuery>
#include <QSqlRecord>
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

// Reads every row of `sql` and writes its cells as text to `file`: the least any output of
// those rows must do.
void plainRows(const QSqlDatabase& db, const QString& sql, const QVariantList& values, const QString& file)
{
    QSqlQuery q(db);
    q.setForwardOnly(true);
    q.prepare(sql);
    for (const QVariant& v : values)
        q.addBindValue(v);
    q.exec();
    QByteArray out;
    const int columns = q.record().count();
    while (q.next()) {
        for (int c = 0; c < columns; ++c) {
            out += q.value(c).toString().toUtf8();
            out += ';';
        }
        out += '\n';
    }
    if (!file.isEmpty()) {
        QFile f(file);
        f.open(QIODevice::WriteOnly);
        f.write(out);
    }
}

int g_failures = 0;
void check(bool ok, const char* what)
{
    if (!ok) {
        std::fprintf(stderr, "FAILED: %s\n", what);
        ++g_failures;
    }
}

} // namespace

int ledgerBench(const QSqlDatabase& db, const QString& binDir)
{
    std::printf("\n%-44s %12s %12s %9s   %s\n", "journal, ledger and accounts", "Vorkam", "baseline", "ratio",
        "target");
    Paths::setProgramDir(binDir);
    const QString pdf = QDir::tempPath() + QStringLiteral("/vorkam_ledgerbench.pdf");
    const QString text = QDir::tempPath() + QStringLiteral("/vorkam_ledgerbench.txt");
    const BookkeepingSettings& s = ProgramSettings::bookkeeping();
    const QDate alku = s.TilikausiAlku;
    const QDate loppu = s.TilikausiLoppu;

    // The ledger prints the accounts marked for printing: all of them here, as before afterwards.
    QSqlQuery q(db);
    std::vector<qint32> unprinted;
    q.exec(QStringLiteral("SELECT tlID FROM tl WHERE tlPrint IS NULL OR tlPrint = 0"));
    while (q.next())
        unprinted.push_back(q.value(0).toInt());
    q.exec(QStringLiteral("UPDATE tl SET tlPrint = 1"));

    q.exec(QStringLiteral(
        "SELECT vitlID, COUNT(*) FROM vi INNER JOIN \"to\" ON toID = vitoID WHERE toNumero >= 0 "
        "GROUP BY vitlID ORDER BY 2 DESC LIMIT 1"));
    q.next();
    const qint32 busiest = q.value(0).toInt();
    const int busiestEntries = q.value(1).toInt();

    // The journal of the whole year: laid out and written to PDF, and its first page previewed.
    int pages = 0;
    const double journalPdf = medianMs(3, [&] {
        const auto doc = ReportEngine::run(
            db, JournalPrinting::paivakirja(db, JournalPrinting::Laji::Tavallinen, alku, loppu));
        pages = doc->pageCount();
        PdfWriter::write(*doc, pdf);
    });
    const QString journalRows
        = QStringLiteral("SELECT \"to\".toNumero, \"to\".toPvm, \"to\".toSelite, tl.tlNumero, tl.tlNimi, "
                         "vi.viTyyppi, vi.viArvo FROM \"to\" "
                         "LEFT JOIN vi ON vi.vitoID = \"to\".toID LEFT JOIN tl ON tl.tlID = vi.vitlID WHERE "
                         "\"to\".toNumero >= 0 AND "
                         "\"to\".toPvm >= ? AND \"to\".toPvm <= ? AND \"to\".toAvaustosite = 0 AND "
                         "\"to\".toPaatostosite = 0 ORDER BY "
                         "\"to\".toNumero, \"to\".toID, vi.viTyyppi, vi.viID");
    const QVariantList year { alku.toString(Qt::ISODate), loppu.toString(Qt::ISODate) };
    const double journalText = medianMs(3, [&] { plainRows(db, journalRows, year, text); });
    // Where the time goes: the sums and the job, reading the rows, the layout, the PDF.
    {
        QElapsedTimer t;
        t.start();
        const ReportJob job = JournalPrinting::paivakirja(db, JournalPrinting::Laji::Tavallinen, alku, loppu);
        const double jobMs = double(t.nsecsElapsed()) / 1e6;
        t.start();
        ReportDefinition d = ReportEngine::definition(job.reportFile);
        LayoutOptions o = ReportEngine::options(d, job);
        auto data = ReportEngine::fetch(db, d, job);
        const double fetchMs = double(t.nsecsElapsed()) / 1e6;
        t.start();
        ReportDocument doc(std::move(d), std::move(data), std::move(o));
        const double layoutMs = double(t.nsecsElapsed()) / 1e6;
        t.start();
        qsizetype runs = 0;
        for (int i = 0; i < doc.pageCount(); ++i)
            runs += qsizetype(doc.page(i).runs.size());
        const double pagesMs = double(t.nsecsElapsed()) / 1e6;
        t.start();
        PdfWriter::write(doc, pdf);
        std::printf(
            "(%d pages, %.1f MB; sums %.0f ms, rows %.0f ms, page breaks %.0f ms, %lld text runs made in "
            "%.0f ms, PDF with them %.0f ms)\n",
            pages, double(QFile(pdf).size()) / 1e6, jobMs, fetchMs, layoutMs, qlonglong(runs), pagesMs,
            double(t.nsecsElapsed()) / 1e6);
    }
    check(pages > 1000, "the journal has its pages");
    line("journal of the year laid out and to PDF", journalPdf, journalText, "< 1250 ms");

    QImage image(794, 1123, QImage::Format_RGB32); // A4 at 96 dpi
    std::unique_ptr<ReportDocument> kept;
    const double preview = medianMs(3, [&] {
        kept = ReportEngine::run(
            db, JournalPrinting::paivakirja(db, JournalPrinting::Laji::Tavallinen, alku, loppu));
        image.fill(Qt::white);
        QPainter p(&image);
        p.scale(96.0 / 72.0, 96.0 / 72.0);
        PagePainter::paint(p, *kept, 0);
    });
    const double paintOnly = medianMs(3, [&] {
        image.fill(Qt::white);
        QPainter p(&image);
        p.scale(96.0 / 72.0, 96.0 / 72.0);
        PagePainter::paint(p, *kept, 0);
    });
    kept.reset();
    line("journal: first preview page", preview, paintOnly, "< 1000 ms");

    // The general ledger: the balance preparation alone, and the whole ledger to PDF.
    QList<qint32> faulty;
    const double prepare = medianMs(5, [&] {
        faulty = JournalPrinting::valmistelePaakirja(db, JournalPrinting::Laji::Tavallinen, alku, loppu)
                     .virheelliset;
    });
    check(faulty.isEmpty(), "the stress association's entries are all in order");
    const double sums = medianMs(5, [&] {
        plainRows(db,
            QStringLiteral("SELECT vi.vitlID, SUM(CASE WHEN vi.viTyyppi = 'D' THEN vi.viArvo ELSE -vi.viArvo "
                           "END) FROM vi "
                           "INNER JOIN \"to\" ON \"to\".toID = vi.vitoID WHERE \"to\".toNumero >= 0 GROUP BY "
                           "+vi.vitlID"),
            {}, {});
    });
    line("ledger: balance preparation", prepare, sums, "< 500 ms");

    const double ledgerPdf = medianMs(3, [&] {
        const JournalPrinting::Paakirja valmis
            = JournalPrinting::valmistelePaakirja(db, JournalPrinting::Laji::Tavallinen, alku, loppu);
        const auto doc = ReportEngine::run(
            db, JournalPrinting::paakirja(valmis, JournalPrinting::Laji::Tavallinen, alku, loppu));
        pages = doc->pageCount();
        PdfWriter::write(*doc, pdf);
    });
    const double ledgerText = medianMs(3, [&] {
        plainRows(db,
            QStringLiteral(
                "SELECT tl.tlNumero, tl.tlNimi, \"to\".toNumero, \"to\".toPvm, \"to\".toSelite, vi.viTyyppi, "
                "vi.viArvo FROM vi INNER JOIN \"to\" ON \"to\".toID = vi.vitoID INNER JOIN tl ON tl.tlID = "
                "vi.vitlID WHERE \"to\".toPvm >= ? AND \"to\".toPvm <= ? ORDER BY tl.tlNumero, "
                "\"to\".toNumero, vi.viID"),
            year, text);
    });
    std::printf("(%d pages, %.1f MB)\n", pages, double(QFile(pdf).size()) / 1e6);
    line("ledger of the year to PDF, with preparation", ledgerPdf, ledgerText, "< 2000 ms");

    // The busiest account in the inspection window and in the daily balances with the chart.
    frmTilitarkastelu tarkastelu(db, busiest);
    tarkastelu.show();
    QApplication::processEvents();
    const double inspect = medianMs(5, [&] {
        tarkastelu.Paivita();
        tarkastelu.repaint();
    });
    const QString entries = QStringLiteral(
        "SELECT \"to\".toID, \"to\".toNumero, \"to\".toPvm, \"to\".toSelite, vi.viTyyppi, vi.viArvo "
        "FROM vi INNER JOIN \"to\" ON \"to\".toID = vi.vitoID WHERE \"to\".toNumero >= 0 AND vi.vitlID "
        "= ? ORDER BY \"to\".toPvm, \"to\".toNumero, vi.viID");
    const double entriesPlain = medianMs(5, [&] { plainRows(db, entries, { busiest }, {}); });
    std::printf("(account %d, %d entries)\n", busiest, busiestEntries);
    check(tarkastelu.findChild<QAbstractItemView*>(QStringLiteral("grdTarkastelut"))->model()->rowCount()
            == busiestEntries,
        "the inspection lists every entry of the account");
    line("account inspection of the busiest account", inspect, entriesPlain, "< 200 ms");
    tarkastelu.close();

    frmPaivaSaldot paivat(db, busiest);
    paivat.show();
    QApplication::processEvents();
    const double daily = medianMs(5, [&] {
        paivat.Paivita();
        paivat.repaint();
    });
    check(paivat.rivit().size() > 300, "the daily balances have a row per day");
    const double days = medianMs(5, [&] {
        plainRows(db,
            QStringLiteral(
                "SELECT \"to\".toPvm, SUM(CASE WHEN vi.viTyyppi = 'D' THEN vi.viArvo ELSE 0 END), "
                "SUM(CASE WHEN vi.viTyyppi = 'K' THEN vi.viArvo ELSE 0 END) FROM vi INNER JOIN \"to\" ON "
                "\"to\".toID = vi.vitoID WHERE \"to\".toNumero >= 0 AND \"to\".toPvm >= ? AND \"to\".toPvm "
                "<= ? AND vi.vitlID = ? GROUP BY \"to\".toPvm ORDER BY \"to\".toPvm"),
            { year.at(0), year.at(1), busiest }, {});
    });
    line("daily balances of it, with the chart", daily, days, "< 200 ms");
    paivat.close();

    for (const qint32 id : unprinted) {
        q.prepare(QStringLiteral("UPDATE tl SET tlPrint = 0 WHERE tlID = ?"));
        q.addBindValue(id);
        q.exec();
    }
    QFile::remove(pdf);
    QFile::remove(text);
    return g_failures == 0 ? 0 : 1;
}
