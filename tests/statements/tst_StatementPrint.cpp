#include "Golden.h"
#include "ReportDocument.h"
#include "ReportEngine.h"
#include "ReportExport.h"
#include "ScriptedDialogs.h"
#include "StatementFixture.h"
#include "StatementPrint.h"
#include "Statements.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>
#include <memory>

namespace {

const QString BinDir = QStringLiteral(VORKAM_BIN_DIR);

void copyReports(const TestEnv& env)
{
    for (const char* rpt : { "tula.rpt", "tulas.rpt", "tase.rpt", "tases.rpt" })
        QFile::copy(BinDir + u'/' + QLatin1String(rpt), env.programDir() + u'/' + QLatin1String(rpt));
}

// A small association of 2012: money in the bank, a group of income and expenses, the result
// as a formula and as the profit row whose account the automatic entries fill.
void smallBooks()
{
    const std::pair<int, int> accounts[]
        = { { 1, 1910 }, { 2, 2000 }, { 3, 3000 }, { 4, 4000 }, { 5, 9990 }, { 6, 2100 } };
    for (const auto& [id, numero] : accounts)
        StatementFixture::account(id, numero);
    ProgramSettings::bookkeeping().VoittoTaseella = 6;
    ProgramSettings::bookkeeping().Seurannimi = QStringLiteral("Matin 'kerho' ry");
    StatementFixture::malli(1, QStringLiteral("Tuloslaskelma"), 1);
    StatementFixture::malli(2, QStringLiteral("Tase"), 2, 1);
    using R = StatementFixture::Row;
    for (const R& r : { R { .id = 10, .ma = 1, .teksti = "Varsinainen toiminta" },
             R { .id = 11, .ma = 1, .teksti = "Tuotot", .parent = 10, .tilit = "3,", .turnover = true },
             R { .id = 12, .ma = 1, .teksti = "Kulut", .parent = 10, .tilit = "4," },
             R { .id = 13, .ma = 1, .teksti = "Tilikauden tulos", .kaava = "+10,", .equation = true },
             R { .id = 14, .ma = 1, .teksti = "Tilikauden ylijäämä", .tilit = "5,", .profit = true },
             R { .id = 20, .ma = 2, .teksti = "Vastaavaa", .side = "D" },
             R { .id = 21,
                 .ma = 2,
                 .teksti = "Rahat ja pankkisaamiset",
                 .parent = 20,
                 .tilit = "1,",
                 .side = "D" },
             R { .id = 22, .ma = 2, .teksti = "Vastattavaa" },
             R { .id = 23, .ma = 2, .teksti = "Oma pääoma", .parent = 22 },
             R { .id = 24, .ma = 2, .teksti = "Peruspääoma", .parent = 23, .tilit = "2," },
             R { .id = 25, .ma = 2, .teksti = "Tilikauden ylijäämä", .parent = 23, .tilit = "6," } })
        StatementFixture::row(r);
    StatementFixture::post(QStringLiteral("2012-01-01"), 1, 2, 100000, false, true);
    StatementFixture::post(QStringLiteral("2012-03-15"), 1, 3, 50000);
    StatementFixture::post(QStringLiteral("2012-04-10"), 4, 1, 12050);
    StatementFixture::post(QStringLiteral("2012-06-10"), 4, 1, 3000);
    StatementFixture::post(QStringLiteral("2011-01-01"), 1, 2, 80000, true, true);
    StatementFixture::post(QStringLiteral("2011-03-20"), 1, 3, 40000, true);
    StatementFixture::post(QStringLiteral("2011-05-02"), 4, 1, 45000, true);
}

QString printed(const QSqlDatabase& db, int kind, bool wide, const QDate& start, const QDate& end)
{
    const StatementOptions o = StatementOptions::forPeriod(kind, start, end);
    if (!Statements::compute(db, o))
        return QStringLiteral("ei laskettu");
    ReportJob job = StatementPrint::job(kind, wide, start, end, ProgramSettings::bookkeeping());
    job.printDate = QDate(2012, 6, 1);
    const std::unique_ptr<ReportDocument> d = ReportEngine::run(db, job);
    QString text;
    for (int i = 0; i < d->pageCount(); ++i)
        text += d->pageText(i);
    return text;
}

} // namespace

class tst_StatementPrint : public QObject {
    Q_OBJECT

    std::unique_ptr<StatementFixture> f;
    std::unique_ptr<ScriptedDialogs> dialogs;

private slots:
    void init()
    {
        f = std::make_unique<StatementFixture>();
        QVERIFY(f->ok);
        dialogs = std::make_unique<ScriptedDialogs>();
        copyReports(f->env);
    }
    void cleanup()
    {
        dialogs.reset();
        f.reset();
    }

