#include "ScriptedDialogs.h"
#include "VoucherFixture.h"
#include "frmNewTositteet.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>
#include <QTest>
#include <memory>

using Kind = frmNewTositteet::Kind;
Q_DECLARE_METATYPE(frmNewTositteet::Kind)

namespace {

template <typename T> T* child(QWidget& w, const QString& name)
{
    auto* c = w.findChild<T*>(name);
    if (!c)
        qWarning("no child %s", qPrintable(name));
    return c;
}

void click(QWidget& w, const QString& name)
{
    QTest::mouseClick(child<QPushButton>(w, name), Qt::LeftButton);
}

QAbstractItemModel* grid(QWidget& w) { return child<QTableView>(w, QStringLiteral("grdViennit"))->model(); }

void setCell(QWidget& w, int row, int column, const QString& text)
{
    grid(w)->setData(grid(w)->index(row, column), text, Qt::EditRole);
}

QString cell(QWidget& w, int row, int column) { return grid(w)->index(row, column).data().toString(); }

QString text(QWidget& w, const char* name) { return child<QLineEdit>(w, QString::fromUtf8(name))->text(); }

QString label(QWidget& w, const char* name) { return child<QLabel>(w, QString::fromUtf8(name))->text(); }

QString money(qint64 cents) { return Money::fromCents(cents).toCurrencyString(); }

void showAndWait(QWidget& w)
{
    w.resize(900, 600);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
}

} // namespace

class tst_frmNewTositteet : public QObject {
    Q_OBJECT

    std::unique_ptr<VoucherFixture> f;
    std::unique_ptr<ScriptedDialogs> dialogs;
    int pankki = 0, myynti = 0; // accounts 1910 Pankkitili and 3000 Myyntituotot; 2250 Muut velat too

private slots:
    void init()
    {
        f = std::make_unique<VoucherFixture>();
        QVERIFY(f->ok);
        pankki = f->addTili(1910, QStringLiteral("Pankkitili"));
        f->addTili(2250, QStringLiteral("Muut velat"));
        myynti = f->addTili(3000, QStringLiteral("Myyntituotot"));
        dialogs = std::make_unique<ScriptedDialogs>();
    }
    void cleanup()
    {
        QCOMPARE(dialogs->failures(), QStringList());
        dialogs.reset();
        f.reset();
    }

    void newVoucher_data();
    void newVoucher();
    void browsingStaysInKindAndBeepsAtTheEnds();
    void nineDebitEntriesGiveNineRows();
    void accountCheckBlocks_data();
    void accountCheckBlocks();
    void dateField_data();
    void dateField();
    void chosenAccountBalance();
    void typingAVoucherWithKeyboard();
    void badAmounts_data();
    void badAmounts();
    void deleteAsksAndRemovesEntries();
    void closingSavesAllOrNothing_data();
    void closingSavesAllOrNothing();
};

void tst_frmNewTositteet::newVoucher_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<int>("closingBefore"); // 0: an empty database
    QTest::newRow("ordinary in an empty database") << Kind::Ordinary << 0;
    QTest::newRow("opening after closing 4") << Kind::Opening << 4;
    QTest::newRow("closing after closing 4") << Kind::Closing << 4;
}

void tst_frmNewTositteet::newVoucher()
{
    QFETCH(Kind, kind);
    QFETCH(int, closingBefore);
    if (closingBefore)
        f->addTosite(closingBefore, QStringLiteral("P"), QStringLiteral("2011-03-01"));
    frmNewTositteet w(kind);
    showAndWait(w);
    QCOMPARE(w.curTosite().IsEmpty(), kind != Kind::Closing || !closingBefore);
    click(w, QStringLiteral("cUusi"));
    QVERIFY(!w.curTosite().IsEmpty());
    QCOMPARE(w.curTosite().Numero(), closingBefore + 1);
    QCOMPARE(w.curTosite().Avaustosite(), kind == Kind::Opening);
    QCOMPARE(w.curTosite().Paatostosite(), kind == Kind::Closing);
    QCOMPARE(f->count(QStringLiteral("\"to\"")), closingBefore ? 2 : 1); // stored at once
    QCOMPARE(text(w, "tTositenumero"), QString::number(closingBefore + 1));
    QCOMPARE(text(w, "tTositepvm"), closingBefore ? QStringLiteral("1.3.2011") : QStringLiteral("1.1.2011"));
    QCOMPARE(child<QListView>(w, QStringLiteral("lstTositteet"))->model()->rowCount(),
        kind == Kind::Closing && closingBefore ? 2 : 1);
    QCOMPARE(dialogs->transcript(), QStringList());
    // Torn down with the focus still in the date field: nothing may call back into the window.
}

