#include "Golden.h"
#include "ModelChecks.h"
#include "ScriptedDialogs.h"
#include "StatementFixture.h"
#include "core/Dates.h"
#include "statements/Statements.h"

#include <QTest>

namespace {

qint32 templateOf(int kind)
{
    return StatementFixture::value(
        QStringLiteral("SELECT maID FROM ma WHERE maTyyppi = ? ORDER BY maID LIMIT 1"), { kind })
        .toInt();
}

// The same balanced vouchers every run over all but the profit accounts.
void generateYear()
{
    const BookkeepingSettings& s = ProgramSettings::bookkeeping();
    QList<int> accounts;
    QSqlQuery q(StatementFixture::db());
    q.prepare(
        QStringLiteral("SELECT tlID FROM tl WHERE tlID NOT IN (?, "
                       "(SELECT COALESCE(MIN(CAST(mrTilit AS INTEGER)), 0) FROM mr WHERE mrIsVoitto <> 0)) "
                       "ORDER BY tlID"));
    q.addBindValue(s.VoittoTaseella);
    q.exec();
    while (q.next())
        accounts << q.value(0).toInt();
    quint32 r = 12345;
    const auto next = [&r](qsizetype n) {
        r = r * 1664525u + 1013904223u;
        return int((r >> 8) % quint32(n));
    };
    for (int i = 0; i < 80; ++i)
        StatementFixture::post(Dates::toSql(s.TilikausiAlku.addDays(next(360))),
            accounts[next(accounts.size())], accounts[next(accounts.size())], 100 + next(500000));
}

// The year's income less expenses by the accounts, without the profit account and automatic entries.
qint64 resultByAccounts(qint32 profitAccount)
{
    return StatementFixture::value(
        QStringLiteral(
            "SELECT COALESCE(SUM(CASE WHEN viTyyppi = 'K' THEN viArvo ELSE -viArvo END), 0) FROM vi "
            "JOIN tl ON tlID = vitlID WHERE tlNumero >= 3000 AND tlID <> ? AND viAutomaatti = 0"),
        { profitAccount })
        .toLongLong();
}

QString tableText(const QString& table) { return StatementFixture::rows(table).join(u'\n') + u'\n'; }

} // namespace

class tst_Statements : public QObject {
    Q_OBJECT

    std::unique_ptr<ScriptedDialogs> dialogs;

private slots:
    void init() { dialogs = std::make_unique<ScriptedDialogs>(); }
    void cleanup()
    {
        DBC::instance().SuljeDB();
        QVERIFY2(dialogs->failures().isEmpty(), qPrintable(dialogs->failures().join(u'\n')));
        dialogs.reset();
    }

    void resultAndBalanceOfEveryBook_data();
    void resultAndBalanceOfEveryBook();
    void demoStatements_data();
    void demoStatements();
};

// Every shipped book: the year's profit row is income less expenses, the balance sheet balances
// and a missing template is refused.
void tst_Statements::resultAndBalanceOfEveryBook_data()
{
    QTest::addColumn<QString>("file");
    for (const ModelChecks::ShippedBook& book : ModelChecks::shippedBooks())
        QTest::newRow(qPrintable(book.name)) << book.file;
}

