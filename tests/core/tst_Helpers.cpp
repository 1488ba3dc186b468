#include "core/DatabaseError.h"
#include "core/Dates.h"
#include "core/ErrorText.h"
#include "core/Money.h"
#include "core/RecordText.h"
#include "core/ScopedConnection.h"

#include <QTest>
#include <cerrno>

#include <tuple>

class tst_Helpers : public QObject {
    Q_OBJECT

private slots:
    void moneyParse_data();
    void moneyParse();
    void moneyFormat_data();
    void moneyFormat();
    void moneySumsAreExact();
    void amountBySide();
    void datesParse_data();
    void datesParse();
    void datesStorageAndLiterals();
    void recordText();
    void errorTexts();
    void scriptRunsWhole();
};

void tst_Helpers::moneyParse_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<qint64>("raw");

    QTest::newRow("space thousands") << "1 234,50" << true << qint64(12345000);
    QTest::newRow("dot thousands, comma decimals") << "1.234,50" << true << qint64(12345000);
    QTest::newRow("dot thousands only") << "1.234.567" << true << qint64(12345670000);
    QTest::newRow("euro sign after") << QString::fromUtf8("12,50 €") << true << qint64(125000);
    QTest::newRow("euro sign before") << QString::fromUtf8("€12,50") << true << qint64(125000);
    QTest::newRow("leading comma") << ",5" << true << qint64(5000);
    QTest::newRow("fifth decimal rounds up") << "0,00005" << true << qint64(1);
    QTest::newRow("fifth decimal rounds down") << "0,00004" << true << qint64(0);
    QTest::newRow("negative rounds away from zero") << "-0,00005" << true << qint64(-1);
    QTest::newRow("many leading zeros") << "0000000000000000012,50" << true << qint64(125000);

    QTest::newRow("blank") << "   " << false << qint64(0);
    QTest::newRow("letters") << "abc" << false << qint64(0);
    QTest::newRow("trailing letters") << "12,50e" << false << qint64(0);
    QTest::newRow("two commas") << "1,2,3" << false << qint64(0);
    QTest::newRow("bad grouping") << "12 34,50" << false << qint64(0);
    QTest::newRow("huge") << "99999999999999" << false << qint64(0);
    QTest::newRow("arabic digits") << QString::fromUtf8("١٢") << false << qint64(0);
}

void tst_Helpers::moneyParse()
{
    QFETCH(QString, text);
    QFETCH(bool, valid);
    QFETCH(qint64, raw);
    const std::optional<Money> m = Money::parse(text);
    QCOMPARE(m.has_value(), valid);
    if (valid)
        QCOMPARE(m->raw(), raw);
}

void tst_Helpers::moneyFormat_data()
{
    QTest::addColumn<qint64>("raw");
    QTest::addColumn<QString>("plain");
    const QString nb = QString(QChar(0x00A0));
    QTest::newRow("millions") << qint64(12345678900000) << "1" + nb + "234" + nb + "567" + nb + "890,00";
    QTest::newRow("half cent rounds up") << qint64(50) << "0,01";
    QTest::newRow("negative half cent rounds away") << qint64(-50) << "-0,01";
    QTest::newRow("under half cent") << qint64(49) << "0,00";
}

void tst_Helpers::moneyFormat()
{
    QFETCH(qint64, raw);
    QFETCH(QString, plain);
    QCOMPARE(Money::fromRaw(raw).toString(), plain);
    QCOMPARE(Money::fromRaw(raw).toCurrencyString(), plain + QChar(0x00A0) + QString::fromUtf8("€"));
    // What Vorkam shows, it reads back (to the cent).
    QCOMPARE(Money::parse(plain)->raw(), Money::fromRaw(raw).roundedToCents().raw());
}

void tst_Helpers::moneySumsAreExact()
{
    // 0,10 added ten thousand times is exactly 1 000,00; a double would drift.
    Money sum;
    for (int i = 0; i < 10000; ++i)
        sum += *Money::parse(QStringLiteral("0,10"));
    QCOMPARE(sum, Money::fromCents(100000));
    QCOMPARE(Money::fromRaw(-123456).toPlainString(), QStringLiteral("-12.3456"));
}

// An amount counts plus on its own side and minus on the other; only the first letter counts.
void tst_Helpers::amountBySide()
{
    const std::tuple<const char*, const char*, qint64> rows[]
        = { { "D", "D", 100 }, { "K", "D", -100 }, { "K", "K", 100 }, { "Debet", "D", 100 } };
    for (const auto& [type, side, expected] : rows)
        QCOMPARE(
            ::amountBySide(QString::fromLatin1(type), QString::fromLatin1(side), Money::fromRaw(100)).raw(),
            expected);
}

