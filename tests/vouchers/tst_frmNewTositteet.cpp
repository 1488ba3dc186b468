#include "ScriptedDialogs.h"
#include "VoucherFixture.h"
#include "frmNewTositteet.h"

#include <QAbstractItemModel>
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>
#include <QTest>

using Kind = frmNewTositteet::Kind;
Q_DECLARE_METATYPE(frmNewTositteet::Kind)

namespace {

template <typename T> T* child(QWidget& w, const char* name)
{
    auto* c = w.findChild<T*>(QString::fromUtf8(name));
    if (!c)
        qWarning("no child %s", name);
    return c;
}

void click(QWidget& w, const char* name) { QTest::mouseClick(child<QPushButton>(w, name), Qt::LeftButton); }

QAbstractItemModel* grid(QWidget& w) { return child<QTableView>(w, "grdViennit")->model(); }

void setCell(QWidget& w, int row, int column, const QString& text)
{
    QAbstractItemModel* m = grid(w);
    m->setData(m->index(row, column), text, Qt::EditRole);
}

QString cell(QWidget& w, int row, int column) { return grid(w)->index(row, column).data().toString(); }

// Accounts 1910 Pankkitili, 2250 Muut velat and 3000 Myyntituotot; returns their keys.
struct Chart {
    int pankki, velat, myynti;
};

Chart addChart(VoucherFixture& f)
{
    return { f.addTili(1910, QStringLiteral("Pankkitili")), f.addTili(2250, QStringLiteral("Muut velat")),
        f.addTili(3000, QStringLiteral("Myyntituotot")) };
}

} // namespace

class tst_frmNewTositteet : public QObject {
    Q_OBJECT

private slots:
    void captions_data();
    void captions();
    void newVoucherInEmptyDatabase();
    void opensOnLastVoucherOfItsKind();
    void nineDebitEntriesGiveNineRows();
    void addRowsButton();
    void accountCheckBlocks_data();
    void accountCheckBlocks();
    void dateOutsideFiscalYearIsWarnedAndKept();
    void invalidDateEmptiesField_data();
    void invalidDateEmptiesField();
    void plusAndMinusInDateField();
    void nextOnLastBeepsAndChangesNothing();
    void browsingStaysInKind();
    void chosenAccountBalance();
    void typingAVoucherWithKeyboard();
    void badAmounts_data();
    void badAmounts();
    void descriptionCopiedToEntriesAndCut();
    void totalsAndRedDifference();
    void undoPutsBackVoucher();
    void deleteOnlyVoucher();
    void deleteAnsweredNoKeepsVoucher();
    void closingSavesChanges();
    void automaticNewVoucher();
    void laterFeaturesDisabled();
};

void tst_frmNewTositteet::captions_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<QString>("caption");
    QTest::newRow("ordinary") << Kind::Ordinary << "Tositteet";
    QTest::newRow("opening") << Kind::Opening << "Tositteet - Avausviennit";
    QTest::newRow("closing") << Kind::Closing << QString::fromUtf8("Tositteet - Tilinpäätösviennit");
}

void tst_frmNewTositteet::captions()
{
    QFETCH(Kind, kind);
    QFETCH(QString, caption);
    VoucherFixture f;
    QVERIFY(f.ok);
    ScriptedDialogs dialogs;
    frmNewTositteet w(kind);
    QCOMPARE(w.windowTitle(), caption);
    // A new voucher takes the window's kind and the shared number sequence.
    f.addTosite(4, QStringLiteral("P"));
    click(w, "cUusi");
    QCOMPARE(w.curTosite().Numero(), 5);
    QCOMPARE(w.curTosite().Avaustosite(), kind == Kind::Opening);
    QCOMPARE(w.curTosite().Paatostosite(), kind == Kind::Closing);
    QVERIFY(dialogs.transcript().isEmpty());
}

