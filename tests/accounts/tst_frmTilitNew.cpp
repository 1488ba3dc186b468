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
        vienti(id[1999], QStringLiteral("D"), euros("1234,5"), true);
        vienti(id[1999], QStringLiteral("D"), euros("999"), false);
        vienti(id[1999], QStringLiteral("K"), euros("12,34"), true, true);
        w = std::make_unique<frmTilitNew>(db());
        tree = child<QTreeWidget>(*w, "tvTilit");
    }
    QTreeWidgetItem* node(int numero) const { return ::node(tree, ChartOfAccounts::tiliAvain(id[numero])); }
    QString parent(int numero) const
    {
        QTreeWidgetItem* n = node(numero);
        return n && n->parent() ? n->parent()->data(0, Qt::UserRole).toString() : QString();
    }
    int current() const { return w->nykyinenTili().Numero(); }
};

} // namespace

class tst_frmTilitNew : public QObject {
    Q_OBJECT

private slots:
    // The tree groups by thousands (the rules are tst_ChartOfAccounts's); the window opens on the
    // first account with the sums of its opening entries, and every command moves through them.
    void browsing()
    {
        Window c;
        frmTilitNew& w = *c.w;
        QCOMPARE(c.parent(0), QStringLiteral("MuutPN"));
        QCOMPARE(c.node(1999)->text(0), QStringLiteral("1999 Pankkitili"));
        QCOMPARE(c.tree->currentItem(), c.node(1000));
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
        // Choosing a node shows its account.
        c.tree->setCurrentItem(c.node(2000));
        QCOMPARE(text(w, "tNimi"), QStringLiteral("Oma pääoma"));
        QCOMPARE(c.dialogs.transcript(), QStringList());
        // A number without a group stops the tree, and the window says so.
        c.tili(11000, QStringLiteral("Iso"));
        frmTilitNew stopped(c.db());
        QVERIFY(c.dialogs.transcript().value(0).startsWith(QStringLiteral("information: ") + TreeError));
    }

    // Typing renames and regroups the account's node at once, and Peru puts it back in its place
    // by number. A change is saved by Ctrl+S, by moving to another account or by closing the
    // window; a refused one keeps the user on the account until it is undone.
    void editing()
    {
        Window c;
        frmTilitNew& w = *c.w;
        QVERIFY(shown(w));
        retype(w, "tNimi", QStringLiteral("Oikeudet"));
        retype(w, "tTilinumero", QStringLiteral("3500"));
        QCOMPARE(c.parent(1000), QStringLiteral("3000PN"));
        QCOMPARE(c.node(1000)->text(0), QStringLiteral("3500 Oikeudet"));
        QCOMPARE(c.tree->currentItem(), c.node(1000));
        QCOMPARE(c.nimi(c.id[1000]), QStringLiteral("Aineettomat oikeudet"));
        click(w, "mPeru");
        QCOMPARE(text(w, "tTilinumero"), QStringLiteral("1000"));
        QCOMPARE(c.parent(1000), QStringLiteral("1000PN"));
        QCOMPARE(c.node(1000)->parent()->indexOfChild(c.node(1000)), 0);
        QCOMPARE(::node(c.tree, QStringLiteral("3000PN"))->childCount(), 0);

        retype(w, "tTilinumero", QStringLiteral("3500"));
        retype(w, "tKuvaus", QStringLiteral("Kuvaus"));
        QTest::keyClick(&w, Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(c.value(QStringLiteral("SELECT tlNumero || tlKuvaus FROM tl WHERE tlID = ?"), { c.id[1000] })
                     .toString(),
            QStringLiteral("3500Kuvaus"));
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
        QCOMPARE(c.value(QStringLiteral("SELECT tlNumero || tlNimi FROM tl WHERE tlID = ?"), { c.id[5000] })
                     .toString(),
            QStringLiteral("5000Suljettaessa"));
    }

    // An account with entries is not deleted; another is, when the user agrees, and the next
    // account takes its place.
    void deletion()
    {
        Window c;
        c.vienti(c.id[1000], QStringLiteral("D"), euros("0,01"), false);
        click(*c.w, "cPoista");
        QCOMPARE(c.dialogs.transcript(), QStringList { QStringLiteral("information: ") + HasEntries });
        c.exec(QStringLiteral("DELETE FROM vi WHERE vitlID = ?"), { c.id[1000] });
        c.dialogs.clear();
        c.dialogs.answerNo().answerYes();
        click(*c.w, "cPoista");
        QVERIFY(c.node(1000));
        click(*c.w, "mPoista");
        QCOMPARE(c.dialogs.transcript(), QStringList(2, AskDelete));
        QCOMPARE(c.tileja(), 5);
        QVERIFY(!c.node(1000));
        QCOMPARE(c.current(), 1999);
        QCOMPARE(text(*c.w, "tTilinumero"), QStringLiteral("1999"));
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
        QCOMPARE(c.dialogs.transcript(),
            (QStringList { QStringLiteral("information: ") + NoName,
                QStringLiteral(
                    "information: Uusi tili 4100 Avustukset ei ole tuloslaskelman eikä taseen millään "
                    "rivillä, joten sen saldo puuttuisi tilinpäätöksestä.\nLisää tili oikealle riville "
                    "Tulos ja tase -ikkunassa.") }));
        QCOMPARE(c.kentta(c.id[4100], "tlKuvaus").toString(), QStringLiteral("Tuet"));
        QCOMPARE(c.tree->currentItem(), c.node(4100));
        // The printing flag is set, the user's to change, and saved with the account.
        QVERIFY(child<QCheckBox>(w, "chkTulostetaan")->isChecked());
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
        QCOMPARE(f.tileja(), 0);
        QCOMPARE(dialogs.transcript(), QStringList());
    }
};

QTEST_MAIN(tst_frmTilitNew)
#include "tst_frmTilitNew.moc"
