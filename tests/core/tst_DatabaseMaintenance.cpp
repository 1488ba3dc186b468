#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "core/DatabaseFile.h"
#include "core/DatabaseMaintenance.h"
#include "core/Schema.h"

#include <QDir>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>

namespace {

const QString Connection = QStringLiteral("tst_maintenance");
const QString Initial = QStringLiteral("tl 3, to 3, vi 6, toE 2, viE 3, ma 3, mr 5");

// Something in every table a command empties; voucher 2's description has an apostrophe.
bool createFixture(const QString& file)
{
    bool ok = false;
    withDatabase(file, [&](QSqlDatabase& db) {
        Schema::createCoreTables(db);
        ok = Schema::UpdateDatabase(db).ok;
        const char* const rows[] = {
            "INSERT INTO tl (tlID, tlNumero, tlNimi, tlKuvaus) VALUES (1, 1910, 'Pankkitili', ' '), "
            "(2, 3000, 'Jäsenmaksut', ' '), (3, 4000, 'Kahvikulut', ' ')",
            "INSERT INTO \"to\" (toID, toNumero, toPvm, toSelite) VALUES (1, 1, '2024-01-10', 'Jäsenmaksu'), "
            "(2, 2, '2024-01-11', 'Rock ''n'' roll -ilta'), (3, 3, '2024-01-12', 'Kahvit')",
            "INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viSelite) VALUES "
            "(1, 1, 'D', 1000000, 'vanha a'), (1, 2, 'K', 1000000, 'vanha b'), "
            "(2, 1, 'D', 500000, 'vanha c'), (2, 3, 'K', 500000, 'vanha d'), "
            "(3, 3, 'D', 200000, 'vanha e'), (3, 1, 'K', 200000, 'vanha f')",
            "INSERT INTO toE (toEID, toENumero, toEPvm, toESelite) VALUES (1, 1, '2023-02-01', 'Maksu'), "
            "(2, 2, '2023-02-02', 'Toinen')",
            "INSERT INTO viE (viEtoID, viEtlID, viETyyppi, viEArvo, viESelite) VALUES "
            "(1, 1, 'D', 10000, 'x'), (1, 2, 'K', 10000, 'x'), (2, 1, 'D', 5000, 'y')",
            "INSERT INTO ma (maID, maNimi, maTyyppi, maSuojattu) VALUES (1, 'Tuloslaskelma', 1, 0), "
            "(2, 'Tase', 2, 0), (3, 'Toinen tuloslaskelma', 1, 0)",
            "INSERT INTO mr (mrmaID, mrTeksti, mrTilit, mrSaldoPuoli) VALUES (1, 'Tuotot', '2,', 'K'), "
            "(1, 'Kulut', '3,', 'D'), (2, 'Vastaavaa', '1,', 'D'), (2, 'Vastattavaa', '', 'K'), "
            "(3, 'Kaikki', '2,3,', 'K')",
        };
        for (const char* sql : rows) {
            QSqlQuery q(db);
            if (ok && !q.exec(QString::fromUtf8(sql))) {
                qWarning() << q.lastError().text();
                ok = false;
            }
        }
    });
    return ok;
}

QString countsOf(const QSqlDatabase& db)
{
    QStringList parts;
    for (const char* table : { "tl", "to", "vi", "toE", "viE", "ma", "mr" }) {
        QSqlQuery q(db);
        q.exec(QStringLiteral("SELECT COUNT(*) FROM \"%1\"").arg(QLatin1String(table)));
        parts.append(
            QStringLiteral("%1 %2").arg(QLatin1String(table)).arg(q.next() ? q.value(0).toInt() : -1));
    }
    return parts.join(QStringLiteral(", "));
}

QString counts(const QString& file)
{
    QString result;
    withDatabase(file, [&](QSqlDatabase& db) { result = countsOf(db); });
    return result;
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

QStringList safetyCopies(const TestEnv& env)
{
    return QDir(env.path(QStringLiteral("data/varmistukset"))).entryList(QDir::Files, QDir::Name);
}

} // namespace

class tst_DatabaseMaintenance : public QObject {
    Q_OBJECT

private slots:
    void commands_data();
    void commands();
    void descriptionsWithApostropheStay();
    void nothingChanges_data();
    void nothingChanges();
};

void tst_DatabaseMaintenance::commands_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("after");
    const auto row = [](const char* answer, const char* message, const QString& after) {
        QTest::newRow(answer) << QString::fromUtf8(answer) << QString::fromUtf8(message) << after;
    };
    row("POISTA KAIKKI", "Kaikki poistettu.", "tl 0, to 0, vi 0, toE 0, viE 0, ma 0, mr 0");
    row("POISTA NYKYISET TOSITTEET", "Nykyiset tositteet poistettu.",
        "tl 3, to 0, vi 0, toE 2, viE 3, ma 3, mr 5");
    row("POISTA EDELLISET TOSITTEET", "Edelliset tositteet poistettu.",
        "tl 3, to 3, vi 6, toE 0, viE 0, ma 3, mr 5");
    row("POISTA TULOSLASKELMAMALLIT", "Tuloslaskelmamallit poistettu.",
        "tl 3, to 3, vi 6, toE 2, viE 3, ma 1, mr 2");
    row("POISTA TASEMALLIT", "Tasemallit poistettu.", "tl 3, to 3, vi 6, toE 2, viE 3, ma 2, mr 3");
    // The entries stay without their accounts, as the voucher check will report.
    row("POISTA TILIT", "Tilit poistettu.", "tl 0, to 3, vi 6, toE 2, viE 3, ma 3, mr 5");
    row("Tarkista Selitteet", "Selitetekstit tarkistettu.", Initial);
    // The account number keeps its separating blank in the message.
    row("POISTA VIENNIT 1910", "Viennit tililtä  1910 poistettu.",
        "tl 3, to 3, vi 3, toE 2, viE 1, ma 3, mr 5");
}

