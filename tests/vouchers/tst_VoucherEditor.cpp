#include "VoucherFixture.h"
#include "vouchers/VoucherEditor.h"

#include "core/Dates.h"

#include <QTest>
#include <functional>
#include <memory>

using Laji = VoucherEditor::Laji;
using Puoli = VoucherEditor::Puoli;
using Siirto = VoucherEditor::Siirto;

// The rules of editing vouchers, without a window.
class tst_VoucherEditor : public QObject, VoucherCase {
    Q_OBJECT

    int pankki = 0, velat = 0, myynti = 0; // 1910 Pankkitili, 2250 Muut velat, 3000 Myyntituotot

    std::unique_ptr<VoucherEditor> open(Laji laji = Laji::Tavallinen)
    {
        auto m = std::make_unique<VoucherEditor>(f->db(), laji);
        if (!m->avaa())
            qWarning("avaa failed");
        return m;
    }

private slots:
    void init()
    {
        start();
        pankki = f->addTili(1910, QStringLiteral("Pankkitili"));
        velat = f->addTili(2250, QStringLiteral("Muut velat"));
        myynti = f->addTili(3000, QStringLiteral("Myyntituotot"));
    }
    void cleanup() { finish(); }

    // A new voucher of each kind is numbered in the one sequence, dated at the year's start in an
    // empty book (then by the latest date) and stored at once.
    void newVoucherIsNumberedAndStoredAtOnce()
    {
        int numero = 0;
        for (const Laji laji : { Laji::Tavallinen, Laji::Avaus, Laji::Paatos }) {
            auto m = open(laji);
            QVERIFY(m->uusi());
            QCOMPARE(m->tosite().Numero(), ++numero);
            QCOMPARE(m->tosite().Paiva(), QDate(2011, 1, 1));
            QCOMPARE(m->tosite().Avaustosite(), laji == Laji::Avaus);
            QCOMPARE(m->tosite().Paatostosite(), laji == Laji::Paatos);
            QCOMPARE(f->count(QStringLiteral("\"to\"")), numero);
        }
    }

    // Each kind opens on its last voucher, the opening one on 0. Browsing stops at the ends and
    // writes nothing (which voucher comes next: tst_cTosite).
    void opensOnTheLastVoucherAndStopsAtTheEnds()
    {
        const int opening = f->addTosite(0, QStringLiteral("A"));
        f->addTosite(1);
        f->addTosite(3);
        QCOMPARE(open(Laji::Avaus)->tosite().ToId(), opening);
        QVERIFY(open(Laji::Paatos)->tosite().IsEmpty());
        auto m = open();
        const qint64 before = f->totalChanges();
        QVERIFY(!m->siirry(Siirto::Seuraava));
        QCOMPARE(m->tosite().Numero(), 3);
        QVERIFY(m->siirry(Siirto::Edellinen));
        QVERIFY(!m->siirry(Siirto::Edellinen));
        QCOMPARE(m->tosite().Numero(), 1);
        QCOMPARE(f->totalChanges(), before);
    }

    // Saving (as new and a line of the list do), browsing and closing each run the account check,
    // on the debit and the credit side; with an account the voucher is left.
    void accountCheckBlocksLeaving()
    {
        f->addTosite(1);
        const int id = f->addTosite(2);
        auto m = open();
        const std::tuple<Puoli, int, std::function<bool()>> leaving[] = {
            { Puoli::Debet, 2, [&] { return m->tallenna(); } },
            { Puoli::Kredit, 2, [&] { return m->siirry(Siirto::Edellinen); } },
            { Puoli::Kredit, 3, [&] { return m->sulje(); } },
        };
        for (const auto& [puoli, rivi, leave] : leaving) {
            f->dialogs.clear();
            QVERIFY(m->setArvoTeksti(puoli, rivi, QStringLiteral("100")));
            const qint64 before = f->totalChanges();
            QVERIFY(!leave());
            QCOMPARE(f->dialogs.texts(ScriptedDialogs::Kind::Information).size(), 1);
            QCOMPARE(m->tosite().ToId(), id);
            QCOMPARE(f->totalChanges(), before);
            QVERIFY(m->virhePaikka() && m->virhePaikka()->puoli == puoli && m->virhePaikka()->rivi == rivi);
            QVERIFY(m->setTiliTeksti(puoli, rivi, QStringLiteral("1910")));
        }
        QVERIFY(m->sulje());
        QCOMPARE(
            f->count(QStringLiteral("vi"), QStringLiteral("viArvo = 1000000 AND vitoID = %1").arg(id)), 3);
    }

