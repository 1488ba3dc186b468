#include "AccountsFixture.h"
#include "accounts/ChartOfAccounts.h"

using namespace ChartOfAccounts;

namespace {

QStringList numbers(const Puu& puu)
{
    QStringList list;
    for (const Rivi& r : puu.rivit)
        list.append(QString::number(r.numero) + u':' + QString::number(r.ryhma));
    return list;
}

const QVariant Null = QVariant(QMetaType(QMetaType::QString));

} // namespace

class tst_ChartOfAccounts : public QObject {
    Q_OBJECT

private slots:
    void groupByThousands_data()
    {
        QTest::addColumn<int>("numero");
        QTest::addColumn<int>("group"); // -1: no group
        const std::pair<int, int> cases[] = { { -1500, MuutIndex }, { 999, MuutIndex }, { 1000, 0 },
            { 2000, 1 }, { 9999, 8 }, { 10999, MuutIndex }, { 11000, -1 } };
        for (const auto& [numero, group] : cases)
            QTest::addRow("%d", numero) << numero << group;
    }

    void groupByThousands()
    {
        QFETCH(int, numero);
        QFETCH(int, group);
        QCOMPARE(ryhma(numero).value_or(-1), group);
    }

    void leadingRowsAreRemovedEveryBuild()
    {
        AccountsFixture f;
        f.tili(100, Null);
        f.tili(400, QStringLiteral("@osoite"));
        f.tili(1000, QStringLiteral("Aineettomat"));
        f.tili(1500, QStringLiteral(" ")); // the same row in the middle is kept
        f.tili(2000, QStringLiteral("'Lainaus"));
        f.tili(2000, QStringLiteral("Bussi"));
        Puu puu = lueTilikartta(f.db());
        QCOMPARE(puu.virhe, QString());
        QCOMPARE(numbers(puu), (QStringList { "1000:0", "1500:0", "2000:1", "2000:1" }));
        // Number then name order: the apostrophe sorts before the letters.
        QCOMPARE(puu.rivit.at(2).nimi, QStringLiteral("'Lainaus"));
        // Once 1000 is gone, the blank 1500 and the apostrophe of 2000 lead and go too.
        f.exec(QStringLiteral("DELETE FROM tl WHERE tlNumero = 1000"));
        QCOMPARE(numbers(lueTilikartta(f.db())), (QStringList { "2000:1" }));
        // "a" (97) and "A" (65) are not below "A".
        f.tili(5, QStringLiteral("a"));
        f.tili(6, QStringLiteral("A"));
        QCOMPARE(numbers(lueTilikartta(f.db())), (QStringList { "5:9", "6:9", "2000:1" }));
    }

    void treeStops()
    {
        // A leading empty name: the null name before it is removed, the empty one and the rest stay.
        AccountsFixture f;
        f.tili(100, Null);
        f.tili(200, QString(""));
        const qint32 a = f.tili(1000, QStringLiteral("A"));
        Puu puu = lueTilikartta(f.db());
        QVERIFY2(
            puu.virhe.startsWith(TreeError) && puu.virhe.size() > TreeError.size(), qPrintable(puu.virhe));
        QVERIFY(puu.rivit.isEmpty());
        QCOMPARE(f.tileja(), 2);
        // A number without a group: the rows before it are read.
        f.exec(QStringLiteral("DELETE FROM tl WHERE tlID <> ?"), { a });
        for (int numero : { 10500, 11000 })
            f.tili(numero, QStringLiteral("Iso"));
        puu = lueTilikartta(f.db());
        QVERIFY(puu.virhe.startsWith(TreeError) && puu.virhe.contains(QStringLiteral("11000")));
        QCOMPARE(numbers(puu), (QStringList { "1000:0", "10500:9" }));
        QCOMPARE(f.tileja(), 3);
    }