void tst_Helpers::datesParse_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QDate>("expected");
    QTest::newRow("short form") << "5.9.2011" << QDate(2011, 9, 5);
    QTest::newRow("two-digit year 29 is 2029") << "1.1.29" << QDate(2029, 1, 1);
    QTest::newRow("two-digit year 30 is 1930") << "1.1.30" << QDate(1930, 1, 1);
    QTest::newRow("leap day of a common year") << "29.2.2011" << QDate();
    QTest::newRow("day 0") << "0.1.2011" << QDate();
    QTest::newRow("not a date") << "eilen" << QDate();
    QTest::newRow("three-digit year") << "1.1.201" << QDate();
    QTest::newRow("negative year") << "7.7.-007" << QDate();
    QTest::newRow("arabic digits") << QString::fromUtf8("١.١.٢٠١١") << QDate();
    // Without a year: the day within the period 1.7.2026–30.6.2027.
    QTest::newRow("day and month, spring") << "15.3" << QDate(2027, 3, 15);
    QTest::newRow("day and month, autumn, dot") << "15.9." << QDate(2026, 9, 15);
    QTest::newRow("day and month, invalid") << "31.2" << QDate();
}

void tst_Helpers::datesParse()
{
    QFETCH(QString, text);
    QFETCH(QDate, expected);
    QCOMPARE(Dates::parse(text, QDate(2026, 7, 1), QDate(2027, 6, 30)), expected);
}

void tst_Helpers::datesStorageAndLiterals()
{
    const QDate d(2011, 9, 5);
    QCOMPARE(Dates::format(d), QStringLiteral("5.9.2011"));
    QCOMPARE(Dates::toSql(d), QStringLiteral("2011-09-05"));
    QCOMPARE(Dates::fromSql(QStringLiteral("2011-09-05")), d);
    QCOMPARE(Dates::format(QDate()), QString());
}

void tst_Helpers::recordText()
{
    QCOMPARE(RecordText::storedName(QString()), QStringLiteral(" "));
    QCOMPARE(RecordText::storedName(QString(60, u'x')).size(), 50);
    QCOMPARE(RecordText::storedDescription(QString(300, u'y')).size(), 255);
    // A character outside the basic plane is never cut in half.
    const QString emoji = QString(49, u'a') + QString::fromUtf8("😀");
    QCOMPARE(RecordText::cut(emoji, 50), QString(49, u'a'));
}

// Engine and system words reach the user in Finnish where Vorkam knows them, and are never lost.
void tst_Helpers::errorTexts()
{
    QCOMPARE(ErrorText::technical(QStringLiteral("database disk image is malformed")),
        QStringLiteral("Tietokanta on vioittunut."));
    QCOMPARE(
        ErrorText::technical(QStringLiteral(" odd words ")), QStringLiteral("Tekninen tieto: odd words"));
    QCOMPARE(ErrorText::engine(13, QStringLiteral("database or disk is full")),
        QStringLiteral("13: Levyllä ei ole tilaa"));
    QCOMPARE(ErrorText::engine(1, QStringLiteral("no such table: x")),
        QStringLiteral("1: Tietokantavirhe\nTekninen tieto: no such table: x"));
    QCOMPARE(ErrorText::system(ENOSPC), QStringLiteral("28: Levyllä ei ole tilaa"));
}

// A script runs as the engine splits it: a trigger's inner semicolons, quoted ones and comments.
void tst_Helpers::scriptRunsWhole()
{
    ScopedConnection memory(QStringLiteral(":memory:"));
    Sql::runScript(memory.db(),
        QStringLiteral("CREATE TABLE t (a TEXT); -- comment; not a statement\n"
                       "CREATE TRIGGER k AFTER INSERT ON t BEGIN UPDATE t SET a = a || ';'; END;\n"
                       "/* block; */ INSERT INTO t VALUES ('O''Brien;');"));
    QCOMPARE(
        Sql::scalar(memory.db(), QStringLiteral("SELECT a FROM t")).toString(), QStringLiteral("O'Brien;;"));
    QVERIFY_THROWS_EXCEPTION(
        DatabaseError, Sql::runScript(memory.db(), QStringLiteral("INSERT INTO puuttuu VALUES (1);")));
}

QTEST_GUILESS_MAIN(tst_Helpers)
#include "tst_Helpers.moc"
