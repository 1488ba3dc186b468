#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "core/DatabaseFile.h"
#include "core/Paths.h"
#include "core/ProgramSettings.h"
#include "settings/SettingsForm.h"

#include <QSqlQuery>
#include <QTest>

namespace {

const QString Connection = QStringLiteral("tst_settings_books");
const QString NotFound
    = QStringLiteral("information: Tietokantaa ei löydy, korjaa asetuksista tietokannan nimi");
const QString Closing = QStringLiteral("information: Vorkam suljetaan, koska tietokanta on vaihdettu.");

const QStringList StoreOrder = { "TilikausiAlku", "EdTilikausiAlku", "TilikausiLoppu", "EdTilikausiLoppu",
    "LaskettavaTili", "VoittoTaseella", "Selvittelytili", "Email", "SMTP", "VaakaTulostus", "VanhatMallit",
    "VanhatTositteet", "AutomaattisestiUusiTosite", "Fontti", "FonttiKoko", "MargYla", "MargAla", "MargVas",
    "MargOik", "Seurannimi" };

// Books in use as after a start, in a world of their own: open on their own connection, their
// settings loaded.
struct Books {
    TestEnv env;
    ScriptedDialogs dialogs;
    QString file = env.path(QStringLiteral("seura.mdb"));
    explicit Books(bool readOnly = false)
    {
        TestEnv::createDatabase(file);
        env.writeIni("[VORKAM]\nDatabase=" + file.toUtf8() + "\n");
        ProgramSettings::loadInstallation();
        DatabaseFile::open(file, Connection, readOnly);
        ProgramSettings::loadBookkeeping(db(), file, QDate(2024, 6, 1));
    }
    ~Books() { DatabaseFile::close(Connection); }
    QSqlDatabase db() const { return QSqlDatabase::database(Connection, false); }
};

// The keys of the Settings table in the order they were first written, with their values unless
// only the keys are asked for.
QStringList stored(const QString& file, bool values = true)
{
    QStringList rows;
    withDatabase(file, [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        q.exec(values ? QStringLiteral("SELECT setKey || '=' || setString FROM Settings ORDER BY setID")
                      : QStringLiteral("SELECT setKey FROM Settings ORDER BY setID"));
        while (q.next())
            rows.append(q.value(0).toString());
    });
    return rows;
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
    void newDatabase_data();
    void newDatabase();
};

void tst_SettingsForm::storedInOrderAndInForceAtOnce()
{
    Books books;
    SettingsForm form = SettingsForm::current();
    form.TilikausiAlku = QStringLiteral("1.7.24");
    form.TilikausiLoppu = QStringLiteral("30.6.2025");
    form.MargYla = QStringLiteral(" 10 ");
    form.Seurannimi = QStringLiteral("   ");

    form.save(books.db());
    QCOMPARE(books.dialogs.transcript(), QStringList());
    QCOMPARE(stored(books.file, false), StoreOrder);
    const QStringList rows = stored(books.file);
    QCOMPARE(rows.mid(0, 4),
        QStringList({ "TilikausiAlku=1.7.2024", "EdTilikausiAlku=1.1.2023", "TilikausiLoppu=30.6.2025",
            "EdTilikausiLoppu=1.1.2023" }));
    QVERIFY(rows.contains(QStringLiteral("MargYla=10")));
    QCOMPARE(rows.last(), QStringLiteral("Seurannimi="));

    // In force at once, without a new start.
    const BookkeepingSettings& now = ProgramSettings::bookkeeping();
    QCOMPARE(now.TilikausiAlku, QDate(2024, 7, 1));
    QCOMPARE(ProgramSettings::reportMargins().top, 480);
    // Without a name the association is shown by its file's name, as at start.
    QCOMPARE(now.Seurannimi, QStringLiteral("seura"));
}

void tst_SettingsForm::refusedValues_data()
{
    QTest::addColumn<QStringList>("typed"); // "Key=text"
    QTest::addColumn<QString>("message");
    QTest::addColumn<QStringList>("refused");
    const auto row
        = [](const char* tag, const QString& typed, const QString& message, const QString& refused) {
              QTest::newRow(tag) << typed.split(u' ') << QStringLiteral("information: ") + message
                                 << refused.split(u' ');
          };
    row("not a date", "EdTilikausiAlku=1.13.2023", "Syötä edellisen tilikauden aluksi päivämäärä.",
        "tEdTilikausiAlku");
    // The fiscal years together, at their boundaries (stored now: 1.1.-31.12.2024, the year
    // before on 1.1.2023): refused whole, nothing of them stored.
    const auto years = [&](const char* tag, const QString& typed, const QString& problem) {
        row(tag, typed, problem + QStringLiteral("\nTilikausien päivämääriä ei tallennettu."),
            QStringLiteral("tTilikausiAlku tEdTilikausiAlku tTilikausiLoppu tEdTilikausiLoppu"));
    };
    years("a year of one day", "TilikausiLoppu=1.1.2024", "Tilikauden lopun tulee olla sen alun jälkeen.");
    years("a year of 18 months and a day", "TilikausiLoppu=1.7.2025",
        "Tilikausi voi olla enintään 18 kuukautta.");
    years("previous year ends as this starts", "TilikausiAlku=1.1.2023 TilikausiLoppu=31.12.2023",
        "Edellisen tilikauden tulee päättyä ennen tilikauden alkua.");
    years("previous year ends before it starts", "EdTilikausiLoppu=31.12.2022",
        "Edellisen tilikauden lopun tulee olla sen alun jälkeen.");
    row("margins not digits or too large, told once", "MargYla=-5 MargOik=99999",
        "Syötä marginaaliksi ainoastaan numeroita.", "tMargYla tMargOik");
    row("font size", "FonttiKoko=iso", "Syötä kirjasimen kooksi numero.", "cmbFonttiKoko");
}

// A refused value is told and neither stored nor in force; the other keys are stored all the
// same, in their order.
void tst_SettingsForm::refusedValues()
{
    QFETCH(QStringList, typed);
    QFETCH(QString, message);
    QFETCH(QStringList, refused);
    Books books;
    SettingsForm form = SettingsForm::current();
    for (const QString& t : typed)
        *field(form, t.section(u'=', 0, 0)) = t.section(u'=', 1);

    const SettingsForm::Saved saved = form.save(books.db());
    QCOMPARE(books.dialogs.transcript(), QStringList { message });
    QCOMPARE(saved.refused, refused);
    QStringList kept = StoreOrder;
    for (const QString& control : refused)
        kept.removeOne(control.mid(control.startsWith(QLatin1String("cmb")) ? 3 : 1));
    QCOMPARE(stored(books.file, false), kept);
    QCOMPARE(ProgramSettings::bookkeeping().TilikausiAlku, QDate(2024, 1, 1));
}

// Read-only books keep their own settings; the installation's go to the ini file all the same.
void tst_SettingsForm::installationSettingsBesideReadOnlyBooks()
{
    Books books(true);
    const QByteArray before = TestEnv::readFile(books.file);
    SettingsForm form = SettingsForm::current();
    form.DatabaseBackup = books.env.path(QStringLiteral("tikku"));
    form.save(books.db());
    QVERIFY(books.env.readIni().contains(QStringLiteral("DatabaseBackup=") + form.DatabaseBackup + u'\n'));
    QCOMPARE(TestEnv::readFile(books.file), before);
    // An emptied backup folder is Vorkam's own again.
    form.DatabaseBackup.clear();
    form.save(books.db());
    QCOMPARE(ProgramSettings::installation().DatabaseBackup, Paths::defaultBackupDir());
    QCOMPARE(books.dialogs.transcript(), QStringList());
}

void tst_SettingsForm::newDatabase_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("leave"); // what the working windows answer
    QTest::addColumn<QString>("told");
    QTest::newRow("cannot be used") << "eiole/toinen.mdb" << true << NotFound;
    QTest::newRow("a working window stays") << "toinen.mdb" << false << QString();
    QTest::newRow("working windows left") << "toinen.mdb" << true << Closing;
}

