#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "core/DatabaseFile.h"
#include "core/Paths.h"
#include "core/ProgramSettings.h"
#include "core/SettingsStore.h"
#include "settings/SettingsForm.h"

#include <QFile>
#include <QSqlQuery>
#include <QTest>

namespace {

const QString Connection = QStringLiteral("tst_settings_books");
const QString NotFound
    = QStringLiteral("information: Tietokantaa ei löydy, korjaa asetuksista tietokannan nimi");
const QString Closing = QStringLiteral("information: Vorkam suljetaan, koska tietokanta on vaihdettu.");

const QStringList StoreOrder = { "TilikausiAlku", "EdTilikausiAlku", "TilikausiLoppu", "EdTilikausiLoppu",
    "LaskettavaTili", "VoittoTaseella", "Email", "SMTP", "VaakaTulostus", "VanhatMallit", "VanhatTositteet",
    "AutomaattisestiUusiTosite", "Fontti", "FonttiKoko", "MargYla", "MargAla", "MargVas", "MargOik",
    "Seurannimi" };

// Books in use as after a start: open on their own connection, their settings loaded.
struct Books {
    explicit Books(TestEnv& env, const QString& name = QStringLiteral("seura.mdb"), bool readOnly = false)
        : file(env.path(name))
    {
        TestEnv::createDatabase(file);
        env.writeIni("[VORKAM]\nDatabase=" + file.toUtf8() + "\n");
        ProgramSettings::loadInstallation();
        DatabaseFile::open(file, Connection, readOnly);
        ProgramSettings::loadBookkeeping(db(), file, QDate(2024, 6, 1));
    }
    ~Books() { DatabaseFile::close(Connection); }
    QSqlDatabase db() const { return QSqlDatabase::database(Connection, false); }
    QString file;
};

// The keys of the Settings table in the order they were first written, with their values.
QStringList stored(const QString& file)
{
    QStringList rows;
    withDatabase(file, [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        q.exec(QStringLiteral("SELECT setKey, setString FROM Settings ORDER BY setID"));
        while (q.next())
            rows.append(q.value(0).toString() + u'=' + q.value(1).toString());
    });
    return rows;
}

QStringList keys(const QStringList& rows)
{
    QStringList result;
    for (const QString& row : rows)
        result.append(row.section(u'=', 0, 0));
    return result;
}

QString* field(SettingsForm& form, const QString& name)
{
    const std::pair<const char*, QString SettingsForm::*> fields[] = {
        { "TilikausiAlku", &SettingsForm::TilikausiAlku },
        { "EdTilikausiAlku", &SettingsForm::EdTilikausiAlku },
        { "TilikausiLoppu", &SettingsForm::TilikausiLoppu },
        { "EdTilikausiLoppu", &SettingsForm::EdTilikausiLoppu },
        { "FonttiKoko", &SettingsForm::FonttiKoko },
        { "MargYla", &SettingsForm::MargYla },
        { "MargAla", &SettingsForm::MargAla },
        { "MargVas", &SettingsForm::MargVas },
        { "MargOik", &SettingsForm::MargOik },
    };
    for (const auto& [key, member] : fields)
        if (name == QLatin1String(key))
            return &(form.*member);
    return nullptr;
}

} // namespace

class tst_SettingsForm : public QObject {
    Q_OBJECT

private slots:
    void storedInOrderAndInForceAtOnce();
    void refusedValues_data();
    void refusedValues();
    void installationSettingsBesideReadOnlyBooks();
    void newDatabaseThatCannotBeUsed();
    void newDatabaseEndsTheProgram_data();
    void newDatabaseEndsTheProgram();
};

