#include "TestEnv.h"
#include "core/DatabaseCopy.h"
#include "core/ScopedConnection.h"

#include <QDir>
#include <QSqlQuery>
#include <QTest>

#include <tuple>

namespace {

// How many vouchers a copy holds and the first one's description, if the copy is sound.
QString contents(const QString& file)
{
    QString result = QStringLiteral("damaged");
    withDatabase(file, [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        if (q.exec(QStringLiteral("PRAGMA integrity_check")) && q.next() && q.value(0).toString() == u"ok"
            && q.exec(QStringLiteral("SELECT COUNT(*) || ' ' || (SELECT toSelite FROM \"to\" WHERE toNumero "
                                     "= 1) FROM \"to\""))
            && q.next())
            result = q.value(0).toString();
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
    void copiesOfOpenBooks();
    void safetyCopyName();
};

// Books kept open on their own connection, as Vorkam keeps them: a refused backup leaves nothing
// behind; each safety copy holds the latest change and has a name of its own.
void tst_DatabaseCopy::copiesOfOpenBooks()
{
    TestEnv env;
    QVERIFY(TestEnv::createDatabase(env.path(QStringLiteral("seura.mdb"))));
    ScopedConnection books(env.path(QStringLiteral("seura.mdb")));
    QVERIFY(TestEnv::writeFile(env.path(QStringLiteral("olemassa.mdb")), "vanha"));
    const QStringList before = filesIn(env.path(QString()));
    const std::tuple<QSqlDatabase, const char*, DbError> refusals[] = {
        { books.db(), "olemassa.mdb", DbError::FileExists },
        { books.db(), "puuttuu/kopio.mdb", DbError::InvalidPath },
        { QSqlDatabase(), "kopio.mdb", DbError::Failed }, // the books are not open
    };
    for (const auto& [db, target, error] : refusals) {
        const OpenResult copied = DatabaseCopy::backup(db, env.path(QString::fromUtf8(target)));
        QCOMPARE(int(copied.error), int(error));
    }
    QCOMPARE(filesIn(env.path(QString())), before);
    QCOMPARE(TestEnv::readFile(env.path(QStringLiteral("olemassa.mdb"))), QByteArray("vanha"));

    QSqlQuery q(books.db());
    QVERIFY(q.exec(QStringLiteral("UPDATE \"to\" SET toSelite = 'Muutettu' WHERE toNumero = 1")));
    const DatabaseCopy::SafetyCopy first
        = DatabaseCopy::safetyCopy(books.db(), QStringLiteral("POISTA TILIT"));
    const DatabaseCopy::SafetyCopy second
        = DatabaseCopy::safetyCopy(books.db(), QStringLiteral("POISTA TILIT"));
    QVERIFY2(first && second, qPrintable(first.result.message + second.result.message));
    // Nothing but the two copies is left in the folder.
    QCOMPARE(filesIn(env.path(QStringLiteral("data/varmistukset"))).size(), 2);
    QCOMPARE(contents(first.path), QStringLiteral("401 Muutettu"));
    QCOMPARE(contents(second.path), QStringLiteral("401 Muutettu"));
}

// The file name without its last extension; in the command, whatever is not a letter or a digit
// becomes "-".
void tst_DatabaseCopy::safetyCopyName()
{
    QCOMPARE(DatabaseCopy::safetyCopyName(QStringLiteral("/tmp/äijät.v2.mdb"),
                 QStringLiteral("TILIKAUDEN VÄLI 19/10"), QDateTime(QDate(2024, 3, 5), QTime(7, 8, 9))),
        QStringLiteral("äijät.v2-ennen-TILIKAUDEN-VÄLI-19-10-20240305-070809.mdb"));
}

QTEST_GUILESS_MAIN(tst_DatabaseCopy)
#include "tst_DatabaseCopy.moc"
