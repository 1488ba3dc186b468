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
#include <QSqlQuery>
#include <QTabWidget>
#include <QTest>

namespace {

const QString Connection = QStringLiteral("tst_frmAsetukset_books");
const QString Ask = QStringLiteral("question: Asetuksia on muutettu, tallennetaanko?");

// Books in use with a few stored settings, as after a start.
struct Books {
    explicit Books(TestEnv& env, bool open = true)
        : file(env.path(QStringLiteral("seura.mdb")))
    {
        TestEnv::createDatabase(file);
        withDatabase(file, [](QSqlDatabase& db) {
            DbSettingsStore store(db);
            store.write(QStringLiteral("TilikausiAlku"), QStringLiteral("1.7.2024"));
            store.write(QStringLiteral("LaskettavaTili"), QStringLiteral("1"));
            store.write(QStringLiteral("VaakaTulostus"), QStringLiteral("-1"));
            store.write(QStringLiteral("MargOik"), QStringLiteral("12"));
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
    QString file;
};

QString text(const QWidget& w, const char* name) { return child<QLineEdit>(w, name)->text(); }

// Types over what the field holds, as the user does.
void type(const QWidget& w, const char* name, const QString& value)
{
    QLineEdit* field = child<QLineEdit>(w, name);
    field->selectAll();
    if (value.isEmpty())
        QTest::keyClick(field, Qt::Key_Delete);
    else
        QTest::keyClicks(field, value);
}

QString storedValue(const QString& file, const QString& key)
{
    QString value = QStringLiteral("(none)");
    withDatabase(file, [&](QSqlDatabase& db) { value = DbSettingsStore(db).read(key, value); });
    return value;
}

} // namespace

class tst_frmAsetukset : public QObject {
    Q_OBJECT

private slots:
    void controlsShowTheSettings();
    void savedValuesTakeEffectAtOnce();
    void refusedFieldKeepsWindowOpen();
    void closing_data();
    void closing();
    void databaseChooser_data();
    void databaseChooser();
    void mailServerQuery();
    void withoutBooksOnlyTheDatabaseCanChange();
    void enterMovesToNextField();
};

void tst_frmAsetukset::controlsShowTheSettings()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    frmAsetukset w(books.db());
    QCOMPARE(w.windowTitle(), QStringLiteral("Asetukset"));
    QCOMPARE(text(w, "tTilikausiAlku"), QStringLiteral("1.7.2024"));
    QCOMPARE(text(w, "tTilikausiLoppu"), QStringLiteral("31.12.2024"));
    QCOMPARE(text(w, "tEdTilikausiAlku"), QStringLiteral("1.1.2023"));
    QCOMPARE(text(w, "tSeurannimi"), QStringLiteral("Kuoro ry"));
    QCOMPARE(text(w, "tMargOik"), QStringLiteral("12"));
    QCOMPARE(text(w, "tDatabase"), books.file);
    QVERIFY(child<QCheckBox>(w, "chkVaakatulostus")->isChecked());
    QComboBox* bank = child<QComboBox>(w, "cmbLaskettavaTili");
    QCOMPARE(bank->count(), 4);
    QCOMPARE(bank->currentText(), QStringLiteral("1910 Pankkitili"));
    QVERIFY(!w.changed());
    QCOMPARE(dialogs.transcript(), QStringList());
}

void tst_frmAsetukset::savedValuesTakeEffectAtOnce()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    frmAsetukset w(books.db());
    type(w, "tTilikausiAlku", QStringLiteral("1.1.24"));
    child<QComboBox>(w, "cmbVoittoTaseella")->setCurrentIndex(2);
    child<QCheckBox>(w, "chkVaakatulostus")->setChecked(false);
    QVERIFY(w.changed());
    child<QPushButton>(w, "cTallenna")->click();
    QCOMPARE(dialogs.transcript(), QStringList());
    QVERIFY(!w.changed());
    // The date is shown as it was understood, and the controls' values are in force at once.
    QCOMPARE(text(w, "tTilikausiAlku"), QStringLiteral("1.1.2024"));
    QCOMPARE(child<QLabel>(w, "lblTallennettu")->text(), QStringLiteral("Asetukset tallennettu."));
    QCOMPARE(ProgramSettings::bookkeeping().TilikausiAlku, QDate(2024, 1, 1));
    QCOMPARE(ProgramSettings::bookkeeping().VoittoTaseella, 2);
    QCOMPARE(storedValue(books.file, QStringLiteral("VaakaTulostus")), QStringLiteral("0"));
}

// Which values are refused is SettingsForm's rule; the window shows the first refused field.
void tst_frmAsetukset::refusedFieldKeepsWindowOpen()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    frmAsetukset w(books.db());
    w.show();
    type(w, "tEdTilikausiAlku", QStringLiteral("30.2.2023"));
    type(w, "tMargAla", QStringLiteral("abc"));
    child<QTabWidget>(w, "tabAsetukset")->setCurrentIndex(3);
    QVERIFY(!w.tallenna());
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Information).size(), 2);
    QCOMPARE(
        child<QTabWidget>(w, "tabAsetukset")->currentWidget()->objectName(), QStringLiteral("tabTilikausi"));
    QCOMPARE(text(w, "tEdTilikausiAlku"), QStringLiteral("30.2.2023"));
    QCOMPARE(text(w, "tMargAla"), QStringLiteral("abc"));
    // What was refused still counts as a change: closing asks, and Yes keeps the window open.
    QVERIFY(w.changed());
    dialogs.clear();
    dialogs.answerYes();
    child<QPushButton>(w, "cSulje")->click();
    QVERIFY(w.isVisible());
    QCOMPARE(dialogs.transcript().first(), Ask);
}

