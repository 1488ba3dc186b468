#include "Controls.h"
#include "VoucherFixture.h"
#include "vouchers/frmNewTositteet.h"
#include "vouchers/frmTositepohja.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <functional>

using Laji = frmNewTositteet::Laji;

namespace {

// Runs `work` on the modal dialog that the next step opens.
void onModal(std::function<void(QWidget&)> work)
{
    QTimer::singleShot(0, [work] {
        QWidget* modal = QApplication::activeModalWidget();
        QVERIFY(modal);
        work(*modal);
    });
}

} // namespace

// The voucher window's tools through their windows, by keyboard where the user would type.
class tst_VoucherTools : public QObject, VoucherCase {
    Q_OBJECT

    int pankki = 0, vuokra = 0;

    int balanced(int numero, const QString& selite, qint64 raw = 1000000)
    {
        return f->addBalanced(
            f->addTosite(numero, {}, QStringLiteral("2011-03-01"), selite), vuokra, pankki, raw);
    }
    // The texts of the quick select items shown in the menu.
    static QStringList shown(QWidget& w)
    {
        QStringList out;
        for (QAction* a : w.findChildren<QAction*>(QStringLiteral("mTositepohjaX")))
            if (a->isVisible())
                out << a->text();
        return out;
    }

private slots:
    void init()
    {
        start();
        pankki = f->addTili(1910, QStringLiteral("Pankkitili"));
        vuokra = f->addTili(7100, QStringLiteral("Vuokrat"));
    }
    void cleanup() { finish(); }

    void findingsOpenTheirVoucher()
    {
        balanced(1, QStringLiteral("Kunnossa"));
        f->addTosite(5, {}, QStringLiteral("2010-12-31"));
        frmNewTositteet w(f->db(), Laji::Tavallinen);
        w.show();
        w.Ensimmainen();
        child<QAction>(w, "mTositteidenTarkistus")->trigger();
        auto* lista = child<QListWidget>(w, "lstVirheet");
        QCOMPARE(lista->count(), 1);
        // Enter on a finding shows its voucher in the voucher window.
        lista->setFocus();
        lista->setCurrentRow(0);
        QTest::keyClick(lista, Qt::Key_Return);
        QCOMPARE(w.curTosite().Numero(), 5);
        // Corrected, the check runs clean.
        f->exec(QStringLiteral("UPDATE \"to\" SET toPvm = '2011-01-01'"));
        child<QPushButton>(w, "cTarkista")->click();
        QCOMPARE(lista->item(0)->text(), QStringLiteral("Tarkistus suoritettu virheettömästi."));
        QTest::keyClick(lista, Qt::Key_Return); // a line of no voucher opens none
        QCOMPARE(w.curTosite().Numero(), 5);
    }

    void findingsWindowRefusesWithoutDatabaseSettings()
    {
        balanced(1, QStringLiteral("Kunnossa"));
        frmNewTositteet w(f->db(), Laji::Tavallinen);
        ProgramSettings::installation().Database = QStringLiteral("unknown");
        child<QAction>(w, "mTositteidenTarkistus")->trigger();
        QCOMPARE(f->dialogs.transcript(),
            QStringList { QStringLiteral("information: Tarkista tietokanta asetukset asetusikkunasta!") });
        QCOMPARE(child<QListWidget>(w, "lstVirheet")->count(), 0);
    }

    // Closing the window offers the check when the books have faults: No closes, Yes opens it.
    void checkOfferWhenTheUserLeaves()
    {
        balanced(1, QStringLiteral("Vuokra"));
        for (const auto& [faulty, yes] :
            { std::pair(false, false), std::pair(true, false), std::pair(true, true) }) {
            if (faulty)
                f->exec(QStringLiteral("UPDATE vi SET viArvo = 5 WHERE viTyyppi = 'K'"));
            frmNewTositteet w(f->db(), Laji::Tavallinen);
            w.show();
            QVERIFY(QTest::qWaitForWindowExposed(&w));
            if (faulty)
                yes ? f->dialogs.answerYes() : f->dialogs.answerNo();
            child<QPushButton>(w, "cSulje")->click();
            QCOMPARE(w.isVisible(), yes);
            QCOMPARE(w.findChild<QListWidget*>(QStringLiteral("lstVirheet")) != nullptr, yes);
            // The program's own close asks nothing.
            if (yes)
                QVERIFY(w.close());
        }
        QCOMPARE(f->dialogs.texts(ScriptedDialogs::Kind::Question),
            QStringList(
                2, QStringLiteral("Tositteissa puutteita, haluatko avata tositteiden tarkistusikkunan?")));
    }

