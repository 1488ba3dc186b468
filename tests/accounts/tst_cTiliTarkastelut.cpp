#include "AccountsFixture.h"
#include "accounts/DailyBalances.h"
#include "accounts/cTiliTarkastelut.h"
#include "core/ComputedEntries.h"
#include "core/DatabaseError.h"
#include "core/Dates.h"

namespace {

// Vouchers and entries of the inspected account and of another one.
struct Kirjanpito {
    AccountsFixture f;
    qint32 pankki = f.tili(1910, QStringLiteral("Pankkitili"));
    qint32 muu = f.tili(3000, QStringLiteral("Jäsenmaksut"));
};

QString rows(const cTiliTarkastelut& t)
{
    QStringList out;
    for (const cTiliTarkastelut::Rivi& r : t.rivit())
        out.append(QStringLiteral("%1 %2 %3 %4/%5/%6")
                       .arg(r.numero)
                       .arg(r.paiva.toString(QStringLiteral("d.M.")), r.selite, r.debet.toString(),
                           r.kredit.toString(), r.erotus.toString()));
    return out.join(u'\n');
}

} // namespace

class tst_cTiliTarkastelut final : public QObject {
    Q_OBJECT

private slots:
    // Date and voucher order, running balance, no voucher −1 or automatic entry, computed row last.
    void runningBalance()
    {
        Kirjanpito k;
        const qint32 t1 = k.f.tosite(1, "2011-01-01", QStringLiteral("Jäsenmaksut"));
        const qint32 t3 = k.f.tosite(3, "2011-01-05", QStringLiteral("Vuokra"));
        const qint32 t2 = k.f.tosite(2, "2011-01-05", QStringLiteral("Kahvit"));
        const qint32 kantaja = k.f.tosite(-1, "2011-01-01", QStringLiteral("Alkusaldo"));
        const qint32 vanha = k.f.tosite(4, "2011-01-06", QStringLiteral("Automaattikirjaukset"));
        k.f.kirjaus(t3, k.pankki, "D", "50");
        k.f.kirjaus(t1, k.pankki, "D", "100");
        k.f.kirjaus(t2, k.pankki, "K", "30");
        k.f.kirjaus(t1, k.muu, "K", "100");
        k.f.kirjaus(kantaja, k.pankki, "D", "999");
        k.f.kirjaus(vanha, k.pankki, "K", "77", true);
        ComputedEntries::setSource([&k](const QSqlDatabase&, qint32 account) {
            std::vector<ComputedEntries::Entry> entries;
            if (account == k.pankki)
                entries.push_back({ QDate(2011, 12, 31), account, QStringLiteral("K"), euros("20"),
                    QStringLiteral("Tulos") });
            return entries;
        });

        cTiliTarkastelut t(k.f.db());
        t.Laske(k.pankki);
        ComputedEntries::setSource(nullptr);
        QCOMPARE(rows(t),
            QStringLiteral("1 1.1. Jäsenmaksut 100,00/0,00/100,00\n"
                           "2 5.1. Kahvit 0,00/30,00/70,00\n"
                           "3 5.1. Vuokra 50,00/0,00/120,00\n"
                           "-1 31.12. Tulos 0,00/20,00/100,00"));
        QCOMPARE(t.debetSumma(), euros("150"));
        QCOMPARE(t.kreditSumma(), euros("50"));
        QCOMPARE(t.erotusSumma(), euros("100"));
        QCOMPARE(t.rivit().front().toId, t1);

        // The report's work table holds the same rows; the computed one without a number.
        QCOMPARE(k.f.value(QStringLiteral("SELECT GROUP_CONCAT(IFNULL(Numero, 'x') || ' ' || Paiva || ' ' || "
                                          "Selite || ' ' || Debet || '/' || Kredit || '/' || Erotus, ';') "
                                          "FROM (SELECT * FROM tlTarkastelut ORDER BY tltID)"))
                     .toString(),
            QStringLiteral("1 2011-01-01 Jäsenmaksut 1000000/0/1000000;2 2011-01-05 Kahvit 0/300000/700000;"
                           "3 2011-01-05 Vuokra 500000/0/1200000;x 2011-12-31 Tulos 0/200000/1000000"));

        // Another account replaces the rows; one without entries empties the table.
        t.Laske(k.muu);
        QCOMPARE(k.f.value(QStringLiteral("SELECT COUNT(*) FROM tlTarkastelut")).toInt(), 1);
        const qint32 tyhja = k.f.tili(4000, QStringLiteral("Vuokrat"));
        t.Laske(tyhja);
        QVERIFY(t.rivit().empty());
        QCOMPARE(t.erotusSumma(), Money());
        QCOMPARE(k.f.value(QStringLiteral("SELECT COUNT(*) FROM tlTarkastelut")).toInt(), 0);
    }

