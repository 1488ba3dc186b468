#include "VoucherFixture.h"
#include "vouchers/VoucherSearch.h"

#include <QTest>

// Finding vouchers by an entry amount and by a word of the description.
class tst_VoucherSearch : public QObject, VoucherCase {
    Q_OBJECT

private slots:
    void init()
    {
        start();
        const int tili = f->addTili(1910, QStringLiteral("Pankkitili"));
        f->addBalanced(
            f->addTosite(1, {}, QStringLiteral("2011-03-05"), QStringLiteral("Toimiston vuokra maaliskuu")),
            tili, tili, 125000);
        f->addBalanced(
            f->addTosite(2, {}, QStringLiteral("2011-04-01"), QStringLiteral("50% ALENNUS ÄÄNENTOISTOSTA")),
            tili, tili, 1234500000);
        f->addTosite(3, {}, QStringLiteral("2011-04-02"), QStringLiteral("Kahvit o'Learyn kanssa, a_b"));
        // A carrier of ledger balances is never found.
        f->addBalanced(f->addTosite(-1, {}, QStringLiteral("2011-01-01"), QStringLiteral("Toimiston vuokra")),
            tili, tili, 125000);
    }
    void cleanup() { finish(); }

    void search_data()
    {
        QTest::addColumn<QString>("arvo");
        QTest::addColumn<QString>("selite");
        QTest::addColumn<QStringList>("expected");
        const QString vuokra = QStringLiteral("1 - 5.3.2011 - Toimiston vuokra maaliskuu");
        const QString ale = QStringLiteral("2 - 1.4.2011 - 50% ALENNUS ÄÄNENTOISTOSTA");
        const QString kahvit = QStringLiteral("3 - 2.4.2011 - Kahvit o'Learyn kanssa, a_b");
        const auto row
            = [](const char* name, const char* arvo, const char* selite, const QStringList& expected) {
                  QTest::newRow(name) << QString::fromUtf8(arvo) << QString::fromUtf8(selite) << expected;
              };
        // Two entries of the amount: the voucher is listed and counted once.
        row("amount", "12,50", "", { vuokra, QStringLiteral("Löytyi 1 tosite.") });
        row("not there", "12,51", "", { QStringLiteral("Ei löytynyt.") });
        row("capitals, mid-text", "", "VUOKRA MAALIS", { vuokra, QStringLiteral("Löytyi 1 tosite.") });
        row("Finnish letters", "", "äänentoisto", { ale, QStringLiteral("Löytyi 1 tosite.") });
        row("both appended", "123 450", "kahvit o", { ale, kahvit, QStringLiteral("Löytyi 2 tositetta.") });
        row("no terms", "", "", { QStringLiteral("virhe: Anna ensin hakuehdot.") });
        // A refused amount stops the search, also with words to look for.
        row("refused amount", "1e5", "vuokra",
            { QStringLiteral("virhe: Viennin arvon tulee olla numeerinen.") });
    }
    void search()
    {
        QFETCH(QString, arvo);
        QFETCH(QString, selite);
        QFETCH(QStringList, expected); // the lines found and the summary, or the refusal
        const VoucherSearch::Tulos t = VoucherSearch::hae(f->db(), arvo, selite);
        QStringList found;
        for (const auto& o : t.osumat)
            found << o.rivi();
        QCOMPARE(
            t.virhe.isEmpty() ? found << t.yhteenveto() : QStringList { QStringLiteral("virhe: ") + t.virhe },
            expected);
    }
};

QTEST_GUILESS_MAIN(tst_VoucherSearch)
#include "tst_VoucherSearch.moc"
