#include "Golden.h"
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

// The year's digits, and the year before's, written as letters: VVVV and EEEE, vv and ee in "MMyy".
QString yearsAsLetters(QString printed, int year)
{
    printed.replace(QString::number(year), QStringLiteral("VVVV"))
        .replace(QString::number(year - 1), QStringLiteral("EEEE"));
    for (const auto& [y, letters] : { std::pair(year, "\\1vv"), std::pair(year - 1, "\\1ee") })
        printed.replace(
            QRegularExpression(QStringLiteral("\\b(\\d\\d)%1\\b").arg(y % 100, 2, 10, QLatin1Char('0'))),
            QLatin1String(letters));
    return printed;
}

} // namespace

class tst_StatementPrint : public QObject {
    Q_OBJECT

    std::unique_ptr<StatementFixture> f;

private slots:
    void init()
    {
        QVERIFY(StatementFixture::start(f, [this] { copyReports(f->env); }));
    }
    void cleanup() { StatementFixture::finish(f); }

    // Each statement printed wide and narrow: the small association for a spring period, with the
    // previous year beside this one, and the demo for its year (the build's, so written as letters).
    void printouts_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("wide");
        QTest::addColumn<bool>("demo");
        QTest::addColumn<QString>("golden");
        const std::tuple<const char*, int, bool> reports[]
            = { { "tula", 1, true }, { "tulas", 1, false }, { "tase", 2, true }, { "tases", 2, false } };
        for (const bool demo : { false, true })
            for (const auto& [name, kind, wide] : reports) {
                const QString golden = QLatin1String(name) + (demo ? "_demo_tuloste" : "_tuloste");
                QTest::newRow(qPrintable(golden)) << kind << wide << demo << golden;
            }
    }
    void printouts()
    {
        QFETCH(int, kind);
        QFETCH(bool, wide);
        QFETCH(bool, demo);
        QFETCH(QString, golden);
        QString printed;
        if (demo) {
            DBC::instance().SuljeDB();
            QVERIFY(StatementFixture::openShipped(f->env, QStringLiteral("demo1.mdb")));
            const BookkeepingSettings& s = ProgramSettings::bookkeeping();
            const QVariant id = StatementFixture::value(
                QStringLiteral("SELECT MIN(maID) FROM ma WHERE maTyyppi = ?"), { kind });
            const auto d = print(id.toInt(), kind, wide, s.TilikausiAlku, s.TilikausiLoppu);
            QVERIFY(d);
            printed = yearsAsLetters(text(*d), s.TilikausiAlku.year());
        } else {
            smallBooks();
            const auto d = print(kind, kind, wide, QDate(2012, 3, 1), QDate(2012, 5, 31));
            QVERIFY(d);
            printed = text(*d);
        }
        VERIFY_GOLDEN(golden, printed);
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
};

QTEST_MAIN(tst_StatementPrint)
#include "tst_StatementPrint.moc"
