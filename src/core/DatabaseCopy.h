#pragma once

#include "core/DatabaseFile.h"

#include <QDateTime>
#include <QSqlDatabase>
#include <QString>

// Copies of whole books taken through the engine's online backup, never as bytes of an open
// file: the copy is a consistent database even while the books are open.
namespace DatabaseCopy {

// Copies the database of connection `db` into `target`, which must not exist. The copy is
// written under a temporary name in the target's folder and renamed only when complete, so a
// full disk or a missing folder leaves no file behind.
OpenResult backup(const QSqlDatabase& db, const QString& target);

// The name of a safety copy: NAME-ennen-KOMENTO-YYYYMMDD-HHMMSS.mdb, where NAME is the books'
// file name without its extension and every character of `command` other than a letter or a
// digit becomes "-".
QString safetyCopyName(const QString& databasePath, const QString& command, const QDateTime& when);

struct SafetyCopy {
    OpenResult result;
    QString path; // the copy written, when the result is good
    explicit operator bool() const { return bool(result); }
};

// A copy of the books in the data folder's varmistukset/ before `command` changes them. The
// folder is made when missing; a name taken already (two commands in one second) gets a number.
SafetyCopy safetyCopy(const QSqlDatabase& db, const QString& command);

} // namespace DatabaseCopy
