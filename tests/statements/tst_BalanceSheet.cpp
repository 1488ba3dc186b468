#include "ScriptedDialogs.h"
#include "StatementFixture.h"
#include "core/DatabaseError.h"
#include "statements/BalanceSheet.h"

#include <QTest>
#include <memory>

namespace {

using Row = StatementFixture::Row;

void chart()
{
    StatementFixture::account(1, 1910, QStringLiteral("Pankkitili"));
    StatementFixture::account(3, 3000, QStringLiteral("Myynti"));
    StatementFixture::account(5, 4000, QStringLiteral("Kulut"));
    StatementFixture::account(8, 2000, QStringLiteral("Oma pääoma"));
    StatementFixture::account(9, 2870, QStringLiteral("Ostovelat"));
}

// An income statement (1) whose profit row is a formula, and a balance sheet (2) whose
// "Tilikauden tulos" is its profit line.
void templates()
{
    StatementFixture::malli(1, QStringLiteral("Tuloslaskelma"), 1);
    StatementFixture::row({ .id = 1, .teksti = "Tuotot", .tilit = "3,", .turnover = true });
    StatementFixture::row({ .id = 2, .teksti = "Kulut", .tilit = "5," });
    StatementFixture::row(
        { .id = 4, .teksti = "Ylijäämä", .kaava = "+1,+2,", .equation = true, .profit = true });
    StatementFixture::malli(2, QStringLiteral("Tase"), 2, 1);
    const auto row = [](Row r) {
        r.ma = 2;
        StatementFixture::row(r);
    };
    row({ .id = 10, .teksti = "Vastaavaa", .side = "D" });
    row({ .id = 11, .teksti = "Rahat", .parent = 10, .tilit = "1,", .side = "D" });
    row({ .id = 20, .teksti = "Vastattavaa" });
    row({ .id = 21, .teksti = "Oma pääoma", .parent = 20 });
    row({ .id = 22, .teksti = "Pääoma", .parent = 21, .tilit = "8," });
    row({ .id = 23, .teksti = "Tilikauden tulos", .parent = 21, .kaava = "+4,", .equation = true });
    row({ .id = 24, .teksti = "Velat", .parent = 20, .tilit = "9," });
}

// Opening balances, a sale and a purchase on credit this year; an opening balance and a sale
// the year before.
void books()
{
    StatementFixture::post(QStringLiteral("2012-01-01"), 1, 8, 100000, false, true);
    StatementFixture::post(QStringLiteral("2012-02-01"), 1, 3, 30000);
    StatementFixture::post(QStringLiteral("2012-03-01"), 5, 9, 10000);
    StatementFixture::post(QStringLiteral("2011-01-01"), 1, 8, 80000, true, true);
    StatementFixture::post(QStringLiteral("2011-03-01"), 1, 3, 10000, true);
}

StatementOptions options(const QDate& end = QDate(2012, 12, 31))
{
    return StatementOptions::forPeriod(2, QDate(2012, 1, 1), end);
}

} // namespace

class tst_BalanceSheet : public QObject {
    Q_OBJECT

    std::unique_ptr<StatementFixture> f;
    std::unique_ptr<ScriptedDialogs> dialogs;

private slots:
    void init()
    {
        f = std::make_unique<StatementFixture>();
        QVERIFY(f->ok);
        dialogs = std::make_unique<ScriptedDialogs>();
        chart();
        templates();
    }
    void cleanup()
    {
        QVERIFY2(dialogs->failures().isEmpty(), qPrintable(dialogs->failures().join(u'\n')));
        dialogs.reset();
        f.reset();
    }

    void openingChangeClosing_data();
    void openingChangeClosing();
    void linesOfATemplate();
    void groupsOnly();
    void perAccountLinesCarryTheirAccount();
    void profitLine_data();
    void profitLine();
    void noIncomeStatementChosen();
};

