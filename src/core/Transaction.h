#pragma once

#include <QSqlDatabase>
#include <functional>
#include <memory>

// One transaction around a write of several rows: rolled back unless commit() succeeds, and
// rolled back when the commit itself fails. A guard made while another is active on the same
// connection is a savepoint of the outer one: its commit only releases the savepoint, and
// what it wrote is undone if the outer guard rolls back.
//
// Objects that remember what a write did (a record's new key, its clean flag) register an
// undo step with onRollback(), so that after a rollback no object claims a row that does
// not exist.
class QSqlDriver;

class Transaction final {
public:
    // Begins the transaction or the savepoint; throws DatabaseError when the database refuses.
    explicit Transaction(const QSqlDatabase& db);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    bool isActive() const { return m_active; }
    // False when the commit failed; everything this guard covered is then rolled back.
    bool commit();
    // As commit(), but throws DatabaseError with the engine's text.
    void commitOrThrow();

    // After a commit, and after a statement that ran outside any transaction: when the main
    // database file changed, flushes its folder. The engine ends a commit by deleting its
    // journal and does not flush the folder after, so a power cut could bring the journal back
    // and roll committed work back.
    static void settle(const QSqlDriver* driver);
    // Rolls back now; safe to call more than once.
    void rollback();

    // How many guards are active on the connection (0: none).
    static int depth(const QSqlDatabase& db);
    // Registers `undo` to run if the innermost active guard on `db` (or any guard around it) is
    // rolled back. Nothing is registered when no guard is active: the write is final already.
    // The step is dropped without running once `owner` has expired.
    static void onRollback(const QSqlDatabase& db, std::weak_ptr<void> owner, std::function<void()> undo);

private:
    QSqlDatabase m_db;
    QString m_savepoint; // empty for the outermost guard
    int m_level = 0;
    bool m_active = false;
};