void tst_SettingsForm::storedInOrderAndInForceAtOnce()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    SettingsForm form = SettingsForm::current();
    const QList<SettingsForm::Account> accounts = SettingsForm::accounts(books.db());
    form.TilikausiAlku = QStringLiteral("1.7.24");
    form.TilikausiLoppu = QStringLiteral("30.6.2025");
    form.EdTilikausiAlku = QStringLiteral("1.7.2023");
    form.EdTilikausiLoppu = QStringLiteral("30.6.2024");
    form.LaskettavaTili = accounts.first().id;
    form.VaakaTulostus = true;
    form.FonttiKoko = QStringLiteral("12");
    form.MargYla = QStringLiteral("10");
    form.MargVas = QStringLiteral(" 20 ");
    form.Seurannimi = QStringLiteral("Kuoro O'Laulu ry");

    const SettingsForm::Saved saved = form.save(books.db());
    QCOMPARE(dialogs.transcript(), QStringList());
    QCOMPARE(saved.refused, QStringList());
    QVERIFY(!saved.stopped && !saved.databaseChanged);
    const QStringList rows = stored(books.file);
    QCOMPARE(keys(rows), StoreOrder);
    QCOMPARE(rows.mid(0, 4),
        QStringList({ "TilikausiAlku=1.7.2024", "EdTilikausiAlku=1.7.2023", "TilikausiLoppu=30.6.2025",
            "EdTilikausiLoppu=30.6.2024" }));
    QVERIFY(rows.contains(QStringLiteral("VaakaTulostus=1")));
    QVERIFY(rows.contains(QStringLiteral("MargVas=20")));
    QVERIFY(rows.contains(QStringLiteral("LaskettavaTili=%1").arg(accounts.first().id)));
    QCOMPARE(rows.last(), QStringLiteral("Seurannimi=Kuoro O'Laulu ry"));

    // In force at once, without a new start.
    const BookkeepingSettings& now = ProgramSettings::bookkeeping();
    QCOMPARE(now.TilikausiAlku, QDate(2024, 7, 1));
    QCOMPARE(now.LaskettavaTili, accounts.first().id);
    QCOMPARE(now.FonttiKoko, qint16(12));
    QCOMPARE(ProgramSettings::reportMargins().top, 480);
    QCOMPARE(ProgramSettings::reportMargins().left, 960);

    // Saved again, nothing is added: the same rows are rewritten.
    form = SettingsForm::current();
    form.LaskettavaTili = 0;
    form.Seurannimi = QStringLiteral("   ");
    QVERIFY(form.save(books.db()).refused.isEmpty());
    const QStringList again = stored(books.file);
    QCOMPARE(keys(again), StoreOrder);
    QVERIFY(again.contains(QStringLiteral("LaskettavaTili=0")));
    QCOMPARE(again.last(), QStringLiteral("Seurannimi="));
    // Without a name the association is shown by its file's name, as at start.
    QCOMPARE(ProgramSettings::bookkeeping().Seurannimi, QStringLiteral("seura"));
}

void tst_SettingsForm::refusedValues_data()
{
    QTest::addColumn<QStringList>("typed"); // "Key=text"
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<QStringList>("refused");
    const auto info
        = [](const char* text) { return QStringLiteral("information: ") + QString::fromUtf8(text); };
    QTest::newRow("every date, in the order of storing")
        << QStringList { "TilikausiLoppu=", "EdTilikausiLoppu=1.13.2023", "EdTilikausiAlku=eilen",
               "TilikausiAlku=1.1." }
        << QStringList { info("Syötä tilikauden aluksi päivämäärä."),
               info("Syötä edellisen tilikauden aluksi päivämäärä."),
               info("Syötä tilikauden lopuksi päivämäärä."),
               info("Syötä edellisen tilikauden lopuksi päivämäärä.") }
        << QStringList { "tTilikausiAlku", "tEdTilikausiAlku", "tTilikausiLoppu", "tEdTilikausiLoppu" };
    // The fiscal years together: refused whole, nothing of them stored.
    const QStringList all { "tTilikausiAlku", "tEdTilikausiAlku", "tTilikausiLoppu", "tEdTilikausiLoppu" };
    const auto years = [&](const char* text) {
        return info(text) + QStringLiteral("\nTilikausien päivämääriä ei tallennettu.");
    };
    QTest::newRow("a year of one day")
        << QStringList { "TilikausiAlku=1.1.2026", "TilikausiLoppu=1.1.2026" }
        << QStringList { years("Tilikauden lopun tulee olla sen alun jälkeen.") } << all;
    QTest::newRow("a year of 19 months")
        << QStringList { "TilikausiAlku=1.1.2026", "TilikausiLoppu=31.7.2027" }
        << QStringList { years("Tilikausi voi olla enintään 18 kuukautta.") } << all;
    QTest::newRow("previous year reaching into this")
        << QStringList { "TilikausiAlku=1.1.2026", "TilikausiLoppu=31.12.2026", "EdTilikausiAlku=1.1.2025",
               "EdTilikausiLoppu=1.1.2026" }
        << QStringList { years("Edellisen tilikauden tulee päättyä ennen tilikauden alkua.") } << all;
    QTest::newRow("previous year ends before it starts")
        << QStringList { "EdTilikausiAlku=1.1.2023", "EdTilikausiLoppu=31.12.2022" }
        << QStringList { years("Edellisen tilikauden lopun tulee olla sen alun jälkeen.") } << all;
    QTest::newRow("three margins wrong, told once")
        << QStringList { "MargYla=-5", "MargVas=12,5", "MargOik=" }
        << QStringList { info("Syötä marginaaliksi ainoastaan numeroita.") }
        << QStringList { "tMargYla", "tMargVas", "tMargOik" };
    QTest::newRow("margin too large")
        << QStringList { "MargOik=99999" }
        << QStringList { info("Syötä marginaaliksi ainoastaan numeroita.") } << QStringList { "tMargOik" };
    QTest::newRow("font size") << QStringList { "FonttiKoko=iso" }
                               << QStringList { info("Syötä kirjasimen kooksi numero.") }
                               << QStringList { "cmbFonttiKoko" };
}