    void checksAndAdd_data()
    {
        QTest::addColumn<QString>("numero");
        QTest::addColumn<QString>("nimi");
        QTest::addColumn<QString>("message");
        QTest::addColumn<bool>("inNumber");
        const auto row = [](const char* tag, const char* numero, const QString& nimi, const QString& message,
                             bool inNumber) {
            QTest::newRow(tag) << QString::fromUtf8(numero) << nimi << message << inNumber;
        };
        const QString name = QStringLiteral("Nimi");
        const QString exists = QStringLiteral("Tilinumerolla %1 löytyy jo tili.");
        // The length is the number's, not the text's: "0999" has three digits.
        row("leading zero", "0999", name, FourDigits, true);
        row("not a number", "12a4", name, FourDigits, true);
        row("too large", "11000", name, QStringLiteral("Tilinumeron tulee olla pienempi kuin 11000."), true);
        row("existing before name", "1910", QString(), exists.arg(QStringLiteral("1910")), true);
        row("existing as typed", " 01910", name, exists.arg(QStringLiteral(" 01910")), true);
        row("blank name", "3000", QStringLiteral("   "), NoName, false);
        row("long name with apostrophe", "10999", QStringLiteral("O'Brien") + QString(60, u'x'), QString(),
            false);
    }

    void checksAndAdd()
    {
        QFETCH(QString, numero);
        QFETCH(QString, nimi);
        QFETCH(QString, message);
        QFETCH(bool, inNumber);
        AccountsFixture f;
        const qint32 own = f.tili(1910, QStringLiteral("Pankki"));
        const Tarkistus t = tarkistaTili(f.db(), numero, nimi);
        QCOMPARE(t.viesti, message);
        QCOMPARE(t.numerossa, inNumber);
        // The account's own number is no duplicate.
        const bool duplicate = message.startsWith(QLatin1String("Tilinumerolla"));
        QCOMPARE(tarkistaTili(f.db(), numero, nimi, own).viesti,
            !duplicate           ? message
                : nimi.isEmpty() ? NoName
                                 : QString());
        Tarkistus lisays;
        const qint32 id = lisaaTili(f.db(), numero, nimi, QString(), &lisays);
        QCOMPARE(lisays.viesti, message);
        QCOMPARE(f.tileja(), message.isEmpty() ? 2 : 1);
        QCOMPARE(id != 0, message.isEmpty());
        if (id) {
            QCOMPARE(f.kentta(id, "tlNumero").toInt(), numero.toInt());
            QCOMPARE(f.nimi(id), nimi.left(50));
            QCOMPARE(f.kentta(id, "tlKuvaus").toString(), QStringLiteral(" "));
            // Printed in the ledger.
            QCOMPARE(f.kentta(id, "tlPrint").toInt(), 1);
        }
    }

    void deleteRule_data()
    {
        QTest::addColumn<QString>("current");
        QTest::addColumn<QString>("previous");
        QTest::addColumn<bool>("blocked");
        // Amounts of the account's entries in each year, "" for none.
        const auto row = [](const char* tag, const char* current, const char* previous, bool blocked) {
            QTest::newRow(tag) << QString::fromLatin1(current) << QString::fromLatin1(previous) << blocked;
        };
        row("zero amounts only", "0", "0", false);
        row("current year, negative", "-0,01", "", true);
        row("previous year", "0", "5", true);
    }

    void deleteRule()
    {
        QFETCH(QString, current);
        QFETCH(QString, previous);
        QFETCH(bool, blocked);
        AccountsFixture f;
        const qint32 id = f.tili(1910, QStringLiteral("Pankki"));
        const qint32 other = f.tili(2000, QStringLiteral("Muu"));
        f.vienti(other, QStringLiteral("D"), euros("100"), false);
        f.vienti(other, QStringLiteral("K"), euros("100"), true, true);
        if (!current.isEmpty())
            f.vienti(id, QStringLiteral("D"), *Money::parse(current), false);
        if (!previous.isEmpty())
            f.vienti(id, QStringLiteral("K"), *Money::parse(previous), false, true);
        QCOMPARE(poistonEste(f.db(), id), blocked ? HasEntries : QString());
    }
};

QTEST_GUILESS_MAIN(tst_ChartOfAccounts)
#include "tst_ChartOfAccounts.moc"