void tst_frmNewTositteet::newVoucherInEmptyDatabase()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    ScriptedDialogs dialogs;
    frmNewTositteet w(Kind::Ordinary);
    w.show();
    QVERIFY(w.curTosite().IsEmpty());
    QVERIFY(!child<QLineEdit>(w, "tTositepvm")->isEnabled());
    QCOMPARE(w.rowCount(), 6);
    QCOMPARE(child<QLabel>(w, "lblHalutunTilinSaldo")->text(), QStringLiteral("- -"));
    click(w, "cUusi");
    QVERIFY(!w.curTosite().IsEmpty());
    QCOMPARE(w.curTosite().Numero(), 1);
    QCOMPARE(w.curTosite().Paiva(), QDate(2011, 1, 1));
    QCOMPARE(f.count(QStringLiteral("\"to\"")), 1);
    QCOMPARE(child<QLineEdit>(w, "tTositenumero")->text(), QStringLiteral("1"));
    QCOMPARE(child<QLineEdit>(w, "tTositepvm")->text(), QStringLiteral("1.1.2011"));
    QCOMPARE(child<QListView>(w, "lstTositteet")->model()->rowCount(), 1);
    QVERIFY(QApplication::focusWidget() == child<QLineEdit>(w, "tTositepvm") || !w.isActiveWindow());
}

void tst_frmNewTositteet::opensOnLastVoucherOfItsKind()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    f.addTosite(1, QString(), QStringLiteral("2011-02-01"), QStringLiteral("Eka"));
    f.addTosite(2, QString(), QStringLiteral("2011-02-02"), QStringLiteral("Toka"));
    f.addTosite(3, QStringLiteral("A"), QStringLiteral("2011-01-01"), QStringLiteral("Avaus"));
    f.addTosite(-1, QString(), QStringLiteral("2011-12-31"), QStringLiteral("Saldorivit"));
    ScriptedDialogs dialogs;
    frmNewTositteet w(Kind::Ordinary);
    QCOMPARE(w.curTosite().Numero(), 2);
    QCOMPARE(child<QLineEdit>(w, "tTositeSelite")->text(), QStringLiteral("Toka"));
    QAbstractItemModel* list = child<QListView>(w, "lstTositteet")->model();
    QCOMPARE(list->rowCount(), 2);
    QCOMPARE(list->index(0, 0).data().toString(), QStringLiteral("1 Eka"));
    frmNewTositteet opening(Kind::Opening);
    QCOMPARE(opening.curTosite().Selite(), QStringLiteral("Avaus"));
    frmNewTositteet closing(Kind::Closing);
    QVERIFY(closing.curTosite().IsEmpty());
}

void tst_frmNewTositteet::nineDebitEntriesGiveNineRows()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const Chart c = addChart(f);
    const int id = f.addTosite(1);
    for (int i = 0; i < 9; ++i)
        f.addVienti(id, c.pankki, QStringLiteral("D"), 10000 * (i + 1));
    f.addVienti(id, c.myynti, QStringLiteral("K"), 450000);
    ScriptedDialogs dialogs;
    frmNewTositteet w(Kind::Ordinary);
    w.resize(900, 600);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
    QCOMPARE(w.MaxLkmViennitPerTosite(), qint16(9));
    QCOMPARE(w.rowCount(), 9);
    QCOMPARE(grid(w)->rowCount(), 9);
    QCOMPARE(child<QScrollBar>(w, "scrlViennit")->maximum(), 3);
    QCOMPARE(cell(w, 8, 1), QStringLiteral("9,00"));
    QCOMPARE(cell(w, 0, 0), QStringLiteral("1910 Pankkitili"));
    QCOMPARE(cell(w, 0, 3), QStringLiteral("45,00"));
    QCOMPARE(cell(w, 1, 2), QString());
}

void tst_frmNewTositteet::addRowsButton()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    f.addTosite(1);
    ScriptedDialogs dialogs;
    frmNewTositteet w(Kind::Ordinary);
    w.resize(900, 600);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
    QCOMPARE(w.rowCount(), 6);
    QVERIFY(!child<QScrollBar>(w, "scrlViennit")->isVisible());
    click(w, "cLisaaVienteja");
    QCOMPARE(w.rowCount(), 7);
    QCOMPARE(grid(w)->rowCount(), 7);
    setCell(w, 6, 1, QStringLiteral("5"));
    QCOMPARE(w.rowCount(), 7);
}

void tst_frmNewTositteet::accountCheckBlocks_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("column");
    QTest::newRow("save, debit") << "cTallenna" << 1;
    QTest::newRow("save, credit") << "cTallenna" << 3;
    QTest::newRow("new") << "cUusi" << 1;
    QTest::newRow("previous") << "cEdellinen" << 1;
    QTest::newRow("first") << QString::fromUtf8("cEnsimmäinen") << 3;
    QTest::newRow("close") << "cSulje" << 1;
}

