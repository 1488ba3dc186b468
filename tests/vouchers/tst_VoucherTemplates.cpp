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

    int pankki = 0, vuokra = 0;

private slots:
    void init()
    {
        start();
        pankki = f->addTili(1910, QStringLiteral("Pankkitili"));
        vuokra = f->addTili(7100, QStringLiteral("Vuokrat"));
    }
    void cleanup() { finish(); }

    // An amount without an account is refused when saving, and nothing is stored; a cleared row
    // takes its pattern out. Deleting asks, and takes the template's rows with it, and only those.
    void typingAndDeletingATemplate()
    {
        VoucherTemplateEditor m(f->db());
        QVERIFY(m.avaa());
        m.setNimi(QStringLiteral("Vuokra"));
        QVERIFY(m.setTiliTeksti(Puoli::Debet, 0, QStringLiteral("7100")));
        QVERIFY(m.setArvoTeksti(Puoli::Debet, 0, QStringLiteral("450,50")));
        QVERIFY(m.setArvoTeksti(Puoli::Kredit, 0, QStringLiteral("450,50")));
        QVERIFY(!m.tallenna());
        QCOMPARE(m.virhePaikka()->puoli, Puoli::Kredit);
        QCOMPARE(f->count(QStringLiteral("tpPohjat")), 0);
        QVERIFY(m.setTiliTeksti(Puoli::Kredit, 0, QStringLiteral("pank")));
        QVERIFY(m.tallenna());
        QCOMPARE(f->count(QStringLiteral("vipPohjat"),
                     QStringLiteral("vipTyyppi = 'K' AND vipArvo = 4505000 AND viptlID = %1").arg(pankki)),
            1);
        // A quick select number is read back and found; none is stored as NULL, which no number finds.
        QVERIFY(m.setPikavalinta(3));
        QVERIFY(m.tallenna());
        cTositePohja luettu(f->db());
        QVERIFY(luettu.Load(m.pohja().tpID()) && luettu.Pikavalinta() == 3);
        QCOMPARE(cTositePohjat::Pikavalinnalla(f->db(), 3), m.pohja().tpID());
        QVERIFY(m.setPikavalinta(0));
        QVERIFY(m.setArvoTeksti(Puoli::Kredit, 0, QString()));
        QVERIFY(m.setTiliTeksti(Puoli::Kredit, 0, QString()));
        QVERIFY(m.tallenna());
        QCOMPARE(f->count(QStringLiteral("vipPohjat")), 1);
        QVERIFY(f->value(QStringLiteral("SELECT Pikavalinta FROM tpPohjat")).isNull());
        QCOMPARE(cTositePohjat::Pikavalinnalla(f->db(), 3), 0);
        // Another template's quick select number is refused; the template keeps its own.
        f->addPohja(QStringLiteral("Kassa"), 1, {}, { { pankki, "D", 100 } });
        QVERIFY(!m.setPikavalinta(1));
        QCOMPARE(m.pohja().Pikavalinta(), 0);
        QCOMPARE(f->dialogs.texts(ScriptedDialogs::Kind::Information).size(), 2);
        f->dialogs.answerNo().answerYes();
        QVERIFY(!m.poista());
        QCOMPARE(f->count(QStringLiteral("vipPohjat")), 2);
        QVERIFY(m.poista());
        QCOMPARE(f->count(QStringLiteral("tpPohjat")), 1);
        QCOMPARE(f->count(QStringLiteral("vipPohjat")), 1);
    }

    // Debit patterns first; a deleted account leaves its row without one; a missing template
    // gives no voucher.
    void voucherFromATemplate()
    {
        const int poistettu = f->addTili(8000, QStringLiteral("Poistettu"));
        const int tp = f->addPohja(QStringLiteral("Vuokra"), 1, QStringLiteral("Toimiston vuokra"),
            { { pankki, "K", 4500000 }, { vuokra, "D", 4000000 }, { poistettu, "D", 500000 } });
        QVERIFY(f->exec(QStringLiteral("DELETE FROM tl WHERE tlID = ?"), { poistettu }));
        AccountLookup tilit;
        tilit.load(f->db());
        const auto tosite = VoucherTemplateEditor::tositteeksi(f->db(), tilit, tp);
        QVERIFY(tosite && tosite->tiliPuuttuu);
        QCOMPARE(tosite->selite, QStringLiteral("Toimiston vuokra"));
        QCOMPARE(int(tosite->viennit.size()), 3);
        QCOMPARE(tosite->viennit[0].tlId, vuokra);
        QCOMPARE(tosite->viennit[1].tlId, 0);
        QCOMPARE(tosite->viennit[1].arvo, Money::fromRaw(500000));
        QCOMPARE(tosite->viennit[2].arvo, Money::fromRaw(4500000));
        QVERIFY(!VoucherTemplateEditor::tositteeksi(f->db(), tilit, 9999));
    }
};

QTEST_GUILESS_MAIN(tst_VoucherTemplates)
#include "tst_VoucherTemplates.moc"
