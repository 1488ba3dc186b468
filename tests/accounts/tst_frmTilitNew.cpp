#include "AccountsFixture.h"
#include "ScriptedDialogs.h"
#include "Tilikartta.h"
#include "cTili.h"
#include "frmLisaaTili.h"
#include "frmTilitNew.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <algorithm>

namespace {

const QString TreeError = QStringLiteral("Virhe luotaessa hakemistopuuta tileistä.");
const QString FourDigits = QStringLiteral("Tilinumeron tulee olla neljä numeroa pitkä.");

// The demo-like chart of the window tests. Ids are kept by number.
struct Chart : AccountsFixture {
    QHash<int, qint32> id;
    Chart()
    {
        id[0] = tili(0, QStringLiteral("Nollatili"));
        id[1000] = tili(1000, QStringLiteral("Aineettomat oikeudet"));
        id[1999] = tili(1999, QStringLiteral("Pankkitili"));
        id[2000] = tili(2000, QStringLiteral("Oma pääoma"));
        id[5000] = tili(5000, QStringLiteral("Jäsenmaksut"));
        id[10500] = tili(10500, QStringLiteral("Erikoistili"));
        vienti(id[1999], QStringLiteral("D"), euros("1234,5"), true);
        vienti(id[1999], QStringLiteral("K"), euros("30"), true);
        vienti(id[1999], QStringLiteral("D"), euros("999"), false);
        vienti(id[1999], QStringLiteral("K"), euros("12,34"), true, true);
        vienti(id[5000], QStringLiteral("K"), euros("20"), false);
    }
    QString nimi(int numero) const
    {
        return value(QStringLiteral("SELECT tlNimi FROM tl WHERE tlID = ?"), { id[numero] }).toString();
    }
    QVariant numero(qint32 tlID) const
    {
        return value(QStringLiteral("SELECT tlNumero FROM tl WHERE tlID = ?"), { tlID });
    }
};

template <typename T> T* child(QWidget& w, const char* name)
{
    T* found = w.findChild<T*>(QString::fromLatin1(name));
    if (!found)
        qFatal("no control %s", name);
    return found;
}

QTreeWidgetItem* node(QTreeWidget* tree, const QString& key)
{
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
        QTreeWidgetItem* group = tree->topLevelItem(i);
        if (group->data(0, Qt::UserRole).toString() == key)
            return group;
        for (int j = 0; j < group->childCount(); ++j)
            if (group->child(j)->data(0, Qt::UserRole).toString() == key)
                return group->child(j);
    }
    return nullptr;
}

QString parentKey(QTreeWidget* tree, qint32 id)
{
    QTreeWidgetItem* n = node(tree, QString::number(id) + QStringLiteral("ID"));
    return n && n->parent() ? n->parent()->data(0, Qt::UserRole).toString() : QString();
}

void click(QWidget& w, const char* button)
{
    QTest::mouseClick(child<QPushButton>(w, button), Qt::LeftButton);
}

void retype(QLineEdit* field, const QString& text)
{
    field->setFocus();
    field->selectAll();
    if (text.isEmpty())
        QTest::keyClick(field, Qt::Key_Backspace);
    else if (std::all_of(text.begin(), text.end(), [](QChar ch) { return ch.unicode() < 128; }))
        QTest::keyClicks(field, text);
    else
        field->insert(text); // the test keyboard types ASCII only
}

} // namespace

class tst_frmTilitNew : public QObject {
    Q_OBJECT

private slots:
    void treeGroupsByThousands();
    void treeStopsAtNumberWithoutGroup();
    void leadingBlankNameRemovedOnOpen();
    void opensOnFirstAccountWithOpeningEntries();
    void navigationButtonsAndMenus();
    void selectingNodeShowsAccount();
    void editingRenamesNodeAndCtrlSSaves();
    void renumberingMovesNodeAcrossGroups();
    void undoRestoresFieldsAndNode();
    void badInputRefusedOnSave_data();
    void badInputRefusedOnSave();
    void changedAccountSavedWhenLeaving();
    void deleteBlockedByEntries_data();
    void deleteBlockedByEntries();
    void deleteAskedAndDone();
    void addAccountBecomesCurrent();
    void expandAllAndBrowse();
    void typingInTreeJumpsToNumber();
    void enterMovesBetweenFields();
    void printingDisabled();
    void emptyChart();
    void demoAssociation();
};

