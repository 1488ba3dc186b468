#include "AccountsFixture.h"
#include "Tilikartta.h"

using namespace Tilikartta;

namespace {

const QString FourDigits = QStringLiteral("Tilinumeron tulee olla neljä numeroa pitkä.");
const QString TooLarge = QStringLiteral("Tilinumeron tulee olla pienempi kuin 11000.");
const QString NoName = QStringLiteral("Tilillä tulee olla nimi.");
const QString TreeError = QStringLiteral("Virhe luotaessa hakemistopuuta tileistä.\n");

QStringList numbers(const Puu& puu)
{
    QStringList list;
    for (const Rivi& r : puu.rivit)
        list.append(QString::number(r.numero) + u':' + QString::number(r.ryhma));
    return list;
}

} // namespace

class tst_Tilikartta : public QObject {
    Q_OBJECT

private slots:
    void groupByThousands_data();
    void groupByThousands();
    void keysAndTexts();
    void leadingRowsAreRemovedEveryBuild();
    void leadingEmptyNameStopsTree();
    void numberWithoutGroupStopsTree();
    void checks_data();
    void checks();
    void checkIgnoresOwnNumber();
    void addStoresCutTextsAndBlankDescription();
    void deleteRule_data();
    void deleteRule();
    void databaseSetting_data();
    void databaseSetting();
};

void tst_Tilikartta::groupByThousands_data()
{
    QTest::addColumn<int>("numero");
    QTest::addColumn<int>("group"); // -1: no group
    QTest::newRow("950") << 950 << MuutIndex;
    QTest::newRow("999") << 999 << MuutIndex;
    QTest::newRow("1000") << 1000 << 0;
    QTest::newRow("1999") << 1999 << 0;
    QTest::newRow("2000") << 2000 << 1;
    QTest::newRow("9999") << 9999 << 8;
    QTest::newRow("10000") << 10000 << MuutIndex;
    QTest::newRow("10500") << 10500 << MuutIndex;
    QTest::newRow("10999") << 10999 << MuutIndex;
    QTest::newRow("11000") << 11000 << -1;
    QTest::newRow("0") << 0 << MuutIndex;
    QTest::newRow("-1500") << -1500 << MuutIndex;
}

void tst_Tilikartta::groupByThousands()
{
    QFETCH(int, numero);
    QFETCH(int, group);
    QCOMPARE(ryhma(numero).value_or(-1), group);
}

void tst_Tilikartta::keysAndTexts()
{
    QCOMPARE(ryhmaAvain(2), QStringLiteral("3000PN"));
    QCOMPARE(ryhmaTeksti(2), QStringLiteral(" 3000 "));
    QCOMPARE(ryhmaAvain(8), QStringLiteral("9000PN"));
    QCOMPARE(ryhmaAvain(MuutIndex), QStringLiteral("MuutPN"));
    QCOMPARE(ryhmaTeksti(MuutIndex), QStringLiteral("Muut"));
    QCOMPARE(tiliAvain(57), QStringLiteral("57ID"));
    QCOMPARE(tiliTeksti(1910, QStringLiteral("Pankki")), QStringLiteral("1910 Pankki"));
    QCOMPARE(tiliAvaimesta(QStringLiteral("57ID")), std::optional<qint32>(57));
    QCOMPARE(tiliAvaimesta(QStringLiteral("57id")), std::optional<qint32>(57));
    QVERIFY(!tiliAvaimesta(QStringLiteral("3000PN")));
    QVERIFY(!tiliAvaimesta(QStringLiteral("MuutPN")));
}

