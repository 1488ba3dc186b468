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
    void refusals_data();
    void refusals();
    void safetyCopyName_data();
    void safetyCopyName();
    void safetyCopiesOfOpenBooks();
};

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
    QTest::newRow("blank, slash and the time") << "/tmp/kerho.mdb"
                                               << "POISTA VIENNIT 19/10"
                                               << "kerho-ennen-POISTA-VIENNIT-19-10-20240305-070809.mdb";
    QTest::newRow("dots in the file name, Finnish letters")
        << "/tmp/äijät.v2.mdb"
        << "TILIKAUDEN VÄLI"
        << "äijät.v2-ennen-TILIKAUDEN-VÄLI-20240305-070809.mdb";
}

void tst_DatabaseCopy::safetyCopyName()
{
    QFETCH(QString, books);
    QFETCH(QString, command);
    QFETCH(QString, name);
    QCOMPARE(
        DatabaseCopy::safetyCopyName(books, command, QDateTime(QDate(2024, 3, 5), QTime(7, 8, 9))), name);
}

// Safety copies of books kept open: the latest change is in each, and each has a name of its own.
void tst_DatabaseCopy::safetyCopiesOfOpenBooks()
{
    TestEnv env;
    OpenBooks books(env.path(QStringLiteral("seura.mdb")));
    QSqlQuery q(books.db());
    QVERIFY(q.exec(QStringLiteral("UPDATE \"to\" SET toSelite = 'Muutettu' WHERE toNumero = 1")));
    const DatabaseCopy::SafetyCopy first
        = DatabaseCopy::safetyCopy(books.db(), QStringLiteral("POISTA TILIT"));
    const DatabaseCopy::SafetyCopy second
        = DatabaseCopy::safetyCopy(books.db(), QStringLiteral("POISTA TILIT"));
    QVERIFY2(first && second, qPrintable(first.result.message + second.result.message));
    // Nothing but the two copies is left in the folder.
    QStringList names { QFileInfo(first.path).fileName(), QFileInfo(second.path).fileName() };
    names.sort();
    QCOMPARE(filesIn(env.path(QStringLiteral("data/varmistukset"))), names);
    for (const QString& name : names) {
        QVERIFY2(name.startsWith(QStringLiteral("seura-ennen-POISTA-TILIT-")), qPrintable(name));
        QCOMPARE(counts(env.path(QStringLiteral("data/varmistukset/")) + name),
            QStringLiteral("3/401/2 Muutettu"));
    }
    // The books themselves are still open and usable.
    QVERIFY(q.exec(QStringLiteral("SELECT COUNT(*) FROM tl")) && q.next());
}

QTEST_GUILESS_MAIN(tst_DatabaseCopy)
#include "tst_DatabaseCopy.moc"