// The opening balance is every entry of an opening voucher; the change the other entries from
// the year's start to the end date; the previous year's balance one year earlier, its opening
// entries included.
void tst_BalanceSheet::openingChangeClosing_data()
{
    QTest::addColumn<QString>("pvm");
    QTest::addColumn<bool>("opening");
    QTest::addColumn<bool>("previous");
    QTest::addColumn<QString>("line"); // alku|muutos|loppu|edellinen|muutos edelliseen|%
    // A previous year without entries up to the date is left empty, not shown as zeros.
    QTest::newRow("opening entry only") << "" << false << false << "1000.00|0.00|1000.00|-|-|-";
    QTest::newRow("dated entry") << "2012-02-01" << false << false << "1000.00|300.00|1300.00|-|-|-";
    QTest::newRow("after the end date") << "2012-07-01" << false << false << "1000.00|0.00|1000.00|-|-|-";
    QTest::newRow("opening voucher after the end date")
        << "2012-08-01" << true << false << "1300.00|0.00|1300.00|-|-|-";
    QTest::newRow("previous year at the same date")
        << "2011-06-30" << false << true << "1000.00|0.00|1000.00|300.00|700.00|233.33";
    QTest::newRow("previous year after it") << "2011-07-01" << false << true << "1000.00|0.00|1000.00|-|-|-";
    QTest::newRow("previous year's opening")
        << "2011-01-01" << true << true << "1000.00|0.00|1000.00|300.00|700.00|233.33";
}

void tst_BalanceSheet::openingChangeClosing()
{
    QFETCH(QString, pvm);
    QFETCH(bool, opening);
    QFETCH(bool, previous);
    QFETCH(QString, line);
    f->post(QStringLiteral("2012-01-01"), 1, 8, 100000, false, true);
    if (!pvm.isEmpty())
        f->post(pvm, 1, 3, 30000, previous, opening);
    QVERIFY(BalanceSheet::run(f->db(), options(QDate(2012, 6, 30))));
    const QStringList rows = f->rows(QStringLiteral("tase"));
    QCOMPARE(rows.at(1).section(u'|', 3, 3), QStringLiteral("Rahat"));
    QCOMPARE(rows.at(1).section(u'|', 6), line);
}

// Headers, ordinary lines, totals, the profit line left out of its group's total, and no empty
// line after a main-level total.
void tst_BalanceSheet::linesOfATemplate()
{
    books();
    Money difference;
    QVERIFY(BalanceSheet::run(f->db(), options(), &difference));
    QCOMPARE(difference.toCurrencyString(), Money::fromCents(20000).toCurrencyString());
    const QStringList expected = {
        "0||1|Vastaavaa|1|0|-|-|-|-|-|-",
        "1||0|Rahat|1|0|1000.00|300.00|1300.00|900.00|400.00|44.44",
        "0|**|1|Vastaavaa|1|0|1000.00|300.00|1300.00|900.00|400.00|44.44",
        "0||1|Vastattavaa|2|0|-|-|-|-|-|-",
        "1||1|Oma pääoma|2|0|-|-|-|-|-|-",
        "2||0|Pääoma|2|0|1000.00|0.00|1000.00|800.00|200.00|25.00",
        "2|**|1|Tilikauden tulos|2|0|0.00|200.00|200.00|100.00|100.00|100.00",
        "1|**|1|Oma pääoma|2|0|1000.00|0.00|1000.00|800.00|200.00|25.00",
        "1|-|0|-|2|-|-|-|-|-|-|-",
        "1||0|Velat|2|0|0.00|100.00|100.00|0.00|100.00|-",
        "0|**|1|Vastattavaa|2|0|1000.00|100.00|1100.00|800.00|300.00|37.50",
        // The profit line is outside its group's total: the sides differ, and the sheet says so.
        "0|-|0|-|2|-|-|-|-|-|-|-",
        "0|**|1|TASE EI TÄSMÄÄ: vastaavaa - vastattavaa|2|0|0.00|200.00|200.00|0.00|200.00|-",
    };
    QCOMPARE(f->rows(QStringLiteral("tase")), expected);
    // The income statement of the profit line is left in tula.
    QCOMPARE(f->amount(QStringLiteral("tula"), QStringLiteral("tulaToteutunutKuluvaAlusta"),
                 QStringLiteral("Ylijäämä")),
        20000);
}

void tst_BalanceSheet::groupsOnly()
{
    books();
    StatementOptions o = options();
    o.groupsOnly = true;
    QVERIFY(BalanceSheet::run(f->db(), o));
    QStringList captions;
    for (const QString& line : f->rows(QStringLiteral("tase")))
        captions << line.section(u'|', 0, 1) + u' ' + line.section(u'|', 3, 3);
    QCOMPARE(captions,
        (QStringList { "0| Vastaavaa", "0|** Vastaavaa", "0| Vastattavaa", "0|** Vastattavaa", "0|- -",
            "0|** TASE EI TÄSMÄÄ: vastaavaa - vastattavaa" }));
}

