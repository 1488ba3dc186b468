#pragma once

#include <QString>

// The main window's whole-file commands on the database in use.
namespace DatabaseCommands {

// The work name of the reorganisation: the database path with its last character replaced.
QString workName(const QString& databasePath, QChar last);

// Backs the database up into the DatabaseBackup folder and compacts it: the compacted copy
// (last character "2") replaces the database, which is kept as the previous file (last
// character "3"). Returns true when everything succeeded.
bool backupAndReorganize();

// Restores a backup copy chosen by the user over a chosen target, which becomes the Database
// setting. Returns true when a file was restored (the caller then ends the program).
bool restoreFromBackup();

} // namespace DatabaseCommands