void tst_frmNewTositteet::accountCheckBlocks()
{
    QFETCH(QString, command);
    QFETCH(int, column);
    VoucherFixture f;
    QVERIFY(f.ok);
    addChart(f);
    f.addTosite(1);
    const int id = f.addTosite(2, QString(), QStringLiteral("2011-03-01"), QStringLiteral("Kesken"));
    ScriptedDialogs dialogs;
    frmNewTositteet w(Kind::Ordinary);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
    setCell(w, 2, column, QStringLiteral("100"));
    const qint64 before = f.totalChanges();
    QTest::mouseClick(w.findChild<QPushButton*>(command), Qt::LeftButton);
    QCOMPARE(dialogs.transcript(), QStringList { QStringLiteral("information: Tarkista tilivalinta.") });
    QCOMPARE(w.curTosite().ToId(), id);
    QVERIFY(w.isVisible());
    QCOMPARE(f.totalChanges(), before);
    auto* view = child<QTableView>(w, "grdViennit");
    QCOMPARE(view->currentIndex().row(), 2);
    QCOMPARE(view->currentIndex().column(), column - 1);
    // With an account chosen the command goes through.
    dialogs.clear();
    setCell(w, 2, column - 1, QStringLiteral("1910"));
    QVERIFY(w.close());
    QCOMPARE(dialogs.transcript(), QStringList());
    QCOMPARE(f.count(QStringLiteral("vi"), QStringLiteral("viArvo = 1000000 AND vitoID = %1").arg(id)), 1);
}

void tst_frmNewTositteet::dateOutsideFiscalYearIsWarnedAndKept()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    f.addTosite(1);
    ScriptedDialogs dialogs;
    frmNewTositteet w(Kind::Ordinary);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
    auto* pvm = child<QLineEdit>(w, "tTositepvm");
    pvm->setFocus();
    pvm->selectAll();
    QTest::keyClicks(pvm, QStringLiteral("1.1.2012"));
    QTest::keyClick(pvm, Qt::Key_Return);
    QCOMPARE(dialogs.transcript(),
        QStringList { QString::fromUtf8("information: Tositteen päivämäärän tulee kuulua "
                                        "tilikauteen!\n\nTilikausi: 1.1.2011 - 31.12.2011") });
    QCOMPARE(w.curTosite().Paiva(), QDate(2012, 1, 1));
    QTRY_COMPARE(QApplication::focusWidget(), pvm);
    click(w, "cTallenna");
    QCOMPARE(f.value(QStringLiteral("SELECT toPvm FROM \"to\"")).toString(), QStringLiteral("2012-01-01"));
}

void tst_frmNewTositteet::invalidDateEmptiesField_data()
{
    QTest::addColumn<QString>("typed");
    QTest::newRow("29 February of a common year") << "29.2.2011";
    QTest::newRow("not a date") << "huomenna";
    QTest::newRow("month 13") << "1.13.2011";
}

void tst_frmNewTositteet::invalidDateEmptiesField()
{
    QFETCH(QString, typed);
    VoucherFixture f;
    QVERIFY(f.ok);
    f.addTosite(1);
    ScriptedDialogs dialogs;
    frmNewTositteet w(Kind::Ordinary);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
    auto* pvm = child<QLineEdit>(w, "tTositepvm");
    pvm->setFocus();
    pvm->selectAll();
    QTest::keyClicks(pvm, typed);
    QTest::keyClick(pvm, Qt::Key_Return);
    QCOMPARE(pvm->text(), QString());
    QVERIFY(!w.curTosite().Paiva().isValid());
    click(w, "cTallenna");
    QVERIFY(f.value(QStringLiteral("SELECT toPvm FROM \"to\"")).isNull());
}

void tst_frmNewTositteet::plusAndMinusInDateField()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    f.addTosite(1, QString(), QStringLiteral("2011-02-28"));
    ScriptedDialogs dialogs;
    frmNewTositteet w(Kind::Ordinary);
    auto* pvm = child<QLineEdit>(w, "tTositepvm");
    QTest::keyClick(pvm, Qt::Key_Plus);
    QCOMPARE(pvm->text(), QStringLiteral("1.3.2011"));
    QCOMPARE(w.curTosite().Paiva(), QDate(2011, 3, 1));
    QTest::keyClick(pvm, Qt::Key_Minus);
    QTest::keyClick(pvm, Qt::Key_Minus);
    QCOMPARE(pvm->text(), QStringLiteral("27.2.2011"));
    QVERIFY(w.curTosite().Dirty());
}