// The fiscal year change reads the closing balance of each account from these lines.
void tst_BalanceSheet::perAccountLinesCarryTheirAccount()
{
    books();
    f->exec(QStringLiteral("UPDATE mr SET mrTilit = '9,1,' WHERE mrID = 24"));
    StatementOptions o = options();
    o.perAccount = true;
    QVERIFY(BalanceSheet::run(f->db(), o));
    QSqlQuery q(f->db());
    q.exec(QStringLiteral(
        "SELECT tasetlID, taseteksti, taseviTyyppi, taseLoppusaldo FROM tase WHERE tasetlID > 0 "
        "AND taseIsGroupRow = 0 ORDER BY taseID"));
    QStringList carried;
    while (q.next())
        carried << QStringLiteral("%1 %2 %3 %4")
                       .arg(q.value(0).toString(), q.value(1).toString(), q.value(2).toString())
                       .arg(q.value(3).toLongLong() / 10000);
    QCOMPARE(carried,
        (QStringList { "1 1910 Pankkitili D 1300", "8 2000 Oma pääoma K 1000", "9 2870 Ostovelat K 100",
            "1 1910 Pankkitili K -1300" }));
}

// The year's result, and the previous year's, from the income statement's profit row; zeros
// without one.
void tst_BalanceSheet::profitLine_data()
{
    QTest::addColumn<qint64>("income");
    QTest::addColumn<qint64>("expense");
    QTest::addColumn<QString>("profitRow"); // SQL that changes the income statement's profit row
    QTest::addColumn<QString>("line");
    QTest::newRow("profit") << qint64(300) << qint64(100) << ""
                            << "0.00|200.00|200.00|100.00|100.00|100.00";
    QTest::newRow("loss") << qint64(100) << qint64(300) << ""
                          << "0.00|-200.00|-200.00|100.00|-300.00|-300.00";
    QTest::newRow("no profit row") << qint64(300) << qint64(100) << "UPDATE mr SET mrIsVoitto = 0"
                                   << "0.00|0.00|0.00|0.00|0.00|-";
    QTest::newRow("profit row not computed")
        << qint64(300) << qint64(100) << "UPDATE mr SET mrBelongsToGroup = 99 WHERE mrID = 4"
        << "0.00|0.00|0.00|0.00|0.00|-";
}

void tst_BalanceSheet::profitLine()
{
    QFETCH(qint64, income);
    QFETCH(qint64, expense);
    QFETCH(QString, profitRow);
    QFETCH(QString, line);
    f->post(QStringLiteral("2012-02-01"), 1, 3, income * 100);
    f->post(QStringLiteral("2012-03-01"), 5, 1, expense * 100);
    f->post(QStringLiteral("2011-03-01"), 1, 3, 10000, true);
    if (!profitRow.isEmpty())
        QVERIFY(f->exec(profitRow));
    QVERIFY(BalanceSheet::run(f->db(), options()));
    const QStringList rows = f->rows(QStringLiteral("tase"));
    const auto profit = std::find_if(rows.cbegin(), rows.cend(),
        [](const QString& r) { return r.section(u'|', 3, 3) == u"Tilikauden tulos"; });
    QVERIFY(profit != rows.cend());
    QCOMPARE(profit->section(u'|', 6), line);

    // A profit row whose caption holds an apostrophe cannot be looked up.
    f->exec(QStringLiteral(
        "UPDATE mr SET mrTeksti = 'Yli''jäämä', mrIsVoitto = 1, mrBelongsToGroup = 0 WHERE mrID = 4"));
    QVERIFY_THROWS_EXCEPTION(DatabaseError, BalanceSheet::run(f->db(), options()));
    QCOMPARE(f->rows(QStringLiteral("tase")), rows);
}

void tst_BalanceSheet::noIncomeStatementChosen()
{
    books();
    f->exec(QStringLiteral("UPDATE ma SET maTulosMaID = 0 WHERE maID = 2"));
    f->exec(QStringLiteral("INSERT INTO tase (taseteksti) VALUES ('edellinen ajo')"));
    dialogs->clear();
    QVERIFY(!BalanceSheet::run(f->db(), options()));
    QCOMPARE(dialogs->transcript(),
        QStringList {
            "information: Tasemallille ei ole määritelty tuloslaskelmaa, jonka perusteella tilikauden "
            "voitto kirjataan." });
    QCOMPARE(f->count(QStringLiteral("tase")), 1);
}

QTEST_GUILESS_MAIN(tst_BalanceSheet)
#include "tst_BalanceSheet.moc"
