#include "BalanceSheet.h"
#include "IncomeStatement.h"
#include "ProfitEntries.h"
#include "ScriptedDialogs.h"
#include "StatementFixture.h"

#include <QTest>
#include <memory>

namespace {

// Income and expenses of both years against the bank, after opening balances.
void books(qint64 income, qint64 expense, qint64 previousIncome, qint64 previousExpense)
{
    StatementFixture::post(QStringLiteral("2012-01-01"), 1, 8, 100000, false, true);
    StatementFixture::post(QStringLiteral("2011-01-01"), 1, 8, 100000, true, true);
    if (income)
        StatementFixture::post(QStringLiteral("2012-04-10"), 1, 3, income * 100);
    if (expense)
        StatementFixture::post(QStringLiteral("2012-09-10"), 5, 1, expense * 100);
    if (previousIncome)
        StatementFixture::post(QStringLiteral("2011-04-10"), 1, 3, previousIncome * 100, true);
    if (previousExpense)
        StatementFixture::post(QStringLiteral("2011-09-10"), 5, 1, previousExpense * 100, true);
}

// The automatic vouchers and entries of both years as text, without their keys.
QStringList postings()
{
    QStringList lines;
    QSqlQuery q(StatementFixture::db());
    q.exec(QStringLiteral("SELECT 'to', toNumero, toPvm, toSelite, vitlID, viTyyppi, viArvo, viAutomaatti, "
                          "viSelite, viID FROM \"to\" "
                          "JOIN vi ON vitoID = toID WHERE toAutomaatti <> 0 "
                          "UNION ALL SELECT 'toE', toENumero, toEPvm, toESelite, viEtlID, viETyyppi, "
                          "viEArvo, viEAutomaatti, viESelite, viEID "
                          "FROM toE JOIN viE ON viEtoID = toEID WHERE toEAutomaatti <> 0 ORDER BY 1, 2, 10"));
    while (q.next()) {
        QStringList cells;
        for (int i = 0; i < 9; ++i)
            cells << (i == 6 ? QString::number(q.value(i).toLongLong() / 10000) : q.value(i).toString());
        lines << cells.join(u' ');
    }
    return lines;
}

int automaticRows()
{
    return StatementFixture::count(QStringLiteral("\"to\""), QStringLiteral("toAutomaatti <> 0"))
        + StatementFixture::count(QStringLiteral("vi"), QStringLiteral("viAutomaatti <> 0"))
        + StatementFixture::count(QStringLiteral("toE"), QStringLiteral("toEAutomaatti <> 0"))
        + StatementFixture::count(QStringLiteral("viE"), QStringLiteral("viEAutomaatti <> 0"));
}

// Vastaavaa's and Vastattavaa's totals of the computed balance sheet, this year and the last.
QStringList balanceTotals()
{
    QSqlQuery q(StatementFixture::db());
    q.exec(QStringLiteral(
        "SELECT taseteksti, taseLoppusaldo, taseLoppusaldoEdellinen FROM tase WHERE taseMerkki = '**' "
        "AND taseTyyppi = 0 ORDER BY taseID"));
    QStringList totals;
    while (q.next())
        totals << QStringLiteral("%1 %2 %3")
                      .arg(q.value(0).toString())
                      .arg(q.value(1).toLongLong() / 10000)
                      .arg(q.value(2).toLongLong() / 10000);
    return totals;
}

} // namespace

class tst_ProfitEntries : public QObject {
    Q_OBJECT

    std::unique_ptr<StatementFixture> f;
    std::unique_ptr<ScriptedDialogs> dialogs;

private slots:
    void init()
    {
        f = std::make_unique<StatementFixture>();
        QVERIFY(f->ok);
        dialogs = std::make_unique<ScriptedDialogs>();
        StatementFixture::smallAssociation();
    }
    void cleanup()
    {
        QVERIFY2(dialogs->failures().isEmpty(), qPrintable(dialogs->failures().join(u'\n')));
        dialogs.reset();
        f.reset();
    }

    void refusals_data();
    void refusals();
    void postsTheResult_data();
    void postsTheResult();
    void twiceIsOnce();
    void periodWithinTheYear();
};

