#include "Golden.h"
#include "VoucherFixture.h"
#include "core/Money.h"
#include "core/Paths.h"
#include "printing/ReportDocument.h"
#include "printing/ReportEngine.h"
#include "vouchers/JournalPrinting.h"

#include <QFile>

using JournalPrinting::Kirja;
using Laji = JournalPrinting::Laji;

namespace {

qint64 raw(const char* euros) { return Money::parse(QString::fromLatin1(euros))->raw(); }

// A year of 2011: opening, four ordinary (one with three entries) and closing vouchers.
struct Kirjat {
    VoucherFixture f;
    int pankki = f.addTili(1910, QStringLiteral("Pankkitili"));
    int saamiset = f.addTili(1700, QStringLiteral("Jäsenmaksusaamiset"));
    int paaoma = f.addTili(2000, QStringLiteral("Oma pääoma"));
    int jasen = f.addTili(3000, QStringLiteral("Jäsenmaksut"));
    int vuokra = f.addTili(4000, QStringLiteral("Vuokrat"));

    QHash<int, int> ids; // by voucher number

    Kirjat()
    {
        f.exec(QStringLiteral("UPDATE tl SET tlPrint = 1"));
        ids[0]
            = f.addTosite(0, QStringLiteral("A"), QStringLiteral("2011-01-01"), QStringLiteral("Tilinavaus"));
        vienti(ids[0], pankki, "D", "1000", "A");
        vienti(ids[0], paaoma, "K", "1000", "A");
        ids[1] = f.addTosite(1, {}, QStringLiteral("2011-01-15"), QStringLiteral("Jäsenmaksut tammikuu"));
        vienti(ids[1], pankki, "D", "150,25");
        vienti(ids[1], jasen, "K", "150,25");
        ids[2] = f.addTosite(2, {}, QStringLiteral("2011-03-03"), QStringLiteral("Kerhohuoneen vuokra"));
        vienti(ids[2], vuokra, "D", "80,10");
        vienti(ids[2], pankki, "K", "80,10");
        ids[3] = f.addTosite(3, {}, QStringLiteral("2011-07-10"), QStringLiteral("Jäsenmaksut heinäkuu"));
        vienti(ids[3], pankki, "D", "40,05");
        vienti(ids[3], jasen, "K", "40,05");
        ids[4] = f.addTosite(4, {}, QStringLiteral("2011-09-20"), QStringLiteral("Vuokra syyskuu"));
        vienti(ids[4], vuokra, "D", "80,10");
        vienti(ids[4], pankki, "K", "60,10");
        vienti(ids[4], saamiset, "K", "20");
        ids[5] = f.addTosite(
            5, QStringLiteral("P"), QStringLiteral("2011-12-31"), QStringLiteral("Tilinpäätös"));
        vienti(ids[5], jasen, "D", "190,30", "P");
        vienti(ids[5], vuokra, "K", "160,20", "P");
        vienti(ids[5], paaoma, "K", "30,10", "P");
        ProgramSettings::bookkeeping().Seurannimi = QStringLiteral("Testiyhdistys ry");
        Paths::setProgramDir(f.env.programDir());
        for (const char* name : { "paikirja", "paikirjb", "paikirje", "paikivaa", "paikivab", "paikivae",
                 "paakirjb", "paakivab" })
            QFile::copy(QStringLiteral(VORKAM_BIN_DIR "/%1.rpt").arg(QLatin1String(name)),
                f.env.programDir() + QStringLiteral("/%1.rpt").arg(QLatin1String(name)));
    }

    void vienti(int toId, int tlId, const char* tyyppi, const char* arvo, const char* laji = "") const
    {
        f.exec(QStringLiteral("INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, "
                              "viPaatosvienti) VALUES (?, ?, ?, ?, 'x', ?, ?)"),
            { toId, tlId, QString::fromLatin1(tyyppi), raw(arvo), laji[0] == 'A' ? 1 : 0,
                laji[0] == 'P' ? 1 : 0 });
    }

    std::unique_ptr<ReportDocument> raportti(ReportJob job) const
    {
        job.printDate = QDate(2012, 1, 16);
        return ReportEngine::run(VoucherFixture::db(), job);
    }

    QString kaikkiSivut(const ReportDocument& d) const
    {
        QString text;
        for (int i = 0; i < d.pageCount(); ++i)
            text += d.pageText(i);
        return text;
    }

    // "1910 1000,00/1050,10" per account in number order.
    QStringList saldot() const
    {
        QSqlQuery q(VoucherFixture::db());
        q.exec(QStringLiteral(
            "SELECT tl.tlNumero, s.Alkusaldo, s.Loppusaldo FROM tl INNER JOIN paakirjaSaldot s "
            "ON s.tlID = tl.tlID ORDER BY tl.tlNumero"));
        QStringList out;
        while (q.next())
            out.append(QStringLiteral("%1 %2/%3")
                           .arg(q.value(0).toInt())
                           .arg(Money::fromRaw(q.value(1).toLongLong()).toString(),
                               Money::fromRaw(q.value(2).toLongLong()).toString()));
        return out;
    }
};

const QDate Alku(2011, 1, 1);
const QDate Loppu(2011, 12, 31);

} // namespace