void tst_Tilikartta::leadingRowsAreRemovedEveryBuild()
{
    AccountsFixture f;
    f.tili(100, QVariant(QMetaType(QMetaType::QString)));
    f.tili(200, QStringLiteral(" "));
    f.tili(300, QStringLiteral("1. tili"));
    f.tili(400, QStringLiteral("@osoite"));
    f.tili(1000, QStringLiteral("Aineettomat"));
    f.tili(1500, QStringLiteral(" ")); // the same row in the middle is kept
    f.tili(2000, QStringLiteral("'Lainaus"));
    f.tili(2000, QStringLiteral("Ääni"));
    f.tili(2000, QStringLiteral("Bussi"));
    Puu puu = lueTilikartta(f.db());
    QCOMPARE(puu.virhe, QString());
    QCOMPARE(numbers(puu), (QStringList { "1000:0", "1500:0", "2000:1", "2000:1", "2000:1" }));
    // Number then name order: the apostrophe sorts before the letters.
    QCOMPARE(puu.rivit.at(2).nimi, QStringLiteral("'Lainaus"));
    QCOMPARE(puu.rivit.at(3).nimi, QStringLiteral("Bussi"));
    QCOMPARE(f.tileja(), 5);

    // The clean-up runs on every build: once 1000 is gone, the blank 1500 and the apostrophe
    // of 2000 lead and go too.
    f.exec(QStringLiteral("DELETE FROM tl WHERE tlNumero = 1000"));
    puu = lueTilikartta(f.db());
    QCOMPARE(numbers(puu), (QStringList { "2000:1", "2000:1" }));
    QCOMPARE(puu.rivit.at(0).nimi, QStringLiteral("Bussi"));
    // "a" (97) and "A" (65) are not below "A".
    f.tili(5, QStringLiteral("a"));
    f.tili(6, QStringLiteral("A"));
    QCOMPARE(numbers(lueTilikartta(f.db())), (QStringList { "5:9", "6:9", "2000:1", "2000:1" }));
}

void tst_Tilikartta::leadingEmptyNameStopsTree()
{
    AccountsFixture f;
    f.tili(100, QVariant(QMetaType(QMetaType::QString)));
    f.tili(200, QStringLiteral(""));
    f.tili(1000, QStringLiteral("Aineettomat"));
    const Puu puu = lueTilikartta(f.db());
    QVERIFY2(puu.virhe.startsWith(TreeError), qPrintable(puu.virhe));
    QVERIFY(puu.virhe.size() > TreeError.size());
    QVERIFY(puu.rivit.isEmpty());
    // The null name before it was removed; the empty one and the rest stay.
    QCOMPARE(f.tileja(), 2);
}

void tst_Tilikartta::numberWithoutGroupStopsTree()
{
    AccountsFixture f;
    f.tili(1000, QStringLiteral("A"));
    f.tili(10500, QStringLiteral("Iso"));
    f.tili(11000, QStringLiteral("Liian iso"));
    f.tili(12000, QStringLiteral("Vielä isompi"));
    const Puu puu = lueTilikartta(f.db());
    QVERIFY(puu.virhe.startsWith(TreeError));
    QVERIFY(puu.virhe.contains(QStringLiteral("11000")));
    QCOMPARE(numbers(puu), (QStringList { "1000:0", "10500:9" }));
    QCOMPARE(f.tileja(), 4);
}

void tst_Tilikartta::checks_data()
{
    QTest::addColumn<QString>("numero");
    QTest::addColumn<QString>("nimi");
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("inNumber");
    QTest::newRow("too short") << "123"
                               << "Nimi" << FourDigits << true;
    QTest::newRow("leading zero") << "0999"
                                  << "Nimi" << FourDigits << true;
    QTest::newRow("not a number") << "12a4"
                                  << "Nimi" << FourDigits << true;
    QTest::newRow("decimal") << "1234,5"
                             << "Nimi" << FourDigits << true;
    QTest::newRow("empty") << ""
                           << "" << FourDigits << true;
    QTest::newRow("sql text") << "1 OR 1=1"
                              << "Nimi" << FourDigits << true;
    QTest::newRow("beyond int") << "99999999999"
                                << "Nimi" << FourDigits << true;
    QTest::newRow("too large") << "11000"
                               << "Nimi" << TooLarge << true;
    QTest::newRow("largest") << "10999"
                             << "Nimi" << QString() << false;
    QTest::newRow("existing") << "1910"
                              << "" << QStringLiteral("Tilinumerolla 1910 löytyy jo tili.") << true;
    QTest::newRow("existing as typed")
        << " 01910"
        << "Nimi" << QStringLiteral("Tilinumerolla  01910 löytyy jo tili.") << true;
    QTest::newRow("empty name") << "3000"
                                << "" << NoName << false;
    QTest::newRow("blank name") << "3000"
                                << "   " << NoName << false;
    QTest::newRow("apostrophe") << "3000"
                                << "O'Brienin rahasto" << QString() << false;
    QTest::newRow("ok") << "3000"
                        << "Uusi" << QString() << false;
}