// Each refusal comes after the earlier automatic entries are gone, and posts nothing.
void tst_ProfitEntries::refusals_data()
{
    QTest::addColumn<QString>("sql");
    QTest::addColumn<int>("voittoTaseella");
    QTest::addColumn<QString>("message");
    const QString noAccount = QStringLiteral("Voittotiliä ei ole määritelty tuloslaskelmaan.");
    QTest::newRow("no profit row") << "UPDATE mr SET mrIsVoitto = 0" << 2 << noAccount;
    QTest::newRow("profit row without accounts")
        << "UPDATE mr SET mrTilit = '-1,' WHERE mrID = 4" << 2 << noAccount;
    QTest::newRow("balance sheet's account not set")
        << "" << 0 << "Taseen \"Tilikauden voitto\" tiliä ei ole määritelty asetuksissa.";
    QTest::newRow("same account") << "" << 7
                                  << "Voittotili tuloslaskelmassa on sama kuin voittotili "
                                     "taseella.\nTilikauden ylijäämän kirjauksia ei tehdä.";
}

void tst_ProfitEntries::refusals()
{
    QFETCH(QString, sql);
    QFETCH(int, voittoTaseella);
    QFETCH(QString, message);
    books(1000, 400, 500, 800);
    QVERIFY(ProfitEntries::post(f->db(), 1, QDate(2012, 1, 1), QDate(2012, 12, 31)).posted);
    QCOMPARE(automaticRows(), 6);
    if (!sql.isEmpty())
        QVERIFY(f->exec(sql));
    ProgramSettings::bookkeeping().VoittoTaseella = voittoTaseella;
    dialogs->clear();
    QVERIFY(!ProfitEntries::post(f->db(), 1, QDate(2012, 1, 1), QDate(2012, 12, 31)).posted);
    QCOMPARE(dialogs->transcript(), QStringList { QStringLiteral("information: ") + message });
    QCOMPARE(automaticRows(), 0);
}

// A profit goes as credits and a loss as debits to both profit accounts, in one voucher per
// year dated at the end; the income statement's profit row then shows the result and the
// balance sheet balances in both years.
void tst_ProfitEntries::postsTheResult_data()
{
    QTest::addColumn<QList<qint64>>("amounts"); // income, expense, previous income, previous expense
    QTest::addColumn<QStringList>("postings");
    QTest::addColumn<QStringList>("totals");
    QTest::newRow("profit this year, loss the last")
        << QList<qint64> { 1000, 400, 500, 800 }
        << QStringList { "to 4 2012-12-31 Automaattikirjaukset 7 K 600 1 Automaattikirjaukset",
               "to 4 2012-12-31 Automaattikirjaukset 2 K 600 1 Automaattikirjaukset",
               "toE 4 2011-12-31 Automaattikirjaukset 7 D 300 1 Automaattikirjaukset",
               "toE 4 2011-12-31 Automaattikirjaukset 2 D 300 1 Automaattikirjaukset" }
        << QStringList { "Vastaavaa 1600 700", "Vastattavaa 1600 700" };
    QTest::newRow("loss this year, no result the last")
        << QList<qint64> { 100, 400, 0, 0 }
        << QStringList { "to 4 2012-12-31 Automaattikirjaukset 7 D 300 1 Automaattikirjaukset",
               "to 4 2012-12-31 Automaattikirjaukset 2 D 300 1 Automaattikirjaukset" }
        << QStringList { "Vastaavaa 700 1000", "Vastattavaa 700 1000" };
}

