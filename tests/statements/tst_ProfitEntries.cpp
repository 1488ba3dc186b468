#include "StatementFixture.h"
#include "statements/BalanceSheet.h"
#include "statements/IncomeStatement.h"
#include "statements/ProfitEntries.h"

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

// The computed entries as text: year, date, account, type and whole euros.
QStringList postings(const ProfitEntries::Outcome& outcome)
{
    QStringList lines;
    for (const ComputedEntry& e : outcome.entries)
        lines << QStringLiteral("%1 %2 %3 %4 %5")
                     .arg(e.year == FiscalYear::Current ? QStringLiteral("to") : QStringLiteral("toE"),
                         e.date.toString(Qt::ISODate))
                     .arg(e.account)
                     .arg(e.type)
                     .arg(e.amount.raw() / 10000);
    return lines;
}

int automaticRows()
{
    return StatementFixture::count(QStringLiteral("\"to\""), QStringLiteral("toAutomaatti <> 0"))
        + StatementFixture::count(QStringLiteral("vi"), QStringLiteral("viAutomaatti <> 0"))
        + StatementFixture::count(QStringLiteral("toE"), QStringLiteral("toEAutomaatti <> 0"))
        + StatementFixture::count(QStringLiteral("viE"), QStringLiteral("viEAutomaatti <> 0"));
}

} // namespace

class tst_ProfitEntries : public QObject {
    Q_OBJECT

    std::unique_ptr<StatementFixture> f;

private slots:
    void init() { QVERIFY(StatementFixture::start(f, StatementFixture::smallAssociation)); }
    void cleanup() { StatementFixture::finish(f); }

    void refusals_data();
    void refusals();
    void countsTheResult_data();
    void countsTheResult();
    void storedAutomaticEntriesIgnored();
    void periodWithinTheYear();
};

// A refusal says why and counts nothing.
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
    if (!sql.isEmpty())
        QVERIFY(f->exec(sql));
    ProgramSettings::bookkeeping().VoittoTaseella = voittoTaseella;
    const ProfitEntries::Outcome outcome
        = ProfitEntries::compute(f->db(), 1, QDate(2012, 1, 1), QDate(2012, 12, 31));
    QVERIFY(!outcome.posted);
    QCOMPARE(outcome.refusal, message);
    QVERIFY(outcome.entries.empty());
}

// Profit as credits, loss as debits on both profit accounts at each year's end.
void tst_ProfitEntries::countsTheResult_data()
{
    QTest::addColumn<QList<qint64>>("amounts"); // income, expense, previous income, previous expense
    QTest::addColumn<QStringList>("postings");
    QTest::newRow("profit this year, loss the last")
        << QList<qint64> { 1000, 400, 500, 800 }
        << QStringList { "to 2012-12-31 7 K 600", "to 2012-12-31 2 K 600", "toE 2011-12-31 7 D 300",
               "toE 2011-12-31 2 D 300" };
    QTest::newRow("loss this year, none the last")
        << QList<qint64> { 100, 400, 0, 0 } // no entries the year before
        << QStringList { "to 2012-12-31 7 D 300", "to 2012-12-31 2 D 300" };
}

void tst_ProfitEntries::countsTheResult()
{
    QFETCH(QList<qint64>, amounts);
    QFETCH(QStringList, postings);
    books(amounts[0], amounts[1], amounts[2], amounts[3]);
    const ProfitEntries::Outcome outcome
        = ProfitEntries::compute(f->db(), 1, QDate(2012, 1, 1), QDate(2012, 12, 31));
    QVERIFY(outcome.posted);
    QCOMPARE(outcome.current.raw() / 10000, amounts[0] - amounts[1]);
    QCOMPARE(outcome.previous.raw() / 10000, amounts[2] - amounts[3]);
    QCOMPARE(::postings(outcome), postings);
}

// Automatic vouchers an earlier version stored are left out: nothing counts twice.
void tst_ProfitEntries::storedAutomaticEntriesIgnored()
{
    books(1000, 400, 500, 800);
    f->exec(QStringLiteral("INSERT INTO \"to\" (toID, toNumero, toPvm, toSelite, toAutomaatti) "
                           "VALUES (900, 93, '2012-12-31', 'Automaattikirjaukset', 1)"));
    f->exec(QStringLiteral("INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viAutomaatti) VALUES "
                           "(900, 7, 'K', 5000000, 1), (900, 2, 'K', 5000000, 1)"));
    f->exec(QStringLiteral("INSERT INTO toE (toEID, toENumero, toEPvm, toESelite, toEAutomaatti) "
                           "VALUES (900, 93, '2011-12-31', 'Automaattikirjaukset', 1)"));
    f->exec(QStringLiteral("INSERT INTO viE (viEtoID, viEtlID, viETyyppi, viEArvo, viEAutomaatti) VALUES "
                           "(900, 7, 'D', 7000000, 1), (900, 2, 'D', 7000000, 1)"));
    QVERIFY(
        BalanceSheet::run(f->db(), StatementOptions::forPeriod(2, QDate(2012, 1, 1), QDate(2012, 12, 31))));
    for (const QString& side : { QStringLiteral("Vastaavaa"), QStringLiteral("Vastattavaa") }) {
        QCOMPARE(f->amount(QStringLiteral("tase"), QStringLiteral("taseLoppusaldo"), side), 160000);
        QCOMPARE(f->amount(QStringLiteral("tase"), QStringLiteral("taseLoppusaldoEdellinen"), side), 70000);
    }
    QCOMPARE(f->amount(QStringLiteral("tula"), QStringLiteral("tulaToteutunutKuluvaAlusta"),
                 QStringLiteral("Ylijäämä")),
        60000);
}

// A period within the year: the months before it and the period have entries of their own.
void tst_ProfitEntries::periodWithinTheYear()
{
    books(0, 0, 0, 0);
    f->post(QStringLiteral("2012-01-20"), 1, 3, 10000);
    f->post(QStringLiteral("2012-04-20"), 1, 3, 30000);
    f->post(QStringLiteral("2012-07-20"), 1, 3, 5000);
    f->post(QStringLiteral("2011-04-20"), 5, 1, 2000, true);
    const ProfitEntries::Outcome outcome
        = ProfitEntries::compute(f->db(), 1, QDate(2012, 3, 1), QDate(2012, 5, 31));
    QCOMPARE(::postings(outcome),
        (QStringList { "to 2012-02-29 7 K 100", "to 2012-02-29 2 K 100", "to 2012-05-31 7 K 300",
            "to 2012-05-31 2 K 300", "toE 2011-05-31 7 D 20", "toE 2011-05-31 2 D 20" }));
    IncomeStatement::run(f->db(), StatementOptions::forPeriod(1, QDate(2012, 3, 1), QDate(2012, 5, 31)));
    const QString profit = QStringLiteral("Ylijäämä");
    QCOMPARE(f->amount(QStringLiteral("tula"), QStringLiteral("tulaToteutunutKuluva"), profit), 30000);
    QCOMPARE(f->amount(QStringLiteral("tula"), QStringLiteral("tulaToteutunutKuluvaAlusta"), profit), 40000);
    QCOMPARE(automaticRows(), 0);
}

QTEST_GUILESS_MAIN(tst_ProfitEntries)
#include "tst_ProfitEntries.moc"