void tst_frmNewTositteet::nextOnLastBeepsAndChangesNothing()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    f.addTosite(1);
    const int last = f.addTosite(2, QString(), QStringLiteral("2011-03-01"), QStringLiteral("Viimeinen"));
    ScriptedDialogs dialogs;
    frmNewTositteet w(Kind::Ordinary);
    const qint64 before = f.totalChanges();
    click(w, "cSeuraava");
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Beep).size(), 1);
    QCOMPARE(w.curTosite().ToId(), last);
    QCOMPARE(child<QLineEdit>(w, "tTositeSelite")->text(), QStringLiteral("Viimeinen"));
    QCOMPARE(f.totalChanges(), before);
    w.findChild<QAction*>(QStringLiteral("mEdelliseen"))->trigger();
    QCOMPARE(w.curTosite().Numero(), 1);
    click(w, "cEdellinen");
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Beep).size(), 2);
    QCOMPARE(w.curTosite().Numero(), 1);
}

void tst_frmNewTositteet::browsingStaysInKind()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    f.addTosite(1);
    f.addTosite(2, QStringLiteral("A"));
    f.addTosite(3);
    f.addTosite(4, QStringLiteral("P"));
    ScriptedDialogs dialogs;
    frmNewTositteet w(Kind::Ordinary);
    QCOMPARE(w.curTosite().Numero(), 3);
    click(w, "cEdellinen");
    QCOMPARE(w.curTosite().Numero(), 1);
    click(w, "cViimeinen");
    QCOMPARE(w.curTosite().Numero(), 3);
    frmNewTositteet opening(Kind::Opening);
    click(opening, "cSeuraava");
    QCOMPARE(opening.curTosite().Numero(), 2);
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Beep).size(), 1);
}

void tst_frmNewTositteet::chosenAccountBalance()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const Chart c = addChart(f);
    ProgramSettings::bookkeeping().LaskettavaTili = c.pankki;
    const int other = f.addTosite(1);
    f.addVienti(other, c.pankki, QStringLiteral("D"), 1000000); // 100,00 in another voucher
    f.addVienti(other, c.myynti, QStringLiteral("K"), 1000000);
    const int shown = f.addTosite(2);
    f.addVienti(shown, c.pankki, QStringLiteral("K"), 200000); // 20,00 on screen
    f.addVienti(999, c.pankki, QStringLiteral("D"), 7770000); // an entry without voucher does not count
    ScriptedDialogs dialogs;
    frmNewTositteet w(Kind::Ordinary);
    auto* saldo = child<QLabel>(w, "lblHalutunTilinSaldo");
    QCOMPARE(saldo->text(), Money::fromCents(8000).toCurrencyString());
    setCell(w, 1, 3, QStringLiteral("30"));
    setCell(w, 1, 2, QStringLiteral("1910"));
    QCOMPARE(saldo->text(), Money::fromCents(5000).toCurrencyString());
    click(w, "cTallenna");
    click(w, "cEdellinen");
    QCOMPARE(saldo->text(), Money::fromCents(5000).toCurrencyString());
    setCell(w, 0, 1, QString());
    setCell(w, 0, 0, QString());
    QCOMPARE(saldo->text(), Money::fromCents(-5000).toCurrencyString());
}

