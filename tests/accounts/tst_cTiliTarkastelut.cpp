#include "AccountsFixture.h"
#include "accounts/DailyBalances.h"
#include "accounts/cTiliTarkastelu.h"
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
    // Rows in date and voucher order with the running balance and totals; no carrier voucher −1
    // or stored automatic entry; the year's computed result last.
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

        // The work table holds the same rows in the same order, for the report.
        QSqlQuery q = k.f.exec(QStringLiteral(
            "SELECT Numero, Paiva, Selite, Debet, Kredit, Erotus FROM tlTarkastelut ORDER BY tltID"));
        for (const cTiliTarkastelut::Rivi& r : t.rivit()) {
            QVERIFY(q.next());
            QCOMPARE(q.value(0).isNull() ? cTiliTarkastelut::Laskettu : q.value(0).toInt(), r.numero);
            QCOMPARE(q.value(1).toString(), r.paiva.toString(Qt::ISODate));
            QCOMPARE(q.value(2).toString(), r.selite);
            QCOMPARE(q.value(3).toLongLong(), r.debet.raw());
            QCOMPARE(q.value(4).toLongLong(), r.kredit.raw());
            QCOMPARE(q.value(5).toLongLong(), r.erotus.raw());
        }
        QVERIFY(!q.next());

        // Another account replaces the rows; one without entries empties the table.
        t.Laske(k.muu);
        QCOMPARE(k.f.value(QStringLiteral("SELECT COUNT(*) FROM tlTarkastelut")).toInt(), 1);
        const qint32 tyhja = k.f.tili(4000, QStringLiteral("Vuokrat"));
        t.Laske(tyhja);
        QVERIFY(t.rivit().empty());
        QCOMPARE(t.erotusSumma(), Money());
        QCOMPARE(k.f.value(QStringLiteral("SELECT COUNT(*) FROM tlTarkastelut")).toInt(), 0);
    }

    // An empty description is stored as one blank, a long one cut; a failed write leaves the
    // table as it was.
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

    void record()
    {
        AccountsFixture f;
        cTiliTarkastelu rivi(f.db());
        rivi.setNumero(5);
        rivi.setPaiva(QDate(2011, 3, 4));
        rivi.setSelite(QString(260, u'x'));
        rivi.setDebet(euros("12,5"));
        rivi.setErotus(euros("-3"));
        rivi.Save();
        QVERIFY(rivi.id() > 0);
        cTiliTarkastelu luettu(f.db());
        QVERIFY(luettu.Read(rivi.id()));
        QCOMPARE(luettu.Numero(), 5);
        QCOMPARE(luettu.Paiva(), QDate(2011, 3, 4));
        QCOMPARE(luettu.Selite().size(), 255);
        QCOMPARE(luettu.Debet(), euros("12,5"));
        QCOMPARE(luettu.Erotus(), euros("-3"));
        luettu.setSelite(QString());
        luettu.Save();
        QCOMPARE(f.value(QStringLiteral("SELECT Selite FROM tlTarkastelut")).toString(), QStringLiteral(" "));
        luettu.Delete();
        QVERIFY(!rivi.Read(rivi.id()));
    }

    // The daily balances: the example of two days, the year's ends included, a day after it and
    // the carrier voucher left out.
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
