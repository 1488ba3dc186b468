#include "StatementFixture.h"
#include "core/DatabaseError.h"
#include "statements/IncomeStatement.h"

#include <QTest>
#include <memory>

namespace {

// Accounts: 1 bank, 3 and 4 income, 5 expenses; an empty income statement 1.
void chart()
{
    StatementFixture::account(1, 1910, QStringLiteral("Pankkitili"));
    StatementFixture::account(3, 3000, QStringLiteral("Myynti"));
    StatementFixture::account(4, 3010, QStringLiteral("Avustukset"));
    StatementFixture::account(5, 4000, QStringLiteral("Kulut"));
    StatementFixture::malli(1, QStringLiteral("Tuloslaskelma"), 1);
}

// A credit (positive) or debit (negative) on an account, against the bank.
void book(const QString& pvm, int account, qint64 cents, bool previous = false)
{
    if (cents >= 0)
        StatementFixture::post(pvm, 1, account, cents, previous);
    else
        StatementFixture::post(pvm, account, 1, -cents, previous);
}

StatementOptions options(const QDate& start = QDate(2012, 1, 1), const QDate& end = QDate(2012, 12, 31))
{
    return StatementOptions::forPeriod(1, start, end);
}

} // namespace

class tst_IncomeStatement : public QObject {
    Q_OBJECT

    std::unique_ptr<StatementFixture> f;

private slots:
    void init() { QVERIFY(StatementFixture::start(f, chart)); }
    void cleanup() { StatementFixture::finish(f); }

    // Entries on the row's side add and the others subtract; the period (February 2012), the year to
    // date and the same a year earlier each take their own dates and tables.
    void amounts_data()
    {
        QTest::addColumn<QString>("side");
        QTest::addColumn<bool>("debit"); // the entry on account 3
        QTest::addColumn<QString>("pvm");
        QTest::addColumn<bool>("previous");
        QTest::addColumn<QList<qint64>>("expected"); // kuluva, alusta, edellinen, edellinen alusta
        using L = QList<qint64>;
        const auto row = [](const char* tag, const char* side, bool debit, const char* pvm, bool previous,
                             const L& expected) {
            QTest::newRow(tag) << QString::fromLatin1(side) << debit << QString::fromLatin1(pvm) << previous
                               << expected;
        };
        row("debit on a K row", "K", true, "2012-02-10", false, L { -100, -100, 0, 0 });
        row("debit on a D row", "D", true, "2012-02-10", false, L { 100, 100, 0, 0 });
        row("before the period", "K", false, "2012-01-15", false, L { 0, 100, 0, 0 });
        row("first day", "K", false, "2012-02-01", false, L { 100, 100, 0, 0 });
        row("last day, a leap day", "K", false, "2012-02-29", false, L { 100, 100, 0, 0 });
        row("previous year before the period", "K", false, "2011-01-31", true, L { 0, 0, 0, 100 });
        // A period ending on 29 February ends on 28 February a year earlier.
        row("previous year's last day", "K", false, "2011-02-28", true, L { 0, 0, 100, 100 });
        row("previous-year dates in this year's tables", "K", false, "2011-02-01", false, L { 0, 0, 0, 0 });
    }

    void amounts()
    {
        QFETCH(QString, side);
        QFETCH(bool, debit);
        QFETCH(QString, pvm);
        QFETCH(bool, previous);
        QFETCH(QList<qint64>, expected);
        f->row({ .id = 1, .teksti = "Rivi", .tilit = "3,", .side = side, .turnover = true });
        book(pvm, 3, debit ? -10000 : 10000, previous);
        IncomeStatement::run(f->db(), options(QDate(2012, 2, 1), QDate(2012, 2, 29)));
        QList<qint64> actual;
        for (const char* column : { "tulaToteutunutKuluva", "tulaToteutunutKuluvaAlusta",
                 "tulaToteutunutEdellinen", "tulaToteutunutEdellinenAlusta" })
            actual << f->amount(QStringLiteral("tula"), QString::fromLatin1(column), QStringLiteral("Rivi"))
                    / 100;
        QCOMPARE(actual, expected);
    }

