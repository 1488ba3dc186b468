#pragma once

#include <QSqlDatabase>
#include <QString>

// A connection of its own to one file (or ":memory:") for the length of a scope: a name no other
// connection has, opened when made, closed and removed when the scope ends. Queries on it must
// end before it does: declare them after it.
class ScopedConnection final {
public:
    enum class Mode { ReadWrite, ReadOnly };
    explicit ScopedConnection(const QString& path, Mode mode = Mode::ReadWrite);
    ~ScopedConnection();
    ScopedConnection(const ScopedConnection&) = delete;
    ScopedConnection& operator=(const ScopedConnection&) = delete;

    bool isOpen() const { return m_db.isOpen(); }
    QSqlDatabase& db() { return m_db; }

private:
    QString m_name;
    QSqlDatabase m_db;
};