    // Empty descriptions stored as a blank, long ones cut; a failed write leaves the table.
    void descriptionsAndFailure()
    {
        Kirjanpito k;
        const QString pitka = QString(300, u'\'');
        k.f.kirjaus(k.f.tosite(1, "2011-02-01", QString()), k.pankki, "D", "10");
        k.f.kirjaus(k.f.tosite(2, "2011-02-02", pitka), k.pankki, "K", "5");
        cTiliTarkastelut t(k.f.db());
        t.Laske(k.pankki);
        QCOMPARE(k.f.value(QStringLiteral("SELECT Selite FROM tlTarkastelut WHERE Numero = 1")).toString(),
            QStringLiteral(" "));
        QCOMPARE(k.f.value(QStringLiteral("SELECT Selite FROM tlTarkastelut WHERE Numero = 2")).toString(),
            QString(255, u'\''));

        k.f.exec(
            QStringLiteral("CREATE TRIGGER estä BEFORE INSERT ON tlTarkastelut BEGIN SELECT RAISE(ABORT, "
                           "'levy täynnä'); END"));
        QVERIFY_THROWS_EXCEPTION(DatabaseError, t.Laske(k.pankki));
        QCOMPARE(k.f.value(QStringLiteral("SELECT COUNT(*) FROM tlTarkastelut")).toInt(), 2);
    }

    // Days of the year summed, its ends included; days outside it and the voucher −1 left out.
    void dailyBalances()
    {
        Kirjanpito k;
        const qint32 a = k.f.tosite(1, "2011-01-02");
        const qint32 b = k.f.tosite(2, "2011-01-02");
        const qint32 c = k.f.tosite(3, "2011-01-03");
        k.f.kirjaus(a, k.pankki, "D", "100");
        k.f.kirjaus(b, k.pankki, "K", "40");
        k.f.kirjaus(c, k.pankki, "K", "10", true);
        k.f.kirjaus(k.f.tosite(4, "2012-01-01"), k.pankki, "D", "1000");
        k.f.kirjaus(k.f.tosite(5, "2010-12-31"), k.pankki, "D", "1000");
        k.f.kirjaus(k.f.tosite(-1, "2011-01-02"), k.pankki, "D", "1000");
        k.f.kirjaus(k.f.tosite(6, "2011-12-31"), k.pankki, "D", "0,01");

        const auto rivit = DailyBalances::laske(k.f.db(), k.pankki, QDate(2011, 1, 1), QDate(2011, 12, 31));
        QStringList out;
        for (const DailyBalances::Rivi& r : rivit)
            out.append(Dates::format(r.paiva) + u' ' + r.debet.toString() + u' ' + r.kredit.toString() + u' '
                + r.erotus.toString() + u' ' + r.saldo.toString());
        QCOMPARE(out,
            QStringList({ "2.1.2011 100,00 40,00 60,00 60,00", "3.1.2011 0,00 10,00 -10,00 50,00",
                "31.12.2011 0,01 0,00 0,01 50,01" }));
        QVERIFY(DailyBalances::laske(k.f.db(), k.muu, QDate(2011, 1, 1), QDate(2011, 12, 31)).empty());
    }
};

QTEST_GUILESS_MAIN(tst_cTiliTarkastelut)
#include "tst_cTiliTarkastelut.moc"
