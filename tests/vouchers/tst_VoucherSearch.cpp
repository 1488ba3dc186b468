#include "VoucherFixture.h"
#include "vouchers/VoucherSearch.h"

#include <QTest>

// Finding vouchers by an entry amount and by a word of the description.
class tst_VoucherSearch : public QObject, VoucherCase {
    Q_OBJECT

    int tili = 0;

    QStringList found(const QString& arvo, const QString& selite, QString* yhteenveto = nullptr)
    {
        const VoucherSearch::Tulos t = VoucherSearch::hae(f->db(), arvo, selite);
        if (!t.virhe.isEmpty())
            return { QStringLiteral("virhe: ") + t.virhe };
        if (yhteenveto)
            *yhteenveto = t.yhteenveto();
        QStringList out;
        for (const auto& o : t.osumat)
            out << o.rivi();
        return out;
    }

private slots:
    void init()
    {
        start();
        tili = f->addTili(1910, QStringLiteral("Pankkitili"));
        f->addBalanced(
            f->addTosite(1, {}, QStringLiteral("2011-03-05"), QStringLiteral("Toimiston vuokra maaliskuu")),
            tili, tili, 125000);
        const int ale
            = f->addTosite(2, {}, QStringLiteral("2011-04-01"), QStringLiteral("50% ALENNUS ÄÄNENTOISTOSTA"));
        f->addVienti(ale, tili, QStringLiteral("D"), 1234500000);
        f->addTosite(3, {}, QStringLiteral("2011-04-02"), QStringLiteral("Kahvit o'Learyn kanssa, a_b"));
        // A carrier of ledger balances is never found.
        const int kantaja
            = f->addTosite(-1, {}, QStringLiteral("2011-01-01"), QStringLiteral("Toimiston vuokra"));
        f->addVienti(kantaja, tili, QStringLiteral("D"), 125000);
    }
    void cleanup() { finish(); }

    void search_data()
    {
        QTest::addColumn<QString>("arvo");
        QTest::addColumn<QString>("selite");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<QString>("summary");
        const QString vuokra = QStringLiteral("1 - 5.3.2011 - Toimiston vuokra maaliskuu");
        const QString ale = QStringLiteral("2 - 1.4.2011 - 50% ALENNUS ÄÄNENTOISTOSTA");
        const QString kahvit = QStringLiteral("3 - 2.4.2011 - Kahvit o'Learyn kanssa, a_b");
        const auto row = [](const char* name, const char* arvo, const char* selite,
                             const QStringList& expected, const char* summary) {
            QTest::newRow(name) << QString::fromUtf8(arvo) << QString::fromUtf8(selite) << expected
                                << QString::fromUtf8(summary);
        };
        // Two entries of the amount: the voucher is listed and counted once.
        row("amount", "12,50", "", { vuokra }, "Löytyi 1 tosite.");
        row("not there", "12,51", "", {}, "Ei löytynyt.");
        row("capitals, mid-text", "", "VUOKRA MAALIS", { vuokra }, "Löytyi 1 tosite.");
        row("Finnish letters", "", "äänentoisto", { ale }, "Löytyi 1 tosite.");
        row("both appended", "123 450", "kahvit o", { ale, kahvit }, "Löytyi 2 tositetta.");
    }
    void search()
    {
        QFETCH(QString, arvo);
        QFETCH(QString, selite);
        QFETCH(QStringList, expected);
        QFETCH(QString, summary);
        QString got;
        QCOMPARE(found(arvo, selite, &got), expected);
        QCOMPARE(got, summary);
    }

    void refusals()
    {
        QCOMPARE(found(QString(), QString()), QStringList { QStringLiteral("virhe: Anna ensin hakuehdot.") });
        // A refused amount stops the search, also with words to look for.
        QCOMPARE(found(QStringLiteral("1e5"), QStringLiteral("vuokra")),
            QStringList { QStringLiteral("virhe: Viennin arvon tulee olla numeerinen.") });
    }
};

QTEST_GUILESS_MAIN(tst_VoucherSearch)
#include "tst_VoucherSearch.moc"
