#include "AccountsFixture.h"
#include "Controls.h"
#include "ScriptedDialogs.h"
#include "accounts/ChartOfAccounts.h"
#include "accounts/cTili.h"
#include "accounts/frmLisaaTili.h"
#include "accounts/frmTilitNew.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>

namespace {

const QString AskDelete = QStringLiteral("question: Haluatko varmasti poistaa valitun tilin?");

QString text(QWidget& w, const char* name) { return child<QLineEdit>(w, name)->text(); }

// Clicks a button, or triggers a menu command (names beginning with "m").
void click(QWidget& w, const char* control)
{
    if (control[0] == 'm')
        child<QAction>(w, control)->trigger();
    else
        QTest::mouseClick(child<QPushButton>(w, control), Qt::LeftButton);
}

void retype(QWidget& w, const char* name, const QString& text)
{
    child<QLineEdit>(w, name)->setFocus();
    child<QLineEdit>(w, name)->setText(text);
}

bool shown(QWidget& w)
{
    w.show();
    return QTest::qWaitForWindowActive(&w);
}

QTreeWidgetItem* node(QTreeWidget* tree, const QString& key)
{
    for (QTreeWidgetItem* n : tree->findItems(QStringLiteral("*"), Qt::MatchWildcard | Qt::MatchRecursive))
        if (n->data(0, Qt::UserRole) == key)
            return n;
    return nullptr;
}

QString parentKey(QTreeWidget* tree, const QString& key)
{
    QTreeWidgetItem* n = node(tree, key);
    return n && n->parent() ? n->parent()->data(0, Qt::UserRole).toString() : QString();
}

// A demo-like chart, ids kept by number, and the window on it.
struct Window : AccountsFixture {
    QHash<int, qint32> id;
    ScriptedDialogs dialogs;
    std::unique_ptr<frmTilitNew> w;
    QTreeWidget* tree = nullptr;

    explicit Window(std::initializer_list<int> blanks = {})
    {
        const std::pair<int, const char*> accounts[]
            = { { 0, "Nollatili" }, { 1000, "Aineettomat oikeudet" }, { 1999, "Pankkitili" },
                  { 2000, "Oma pääoma" }, { 5000, "Jäsenmaksut" }, { 10500, "Erikoistili" } };
        for (const auto& [numero, nimi] : accounts)
            id[numero] = tili(numero, QString::fromUtf8(nimi));
        for (int numero : blanks)
            id[numero] = tili(numero, QStringLiteral(" "));
        vienti(id[1999], QStringLiteral("D"), euros("1234,5"), true);
        vienti(id[1999], QStringLiteral("K"), euros("30"), true);
        vienti(id[1999], QStringLiteral("D"), euros("999"), false);
        vienti(id[1999], QStringLiteral("K"), euros("12,34"), true, true);
        w = std::make_unique<frmTilitNew>(db());
        tree = child<QTreeWidget>(*w, "tvTilit");
    }
    QString key(int numero) const { return ChartOfAccounts::tiliAvain(id[numero]); }
    QString parent(int numero) const { return parentKey(tree, key(numero)); }
    QTreeWidgetItem* node(int numero) const { return ::node(tree, key(numero)); }
    int current() const { return w->nykyinenTili().Numero(); }
};

} // namespace

class tst_frmTilitNew : public QObject {
    Q_OBJECT

private slots:
    void treeGroupsByThousands()
    {
        // The grouping and the tree's stop are tst_ChartOfAccounts's; here the window shows them.
        Window c({ 11000 });
        QCOMPARE(c.dialogs.shown().size(), 1);
        QVERIFY(c.dialogs.transcript().first().startsWith(QStringLiteral("information: ") + TreeError));
        QStringList keys;
        for (int i = 0; i < c.tree->topLevelItemCount(); ++i)
            keys.append(c.tree->topLevelItem(i)->data(0, Qt::UserRole).toString());
        QCOMPARE(keys.join(u' '),
            QStringLiteral("1000PN 2000PN 3000PN 4000PN 5000PN 6000PN 7000PN 8000PN 9000PN MuutPN"));
        QCOMPARE(c.parent(0), QStringLiteral("MuutPN"));
        QCOMPARE(c.parent(1999), QStringLiteral("1000PN"));
        QVERIFY(!c.node(11000));
        QCOMPARE(c.node(1999)->text(0), QStringLiteral("1999 Pankkitili"));
    }

