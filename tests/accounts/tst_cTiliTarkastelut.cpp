#include "AccountsFixture.h"
#include "accounts/DailyBalances.h"
#include "accounts/cTiliTarkastelut.h"
#include "core/ComputedEntries.h"
#include "core/DatabaseError.h"
#include "core/Dates.h"

namespace {

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

QStringList days(const QSqlDatabase& db, qint32 tili, const QDate& from, const QDate& to)
{
    QStringList out;
    for (const DailyBalances::Rivi& r : DailyBalances::laske(db, tili, from, to))
        out.append(Dates::format(r.paiva) + u' ' + r.debet.toString() + u' ' + r.kredit.toString() + u' '
            + r.erotus.toString() + u' ' + r.saldo.toString());
    return out;
}

} // namespace

class tst_cTiliTarkastelut final : public QObject {
    Q_OBJECT

private slots:
    // Date and voucher order, running balance, no voucher −1 or automatic entry, computed row last;
    // the report's work table alike, an empty description as a blank, kept by a failed write and
    // replaced by the next. Daily balances sum the days of the period, its ends included.
    void balances()
    {
        AccountsFixture f;
        const qint32 pankki = f.tili(1910, QStringLiteral("Pankkitili"));
        const qint32 muu = f.tili(3000, QStringLiteral("Jäsenmaksut"));
        // Voucher number, date and description, and an entry: voucher 3 is made before 2.
        const std::tuple<int, const char*, QString, qint32, const char*, const char*, bool> entries[] = {
            { 1, "2011-01-01", QStringLiteral("Jäsenmaksut"), pankki, "D", "100", false },
            { 3, "2011-01-05", QStringLiteral("Vuokra"), pankki, "D", "50", false },
            { 2, "2011-01-05", QStringLiteral("Kahvit"), pankki, "K", "30", false },
            { -1, "2011-01-01", QStringLiteral("Alkusaldo"), pankki, "D", "999", false },
            { 4, "2011-01-06", QStringLiteral("Automaattikirjaukset"), pankki, "K", "77", true },
            { 5, "2011-01-01", QString(), muu, "K", "100", false },
        };
        for (const auto& [numero, pvm, selite, tili, tyyppi, arvo, automaatti] : entries)
            f.vienti(f.tosite(numero, QString::fromLatin1(pvm), selite), tili, tyyppi, arvo, automaatti);
        ComputedEntries::setSource([](const QSqlDatabase&, qint32 account) {
            return std::vector<ComputedEntries::Entry> { { QDate(2011, 12, 31), account, QStringLiteral("K"),
                euros("20"), QStringLiteral("Tulos") } };
        });
        cTiliTarkastelut t(f.db());
        t.Laske(pankki);
        ComputedEntries::setSource(nullptr);
        QCOMPARE(rows(t),
            QStringLiteral("1 1.1. Jäsenmaksut 100,00/0,00/100,00\n"
                           "2 5.1. Kahvit 0,00/30,00/70,00\n"
                           "3 5.1. Vuokra 50,00/0,00/120,00\n"
                           "-1 31.12. Tulos 0,00/20,00/100,00"));
        QCOMPARE(t.debetSumma(), euros("150"));
        QCOMPARE(t.kreditSumma(), euros("50"));
        const QString table = QStringLiteral(
            "SELECT GROUP_CONCAT(IFNULL(Numero, 'x') || ' ' || Paiva || ' ' || Selite || ' ' || Debet || "
            "'/' || Kredit || '/' || Erotus, ';') FROM (SELECT * FROM tlTarkastelut ORDER BY tltID)");
        const QString pankinRivit = f.value(table).toString();
        QCOMPARE(pankinRivit,
            QStringLiteral("1 2011-01-01 Jäsenmaksut 1000000/0/1000000;2 2011-01-05 Kahvit 0/300000/700000;"
                           "3 2011-01-05 Vuokra 500000/0/1200000;x 2011-12-31 Tulos 0/200000/1000000"));

        f.exec(QStringLiteral("CREATE TRIGGER estä BEFORE INSERT ON tlTarkastelut BEGIN SELECT RAISE(ABORT, "
                              "'levy täynnä'); END"));
        QVERIFY_THROWS_EXCEPTION(DatabaseError, t.Laske(muu));
        QCOMPARE(f.value(table).toString(), pankinRivit);
        f.exec(QStringLiteral("DROP TRIGGER estä"));
        t.Laske(muu);
        QCOMPARE(f.value(table).toString(), QStringLiteral("5 2011-01-01   0/1000000/-1000000"));

        QCOMPARE(days(f.db(), pankki, QDate(2011, 1, 1), QDate(2011, 1, 5)),
            QStringList({ "1.1.2011 100,00 0,00 100,00 100,00", "5.1.2011 50,00 30,00 20,00 120,00" }));
    }
};

QTEST_GUILESS_MAIN(tst_cTiliTarkastelut)
#include "tst_cTiliTarkastelut.moc"