void tst_frmTilitNew::treeGroupsByThousands()
{
    Chart c;
    c.id[950] = c.tili(950, QStringLiteral("Pikkukassa"));
    ScriptedDialogs dialogs;
    frmTilitNew w;
    auto* tree = child<QTreeWidget>(w, "tvTilit");
    QCOMPARE(tree->topLevelItemCount(), 10);
    QStringList keys, texts;
    for (int i = 0; i < 10; ++i) {
        keys.append(tree->topLevelItem(i)->data(0, Qt::UserRole).toString());
        texts.append(tree->topLevelItem(i)->text(0));
    }
    QCOMPARE(keys,
        (QStringList { "1000PN", "2000PN", "3000PN", "4000PN", "5000PN", "6000PN", "7000PN", "8000PN",
            "9000PN", "MuutPN" }));
    QCOMPARE(texts.at(2), QStringLiteral(" 3000 "));
    QCOMPARE(texts.at(9), QStringLiteral("Muut"));
    QCOMPARE(parentKey(tree, c.id[0]), QStringLiteral("MuutPN"));
    QCOMPARE(parentKey(tree, c.id[950]), QStringLiteral("MuutPN"));
    QCOMPARE(parentKey(tree, c.id[1000]), QStringLiteral("1000PN"));
    QCOMPARE(parentKey(tree, c.id[1999]), QStringLiteral("1000PN"));
    QCOMPARE(parentKey(tree, c.id[2000]), QStringLiteral("2000PN"));
    QCOMPARE(parentKey(tree, c.id[10500]), QStringLiteral("MuutPN"));
    QCOMPARE(node(tree, QString::number(c.id[1999]) + QStringLiteral("ID"))->text(0),
        QStringLiteral("1999 Pankkitili"));
    QCOMPARE(dialogs.transcript(), QStringList());
}

void tst_frmTilitNew::treeStopsAtNumberWithoutGroup()
{
    Chart c;
    const qint32 big = c.tili(11000, QStringLiteral("Liian suuri"));
    ScriptedDialogs dialogs;
    frmTilitNew w;
    const QStringList shown = dialogs.texts(ScriptedDialogs::Kind::Information);
    QCOMPARE(shown.size(), 1);
    QVERIFY(shown.first().startsWith(TreeError + u'\n'));
    auto* tree = child<QTreeWidget>(w, "tvTilit");
    QVERIFY(!node(tree, QString::number(big) + QStringLiteral("ID")));
    QCOMPARE(parentKey(tree, c.id[10500]), QStringLiteral("MuutPN"));
    QCOMPARE(c.tileja(), 7);
}

void tst_frmTilitNew::leadingBlankNameRemovedOnOpen()
{
    Chart c;
    c.tili(-100, QStringLiteral(" "));
    const qint32 middle = c.tili(3000, QStringLiteral(" "));
    ScriptedDialogs dialogs;
    frmTilitNew w;
    QCOMPARE(c.tileja(), 7);
    QVERIFY(node(child<QTreeWidget>(w, "tvTilit"), QString::number(middle) + QStringLiteral("ID")));
}

