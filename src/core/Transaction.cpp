#include "core/Transaction.h"
#include "core/ErrorText.h"

#include "core/DatabaseError.h"
#include "core/FileOps.h"

#include <QFileInfo>
#include <QHash>
#include <QList>
#include <QMutex>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>

#include <sqlite3.h>

namespace {

struct UndoStep {
    std::weak_ptr<void> owner;
    std::function<void()> undo;
};

// The active guards of one connection: one list of undo steps per level.
struct ConnectionState {
    QList<QList<UndoStep>> levels;
    int savepoints = 0;
};

QHash<QString, ConnectionState>& states()
{
    static QHash<QString, ConnectionState> s;
    return s;
}

void runUndo(QList<UndoStep>& steps)
{
    for (auto it = steps.rbegin(); it != steps.rend(); ++it)
        if (!it->owner.expired())
            it->undo();
    steps.clear();
}

bool execute(const QSqlDatabase& db, const QString& sql, QString* error = nullptr)
{
    QSqlQuery q(db);
    if (q.exec(sql))
        return true;
    if (error)
        *error = ErrorText::technical(q.lastError().text());
    return false;
}

} // namespace

Transaction::Transaction(const QSqlDatabase& db)
    : m_db(db)
{
    ConnectionState& state = states()[m_db.connectionName()];
    if (state.levels.isEmpty()) {
        if (!m_db.transaction()) {
            const QString error = ErrorText::technical(m_db.lastError().text());
            states().remove(m_db.connectionName());
            throw DatabaseError(error.isEmpty() ? QStringLiteral("Tapahtumaa ei voitu aloittaa.") : error);
        }
    } else {
        m_savepoint = QStringLiteral("vorkam_%1").arg(++state.savepoints);
        QString error;
        if (!execute(m_db, QStringLiteral("SAVEPOINT ") + m_savepoint, &error))
            throw DatabaseError(error);
    }
    state.levels.append(QList<UndoStep>());
    m_level = int(state.levels.size());
    m_active = true;
}

Transaction::~Transaction() { rollback(); }

int Transaction::depth(const QSqlDatabase& db)
{
    const auto it = states().constFind(db.connectionName());
    return it == states().cend() ? 0 : int(it->levels.size());
}

void Transaction::onRollback(const QSqlDatabase& db, std::weak_ptr<void> owner, std::function<void()> undo)
{
    const auto it = states().find(db.connectionName());
    if (it == states().end() || it->levels.isEmpty())
        return;
    it->levels.last().append(UndoStep { std::move(owner), std::move(undo) });
}

void Transaction::settle(const QSqlDriver* driver)
{
    const QVariant handle = driver ? driver->handle() : QVariant();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return;
    sqlite3* db = *static_cast<sqlite3* const*>(handle.constData());
    unsigned version = 0;
    if (!db || !sqlite3_get_autocommit(db)
        || sqlite3_file_control(db, "main", SQLITE_FCNTL_DATA_VERSION, &version) != SQLITE_OK)
        return;
    static QMutex lock;
    static QHash<sqlite3*, unsigned> seen;
    {
        const QMutexLocker locker(&lock);
        const auto known = seen.find(db);
        if (known != seen.end() && *known == version)
            return;
        seen.insert(db, version);
    }
    if (const char* file = sqlite3_db_filename(db, "main"); file && *file)
        FileOps::instance().flush(QFileInfo(QString::fromUtf8(file)).absolutePath());
}

bool Transaction::commit()
{
    if (!m_active)
        return false;
    ConnectionState& state = states()[m_db.connectionName()];
    // Guards end in the reverse order of their making; an inner one left active is a fault of
    // the caller, and committing past it would hide its rollback.
    if (int(state.levels.size()) != m_level) {
        rollback();
        return false;
    }
    bool ok = false;
    if (m_savepoint.isEmpty()) {
        ok = m_db.commit();
        if (ok) {
            m_active = false;
            states().remove(m_db.connectionName());
            settle(m_db.driver());
            return true;
        }
    } else {
        ok = execute(m_db, QStringLiteral("RELEASE ") + m_savepoint);
        if (ok) {
            m_active = false;
            // What this level did is now part of the outer one: so are its undo steps.
            QList<UndoStep> steps = state.levels.takeLast();
            state.levels.last().append(steps);
            return true;
        }
    }
    rollback();
    return false;
}

void Transaction::commitOrThrow()
{
    if (!commit()) {
        const QString error = ErrorText::technical(m_db.lastError().text());
        throw DatabaseError(error.isEmpty() ? QStringLiteral("Tapahtuman vahvistus ei onnistunut.") : error);
    }
}

void Transaction::rollback()
{
    if (!m_active)
        return;
    m_active = false;
    auto it = states().find(m_db.connectionName());
    // An outer guard that rolled back first took this one with it.
    if (it == states().end() || it->levels.size() < m_level)
        return;
    // Inner guards still open are rolled back with this one.
    while (it->levels.size() > m_level) {
        runUndo(it->levels.last());
        it->levels.removeLast();
    }
    if (m_savepoint.isEmpty()) {
        m_db.rollback();
        QList<UndoStep> steps = it->levels.isEmpty() ? QList<UndoStep>() : it->levels.takeLast();
        states().remove(m_db.connectionName());
        runUndo(steps);
    } else {
        execute(m_db, QStringLiteral("ROLLBACK TO ") + m_savepoint);
        execute(m_db, QStringLiteral("RELEASE ") + m_savepoint);
        QList<UndoStep> steps = it->levels.takeLast();
        runUndo(steps);
    }
}