// A refused value is told, keeps what was stored for its key, and the other keys are stored
// all the same.
void tst_SettingsForm::refusedValues()
{
    QFETCH(QStringList, typed);
    QFETCH(QStringList, messages);
    QFETCH(QStringList, refused);
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    withDatabase(books.file, [](QSqlDatabase& db) {
        DbSettingsStore store(db);
        for (const char* key : { "TilikausiAlku", "EdTilikausiAlku", "TilikausiLoppu", "EdTilikausiLoppu" })
            store.write(QString::fromLatin1(key), QStringLiteral("vanha"));
        for (const char* key : { "MargYla", "MargAla", "MargVas", "MargOik", "FonttiKoko" })
            store.write(QString::fromLatin1(key), QStringLiteral("7"));
    });
    ProgramSettings::loadBookkeeping(books.db(), books.file, QDate(2024, 6, 1));
    const BookkeepingSettings before = ProgramSettings::bookkeeping();
    SettingsForm form = SettingsForm::current();
    form.Email = QStringLiteral("uusi@kuoro.fi");
    for (const QString& t : typed)
        *field(form, t.section(u'=', 0, 0)) = t.section(u'=', 1);

    const SettingsForm::Saved saved = form.save(books.db());
    QCOMPARE(dialogs.transcript(), messages);
    QCOMPARE(saved.refused, refused);
    QVERIFY(!saved.stopped);
    const QStringList rows = stored(books.file);
    for (const QString& t : typed) {
        const QString key = t.section(u'=', 0, 0);
        const QString old
            = key.contains(QLatin1String("Tilikausi")) ? QStringLiteral("vanha") : QStringLiteral("7");
        QVERIFY2(rows.contains(key + u'=' + old), qPrintable(rows.join(u' ')));
    }
    QVERIFY(rows.contains(QStringLiteral("Email=uusi@kuoro.fi")));
    // The program goes on with what was stored before for the refused keys.
    const BookkeepingSettings& now = ProgramSettings::bookkeeping();
    QCOMPARE(now.Email, QStringLiteral("uusi@kuoro.fi"));
    QCOMPARE(now.MargYla, before.MargYla);
    QCOMPARE(now.TilikausiAlku, before.TilikausiAlku);
}

