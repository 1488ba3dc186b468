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

} // namespace

class tst_ChartOfAccounts : public QObject {
    Q_OBJECT

private slots:
    // Leading rows without a name or with one below "A" are removed at every build; an empty
    // name or a number without a group stops the tree.
    void treeBuild()
    {
        AccountsFixture f;
        f.tili(100, QVariant());
        f.tili(400, QStringLiteral("@osoite"));
        f.tili(1000, QStringLiteral("Aineettomat"));
        f.tili(1500, QStringLiteral(" ")); // the same row in the middle is kept
        f.tili(2000, QStringLiteral("Bussi")); // number then name order: the apostrophe sorts first
        f.tili(2000, QStringLiteral("'Lainaus"));
        Puu puu = lueTilikartta(f.db());
        QCOMPARE(puu.virhe, QString());
        QCOMPARE(numbers(puu), (QStringList { "1000:0", "1500:0", "2000:1", "2000:1" }));
        // Once 1000 is gone, the blank 1500 and the apostrophe of 2000 lead and go too.
        f.exec(QStringLiteral("DELETE FROM tl WHERE tlNumero = 1000"));
        QCOMPARE(numbers(lueTilikartta(f.db())), (QStringList { "2000:1" }));
        // "A" (65) is not below "A". A number without a group: the rows before it are read.
        f.tili(6, QStringLiteral("A"));
        f.tili(10500, QStringLiteral("Iso"));
        f.tili(11000, QStringLiteral("Iso"));
        puu = lueTilikartta(f.db());
        QVERIFY(puu.virhe.startsWith(TreeError) && puu.virhe.contains(QStringLiteral("11000")));
        QCOMPARE(numbers(puu), (QStringList { "6:9", "2000:1", "10500:9" }));
        QCOMPARE(f.tileja(), 4);
        // A leading empty name: the null name before it is removed, the empty one and the rest stay.
        f.tili(0, QVariant());
        f.tili(1, QString(""));
        puu = lueTilikartta(f.db());
        QVERIFY2(puu.virhe.startsWith(TreeError), qPrintable(puu.virhe));
        QVERIFY(puu.rivit.isEmpty());
        QCOMPARE(f.tileja(), 5);
    }

    // The length is the number's, not the text's: "0999" has three digits. A taken number is
    // told as typed, before the name is checked. A refused account is not stored; an accepted
    // one is, its name cut, printed in the ledger.
    void checksAndAdd()
    {
        AccountsFixture f;
        const qint32 own = f.tili(1910, QStringLiteral("Pankki"));
        const QString name = QStringLiteral("Nimi");
        const std::tuple<const char*, QString, QString> cases[] = {
            { "0999", name, FourDigits },
            { "12a4", name, FourDigits },
            { "11000", name, QStringLiteral("Tilinumeron tulee olla pienempi kuin 11000.") },
            { " 01910", QString(), QStringLiteral("Tilinumerolla  01910 löytyy jo tili.") },
            { "3000", QStringLiteral("   "), NoName },
        };
        for (const auto& [numero, nimi, message] : cases) {
            const Tarkistus t = tarkistaTili(f.db(), QString::fromLatin1(numero), nimi);
            QCOMPARE(t.viesti, message);
            QCOMPARE(t.numerossa, message != NoName);
        }
        // A changed account's number is checked only when it differs from the stored one.
        QCOMPARE(tarkistaMuutos(f.db(), own, QStringLiteral("1910"), QStringLiteral(" ")).viesti, NoName);
        QCOMPARE(tarkistaMuutos(f.db(), own, QStringLiteral("1o00"), name).viesti, FourDigits);

        Tarkistus virhe;
        QCOMPARE(lisaaTili(f.db(), QStringLiteral("999"), name, QString(), &virhe), 0);
        QCOMPARE(virhe.viesti, FourDigits);
        QCOMPARE(f.tileja(), 1);
        const QString nimi = QStringLiteral("O'Brien") + QString(60, u'x');
        const qint32 id = lisaaTili(f.db(), QStringLiteral("10999"), nimi, QString(), &virhe);
        QVERIFY(virhe.ok());
        QCOMPARE(f.value(QStringLiteral("SELECT tlNumero || tlNimi || tlKuvaus || tlPrint FROM tl "
                                        "WHERE tlID = ?"),
                      { id })
                     .toString(),
            QStringLiteral("10999") + nimi.left(50) + QStringLiteral(" 1"));
    }

    // Entries of this or the previous year block the deletion, except zero amounts; the entries
    // of another account do not.
    void deleteRule()
    {
        AccountsFixture f;
        const qint32 other = f.tili(2000, QStringLiteral("Muu"));
        f.vienti(1, other, "D", "100");
        f.vienti(1, other, "K", "100", false, true, true);
        const qint32 id = f.tili(1910, QStringLiteral("Pankki"));
        f.vienti(1, id, "D", "0");
        QCOMPARE(poistonEste(f.db(), id), QString());
        f.vienti(1, id, "D", "-0,01");
        QCOMPARE(poistonEste(f.db(), id), HasEntries);
        f.exec(QStringLiteral("DELETE FROM vi WHERE vitlID = ?"), { id });
        f.vienti(1, id, "K", "5", false, false, true);
        QCOMPARE(poistonEste(f.db(), id), HasEntries);
    }
};

QTEST_GUILESS_MAIN(tst_ChartOfAccounts)
#include "tst_ChartOfAccounts.moc"
