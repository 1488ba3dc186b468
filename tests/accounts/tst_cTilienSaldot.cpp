#include "AccountsFixture.h"
#include "Golden.h"
#include "accounts/AccountReports.h"
#include "accounts/cTilienSaldot.h"
#include "core/DatabaseError.h"
#include "printing/ReportEngine.h"

#include <QFile>

namespace {

// An association's accounts, with the report definitions of the program's folder.
struct Books : AccountsFixture {
    Books()
    {
        ProgramSettings::bookkeeping().Seurannimi = QStringLiteral("Kylätalon kannatusyhdistys ry");
        // The heading names the fiscal year.
        ProgramSettings::bookkeeping().TilikausiAlku = QDate(2011, 1, 1);
        ProgramSettings::bookkeeping().TilikausiLoppu = QDate(2011, 12, 31);
        for (const char* rpt : { "tilisald.rpt", "tilit.rpt", "tilikart.rpt" })
            QFile::copy(QStringLiteral(VORKAM_BIN_DIR "/") + QLatin1String(rpt),
                env.programDir() + u'/' + QLatin1String(rpt));
    }

    // An entry on a voucher of its own.
    void add(qint32 tlID, const char* tyyppi, const char* arvo, bool automaatti = false)
    {
        vienti(tosite(1, QStringLiteral("2011-05-01"), QString()), tlID, tyyppi, arvo, automaatti);
    }

    QString page(ReportJob job)
    {
        job.printDate = QDate(2011, 12, 31);
        return ReportEngine::run(db(), job)->pageText(0);
    }
};

} // namespace

class tst_cTilienSaldot final : public QObject {
    Q_OBJECT

private slots:
    // A recompute replaces the rows, a failed one leaves them (what counts: see reports).
    void recomputeAndFailure()
    {
        Books b;
        b.tili(1900, QStringLiteral("Kassa"));
        b.add(b.tili(1910, QStringLiteral("Pankkitili")), "D", "500");
        cTilienSaldot saldot(b.db());
        saldot.Laske();
        saldot.Laske();
        const QString table
            = QStringLiteral("SELECT GROUP_CONCAT(Tili || ' ' || Erotus, ', ') FROM tlSaldot");
        const QString rows = QStringLiteral("1900 Kassa 0, 1910 Pankkitili 5000000");
        QCOMPARE(b.value(table).toString(), rows);
        b.exec(QStringLiteral("CREATE TRIGGER full BEFORE INSERT ON tlSaldot WHEN NEW.Tili LIKE '1910%' "
                              "BEGIN SELECT RAISE(ABORT, 'disk full'); END"));
        QVERIFY_THROWS_EXCEPTION(DatabaseError, saldot.Laske());
        QCOMPARE(b.value(table).toString(), rows);
        QCOMPARE(saldot.rivit().size(), size_t(2));
        saldot.Tyhjenna();
        QCOMPARE(b.value(table).toString(), QString());
    }

    // The account list and the chart by statement templates, then the balances without the
    // temporary account 950: automatic entries, orphans and odd types do not count.
    void reports()
    {
        Books b;
        const qint32 pankki
            = b.tili(1910, QStringLiteral("Pankkitili"), QStringLiteral("Yhdistyksen käyttötili"));
        const qint32 maksut = b.tili(3000, QStringLiteral("Jäsenmaksut"));
        const qint32 vuokra
            = b.tili(4200, QStringLiteral("Tilavuokrat"), QStringLiteral("Kerhohuone ja juhlasali"));
        b.tili(950, QStringLiteral("Selvittelytili"));
        b.exec(QStringLiteral("INSERT INTO ma (maID, maNimi, maTyyppi) VALUES (1, 'Tuloslaskelma', 1), "
                              "(2, 'Tase', 2)"));
        b.exec(QStringLiteral(
                   "INSERT INTO mr (mrmaID, mrTeksti, mrTilit) VALUES (1, 'Varsinaisen toiminnan tuotot', "
                   "?), (2, 'Rahat ja pankkisaamiset', ?), (2, 'Ei tätä', '')"),
            { QStringLiteral("%1,").arg(maksut), QStringLiteral("5,%1,").arg(pankki) });
        VERIFY_GOLDEN(QStringLiteral("tilit"), b.page(AccountReports::tililuettelo()));
        VERIFY_GOLDEN(QStringLiteral("tilikart"), b.page(AccountReports::tilikartta(b.db(), 1, 2)));

        b.exec(QStringLiteral("DELETE FROM tl WHERE tlNumero = 950"));
        const std::tuple<qint32, const char*, const char*, bool> entries[]
            = { { pankki, "D", "1234,5", false }, { maksut, "K", "1234,5", false },
                  { vuokra, "D", "200", false }, { pankki, "K", "50", false }, { vuokra, "K", "50", false },
                  { vuokra, "D", "99", true }, { pankki, "d", "7", false } };
        for (const auto& [tili, tyyppi, arvo, automaatti] : entries)
            b.add(tili, tyyppi, arvo, automaatti);
        b.add(vuokra, "D", "77");
        b.exec(QStringLiteral("DELETE FROM \"to\" WHERE toID = (SELECT MAX(toID) FROM \"to\")")); // an orphan
        cTilienSaldot(b.db()).Laske();
        VERIFY_GOLDEN(QStringLiteral("tilisald"), b.page(AccountReports::tilienSaldot()));
    }
};

QTEST_MAIN(tst_cTilienSaldot)
#include "tst_cTilienSaldot.moc"