// Other books are checked as at start and taken into use at the next start. Until then nothing
// at all is stored; after, the settings shown in the window are kept in the books in use, and
// nothing is written into the new books.
void tst_SettingsForm::newDatabase()
{
    QFETCH(QString, name);
    QFETCH(bool, leave);
    QFETCH(QString, told);
    Books books;
    const QString other = books.env.path(QStringLiteral("toinen.mdb"));
    QVERIFY(TestEnv::createDatabase(other));
    SettingsForm form = SettingsForm::current();
    form.Database = QStringLiteral("  ") + books.env.path(name) + u' ';
    int leaveChecks = 0;
    const SettingsForm::Saved saved = form.save(books.db(), [&] {
        ++leaveChecks;
        return leave;
    });
    QCOMPARE(books.dialogs.transcript(), told.isEmpty() ? QStringList() : QStringList { told });
    QCOMPARE(saved.refused, told == NotFound ? QStringList { QStringLiteral("tDatabase") } : QStringList());
    QCOMPARE(leaveChecks, told == NotFound ? 0 : 1);
    QCOMPARE(saved.stopped, told != Closing);
    QCOMPARE(saved.databaseChanged, told == Closing);
    QCOMPARE(stored(other), QStringList());
    QCOMPARE(books.env.readIni().contains(QStringLiteral("Database=") + other + u'\n'), told == Closing);
    QCOMPARE(stored(books.file).isEmpty(), told != Closing);
}

QTEST_GUILESS_MAIN(tst_SettingsForm)
#include "tst_SettingsForm.moc"
