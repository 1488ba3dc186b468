#include "Controls.h"
#include "VoucherFixture.h"
#include "vouchers/frmNewTositteet.h"

#include <QApplication>
#include <QCompleter>
#include <QLineEdit>
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

// The voucher window's wiring to the editing rules: keyboard, a wrong date, cell editors.
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
        QTableView* view = grid(w);
        QTRY_VERIFY(view->hasFocus() || view->isAncestorOf(QApplication::focusWidget()));
        view->setCurrentIndex(view->model()->index(0, 0));
        typeCell(QStringLiteral("1910")); // by number
        typeCell(QStringLiteral("1 234,50"));
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
        QTest::keyClick(&w, Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(f->dialogs.texts(ScriptedDialogs::Kind::Information).size(), 2);
        QVERIFY(f->value(QStringLiteral("SELECT toPvm FROM \"to\"")).toString().startsWith(u"2011-"));
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
