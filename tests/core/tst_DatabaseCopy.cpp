#include "TestEnv.h"
#include "core/DatabaseCopy.h"

#include <QDir>
#include <QSqlQuery>
#include <QTest>

namespace {

const QString Connection = QStringLiteral("tst_copy");

// The books kept open on their own connection while they are copied, as Vorkam keeps them.
struct OpenBooks {
    explicit OpenBooks(const QString& file)
    {
        TestEnv::createDatabase(file);
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), Connection);
        db.setDatabaseName(file);
        db.open();
    }
    ~OpenBooks()
    {
        QSqlDatabase::database(Connection, false).close();
        QSqlDatabase::removeDatabase(Connection);
    }
    QSqlDatabase db() const { return QSqlDatabase::database(Connection, false); }
};

QString counts(const QString& file)
{
    QString result = QStringLiteral("unreadable");
    withDatabase(file, [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        if (q.exec(QStringLiteral("SELECT (SELECT COUNT(*) FROM tl), (SELECT COUNT(*) FROM \"to\"), (SELECT "
                                  "COUNT(*) FROM vi), (SELECT toSelite FROM \"to\" WHERE toNumero = 1)"))
            && q.next())
            result = QStringLiteral("%1/%2/%3 %4")
                         .arg(q.value(0).toInt())
                         .arg(q.value(1).toInt())
                         .arg(q.value(2).toInt())
                         .arg(q.value(3).toString());
        QSqlQuery check(db);
        if (!check.exec(QStringLiteral("PRAGMA integrity_check")) || !check.next()
            || check.value(0).toString() != u"ok")
            result += QStringLiteral(" damaged");
    });
    return result;
}

QStringList filesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace

class tst_DatabaseCopy : public QObject {
    Q_OBJECT

private slots:
    void copyOfOpenBooks();
    void refusals_data();
    void refusals();
    void safetyCopyName_data();
    void safetyCopyName();
    void safetyCopiesOpenAndDiffer();
};

void tst_DatabaseCopy::copyOfOpenBooks()
{
    TestEnv env;
    const QString file = env.path(QStringLiteral("seura.mdb"));
    OpenBooks books(file);
    // The latest change made through the open connection is in the copy.
    QSqlQuery q(books.db());
    QVERIFY(q.exec(QStringLiteral("UPDATE \"to\" SET toSelite = 'Muutettu' WHERE toNumero = 1")));
    QDir().mkpath(env.path(QStringLiteral("kopiot")));
    const QString target = env.path(QStringLiteral("kopiot/kopio.mdb"));
    const OpenResult copied = DatabaseCopy::backup(books.db(), target);
    QVERIFY2(copied, qPrintable(copied.message));
    QCOMPARE(counts(target), QStringLiteral("3/401/2 Muutettu"));
    QCOMPARE(filesIn(env.path(QStringLiteral("kopiot"))), QStringList { QStringLiteral("kopio.mdb") });
    // The books themselves are still open and usable.
    QVERIFY(q.exec(QStringLiteral("SELECT COUNT(*) FROM tl")) && q.next());
}

void tst_DatabaseCopy::refusals_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<bool>("open");
    QTest::addColumn<int>("error");
    QTest::newRow("target exists") << "olemassa.mdb" << true << int(DbError::FileExists);
    QTest::newRow("folder missing") << "puuttuu/kopio.mdb" << true << int(DbError::InvalidPath);
    QTest::newRow("books not open") << "kopio.mdb" << false << int(DbError::Failed);
}

void tst_DatabaseCopy::refusals()
{
    QFETCH(QString, target);
    QFETCH(bool, open);
    QFETCH(int, error);
    TestEnv env;
    OpenBooks books(env.path(QStringLiteral("seura.mdb")));
    TestEnv::writeFile(env.path(QStringLiteral("olemassa.mdb")), "vanha");
    const QStringList before = filesIn(env.path(QString()));
    const OpenResult copied = DatabaseCopy::backup(open ? books.db() : QSqlDatabase(), env.path(target));
    QCOMPARE(int(copied.error), error);
    QVERIFY(!copied.message.isEmpty());
    QCOMPARE(filesIn(env.path(QString())), before);
    QCOMPARE(TestEnv::readFile(env.path(QStringLiteral("olemassa.mdb"))), QByteArray("vanha"));
}

void tst_DatabaseCopy::safetyCopyName_data()
{
    QTest::addColumn<QString>("books");
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("name");
    const auto row = [](const char* tag, const char* books, const char* command, const char* name) {
        QTest::newRow(tag) << QString::fromUtf8(books) << QString::fromUtf8(command)
                           << QString::fromUtf8(name);
    };
    row("plain", "/home/anna/Documents/Vorkam/seura.mdb", "POISTA KAIKKI",
        "seura-ennen-POISTA-KAIKKI-20240305-070809.mdb");
    row("account number with a slash", "/tmp/kerho.mdb", "POISTA VIENNIT 19/10",
        "kerho-ennen-POISTA-VIENNIT-19-10-20240305-070809.mdb");
    row("dots in the file name", "/tmp/kerho.v2.mdb", "TARKISTA SELITTEET",
        "kerho.v2-ennen-TARKISTA-SELITTEET-20240305-070809.mdb");
    row("Finnish letters", "/tmp/äijät.mdb", "TILIKAUDEN VAIHTO",
        "äijät-ennen-TILIKAUDEN-VAIHTO-20240305-070809.mdb");
}

void tst_DatabaseCopy::safetyCopyName()
{
    QFETCH(QString, books);
    QFETCH(QString, command);
    QFETCH(QString, name);
    QCOMPARE(
        DatabaseCopy::safetyCopyName(books, command, QDateTime(QDate(2024, 3, 5), QTime(7, 8, 9))), name);
}

void tst_DatabaseCopy::safetyCopiesOpenAndDiffer()
{
    TestEnv env;
    OpenBooks books(env.path(QStringLiteral("seura.mdb")));
    const DatabaseCopy::SafetyCopy first
        = DatabaseCopy::safetyCopy(books.db(), QStringLiteral("POISTA TILIT"));
    const DatabaseCopy::SafetyCopy second
        = DatabaseCopy::safetyCopy(books.db(), QStringLiteral("POISTA TILIT"));
    QVERIFY2(first && second, qPrintable(first.result.message + second.result.message));
    QVERIFY(first.path != second.path);
    for (const QString& path : { first.path, second.path }) {
        QCOMPARE(QFileInfo(path).absolutePath(), env.path(QStringLiteral("data/varmistukset")));
        QVERIFY2(QFileInfo(path).fileName().startsWith(QStringLiteral("seura-ennen-POISTA-TILIT-")),
            qPrintable(path));
        QCOMPARE(counts(path), QStringLiteral("3/401/2 Jäsenmaksu O'Brien"));
    }
}

QTEST_GUILESS_MAIN(tst_DatabaseCopy)
#include "tst_DatabaseCopy.moc"
