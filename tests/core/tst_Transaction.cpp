#include "TestEnv.h"
#include "core/DatabaseError.h"
#include "core/FileOps.h"
#include "core/ScopedConnection.h"
#include "core/Transaction.h"

#include <QFileInfo>
#include <QSqlQuery>
#include <QTest>

// The transaction guard: commit, rollback, savepoints inside an outer guard, a commit that
// fails, and the undo steps that records register.
class tst_Transaction : public QObject {
    Q_OBJECT

    std::unique_ptr<TestEnv> env;
    std::unique_ptr<ScopedConnection> connection;
    QSqlDatabase db;

    int rows() const { return Sql::scalar(db, QStringLiteral("SELECT COUNT(*) FROM t")).toInt(); }
    void insert(int value) const { Sql::run(db, QStringLiteral("INSERT INTO t (v) VALUES (?)"), { value }); }

private slots:
    void init()
    {
        env = std::make_unique<TestEnv>();
        connection = std::make_unique<ScopedConnection>(env->path(QStringLiteral("tx.db")));
        db = connection->db();
        Sql::run(db, QStringLiteral("CREATE TABLE t (v INTEGER)"));
    }
    void cleanup()
    {
        QCOMPARE(Transaction::depth(db), 0);
        db = QSqlDatabase();
        connection.reset();
        env.reset();
    }

    // A savepoint rolled back undoes only its own work; one released is undone with the outer
    // guard. Steps registered outside a guard, or whose owner has expired, never run.
    void nestingAndUndoSteps()
    {
        int undos = 0;
        auto owner = std::make_shared<int>(0);
        const auto write = [&](int value) {
            insert(value);
            Transaction::onRollback(db, owner, [&] { ++undos; });
        };
        write(1);
        {
            Transaction outer(db);
            write(2);
            {
                Transaction inner(db);
                write(3);
            }
            QCOMPARE(undos, 1);
            QVERIFY(outer.commit());
        }
        {
            Transaction outer(db);
            write(4);
            {
                Transaction inner(db);
                write(5);
                QVERIFY(inner.commit());
            }
            auto expired = std::make_shared<int>(0);
            Transaction::onRollback(db, expired, [&] { ++undos; });
            expired.reset();
        }
        QCOMPARE(rows(), 2);
        QCOMPARE(undos, 3);
    }

    // A change of the books' file reaches the disk with its folder, so that the engine's
    // deleted journal cannot come back after a power cut and roll it back: after a commit and
    // after a write outside any transaction. A commit that fails rolls everything back.
    void commits()
    {
        int flushes = 0;
        FileOps::instance().flush = [&](const QString& path) {
            flushes += path == QFileInfo(db.databaseName()).absolutePath();
            return true;
        };
        insert(1);
        QCOMPARE(flushes, 1);
        {
            Transaction t(db);
            insert(2);
            QCOMPARE(flushes, 1);
            t.commitOrThrow();
        }
        QCOMPARE(flushes, 2);

        Sql::runScript(db,
            QStringLiteral(
                "PRAGMA foreign_keys = ON; CREATE TABLE p (id INTEGER PRIMARY KEY); CREATE TABLE c "
                "(pid INTEGER REFERENCES p (id) DEFERRABLE INITIALLY DEFERRED);"));
        bool undone = false;
        auto owner = std::make_shared<int>(0);
        {
            Transaction t(db);
            insert(3);
            // Checked only at commit: the commit itself fails.
            Sql::run(db, QStringLiteral("INSERT INTO c (pid) VALUES (99)"));
            Transaction::onRollback(db, owner, [&] { undone = true; });
            QVERIFY_THROWS_EXCEPTION(DatabaseError, t.commitOrThrow());
        }
        QVERIFY(undone);
        QCOMPARE(rows(), 2);
        // The connection is usable again.
        Transaction again(db);
        insert(4);
        QVERIFY(again.commit());
        QCOMPARE(rows(), 3);
    }
};

QTEST_GUILESS_MAIN(tst_Transaction)
#include "tst_Transaction.moc"
