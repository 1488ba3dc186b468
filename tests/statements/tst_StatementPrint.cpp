#include "Golden.h"
#include "ScriptedDialogs.h"
#include "StatementFixture.h"
#include "printing/ReportDocument.h"
#include "printing/ReportEngine.h"
#include "statements/StatementPrint.h"
#include "statements/Statements.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>
#include <memory>

namespace {

void copyReports(const TestEnv& env)
{
    for (const char* rpt : { "tula.rpt", "tulas.rpt", "tase.rpt", "tases.rpt" })
        QFile::copy(QStringLiteral(VORKAM_BIN_DIR "/") + QLatin1String(rpt),
            env.programDir() + u'/' + QLatin1String(rpt));
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

// The statement of the template computed and printed as of 1 June 2012.
std::unique_ptr<ReportDocument> print(
    int templateId, int kind, bool wide, const QDate& start, const QDate& end)
{
    if (!Statements::compute(StatementFixture::db(), StatementOptions::forPeriod(templateId, start, end)))
        return nullptr;
    ReportJob job = StatementPrint::job(kind, wide, start, end, ProgramSettings::bookkeeping());
    job.printDate = QDate(2012, 6, 1);
    return ReportEngine::run(StatementFixture::db(), job);
}

QString text(const ReportDocument& d)
{
    QString text;
    for (int i = 0; i < d.pageCount(); ++i)
        text += d.pageText(i);
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

    // The four printouts of a small association for a spring period, page by page: the report
    // file, the headings and the periods of the columns, the previous year beside this one.
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
        const auto d = print(kind, kind, wide, QDate(2012, 3, 1), QDate(2012, 5, 31));
        QVERIFY(d);
        VERIFY_GOLDEN(golden, text(*d));
    }

    // The report's rules: totals in bold with a rule above their amounts, captions indented by
    // level, headings in bold, negative amounts with a minus sign.
    void emphasis()
    {
        smallBooks();
        const auto d = print(1, 1, false, QDate(2012, 3, 1), QDate(2012, 5, 31));
        QVERIFY(d);
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
        const BookkeepingSettings& s = ProgramSettings::bookkeeping();
        const int id
            = StatementFixture::value(QStringLiteral("SELECT MIN(maID) FROM ma WHERE maTyyppi = ?"), { kind })
                  .toInt();
        const auto d = print(id, kind, wide, s.TilikausiAlku, s.TilikausiLoppu);
        QVERIFY(d);
        QString printed = text(*d);
        const int year = s.TilikausiAlku.year();
        printed.replace(QString::number(year), QStringLiteral("VVVV"))
            .replace(QString::number(year - 1), QStringLiteral("EEEE"));
        printed.replace(
            QRegularExpression(QStringLiteral("\\b(\\d\\d)%1\\b").arg(year % 100, 2, 10, QLatin1Char('0'))),
            QStringLiteral("\\1vv"));
        printed.replace(
            QRegularExpression(
                QStringLiteral("\\b(\\d\\d)%1\\b").arg((year - 1) % 100, 2, 10, QLatin1Char('0'))),
            QStringLiteral("\\1ee"));
        VERIFY_GOLDEN(golden, printed);
        DBC::instance().SuljeDB();
    }
};

QTEST_MAIN(tst_StatementPrint)
#include "tst_StatementPrint.moc"
