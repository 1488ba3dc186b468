#pragma once

#include <QSqlDatabase>
#include <QString>

// What went wrong with a database file. The first three steer the same branches as the
// numbered errors of file operations: not found, invalid path and "file already exists".
enum class DbError {
    None,
    FileNotFound,
    InvalidPath,
    FileExists,
    Unreadable, // exists, but the user may not read it
    JetFormat, // an old-format file: must be converted, never opened as SQLite
    Damaged, // not a database, truncated or garbled
    Failed, // any other failure of a file or database operation
};

struct OpenResult {
    DbError error = DbError::None;
    QString message; // the engine's or file system's own description, for error boxes
    explicit operator bool() const { return error == DbError::None; }
};

namespace DatabaseFile {

// The read-only test: the owner may not write the file.
bool isReadOnly(const QString& path);

// Looks at the file without opening it: missing, a folder, unreadable, an old Jet file, or
// something that is not an SQLite database at all.
OpenResult examine(const QString& path);

// Opens `path` as connection `connectionName` and checks it (quick_check). A read-only open
// never writes to the file. On failure the connection is removed again.
OpenResult open(const QString& path, const QString& connectionName, bool readOnly = false);

// Closes and removes a connection made by open().
void close(const QString& connectionName);

// A compacted copy of `source` in `target`, which must not exist. The source is only read.
OpenResult compactInto(const QString& source, const QString& target);

// Repair of a damaged file: a compacted copy when the engine can still read the whole file,
// else every row that can still be read, table by table. The source is only read; a failure
// leaves no target behind.
OpenResult repairInto(const QString& source, const QString& target);

// True when `path` starts like a Jet database ("Standard Jet DB" / "Standard ACE DB").
bool isJetFile(const QString& path);

} // namespace DatabaseFile
