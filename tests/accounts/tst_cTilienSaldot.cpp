#include "AccountsFixture.h"
#include "Golden.h"
#include "accounts/AccountReports.h"
#include "accounts/cTilienSaldot.h"
#include "core/DatabaseError.h"
#include "printing/ReportEngine.h"

#include <QFile>

namespace {

// An entry on a voucher of its own.
struct Entry {
    const char* tyyppi;
    const char* arvo;
    bool avaus = false;
    bool automaatti = false;
    bool paatos = false;
    bool orpo = false; // its voucher row is missing
};

class Books final {
public:
    Books()
    {
        ProgramSettings::bookkeeping().Seurannimi = QStringLiteral("Kylätalon kannatusyhdistys ry");
        // The heading names the fiscal year.
        ProgramSettings::bookkeeping().TilikausiAlku = QDate(2011, 1, 1);
        ProgramSettings::bookkeeping().TilikausiLoppu = QDate(2011, 12, 31);
        for (const char* rpt : { "tilisald.rpt", "tilit.rpt", "tilikart.rpt" })
            QFile::copy(QStringLiteral(VORKAM_BIN_DIR "/") + QLatin1String(rpt),
                f.env.programDir() + u'/' + QLatin1String(rpt));
    }

    void add(qint32 tlID, const Entry& e)
    {
        const qint32 toID = f.tosite(1, QStringLiteral("2011-05-01"));
        f.exec(QStringLiteral("INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, "
                              "viPaatosvienti, viAutomaatti) VALUES (?, ?, ?, ?, 'x', ?, ?, ?)"),
            { e.orpo ? toID + 1000 : toID, tlID, QString::fromLatin1(e.tyyppi), euros(e.arvo).raw(),
                e.avaus ? 1 : 0, e.paatos ? 1 : 0, e.automaatti ? 1 : 0 });
    }

    QString page(const ReportJob& source)
    {
        ReportJob job = source;
        job.printDate = QDate(2011, 12, 31);
        return ReportEngine::run(f.db(), job)->pageText(0);
    }

    AccountsFixture f;
};

QString row(const cTilienSaldot::Rivi& r)
{
    return QStringLiteral("%1 | %2 | %3 | %4")
        .arg(r.tili, r.debet.toString(), r.kredit.toString(), r.erotus.toString())
        .replace(QChar(0x00A0), u' ');
}

} // namespace

class tst_cTilienSaldot final : public QObject {
    Q_OBJECT

private slots:
    // A row per account by number; opening and closing entries count, orphans and odd types not.
    void everyAccountInNumberOrder()
    {
        Books b;
        const qint32 kassa = b.f.tili(1900, QStringLiteral("Kassa"));
        b.f.tili(3000, QVariant());
        const qint32 pankki = b.f.tili(1910, QStringLiteral("Pankkitili"));
        b.f.tili(950, QStringLiteral("Väliaikainen"));
        const std::pair<qint32, Entry> entries[] = { { kassa, { "D", "12,34" } },
            { kassa, { "D", "77", false, false, false, true } }, { pankki, { "D", "500", true } },
            { pankki, { "K", "20", false, false, true } }, { pankki, { "K", "12,34" } },
            { pankki, { "X", "5" } }, { pankki, { "", "6" } }, { pankki, { "d", "7" } } };
        for (const auto& [tili, entry] : entries)
            b.add(tili, entry);
        cTilienSaldot saldot(b.f.db());
        saldot.Laske();
        saldot.Laske();
        QCOMPARE(b.f.value(QStringLiteral("SELECT COUNT(*) FROM tlSaldot")).toInt(), 4);
        QStringList rows;
        qint32 lastId = 0;
        for (const auto& r : saldot.rivit()) {
            rows.append(row(r));
            QVERIFY(r.id > lastId);
            lastId = r.id;
        }
        QCOMPARE(rows,
            (QStringList { "950 Väliaikainen | 0,00 | 0,00 | 0,00", "1900 Kassa | 12,34 | 0,00 | 12,34",
                "1910 Pankkitili | 500,00 | 32,34 | 467,66", "3000  | 0,00 | 0,00 | 0,00" }));
        saldot.Tyhjenna();
        QCOMPARE(b.f.value(QStringLiteral("SELECT COUNT(*) FROM tlSaldot")).toInt(), 0);
    }

    // A failure while writing leaves the rows of the previous computation.
    void failureLeavesTheTable()
    {
        Books b;
        b.f.tili(1900, QStringLiteral("Kassa"));
        b.f.tili(1910, QStringLiteral("Pankkitili"));
        cTilienSaldot saldot(b.f.db());
        saldot.Laske();
        b.f.exec(QStringLiteral("CREATE TRIGGER full BEFORE INSERT ON tlSaldot WHEN NEW.Tili LIKE '1910%' "
                                "BEGIN SELECT RAISE(ABORT, 'disk full'); END"));
        QVERIFY_THROWS_EXCEPTION(DatabaseError, saldot.Laske());
        QCOMPARE(b.f.value(QStringLiteral("SELECT GROUP_CONCAT(Tili, ',') FROM tlSaldot")).toString(),
            QStringLiteral("1900 Kassa,1910 Pankkitili"));
        QCOMPARE(saldot.rivit().size(), size_t(2));
    }

    void balancesReport()
    {
        Books b;
        const qint32 pankki = b.f.tili(1910, QStringLiteral("Pankkitili"));
        const qint32 maksut = b.f.tili(3000, QStringLiteral("Jäsenmaksut"));
        const qint32 vuokra = b.f.tili(4200, QStringLiteral("Tilavuokrat"));
        b.add(pankki, { "D", "1234,5" });
        b.add(maksut, { "K", "1234,5" });
        b.add(vuokra, { "D", "200" });
        b.add(pankki, { "K", "50" });
        b.add(vuokra, { "K", "50" });
        b.add(vuokra, { "D", "99", false, true });
        cTilienSaldot(b.f.db()).Laske();
        VERIFY_GOLDEN(QStringLiteral("tilisald"), b.page(AccountReports::tilienSaldot()));
    }

    void chartReports()
    {
        Books b;
        const qint32 pankki
            = b.f.tili(1910, QStringLiteral("Pankkitili"), QStringLiteral("Yhdistyksen käyttötili"));
        const qint32 maksut = b.f.tili(3000, QStringLiteral("Jäsenmaksut"));
        b.f.tili(4200, QStringLiteral("Tilavuokrat"), QStringLiteral("Kerhohuone ja juhlasali"));
        b.f.tili(950, QStringLiteral("Selvittelytili"));
        b.f.exec(QStringLiteral("INSERT INTO ma (maID, maNimi, maTyyppi) VALUES (1, 'Tuloslaskelma', 1), "
                                "(2, 'Tase', 2)"));
        b.f.exec(QStringLiteral(
                     "INSERT INTO mr (mrmaID, mrTeksti, mrTilit) VALUES (1, 'Varsinaisen toiminnan tuotot', "
                     "?), (2, 'Rahat ja pankkisaamiset', ?), (2, 'Ei tätä', '')"),
            { QStringLiteral("%1,").arg(maksut), QStringLiteral("5,%1,").arg(pankki) });
        VERIFY_GOLDEN(QStringLiteral("tilit"), b.page(AccountReports::tililuettelo()));
        VERIFY_GOLDEN(QStringLiteral("tilikart"), b.page(AccountReports::tilikartta(b.f.db(), 1, 2)));
    }
};

QTEST_MAIN(tst_cTilienSaldot)
#include "tst_cTilienSaldot.moc"