void tst_frmNewTositteet::typingAVoucherWithKeyboard()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const Chart c = addChart(f);
    f.addTosite(1);
    ScriptedDialogs dialogs;
    frmNewTositteet w(Kind::Ordinary);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
    QTest::keyClick(&w, Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(w.curTosite().Numero(), 2);
    auto* pvm = child<QLineEdit>(w, "tTositepvm");
    QTRY_COMPARE(QApplication::focusWidget(), pvm);
    QTest::keyClicks(pvm, QStringLiteral("5.9.2011"));
    QTest::keyClick(pvm, Qt::Key_Return);
    auto* selite = child<QLineEdit>(w, "tTositeSelite");
    QTRY_COMPARE(QApplication::focusWidget(), selite);
    QTest::keyClicks(selite, QStringLiteral("Kahvion myynti 'kesa'"));
    QTest::keyClick(selite, Qt::Key_Return);
    auto* view = child<QTableView>(w, "grdViennit");
    QTRY_VERIFY(view->hasFocus() || view->isAncestorOf(QApplication::focusWidget()));
    view->setCurrentIndex(view->model()->index(0, 0));
    const auto typeCell = [&](const QString& text) {
        QLineEdit* editor = nullptr;
        QTRY_VERIFY((editor = qobject_cast<QLineEdit*>(QApplication::focusWidget())) != nullptr);
        QTest::keyClicks(editor, text);
        QTest::keyClick(editor, Qt::Key_Return);
    };
    typeCell(QStringLiteral("1910"));
    typeCell(QStringLiteral("1 234,50"));
    typeCell(QStringLiteral("myyn"));
    typeCell(QStringLiteral("1234,5"));
    QCOMPARE(cell(w, 0, 0), QStringLiteral("1910 Pankkitili"));
    QCOMPARE(cell(w, 0, 2), QStringLiteral("3000 Myyntituotot"));
    QTest::keyClick(&w, Qt::Key_S, Qt::ControlModifier);
    QCOMPARE(dialogs.transcript(), QStringList());
    const int id = w.curTosite().ToId();
    QCOMPARE(f.count(QStringLiteral("vi"), QStringLiteral("vitoID = %1").arg(id)), 2);
    QCOMPARE(
        f.value(QStringLiteral("SELECT viArvo FROM vi WHERE viTyyppi = 'D' AND vitlID = ?"), { c.pankki })
            .toLongLong(),
        12345000);
    QCOMPARE(f.value(QStringLiteral("SELECT viSelite FROM vi WHERE viTyyppi = 'K'")).toString(),
        QString::fromUtf8("Kahvion myynti 'kesa'"));
    QCOMPARE(f.value(QStringLiteral("SELECT toPvm FROM \"to\" WHERE toID = ?"), { id }).toString(),
        QStringLiteral("2011-09-05"));
    QTest::keyClick(&w, Qt::Key_PageUp);
    QCOMPARE(w.curTosite().Numero(), 1);
    QTest::keyClick(&w, Qt::Key_PageDown);
    QCOMPARE(w.curTosite().Numero(), 2);
    QCOMPARE(cell(w, 0, 1), Money::fromCents(123450).toString());
}

void tst_frmNewTositteet::badAmounts_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("message");
    QTest::addColumn<qint64>("stored"); // the amount before was 10,00
    QTest::newRow("not a number") << "kymmenen"
                                  << "Summa ei ole luku. Viennin summaksi tulee 0." << qint64(0);
    QTest::newRow("negative") << "-5"
                              << "Summa ei voi olla negatiivinen. Kirjaa vienti vastakkaiselle puolelle."
                              << qint64(100000);
    QTest::newRow("three decimals") << "12,345"
                                    << QString::fromUtf8("Summassa voi olla enintään kaksi desimaalia.")
                                    << qint64(100000);
    QTest::newRow("huge") << "99999999999999999"
                          << "Summa on liian suuri." << qint64(100000);
    QTest::newRow("a billion") << "1 000 000 000"
                               << "Summa on liian suuri." << qint64(100000);
    QTest::newRow("Finnish thousands") << "1 234,50" << QString() << qint64(12345000);
    QTest::newRow("euro sign") << "12,50 €" << QString() << qint64(125000);
}

void tst_frmNewTositteet::badAmounts()
{
    QFETCH(QString, typed);
    QFETCH(QString, message);
    QFETCH(qint64, stored);
    VoucherFixture f;
    QVERIFY(f.ok);
    const Chart c = addChart(f);
    const int id = f.addTosite(1);
    f.addVienti(id, c.pankki, QStringLiteral("D"), 100000);
    ScriptedDialogs dialogs;
    frmNewTositteet w(Kind::Ordinary);
    setCell(w, 0, 1, typed);
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Information),
        message.isEmpty() ? QStringList() : QStringList { message });
    click(w, "cTallenna");
    QCOMPARE(f.value(QStringLiteral("SELECT viArvo FROM vi")).toLongLong(), stored);
}

