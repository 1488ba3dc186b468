#include "core/ScopedConnection.h"

#include <QUuid>

ScopedConnection::ScopedConnection(const QString& path, Mode mode)
    : m_name(QStringLiteral("vorkam_scoped_") + QUuid::createUuid().toString(QUuid::Id128))
    , m_db(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name))
{
    m_db.setDatabaseName(path);
    if (mode == Mode::ReadOnly)
        m_db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
    m_db.open();
}

ScopedConnection::~ScopedConnection()
{
    m_db.close();
    m_db = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_name);
}