void tst_frmTilitNew::opensOnFirstAccountWithOpeningEntries()
{
    Chart c;
    ScriptedDialogs dialogs;
    frmTilitNew w;
    QCOMPARE(w.nykyinenTili().id(), c.id[1000]);
    QCOMPARE(child<QLineEdit>(w, "tTilinumero")->text(), QStringLiteral("1000"));
    QCOMPARE(child<QLineEdit>(w, "tNimi")->text(), QStringLiteral("Aineettomat oikeudet"));
    QCOMPARE(child<QLabel>(w, "lblKuluvaDebet")->text(), Money().toCurrencyString());
    auto* tree = child<QTreeWidget>(w, "tvTilit");
    QCOMPARE(tree->currentItem()->data(0, Qt::UserRole).toString(),
        QString::number(c.id[1000]) + QStringLiteral("ID"));
    click(w, "cSeuraava");
    QCOMPARE(child<QLabel>(w, "lblKuluvaDebet")->text(), euros("1234,5").toCurrencyString());
    QCOMPARE(child<QLabel>(w, "lblKuluvaKredit")->text(), euros("30").toCurrencyString());
    QCOMPARE(child<QLabel>(w, "lblEdellinenDebet")->text(), Money().toCurrencyString());
    QCOMPARE(child<QLabel>(w, "lblEdellinenKredit")->text(), euros("12,34").toCurrencyString());
    QVERIFY(!w.nykyinenTili().isChanged());
}

void tst_frmTilitNew::navigationButtonsAndMenus()
{
    Chart c;
    ScriptedDialogs dialogs;
    frmTilitNew w;
    auto* numero = child<QLineEdit>(w, "tTilinumero");
    auto* tree = child<QTreeWidget>(w, "tvTilit");
    click(w, "cViimeinen");
    QCOMPARE(numero->text(), QStringLiteral("10500"));
    QCOMPARE(tree->currentItem()->data(0, Qt::UserRole).toString(),
        QString::number(c.id[10500]) + QStringLiteral("ID"));
    click(w, "cSeuraava"); // at the end the account stays
    QCOMPARE(numero->text(), QStringLiteral("10500"));
    click(w, "cEdellinen");
    QCOMPARE(numero->text(), QStringLiteral("5000"));
    child<QAction>(w, "mEnsimm_inen")->trigger();
    QCOMPARE(numero->text(), QStringLiteral("1000"));
    // Previous goes below the first account: number 0 is reached.
    child<QAction>(w, "mEdellinen")->trigger();
    QCOMPARE(numero->text(), QStringLiteral("0"));
    click(w, "cEdellinen");
    QCOMPARE(numero->text(), QStringLiteral("0"));
    child<QAction>(w, "mSeuraava")->trigger();
    QCOMPARE(numero->text(), QStringLiteral("1000"));
    child<QAction>(w, "mViimeinen")->trigger();
    QCOMPARE(numero->text(), QStringLiteral("10500"));
    click(w, "cEnsimm_inen");
    QCOMPARE(numero->text(), QStringLiteral("1000"));
    QCOMPARE(dialogs.transcript(), QStringList());
}

void tst_frmTilitNew::selectingNodeShowsAccount()
{
    Chart c;
    ScriptedDialogs dialogs;
    frmTilitNew w;
    auto* tree = child<QTreeWidget>(w, "tvTilit");
    tree->setCurrentItem(node(tree, QString::number(c.id[2000]) + QStringLiteral("ID")));
    QCOMPARE(w.nykyinenTili().id(), c.id[2000]);
    QCOMPARE(child<QLineEdit>(w, "tNimi")->text(), QStringLiteral("Oma pääoma"));
    // A group node changes nothing.
    tree->setCurrentItem(node(tree, QStringLiteral("3000PN")));
    QCOMPARE(w.nykyinenTili().id(), c.id[2000]);
    QCOMPARE(child<QLineEdit>(w, "tTilinumero")->text(), QStringLiteral("2000"));
}