void tst_frmNewTositteet::descriptionCopiedToEntriesAndCut()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const Chart c = addChart(f);
    const int id = f.addTosite(1);
    f.addVienti(id, c.pankki, QStringLiteral("D"), 100000);
    f.addVienti(id, c.myynti, QStringLiteral("K"), 100000);
    ScriptedDialogs dialogs;
    frmNewTositteet w(Kind::Ordinary);
    auto* selite = child<QLineEdit>(w, "tTositeSelite");
    selite->selectAll();
    const QString text = QStringLiteral("O'Brienin ") + QString(290, u'x');
    QTest::keyClicks(selite, text);
    setCell(w, 1, 0, QStringLiteral("2250"));
    setCell(w, 1, 1, QStringLiteral("1"));
    click(w, "cTallenna");
    QCOMPARE(f.value(QStringLiteral("SELECT toSelite FROM \"to\"")).toString(), text.left(255));
    QCOMPARE(f.count(QStringLiteral("vi"),
                 QStringLiteral("viSelite = '%1'").arg(text.left(255).replace(u'\'', QStringLiteral("''")))),
        3);
    QCOMPARE(child<QListView>(w, "lstTositteet")->model()->index(0, 0).data().toString(),
        QStringLiteral("1 ") + text.left(255));
}

void tst_frmNewTositteet::totalsAndRedDifference()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const Chart c = addChart(f);
    f.addTosite(1);
    ScriptedDialogs dialogs;
    frmNewTositteet w(Kind::Ordinary);
    auto* erotus = child<QLabel>(w, "lblErotus");
    QVERIFY(erotus->palette().color(QPalette::WindowText) != QColor(255, 0, 0));
    setCell(w, 0, 0, QStringLiteral("1910"));
    setCell(w, 0, 1, QStringLiteral("100"));
    setCell(w, 3, 0, QStringLiteral("1910"));
    setCell(w, 3, 1, QStringLiteral("0,50"));
    QCOMPARE(child<QLabel>(w, "lblDebetSumma")->text(), Money::fromCents(10050).toCurrencyString());
    QCOMPARE(erotus->text(), Money::fromCents(10050).toCurrencyString());
    QCOMPARE(erotus->palette().color(QPalette::WindowText), QColor(255, 0, 0));
    setCell(w, 0, 2, QStringLiteral("3000"));
    setCell(w, 0, 3, QStringLiteral("100,50"));
    QCOMPARE(child<QLabel>(w, "lblKreditSumma")->text(), Money::fromCents(10050).toCurrencyString());
    QCOMPARE(erotus->text(), Money().toCurrencyString());
    QVERIFY(erotus->palette().color(QPalette::WindowText) != QColor(255, 0, 0));
    Q_UNUSED(c)
}

void tst_frmNewTositteet::undoPutsBackVoucher()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const Chart c = addChart(f);
    const int id = f.addTosite(1, QString(), QStringLiteral("2011-03-01"), QStringLiteral("Alkuperäinen"));
    f.addVienti(id, c.pankki, QStringLiteral("D"), 100000);
    ScriptedDialogs dialogs;
    frmNewTositteet w(Kind::Ordinary);
    auto* selite = child<QLineEdit>(w, "tTositeSelite");
    selite->selectAll();
    QTest::keyClicks(selite, QStringLiteral("Muutettu"));
    setCell(w, 0, 1, QStringLiteral("55"));
    setCell(w, 1, 0, QStringLiteral("3000"));
    click(w, "cPeru");
    QCOMPARE(selite->text(), QString::fromUtf8("Alkuperäinen"));
    QCOMPARE(cell(w, 0, 1), QStringLiteral("10,00"));
    QCOMPARE(cell(w, 1, 0), QString());
    const qint64 before = f.totalChanges();
    QVERIFY(w.close());
    QCOMPARE(f.totalChanges(), before);
}

