#include "Controls.h"
#include "VoucherFixture.h"
#include "vouchers/frmNewTositteet.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QCompleter>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTableView>
#include <QTest>

using Laji = frmNewTositteet::Laji;

namespace {

QTableView* grid(QWidget& w) { return child<QTableView>(w, QStringLiteral("grdViennit")); }

void showAndWait(QWidget& w)
{
    w.resize(900, 600);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
}

// Types into the cell editor that has the focus and presses Enter.
void typeCell(const QString& typed)
{
    QLineEdit* editor = nullptr;
    QTRY_VERIFY((editor = qobject_cast<QLineEdit*>(QApplication::focusWidget())) != nullptr);
    QTest::keyClicks(editor, typed);
    QTest::keyClick(editor, Qt::Key_Return);
}

} // namespace

// The voucher window's wiring to the editing rules: keyboard, refusals, cell editors.
class tst_frmNewTositteet : public QObject, VoucherCase {
    Q_OBJECT

    int pankki = 0, myynti = 0;

private slots:
    void init()
    {
        start();
        pankki = f->addTili(1910, QStringLiteral("Pankkitili"));
        myynti = f->addTili(3000, QStringLiteral("Myyntituotot"));
    }
    void cleanup() { finish(); }

    void typingAVoucherWithTheKeyboard()
    {
        f->addTosite(1);
        frmNewTositteet w(f->db(), Laji::Tavallinen);
        showAndWait(w);
        QTest::keyClick(&w, Qt::Key_N, Qt::ControlModifier);
        auto* pvm = child<QLineEdit>(w, QStringLiteral("tTositepvm"));
        QTRY_COMPARE(QApplication::focusWidget(), pvm);
        QTest::keyClicks(pvm, QStringLiteral("4.9.2011+"));
        QTest::keyClick(pvm, Qt::Key_Return);
        auto* selite = child<QLineEdit>(w, QStringLiteral("tTositeSelite"));
        QTRY_COMPARE(QApplication::focusWidget(), selite);
        QTest::keyClicks(selite, QStringLiteral("Kahvion myynti 'kesa'"));
        QTest::keyClick(selite, Qt::Key_Return);
        QAbstractItemModel* list = child<QListView>(w, QStringLiteral("lstTositteet"))->model();
        QCOMPARE(list->index(1, 0).data().toString(), QStringLiteral("2 Kahvion myynti 'kesa'"));
        QTableView* view = grid(w);
        QTRY_VERIFY(view->hasFocus() || view->isAncestorOf(QApplication::focusWidget()));
        view->setCurrentIndex(view->model()->index(0, 0));
        typeCell(QStringLiteral("1910")); // by number
        typeCell(QStringLiteral("1 234,50"));
        QCOMPARE(child<QLabel>(w, "lblErotus")->text(), Money::fromCents(123450).toCurrencyString());
        // By the start of a name: the completion list is open, and one Enter takes the choice
        // and moves on to the amount.
        QLineEdit* editor = nullptr;
        QTRY_VERIFY((editor = qobject_cast<QLineEdit*>(QApplication::focusWidget())) != nullptr);
        QTest::keyClicks(editor, QStringLiteral("myyn"));
        QTRY_VERIFY(editor->completer()->popup()->isVisible());
        QTest::keyClick(editor->completer()->popup(), Qt::Key_Return);
        QTRY_COMPARE(view->currentIndex(), view->model()->index(0, 3));
        typeCell(QStringLiteral("1234,5"));
        QTest::keyClick(&w, Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(f->dialogs.transcript(), QStringList());
        QCOMPARE(f->count(QStringLiteral("vi"),
                     QStringLiteral(
                         "vitoID = %1 AND viArvo = 12345000 AND viSelite = 'Kahvion myynti ''kesa''' AND "
                         "vitlID = CASE viTyyppi WHEN 'D' THEN %2 WHEN 'K' THEN %3 END")
                         .arg(w.curTosite().ToId())
                         .arg(pankki)
                         .arg(myynti)),
            2);
        QCOMPARE(f->value(QStringLiteral("SELECT toPvm FROM \"to\" WHERE toNumero = 2")).toString(),
            QStringLiteral("2011-09-05"));
        f->dialogs.answerYes();
        QTest::mouseClick(child<QPushButton>(w, QStringLiteral("cPoista")), Qt::LeftButton);
        QCOMPARE(list->rowCount(), 1);
        QCOMPARE(f->count(QStringLiteral("\"to\"")), 1);
    }

    // A wrong date is told at once and the field empties; the voucher is not stored undated.
    void wrongDateIsToldAndNeverStored()
    {
        f->addTosite(1);
        frmNewTositteet w(f->db(), Laji::Tavallinen);
        showAndWait(w);
        auto* pvm = child<QLineEdit>(w, QStringLiteral("tTositepvm"));
        pvm->setFocus();
        QTRY_COMPARE(QApplication::focusWidget(), pvm);
        pvm->selectAll();
        QTest::keyClicks(pvm, QStringLiteral("31.2.2011"));
        QTest::keyClick(pvm, Qt::Key_Return);
        QCOMPARE(pvm->text(), QString());
        QTest::keyClick(&w, Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(f->dialogs.transcript(),
            (QStringList { QStringLiteral("information: 31.2.2011 ei ole päivämäärä."),
                QStringLiteral("information: Tositteelta puuttuu päivämäärä. Kirjoita päivämäärä (p.k.vvvv) "
                               "ennen kuin jatkat.") }));
        QVERIFY(f->value(QStringLiteral("SELECT toPvm FROM \"to\"")).toString().startsWith(u"2011-"));
    }

    // Closing runs the account check of its own (saving and browsing: tst_VoucherEditor), here on
    // a row the button added.
    void refusedAccountCheckKeepsTheWindow()
    {
        f->addTosite(1);
        frmNewTositteet w(f->db(), Laji::Tavallinen);
        showAndWait(w);
        QTest::mouseClick(child<QPushButton>(w, QStringLiteral("cLisaaVienteja")), Qt::LeftButton);
        QAbstractItemModel* rows = grid(w)->model();
        QCOMPARE(rows->rowCount(), VoucherEditor::VahimmaisRivit + 1);
        rows->setData(rows->index(VoucherEditor::VahimmaisRivit, 3), QStringLiteral("100"));
        QVERIFY(!w.close());
        QCOMPARE(f->dialogs.transcript().size(), 1);
        QCOMPARE(f->count(QStringLiteral("vi")), 0);
    }

    // Passing through the cells of an entry whose stored amount the editor would refuse (here
    // more than two decimals, shown rounded with a thousands separator) writes nothing.
    void passingThroughACellChangesNothing()
    {
        const qint64 raw = 1234567891;
        f->addVienti(f->addTosite(1), pankki, QStringLiteral("D"), raw);
        frmNewTositteet w(f->db(), Laji::Tavallinen);
        showAndWait(w);
        const qint64 before = f->totalChanges();
        QTableView* view = grid(w);
        view->setFocus();
        view->setCurrentIndex(view->model()->index(0, 0));
        for (int i = 0; i < 3; ++i)
            typeCell(QString());
        QVERIFY(w.close());
        QCOMPARE(f->totalChanges(), before);
        QCOMPARE(f->value(QStringLiteral("SELECT viArvo FROM vi")).toLongLong(), raw);
        QCOMPARE(f->dialogs.transcript(), QStringList());
    }
};

QTEST_MAIN(tst_frmNewTositteet)
#include "tst_frmNewTositteet.moc"