void tst_frmTilitNew::editingRenamesNodeAndCtrlSSaves()
{
    Chart c;
    ScriptedDialogs dialogs;
    frmTilitNew w;
    w.show();
    QVERIFY(QTest::qWaitForWindowActive(&w));
    auto* tree = child<QTreeWidget>(w, "tvTilit");
    auto* nimi = child<QLineEdit>(w, "tNimi");
    retype(nimi, QStringLiteral("O'Brienin 'rahasto'; DROP TABLE tl"));
    QCOMPARE(node(tree, QString::number(c.id[1000]) + QStringLiteral("ID"))->text(0),
        QStringLiteral("1000 O'Brienin 'rahasto'; DROP TABLE tl"));
    QVERIFY(w.nykyinenTili().isChanged());
    QCOMPARE(c.nimi(1000), QStringLiteral("Aineettomat oikeudet"));
    retype(child<QLineEdit>(w, "tKuvaus"), QStringLiteral("Kuvaus \"lainausmerkein\""));
    QTest::keyClick(&w, Qt::Key_S, Qt::ControlModifier);
    QVERIFY(!w.nykyinenTili().isChanged());
    QCOMPARE(c.nimi(1000), QStringLiteral("O'Brienin 'rahasto'; DROP TABLE tl"));
    QCOMPARE(c.value(QStringLiteral("SELECT tlKuvaus FROM tl WHERE tlID = ?"), { c.id[1000] }).toString(),
        QStringLiteral("Kuvaus \"lainausmerkein\""));
    // A 60-character name keeps its first 50.
    retype(nimi, QString(60, u'x'));
    click(w, "cTallenna");
    QCOMPARE(c.nimi(1000), QString(50, u'x'));
    QCOMPARE(dialogs.transcript(), QStringList());
}

void tst_frmTilitNew::renumberingMovesNodeAcrossGroups()
{
    Chart c;
    ScriptedDialogs dialogs;
    frmTilitNew w;
    w.show();
    QVERIFY(QTest::qWaitForWindowActive(&w));
    auto* tree = child<QTreeWidget>(w, "tvTilit");
    const QString key = QString::number(c.id[1000]) + QStringLiteral("ID");
    node(tree, QStringLiteral("3000PN"))->setExpanded(false);
    retype(child<QLineEdit>(w, "tTilinumero"), QStringLiteral("3500"));
    QCOMPARE(parentKey(tree, c.id[1000]), QStringLiteral("3000PN"));
    QVERIFY(node(tree, QStringLiteral("3000PN"))->isExpanded());
    QCOMPARE(node(tree, key)->text(0), QStringLiteral("3500 Aineettomat oikeudet"));
    QCOMPARE(tree->currentItem(), node(tree, key));
    QCOMPARE(w.nykyinenTili().id(), c.id[1000]);
    click(w, "cTallenna");
    QCOMPARE(c.numero(c.id[1000]).toInt(), 3500);
    // Into the same group as other accounts: the node takes its place by number.
    retype(child<QLineEdit>(w, "tTilinumero"), QStringLiteral("1500"));
    QCOMPARE(node(tree, QStringLiteral("1000PN"))->indexOfChild(node(tree, key)), 0);
    QCOMPARE(node(tree, QStringLiteral("1000PN"))->childCount(), 2);
    QCOMPARE(node(tree, QStringLiteral("3000PN"))->childCount(), 0);
    QCOMPARE(dialogs.transcript(), QStringList());
}

void tst_frmTilitNew::undoRestoresFieldsAndNode()
{
    Chart c;
    ScriptedDialogs dialogs;
    frmTilitNew w;
    w.show();
    QVERIFY(QTest::qWaitForWindowActive(&w));
    auto* tree = child<QTreeWidget>(w, "tvTilit");
    retype(child<QLineEdit>(w, "tTilinumero"), QStringLiteral("7100"));
    retype(child<QLineEdit>(w, "tNimi"), QStringLiteral("Väärä"));
    QCOMPARE(parentKey(tree, c.id[1000]), QStringLiteral("7000PN"));
    child<QAction>(w, "mPeru")->trigger();
    QCOMPARE(child<QLineEdit>(w, "tTilinumero")->text(), QStringLiteral("1000"));
    QCOMPARE(child<QLineEdit>(w, "tNimi")->text(), QStringLiteral("Aineettomat oikeudet"));
    QCOMPARE(parentKey(tree, c.id[1000]), QStringLiteral("1000PN"));
    QCOMPARE(node(tree, QString::number(c.id[1000]) + QStringLiteral("ID"))->text(0),
        QStringLiteral("1000 Aineettomat oikeudet"));
    QVERIFY(!w.nykyinenTili().isChanged());
    click(w, "cSeuraava");
    QCOMPARE(c.numero(c.id[1000]).toInt(), 1000);
    QCOMPARE(c.nimi(1000), QStringLiteral("Aineettomat oikeudet"));
}