void tst_Tilikartta::checks()
{
    QFETCH(QString, numero);
    QFETCH(QString, nimi);
    QFETCH(QString, message);
    QFETCH(bool, inNumber);
    AccountsFixture f;
    f.tili(1910, QStringLiteral("Pankki"));
    const Tarkistus t = tarkistaTili(f.db(), numero, nimi);
    QCOMPARE(t.viesti, message);
    QCOMPARE(t.numerossa, inNumber);
    Tarkistus lisays;
    const qint32 id = lisaaTili(f.db(), numero, nimi, QString(), &lisays);
    QCOMPARE(lisays.viesti, message);
    QCOMPARE(f.tileja(), message.isEmpty() ? 2 : 1);
    QCOMPARE(id != 0, message.isEmpty());
    if (id)
        QCOMPARE(f.value(QStringLiteral("SELECT tlNimi FROM tl WHERE tlID = ?"), { id }).toString(), nimi);
}

void tst_Tilikartta::checkIgnoresOwnNumber()
{
    AccountsFixture f;
    const qint32 id = f.tili(1910, QStringLiteral("Pankki"));
    QVERIFY(tarkistaTili(f.db(), QStringLiteral("1910"), QStringLiteral("Pankki"), id).ok());
    QVERIFY(!tarkistaTili(f.db(), QStringLiteral("1910"), QStringLiteral("Pankki"), id + 1).ok());
}

void tst_Tilikartta::addStoresCutTextsAndBlankDescription()
{
    AccountsFixture f;
    Tarkistus t;
    const qint32 id = lisaaTili(f.db(), QStringLiteral("4000"), QString(60, u'x'), QString(), &t);
    QVERIFY(t.ok());
    QVERIFY(id > 0);
    QSqlQuery q = f.exec(
        QStringLiteral("SELECT tlNumero, tlNimi, tlKuvaus, tlAlkusaldo, tlPrint FROM tl WHERE tlID = ?"),
        { id });
    QVERIFY(q.next());
    QCOMPARE(q.value(0).toInt(), 4000);
    QCOMPARE(q.value(1).toString(), QString(50, u'x'));
    QCOMPARE(q.value(2).toString(), QStringLiteral(" "));
    QCOMPARE(q.value(3).toLongLong(), 0);
    QCOMPARE(q.value(4).toInt(), 0);
}

void tst_Tilikartta::deleteRule_data()
{
    QTest::addColumn<QString>("current");
    QTest::addColumn<QString>("previous");
    QTest::addColumn<bool>("blocked");
    // Each column: amounts of the account's entries in that year, "" for none.
    QTest::newRow("no entries") << ""
                                << "" << false;
    QTest::newRow("zero amounts only") << "0"
                                       << "0" << false;
    QTest::newRow("current year") << "0,01"
                                  << "" << true;
    QTest::newRow("previous year") << "0"
                                   << "5" << true;
    QTest::newRow("negative") << "-1"
                              << "" << true;
}

void tst_Tilikartta::deleteRule()
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
    QCOMPARE(poistonEste(f.db(), id),
        blocked ? QStringLiteral(
            "Tilillä on vientejä kuluvalla tai edellisellä tilikaudella eikä sitä voida poistaa.")
                : QString());
}

void tst_Tilikartta::databaseSetting_data()
{
    QTest::addColumn<QString>("setting");
    QTest::addColumn<bool>("missing");
    QTest::newRow("empty") << "" << true;
    QTest::newRow("unknown") << "unknown" << true;
    QTest::newRow("file") << "/tmp/seura.mdb" << false;
}

void tst_Tilikartta::databaseSetting()
{
    QFETCH(QString, setting);
    QFETCH(bool, missing);
    TestEnv env;
    ProgramSettings::installation().Database = setting;
    QCOMPARE(tietokantaAsetusPuuttuu(), missing);
}

QTEST_GUILESS_MAIN(tst_Tilikartta)
#include "tst_Tilikartta.moc"