void tst_frmAsetukset::closing_data()
{
    QTest::addColumn<bool>("change");
    QTest::addColumn<bool>("answerYes");
    QTest::addColumn<QString>("stored");
    QTest::newRow("nothing changed") << false << false << "(none)";
    QTest::newRow("changed, No") << true << false << "(none)";
    QTest::newRow("changed, Yes") << true << true << "smtp.kuoro.fi";
}

void tst_frmAsetukset::closing()
{
    QFETCH(bool, change);
    QFETCH(bool, answerYes);
    QFETCH(QString, stored);
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    frmAsetukset w(books.db());
    w.show();
    if (change)
        type(w, "tSMTP", QStringLiteral("smtp.kuoro.fi"));
    if (change)
        answerYes ? dialogs.answerYes() : dialogs.answerNo();
    // Esc closes as the button does.
    QTest::keyClick(&w, Qt::Key_Escape);
    QCOMPARE(dialogs.transcript(), change ? QStringList { Ask } : QStringList());
    QVERIFY(!w.isVisible());
    QCOMPARE(storedValue(books.file, QStringLiteral("SMTP")), stored);
}

void tst_frmAsetukset::databaseChooser_data()
{
    QTest::addColumn<QString>("typed");
    const auto row = [](const char* tag, const char* typed, const char* start) {
        QTest::newRow(tag) << QString::fromUtf8(typed) << QString::fromUtf8(start);
    };
    QTest::addColumn<QString>("start"); // "home" for the home folder
    row("a database file", "/srv/kirjanpito/seura.mdb", "/srv/kirjanpito/seura.mdb");
    row("a folder", "FOLDER", "FOLDER");
    row("nothing", "", "home");
}