void tst_frmTilitNew::badInputRefusedOnSave_data()
{
    QTest::addColumn<QString>("numero");
    QTest::addColumn<QString>("nimi");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("focus");
    QTest::newRow("not a number") << "1o00"
                                  << "Nimi" << FourDigits << "tTilinumero";
    QTest::newRow("too short") << "123"
                               << "Nimi" << FourDigits << "tTilinumero";
    QTest::newRow("empty number") << ""
                                  << "Nimi" << FourDigits << "tTilinumero";
    QTest::newRow("too large") << "11000"
                               << "Nimi" << QStringLiteral("Tilinumeron tulee olla pienempi kuin 11000.")
                               << "tTilinumero";
    QTest::newRow("duplicate") << "2000"
                               << "Nimi" << QStringLiteral("Tilinumerolla 2000 löytyy jo tili.")
                               << "tTilinumero";
    QTest::newRow("empty name") << "1000"
                                << "" << QStringLiteral("Tilillä tulee olla nimi.") << "tNimi";
    QTest::newRow("blank name") << "1000"
                                << "  " << QStringLiteral("Tilillä tulee olla nimi.") << "tNimi";
}

void tst_frmTilitNew::badInputRefusedOnSave()
{
    QFETCH(QString, numero);
    QFETCH(QString, nimi);
    QFETCH(QString, message);
    QFETCH(QString, focus);
    Chart c;
    ScriptedDialogs dialogs;
    {
        frmTilitNew w;
        w.show();
        QVERIFY(QTest::qWaitForWindowActive(&w));
        retype(child<QLineEdit>(w, "tTilinumero"), numero);
        retype(child<QLineEdit>(w, "tNimi"), nimi);
        click(w, "cTallenna");
        QCOMPARE(dialogs.transcript(), QStringList { QStringLiteral("information: ") + message });
        QCOMPARE(QApplication::focusWidget()->objectName(), focus);
        // Leaving the account is refused the same way: it stays current.
        click(w, "cSeuraava");
        QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Information).size(), 2);
        QCOMPARE(w.nykyinenTili().id(), c.id[1000]);
        // Closing too, until the changes are undone.
        QVERIFY(!w.close());
        click(w, "cPeru");
        QVERIFY(w.close());
    }
    QCOMPARE(c.numero(c.id[1000]).toInt(), 1000);
    QCOMPARE(c.nimi(1000), QStringLiteral("Aineettomat oikeudet"));
    QCOMPARE(c.tileja(), 6);
}

void tst_frmTilitNew::changedAccountSavedWhenLeaving()
{
    Chart c;
    ScriptedDialogs dialogs;
    {
        frmTilitNew w;
        w.show();
        QVERIFY(QTest::qWaitForWindowActive(&w));
        retype(child<QLineEdit>(w, "tNimi"), QStringLiteral("Siirrettävä"));
        click(w, "cSeuraava");
        QCOMPARE(c.nimi(1000), QStringLiteral("Siirrettävä"));
        QCOMPARE(w.nykyinenTili().id(), c.id[1999]);
        retype(child<QLineEdit>(w, "tNimi"), QStringLiteral("Suljettaessa"));
        QVERIFY(w.close());
    }
    QCOMPARE(c.nimi(1999), QStringLiteral("Suljettaessa"));
    QCOMPARE(dialogs.transcript(), QStringList());
}