    void browsing()
    {
        Window c;
        frmTilitNew& w = *c.w;
        // The window opens on the first account, and shows the sums of opening entries only.
        QCOMPARE(c.tree->currentItem(), c.node(1000));
        QCOMPARE(text(w, "tNimi"), QStringLiteral("Aineettomat oikeudet"));
        click(w, "cSeuraava");
        QStringList sums;
        for (const char* label :
            { "lblKuluvaDebet", "lblKuluvaKredit", "lblEdellinenDebet", "lblEdellinenKredit" })
            sums.append(child<QLabel>(w, label)->text());
        QCOMPARE(sums,
            (QStringList { euros("1234,5").toCurrencyString(), euros("30").toCurrencyString(),
                Money().toCurrencyString(), euros("12,34").toCurrencyString() }));
        // At either end the account stays; previous goes on below the first account to 0.
        const std::pair<const char*, int> steps[] = { { "cViimeinen", 10500 }, { "cSeuraava", 10500 },
            { "cEdellinen", 5000 }, { "mEnsimm_inen", 1000 }, { "mEdellinen", 0 }, { "cEdellinen", 0 },
            { "mSeuraava", 1000 }, { "mViimeinen", 10500 }, { "cEnsimm_inen", 1000 } };
        for (const auto& [control, numero] : steps) {
            click(w, control);
            QVERIFY2(text(w, "tTilinumero") == QString::number(numero) && c.current() == numero, control);
        }
        QCOMPARE(c.tree->currentItem(), c.node(1000));
        // Choosing a node shows its account; a group node changes nothing.
        c.tree->setCurrentItem(c.node(2000));
        QCOMPARE(text(w, "tNimi"), QStringLiteral("Oma pääoma"));
        c.tree->setCurrentItem(::node(c.tree, QStringLiteral("3000PN")));
        QCOMPARE(c.current(), 2000);
        QCOMPARE(c.dialogs.transcript(), QStringList());
    }

    void editsSavedByCommandOrLeaving()
    {
        Window c;
        frmTilitNew& w = *c.w;
        QVERIFY(shown(w));
        retype(w, "tNimi", QStringLiteral("Oikeudet"));
        QCOMPARE(c.node(1000)->text(0), QStringLiteral("1000 Oikeudet"));
        retype(w, "tKuvaus", QStringLiteral("Kuvaus"));
        QCOMPARE(c.nimi(c.id[1000]), QStringLiteral("Aineettomat oikeudet"));
        QTest::keyClick(&w, Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(c.nimi(c.id[1000]), QStringLiteral("Oikeudet"));
        QCOMPARE(c.kentta(c.id[1000], "tlKuvaus").toString(), QStringLiteral("Kuvaus"));
        // Moving to another account or closing the window saves the changes.
        retype(w, "tNimi", QStringLiteral("Siirrettävä"));
        click(w, "cSeuraava");
        QCOMPARE(c.nimi(c.id[1000]), QStringLiteral("Siirrettävä"));
        retype(w, "tNimi", QStringLiteral("Suljettaessa"));
        QVERIFY(w.close());
        QCOMPARE(c.nimi(c.id[1999]), QStringLiteral("Suljettaessa"));
        QCOMPARE(c.dialogs.transcript(), QStringList());
    }

    void renumberingMovesNodeUndoMovesItBack()
    {
        Window c;
        frmTilitNew& w = *c.w;
        QVERIFY(shown(w));
        ::node(c.tree, QStringLiteral("3000PN"))->setExpanded(false);
        retype(w, "tTilinumero", QStringLiteral("3500"));
        QCOMPARE(c.parent(1000), QStringLiteral("3000PN"));
        QVERIFY(c.node(1000)->parent()->isExpanded());
        QCOMPARE(c.node(1000)->text(0), QStringLiteral("3500 Aineettomat oikeudet"));
        QCOMPARE(c.tree->currentItem(), c.node(1000));
        click(w, "mPeru");
        QCOMPARE(text(w, "tTilinumero"), QStringLiteral("1000"));
        QCOMPARE(c.parent(1000), QStringLiteral("1000PN"));
        QCOMPARE(c.node(1000)->text(0), QStringLiteral("1000 Aineettomat oikeudet"));
        retype(w, "tTilinumero", QStringLiteral("3500"));
        click(w, "cTallenna");
        QCOMPARE(c.kentta(c.id[1000], "tlNumero").toInt(), 3500);
        // Back among other accounts: the node takes its place by number.
        retype(w, "tTilinumero", QStringLiteral("1500"));
        QCOMPARE(c.node(1000)->parent()->indexOfChild(c.node(1000)), 0);
        QCOMPARE(c.parent(1000), QStringLiteral("1000PN"));
        QCOMPARE(::node(c.tree, QStringLiteral("3000PN"))->childCount(), 0);
        QCOMPARE(c.dialogs.transcript(), QStringList());
    }

    void badInputRefusedOnSave()
    {
        Window c;
        frmTilitNew& w = *c.w;
        QVERIFY(shown(w));
        // The rules are tst_ChartOfAccounts's; here the window shows them and focuses the field.
        const auto save = [&w](const char* field, const char* value) {
            retype(w, field, QString::fromUtf8(value));
            child<QPushButton>(w, "cTallenna")->setFocus();
            click(w, "cTallenna");
            return QApplication::focusWidget()->objectName();
        };
        QCOMPARE(save("tNimi", "  "), QStringLiteral("tNimi"));
        QCOMPARE(save("tTilinumero", "1o00"), QStringLiteral("tTilinumero"));
        QCOMPARE(c.dialogs.transcript(),
            (QStringList {
                QStringLiteral("information: ") + NoName, QStringLiteral("information: ") + FourDigits }));
        // Leaving the account or closing the window is refused the same way until undone.
        click(w, "cSeuraava");
        QCOMPARE(c.dialogs.shown().size(), 3);
        QVERIFY(c.dialogs.shown().last().text.endsWith(
            QStringLiteral("\nKorjaa tieto tai peru muutokset (Alt+P).")));
        QCOMPARE(w.nykyinenTili().id(), c.id[1000]);
        QVERIFY(!w.close());
        // Peru from the keyboard undoes the change without checking it again.
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_P, Qt::AltModifier);
        QTRY_VERIFY(!w.nykyinenTili().isChanged());
        QCOMPARE(c.dialogs.shown().size(), 4);
        QVERIFY(w.close());
        QCOMPARE(c.kentta(c.id[1000], "tlNumero").toInt(), 1000);
        QCOMPARE(c.nimi(c.id[1000]), QStringLiteral("Aineettomat oikeudet"));
        QCOMPARE(c.tileja(), 6);
    }

