#include "VoucherFixture.h"
#include "vouchers/VoucherEditor.h"
#include "vouchers/VoucherTemplateEditor.h"
#include "vouchers/cTositePohja.h"
#include "vouchers/cTositePohjat.h"

#include <QTest>

using Puoli = VoucherEditor::Puoli;

// Voucher templates: the records, the template window's rules, and a voucher from a template.
class tst_VoucherTemplates : public QObject, VoucherCase {
    Q_OBJECT

    int pankki = 0, vuokra = 0, kassa = 0;

private slots:
    void init()
    {
        start();
        pankki = f->addTili(1910, QStringLiteral("Pankkitili"));
        kassa = f->addTili(1900, QStringLiteral("Kassa"));
        vuokra = f->addTili(7100, QStringLiteral("Vuokrat"));
    }
    void cleanup() { finish(); }

    // No quick select is stored as NULL, which no number finds.
    void quickSelectRoundTrip()
    {
        cTositePohja pohja(f->db());
        pohja.setNimi(QStringLiteral("Vuokra"));
        pohja.setPikavalinta(3);
        pohja.Save();
        QCOMPARE(cTositePohjat::Pikavalinnalla(f->db(), 3), pohja.tpID());
        cTositePohja luettu(f->db());
        QVERIFY(luettu.Load(pohja.tpID()));
        QCOMPARE(luettu.Pikavalinta(), 3);
        luettu.setPikavalinta(0);
        luettu.Save();
        QVERIFY(f->value(QStringLiteral("SELECT Pikavalinta FROM tpPohjat")).isNull());
        QCOMPARE(cTositePohjat::Pikavalinnalla(f->db(), 3), 0);
    }

    void deletingATemplateRemovesItsRows()
    {
        const int pidettava = f->addPohja(QStringLiteral("Kassa"), 1);
        f->addPohjaRivi(pidettava, kassa, QStringLiteral("D"), 100);
        const int poistettava = f->addPohja(QStringLiteral("Vuokra"), 2);
        f->addPohjaRivi(poistettava, vuokra, QStringLiteral("D"), 100);
        f->addPohjaRivi(poistettava, pankki, QStringLiteral("K"), 100);
        VoucherTemplateEditor m(f->db());
        QVERIFY(m.avaa());
        QCOMPARE(m.pohja().tpID(), pidettava); // first by name
        QVERIFY(m.lataa(poistettava));
        dialogs->answerNo();
        QVERIFY(!m.poista());
        QCOMPARE(f->count(QStringLiteral("vipPohjat")), 3);
        dialogs->answerYes();
        QVERIFY(m.poista());
        QCOMPARE(dialogs->texts(ScriptedDialogs::Kind::Question).last(),
            QStringLiteral("Haluatko varmasti poistaa valitun tositepohjan?"));
        QCOMPARE(f->count(QStringLiteral("tpPohjat")), 1);
        QCOMPARE(f->count(QStringLiteral("vipPohjat")), 1);
        QCOMPARE(m.pohja().tpID(), pidettava);
    }

