#include "StatementFixture.h"
#include "core/DatabaseError.h"
#include "statements/IncomeStatement.h"

#include <QTest>
#include <memory>

namespace {

// Accounts: 1 bank, 3 and 4 income, 5 and 6 expenses, 7 the result; an empty income statement 1.
void chart()
{
    StatementFixture::account(1, 1910, QStringLiteral("Pankkitili"));
    StatementFixture::account(3, 3000, QStringLiteral("Myynti"));
    StatementFixture::account(4, 3010, QStringLiteral("Avustukset"));
    StatementFixture::account(5, 4000, QStringLiteral("Kulut"));
    StatementFixture::account(6, 4010, QStringLiteral("Vuokrat"));
    StatementFixture::account(7, 9990, QStringLiteral("Tulos"));
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

using Row = StatementFixture::Row;

} // namespace

Q_DECLARE_METATYPE(QList<StatementFixture::Row>)

class tst_IncomeStatement : public QObject {
    Q_OBJECT

    std::unique_ptr<StatementFixture> f;

private slots:
    void init() { QVERIFY(StatementFixture::start(f, chart)); }
    void cleanup() { StatementFixture::finish(f); }

    void amounts_data();
    void amounts();
    void percentages_data();
    void percentages();
    void formulaInsideAGroup();
    void perAccount();
    void formulas_data();
    void formulas();
    void apostropheInALookedUpCaption();
    void noTurnoverRow();
    void damagedTemplatesFinish_data();
    void damagedTemplatesFinish();
};

// Entries on the row's side add and the others subtract; the period (February 2012), the year to
// date and the same a year earlier each take their own dates and tables.
void tst_IncomeStatement::amounts_data()
{
    QTest::addColumn<QString>("side");
    QTest::addColumn<QString>("tilit");
    QTest::addColumn<QString>("type"); // of the entry on account 3
    QTest::addColumn<QString>("pvm");
    QTest::addColumn<bool>("previous");
    QTest::addColumn<QList<qint64>>("expected"); // kuluva, alusta, edellinen, edellinen alusta
    using L = QList<qint64>;
    const auto row = [](const char* tag, const char* side, const char* tilit, const char* type,
                         const char* pvm, bool previous, const L& expected) {
        QTest::newRow(tag) << QString::fromLatin1(side) << QString::fromLatin1(tilit)
                           << QString::fromLatin1(type) << QString::fromLatin1(pvm) << previous << expected;
    };
    row("credit on a K row", "K", "3,", "K", "2012-02-10", false, L { 100, 100, 0, 0 });
    row("debit on a K row", "K", "3,", "D", "2012-02-10", false, L { -100, -100, 0, 0 });
    row("debit on a D row", "D", "3,", "D", "2012-02-10", false, L { 100, 100, 0, 0 });
    row("type in lower case", "K", "3,", "k", "2012-02-10", false, L { 100, 100, 0, 0 });
    row("unknown account", "K", "999,", "K", "2012-02-10", false, L { 0, 0, 0, 0 });
    row("before the period", "K", "3,", "K", "2012-01-15", false, L { 0, 100, 0, 0 });
    row("first day", "K", "3,", "K", "2012-02-01", false, L { 100, 100, 0, 0 });
    row("last day, a leap day", "K", "3,", "K", "2012-02-29", false, L { 100, 100, 0, 0 });
    row("previous year's first day", "K", "3,", "K", "2011-02-01", true, L { 0, 0, 100, 100 });
    row("previous year before it", "K", "3,", "K", "2011-01-31", true, L { 0, 0, 0, 100 });
    // A period ending on 29 February ends on 28 February a year earlier.
    row("previous year's last day", "K", "3,", "K", "2011-02-28", true, L { 0, 0, 100, 100 });
    row("previous-year dates in this year's tables", "K", "3,", "K", "2011-02-01", false, L { 0, 0, 0, 0 });
}

void tst_IncomeStatement::amounts()
{
    QFETCH(QString, side);
    QFETCH(QString, tilit);
    QFETCH(QString, type);
    QFETCH(QString, pvm);
    QFETCH(bool, previous);
    QFETCH(QList<qint64>, expected);
    f->row({ .id = 1, .teksti = "Rivi", .tilit = tilit, .side = side, .turnover = true });
    const int to = f->voucher(pvm, previous);
    f->entry(to, 3, type, 10000, previous);
    f->entry(to, 1, type == u"D" ? QStringLiteral("K") : QStringLiteral("D"), 10000, previous);
    IncomeStatement::run(f->db(), options(QDate(2012, 2, 1), QDate(2012, 2, 29)));
    QList<qint64> actual;
    for (const char* column : { "tulaToteutunutKuluva", "tulaToteutunutKuluvaAlusta",
             "tulaToteutunutEdellinen", "tulaToteutunutEdellinenAlusta" })
        actual << f->amount(QStringLiteral("tula"), QString::fromLatin1(column), QStringLiteral("Rivi"))
                / 100;
    QCOMPARE(actual, expected);
}

// Percentages of the turnover and of the change are empty when their divisor is 0.
void tst_IncomeStatement::percentages_data()
{
    QTest::addColumn<qint64>("turnover");
    QTest::addColumn<qint64>("current");
    QTest::addColumn<qint64>("previous");
    QTest::addColumn<QString>("ofTurnover");
    QTest::addColumn<QString>("change");
    const auto row
        = [](qint64 turnover, qint64 current, qint64 previous, const char* ofTurnover, const char* change) {
              QTest::addRow("turnover %lld, %lld to %lld", turnover, previous, current)
                  << turnover << current << previous << QString::fromLatin1(ofTurnover)
                  << QString::fromLatin1(change);
          };
    row(1000, 500, 0, "50.00", "-");
    row(0, 250, 250, "-", "0.00");
    row(-1000, 250, 1, "-25.00", "24900.00");
}

void tst_IncomeStatement::percentages()
{
    QFETCH(qint64, turnover);
    QFETCH(qint64, current);
    QFETCH(qint64, previous);
    QFETCH(QString, ofTurnover);
    QFETCH(QString, change);
    f->row({ .id = 1, .teksti = "Liikevaihto", .tilit = "4,", .turnover = true });
    f->row({ .id = 2, .teksti = "Rivi", .tilit = "3," });
    if (turnover != 0)
        book(QStringLiteral("2012-03-01"), 4, turnover * 100);
    if (current != 0)
        book(QStringLiteral("2012-03-01"), 3, current * 100);
    if (previous != 0)
        book(QStringLiteral("2011-03-01"), 3, previous * 100, true);
    IncomeStatement::run(f->db(), options(QDate(2012, 3, 1), QDate(2012, 3, 31)));
    // Rivi's line: the same in the period columns and in the columns from the year's start.
    const QStringList cells = f->rows(QStringLiteral("tula")).at(2).split(u'|');
    QCOMPARE(cells.at(3), QStringLiteral("Rivi"));
    QCOMPARE(cells.at(5), ofTurnover);
    QCOMPARE(cells.at(7), change);
    QCOMPARE(cells.at(9), ofTurnover);
    QCOMPARE(cells.at(12), change);
}

// A formula inside a group, and progress by main rows.
void tst_IncomeStatement::formulaInsideAGroup()
{
    f->row({ .id = 1, .teksti = "Tuotot" });
    f->row({ .id = 2, .teksti = "Myynti", .parent = 1, .tilit = "3,", .turnover = true });
    f->row({ .id = 4, .teksti = "Kulut" });
    f->row({ .id = 5, .teksti = "Henkilöstö", .parent = 4 });
    f->row({ .id = 6, .teksti = "Palkat", .parent = 5, .tilit = "5," });
    f->row({ .id = 7, .teksti = "Välisumma", .parent = 4, .kaava = "+5,", .equation = true });
    f->row({ .id = 8, .teksti = "Vuokrat", .parent = 4, .tilit = "6," });
    f->row({ .id = 9, .teksti = "Tulos", .kaava = "+1,+4,", .equation = true });
    f->row({ .id = 10, .teksti = "Ylijäämä", .tilit = "7,", .profit = true });
    book(QStringLiteral("2012-02-01"), 3, 100000);
    book(QStringLiteral("2012-02-01"), 5, -40000);
    book(QStringLiteral("2012-02-01"), 6, -10000);
    book(QStringLiteral("2011-02-01"), 3, 50000, true);
    StatementOptions o = options();
    QList<int> progress;
    o.progress = [&progress](int done, int total) { progress << done << total; };
    IncomeStatement::run(f->db(), o);
    QCOMPARE(progress, (QList<int> { 1, 4, 2, 4, 3, 4, 4, 4 }));
    // Every other kind of line is in the golden files; inside a group a formula line reads the
    // totals so far and stays out of the group's total.
    const QStringList lines = f->rows(QStringLiteral("tula"));
    QCOMPARE(lines.size(), 15);
    QCOMPARE(lines.mid(7, 5),
        (QStringList { "1|**|1|Henkilöstö|-400.00|-40.00|0.00|-|-400.00|-40.00|0.00|-400.00|-",
            "1|-|0|-|-|-|-|-|-|-|-|-|-",
            "1|**|1|Välisumma|-400.00|-40.00|0.00|-|-400.00|-40.00|0.00|-400.00|-",
            "1||0|Vuokrat|-100.00|-10.00|0.00|-|-100.00|-10.00|0.00|-100.00|-",
            "0|**|1|Kulut|-500.00|-50.00|0.00|-|-500.00|-50.00|0.00|-500.00|-" }));
    QCOMPARE(f->value(QStringLiteral("SELECT COUNT(*) FROM tula WHERE tulamrID = 6")).toInt(), 1);
}

// A line per account in the list's order; an unknown account takes the row's caption.
void tst_IncomeStatement::perAccount()
{
    f->row({ .id = 1, .teksti = "Tuotot" });
    f->row({ .id = 2, .teksti = "Myynti", .parent = 1, .tilit = "4,3,99," });
    f->row({ .id = 3, .teksti = "Tyhjä", .parent = 1 });
    book(QStringLiteral("2012-02-01"), 3, 100000);
    book(QStringLiteral("2012-02-01"), 4, 20000);
    StatementOptions o = options();
    o.perAccount = true;
    f->dialogs.clear();
    IncomeStatement::run(f->db(), o);
    QStringList captions;
    for (const QString& line : f->rows(QStringLiteral("tula")))
        captions << line.section(u'|', 0, 1) + u' ' + line.section(u'|', 3, 4);
    QCOMPARE(captions,
        (QStringList { "0| Tuotot|-", "1| Myynti|-", "2| 3010 Avustukset|200.00", "2| 3000 Myynti|1000.00",
            "2| Myynti|0.00", "1|** Myynti|1200.00", "1| Tyhjä|0.00", "0|** Tuotot|1200.00" }));
}

// Terms come from the totals written so far, found by caption.
void tst_IncomeStatement::formulas_data()
{
    QTest::addColumn<QString>("kaava");
    QTest::addColumn<qint64>("expected");
    QTest::newRow("earlier rows") << "+1,-2," << qint64(1400);
    QTest::newRow("a later row is missed") << "+1,-5," << qint64(1000);
    QTest::newRow("duplicate caption finds the first") << "+8," << qint64(1000);
    QTest::newRow("missing row") << "+1,+999," << qint64(1000);
    QTest::newRow("not a number") << "+1,+x," << qint64(1000);
    QTest::newRow("other sign subtracts") << "+1,*2," << qint64(1400);
    QTest::newRow("a lowest-level row has no total") << "+7," << qint64(0);
    QTest::newRow("a row of another template by its caption") << "+20," << qint64(1000);
    QTest::newRow("caption compared without case") << "+21," << qint64(1000);
}

void tst_IncomeStatement::formulas()
{
    QFETCH(QString, kaava);
    QFETCH(qint64, expected);
    f->malli(2, QStringLiteral("Toinen"), 1);
    f->row({ .id = 1, .teksti = "Tuotot", .tilit = "3," });
    f->row({ .id = 2, .teksti = "Kulut", .tilit = "5," });
    f->row({ .id = 3, .teksti = "Sama", .tilit = "3," });
    f->row({ .id = 8, .teksti = "Sama", .order = 5, .tilit = "4," });
    f->row({ .id = 6, .teksti = "Ryhmä" });
    f->row({ .id = 7, .teksti = "Alarivi", .parent = 6, .tilit = "3," });
    f->row({ .id = 4, .teksti = "Kaava", .order = 8, .kaava = kaava, .equation = true });
    f->row({ .id = 5, .teksti = "Myöhempi", .order = 9, .tilit = "4," });
    f->row({ .id = 20, .ma = 2, .teksti = "Tuotot" });
    f->row({ .id = 21, .ma = 2, .teksti = "TUOTOT" });
    book(QStringLiteral("2012-02-01"), 3, 100000);
    book(QStringLiteral("2012-02-01"), 4, 77700);
    book(QStringLiteral("2012-02-01"), 5, -40000);
    IncomeStatement::run(f->db(), options());
    QCOMPARE(
        f->amount(QStringLiteral("tula"), QStringLiteral("tulaToteutunutKuluva"), QStringLiteral("Kaava")),
        expected * 100);
}

// A looked-up caption with an apostrophe ends the run and leaves the work table as it was.
void tst_IncomeStatement::apostropheInALookedUpCaption()
{
    f->row({ .id = 1, .teksti = "Jäsenten 'oma' toiminta", .tilit = "3," });
    f->row({ .id = 2, .teksti = "Tulos", .kaava = "+3,", .equation = true });
    f->row({ .id = 3, .teksti = "Kulut", .tilit = "5," });
    f->dialogs.clear();
    IncomeStatement::run(f->db(), options());
    QCOMPARE(f->count(QStringLiteral("tula")), 4);
    f->exec(QStringLiteral("UPDATE mr SET mrKaava = '+1,' WHERE mrID = 2"));
    try {
        IncomeStatement::run(f->db(), options());
        QFAIL("the formula looked up a caption with an apostrophe");
    } catch (const DatabaseError& e) {
        QVERIFY(e.text().contains(QStringLiteral("\"Jäsenten 'oma' toiminta\" nimessä on heittomerkki")));
    }
    QCOMPARE(f->count(QStringLiteral("tula")), 4);
}

void tst_IncomeStatement::noTurnoverRow()
{
    f->row({ .id = 1, .teksti = "Tuotot", .tilit = "3," });
    book(QStringLiteral("2012-02-01"), 3, 100000);
    f->dialogs.clear();
    IncomeStatement::run(f->db(), options());
    // The template has no profit row either: the profit entries are refused first, as they come
    // before the statement.
    QCOMPARE(f->dialogs.transcript(),
        (QStringList { "information: Voittotiliä ei ole määritelty tuloslaskelmaan.",
            "information: Liikevaihtoriviä ei ole määritelty.\nSuhdelukuja liikevaihtoon ei voida "
            "laskea ilman liikevaihtorivin määrittelyä." }));
    QCOMPARE(f->rows(QStringLiteral("tula")), QStringList { "0|**|1|Tuotot|1000.00|-|-|-|1000.00|-|-|-|-" });
}

// A damaged or empty template: the run finishes with what the tree holds.
void tst_IncomeStatement::damagedTemplatesFinish_data()
{
    QTest::addColumn<QList<Row>>("rows");
    QTest::addColumn<int>("lines");
    QTest::newRow("empty template") << QList<Row> {} << 0;
    QTest::newRow("cycle outside the tree") << QList<Row> { { .id = 1, .teksti = "A", .tilit = "3," },
        { .id = 2, .teksti = "B", .parent = 3, .turnover = true },
        { .id = 3, .teksti = "C", .parent = 2, .tilit = "4," }, { .id = 4, .teksti = "D", .parent = 4 } }
                                            << 1;
    QTest::newRow("missing group") << QList<Row> { { .id = 1, .teksti = "A", .parent = 77 } } << 0;
    QTest::newRow("formula naming itself")
        << QList<Row> { { .id = 1, .teksti = "F", .kaava = "+1,+1,", .equation = true } } << 1;
}

void tst_IncomeStatement::damagedTemplatesFinish()
{
    QFETCH(QList<Row>, rows);
    QFETCH(int, lines);
    for (const Row& r : rows)
        f->row(r);
    book(QStringLiteral("2012-02-01"), 3, 100000);
    book(QStringLiteral("2012-02-01"), 4, 100000);
    f->dialogs.clear();
    IncomeStatement::run(f->db(), options());
    QCOMPARE(f->count(QStringLiteral("tula")), lines);
}

QTEST_GUILESS_MAIN(tst_IncomeStatement)
#include "tst_IncomeStatement.moc"