    // The formulas of each report in their fixed order, exactly as sent.
    void formulas_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("wide");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QStringList>("formulas");
        const QString seura = QStringLiteral("Seurannimi= 'Seura ry'");
        const QString tulos = QStringLiteral("Otsake= 'Kirjanpidon tuloslaskelma : Ajalle : 1.3.2012 - "
                                             "31.5.2012 Tilikaudella : 1.1.2012 - 31.12.2012'");
        // The year-to-date columns end where the period ends.
        const QStringList income { seura, "Jakso= '0312-0512'", "EdJakso= '0311-0511'",
            "Tilikausi= '0112-0512'", "EdTilikausi= '0111-0511'", tulos };
        QTest::newRow("income statement, wide") << 1 << true << "tula.rpt" << income;
        QTest::newRow("income statement, narrow") << 1 << false << "tulas.rpt" << income;
        QTest::newRow("balance sheet, wide")
            << 2 << true << "tase.rpt"
            << QStringList { seura, "Jakso= '0312-0512'", "AlkuPvm= '0312'", "LoppuPvm = '0512'",
                   "EdLoppuPvm= '0511'", "Otsake= 'Kirjanpidon tase : 31.5.2012'" };
        QTest::newRow("balance sheet, narrow")
            << 2 << false << "tases.rpt"
            << QStringList { seura, "LoppuPvm = '0512'", "EdLoppuPvm= '0511'",
                   "Otsake= 'Kirjanpidon tase : 31.5.2012'" };
    }
    void formulas()
    {
        QFETCH(int, kind);
        QFETCH(bool, wide);
        QFETCH(QString, file);
        QFETCH(QStringList, formulas);
        BookkeepingSettings s = ProgramSettings::bookkeeping();
        s.Seurannimi = QStringLiteral("Seura ry");
        const ReportJob job = StatementPrint::job(kind, wide, QDate(2012, 3, 1), QDate(2012, 5, 31), s);
        QCOMPARE(job.reportFile, file);
        QCOMPARE(job.formulas, formulas);
        QCOMPARE(job.sortFields, QStringList { kind == 1 ? "+{tula.tulaID}" : "+{tase.taseID}" });
        // Every formula is one the report file knows.
        QVERIFY(
            ReportEngine::options(ReportEngine::definition(file), job).formulas.size() >= formulas.size());
    }

    void periodTexts()
    {
        QCOMPARE(StatementPrint::mmyy(QDate(2012, 3, 1)), QStringLiteral("0312"));
        QCOMPARE(StatementPrint::period(QDate(2012, 3, 1), QDate(2012, 5, 31)), QStringLiteral("0312-0512"));
        QCOMPARE(StatementPrint::period(QDate(2011, 3, 1), QDate(2011, 5, 31)), QStringLiteral("0311-0511"));
        QCOMPARE(StatementPrint::period(QDate(2000, 12, 1), QDate(2001, 1, 31)), QStringLiteral("1200-0101"));
    }

    void rowCount()
    {
        smallBooks();
        QCOMPARE(StatementPrint::rowCount(f->db(), 1), 5);
        QCOMPARE(StatementPrint::rowCount(f->db(), 2), 6);
        QCOMPARE(StatementPrint::rowCount(f->db(), 3), 0);
    }

    // The four printouts of a small association, page by page.
    void printouts_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("wide");
        QTest::addColumn<QString>("golden");
        QTest::newRow("tula") << 1 << true << "tula_tuloste";
        QTest::newRow("tulas") << 1 << false << "tulas_tuloste";
        QTest::newRow("tase") << 2 << true << "tase_tuloste";
        QTest::newRow("tases") << 2 << false << "tases_tuloste";
    }
    void printouts()
    {
        QFETCH(int, kind);
        QFETCH(bool, wide);
        QFETCH(QString, golden);
        smallBooks();
        VERIFY_GOLDEN(golden, printed(f->db(), kind, wide, QDate(2012, 3, 1), QDate(2012, 5, 31)));
    }

    // The report's rules: totals in bold with a rule above their amounts, captions indented by
    // level, headings in bold, negative amounts with a minus sign.
    void emphasis()
    {
        smallBooks();
        QVERIFY(Statements::compute(
            f->db(), StatementOptions::forPeriod(1, QDate(2012, 3, 1), QDate(2012, 5, 31))));
        ReportJob job = StatementPrint::job(
            1, false, QDate(2012, 3, 1), QDate(2012, 5, 31), ProgramSettings::bookkeeping());
        const std::unique_ptr<ReportDocument> d = ReportEngine::run(f->db(), job);
        const ReportPage page = d->page(0);
        const auto run = [&](const QString& text) -> const TextRun* {
            for (const TextRun& r : page.runs)
                if (page.runText(r) == text)
                    return &r;
            return nullptr;
        };
        const TextRun* heading = run(QStringLiteral("Varsinainen toiminta"));
        const TextRun* detail = run(QStringLiteral("Tuotot"));
        const TextRun* expense = run(QStringLiteral("-120,50"));
        const TextRun* total = run(QStringLiteral("379,50"));
        QVERIFY(heading && detail && expense && total);
        QVERIFY(d->fonts()[heading->font].bold);
        QVERIFY(!d->fonts()[detail->font].bold);
        QVERIFY(!d->fonts()[expense->font].bold);
        QVERIFY(d->fonts()[total->font].bold);
        QCOMPARE(detail->x - heading->x, 10.0f);
        QVERIFY(std::any_of(page.rules.begin(), page.rules.end(),
            [&](const PageRule& r) { return r.y1 < total->y && r.y1 > total->y - 14 && r.x2 >= total->x; }));
    }

    void balanceSheetNeedsIncomeStatement()
    {
        smallBooks();
        StatementFixture::exec(QStringLiteral("UPDATE ma SET maTulosMaID = 0 WHERE maID = 2"));
        QCOMPARE(
            printed(f->db(), 2, true, QDate(2012, 1, 1), QDate(2012, 12, 31)), QStringLiteral("ei laskettu"));
        QCOMPARE(dialogs->texts(ScriptedDialogs::Kind::Information),
            QStringList {
                "Tasemallille ei ole määritelty tuloslaskelmaa, jonka perusteella tilikauden voitto "
                "kirjataan." });
    }

    // The demo association's statements as printed, wide and narrow; its year is the build's,
    // so the year's digits are written as letters before the comparison.
    void demo_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("wide");
        QTest::addColumn<QString>("golden");
        QTest::newRow("tula") << 1 << true << "tula_demo_tuloste";
        QTest::newRow("tulas") << 1 << false << "tulas_demo_tuloste";
        QTest::newRow("tase") << 2 << true << "tase_demo_tuloste";
        QTest::newRow("tases") << 2 << false << "tases_demo_tuloste";
    }
    void demo()
    {
        QFETCH(int, kind);
        QFETCH(bool, wide);
        QFETCH(QString, golden);
        f.reset();
        TestEnv env;
        copyReports(env);
        QVERIFY(StatementFixture::openShipped(env, QStringLiteral("demo1.mdb")));
        const QSqlDatabase db = StatementFixture::db();
        const BookkeepingSettings& s = ProgramSettings::bookkeeping();
        const qint32 id
            = StatementFixture::value(QStringLiteral("SELECT MIN(maID) FROM ma WHERE maTyyppi = ?"), { kind })
                  .toInt();
        const StatementOptions o = StatementOptions::forPeriod(id, s.TilikausiAlku, s.TilikausiLoppu);
        QVERIFY(Statements::compute(db, o));
        ReportJob job = StatementPrint::job(kind, wide, s.TilikausiAlku, s.TilikausiLoppu, s);
        job.printDate = QDate(2012, 6, 1);
        const std::unique_ptr<ReportDocument> d = ReportEngine::run(db, job);
        QString text;
        for (int i = 0; i < d->pageCount(); ++i)
            text += d->pageText(i);
        const int year = s.TilikausiAlku.year();
        text.replace(QString::number(year), QStringLiteral("VVVV"))
            .replace(QString::number(year - 1), QStringLiteral("EEEE"));
        text.replace(
            QRegularExpression(QStringLiteral("\\b(\\d\\d)%1\\b").arg(year % 100, 2, 10, QLatin1Char('0'))),
            QStringLiteral("\\1vv"));
        text.replace(QRegularExpression(
                         QStringLiteral("\\b(\\d\\d)%1\\b").arg((year - 1) % 100, 2, 10, QLatin1Char('0'))),
            QStringLiteral("\\1ee"));
        VERIFY_GOLDEN(golden, text);
        // The same rows go to a spreadsheet with the captions filled in.
        const QString csv = env.path(QStringLiteral("tuloste.csv"));
        ReportExport::writeCsv(*d, csv);
        QFile file(csv);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString content = QString::fromUtf8(file.readAll());
        QVERIFY(!content.contains(u'{'));
        QVERIFY(content.contains(kind == 1 ? QStringLiteral("253,69") : QStringLiteral("7713,69")));
        DBC::instance().SuljeDB();
    }
};

QTEST_MAIN(tst_StatementPrint)
#include "tst_StatementPrint.moc"