void tst_Statements::resultAndBalanceOfEveryBook()
{
    QFETCH(QString, file);
    TestEnv env;
    QVERIFY(StatementFixture::openShipped(env, file));
    const QSqlDatabase db = DBC::instance().AvaaDB();
    generateYear();
    const BookkeepingSettings& s = ProgramSettings::bookkeeping();
    const qint32 income = templateOf(1);
    const qint32 balance = templateOf(2);

    QVERIFY(Statements::compute(db, StatementOptions::forPeriod(income, s.TilikausiAlku, s.TilikausiLoppu)));
    QSqlQuery profit(db);
    profit.prepare(QStringLiteral(
        "SELECT mrTeksti, CAST(mrTilit AS INTEGER) FROM mr WHERE mrmaID = ? AND mrIsVoitto <> 0"));
    profit.addBindValue(income);
    QVERIFY(profit.exec() && profit.next());
    const qint64 result = resultByAccounts(profit.value(1).toInt()) / 100;
    QVERIFY(result != 0);
    QCOMPARE(StatementFixture::amount(QStringLiteral("tula"), QStringLiteral("tulaToteutunutKuluvaAlusta"),
                 profit.value(0).toString()),
        result);

    QVERIFY(Statements::compute(db, StatementOptions::forPeriod(balance, s.TilikausiAlku, s.TilikausiLoppu)));
    const QString column = QStringLiteral("taseLoppusaldo");
    const qint64 assets
        = StatementFixture::amount(QStringLiteral("tase"), column, QStringLiteral("Vastaavaa"));
    QVERIFY(assets != 0 && assets != StatementFixture::Missing);
    QCOMPARE(StatementFixture::amount(QStringLiteral("tase"), column, QStringLiteral("Vastattavaa")), assets);
    QVERIFY2(dialogs->shown().isEmpty(), qPrintable(dialogs->transcript().join(u'\n')));

    // A template that is not there is refused before anything is written.
    QVERIFY(!Statements::compute(db, StatementOptions::forPeriod(999, s.TilikausiAlku, s.TilikausiLoppu)));
    QCOMPARE(dialogs->transcript(), QStringList { "information: Valittua mallia ei löydy." });
    QCOMPARE(StatementFixture::count(QStringLiteral("\"to\""), QStringLiteral("toAutomaatti <> 0")), 0);
}

// The demo's statements for whole and part years, by account and by groups, as golden files.
void tst_Statements::demoStatements_data()
{
    QTest::addColumn<QString>("golden");
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("startMonth"); // 0: the fiscal year's start
    QTest::addColumn<int>("endMonth"); // 0: the fiscal year's end
    QTest::addColumn<bool>("perAccount");
    QTest::addColumn<bool>("groupsOnly");
    QTest::newRow("income statement") << "tula_demo" << 1 << 0 << 0 << false << false;
    QTest::newRow("spring by account") << "tula_demo_kevat_tileittain" << 1 << 3 << 5 << true << false;
    QTest::newRow("income statement, groups") << "tula_demo_ryhmat" << 1 << 0 << 0 << false << true;
    QTest::newRow("balance sheet") << "tase_demo" << 2 << 0 << 0 << false << false;
    QTest::newRow("balance sheet by account") << "tase_demo_tileittain" << 2 << 0 << 0 << true << false;
    QTest::newRow("balance sheet at midsummer, groups")
        << "tase_demo_kesakuu_ryhmat" << 2 << 0 << 6 << false << true;
}

void tst_Statements::demoStatements()
{
    QFETCH(QString, golden);
    QFETCH(int, kind);
    QFETCH(int, startMonth);
    QFETCH(int, endMonth);
    QFETCH(bool, perAccount);
    QFETCH(bool, groupsOnly);
    TestEnv env;
    QVERIFY(StatementFixture::openShipped(env, QStringLiteral("demo1.mdb")));
    const BookkeepingSettings& s = ProgramSettings::bookkeeping();
    const int year = s.TilikausiAlku.year();
    const QDate start = startMonth == 0 ? s.TilikausiAlku : QDate(year, startMonth, 1);
    const QDate end = endMonth == 0 ? s.TilikausiLoppu : QDate(year, endMonth, 1).addMonths(1).addDays(-1);
    StatementOptions o = StatementOptions::forPeriod(templateOf(kind), start, end);
    o.perAccount = perAccount;
    o.groupsOnly = groupsOnly;
    // A second run replaces the first one's lines.
    QVERIFY(Statements::compute(DBC::instance().AvaaDB(), o));
    QVERIFY(Statements::compute(DBC::instance().AvaaDB(), o));
    VERIFY_GOLDEN(golden, tableText(kind == 1 ? QStringLiteral("tula") : QStringLiteral("tase")));
}

QTEST_GUILESS_MAIN(tst_Statements)
#include "tst_Statements.moc"