// Every command keeps a safety copy of the books as they were and names it in its message.
void tst_DatabaseMaintenance::commands()
{
    QFETCH(QString, answer);
    QFETCH(QString, message);
    QFETCH(QString, after);
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    QCOMPARE(countsOf(books.db()), Initial);
    int leaveChecks = 0;
    dialogs.answerInput(answer);
    DatabaseMaintenance::run(books.db(), [&] {
        ++leaveChecks;
        return true;
    });
    QCOMPARE(leaveChecks, 1);
    QCOMPARE(countsOf(books.db()), after);

    const QStringList copies = safetyCopies(env);
    QCOMPARE(copies.size(), 1);
    const QString copy = env.path(QStringLiteral("data/varmistukset/")) + copies.first();
    QVERIFY2(copies.first().startsWith(QStringLiteral("seura-ennen-")), qPrintable(copies.first()));
    QVERIFY(DatabaseFile::examine(copy));
    QCOMPARE(counts(copy), Initial);

    const QStringList texts = dialogs.texts(ScriptedDialogs::Kind::Information);
    QCOMPARE(texts.size(), 1);
    const QStringList lines = texts.first().split(u'\n');
    QCOMPARE(lines.at(0), message);
    QCOMPARE(lines.at(1), QStringLiteral("Varmuuskopio ennen muutosta: ") + copy);
    QCOMPARE(dialogs.shown().first().text, QStringLiteral("Anna Vorkam komento"));
}

void tst_DatabaseMaintenance::descriptionsWithApostropheStay()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    dialogs.answerInput(QStringLiteral("tarkista selitteet"));
    DatabaseMaintenance::run(books.db());
    QSqlQuery q(books.db());
    QVERIFY(q.exec(QStringLiteral("SELECT vitoID, viSelite FROM vi ORDER BY viID")));
    QStringList seen;
    while (q.next())
        seen.append(q.value(0).toString() + u':' + q.value(1).toString());
    QCOMPARE(seen,
        QStringList({ "1:Jäsenmaksu", "1:Jäsenmaksu", "2:vanha c", "2:vanha d", "3:Kahvit", "3:Kahvit" }));
    const QStringList lines = dialogs.texts(ScriptedDialogs::Kind::Information).value(0).split(u'\n');
    QCOMPARE(lines.size(), 3);
    QCOMPARE(lines.at(2),
        QStringLiteral("Tositteen 2 selitteessä on heittomerkki ('), joten sen vientien selitteet jätettiin "
                       "ennalleen."));
}