void tst_frmAsetukset::databaseChooser()
{
    QFETCH(QString, typed);
    QFETCH(QString, start);
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    frmAsetukset w(books.db());
    typed.replace(QStringLiteral("FOLDER"), env.path(QStringLiteral("data")));
    start.replace(QStringLiteral("FOLDER"), env.path(QStringLiteral("data")));
    start.replace(QStringLiteral("home"), QDir::homePath());
    type(w, "tDatabase", typed);
    dialogs.answerOpenFile(env.path(QStringLiteral("data/toinen.mdb")));
    child<QPushButton>(w, "cTietokantavalita")->click();
    QCOMPARE(dialogs.transcript(), QStringList { QStringLiteral("open: Valitse tietokanta | ") + start });
    QCOMPARE(text(w, "tDatabase"), env.path(QStringLiteral("data/toinen.mdb")));
    // A cancelled dialog leaves the name as it is.
    dialogs.answerOpenFile(QString());
    child<QPushButton>(w, "cTietokantavalita")->click();
    QCOMPARE(text(w, "tDatabase"), env.path(QStringLiteral("data/toinen.mdb")));
}

void tst_frmAsetukset::mailServerQuery()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    ScriptedResolver resolver;
    resolver.reply
        = { Resolver::Status::Answer, ScriptedResolver::mxAnswer("kuoro.fi", { { 10, "posti.kuoro.fi" } }) };
    Books books(env);
    frmAsetukset w(books.db());
    type(w, "tEmail", QStringLiteral("anna@kuoro.fi"));
    // The name service is asked off the window's thread: the window answers the keyboard
    // meanwhile, and the button waits for the answer.
    QSemaphore gate;
    resolver.gate = &gate;
    dialogs.answerYes();
    child<QPushButton>(w, "cHaePalvelin")->click();
    QVERIFY(w.askingMailServer());
    QVERIFY(!child<QPushButton>(w, "cHaePalvelin")->isEnabled());
    type(w, "tSeurannimi", QStringLiteral("Kuoro ry"));
    QCOMPARE(text(w, "tSeurannimi"), QStringLiteral("Kuoro ry"));
    gate.release();
    QTRY_VERIFY(!w.askingMailServer());
    QCOMPARE(text(w, "tSMTP"), QStringLiteral("posti.kuoro.fi"));
    QCOMPARE(resolver.asked, QList<QByteArray> { "kuoro.fi" });
    QVERIFY(child<QPushButton>(w, "cHaePalvelin")->isEnabled());
}

void tst_frmAsetukset::withoutBooksOnlyTheDatabaseCanChange()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env, false);
    const QString other = env.path(QStringLiteral("toinen.mdb"));
    QVERIFY(TestEnv::createDatabase(other));
    frmAsetukset w { QSqlDatabase() };
    QVERIFY(child<QLabel>(w, "lblKirjanpito")->isVisibleTo(&w));
    QCOMPARE(
        child<QTabWidget>(w, "tabAsetukset")->currentWidget()->objectName(), QStringLiteral("tabTietokanta"));
    QVERIFY(!child<QLineEdit>(w, "tTilikausiAlku")->isEnabled());
    QVERIFY(child<QLineEdit>(w, "tDatabase")->isEnabled());
    QCOMPARE(child<QComboBox>(w, "cmbLaskettavaTili")->count(), 0);
    int leaveChecks = 0;
    w.setBeforeDatabaseChange([&] {
        ++leaveChecks;
        return true;
    });
    w.show();
    type(w, "tDatabase", other);
    child<QPushButton>(w, "cTallenna")->click();
    QCOMPARE(leaveChecks, 1);
    QVERIFY(w.databaseChanged());
    QVERIFY(!w.isVisible());
}

void tst_frmAsetukset::enterMovesToNextField()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    frmAsetukset w(books.db());
    w.show();
    QVERIFY(QTest::qWaitForWindowActive(&w));
    QLineEdit* start = child<QLineEdit>(w, "tTilikausiAlku");
    start->setFocus();
    QTest::keyClick(start, Qt::Key_Return);
    QCOMPARE(QApplication::focusWidget(), child<QLineEdit>(w, "tTilikausiLoppu"));
    // Enter in a field never saves.
    QCOMPARE(dialogs.transcript(), QStringList());
    QVERIFY(w.isVisible());
}

QTEST_MAIN(tst_frmAsetukset)
#include "tst_frmAsetukset.moc"
