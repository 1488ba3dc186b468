#pragma once

#include <QString>

// The main window's whole-file commands on the database in use.
namespace DatabaseCommands {

// The work name of the reorganisation: the database path with its last character replaced.
QString workName(const QString& databasePath, QChar last);

// The name an earlier backup copy is kept under: "seura 2026-11-25 14.05.09.mdb", the time it
// was last written, with " (2)" and on when that name is taken.
QString keptName(const QString& copy);

// Backs the database up into the DatabaseBackup folder and compacts it: the compacted copy
// (last character "2") replaces the database, which is kept as the previous file (last
// character "3"). Returns true when everything succeeded.
bool backupAndReorganize();

// Restores a backup copy chosen by the user over a chosen target, which becomes the Database
// setting. Returns true when a file was restored (the caller then ends the program).
bool restoreFromBackup();

} // namespace DatabaseCommands
