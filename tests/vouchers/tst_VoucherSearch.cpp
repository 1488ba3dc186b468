#include "ScriptedDialogs.h"
#include "VoucherFixture.h"
#include "vouchers/VoucherSearch.h"

#include <QTest>
#include <memory>

// Finding vouchers by an entry amount and by a word of the description.
class tst_VoucherSearch : public QObject {
    Q_OBJECT

    std::unique_ptr<VoucherFixture> f;
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
        f = std::make_unique<VoucherFixture>();
        QVERIFY(f->ok);
        tili = f->addTili(1910, QStringLiteral("Pankkitili"));
        const int vuokra
            = f->addTosite(1, {}, QStringLiteral("2011-03-05"), QStringLiteral("Toimiston vuokra maaliskuu"));
        f->addVienti(vuokra, tili, QStringLiteral("D"), 125000);
        f->addVienti(vuokra, tili, QStringLiteral("K"), 125000);
        const int ale
            = f->addTosite(2, {}, QStringLiteral("2011-04-01"), QStringLiteral("50% ALENNUS ÄÄNENTOISTOSTA"));
        f->addVienti(ale, tili, QStringLiteral("D"), 1234500000);
        f->addTosite(3, {}, QStringLiteral("2011-04-02"), QStringLiteral("Kahvit o'Learyn kanssa, a_b"));
        f->addTosite(4, {}, QStringLiteral("2011-04-03"), QStringLiteral("Kahvit axb"));
        // A carrier of ledger balances is never found.
        const int kantaja
            = f->addTosite(-1, {}, QStringLiteral("2011-01-01"), QStringLiteral("Toimiston vuokra"));
        f->addVienti(kantaja, tili, QStringLiteral("D"), 125000);
    }
    void cleanup() { f.reset(); }

    void search_data()
    {
        QTest::addColumn<QString>("arvo");
        QTest::addColumn<QString>("selite");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<QString>("summary");
        const QString vuokra = QStringLiteral("1 - 5.3.2011 - Toimiston vuokra maaliskuu");
        const QString ale = QStringLiteral("2 - 1.4.2011 - 50% ALENNUS ÄÄNENTOISTOSTA");
        const QString kahvit = QStringLiteral("3 - 2.4.2011 - Kahvit o'Learyn kanssa, a_b");
        // Two entries of the amount: the voucher is listed and counted once.
        QTest::newRow("12,50") << "12,50"
                               << "" << QStringList { vuokra } << "Löytyi 1 tosite.";
        QTest::newRow("amount and words of one voucher")
            << "12,50"
            << "vuokra" << QStringList { vuokra } << "Löytyi 1 tosite.";
        QTest::newRow("thousands") << "123 450"
                                   << "" << QStringList { ale } << "Löytyi 1 tosite.";
        QTest::newRow("not there") << "12,51"
                                   << "" << QStringList() << "Ei löytynyt.";
        QTest::newRow("word anywhere") << ""
                                       << "vuokra" << QStringList { vuokra } << "Löytyi 1 tosite.";
        QTest::newRow("capitals") << ""
                                  << "VUOKRA MAALIS" << QStringList { vuokra } << "Löytyi 1 tosite.";
        QTest::newRow("Finnish letters") << ""
                                         << "äänentoisto" << QStringList { ale } << "Löytyi 1 tosite.";
        QTest::newRow("percent literally") << ""
                                           << "0%" << QStringList { ale } << "Löytyi 1 tosite.";
        QTest::newRow("underscore literally") << ""
                                              << "a_b" << QStringList { kahvit } << "Löytyi 1 tosite.";
        QTest::newRow("apostrophe") << ""
                                    << "o'learyn" << QStringList { kahvit } << "Löytyi 1 tosite.";
        QTest::newRow("both appended") << "123 450"
                                       << "kahvit o" << QStringList { ale, kahvit } << "Löytyi 2 tositetta.";
        QTest::newRow("long text") << "" << QString(300, u'x') << QStringList() << "Ei löytynyt.";
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

    void refusals_data()
    {
        QTest::addColumn<QString>("arvo");
        QTest::addColumn<QString>("selite");
        QTest::addColumn<QString>("message");
        const QString numeerinen = QStringLiteral("Viennin arvon tulee olla numeerinen.");
        QTest::newRow("nothing") << ""
                                 << ""
                                 << "Anna ensin hakuehdot.";
        QTest::newRow("abc") << "abc"
                             << "" << numeerinen;
        QTest::newRow("exponent") << "1e5"
                                  << "vuokra" << numeerinen;
    }
    void refusals()
    {
        QFETCH(QString, arvo);
        QFETCH(QString, selite);
        QFETCH(QString, message);
        QCOMPARE(found(arvo, selite), QStringList { QStringLiteral("virhe: ") + message });
    }
};

QTEST_GUILESS_MAIN(tst_VoucherSearch)
#include "tst_VoucherSearch.moc"