void tst_frmNewTositteet::deleteOnlyVoucher()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const Chart c = addChart(f);
    const int id = f.addTosite(1);
    f.addVienti(id, c.pankki, QStringLiteral("D"), 100000);
    f.addVienti(id, c.myynti, QStringLiteral("K"), 100000);
    ScriptedDialogs dialogs;
    dialogs.answerYes();
    frmNewTositteet w(Kind::Ordinary);
    setCell(w, 0, 1, QStringLiteral("20")); // a change that must not come back
    click(w, "cPoista");
    QCOMPARE(dialogs.transcript(),
        QStringList { QStringLiteral("question: Haluatko varmasti poistaa valitun tositteen?") });
    QVERIFY(w.curTosite().IsEmpty());
    QCOMPARE(child<QListView>(w, "lstTositteet")->model()->rowCount(), 0);
    QVERIFY(w.close());
    QCOMPARE(f.count(QStringLiteral("\"to\"")), 0);
    QCOMPARE(f.count(QStringLiteral("vi")), 0);
    QVERIFY(!child<QPushButton>(w, "cPoista")->isEnabled());
}

void tst_frmNewTositteet::deleteAnsweredNoKeepsVoucher()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    f.addTosite(1);
    const int second = f.addTosite(2);
    ScriptedDialogs dialogs;
    dialogs.answerNo().answerYes();
    frmNewTositteet w(Kind::Ordinary);
    click(w, "cPoista");
    QCOMPARE(f.count(QStringLiteral("\"to\"")), 2);
    QCOMPARE(w.curTosite().ToId(), second);
    click(w, "cPoista");
    QCOMPARE(w.curTosite().Numero(), 1);
    QCOMPARE(f.count(QStringLiteral("\"to\"")), 1);
}

void tst_frmNewTositteet::closingSavesChanges()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    addChart(f);
    f.addTosite(1);
    ScriptedDialogs dialogs;
    {
        frmNewTositteet w(Kind::Ordinary);
        setCell(w, 0, 0, QStringLiteral("Muut"));
        setCell(w, 0, 1, QStringLiteral("7,25"));
        child<QLineEdit>(w, "tTositenumero")->selectAll();
        QTest::keyClicks(child<QLineEdit>(w, "tTositenumero"), QStringLiteral("15"));
        QVERIFY(w.close());
    }
    QCOMPARE(f.value(QStringLiteral("SELECT viArvo FROM vi")).toLongLong(), 72500);
    QCOMPARE(f.value(QStringLiteral("SELECT toNumero FROM \"to\"")).toInt(), 15);
    QCOMPARE(dialogs.transcript(), QStringList());
}

void tst_frmNewTositteet::automaticNewVoucher()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    addChart(f);
    f.addTosite(1);
    ProgramSettings::bookkeeping().AutomaattisestiUusiTosite = true;
    ScriptedDialogs dialogs;
    frmNewTositteet w(Kind::Ordinary);
    setCell(w, 0, 0, QStringLiteral("1910"));
    setCell(w, 0, 1, QStringLiteral("10"));
    setCell(w, 0, 2, QStringLiteral("3000"));
    QTest::qWait(1);
    QCOMPARE(w.curTosite().Numero(), 1); // not balanced yet
    setCell(w, 0, 3, QStringLiteral("10"));
    QTRY_COMPARE(w.curTosite().Numero(), 2);
    QCOMPARE(f.count(QStringLiteral("vi")), 2);
}

void tst_frmNewTositteet::laterFeaturesDisabled()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    ScriptedDialogs dialogs;
    frmNewTositteet w(Kind::Ordinary);
    for (const char* name : { "mPaivakirja", "mPaakirja", "mHaku", "mTilienSaldot", "mTilitarkastelu",
             "mTilinPaivasaldot", "mTositteidenTarkistus", "mMuokkaaTositepohjia" })
        QVERIFY2(!child<QAction>(w, name)->isEnabled(), name);
    QVERIFY(!child<QMenu>(w, "mTositepohjat")->isEnabled());
    QVERIFY(!child<QPushButton>(w, "cHaku")->isEnabled());
    QVERIFY(!child<QPushButton>(w, "cTositePohja")->isEnabled());
    for (const char* name :
        { "mUusi", "mSulje", "mEnsimmaiseen", "mEdelliseen", "mSeuraavaan", "mViimeiseen", "mSelaa" })
        QVERIFY2(child<QAction>(w, name)->isEnabled(), name);
    QCOMPARE(child<QAction>(w, "mTallenna")->shortcut(), QKeySequence(QStringLiteral("Ctrl+S")));
}

QTEST_MAIN(tst_frmNewTositteet)
#include "tst_frmNewTositteet.moc"
