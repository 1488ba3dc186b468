#pragma once

#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <optional>

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
    int code = 0; // the engine's error code when the engine itself failed, else 0
    explicit operator bool() const { return error == DbError::None; }
};

namespace DatabaseFile {

// The read-only test: the owner may not write the file.
bool isReadOnly(const QString& path);
// The folder of `path` may not be written (the engine's journal lives there).
bool folderReadOnly(const QString& path);
// The connection was opened for reading only.
bool isReadOnly(const QSqlDatabase& db);

// Looks at the file without opening it: missing, a folder, unreadable, an old Jet file, or
// something that is not an SQLite database at all.
OpenResult examine(const QString& path);

// Opens `path` as connection `connectionName` and checks it (quick_check) unless `check` is
// off (the file was checked already in this run). A read-only open never writes to the file.
// On failure the connection is removed again.
OpenResult open(const QString& path, const QString& connectionName, bool readOnly = false, bool check = true);

// Sets the books' connection to write durably (a rollback journal deleted at each commit, and
// every commit on the disk before it returns) and reads both settings back. Empty when they
// took; otherwise the Finnish refusal to write, with the values the engine gave.
QString durableWrites(const QSqlDatabase& db);

// Closes and removes a connection made by open().
void close(const QString& connectionName);

// A compacted copy of `source` in `target`, which must not exist. The source is only read.
OpenResult compactInto(const QString& source, const QString& target);

// The rows of one core table before and after a repair.
struct TableCount {
    QString table;
    QString caption; // Finnish, for the report
    std::optional<qint64> before; // nullopt: the damaged file could not tell
    qint64 after = 0;
};

// The table that keeps rows whose own table the repair could not tell.
inline const QString UnplacedTable = QStringLiteral("korjauksessa_loydetyt");

struct RepairResult {
    OpenResult result;
    QList<TableCount> counts;
    qint64 unplaced = 0;
    // Schema objects of the damaged file not made again ("trigger name").
    QStringList skipped;
    bool byCompaction = false;
    explicit operator bool() const { return bool(result); }
    // Per table, what the damaged file held and what the repaired one holds, in Finnish.
    QString report() const;
    // Rows were lost, or the damaged file could not tell how many it had.
    bool lostRows() const;
};

// Repair of a damaged file: a compacted copy when the engine can still read the whole file,
// else every row that can be read from the file's pages. A repair that saves no accounts or
// no vouchers from a file that had them has failed. The source is only read; a failure
// leaves no target behind.
RepairResult repairInto(const QString& source, const QString& target);

// Has the engine report every damaged page or foreign file it meets from now on, on any
// connection, so that a program that skips the whole-file check at opening still learns of damage
// met while reading, even where a loop over rows would merely end early. Must be called before
// the first connection is opened; false when that is too late.
bool watchForDamage();
// The engine has met damage since watchForDamage().
bool damageSeen();

// True when `path` starts like a Jet database ("Standard Jet DB" / "Standard ACE DB").
bool isJetFile(const QString& path);

} // namespace DatabaseFile