    void deleteAskedUnlessEntries_data()
    {
        QTest::addColumn<QString>("amount"); // of an entry of this year
        QTest::newRow("an entry") << QStringLiteral("0,01");
        QTest::newRow("zero amounts only") << QStringLiteral("0");
    }

    void deleteAskedUnlessEntries()
    {
        QFETCH(QString, amount);
        const bool blocked = amount != QLatin1String("0");
        Window c;
        c.vienti(c.id[1000], QStringLiteral("D"), *Money::parse(amount), false);
        c.dialogs.answerNo().answerYes();
        click(*c.w, "cPoista");
        QVERIFY(c.node(1000));
        click(*c.w, "mPoista");
        QCOMPARE(c.dialogs.transcript(),
            QStringList(2, blocked ? QStringLiteral("information: ") + HasEntries : AskDelete));
        QCOMPARE(c.tileja(), blocked ? 6 : 5);
        QCOMPARE(!c.node(1000), !blocked);
        // The next account takes the deleted one's place.
        QCOMPARE(c.current(), blocked ? 1000 : 1999);
        QCOMPARE(text(*c.w, "tTilinumero").toInt(), c.current());
    }

    // The add dialog refuses with the field focused; the new account becomes current, printed,
    // and goes on its neighbour's statement row if the user agrees, or the user is warned.
    void addAccountBecomesCurrent()
    {
        Window c;
        c.exec(QStringLiteral("INSERT INTO ma (maID, maNimi, maTyyppi) VALUES (7, 'Tase', 1)"));
        c.exec(QStringLiteral("INSERT INTO mr (mrID, mrmaID, mrTeksti, mrTilit) VALUES (70, 7, 'Rahat', ?)"),
            { QStringLiteral("%1,").arg(c.id[1999]) });
        frmTilitNew& w = *c.w;
        QVERIFY(shown(w));
        // Tries each (number, name) in the dialog; gives its focus first and after each try.
        const auto add = [&](std::initializer_list<std::pair<const char*, const char*>> tries) {
            QStringList focus;
            QTimer::singleShot(0, this, [&] {
                auto* dialog = qobject_cast<frmLisaaTili*>(QApplication::activeModalWidget());
                QVERIFY(dialog);
                focus << dialog->focusWidget()->objectName();
                for (const auto& [numero, nimi] : tries) {
                    retype(*dialog, "tTilinumero", QString::fromUtf8(numero));
                    retype(*dialog, "tNimi", QString::fromUtf8(nimi));
                    retype(*dialog, "tKuvaus", QStringLiteral("Tuet"));
                    click(*dialog, "cLisaa");
                    focus << (dialog->isVisible() ? dialog->focusWidget()->objectName() : "closed");
                }
            });
            click(w, "cUusi");
            return focus;
        };
        QCOMPARE(add({ { "0999", "Avustukset" }, { "4100", " " }, { "4100", "Avustukset" } }),
            (QStringList { "tTilinumero", "tTilinumero", "tNimi", "closed" }));
        c.id[4100] = w.nykyinenTili().id();
        QCOMPARE(c.dialogs.transcript(),
            (QStringList { QStringLiteral("information: ") + FourDigits,
                QStringLiteral("information: ") + NoName,
                QStringLiteral(
                    "information: Uusi tili 4100 Avustukset ei ole tuloslaskelman eikä taseen millään "
                    "rivillä, joten sen saldo puuttuisi tilinpäätöksestä.\nLisää tili oikealle riville "
                    "Tulos ja tase -ikkunassa.") }));
        QCOMPARE(c.kentta(c.id[4100], "tlKuvaus").toString(), QStringLiteral("Tuet"));
        QCOMPARE(c.kentta(c.id[4100], "tlNumero").toInt(), 4100);
        QVERIFY(child<QCheckBox>(w, "chkTulostetaan")->isChecked());
        QCOMPARE(text(w, "tNimi"), QStringLiteral("Avustukset"));
        QCOMPARE(c.parent(4100), QStringLiteral("4000PN"));
        QCOMPARE(c.tree->currentItem(), c.node(4100));
        QCOMPARE(w.focusWidget(), child<QLineEdit>(w, "tTilinumero"));
        // The flag is the user's to change, saved with the account.
        child<QCheckBox>(w, "chkTulostetaan")->click();
        click(w, "cTallenna");
        QCOMPARE(c.kentta(c.id[4100], "tlPrint").toInt(), 0);

        c.dialogs.clear();
        c.dialogs.answerYes();
        add({ { "1998", "Kassa" } });
        const qint32 kassa = w.nykyinenTili().id();
        QCOMPARE(c.dialogs.texts(ScriptedDialogs::Kind::Question).value(0).section(u'\n', 1),
            QStringLiteral("Lähin tili 1999 Pankkitili on rivillä:\n    Tase: Rahat\n\nLisätäänkö uusi tili "
                           "samalle riville?"));
        QCOMPARE(c.value(QStringLiteral("SELECT mrTilit FROM mr WHERE mrID = 70")).toString(),
            QStringLiteral("%1,%2,").arg(c.id[1999]).arg(kassa));
        // A cancelled dialog adds nothing and leaves the current account.
        QTimer::singleShot(0, this, [&] { click(*QApplication::activeModalWidget(), "cPeruuta"); });
        click(w, "cUusi");
        QCOMPARE(c.tileja(), 8);
        QCOMPARE(c.current(), 1998);
    }