// Read-only books keep their own settings; the installation's go to the ini file all the same.
void tst_SettingsForm::installationSettingsBesideReadOnlyBooks()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env, QStringLiteral("seura.mdb"), true);
    const QByteArray before = TestEnv::readFile(books.file);
    SettingsForm form = SettingsForm::current();
    form.DatabaseBackup = env.path(QStringLiteral("tikku"));
    form.MultiDb = true;
    form.Seurannimi = QStringLiteral("Muutettu");
    const SettingsForm::Saved saved = form.save(books.db());
    QVERIFY(!saved.stopped && saved.refused.isEmpty());
    QVERIFY(env.readIni().contains(
        QStringLiteral("DatabaseBackup=") + env.path(QStringLiteral("tikku")) + u'\n'));
    QVERIFY(env.readIni().contains(QStringLiteral("MultiDb=1")));
    QCOMPARE(ProgramSettings::installation().DatabaseBackup, env.path(QStringLiteral("tikku")));
    QVERIFY(ProgramSettings::installation().MultiDb);
    QCOMPARE(TestEnv::readFile(books.file), before);
    QVERIFY(ProgramSettings::bookkeeping().Seurannimi != QStringLiteral("Muutettu"));
    // An emptied backup folder is Vorkam's own again.
    form.DatabaseBackup.clear();
    form.save(books.db());
    QCOMPARE(ProgramSettings::installation().DatabaseBackup, Paths::defaultBackupDir());
    QCOMPARE(dialogs.transcript(), QStringList());
}

// Books that cannot be used are told about as at start (the kinds of file are the start's
// rule) and nothing at all is stored: the setting keeps naming the books in use.
void tst_SettingsForm::newDatabaseThatCannotBeUsed()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    const QString ini = env.readIni();
    SettingsForm form = SettingsForm::current();
    form.Database = env.path(QStringLiteral("eiole/toinen.mdb"));
    form.Seurannimi = QStringLiteral("Uusi nimi");
    bool leaveChecked = false;
    const SettingsForm::Saved saved = form.save(books.db(), [&] { return leaveChecked = true; });
    QCOMPARE(dialogs.transcript(), QStringList { NotFound });
    QCOMPARE(saved.refused, QStringList { QStringLiteral("tDatabase") });
    QVERIFY(saved.stopped && !saved.databaseChanged && !leaveChecked);
    QCOMPARE(env.readIni(), ini);
    QCOMPARE(ProgramSettings::installation().Database, books.file);
    QCOMPARE(stored(books.file), QStringList());
    QVERIFY(ProgramSettings::bookkeeping().Seurannimi != QStringLiteral("Uusi nimi"));
}

void tst_SettingsForm::newDatabaseEndsTheProgram_data()
{
    QTest::addColumn<bool>("leave");
    QTest::newRow("working windows left") << true;
    QTest::newRow("a working window stays") << false;
}

// Other books are taken into use at the next start; the settings shown in the window are those
// of the books in use and are kept in them, and the new books keep their own.
void tst_SettingsForm::newDatabaseEndsTheProgram()
{
    QFETCH(bool, leave);
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    const QString other = env.path(QStringLiteral("toinen.mdb"));
    QVERIFY(TestEnv::createDatabase(other));
    withDatabase(other, [](QSqlDatabase& db) {
        DbSettingsStore(db).write(QStringLiteral("Seurannimi"), QStringLiteral("Toinen ry"));
    });
    const QString ini = env.readIni();
    SettingsForm form = SettingsForm::current();
    form.Database = QStringLiteral("  ") + other + u' ';
    form.Seurannimi = QStringLiteral("Ensimmäinen ry");
    int leaveChecks = 0;
    const SettingsForm::Saved saved = form.save(books.db(), [&] {
        ++leaveChecks;
        return leave;
    });
    QCOMPARE(leaveChecks, 1);
    if (!leave) {
        QCOMPARE(dialogs.transcript(), QStringList());
        QVERIFY(saved.stopped && !saved.databaseChanged);
        QCOMPARE(env.readIni(), ini);
        QCOMPARE(stored(books.file), QStringList());
        return;
    }
    QCOMPARE(dialogs.transcript(), QStringList { Closing });
    QVERIFY(saved.databaseChanged);
    QVERIFY(env.readIni().contains(QStringLiteral("Database=") + other + u'\n'));
    QVERIFY(stored(books.file).contains(QStringLiteral("Seurannimi=Ensimmäinen ry")));
    QCOMPARE(stored(other), QStringList { QStringLiteral("Seurannimi=Toinen ry") });
}

QTEST_GUILESS_MAIN(tst_SettingsForm)
#include "tst_SettingsForm.moc"
