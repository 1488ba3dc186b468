#include "AccountsFixture.h"
#include "Controls.h"
#include "ScriptedDialogs.h"
#include "accounts/ChartOfAccounts.h"
#include "accounts/cTili.h"
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

QTreeWidgetItem* node(QTreeWidget* tree, const QString& key)
{
    for (QTreeWidgetItem* n : tree->findItems(QStringLiteral("*"), Qt::MatchWildcard | Qt::MatchRecursive))
        if (n->data(0, Qt::UserRole) == key)
            return n;
    return nullptr;
}

// A demo-like chart, ids kept by number, and the window on it.
struct Window : AccountsFixture {
    QHash<int, qint32> id;
    ScriptedDialogs dialogs;
    std::unique_ptr<frmTilitNew> w;
    QTreeWidget* tree = nullptr;

    Window()
    {
        const std::pair<int, const char*> accounts[]
            = { { 0, "Nollatili" }, { 1000, "Aineettomat oikeudet" }, { 1999, "Pankkitili" },
                  { 2000, "Oma pääoma" }, { 5000, "Jäsenmaksut" }, { 10500, "Erikoistili" } };
        for (const auto& [numero, nimi] : accounts)
            id[numero] = tili(numero, QString::fromUtf8(nimi));
        vienti(1, id[1999], "D", "1234,5", false, true);
        vienti(1, id[1999], "D", "999");
        vienti(1, id[1999], "K", "12,34", false, true, true);
        w = std::make_unique<frmTilitNew>(db());
        tree = child<QTreeWidget>(*w, "tvTilit");
    }
    QTreeWidgetItem* node(int numero) const { return ::node(tree, ChartOfAccounts::tiliAvain(id[numero])); }
    QTreeWidgetItem* group(const char* key) const { return ::node(tree, QString::fromLatin1(key)); }
    int current() const { return w->nykyinenTili().Numero(); }
};

} // namespace

class tst_frmTilitNew : public QObject {
    Q_OBJECT

private slots:
    // The tree groups by thousands (the rules are tst_ChartOfAccounts's); the window opens on the
    // first account with the sums of its opening entries, and every command moves through them.
    // Deleting is refused for an account with entries, else asked, and the next account takes
    // the deleted one's place. Digits typed in the tree jump to an account.
    void browsing()
    {
        Window c;
        frmTilitNew& w = *c.w;
        w.show();
        QVERIFY(QTest::qWaitForWindowActive(&w));
        QCOMPARE(c.node(0)->parent(), c.group("MuutPN"));
        QCOMPARE(text(w, "tNimi"), QStringLiteral("Aineettomat oikeudet"));
        click(w, "cSeuraava");
        QCOMPARE(child<QLabel>(w, "lblKuluvaDebet")->text(), euros("1234,5").toCurrencyString());
        QCOMPARE(child<QLabel>(w, "lblEdellinenKredit")->text(), euros("12,34").toCurrencyString());
        // At the end the account stays.
        const std::pair<const char*, int> steps[] = { { "cViimeinen", 10500 }, { "cSeuraava", 10500 },
            { "cEdellinen", 5000 }, { "mEnsimm_inen", 1000 }, { "mEdellinen", 0 }, { "mSeuraava", 1000 },
            { "mViimeinen", 10500 }, { "cEnsimm_inen", 1000 } };
        for (const auto& [control, numero] : steps) {
            click(w, control);
            QVERIFY2(text(w, "tTilinumero") == QString::number(numero) && c.current() == numero, control);
        }
        QCOMPARE(c.tree->currentItem(), c.node(1000));

        c.vienti(1, c.id[1000], "D", "0,01");
        click(w, "cPoista");
        c.exec(QStringLiteral("DELETE FROM vi WHERE vitlID = ?"), { c.id[1000] });
        c.dialogs.answerNo().answerYes();
        click(w, "cPoista");
        click(w, "mPoista");
        QCOMPARE(c.dialogs.transcript(),
            (QStringList { QStringLiteral("information: ") + HasEntries, AskDelete, AskDelete }));
        QCOMPARE(c.tileja(), 5);
        QVERIFY(!c.node(1000));
        QCOMPARE(c.tree->currentItem(), c.node(1999));

        click(w, "cSelaa");
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

        // A number without a group stops the tree, and the window says so.
        c.tili(11000, QStringLiteral("Iso"));
        frmTilitNew stopped(c.db());
        QVERIFY(c.dialogs.texts(ScriptedDialogs::Kind::Information).last().startsWith(TreeError));
    }