    void searchHandsTheVoucherOver()
    {
        balanced(1, QStringLiteral("Toimiston vuokra maaliskuu"), 125000);
        balanced(2, QStringLiteral("Sähkö"));
        frmNewTositteet w(f->db(), Laji::Tavallinen);
        w.show();
        QString tulos;
        onModal([&](QWidget& haku) {
            auto* arvo = child<QLineEdit>(haku, "tVienninArvo");
            arvo->setFocus();
            QTest::keyClicks(arvo, QStringLiteral("abc"));
            child<QPushButton>(haku, "cSearch")->click();
            arvo->clear();
            // Enter in the field searches.
            QTest::keyClicks(arvo, QStringLiteral("12,50"));
            QTest::keyClick(arvo, Qt::Key_Return);
            tulos = child<QLabel>(haku, "lblTulos")->text();
            QTest::keyClick(child<QListWidget>(haku, "lstTositteet"), Qt::Key_Return);
        });
        child<QPushButton>(w, "cHaku")->click();
        QCOMPARE(f->dialogs.transcript(),
            QStringList { QStringLiteral("information: Viennin arvon tulee olla numeerinen.") });
        QCOMPARE(tulos, QStringLiteral("Löytyi 1 tosite."));
        QCOMPARE(w.curTosite().Numero(), 1);

        // Cancel keeps the voucher on screen.
        onModal([&](QWidget& haku) {
            child<QLineEdit>(haku, "tSelite")->setText(QStringLiteral("SÄHKÖ"));
            child<QPushButton>(haku, "cSearch")->click();
            child<QPushButton>(haku, "cUndo")->click();
        });
        child<QAction>(w, "mHaku")->trigger();
        QCOMPARE(w.curTosite().Numero(), 1);
    }

    void quickSelectMakesVouchersAndFollowsChanges()
    {
        balanced(1, QStringLiteral("Vanha"));
        const QList<std::tuple<int, const char*, qint64>> rivit { { pankki, "K", 4000000 },
            { vuokra, "D", 4000000 } };
        f->addPohja(QStringLiteral("Vuokra & vastike"), 2, QStringLiteral("Toimiston vuokra"), rivit);
        f->addPohja(QStringLiteral("Ilman"), QVariant(), {}, rivit);
        frmNewTositteet w(f->db(), Laji::Tavallinen);
        w.show();
        QCOMPARE(shown(w), QStringList { QStringLiteral("(&2) Vuokra && vastike") });
        w.findChildren<QAction*>(QStringLiteral("mTositepohjaX"))[1]->trigger();
        QCOMPARE(w.curTosite().Selite(), QStringLiteral("Toimiston vuokra"));
        QCOMPARE(f->count(QStringLiteral("vi"), QStringLiteral("vitoID = %1").arg(w.curTosite().ToId())), 2);

        // The template window: number 2 is taken, 3 is free; the menu follows the save.
        child<QAction>(w, "mMuokkaaTositepohjia")->trigger();
        auto* pohjat = w.findChild<frmTositepohja*>();
        QVERIFY(pohjat);
        auto* combo = child<QComboBox>(*pohjat, "cmbPikavalinta");
        combo->setFocus();
        QTest::keyClick(combo, Qt::Key_Down);
        QTest::keyClick(combo, Qt::Key_Down);
        QCOMPARE(f->dialogs.transcript(),
            QStringList { QStringLiteral("information: Pikavalinta 2 on jo käytössä.") });
        QCOMPARE(combo->currentText(), QStringLiteral("1"));
        QTest::keyClick(combo, Qt::Key_3);
        child<QPushButton>(*pohjat, "cTallenna")->click();
        QCOMPARE(shown(w),
            (QStringList { QStringLiteral("(&2) Vuokra && vastike"), QStringLiteral("(&3) Ilman") }));

        // Deleting the template in use takes its item away.
        auto* lista = child<QListWidget>(*pohjat, "lstTositepohjat");
        lista->setCurrentRow(1); // by name: Ilman, Vuokra & vastike
        QTest::keyClick(lista, Qt::Key_Return);
        f->dialogs.answerYes();
        child<QPushButton>(*pohjat, "cPoista")->click();
        QCOMPARE(shown(w), QStringList { QStringLiteral("(&3) Ilman") });
        QVERIFY(pohjat->close());
    }

    void templateRowsTypedByKeyboard()
    {
        frmTositepohja w(f->db());
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        auto* nimi = child<QLineEdit>(w, "tNimi");
        nimi->setFocus();
        QTest::keyClicks(nimi, QStringLiteral("Pankkimaksu"));
        QTest::keyClick(nimi, Qt::Key_Return);
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("Pankin palvelumaksu"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return); // past the quick select
        auto* grid = w.findChild<QAbstractItemView*>(QStringLiteral("grdViennit"));
        grid->setCurrentIndex(grid->model()->index(0, 0));
        for (const QString& typed : { QStringLiteral("vuok"), QStringLiteral("12,5"), QStringLiteral("1910"),
                 QStringLiteral("12,50") }) {
            QLineEdit* editor = nullptr;
            QTRY_VERIFY((editor = qobject_cast<QLineEdit*>(QApplication::focusWidget())) != nullptr);
            QTest::keyClicks(editor, typed);
            QTest::keyClick(editor, Qt::Key_Return);
        }
        QVERIFY(w.close());
        QCOMPARE(
            f->value(QStringLiteral("SELECT Selite FROM tpPohjat WHERE Nimi = 'Pankkimaksu'")).toString(),
            QStringLiteral("Pankin palvelumaksu"));
        QCOMPARE(f->count(QStringLiteral("vipPohjat"), QStringLiteral("vipArvo = 125000")), 2);
    }
};

QTEST_MAIN(tst_VoucherTools)
#include "tst_VoucherTools.moc"