void tst_DatabaseMaintenance::nothingChanges_data()
{
    QTest::addColumn<QVariant>("answer"); // invalid: the input box cancelled
    QTest::addColumn<QString>("obstacle");
    QTest::addColumn<QString>("shown"); // the start of what follows the prompt; empty: nothing
    const QString notFound
        = QStringLiteral("information: Komentoa ei löydy, tarkista komento.\nAntamasi komento: ");
    const auto row = [](const char* tag, const QVariant& answer, const char* obstacle, const QString& shown) {
        QTest::newRow(tag) << answer << QString::fromUtf8(obstacle) << shown;
    };
    row("cancelled", QVariant(), "", QString());
    row("empty", QString(), "", QString());
    // An unknown word, a command with a blank after it, and the prefix one character too short.
    for (const char* typed : { "POISTA", "POISTA TILIT ", "POISTA VIENNIT " })
        row(typed, QString::fromUtf8(typed), "", notFound + QString::fromUtf8(typed));
    row("no such account", QStringLiteral("POISTA VIENNIT 99999"), "",
        QStringLiteral("information: Viennit tililtä  99999 poistettu."));
    row("account without a blank", QStringLiteral("POISTA VIENNIT19"), "",
        QStringLiteral("information: Viennit tililtä 19 poistettu."));
    row("read-only books", QStringLiteral("POISTA KAIKKI"), "read-only",
        QStringLiteral(
            "information: Tietokanta on avattu vain luettavaksi, joten komentoa ei voi suorittaa."));
    row("the user stays", QStringLiteral("POISTA TILIT"), "leave", QString());
    row("no room for the safety copy", QStringLiteral("POISTA KAIKKI"), "no room",
        QStringLiteral("error: Tietokannasta ei voitu ottaa varmuuskopiota, joten komentoa ei suoritettu. "
                       "Tietokantaa ei muutettu."));
    // The template rows cannot be deleted: the vouchers deleted before them come back.
    row("a failing command", QStringLiteral("POISTA KAIKKI"), "locked",
        QStringLiteral("error: Komento ei onnistunut. Tietokantaa ei muutettu.\n"));
}

// No command, nothing to delete, or a command that cannot run: nothing changes.
void tst_DatabaseMaintenance::nothingChanges()
{
    QFETCH(QVariant, answer);
    QFETCH(QString, obstacle);
    QFETCH(QString, shown);
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env, obstacle == u"read-only");
    if (obstacle == u"no room") // a file stands where the safety copies' folder should be
        QVERIFY(TestEnv::writeFile(env.path(QStringLiteral("data/varmistukset")), "x"));
    if (obstacle == u"locked")
        QVERIFY(
            QSqlQuery(books.db())
                .exec(QStringLiteral(
                    "CREATE TRIGGER esta BEFORE DELETE ON mr BEGIN SELECT RAISE(ABORT, 'lukittu'); END")));
    answer.isValid() ? dialogs.answerInput(answer.toString()) : dialogs.cancelInput();
    bool leaveChecked = false;
    DatabaseMaintenance::run(books.db(), [&] {
        leaveChecked = true;
        return obstacle != u"leave";
    });
    const QStringList after = dialogs.transcript().mid(1);
    QCOMPARE(after.size(), shown.isEmpty() ? 0 : 1);
    QVERIFY2(after.join(u'\n').startsWith(shown), qPrintable(after.join(u'\n')));
    if (obstacle == u"locked")
        QVERIFY(after.first().contains(QStringLiteral("lukittu")));
    if (obstacle.isEmpty())
        QVERIFY(!leaveChecked);
    QCOMPARE(counts(books.file), Initial);
    QCOMPARE(safetyCopies(env).isEmpty(), obstacle != u"locked");
}

QTEST_GUILESS_MAIN(tst_DatabaseMaintenance)
#include "tst_DatabaseMaintenance.moc"