class tst_JournalPrinting final : public QObject {
    Q_OBJECT

private slots:
    // The jobs take the file by the book, the kind and VaakaTulostus (one row per branch); each file
    // prints its way.
    void reportFiles()
    {
        Kirjat k;
        const struct {
            Kirja kirja;
            Laji laji;
            bool vaaka;
            const char* file;
        } rows[] = {
            { Kirja::Paivakirja, Laji::Tavallinen, true, "paikivaa.rpt" },
            { Kirja::Paivakirja, Laji::Paatos, false, "paikirje.rpt" },
            { Kirja::Paakirja, Laji::Avaus, false, "paakirjb.rpt" },
        };
        for (const auto& r : rows) {
            ProgramSettings::bookkeeping().VaakaTulostus = r.vaaka;
            const ReportJob job = r.kirja == Kirja::Paivakirja
                ? JournalPrinting::paivakirja(VoucherFixture::db(), r.laji, Alku, Loppu)
                : JournalPrinting::paakirja({}, r.laji, Alku, Loppu);
            QCOMPARE(job.reportFile, QLatin1String(r.file));
            QVERIFY2(k.raportti(job)->landscape() == r.vaaka, r.file);
        }
    }

    // The title of a period ending on vouchers' days, each kind's counts, and debit and credit sums
    // apart, the difference being debit - credit (the rest: golden).
    void formulas()
    {
        Kirjat k;
        k.vienti(k.f.addTosite(6, {}, QStringLiteral("2011-11-02")), k.pankki, "D", "0,05");
        k.f.addTosite(7, {}, QStringLiteral("2011-11-03"));
        const std::tuple<Laji, QDate, QDate, QStringList> rows[] = {
            { Laji::Tavallinen, QDate(2011, 1, 15), QDate(2011, 7, 10),
                { "Otsake= 'Päiväkirja -- 15.1.2011 - 10.7.2011'", "Tositteita= '3'", "Vienteja= '6'" } },
            { Laji::Tavallinen, Alku, Loppu,
                { "Tositteita= '6'", "Vienteja= '10'", "DebetVienteja= '5'", "DebetSumma= '350,55'",
                    "KreditSumma= '350,50'", "ErotusSummista= '0,05'" } },
            { Laji::Avaus, Alku, Loppu, { "Tositteita= '1'", "Vienteja= '2'" } },
            { Laji::Paatos, Alku, Loppu, { "Tositteita= '1'", "Vienteja= '3'" } },
        };
        for (const auto& [laji, alku, loppu, kaavat] : rows) {
            const QStringList formulas
                = JournalPrinting::paivakirja(VoucherFixture::db(), laji, alku, loppu).formulas;
            for (const QString& kaava : kaavat)
                QVERIFY2(formulas.contains(kaava), qPrintable(kaava));
        }
    }

    // The balances of the opening and the closing entries (the ordinary ones: the golden ledger).
    // They live beside the books: preparing them leaves the vouchers, entries and accounts as they
    // were. Entries the balances cannot place are told by voucher number and left out.
    void ledgerBalances()
    {
        Kirjat k;
        const auto books = [] {
            return VoucherFixture::value(
                QStringLiteral("SELECT (SELECT COUNT(*) || '/' || SUM(toID) FROM \"to\") || ' ' || (SELECT "
                               "COUNT(*) || '/' || SUM(viArvo) FROM vi) || ' ' || (SELECT "
                               "group_concat(tlAlkusaldo || ':' || tlLoppusaldo) FROM tl)"))
                .toString();
        };
        const auto valmistele = [](Laji laji) {
            return JournalPrinting::valmistelePaakirja(VoucherFixture::db(), laji, Alku, Loppu).virheelliset;
        };
        const QString ennen = books();
        QVERIFY(valmistele(Laji::Tavallinen).isEmpty());
        const std::pair<Laji, QStringList> rows[] = {
            { Laji::Avaus,
                { "1700 0,00/0,00", "1910 0,00/1\u00a0000,00", "2000 0,00/-1\u00a0000,00", "3000 0,00/0,00",
                    "4000 0,00/0,00" } },
            { Laji::Paatos,
                { "1700 -20,00/-20,00", "1910 1\u00a0050,10/1\u00a0050,10",
                    "2000 -1\u00a0000,00/-1\u00a0030,10", "3000 -190,30/0,00", "4000 160,20/0,00" } },
        };
        for (const auto& [laji, saldot] : rows) {
            QVERIFY(valmistele(laji).isEmpty());
            QCOMPARE(k.saldot(), saldot);
        }
        QCOMPARE(books(), ennen);
        k.vienti(k.ids[3], 999, "D", "5");
        k.vienti(k.ids[2], k.pankki, "X", "7");
        const QList<qint32> virheet = valmistele(Laji::Tavallinen);
        QCOMPARE(virheet, QList<qint32>({ 2, 3 }));
        QCOMPARE(k.saldot().at(1), QStringLiteral("1910 1\u00a0000,00/1\u00a0050,10"));
    }