void tst_frmTilitNew::deleteBlockedByEntries_data()
{
    QTest::addColumn<bool>("previousYear");
    QTest::newRow("vi") << false;
    QTest::newRow("viE") << true;
}

void tst_frmTilitNew::deleteBlockedByEntries()
{
    QFETCH(bool, previousYear);
    Chart c;
    c.vienti(c.id[1000], QStringLiteral("D"), euros("0"), false);
    c.vienti(c.id[1000], QStringLiteral("K"), euros("0,01"), false, previousYear);
    ScriptedDialogs dialogs;
    frmTilitNew w;
    click(w, "cPoista");
    QCOMPARE(dialogs.transcript(),
        QStringList {
            QStringLiteral("information: Tilillä on vientejä kuluvalla tai edellisellä tilikaudella eikä "
                           "sitä voida poistaa.") });
    QCOMPARE(c.tileja(), 6);
    QVERIFY(node(child<QTreeWidget>(w, "tvTilit"), QString::number(c.id[1000]) + QStringLiteral("ID")));
}

void tst_frmTilitNew::deleteAskedAndDone()
{
    Chart c;
    c.vienti(c.id[1000], QStringLiteral("D"), euros("0"), false);
    c.vienti(c.id[1000], QStringLiteral("K"), euros("0"), false, true);
    ScriptedDialogs dialogs;
    dialogs.answerNo().answerYes();
    frmTilitNew w;
    auto* tree = child<QTreeWidget>(w, "tvTilit");
    const QString key = QString::number(c.id[1000]) + QStringLiteral("ID");
    click(w, "cPoista");
    QCOMPARE(c.tileja(), 6);
    QVERIFY(node(tree, key));
    child<QAction>(w, "mPoista")->trigger();
    QCOMPARE(dialogs.transcript(),
        (QStringList { QStringLiteral("question: Haluatko varmasti poistaa valitun tilin?"),
            QStringLiteral("question: Haluatko varmasti poistaa valitun tilin?") }));
    QCOMPARE(c.tileja(), 5);
    QVERIFY(!node(tree, key));
    // The zero-amount entries stay, and the next account takes the deleted one's place.
    QCOMPARE(c.value(QStringLiteral("SELECT COUNT(*) FROM vi WHERE vitlID = ?"), { c.id[1000] }).toInt(), 1);
    QCOMPARE(w.nykyinenTili().id(), c.id[1999]);
    QCOMPARE(child<QLineEdit>(w, "tTilinumero")->text(), QStringLiteral("1999"));
    QCOMPARE(dialogs.remainingAnswers(), 0);
}

void tst_frmTilitNew::addAccountBecomesCurrent()
{
    Chart c;
    ScriptedDialogs dialogs;
    frmTilitNew w;
    w.show();
    QVERIFY(QTest::qWaitForWindowActive(&w));
    bool filled = false;
    QTimer::singleShot(0, this, [&] {
        auto* dialog = qobject_cast<frmLisaaTili*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        QTest::keyClicks(child<QLineEdit>(*dialog, "tTilinumero"), QStringLiteral("123"));
        click(*dialog, "cLisaa");
        QVERIFY(dialog->isVisible());
        retype(child<QLineEdit>(*dialog, "tTilinumero"), QStringLiteral("4100"));
        retype(child<QLineEdit>(*dialog, "tNimi"), QStringLiteral("Avustukset"));
        click(*dialog, "cLisaa");
        filled = true;
    });
    click(w, "cUusi");
    QVERIFY(filled);
    QCOMPARE(dialogs.transcript(), QStringList { QStringLiteral("information: ") + FourDigits });
    QCOMPARE(c.tileja(), 7);
    const qint32 id = c.value(QStringLiteral("SELECT tlID FROM tl WHERE tlNumero = 4100")).toInt();
    QCOMPARE(w.nykyinenTili().id(), id);
    QCOMPARE(child<QLineEdit>(w, "tNimi")->text(), QStringLiteral("Avustukset"));
    auto* tree = child<QTreeWidget>(w, "tvTilit");
    QCOMPARE(parentKey(tree, id), QStringLiteral("4000PN"));
    QCOMPARE(tree->currentItem(), node(tree, QString::number(id) + QStringLiteral("ID")));
    QCOMPARE(w.focusWidget(), child<QLineEdit>(w, "tTilinumero"));

    // A cancelled dialog adds nothing and leaves the current account.
    QTimer::singleShot(0, this, [&] { click(*QApplication::activeModalWidget(), "cPeruuta"); });
    click(w, "cUusi");
    QCOMPARE(c.tileja(), 7);
    QCOMPARE(w.nykyinenTili().id(), id);
}