void tst_frmNewTositteet::browsingStaysInKindAndBeepsAtTheEnds()
{
    f->addTosite(1, QString(), QStringLiteral("2011-02-01"), QStringLiteral("Eka"));
    f->addTosite(2, QStringLiteral("A"));
    const int last = f->addTosite(3, QString(), QStringLiteral("2011-03-01"), QStringLiteral("Viimeinen"));
    f->addTosite(4, QStringLiteral("P"));
    frmNewTositteet w(Kind::Ordinary);
    QCOMPARE(w.curTosite().ToId(), last);
    QAbstractItemModel* list = child<QListView>(w, QStringLiteral("lstTositteet"))->model();
    QCOMPARE(list->rowCount(), 2);
    QCOMPARE(list->index(0, 0).data().toString(), QStringLiteral("1 Eka"));
    const qint64 before = f->totalChanges();
    click(w, QStringLiteral("cSeuraava"));
    QCOMPARE(dialogs->texts(ScriptedDialogs::Kind::Beep).size(), 1);
    QCOMPARE(w.curTosite().ToId(), last);
    QCOMPARE(f->totalChanges(), before);
    click(w, QStringLiteral("cEdellinen"));
    QCOMPARE(w.curTosite().Numero(), 1);
    click(w, QStringLiteral("cEdellinen"));
    QCOMPARE(dialogs->texts(ScriptedDialogs::Kind::Beep).size(), 2);
    QCOMPARE(w.curTosite().Numero(), 1);
}

void tst_frmNewTositteet::nineDebitEntriesGiveNineRows()
{
    const int id = f->addTosite(1);
    for (int i = 0; i < 9; ++i)
        f->addVienti(id, pankki, QStringLiteral("D"), 10000 * (i + 1));
    f->addVienti(id, myynti, QStringLiteral("K"), 450000);
    for (int i = 0; i < 10; ++i) // entries left without their voucher do not count
        f->addVienti(999, pankki, QStringLiteral("D"), 100);
    frmNewTositteet w(Kind::Ordinary);
    showAndWait(w);
    QCOMPARE(w.rowCount(), 9);
    QCOMPARE(child<QScrollBar>(w, QStringLiteral("scrlViennit"))->maximum(), 3);
    QCOMPARE(cell(w, 8, 1), QStringLiteral("9,00"));
    QCOMPARE(cell(w, 0, 0), QStringLiteral("1910 Pankkitili"));
    click(w, QStringLiteral("cLisaaVienteja"));
    QCOMPARE(grid(w)->rowCount(), 10);
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
    f->addTosite(1);
    const int id = f->addTosite(2);
    frmNewTositteet w(Kind::Ordinary);
    showAndWait(w);
    setCell(w, 2, column, QStringLiteral("100"));
    const qint64 before = f->totalChanges();
    click(w, command);
    QCOMPARE(dialogs->transcript(), QStringList { QStringLiteral("information: Tarkista tilivalinta.") });
    QCOMPARE(w.curTosite().ToId(), id);
    QVERIFY(w.isVisible());
    QCOMPARE(f->totalChanges(), before);
    QCOMPARE(
        child<QTableView>(w, QStringLiteral("grdViennit"))->currentIndex(), grid(w)->index(2, column - 1));
    // With an account chosen the window lets go.
    dialogs->clear();
    setCell(w, 2, column - 1, QStringLiteral("1910"));
    QVERIFY(w.close());
    QCOMPARE(dialogs->transcript(), QStringList());
    QCOMPARE(f->count(QStringLiteral("vi"), QStringLiteral("viArvo = 1000000 AND vitoID = %1").arg(id)), 1);
}

void tst_frmNewTositteet::dateField_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("stored"); // empty: NULL
    QTest::addColumn<bool>("warned");
    const auto row
        = [](const char* name, const char* typed, const char* shown, const char* stored, bool warned) {
              QTest::newRow(name) << QString::fromUtf8(typed) << QString::fromUtf8(shown)
                                  << QString::fromUtf8(stored) << warned;
          };
    row("outside the fiscal year: warned and kept", "1.1.2012", "1.1.2012", "2012-01-01", true);
    row("29 February of a common year", "29.2.2011", "", "", false);
    row("not a date", "huomenna", "", "", false);
    row("plus moves a day on", "28.2.2011+", "1.3.2011", "2011-03-01", false);
    row("minus moves a day back", "1.3.2011--", "27.2.2011", "2011-02-27", false);
}

