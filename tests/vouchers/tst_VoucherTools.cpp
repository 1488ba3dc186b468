#include "Controls.h"
#include "VoucherFixture.h"
#include "vouchers/frmNewTositteet.h"
#include "vouchers/frmTositepohja.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTimer>

using Laji = frmNewTositteet::Laji;

// The voucher window's tools through their windows, by keyboard where the user would type.
class tst_VoucherTools : public QObject, VoucherCase {
    Q_OBJECT

    int pankki = 0, vuokra = 0;

    int balanced(int numero, const QString& selite, qint64 raw = 1000000)
    {
        return f->addBalanced(
            f->addTosite(numero, {}, QStringLiteral("2011-03-01"), selite), vuokra, pankki, raw);
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
        // Enter on a finding shows its voucher in the voucher window.
        lista->setFocus();
        lista->setCurrentRow(0);
        QTest::keyClick(lista, Qt::Key_Return);
        QCOMPARE(w.curTosite().Numero(), 5);
    }

    // The search window by keyboard: Enter in the amount searches, Enter on a line opens its voucher.
    void searchHandsTheVoucherOver()
    {
        balanced(1, QStringLiteral("Toimiston vuokra maaliskuu"), 125000);
        balanced(2, QStringLiteral("Sähkö"));
        frmNewTositteet w(f->db(), Laji::Tavallinen);
        w.show();
        // The search window is modal: it is typed into once it is open.
        QTimer::singleShot(0, [&] {
            QWidget* haku = QApplication::activeModalWidget();
            QVERIFY(haku);
            auto* arvo = child<QLineEdit>(*haku, "tVienninArvo");
            arvo->setFocus();
            QTest::keyClicks(arvo, QStringLiteral("12,50"));
            QTest::keyClick(arvo, Qt::Key_Return);
            QTest::keyClick(child<QListWidget>(*haku, "lstTositteet"), Qt::Key_Return);
        });
        child<QPushButton>(w, "cHaku")->click();
        QCOMPARE(w.curTosite().Numero(), 1);
    }

    // A quick select item makes a voucher from its template.
    void quickSelectMakesAVoucher()
    {
        balanced(1, QStringLiteral("Vanha"));
        f->addPohja(QStringLiteral("Vuokra"), 2, QStringLiteral("Toimiston vuokra"),
            { { pankki, "K", 4000000 }, { vuokra, "D", 4000000 } });
        frmNewTositteet w(f->db(), Laji::Tavallinen);
        w.show();
        w.findChildren<QAction*>(QStringLiteral("mTositepohjaX"))[1]->trigger();
        QCOMPARE(w.curTosite().Selite(), QStringLiteral("Toimiston vuokra"));
        QCOMPARE(f->count(QStringLiteral("vi"), QStringLiteral("vitoID = %1").arg(w.curTosite().ToId())), 2);
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
