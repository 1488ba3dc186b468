#include "StatementFixture.h"
#include "statements/IncomeStatement.h"
#include "statements/ProfitEntries.h"

#include <QTest>
#include <memory>

namespace {

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

} // namespace

class tst_ProfitEntries : public QObject {
    Q_OBJECT

    std::unique_ptr<StatementFixture> f;

private slots:
    void init() { QVERIFY(StatementFixture::start(f, StatementFixture::smallAssociation)); }
    void cleanup() { StatementFixture::finish(f); }

    void refusals();
    void countsTheResult();
    void periodWithinTheYear();
};

// A refusal says why and counts nothing: the same account on both statements, no balance sheet
// account, no profit account (which is told first).
void tst_ProfitEntries::refusals()
{
    const auto refusal = [this] {
        const ProfitEntries::Outcome outcome
            = ProfitEntries::compute(f->db(), 1, QDate(2012, 1, 1), QDate(2012, 12, 31));
        return outcome.posted || !outcome.entries.empty() ? QString() : outcome.refusal;
    };
    ProgramSettings::bookkeeping().VoittoTaseella = 7;
    QVERIFY(refusal().contains(u"sama kuin"));
    ProgramSettings::bookkeeping().VoittoTaseella = 0;
    QVERIFY(refusal().startsWith(u"Taseen"));
    QVERIFY(f->exec(QStringLiteral("UPDATE mr SET mrIsVoitto = 0")));
    QVERIFY(refusal().endsWith(u"tuloslaskelmaan."));
}

// Profit as credits, loss as debits on both profit accounts at each year's end.
void tst_ProfitEntries::countsTheResult()
{
    f->post(QStringLiteral("2012-04-10"), 1, 3, 100000);
    f->post(QStringLiteral("2012-09-10"), 5, 1, 40000);
    f->post(QStringLiteral("2011-04-10"), 1, 3, 50000, true);
    f->post(QStringLiteral("2011-09-10"), 5, 1, 80000, true);
    const ProfitEntries::Outcome outcome
        = ProfitEntries::compute(f->db(), 1, QDate(2012, 1, 1), QDate(2012, 12, 31));
    QCOMPARE(::postings(outcome),
        (QStringList { "to 2012-12-31 7 K 600", "to 2012-12-31 2 K 600", "toE 2011-12-31 7 D 300",
            "toE 2011-12-31 2 D 300" }));
}

// A period within the year: the months before it and the period have entries of their own (none
// for a part without a result), which the income statement counts and nothing stores. An
// automatic voucher an earlier version stored is left out, so nothing counts twice.
void tst_ProfitEntries::periodWithinTheYear()
{
    f->post(QStringLiteral("2012-01-20"), 1, 3, 10000);
    f->post(QStringLiteral("2012-04-20"), 1, 3, 30000);
    f->post(QStringLiteral("2012-07-20"), 1, 3, 5000);
    f->post(QStringLiteral("2011-04-20"), 5, 1, 2000, true);
    f->exec(QStringLiteral("INSERT INTO \"to\" (toID, toNumero, toPvm, toSelite, toAutomaatti) "
                           "VALUES (900, 93, '2012-04-30', 'Automaattikirjaukset', 1)"));
    f->exec(QStringLiteral("INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viAutomaatti) VALUES "
                           "(900, 7, 'K', 5000000, 1), (900, 2, 'K', 5000000, 1)"));
    const ProfitEntries::Outcome outcome
        = ProfitEntries::compute(f->db(), 1, QDate(2012, 3, 1), QDate(2012, 5, 31));
    QCOMPARE(::postings(outcome),
        (QStringList { "to 2012-02-29 7 K 100", "to 2012-02-29 2 K 100", "to 2012-05-31 7 K 300",
            "to 2012-05-31 2 K 300", "toE 2011-05-31 7 D 20", "toE 2011-05-31 2 D 20" }));
    IncomeStatement::run(f->db(), StatementOptions::forPeriod(1, QDate(2012, 3, 1), QDate(2012, 5, 31)));
    const QString profit = QStringLiteral("Ylijäämä");
    QCOMPARE(f->amount(QStringLiteral("tula"), QStringLiteral("tulaToteutunutKuluva"), profit), 30000);
    QCOMPARE(f->amount(QStringLiteral("tula"), QStringLiteral("tulaToteutunutKuluvaAlusta"), profit), 40000);
    QCOMPARE(f->count(QStringLiteral("\"to\""), QStringLiteral("toAutomaatti <> 0 AND toID <> 900"))
            + f->count(QStringLiteral("toE"), QStringLiteral("toEAutomaatti <> 0")),
        0);
}

QTEST_GUILESS_MAIN(tst_ProfitEntries)
#include "tst_ProfitEntries.moc"