void tst_frmNewTositteet::dateField()
{
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    QFETCH(QString, stored);
    QFETCH(bool, warned);
    f->addTosite(1);
    frmNewTositteet w(Kind::Ordinary);
    showAndWait(w);
    auto* pvm = child<QLineEdit>(w, QStringLiteral("tTositepvm"));
    pvm->setFocus();
    pvm->selectAll();
    QTest::keyClicks(pvm, typed);
    QTest::keyClick(pvm, Qt::Key_Return);
    QCOMPARE(pvm->text(), shown);
    QCOMPARE(dialogs->transcript(),
        warned ? QStringList { QString::fromUtf8("information: Tositteen päivämäärän tulee kuulua "
                                                 "tilikauteen!\n\nTilikausi: 1.1.2011 - 31.12.2011") }
               : QStringList());
    if (warned)
        QTRY_COMPARE(QApplication::focusWidget(), pvm);
    click(w, QStringLiteral("cTallenna"));
    const QVariant toPvm = f->value(QStringLiteral("SELECT toPvm FROM \"to\""));
    QCOMPARE(toPvm.isNull(), stored.isEmpty());
    QCOMPARE(toPvm.toString(), stored);
}

void tst_frmNewTositteet::chosenAccountBalance()
{
    ProgramSettings::bookkeeping().LaskettavaTili = pankki;
    const int other = f->addTosite(1);
    f->addVienti(other, pankki, QStringLiteral("D"), 1000000); // 100,00 in another voucher
    f->addVienti(other, myynti, QStringLiteral("K"), 1000000);
    const int shown = f->addTosite(2);
    f->addVienti(shown, pankki, QStringLiteral("K"), 200000); // 20,00 on screen
    f->addVienti(999, pankki, QStringLiteral("D"), 7770000); // an entry without voucher does not count
    frmNewTositteet w(Kind::Ordinary);
    QCOMPARE(label(w, "lblHalutunTilinSaldo"), money(8000));
    setCell(w, 1, 3, QStringLiteral("30"));
    setCell(w, 1, 2, QStringLiteral("1910"));
    QCOMPARE(label(w, "lblHalutunTilinSaldo"), money(5000));
    click(w, QStringLiteral("cTallenna"));
    click(w, QStringLiteral("cEdellinen"));
    QCOMPARE(label(w, "lblHalutunTilinSaldo"), money(5000));
    setCell(w, 0, 1, QString());
    setCell(w, 0, 0, QString());
    QCOMPARE(label(w, "lblHalutunTilinSaldo"), money(-5000));
}

void tst_frmNewTositteet::typingAVoucherWithKeyboard()
{
    f->addTosite(1);
    frmNewTositteet w(Kind::Ordinary);
    showAndWait(w);
    QTest::keyClick(&w, Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(w.curTosite().Numero(), 2);
    auto* pvm = child<QLineEdit>(w, QStringLiteral("tTositepvm"));
    QTRY_COMPARE(QApplication::focusWidget(), pvm);
    QTest::keyClicks(pvm, QStringLiteral("5.9.2011"));
    QTest::keyClick(pvm, Qt::Key_Return);
    auto* selite = child<QLineEdit>(w, QStringLiteral("tTositeSelite"));
    QTRY_COMPARE(QApplication::focusWidget(), selite);
    QTest::keyClicks(selite, QStringLiteral("Kahvion myynti 'kesa'"));
    QTest::keyClick(selite, Qt::Key_Return);
    auto* view = child<QTableView>(w, QStringLiteral("grdViennit"));
    QTRY_VERIFY(view->hasFocus() || view->isAncestorOf(QApplication::focusWidget()));
    view->setCurrentIndex(view->model()->index(0, 0));
    const auto typeCell = [&](const QString& typed) {
        QLineEdit* editor = nullptr;
        QTRY_VERIFY((editor = qobject_cast<QLineEdit*>(QApplication::focusWidget())) != nullptr);
        QTest::keyClicks(editor, typed);
        QTest::keyClick(editor, Qt::Key_Return);
    };
    typeCell(QStringLiteral("1910")); // by number
    typeCell(QStringLiteral("1 234,50"));
    const auto red
        = [&] { return child<QLabel>(w, "lblErotus")->palette().color(QPalette::WindowText) == Qt::red; };
    QCOMPARE(label(w, "lblErotus"), money(123450));
    QVERIFY(red());
    typeCell(QStringLiteral("myyn")); // by the start of the name
    typeCell(QStringLiteral("1234,5"));
    QCOMPARE(label(w, "lblErotus"), money(0));
    QVERIFY(!red());
    QTest::keyClick(&w, Qt::Key_S, Qt::ControlModifier);
    QCOMPARE(dialogs->transcript(), QStringList());
    // Debit 1 234,50 on 1910 and credit 1 234,50 on 3000, both with the voucher's description.
    QCOMPARE(
        f->count(QStringLiteral("vi"),
            QStringLiteral("vitoID = %1 AND viArvo = 12345000 AND viSelite = 'Kahvion myynti ''kesa''' AND "
                           "vitlID = CASE viTyyppi WHEN 'D' THEN %2 WHEN 'K' THEN %3 END")
                .arg(w.curTosite().ToId())
                .arg(pankki)
                .arg(myynti)),
        2);
    QCOMPARE(f->value(QStringLiteral("SELECT toPvm FROM \"to\" WHERE toNumero = 2")).toString(),
        QStringLiteral("2011-09-05"));
}

void tst_frmNewTositteet::badAmounts_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("message");
    QTest::addColumn<qint64>("stored"); // the amount before was 10,00
    const auto row = [](const char* typed, const char* message, qint64 stored) {
        QTest::newRow(typed) << QString::fromUtf8(typed) << QString::fromUtf8(message) << stored;
    };
    row("kymmenen", "Summa ei ole luku. Viennin summaksi tulee 0.", 0);
    row("-5", "Summa ei voi olla negatiivinen. Kirjaa vienti vastakkaiselle puolelle.", 100000);
    row("12,345", "Summassa voi olla enintään kaksi desimaalia.", 100000);
    row("99999999999999999", "Summa on liian suuri.", 100000);
    row("12,50 €", "", 125000);
}