void tst_ProfitEntries::postsTheResult()
{
    QFETCH(QList<qint64>, amounts);
    QFETCH(QStringList, postings);
    QFETCH(QStringList, totals);
    books(amounts[0], amounts[1], amounts[2], amounts[3]);
    f->exec(QStringLiteral("UPDATE \"to\" SET toNumero = 3 WHERE toNumero = 1 AND toAvaustosite = 0"));
    f->exec(QStringLiteral("UPDATE toE SET toENumero = 3 WHERE toENumero = 1 AND toEAvaustosite = 0"));
    const ProfitEntries::Outcome outcome
        = ProfitEntries::post(f->db(), 1, QDate(2012, 1, 1), QDate(2012, 12, 31));
    QVERIFY(outcome.posted);
    QCOMPARE(outcome.current.raw() / 10000, amounts[0] - amounts[1]);
    QCOMPARE(outcome.previous.raw() / 10000, amounts[2] - amounts[3]);
    QCOMPARE(::postings(), postings);

    IncomeStatement::run(f->db(), StatementOptions::forPeriod(1, QDate(2012, 1, 1), QDate(2012, 12, 31)));
    QCOMPARE(f->amount(QStringLiteral("tula"), QStringLiteral("tulaToteutunutKuluvaAlusta"),
                 QStringLiteral("Ylijäämä")),
        (amounts[0] - amounts[1]) * 100);
    QCOMPARE(f->amount(QStringLiteral("tula"), QStringLiteral("tulaToteutunutEdellinenAlusta"),
                 QStringLiteral("Ylijäämä")),
        (amounts[2] - amounts[3]) * 100);
    QVERIFY(
        BalanceSheet::run(f->db(), StatementOptions::forPeriod(2, QDate(2012, 1, 1), QDate(2012, 12, 31))));
    QCOMPARE(balanceTotals(), totals);
}

void tst_ProfitEntries::twiceIsOnce()
{
    books(1000, 400, 500, 800);
    QVERIFY(ProfitEntries::post(f->db(), 1, QDate(2012, 1, 1), QDate(2012, 12, 31)).posted);
    const QStringList once = postings();
    const int previousKey = f->value(QStringLiteral("SELECT MAX(toEID) FROM toE")).toInt();
    QVERIFY(ProfitEntries::post(f->db(), 1, QDate(2012, 1, 1), QDate(2012, 12, 31)).posted);
    QCOMPARE(postings(), once);
    QCOMPARE(f->value(QStringLiteral("SELECT MAX(toEID) FROM toE")).toInt(), previousKey);
    QCOMPARE(automaticRows(), 6);
}

// A period that starts after the fiscal year: one voucher for the months before it and one for
// the period, so that both columns of the profit row are right.
void tst_ProfitEntries::periodWithinTheYear()
{
    books(0, 0, 0, 0);
    f->post(QStringLiteral("2012-01-20"), 1, 3, 10000);
    f->post(QStringLiteral("2012-04-20"), 1, 3, 30000);
    f->post(QStringLiteral("2012-07-20"), 1, 3, 5000);
    f->post(QStringLiteral("2011-04-20"), 5, 1, 2000, true);
    const ProfitEntries::Outcome outcome
        = ProfitEntries::post(f->db(), 1, QDate(2012, 3, 1), QDate(2012, 5, 31));
    QCOMPARE(outcome.vouchers, 3);
    QStringList dates;
    for (const QString& p : postings())
        dates << p.section(u' ', 0, 0) + u' ' + p.section(u' ', 2, 2) + u' ' + p.section(u' ', 5, 6);
    QCOMPARE(dates,
        (QStringList { "to 2012-02-29 K 100", "to 2012-02-29 K 100", "to 2012-05-31 K 300",
            "to 2012-05-31 K 300", "toE 2011-05-31 D 20", "toE 2011-05-31 D 20" }));
    IncomeStatement::run(f->db(), StatementOptions::forPeriod(1, QDate(2012, 3, 1), QDate(2012, 5, 31)));
    const QString profit = QStringLiteral("Ylijäämä");
    QCOMPARE(f->amount(QStringLiteral("tula"), QStringLiteral("tulaToteutunutKuluva"), profit), 30000);
    QCOMPARE(f->amount(QStringLiteral("tula"), QStringLiteral("tulaToteutunutKuluvaAlusta"), profit), 40000);
    QCOMPARE(f->amount(QStringLiteral("tula"), QStringLiteral("tulaToteutunutEdellinen"), profit), -2000);
    QCOMPARE(
        f->amount(QStringLiteral("tula"), QStringLiteral("tulaToteutunutEdellinenAlusta"), profit), -2000);
}

QTEST_GUILESS_MAIN(tst_ProfitEntries)
#include "tst_ProfitEntries.moc"
