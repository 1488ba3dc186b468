#pragma once

#include "backup/Drives.h"

#include <QDate>
#include <QString>
#include <QStringList>
#include <optional>

// The memory stick that holds Vorkam's copies and how the copies lie on it: the stick's root,
// the folder "Vorkam", one folder per day (YYYYMMDD), and in it the copied books.
namespace BackupStick {

inline const QString Label = QStringLiteral("KOPIOTIKKU");
// The folder of the copies on the stick: the program's title.
inline const QString Folder = QStringLiteral("Vorkam");

// Ready, removable and labelled "KOPIOTIKKU" in any case, nothing more and nothing less.
bool suitable(const Volume& volume);
// The first suitable volume in the given order; the rest are not looked at.
std::optional<Volume> find(const QList<Volume>& volumes);
std::optional<Volume> find();
// The volume mounted at `mountPoint` when it is still a suitable stick: a stick may be pulled
// out between finding it and using it.
std::optional<Volume> stillThere(const QString& mountPoint);

// "2. Sopiva muistitikku löytyi (MOUNT-asema), …": the mount point stands where a drive letter
// would.
QString foundText(const QString& mountPoint, const QString& rest);
// The message shown when no stick is found, with the help on naming one.
QString notFoundMessage();
// The stick found earlier is no longer there.
QString lostMessage();

// Whether `path` holds sound books of Vorkam (not an old-format file, not damaged, with
// Vorkam's tables); `why` tells what is wrong with a file that does not. The file is only read.
bool soundBooks(const QString& path, QString* why);

QString backupFolder(const QString& mountPoint);
// 20110905 for 5.9.2011.
QString dayName(const QDate& day);
QString dayFolder(const QString& mountPoint, const QString& day);
QString copyPath(const QString& mountPoint, const QString& day, const QString& fileName);

// The day folders, newest first. The backup folder is made when missing (a stick that cannot
// be written is read as it is).
QStringList days(const QString& mountPoint);
// The files of one day folder in name order; hidden files (unfinished copies) are left out.
QStringList files(const QString& mountPoint, const QString& day);

// Asks about each file in turn and deletes those the user confirms. Returns how many were
// deleted, or -1 when the stick is gone; a file that cannot be deleted is reported and the rest
// are still asked about.
int deleteCopies(const QString& mountPoint, const QString& day, const QStringList& fileNames);

} // namespace BackupStick