void tst_frmNewTositteet::badAmounts()
{
    QFETCH(QString, typed);
    QFETCH(QString, message);
    QFETCH(qint64, stored);
    f->addVienti(f->addTosite(1), pankki, QStringLiteral("D"), 100000);
    frmNewTositteet w(Kind::Ordinary);
    setCell(w, 0, 1, typed);
    QCOMPARE(dialogs->texts(ScriptedDialogs::Kind::Information),
        message.isEmpty() ? QStringList() : QStringList { message });
    click(w, QStringLiteral("cTallenna"));
    QCOMPARE(f->value(QStringLiteral("SELECT viArvo FROM vi")).toLongLong(), stored);
}

void tst_frmNewTositteet::deleteAsksAndRemovesEntries()
{
    const int first = f->addTosite(1);
    const int second = f->addTosite(2);
    f->addVienti(first, pankki, QStringLiteral("D"), 100000);
    f->addVienti(second, pankki, QStringLiteral("D"), 100000);
    dialogs->answerNo().answerYes();
    frmNewTositteet w(Kind::Ordinary);
    setCell(w, 0, 1, QStringLiteral("20")); // a change that must not come back
    click(w, QStringLiteral("cPoista"));
    QCOMPARE(f->count(QStringLiteral("\"to\"")), 2);
    QCOMPARE(w.curTosite().ToId(), second);
    click(w, QStringLiteral("cPoista"));
    QCOMPARE(dialogs->texts(ScriptedDialogs::Kind::Question),
        QStringList(2, QStringLiteral("Haluatko varmasti poistaa valitun tositteen?")));
    QCOMPARE(w.curTosite().ToId(), first);
    QVERIFY(w.close());
    QCOMPARE(f->count(QStringLiteral("\"to\"")), 1);
    QCOMPARE(f->count(QStringLiteral("vi"), QStringLiteral("vitoID = %1").arg(second)), 0);
}

void tst_frmNewTositteet::closingSavesAllOrNothing_data()
{
    QTest::addColumn<bool>("entriesFail");
    QTest::newRow("everything saved") << false;
    QTest::newRow("an entry cannot be written") << true;
}

void tst_frmNewTositteet::closingSavesAllOrNothing()
{
    QFETCH(bool, entriesFail);
    f->addTosite(1);
    if (entriesFail)
        QVERIFY(f->failOn(QStringLiteral("INSERT"), QStringLiteral("vi")));
    {
        frmNewTositteet w(Kind::Ordinary);
        setCell(w, 0, 0, QStringLiteral("Muut"));
        setCell(w, 0, 1, QStringLiteral("7,25"));
        auto* numero = child<QLineEdit>(w, QStringLiteral("tTositenumero"));
        numero->selectAll();
        QTest::keyClicks(numero, QStringLiteral("15"));
        QVERIFY(w.close());
    }
    QCOMPARE(f->value(QStringLiteral("SELECT toNumero FROM \"to\"")).toInt(), entriesFail ? 1 : 15);
    QCOMPARE(f->count(QStringLiteral("vi")), entriesFail ? 0 : 1);
    QCOMPARE(f->value(QStringLiteral("SELECT viArvo FROM vi")).toLongLong(), entriesFail ? 0 : 72500);
    QCOMPARE(dialogs->texts(ScriptedDialogs::Kind::Error).size(), entriesFail ? 1 : 0);
}

QTEST_MAIN(tst_frmNewTositteet)
#include "tst_frmNewTositteet.moc"
