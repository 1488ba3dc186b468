#include "Controls.h"
#include "ScriptedDialogs.h"
#include "ScriptedResolver.h"
#include "TestEnv.h"
#include "core/DatabaseFile.h"
#include "core/ProgramSettings.h"
#include "core/SettingsStore.h"
#include "settings/frmAsetukset.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

namespace {

const QString Connection = QStringLiteral("tst_frmAsetukset_books");
const QString Ask = QStringLiteral("question: Asetuksia on muutettu, tallennetaanko?");

// Books in use with a few stored settings, as after a start, in a world of their own.
struct Books {
    TestEnv env;
    ScriptedDialogs dialogs;
    QString file = env.path(QStringLiteral("seura.mdb"));
    explicit Books(bool open = true)
    {
        TestEnv::createDatabase(file);
        withDatabase(file, [](QSqlDatabase& db) {
            DbSettingsStore store(db);
            store.write(QStringLiteral("TilikausiAlku"), QStringLiteral("1.7.2024"));
            store.write(QStringLiteral("LaskettavaTili"), QStringLiteral("1"));
            store.write(QStringLiteral("VaakaTulostus"), QStringLiteral("-1"));
            store.write(QStringLiteral("Seurannimi"), QStringLiteral("Kuoro ry"));
        });
        env.writeIni("[VORKAM]\nDatabase=" + file.toUtf8() + "\n");
        ProgramSettings::loadInstallation();
        if (open) {
            DatabaseFile::open(file, Connection);
            ProgramSettings::loadBookkeeping(db(), file, QDate(2024, 6, 1));
        }
    }
    ~Books() { DatabaseFile::close(Connection); }
    QSqlDatabase db() const { return QSqlDatabase::database(Connection, false); }
};

QString text(const QWidget& w, const char* name) { return child<QLineEdit>(w, name)->text(); }

// Types over what the field holds, as the user does.
void type(const QWidget& w, const char* name, const QString& value)
{
    QLineEdit* field = child<QLineEdit>(w, name);
    field->selectAll();
    QTest::keyClicks(field, value);
}

QString storedValue(const QString& file, const QString& key)
{
    QString value = QStringLiteral("(none)");
    withDatabase(file, [&](QSqlDatabase& db) { value = DbSettingsStore(db).read(key, value); });
    return value;
}

void click(const QWidget& w, const char* name) { child<QPushButton>(w, name)->click(); }

} // namespace

class tst_frmAsetukset : public QObject {
    Q_OBJECT

private slots:
    void showsAndSavesTheSettings();
    void refusedFieldKeepsWindowOpen();
    void keyboardAndClosing();
    void withoutBooksOnlyTheDatabaseCanChange();
    void mailServerQuery();
};

// The controls show the settings in force; saved, their values are in force at once and the
// dates are shown as they were understood.
void tst_frmAsetukset::showsAndSavesTheSettings()
{
    Books books;
    frmAsetukset w(books.db());
    QCOMPARE(text(w, "tTilikausiAlku"), QStringLiteral("1.7.2024"));
    QCOMPARE(text(w, "tSeurannimi"), QStringLiteral("Kuoro ry"));
    QVERIFY(child<QCheckBox>(w, "chkVaakatulostus")->isChecked());
    QCOMPARE(child<QComboBox>(w, "cmbLaskettavaTili")->currentText(), QStringLiteral("1910 Pankkitili"));

    type(w, "tTilikausiAlku", QStringLiteral("1.1.24"));
    child<QComboBox>(w, "cmbVoittoTaseella")->setCurrentIndex(2);
    child<QCheckBox>(w, "chkVaakatulostus")->setChecked(false);
    click(w, "cTallenna");
    QVERIFY(!w.changed());
    QCOMPARE(text(w, "tTilikausiAlku"), QStringLiteral("1.1.2024"));
    QCOMPARE(child<QLabel>(w, "lblTallennettu")->text(), QStringLiteral("Asetukset tallennettu."));
    QCOMPARE(ProgramSettings::bookkeeping().TilikausiAlku, QDate(2024, 1, 1));
    QCOMPARE(ProgramSettings::bookkeeping().VoittoTaseella, 2);
    QCOMPARE(storedValue(books.file, QStringLiteral("VaakaTulostus")), QStringLiteral("0"));
}

