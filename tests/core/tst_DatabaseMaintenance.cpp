#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "core/DatabaseFile.h"
#include "core/DatabaseMaintenance.h"
#include "core/Schema.h"

#include <QDir>
#include <QSqlQuery>
#include <QTest>

namespace {

const QString Connection = QStringLiteral("tst_maintenance");
const QString Initial = QStringLiteral("tl 3, to 3, vi 3, toE 2, viE 2, ma 2, mr 3");

// Something in every table a command empties; voucher 2's description has an apostrophe.
bool createFixture(const QString& file)
{
    bool ok = false;
    withDatabase(file, [&](QSqlDatabase& db) {
        Schema::createCoreTables(db);
        ok = Schema::UpdateDatabase(db).ok;
    });
    return ok
        && TestEnv::exec(file,
            { "INSERT INTO tl (tlID, tlNumero, tlNimi, tlKuvaus) VALUES "
              "(1, 1910, 'Pankki', ' '), (2, 3000, 'Tuotot', ' '), (3, 4000, 'Kulut', ' ')",
                "INSERT INTO \"to\" (toID, toNumero, toPvm, toSelite) VALUES (1, 1, '2024-01-10', 'Maksu'), "
                "(2, 2, '2024-01-11', 'Rock ''n'' roll'), (3, 3, '2024-01-12', 'Kahvit')",
                "INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viSelite) VALUES "
                "(1, 1, 'D', 100, 'a'), (2, 3, 'D', 200, 'b'), (3, 1, 'K', 300, 'c')",
                "INSERT INTO toE (toEID, toENumero, toEPvm, toESelite) VALUES "
                "(1, 1, '2023-02-01', 'Maksu'), (2, 2, '2023-02-02', 'Toinen')",
                "INSERT INTO viE (viEtoID, viEtlID, viETyyppi, viEArvo, viESelite) VALUES "
                "(1, 1, 'D', 100, 'x'), (2, 2, 'K', 50, 'y')",
                "INSERT INTO ma (maID, maNimi, maTyyppi, maSuojattu) VALUES (1, 'Tulos', 1, 0), (2, 'Tase', "
                "2, 0)",
                "INSERT INTO mr (mrmaID, mrTeksti, mrTilit, mrSaldoPuoli) VALUES "
                "(1, 'Tuotot', '2,', 'K'), (2, 'Vastaavaa', '1,', 'D'), (2, 'Vastattavaa', '', 'K')" });
}

// The rows in each table a command empties.
QString counts(const QString& file)
{
    QStringList parts;
    withDatabase(file, [&](QSqlDatabase& db) {
        for (const QString table : { "tl", "to", "vi", "toE", "viE", "ma", "mr" }) {
            QSqlQuery q(QStringLiteral("SELECT COUNT(*) FROM \"%1\"").arg(table), db);
            parts.append(table + u' ' + (q.next() ? q.value(0).toString() : QStringLiteral("?")));
        }
    });
    return parts.join(QStringLiteral(", "));
}

// The books open on their own connection, as the main window has them from DBC.
struct Books {
    explicit Books(TestEnv& env, bool readOnly = false)
        : file(env.path(QStringLiteral("seura.mdb")))
    {
        createFixture(file);
        DatabaseFile::open(file, Connection, readOnly);
    }
    ~Books() { DatabaseFile::close(Connection); }
    QSqlDatabase db() const { return QSqlDatabase::database(Connection, false); }
    QString file;
};

} // namespace

class tst_DatabaseMaintenance : public QObject {
    Q_OBJECT

private slots:
    void run_data();
    void run();
    void descriptionsWithApostropheStay();
};

