#include "StatementFixture.h"
#include "statements/TemplateChecks.h"

#include <QTest>
#include <memory>

class tst_TemplateChecks : public QObject {
    Q_OBJECT

    std::unique_ptr<StatementFixture> f;

private slots:
    void init() { QVERIFY(StatementFixture::start(f, StatementFixture::cleanPair)); }
    void cleanup() { StatementFixture::finish(f); }

    // A selected template's pair: a clean pair has no findings and the findings table is emptied;
    // unlinked, neither template has a pair, the account checks are not run and the table tells so.
    void cleanPairAndNoPair()
    {
        StatementFixture::exec(
            QStringLiteral("INSERT INTO tk (tkTeksti, tkTyyppi, tkParam) VALUES ('vanha', 1, 0)"));
        QCOMPARE(TemplateChecks::listLines(TemplateChecks::run(f->db(), TemplateChecks::pairFor(f->db(), 1))),
            QStringList());
        QCOMPARE(StatementFixture::count(QStringLiteral("tk")), 0);
        StatementFixture::exec(QStringLiteral("UPDATE mr SET mrTilit = '3,1,' WHERE mrID = 10"));
        StatementFixture::exec(QStringLiteral("UPDATE ma SET maTulosMaID = 0 WHERE maID = 2"));
        QVERIFY(!TemplateChecks::pairFor(f->db(), 2).complete());
        const QStringList expected { "Ei tarkistettu: Onko kaikki tilit käytössä.",
            "Ei tarkistettu: Onko sama tili useampaan kertaan taseessa tai tuloslaskelmassa." };
        QCOMPARE(TemplateChecks::listLines(TemplateChecks::run(f->db(), TemplateChecks::pairFor(f->db(), 1))),
            expected);
        QCOMPARE(StatementFixture::count(QStringLiteral("tk"), QStringLiteral("tkTyyppi = 10")), 2);
    }

    // Each check on a small change of the clean pair: its message and where it points.
    void eachCheck_data()
    {
        QTest::addColumn<QStringList>("sql");
        QTest::addColumn<QStringList>("expected");
        const auto row = [](const char* tag, const QStringList& sql, const char* finding = nullptr) {
            QTest::newRow(tag) << sql
                               << (finding ? QStringList { QString::fromUtf8(finding) } : QStringList {});
        };
        row("formula names a later row", { "UPDATE mr SET mrGroupOrder = 20 WHERE mrID = 11" },
            "Kaavassa summausjärjestys on väärin. -- Tarkista: Tulos / Tulos");
        row("formula names itself", { "UPDATE mr SET mrKaava = '+10,+12,' WHERE mrID = 12" },
            "Kaavassa summausjärjestys on väärin. -- Tarkista: Tulos / Tulos");
        row("same account twice", { "UPDATE mr SET mrTilit = '3,1,' WHERE mrID = 10" },
            "Sama tili on mallissa useampaan kertaan. -- Tarkista: 1000 Tili 1000");
        row("unused account", { "UPDATE mr SET mrTilit = '' WHERE mrID = 11" },
            "Kaikki tilit eivät ole käytössä. -- Tarkista: 4000 Tili 4000");
        row("unused formula", { "UPDATE mr SET mrKaava = '+10,' WHERE mrID = 11" },
            "Mallissa on luotu kaava, joka ei ole käytössä. -- Tarkista: Tulos / Kulut");
        row("two profit rows", { "UPDATE mr SET mrIsVoitto = 1 WHERE mrID = 11" },
            "Mallissa on 2 riviä, jotka on merkitty Voitto / Tappio riviksi. -- Tarkista: Tulos");
        row("accounts on a group",
            { "UPDATE mr SET mrTilit = '1,' WHERE mrID = 20", "UPDATE mr SET mrTilit = '' WHERE mrID = 21" },
            "Mallissa on valittuna tilejä pääryhmään. -- Tarkista: Tase / Vastaavaa");
        row("formula row with accounts",
            { "UPDATE mr SET mrTilit = '4,' WHERE mrID = 12", "UPDATE mr SET mrTilit = '' WHERE mrID = 11" },
            "Mallissa on valittuna sekä tilejä, että käytä kaavaa. -- Tarkista: Tulos / Tulos");
        row("income row on debit", { "UPDATE mr SET mrSaldoPuoli = 'D' WHERE mrID = 11" },
            "Tuloslaskelmassa on valittuna saldopuoleksi debet. -- Tarkista: Tulos / Kulut");
        row("debit under Vastattavaa", { "UPDATE mr SET mrSaldoPuoli = 'D' WHERE mrID = 23" },
            "Vastattavaa-puolella on valittuna saldopuoleksi debet. -- Tarkista: Tase / Vastattavaa / "
            "Pääoma");
        row("credit under Vastaavaa", { "UPDATE mr SET mrSaldoPuoli = 'K' WHERE mrID = 21" },
            "Vastaavaa-puolella on valittuna saldopuoleksi kredit. -- Tarkista: Tase / Vastaavaa / Rahat");
        row("a group's side without accounts is no finding",
            { "UPDATE mr SET mrSaldoPuoli = 'K' WHERE mrID = 20" });
        row("not standard", { "UPDATE mr SET mrTeksti = 'Varat' WHERE mrID = 20" },
            "Tasemalli ei ole standardi. Suoraan mallin alla pitää olla vain 'Vastaavaa' ja 'Vastattavaa' "
            "ryhmät. -- Tarkista: Tase / Varat");
    }
    void eachCheck()
    {
        QFETCH(QStringList, sql);
        QFETCH(QStringList, expected);
        for (const QString& s : sql)
            QVERIFY(StatementFixture::exec(s));
        QCOMPARE(TemplateChecks::listLines(TemplateChecks::run(f->db(), { 1, 2 })), expected);
    }

    void balanceSideCorrection()
    {
        StatementFixture::exec(
            QStringLiteral("UPDATE mr SET mrSaldoPuoli = 'D' WHERE mrID IN (10, 11, 22, 23)"));
        StatementFixture::exec(QStringLiteral("UPDATE mr SET mrSaldoPuoli = 'K' WHERE mrID = 21"));
        f->dialogs.answerNo();
        QCOMPARE(TemplateChecks::korjaaSaldopuolet(f->db(), { 1, 2 }), std::nullopt);
        QCOMPARE(
            StatementFixture::value(QStringLiteral("SELECT mrSaldoPuoli FROM mr WHERE mrID = 10")).toString(),
            QStringLiteral("D"));
        f->dialogs.answerYes();
        QCOMPARE(TemplateChecks::korjaaSaldopuolet(f->db(), { 1, 2 }), std::optional<int>(5));
        QCOMPARE(f->dialogs.texts(ScriptedDialogs::Kind::Information), QStringList { "Korjaukset tehty." });
        QCOMPARE(StatementFixture::value(QStringLiteral("SELECT GROUP_CONCAT(mrSaldoPuoli, '') FROM "
                                                        "(SELECT mrSaldoPuoli FROM mr ORDER BY mrID)"))
                     .toString(),
            QStringLiteral("KKKDDKKK"));
    }
};

QTEST_GUILESS_MAIN(tst_TemplateChecks)
#include "tst_TemplateChecks.moc"