    void typingDigitsInTreeJumps()
    {
        Window c;
        QVERIFY(shown(*c.w));
        click(*c.w, "cSelaa");
        QCOMPARE(QApplication::focusWidget(), c.tree);
        // Digits typed in quick succession make one number; after a pause a new one begins.
        const auto typed = [&](const char* digits) {
            QTest::qWait(QApplication::keyboardInputInterval() + 50);
            QTest::keyClicks(c.tree, QString::fromLatin1(digits));
            return c.current();
        };
        QCOMPARE(typed("5"), 5000);
        QCOMPARE(typed("105"), 10500);
        // No account begins so: the computer beeps and the account stays.
        QCOMPARE(typed("7"), 10500);
        QCOMPARE(c.dialogs.texts(ScriptedDialogs::Kind::Beep).size(), 1);
    }

    void emptyChart()
    {
        AccountsFixture f;
        ScriptedDialogs dialogs;
        frmTilitNew w(f.db());
        for (const char* button :
            { "cSeuraava", "cEdellinen", "cEnsimm_inen", "cViimeinen", "cTallenna", "cPeru", "cPoista" })
            click(w, button);
        QVERIFY(w.nykyinenTili().IsEmpty());
        QCOMPARE(text(w, "tTilinumero"), QString());
        QCOMPARE(f.tileja(), 0);
        QCOMPARE(dialogs.transcript(), QStringList());
    }
};

QTEST_MAIN(tst_frmTilitNew)
#include "tst_frmTilitNew.moc"
