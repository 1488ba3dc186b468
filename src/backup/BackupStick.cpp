#include "backup/BackupStick.h"

#include "core/DatabaseFile.h"
#include "core/Dialogs.h"
#include "core/ErrorText.h"
#include "core/Schema.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QUuid>

#include <algorithm>
#include <cerrno>
#include <cstdio>

namespace BackupStick {

bool suitable(const Volume& volume)
{
    return volume.ready && volume.removable && volume.label.toUpper() == Label;
}

std::optional<Volume> find(const QList<Volume>& volumes)
{
    for (const Volume& v : volumes)
        if (suitable(v))
            return v;
    return std::nullopt;
}

std::optional<Volume> find() { return find(Drives::instance().volumes()); }

std::optional<Volume> stillThere(const QString& mountPoint)
{
    for (const Volume& v : Drives::instance().volumes())
        if (v.mountPoint == mountPoint && suitable(v))
            return v;
    return std::nullopt;
}

QString foundText(const QString& mountPoint, const QString& rest)
{
    return QStringLiteral("2. Sopiva muistitikku löytyi (") + mountPoint + QStringLiteral("-asema), ") + rest;
}

QString notFoundMessage()
{
    return QStringLiteral("Sopivaa muistitikkua ei löydy.\n\n"
                          "Tutustu ohjelman käyttöohjeesta kappaleeseen \"Varmistus kopiotikulle\".\n"
                          "Sieltä löytyy ohjeet miten muistitikulle annetaan nimeksi \"KOPIOTIKKU\".");
}

QString lostMessage()
{
    return QStringLiteral("Muistitikkua ei enää löydy. Liitä KOPIOTIKKU-muistitikku koneeseen ja etsi se "
                          "uudelleen.");
}

static QString joined(const QString& folder, const QString& name)
{
    return folder.endsWith(u'/') ? folder + name : folder + u'/' + name;
}

bool soundBooks(const QString& path, QString* why)
{
    const OpenResult seen = DatabaseFile::examine(path);
    if (seen.error == DbError::JetFormat) {
        // Old-format books are converted where they lie when they are opened, never taken over
        // from a stick as they are.
        *why = QStringLiteral("Se on vanhan muotoinen tietokanta.");
        return false;
    }
    const QString connection
        = QStringLiteral("vorkam_books_check_") + QUuid::createUuid().toString(QUuid::Id128);
    const OpenResult opened = seen ? DatabaseFile::open(path, connection, true, true) : seen;
    bool sound = false;
    if (!opened) {
        *why = opened.message;
    } else {
        const QStringList missing = Schema::missingCoreTables(QSqlDatabase::database(connection, false));
        sound = missing.isEmpty();
        if (!sound)
            *why = QStringLiteral("Siitä puuttuu taulu %1.").arg(missing.first());
    }
    DatabaseFile::close(connection);
    return sound;
}

QString backupFolder(const QString& mountPoint) { return joined(mountPoint, Folder); }

QString dayName(const QDate& day) { return day.toString(QStringLiteral("yyyyMMdd")); }

QString dayFolder(const QString& mountPoint, const QString& day)
{
    return joined(backupFolder(mountPoint), day);
}

QString copyPath(const QString& mountPoint, const QString& day, const QString& fileName)
{
    return joined(dayFolder(mountPoint, day), fileName);
}

QStringList days(const QString& mountPoint)
{
    const QString folder = backupFolder(mountPoint);
    QDir().mkpath(folder);
    QStringList names = QDir(folder).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    std::reverse(names.begin(), names.end());
    return names;
}

QStringList files(const QString& mountPoint, const QString& day)
{
    return QDir(dayFolder(mountPoint, day)).entryList(QDir::Files, QDir::Name);
}

int deleteCopies(const QString& mountPoint, const QString& day, const QStringList& fileNames)
{
    Dialogs& dialogs = Dialogs::instance();
    if (!stillThere(mountPoint)) {
        dialogs.error(lostMessage());
        return -1;
    }
    int deleted = 0;
    for (const QString& name : fileNames) {
        if (!dialogs.question(QStringLiteral("Haluatko varmasti poistaa kopion %1 / %2?").arg(day, name)))
            continue;
        if (std::remove(QFile::encodeName(copyPath(mountPoint, day, name)).constData()) == 0) {
            ++deleted;
        } else if (const int error = errno; error != ENOENT) {
            dialogs.error(
                QStringLiteral("Kopiota %1 / %2 ei voitu poistaa.\n%3\nTarkista, että muistitikku on "
                               "kiinni ja ettei se ole kirjoitussuojattu.")
                    .arg(day, name, ErrorText::system(error)));
        }
    }
    return deleted;
}

} // namespace BackupStick