    // A date outside the fiscal year is kept and warned of (each comparison with the year). Leaving
    // without a date asks for one and keeps the voucher (saving: the window's wrong date test).
    void dateOutsideTheFiscalYearIsKeptAndWarnedNoDateRefused()
    {
        f->addTosite(1);
        auto m = open();
        for (const auto& [date, warned] :
            { std::pair(QDate(2011, 1, 1), false), std::pair(QDate(2011, 12, 31), false),
                std::pair(QDate(2012, 1, 1), true), std::pair(QDate(2010, 12, 31), true) }) {
            f->dialogs.clear();
            QCOMPARE(m->setPaiva(date), !warned);
            QCOMPARE(f->dialogs.texts(ScriptedDialogs::Kind::Information).size(), warned ? 1 : 0);
            QVERIFY(m->tallenna());
            QCOMPARE(Dates::fromSql(f->value(QStringLiteral("SELECT toPvm FROM \"to\"")).toString()), date);
        }
        QVERIFY(m->setPaiva(QDate()));
        QVERIFY(!m->sulje());
        QVERIFY(m->pvmPuuttuu());
        QCOMPARE(
            f->value(QStringLiteral("SELECT toPvm FROM \"to\"")).toString(), QStringLiteral("2010-12-31"));
        QVERIFY(m->setPaiva(QDate(2011, 5, 1)));
        QVERIFY(m->sulje());
    }

    void chosenAccountBalanceIsReadFromTheBooks()
    {
        ProgramSettings::bookkeeping().LaskettavaTili = pankki;
        f->addBalanced(f->addTosite(1), pankki, myynti); // 100,00 in another voucher
        const int shown = f->addTosite(2);
        f->addVienti(shown, pankki, QStringLiteral("K"), 200000); // 20,00 on screen
        f->addVienti(999, pankki, QStringLiteral("D"), 7770000); // an entry without voucher does not count
        auto m = open();
        QCOMPARE(m->laskettavanSaldo(), Money::fromCents(8000));
        m->setArvoTeksti(Puoli::Kredit, 1, QStringLiteral("30"));
        m->setTiliTeksti(Puoli::Kredit, 1, QStringLiteral("1910"));
        QCOMPARE(m->laskettavanSaldo(), Money::fromCents(5000));
        QVERIFY(m->tallenna());
        m->setArvoTeksti(Puoli::Kredit, 1, QStringLiteral("31"));
        QVERIFY(m->tallenna());
        QCOMPARE(m->laskettavanSaldo(), Money::fromCents(4900));
    }

    // Refused typing is told: text that is no number makes the amount 0, any other refused amount
    // keeps the one before, and an unknown account leaves the row without one.
    void refusedTyping()
    {
        f->addVienti(f->addTosite(1), pankki, QStringLiteral("D"), 100000);
        auto m = open();
        m->setArvoTeksti(Puoli::Debet, 0, QStringLiteral("-5"));
        QVERIFY(m->tallenna());
        QCOMPARE(f->value(QStringLiteral("SELECT viArvo FROM vi")).toLongLong(), 100000);
        m->setArvoTeksti(Puoli::Debet, 0, QStringLiteral("kymmenen"));
        QCOMPARE(m->arvoTeksti(Puoli::Debet, 0), QString());
        QVERIFY(m->setTiliTeksti(Puoli::Debet, 0, QStringLiteral("9999")));
        QCOMPARE(m->tiliTeksti(Puoli::Debet, 0), QString());
        QCOMPARE(f->dialogs.texts(ScriptedDialogs::Kind::Information).size(), 3);
    }

    // A row cleared and saved loses its entry; typed into again, it is a new entry of its side
    // and voucher, not one without either that vanishes on reload. The description goes to every entry.
    void clearedRowTypedAgainIsStored()
    {
        const int id = f->addBalanced(f->addTosite(1), pankki, pankki, 100000);
        auto m = open();
        QVERIFY(m->setArvoTeksti(Puoli::Kredit, 0, QString()));
        QVERIFY(m->setTiliTeksti(Puoli::Kredit, 0, QString()));
        QVERIFY(m->tallenna());
        QCOMPARE(f->count(QStringLiteral("vi")), 1);
        QVERIFY(m->setTiliTeksti(Puoli::Kredit, 0, QStringLiteral("3000")));
        QVERIFY(m->setArvoTeksti(Puoli::Kredit, 0, QStringLiteral("7,50")));
        m->setSelite(QStringLiteral("Kahvion myynti 'kesä'"));
        m.reset(); // released without leaving, the editor keeps what is on screen
        QCOMPARE(f->count(QStringLiteral("vi"),
                     QStringLiteral("vitoID = %1 AND viTyyppi = 'K' AND vitlID = %2 AND viArvo = 75000")
                         .arg(id)
                         .arg(myynti)),
            1);
        QCOMPARE(f->count(QStringLiteral("vi"), QStringLiteral("viSelite = 'Kahvion myynti ''kesä'''")), 2);
    }

    void deleteAsksAndForgetsTypedChanges()
    {
        const int first = f->addTosite(1);
        const int second = f->addTosite(2);
        f->addVienti(first, pankki, QStringLiteral("D"), 100000);
        f->addVienti(second, pankki, QStringLiteral("D"), 100000);
        f->dialogs.answerNo().answerYes();
        auto m = open();
        m->setArvoTeksti(Puoli::Debet, 0, QStringLiteral("20")); // a change that must not come back
        QVERIFY(!m->poista());
        QCOMPARE(f->count(QStringLiteral("\"to\"")), 2);
        QVERIFY(m->poista());
        QCOMPARE(m->tosite().ToId(), first);
        QVERIFY(m->sulje());
        m.reset();
        QCOMPARE(f->count(QStringLiteral("\"to\"")), 1);
        QCOMPARE(f->count(QStringLiteral("vi"), QStringLiteral("vitoID = %1").arg(second)), 0);
        QCOMPARE(f->count(QStringLiteral("vi")), 1);
    }

