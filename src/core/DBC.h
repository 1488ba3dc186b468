#pragma once

#include <QSqlDatabase>
#include <QString>

// The one shared connection to the association database named by the Database setting.
// Every window and command takes the database from AvaaDB instead of opening its own;
// commands that copy, compact or replace the file call SuljeDB first.
class DBC final {
public:
    static DBC& instance();

    // The open database. Opens the file named by the Database setting on first use, returns
    // the same connection while the setting is unchanged, and closes and reopens when it
    // changes. After a switch the connection is not marked open, so the next call opens the
    // file once more. When the file cannot be opened the returned database is not open.
    QSqlDatabase AvaaDB();
    // Closes the connection; safe when nothing is open.
    void SuljeDB();

    // What the start-up found: the file it opened and checked in this run (DBC opens it again
    // without checking the whole file a second time) and whether it may only be read.
    void setMode(const QString& checkedPath, bool readOnly);

    bool isOpen() const { return m_open; }
    const QString& path() const { return m_path; }
    // How many times a file has been opened: lets callers and tests see reuse.
    int openCount() const { return m_openCount; }

    ~DBC();

private:
    DBC() = default;
    QSqlDatabase openFile(const QString& path);

    QString m_connection;
    bool m_open = false;
    QString m_path;
    int m_openCount = 0;
    QString m_checkedPath;
    bool m_readOnly = false;
};