    void typingATemplate()
    {
        VoucherTemplateEditor m(f->db());
        QVERIFY(m.avaa());
        QCOMPARE(m.riviMaara(), VoucherEditor::VahimmaisRivit);
        m.setNimi(QStringLiteral("Vuokra"));
        m.setSelite(QStringLiteral("Toimiston vuokra"));
        QVERIFY(m.setTiliTeksti(Puoli::Debet, 0, QStringLiteral("7100")));
        QVERIFY(m.setArvoTeksti(Puoli::Debet, 0, QStringLiteral("450,50")));
        QVERIFY(!m.setArvoTeksti(Puoli::Kredit, 0, QStringLiteral("abc")));
        QVERIFY(m.setArvoTeksti(Puoli::Kredit, 0, QStringLiteral("450,50")));
        // An amount without an account is refused when saving, and nothing is stored.
        QVERIFY(!m.tallenna());
        QCOMPARE(m.virhePaikka()->puoli, Puoli::Kredit);
        QCOMPARE(f->count(QStringLiteral("tpPohjat")), 0);
        QVERIFY(m.setTiliTeksti(Puoli::Kredit, 0, QStringLiteral("pank")));
        QVERIFY(m.tallenna());
        QCOMPARE(dialogs->texts(ScriptedDialogs::Kind::Information).last(),
            QStringLiteral("Valitse tili, jolle vienti tehdään."));
        QCOMPARE(f->count(QStringLiteral("vipPohjat")), 2);
        QCOMPARE(f->value(QStringLiteral(
                              "SELECT SUM(vipArvo) FROM vipPohjat WHERE vipTyyppi = 'K' AND viptlID = ?"),
                      { pankki })
                     .toLongLong(),
            4505000);
        // Clearing a row takes its pattern out.
        QVERIFY(m.setArvoTeksti(Puoli::Kredit, 0, QString()));
        QVERIFY(m.setTiliTeksti(Puoli::Kredit, 0, QString()));
        QVERIFY(m.tallenna());
        QCOMPARE(f->count(QStringLiteral("vipPohjat")), 1);
    }

    void voucherFromATemplate()
    {
        const int tp = f->addPohja(QStringLiteral("Vuokra"), 1, QStringLiteral("Toimiston vuokra"));
        f->addPohjaRivi(tp, pankki, QStringLiteral("K"), 4500000);
        f->addPohjaRivi(tp, vuokra, QStringLiteral("D"), 4000000);
        f->addPohjaRivi(tp, kassa, QStringLiteral("D"), 500000);
        AccountLookup tilit;
        tilit.load(f->db());
        const auto tosite = VoucherTemplateEditor::tositteeksi(f->db(), tilit, tp);
        QVERIFY(tosite);
        QCOMPARE(tosite->selite, QStringLiteral("Toimiston vuokra"));
        QVERIFY(!tosite->tiliPuuttuu);
        QCOMPARE(int(tosite->viennit.size()), 3);
        // Debit patterns first.
        QCOMPARE(tosite->viennit[0].puoli, Puoli::Debet);
        QCOMPARE(tosite->viennit[0].tlId, vuokra);
        QCOMPARE(tosite->viennit[1].tlId, kassa);
        QCOMPARE(tosite->viennit[2].puoli, Puoli::Kredit);
        QCOMPARE(tosite->viennit[2].arvo, Money::fromRaw(4500000));
    }

    void templateWithADeletedAccountOrNoPatterns()
    {
        const int tp = f->addPohja(QStringLiteral("Vanha"), QVariant());
        const int poistettu = f->addTili(8000, QStringLiteral("Poistettu"));
        f->addPohjaRivi(tp, poistettu, QStringLiteral("D"), 100000);
        f->addPohjaRivi(tp, pankki, QStringLiteral("K"), 100000);
        f->exec(QStringLiteral("DELETE FROM tl WHERE tlID = ?"), { poistettu });
        AccountLookup tilit;
        tilit.load(f->db());
        const auto tosite = VoucherTemplateEditor::tositteeksi(f->db(), tilit, tp);
        QVERIFY(tosite && tosite->tiliPuuttuu);
        QCOMPARE(tosite->viennit[0].tlId, 0);
        QCOMPARE(tosite->viennit[0].arvo, Money::fromRaw(100000));

        const int tyhja = f->addPohja(QStringLiteral("Tyhjä"), QVariant(), QStringLiteral(" "));
        const auto blank = VoucherTemplateEditor::tositteeksi(f->db(), tilit, tyhja);
        QVERIFY(blank && blank->viennit.empty() && blank->selite.isEmpty());
        QVERIFY(!VoucherTemplateEditor::tositteeksi(f->db(), tilit, 9999));
    }
};

QTEST_GUILESS_MAIN(tst_VoucherTemplates)
#include "tst_VoucherTemplates.moc"