void tst_frmTilitNew::expandAllAndBrowse()
{
    Chart c;
    ScriptedDialogs dialogs;
    frmTilitNew w;
    w.show();
    QVERIFY(QTest::qWaitForWindowActive(&w));
    auto* tree = child<QTreeWidget>(w, "tvTilit");
    click(w, "cAvaaKaikki");
    for (int i = 0; i < tree->topLevelItemCount(); ++i)
        QVERIFY(tree->topLevelItem(i)->isExpanded());
    click(w, "cSelaa");
    QCOMPARE(QApplication::focusWidget(), tree);
    QTest::keyClick(tree, Qt::Key_Down);
    QCOMPARE(w.nykyinenTili().id(), c.id[1999]);
}

void tst_frmTilitNew::typingInTreeJumpsToNumber()
{
    Chart c;
    ScriptedDialogs dialogs;
    frmTilitNew w;
    w.show();
    QVERIFY(QTest::qWaitForWindowActive(&w));
    auto* tree = child<QTreeWidget>(w, "tvTilit");
    tree->setFocus();
    QTest::keyClicks(tree, QStringLiteral("19"));
    QCOMPARE(w.nykyinenTili().id(), c.id[1999]);
    QTest::qWait(QApplication::keyboardInputInterval() + 50);
    QTest::keyClicks(tree, QStringLiteral("5"));
    QCOMPARE(w.nykyinenTili().id(), c.id[5000]);
    QVERIFY(node(tree, QStringLiteral("5000PN"))->isExpanded());
    QTest::qWait(QApplication::keyboardInputInterval() + 50);
    QTest::keyClicks(tree, QStringLiteral("105"));
    QCOMPARE(w.nykyinenTili().id(), c.id[10500]);
    // No account begins so: the computer beeps and the account stays.
    QTest::qWait(QApplication::keyboardInputInterval() + 50);
    QTest::keyClicks(tree, QStringLiteral("7"));
    QCOMPARE(w.nykyinenTili().id(), c.id[10500]);
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Beep).size(), 1);
}