    // A failed save writes nothing and keeps what was typed, to be saved once the books can
    // take it. Closing then asks: No keeps the window, Yes drops the typing, as the user was told.
    void failedSaveKeepsTheTyping()
    {
        f->addTosite(1);
        QVERIFY(f->failOn(QStringLiteral("INSERT"), QStringLiteral("vi")));
        auto m = open();
        m->setTiliTeksti(Puoli::Debet, 0, QStringLiteral("Muut"));
        m->setArvoTeksti(Puoli::Debet, 0, QStringLiteral("7,25"));
        m->setNumero(15);
        QVERIFY(!m->tallenna());
        QVERIFY(f->dialogs.transcript().value(0).contains(QStringLiteral("\nTekninen tieto: disk full")));
        QCOMPARE(f->value(QStringLiteral("SELECT toNumero FROM \"to\"")).toInt(), 1);
        QCOMPARE(f->count(QStringLiteral("vi")), 0);
        f->dialogs.answerNo();
        QVERIFY(!m->sulje());
        QVERIFY(f->exec(QStringLiteral("DROP TRIGGER fail_INSERT_vi")));
        QVERIFY(m->tallenna());
        QCOMPARE(f->value(QStringLiteral("SELECT toNumero FROM \"to\"")).toInt(), 15);
        QCOMPARE(
            f->count(QStringLiteral("vi"), QStringLiteral("viArvo = 72500 AND vitlID = %1").arg(velat)), 1);
        QVERIFY(f->failOn(QStringLiteral("INSERT"), QStringLiteral("vi")));
        m->setTiliTeksti(Puoli::Kredit, 0, QStringLiteral("1910"));
        m->setArvoTeksti(Puoli::Kredit, 0, QStringLiteral("5"));
        f->dialogs.clear();
        f->dialogs.answerYes();
        QVERIFY(m->sulje());
        m.reset();
        QCOMPARE(f->dialogs.transcript().size(), 2); // the question and one error: released, nothing more
        QCOMPARE(f->count(QStringLiteral("vi")), 1);
    }

    // A balanced voucher gets a new one after it when the setting is on, the typed one saved.
    void automaticNewVoucher()
    {
        f->addTosite(1);
        auto m = open();
        m->setTiliTeksti(Puoli::Debet, 0, QStringLiteral("1910"));
        m->setArvoTeksti(Puoli::Debet, 0, QStringLiteral("10"));
        m->setTiliTeksti(Puoli::Kredit, 0, QStringLiteral("3000"));
        m->setArvoTeksti(Puoli::Kredit, 0, QStringLiteral("10"));
        QVERIFY(!m->automaattinenUusi()); // the setting is off
        ProgramSettings::bookkeeping().AutomaattisestiUusiTosite = true;
        m->setArvoTeksti(Puoli::Kredit, 0, QStringLiteral("9"));
        QVERIFY(!m->automaattinenUusi()); // not balanced
        m->setArvoTeksti(Puoli::Kredit, 0, QStringLiteral("10"));
        QVERIFY(m->automaattinenUusi());
        QCOMPARE(m->tosite().Numero(), 2);
        QCOMPARE(f->count(QStringLiteral("vi")), 2);
    }

    void voucherFromAPattern()
    {
        ProgramSettings::bookkeeping().LaskettavaTili = pankki;
        f->addTosite(3);
        auto m = open(Laji::Avaus);
        QVERIFY(m->uusiMallista(QStringLiteral("Jäsenmaksut"),
            { { Puoli::Debet, pankki, Money::fromCents(5000) },
                { Puoli::Kredit, myynti, Money::fromCents(5000) } }));
        QCOMPARE(m->tosite().Numero(), 4);
        QCOMPARE(f->count(QStringLiteral("vi"),
                     QStringLiteral(
                         "viSelite = 'Jäsenmaksut' AND viAvausvienti = 1 AND viArvo = 500000 AND vitoID = %1")
                         .arg(m->tosite().ToId())),
            2);
        // The chosen account's balance counts the pattern's entries once.
        QCOMPARE(m->laskettavanSaldo(), Money::fromCents(5000));
        // All or nothing: a pattern whose entries cannot be written leaves no voucher behind.
        QVERIFY(f->failOn(QStringLiteral("INSERT"), QStringLiteral("vi")));
        QVERIFY(
            !m->uusiMallista(QStringLiteral("Toinen"), { { Puoli::Debet, pankki, Money::fromCents(1) } }));
        QCOMPARE(f->count(QStringLiteral("\"to\"")), 2);
        QCOMPARE(m->tosite().Numero(), 4);
    }
};

QTEST_GUILESS_MAIN(tst_VoucherEditor)
#include "tst_VoucherEditor.moc"
