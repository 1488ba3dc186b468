#include "core/DBC.h"

#include "core/DatabaseFile.h"
#include "core/ProgramSettings.h"

DBC& DBC::instance()
{
    static DBC dbc;
    return dbc;
}

DBC::~DBC() { SuljeDB(); }

QSqlDatabase DBC::openFile(const QString& path)
{
    ++m_openCount;
    m_connection = QStringLiteral("DBC_%1").arg(m_openCount);
    // The start-up has checked its file already; another file (a switch) is checked here. A
    // failed open gives a closed database.
    const bool checked = !path.isEmpty() && path == m_checkedPath;
    const OpenResult result = DatabaseFile::open(path, m_connection, checked && m_readOnly, !checked);
    if (!result)
        return QSqlDatabase();
    return QSqlDatabase::database(m_connection, false);
}

QSqlDatabase DBC::AvaaDB()
{
    const QString& setting = ProgramSettings::installation().Database;
    if (!m_open) {
        // Another connection may still be held after a switch: drop it before opening anew.
        if (!m_connection.isEmpty())
            DatabaseFile::close(m_connection);
        m_path = setting;
        QSqlDatabase db = openFile(m_path);
        m_open = db.isOpen();
        return db;
    }
    if (m_path == setting)
        return QSqlDatabase::database(m_connection, false);
    m_path = setting;
    SuljeDB();
    // Deliberately left not open, so that the next call opens the file once more.
    return openFile(setting);
}

void DBC::setMode(const QString& checkedPath, bool readOnly)
{
    m_checkedPath = checkedPath;
    m_readOnly = readOnly;
}

void DBC::SuljeDB()
{
    m_path.clear();
    m_open = false;
    if (!m_connection.isEmpty())
        DatabaseFile::close(m_connection);
    m_connection.clear();
}