    // The journal and the ledger of the fixture as printed.
    void goldenPages()
    {
        Kirjat k;
        const auto journal
            = k.raportti(JournalPrinting::paivakirja(VoucherFixture::db(), Laji::Tavallinen, Alku, Loppu));
        QCOMPARE(journal->pageCount(), 1);
        VERIFY_GOLDEN(QStringLiteral("paikirja"), journal->pageText(0));

        const JournalPrinting::Paakirja valmis = JournalPrinting::valmistelePaakirja(
            VoucherFixture::db(), Laji::Tavallinen, QDate(2011, 7, 1), Loppu);
        const auto ledger
            = k.raportti(JournalPrinting::paakirja(valmis, Laji::Tavallinen, QDate(2011, 7, 1), Loppu));
        QCOMPARE(ledger->pageCount(), 1);
        VERIFY_GOLDEN(QStringLiteral("paakirjb"), ledger->pageText(0));
    }

    // The rows computed in memory print as the reports' own queries (their selection and sort)
    // would, for every kind, also with an unprinted account, odd entries and an empty voucher.
    void rowsAsTheQuery()
    {
        Kirjat k;
        // Accounts not marked for printing leave the ledger, their balance rows too.
        k.f.exec(QStringLiteral("UPDATE tl SET tlPrint = 0 WHERE tlNumero = 1700"));
        k.f.exec(QStringLiteral("UPDATE tl SET tlPrint = NULL WHERE tlNumero = 2000"));
        k.vienti(k.ids[2], k.pankki, "X", "7");
        k.vienti(k.ids[2], 999, "D", "3");
        k.f.exec(QStringLiteral(
            "INSERT INTO \"to\" (toNumero, toPvm, toSelite) VALUES (9, '2011-08-01', 'Tyhjä')"));
        // A voucher numbered below 0 is neither in the journal nor among the ledger's rows.
        k.vienti(k.f.addTosite(-1, {}, QStringLiteral("2011-08-02"), QStringLiteral("Kantaja")), k.pankki,
            "D", "2");
        for (const Laji laji : { Laji::Tavallinen, Laji::Avaus, Laji::Paatos }) {
            for (const QDate& alku : { Alku, QDate(2011, 7, 1) }) {
                ReportJob journal = JournalPrinting::paivakirja(VoucherFixture::db(), laji, alku, Loppu);
                const QString paivakirja = k.kaikkiSivut(*k.raportti(journal));
                journal.rows = nullptr;
                QCOMPARE(paivakirja, k.kaikkiSivut(*k.raportti(journal)));
                const JournalPrinting::Paakirja valmis
                    = JournalPrinting::valmistelePaakirja(VoucherFixture::db(), laji, alku, Loppu);
                const QString paakirja
                    = k.kaikkiSivut(*k.raportti(JournalPrinting::paakirja(valmis, laji, alku, Loppu)));
                QCOMPARE(
                    paakirja, k.kaikkiSivut(*k.raportti(JournalPrinting::paakirja({}, laji, alku, Loppu))));
                QVERIFY(paakirja.contains(QStringLiteral("Alkusaldo")));
                QVERIFY(!paakirja.contains(QStringLiteral("Jäsenmaksusaamiset")));
                QVERIFY(!paakirja.contains(QStringLiteral("Oma pääoma")));
            }
        }
    }

    // Each of the three checks of a period is made.
    void period()
    {
        VoucherFixture f;
        const std::tuple<QDate, QDate, bool> rows[]
            = { { Alku, Loppu, false }, { QDate(2010, 12, 31), Loppu, true },
                  { Alku, QDate(2012, 1, 1), true }, { QDate(2011, 6, 1), QDate(2011, 5, 31), true } };
        for (const auto& [alku, loppu, refused] : rows)
            QCOMPARE(!JournalPrinting::jaksonVirhe(alku, loppu).isEmpty(), refused);
    }

    // A description of 255 characters with apostrophes prints whole, over several lines.
    void longDescription()
    {
        Kirjat k;
        const QString selite
            = QStringLiteral("Matin 'kerhon' kevätretki O'Learyn luo, ").repeated(7).left(255);
        const int t = k.f.addTosite(9, {}, QStringLiteral("2011-06-01"), selite);
        k.vienti(t, k.pankki, "D", "1");
        k.vienti(t, k.jasen, "K", "1");
        const QString text = k.kaikkiSivut(
            *k.raportti(JournalPrinting::paivakirja(VoucherFixture::db(), Laji::Tavallinen, Alku, Loppu)));
        QCOMPARE(text.count(QStringLiteral("O'Learyn")), selite.count(QStringLiteral("O'Learyn")));
    }
};

QTEST_MAIN(tst_JournalPrinting)
#include "tst_JournalPrinting.moc"