void tst_DatabaseMaintenance::run_data()
{
    QTest::addColumn<QVariant>("answer"); // invalid: the input box cancelled
    QTest::addColumn<QString>("obstacle");
    QTest::addColumn<QString>("shown"); // the kind of what follows the prompt; empty: nothing
    QTest::addColumn<QString>("after");
    // A row is named by its obstacle, or else by its answer; no answer cancels the input box.
    const auto row
        = [](const char* answer, const char* obstacle, const char* shown, const QString& after = Initial) {
              QTest::newRow(*obstacle ? obstacle
                      : answer        ? answer
                                      : "cancelled")
                  << (answer ? QVariant(QString::fromUtf8(answer)) : QVariant())
                  << QString::fromUtf8(obstacle) << QString::fromUtf8(shown) << after;
          };
    const char* const told = "information";
    row("POISTA KAIKKI", "", told, "tl 0, to 0, vi 0, toE 0, viE 0, ma 0, mr 0");
    row("POISTA NYKYISET TOSITTEET", "", told, "tl 3, to 0, vi 0, toE 2, viE 2, ma 2, mr 3");
    row("POISTA EDELLISET TOSITTEET", "", told, "tl 3, to 3, vi 3, toE 0, viE 0, ma 2, mr 3");
    row("POISTA TULOSLASKELMAMALLIT", "", told, "tl 3, to 3, vi 3, toE 2, viE 2, ma 1, mr 2");
    row("POISTA TASEMALLIT", "", told, "tl 3, to 3, vi 3, toE 2, viE 2, ma 1, mr 1");
    // The entries stay without their accounts, as the voucher check will report.
    row("POISTA TILIT", "", told, "tl 0, to 3, vi 3, toE 2, viE 2, ma 2, mr 3");
    row("POISTA VIENNIT 1910", "", told, "tl 3, to 3, vi 1, toE 2, viE 1, ma 2, mr 3");

    // No command, or a command that cannot run: nothing changes.
    row(nullptr, "", "");
    // The prefix with its blank but no account is one character too short for a command.
    row("POISTA VIENNIT ", "", told);
    row("POISTA KAIKKI", "read-only", told);
    row("POISTA TILIT", "the user stays", "");
    row("POISTA KAIKKI", "no room", "error");
    // The template rows cannot be deleted: the vouchers deleted before them come back.
    row("POISTA KAIKKI", "locked", "error");
}

// A command that changes the books first keeps a safety copy of them.
void tst_DatabaseMaintenance::run()
{
    QFETCH(QVariant, answer);
    QFETCH(QString, obstacle);
    QFETCH(QString, shown);
    QFETCH(QString, after);
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env, obstacle == u"read-only");
    if (obstacle == u"no room") // a file stands where the safety copies' folder should be
        QVERIFY(TestEnv::writeFile(env.path(QStringLiteral("data/varmistukset")), "x"));
    if (obstacle == u"locked")
        QVERIFY(TestEnv::exec(books.file,
            { "CREATE TRIGGER esta BEFORE DELETE ON mr BEGIN SELECT RAISE(ABORT, 'lukittu'); END" }));
    answer.isValid() ? dialogs.answerInput(answer.toString()) : dialogs.cancelInput();
    DatabaseMaintenance::run(books.db(), [&] { return obstacle != u"the user stays"; });
    const QStringList told = dialogs.transcript().mid(1);
    QCOMPARE(told.size(), shown.isEmpty() ? 0 : 1);
    if (!shown.isEmpty())
        QVERIFY2(told.first().startsWith(shown + u':'), qPrintable(told.first()));
    QCOMPARE(counts(books.file), after);

    const QDir copies(env.path(QStringLiteral("data/varmistukset")));
    const QStringList names = copies.entryList(QDir::Files);
    QCOMPARE(names.size(), after != Initial || obstacle == u"locked" ? 1 : 0);
    if (after != Initial)
        QCOMPARE(counts(copies.filePath(names.first())), Initial);
}

void tst_DatabaseMaintenance::descriptionsWithApostropheStay()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    dialogs.answerInput(QStringLiteral("tarkista selitteet"));
    DatabaseMaintenance::run(books.db());
    QSqlQuery q(books.db());
    QVERIFY(
        q.exec(QStringLiteral("SELECT group_concat(vitoID || ':' || viSelite, ', ') FROM vi")) && q.next());
    QCOMPARE(q.value(0).toString(), QStringLiteral("1:Maksu, 2:b, 3:Kahvit"));
}

QTEST_GUILESS_MAIN(tst_DatabaseMaintenance)
#include "tst_DatabaseMaintenance.moc"