void tst_frmTilitNew::enterMovesBetweenFields()
{
    Chart c;
    ScriptedDialogs dialogs;
    frmTilitNew w;
    w.show();
    QVERIFY(QTest::qWaitForWindowActive(&w));
    auto* numero = child<QLineEdit>(w, "tTilinumero");
    numero->setFocus();
    QTest::keyClick(numero, Qt::Key_Return);
    QCOMPARE(QApplication::focusWidget(), child<QLineEdit>(w, "tNimi"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QCOMPARE(QApplication::focusWidget(), child<QLineEdit>(w, "tKuvaus"));
}

void tst_frmTilitNew::printingDisabled()
{
    Chart c;
    ScriptedDialogs dialogs;
    frmTilitNew w;
    QVERIFY(!child<QPushButton>(w, "cTulosta")->isEnabled());
    QVERIFY(!child<QAction>(w, "mTulostaTilikartta")->isEnabled());
    for (const char* name : { "mUusi", "mTallenna", "mPeru", "mPoista", "mEnsimm_inen", "mEdellinen",
             "mSeuraava", "mViimeinen", "mSelaa", "mSulje" })
        QVERIFY2(child<QAction>(w, name)->isEnabled(), name);
    QCOMPARE(child<QAction>(w, "mTallenna")->shortcut(), QKeySequence(QStringLiteral("Ctrl+S")));
}

void tst_frmTilitNew::emptyChart()
{
    AccountsFixture f;
    ScriptedDialogs dialogs;
    frmTilitNew w;
    QVERIFY(w.nykyinenTili().IsEmpty());
    QCOMPARE(child<QLineEdit>(w, "tTilinumero")->text(), QString());
    for (const char* button :
        { "cSeuraava", "cEdellinen", "cEnsimm_inen", "cViimeinen", "cTallenna", "cPeru", "cPoista" })
        click(w, button);
    QVERIFY(w.nykyinenTili().IsEmpty());
    QCOMPARE(f.tileja(), 0);
    QCOMPARE(dialogs.transcript(), QStringList());
}

void tst_frmTilitNew::demoAssociation()
{
    TestEnv env;
    const QString demo = QStringLiteral(VORKAM_BIN_DIR "/demo1.mdb");
    if (!QFile::exists(demo))
        QSKIP("the demo association has not been built");
    const QString file = env.path(QStringLiteral("demo1.mdb"));
    QVERIFY(QFile::copy(demo, file));
    QFile(file).setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    ProgramSettings::installation().Database = file;
    ScriptedDialogs dialogs;
    dialogs.answerYes();
    const auto count = [] {
        QSqlQuery q(DBC::instance().AvaaDB());
        return q.exec(QStringLiteral("SELECT COUNT(*) FROM tl")) && q.next() ? q.value(0).toInt() : -1;
    };
    const int accounts = count();
    frmTilitNew w;
    w.show();
    QVERIFY(QTest::qWaitForWindowActive(&w));
    auto* tree = child<QTreeWidget>(w, "tvTilit");
    int shown = 0;
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
        QTreeWidgetItem* group = tree->topLevelItem(i);
        for (int j = 0; j < group->childCount(); ++j) {
            const int numero = group->child(j)->text(0).section(u' ', 0, 0).toInt();
            QCOMPARE(Tilikartta::ryhma(numero).value_or(-1), i);
        }
        shown += group->childCount();
    }
    QCOMPARE(shown, accounts);

    QTimer::singleShot(0, this, [&] {
        auto* dialog = QApplication::activeModalWidget();
        child<QLineEdit>(*dialog, "tTilinumero")->setText(QStringLiteral("3050"));
        child<QLineEdit>(*dialog, "tNimi")->setText(QStringLiteral("Talkootuotot"));
        click(*dialog, "cLisaa");
    });
    click(w, "cUusi");
    const qint32 id = w.nykyinenTili().id();
    QVERIFY(id > 0);
    QCOMPARE(count(), accounts + 1);
    retype(child<QLineEdit>(w, "tNimi"), QStringLiteral("Talkoot"));
    retype(child<QLineEdit>(w, "tTilinumero"), QStringLiteral("4050"));
    QCOMPARE(parentKey(tree, id), QStringLiteral("4000PN"));
    // The offscreen platform does not hand the activation back when the dialog closes.
    w.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&w));
    QTest::keyClick(&w, Qt::Key_S, Qt::ControlModifier);
    retype(child<QLineEdit>(w, "tNimi"), QStringLiteral("Kumottava"));
    click(w, "cPeru");
    QCOMPARE(child<QLineEdit>(w, "tNimi")->text(), QStringLiteral("Talkoot"));
    cTili saved;
    QVERIFY(saved.Read(id));
    QCOMPARE(saved.Numero(), 4050);
    QCOMPARE(saved.Nimi(), QStringLiteral("Talkoot"));
    click(w, "cPoista");
    QCOMPARE(count(), accounts);
    QCOMPARE(dialogs.transcript(),
        QStringList { QStringLiteral("question: Haluatko varmasti poistaa valitun tilin?") });
}

QTEST_MAIN(tst_frmTilitNew)
#include "tst_frmTilitNew.moc"