    // A percentage of a turnover of 0 is left empty; the change is counted against the year before.
    void percentages()
    {
        f->row({ .id = 1, .teksti = "Liikevaihto", .tilit = "4,", .turnover = true });
        f->row({ .id = 2, .teksti = "Rivi", .tilit = "3," });
        book(QStringLiteral("2012-03-01"), 3, 25000);
        book(QStringLiteral("2011-03-01"), 3, 20000, true);
        IncomeStatement::run(f->db(), options(QDate(2012, 3, 1), QDate(2012, 3, 31)));
        // Rivi's line: the same in the period columns and in the columns from the year's start.
        const QStringList cells = f->rows(QStringLiteral("tula")).at(2).split(u'|');
        QCOMPARE(cells.mid(5, 3), (QStringList { "-", "200.00", "25.00" }));
        QCOMPARE(cells.mid(9), (QStringList { "-", "200.00", "50.00", "25.00" }));
    }

    // Inside a group a formula line reads the totals so far and stays out of the group's total.
    // Without a turnover row the percentages of the turnover are not counted, and the user is told.
    void formulaInsideAGroup()
    {
        f->row({ .id = 4, .teksti = "Kulut" });
        f->row({ .id = 5, .teksti = "Henkilöstö", .parent = 4 });
        f->row({ .id = 6, .teksti = "Palkat", .parent = 5, .tilit = "5," });
        f->row({ .id = 7, .teksti = "Välisumma", .parent = 4, .kaava = "+5,", .equation = true });
        f->row({ .id = 9, .teksti = "Tulos", .kaava = "+4,", .equation = true });
        book(QStringLiteral("2012-02-01"), 5, -40000);
        IncomeStatement::run(f->db(), options());
        QVERIFY(f->dialogs.texts(ScriptedDialogs::Kind::Information).last().startsWith(u"Liikevaihtoriviä"));
        const QString kuluva = QStringLiteral("tulaToteutunutKuluva");
        QCOMPARE(f->amount(QStringLiteral("tula"), kuluva, QStringLiteral("Välisumma")), -40000);
        QCOMPARE(f->amount(QStringLiteral("tula"), kuluva, QStringLiteral("Kulut")), -40000);
    }

    // Terms come from the totals written so far, found by caption.
    void formulas_data()
    {
        QTest::addColumn<QString>("kaava");
        QTest::addColumn<qint64>("expected");
        QTest::newRow("earlier rows") << "+1,-2," << qint64(1400);
        QTest::newRow("missing row") << "+1,+999," << qint64(1000);
        QTest::newRow("a lowest-level row has no total") << "+7," << qint64(0);
        QTest::newRow("another template's row, caption without case") << "+21," << qint64(1000);
    }

    void formulas()
    {
        QFETCH(QString, kaava);
        QFETCH(qint64, expected);
        f->malli(2, QStringLiteral("Toinen"), 1);
        f->row({ .id = 1, .teksti = "Tuotot", .tilit = "3," });
        f->row({ .id = 2, .teksti = "Kulut", .tilit = "5," });
        f->row({ .id = 6, .teksti = "Ryhmä" });
        f->row({ .id = 7, .teksti = "Alarivi", .parent = 6, .tilit = "3," });
        f->row({ .id = 4, .teksti = "Kaava", .order = 8, .kaava = kaava, .equation = true });
        f->row({ .id = 21, .ma = 2, .teksti = "TUOTOT" });
        book(QStringLiteral("2012-02-01"), 3, 100000);
        book(QStringLiteral("2012-02-01"), 5, -40000);
        IncomeStatement::run(f->db(), options());
        QCOMPARE(f->amount(
                     QStringLiteral("tula"), QStringLiteral("tulaToteutunutKuluva"), QStringLiteral("Kaava")),
            expected * 100);
    }

    // A looked-up caption with an apostrophe ends the run and leaves the work table as it was.
    void apostropheInALookedUpCaption()
    {
        f->row({ .id = 1, .teksti = "Jäsenten 'oma' toiminta", .tilit = "3," });
        f->row({ .id = 2, .teksti = "Tulos", .kaava = "+3,", .equation = true });
        f->row({ .id = 3, .teksti = "Kulut", .tilit = "5," });
        IncomeStatement::run(f->db(), options());
        QCOMPARE(f->count(QStringLiteral("tula")), 4);
        f->exec(QStringLiteral("UPDATE mr SET mrKaava = '+1,' WHERE mrID = 2"));
        QVERIFY_THROWS_EXCEPTION(DatabaseError, IncomeStatement::run(f->db(), options()));
        QCOMPARE(f->count(QStringLiteral("tula")), 4);
    }
};

QTEST_GUILESS_MAIN(tst_IncomeStatement)
#include "tst_IncomeStatement.moc"
