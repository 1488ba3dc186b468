#include "TestEnv.h"
#include "core/DatabaseError.h"
#include "core/FileOps.h"
#include "core/Transaction.h"

#include <QFileInfo>
#include <QSqlQuery>
#include <QTest>

// The transaction guard: commit, rollback, savepoints inside an outer guard, a commit that
// fails, and the undo steps that records register.
class tst_Transaction : public QObject {
    Q_OBJECT

    std::unique_ptr<TestEnv> env;
    QSqlDatabase db;

    int rows() const { return Sql::scalar(db, QStringLiteral("SELECT COUNT(*) FROM t")).toInt(); }
    void insert(int value) const { Sql::run(db, QStringLiteral("INSERT INTO t (v) VALUES (?)"), { value }); }

private slots:
    void init()
    {
        env = std::make_unique<TestEnv>();
        db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("tx"));
        db.setDatabaseName(env->path(QStringLiteral("tx.db")));
        QVERIFY(db.open());
        Sql::run(db, QStringLiteral("CREATE TABLE t (v INTEGER)"));
    }
    void cleanup()
    {
        QCOMPARE(Transaction::depth(db), 0);
        db.close();
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(QStringLiteral("tx"));
        env.reset();
    }

    void nesting_data()
    {
        QTest::addColumn<bool>("innerCommits");
        QTest::addColumn<bool>("outerCommits");
        QTest::addColumn<int>("rowsLeft");
        QTest::addColumn<int>("undone"); // undo steps run
        QTest::newRow("both commit") << true << true << 2 << 0;
        QTest::newRow("inner rolls back, outer commits") << false << true << 1 << 1;
        QTest::newRow("inner commits, outer rolls back: the inner is part of the outer")
            << true << false << 0 << 2;
        QTest::newRow("both roll back") << false << false << 0 << 2;
    }

    void nesting()
    {
        QFETCH(bool, innerCommits);
        QFETCH(bool, outerCommits);
        QFETCH(int, rowsLeft);
        QFETCH(int, undone);
        int undos = 0;
        auto owner = std::make_shared<int>(0);
        {
            Transaction outer(db);
            insert(1);
            Transaction::onRollback(db, owner, [&] { ++undos; });
            {
                Transaction inner(db);
                QCOMPARE(Transaction::depth(db), 2);
                insert(2);
                Transaction::onRollback(db, owner, [&] { ++undos; });
                if (innerCommits)
                    QVERIFY(inner.commit());
            }
            QCOMPARE(Transaction::depth(db), 1);
            if (outerCommits)
                QVERIFY(outer.commit());
        }
        QCOMPARE(rows(), rowsLeft);
        QCOMPARE(undos, undone);
    }

    void failedCommitRollsBack()
    {
        Sql::run(db, QStringLiteral("PRAGMA foreign_keys = ON"));
        Sql::run(db, QStringLiteral("CREATE TABLE p (id INTEGER PRIMARY KEY)"));
        Sql::run(db,
            QStringLiteral("CREATE TABLE c (pid INTEGER REFERENCES p (id) DEFERRABLE INITIALLY DEFERRED)"));
        bool undone = false;
        auto owner = std::make_shared<int>(0);
        {
            Transaction t(db);
            insert(1);
            // Checked only at commit: the commit itself fails.
            Sql::run(db, QStringLiteral("INSERT INTO c (pid) VALUES (99)"));
            Transaction::onRollback(db, owner, [&] { undone = true; });
            QVERIFY_THROWS_EXCEPTION(DatabaseError, t.commitOrThrow());
            QVERIFY(!t.isActive());
        }
        QVERIFY(undone);
        QCOMPARE(rows(), 0);
        // The connection is usable again.
        Transaction again(db);
        insert(3);
        QVERIFY(again.commit());
        QCOMPARE(rows(), 1);
    }

    void undoStepsOfExpiredOwnersAreDropped()
    {
        bool ran = false;
        {
            Transaction t(db);
            auto owner = std::make_shared<int>(0);
            Transaction::onRollback(db, owner, [&] { ran = true; });
            owner.reset();
        }
        QVERIFY(!ran);
        // Without a transaction a write is final: nothing to undo, nothing registered.
        auto owner = std::make_shared<int>(0);
        Transaction::onRollback(db, owner, [&] { ran = true; });
        Transaction t(db);
        t.rollback();
        QVERIFY(!ran);
    }

    // A change of the books' file reaches the disk with its folder, so that the engine's
    // deleted journal cannot come back after a power cut and roll it back: after a commit and
    // after a write outside any transaction, never after a read or a change of a TEMP table.
    void committedChangesFlushTheFolder()
    {
        int flushes = 0;
        FileOps::instance().flush = [&](const QString& path) {
            flushes += path == QFileInfo(db.databaseName()).absolutePath();
            return true;
        };
        const auto flushed = [&](const std::function<void()>& step) {
            flushes = 0;
            step();
            return flushes;
        };
        Sql::run(db, QStringLiteral("CREATE TEMP TABLE w (v INTEGER)"));
        QCOMPARE(flushed([&] { insert(1); }), 1);
        QCOMPARE(flushed([&] { rows(); }), 0);
        QCOMPARE(flushed([&] { Sql::run(db, QStringLiteral("INSERT INTO w (v) VALUES (1)")); }), 0);
        QCOMPARE(flushed([&] {
            Transaction t(db);
            insert(2);
            insert(3);
            QCOMPARE(flushes, 0);
            t.commitOrThrow();
        }),
            1);
        QCOMPARE(flushed([&] {
            Transaction t(db);
            insert(4);
        }),
            0);
    }
};

QTEST_GUILESS_MAIN(tst_Transaction)
#include "tst_Transaction.moc"