// Which values are refused is SettingsForm's rule; the window shows the refused field on its page
// and keeps what was typed, which still counts as a change: closing asks, and Yes keeps the window
// open.
void tst_frmAsetukset::refusedFieldKeepsWindowOpen()
{
    Books books;
    frmAsetukset w(books.db());
    w.show();
    type(w, "tEdTilikausiAlku", QStringLiteral("30.2.2023"));
    child<QTabWidget>(w, "tabAsetukset")->setCurrentIndex(3);
    QVERIFY(!w.tallenna());
    QCOMPARE(books.dialogs.texts(ScriptedDialogs::Kind::Information).size(), 1);
    QCOMPARE(
        child<QTabWidget>(w, "tabAsetukset")->currentWidget()->objectName(), QStringLiteral("tabTilikausi"));
    QCOMPARE(text(w, "tEdTilikausiAlku"), QStringLiteral("30.2.2023"));
    books.dialogs.answerYes();
    click(w, "cSulje");
    QVERIFY(w.isVisible());
    QCOMPARE(books.dialogs.transcript().at(1), Ask);
}

// Enter moves to the next field and never saves; Esc closes as the Close button does, asking
// first whether a change is to be saved.
void tst_frmAsetukset::keyboardAndClosing()
{
    Books books;
    frmAsetukset w(books.db());
    w.show();
    QVERIFY(QTest::qWaitForWindowActive(&w));
    QLineEdit* start = child<QLineEdit>(w, "tTilikausiAlku");
    start->setFocus();
    QTest::keyClick(start, Qt::Key_Return);
    QCOMPARE(QApplication::focusWidget(), child<QLineEdit>(w, "tTilikausiLoppu"));
    QTest::keyClick(&w, Qt::Key_Escape);
    QVERIFY(!w.isVisible());
    QCOMPARE(books.dialogs.transcript(), QStringList());

    w.show();
    type(w, "tSMTP", QStringLiteral("smtp.kuoro.fi"));
    books.dialogs.answerNo().answerYes();
    QTest::keyClick(&w, Qt::Key_Escape);
    QVERIFY(!w.isVisible());
    QCOMPARE(storedValue(books.file, QStringLiteral("SMTP")), QStringLiteral("(none)"));
    w.show();
    QTest::keyClick(&w, Qt::Key_Escape);
    QVERIFY(!w.isVisible());
    QCOMPARE(books.dialogs.transcript(), (QStringList { Ask, Ask }));
    QCOMPARE(storedValue(books.file, QStringLiteral("SMTP")), QStringLiteral("smtp.kuoro.fi"));
}

// Without books the database is chosen with the file dialog, which starts at the database
// named; saved, the program is to end.
void tst_frmAsetukset::withoutBooksOnlyTheDatabaseCanChange()
{
    Books books(false);
    const QString other = books.env.path(QStringLiteral("toinen.mdb"));
    QVERIFY(TestEnv::createDatabase(other));
    frmAsetukset w { QSqlDatabase() };
    QVERIFY(!child<QLineEdit>(w, "tTilikausiAlku")->isEnabled());
    bool asked = false;
    w.setBeforeDatabaseChange([&] { return asked = true; });
    w.show();
    // A cancelled dialog leaves the name as it is.
    books.dialogs.answerOpenFile(QString()).answerOpenFile(other);
    click(w, "cTietokantavalita");
    QCOMPARE(text(w, "tDatabase"), books.file);
    click(w, "cTietokantavalita");
    QCOMPARE(text(w, "tDatabase"), other);
    QCOMPARE(books.dialogs.transcript(),
        QStringList(2, QStringLiteral("open: Valitse tietokanta | ") + books.file));
    click(w, "cTallenna");
    QVERIFY(asked && w.databaseChanged());
}

// The name service is asked off the window's thread: the button returns at once, and the
// server found is put in its field when the answer comes.
void tst_frmAsetukset::mailServerQuery()
{
    Books books;
    ScriptedResolver resolver;
    resolver.reply
        = { Resolver::Status::Answer, ScriptedResolver::mxAnswer("kuoro.fi", { { 10, "posti.kuoro.fi" } }) };
    frmAsetukset w(books.db());
    type(w, "tEmail", QStringLiteral("anna@kuoro.fi"));
    QSemaphore gate;
    resolver.gate = &gate;
    books.dialogs.answerYes();
    click(w, "cHaePalvelin");
    QVERIFY(w.askingMailServer());
    gate.release();
    QTRY_VERIFY(!w.askingMailServer());
    QCOMPARE(text(w, "tSMTP"), QStringLiteral("posti.kuoro.fi"));
}

QTEST_MAIN(tst_frmAsetukset)
#include "tst_frmAsetukset.moc"