    // Typing renames and regroups the account's node at once, and Peru puts it back in its place
    // by number. A change is saved by Ctrl+S, by moving to another account or by closing the
    // window; a refused one keeps the user on the account until it is undone.
    void editing()
    {
        Window c;
        frmTilitNew& w = *c.w;
        w.show();
        QVERIFY(QTest::qWaitForWindowActive(&w));
        retype(w, "tNimi", QStringLiteral("Oikeudet"));
        retype(w, "tTilinumero", QStringLiteral("3500"));
        QCOMPARE(c.node(1000)->parent(), c.group("3000PN"));
        QCOMPARE(c.node(1000)->text(0), QStringLiteral("3500 Oikeudet"));
        click(w, "mPeru");
        QCOMPARE(text(w, "tTilinumero"), QStringLiteral("1000"));
        QCOMPARE(c.group("1000PN")->indexOfChild(c.node(1000)), 0);
        QCOMPARE(c.group("3000PN")->childCount(), 0);

        retype(w, "tTilinumero", QStringLiteral("3500"));
        retype(w, "tKuvaus", QStringLiteral("Kuvaus"));
        QTest::keyClick(&w, Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(c.kentta(c.id[1000], "tlNumero").toInt(), 3500);
        QCOMPARE(c.kentta(c.id[1000], "tlKuvaus").toString(), QStringLiteral("Kuvaus"));
        retype(w, "tNimi", QStringLiteral("Siirrettävä"));
        click(w, "cSeuraava");
        QCOMPARE(c.nimi(c.id[1000]), QStringLiteral("Siirrettävä"));

        // The rules are tst_ChartOfAccounts's; here the refusal is shown with its field focused.
        retype(w, "tTilinumero", QStringLiteral("1o00"));
        child<QPushButton>(w, "cTallenna")->setFocus();
        click(w, "cTallenna");
        QCOMPARE(QApplication::focusWidget()->objectName(), QStringLiteral("tTilinumero"));
        QCOMPARE(c.dialogs.transcript(), QStringList { QStringLiteral("information: ") + FourDigits });
        click(w, "cSeuraava");
        QVERIFY(c.dialogs.shown().last().text.endsWith(
            QStringLiteral("\nKorjaa tieto tai peru muutokset (Alt+P).")));
        QCOMPARE(w.nykyinenTili().id(), c.id[5000]);
        QVERIFY(!w.close());
        // Peru from the keyboard undoes the change without checking it again.
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_P, Qt::AltModifier);
        QTRY_VERIFY(!w.nykyinenTili().isChanged());
        QCOMPARE(c.dialogs.shown().size(), 3);
        retype(w, "tNimi", QStringLiteral("Suljettaessa"));
        QVERIFY(w.close());
        QCOMPARE(c.nimi(c.id[5000]), QStringLiteral("Suljettaessa"));
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
        w.show();
        QVERIFY(QTest::qWaitForWindowActive(&w));
        // Tries each (number, name) in the dialog; gives its focus first and after each try.
        const auto add = [&](std::initializer_list<std::pair<const char*, const char*>> tries) {
            QStringList focus;
            QTimer::singleShot(0, this, [&] {
                QWidget* dialog = QApplication::activeModalWidget();
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
        QCOMPARE(add({ { "4100", " " }, { "4100", "Avustukset" } }),
            (QStringList { "tTilinumero", "tNimi", "closed" }));
        c.id[4100] = w.nykyinenTili().id();
        const QStringList told = c.dialogs.transcript();
        QCOMPARE(told.value(0), QStringLiteral("information: ") + NoName);
        QVERIFY(told.value(1).startsWith(QStringLiteral("information: Uusi tili 4100 Avustukset ei ole")));
        QCOMPARE(c.kentta(c.id[4100], "tlKuvaus").toString(), QStringLiteral("Tuet"));
        QCOMPARE(c.tree->currentItem(), c.node(4100));
        // The printing flag is the user's to change, saved with the account.
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
};

QTEST_MAIN(tst_frmTilitNew)
#include "tst_frmTilitNew.moc"
