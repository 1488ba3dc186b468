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
    // The balance sheet's rows are those from 20 up.
    for (R r : { R { .id = 10, .teksti = "Varsinainen toiminta" },
             R { .id = 11, .teksti = "Tuotot", .parent = 10, .tilit = "3,", .turnover = true },
             R { .id = 12, .teksti = "Kulut", .parent = 10, .tilit = "4," },
             R { .id = 13, .teksti = "Tilikauden tulos", .kaava = "+10,", .equation = true },
             R { .id = 14, .teksti = "Tilikauden ylijäämä", .tilit = "5,", .profit = true },
             R { .id = 20, .teksti = "Vastaavaa", .side = "D" },
             R { .id = 21, .teksti = "Rahat ja pankkisaamiset", .parent = 20, .tilit = "1,", .side = "D" },
             R { .id = 22, .teksti = "Vastattavaa" }, R { .id = 23, .teksti = "Oma pääoma", .parent = 22 },
             R { .id = 24, .teksti = "Peruspääoma", .parent = 23, .tilit = "2," },
             R { .id = 25, .teksti = "Tilikauden ylijäämä", .parent = 23, .tilit = "6," } }) {
        r.ma = r.id < 20 ? 1 : 2;
        StatementFixture::row(r);
    }
    StatementFixture::post(QStringLiteral("2012-01-01"), 1, 2, 100000, false, true);
    StatementFixture::post(QStringLiteral("2012-03-15"), 1, 3, 50000);
    StatementFixture::post(QStringLiteral("2012-04-10"), 4, 1, 12050);
    StatementFixture::post(QStringLiteral("2012-06-10"), 4, 1, 3000);
    StatementFixture::post(QStringLiteral("2011-01-01"), 1, 2, 80000, true, true);
    StatementFixture::post(QStringLiteral("2011-03-20"), 1, 3, 40000, true);
    StatementFixture::post(QStringLiteral("2011-05-02"), 4, 1, 45000, true);
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
        if (demo) {
            DBC::instance().SuljeDB();
            QVERIFY(StatementFixture::openShipped(f->env, QStringLiteral("demo1.mdb")));
        } else {
            smallBooks();
        }
        // The first template of the kind, computed and printed as of 1 June 2012.
        const BookkeepingSettings& s = ProgramSettings::bookkeeping();
        const QDate start = demo ? s.TilikausiAlku : QDate(2012, 3, 1);
        const QDate end = demo ? s.TilikausiLoppu : QDate(2012, 5, 31);
        const QVariant id = StatementFixture::value(
            QStringLiteral("SELECT MIN(maID) FROM ma WHERE maTyyppi = ?"), { kind });
        QVERIFY(
            Statements::compute(StatementFixture::db(), StatementOptions::forPeriod(id.toInt(), start, end)));
        ReportJob job = StatementPrint::job(kind, wide, start, end, s);
        job.printDate = QDate(2012, 6, 1);
        const auto d = ReportEngine::run(StatementFixture::db(), job);
        QVERIFY(d);
        VERIFY_GOLDEN(golden, demo ? yearsAsLetters(text(*d), start.year()) : text(*d));
    }
};

QTEST_MAIN(tst_StatementPrint)
#include "tst_StatementPrint.moc"
