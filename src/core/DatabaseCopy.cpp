#include "core/DatabaseCopy.h"

#include "core/ErrorText.h"
#include "core/FileOps.h"
#include "core/Paths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDriver>
#include <QTemporaryFile>
#include <QVariant>

#include <sqlite3.h>

namespace {

OpenResult failure(DbError kind, const QString& message) { return OpenResult { kind, message }; }

// What went wrong, in words a treasurer can act on, with the engine's own words after them.
QString describe(int code, sqlite3* db)
{
    QString what;
    switch (code & 0xFF) {
    case SQLITE_FULL:
        what = QStringLiteral("Levy on täynnä.");
        break;
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_READONLY:
        what = QStringLiteral("Kohteeseen ei voi kirjoittaa.");
        break;
    case SQLITE_IOERR:
        what = QStringLiteral("Kirjoittaminen levylle ei onnistunut.");
        break;
    default:
        what = QStringLiteral("Kopiointi ei onnistunut.");
        break;
    }
    const char* engine = db ? sqlite3_errmsg(db) : sqlite3_errstr(code);
    return what + u'\n' + ErrorText::technical(QString::fromUtf8(engine));
}

sqlite3* handleOf(const QSqlDatabase& db)
{
    if (!db.isOpen() || !db.driver())
        return nullptr;
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3* const*>(handle.constData());
}

void removeWithJournal(const QString& file)
{
    QFile::remove(file);
    QFile::remove(file + QStringLiteral("-journal"));
}

} // namespace

namespace DatabaseCopy {

OpenResult backup(const QSqlDatabase& db, const QString& target)
{
    sqlite3* source = handleOf(db);
    if (!source)
        return failure(DbError::Failed, QStringLiteral("Tietokanta ei ole auki."));
    const QFileInfo info(target);
    if (info.exists() || info.isSymLink())
        return failure(DbError::FileExists, QStringLiteral("Tiedosto on jo olemassa: %1").arg(target));
    if (!info.absoluteDir().exists())
        return failure(DbError::InvalidPath, QStringLiteral("Kansiota ei ole: %1").arg(info.absolutePath()));

    // A unique name beside the target reserves the place of the copy; the engine writes into it.
    QString temp;
    {
        QTemporaryFile reserve(
            info.absolutePath() + u'/' + u'.' + info.fileName() + QStringLiteral(".XXXXXX"));
        reserve.setAutoRemove(false);
        if (!reserve.open())
            return failure(DbError::Failed,
                QStringLiteral("Kohteeseen ei voi kirjoittaa. (%1)").arg(reserve.errorString()));
        temp = reserve.fileName();
    }

    sqlite3* copy = nullptr;
    int rc = sqlite3_open_v2(QFile::encodeName(temp).constData(), &copy, SQLITE_OPEN_READWRITE, nullptr);
    if (rc == SQLITE_OK)
        rc = sqlite3_exec(copy, "PRAGMA synchronous=FULL", nullptr, nullptr, nullptr);
    if (rc == SQLITE_OK) {
        sqlite3_backup* job = sqlite3_backup_init(copy, "main", source, "main");
        if (!job) {
            rc = sqlite3_errcode(copy);
        } else {
            do {
                rc = sqlite3_backup_step(job, 256);
                if (rc == SQLITE_BUSY || rc == SQLITE_LOCKED)
                    sqlite3_sleep(20);
            } while (rc == SQLITE_OK || rc == SQLITE_BUSY || rc == SQLITE_LOCKED);
            const int finish = sqlite3_backup_finish(job);
            if (rc == SQLITE_DONE)
                rc = finish;
        }
    }
    OpenResult result;
    if (rc != SQLITE_OK)
        result = failure(DbError::Failed, describe(rc, copy));
    if (sqlite3_close(copy) != SQLITE_OK && result)
        result = failure(DbError::Failed, describe(SQLITE_IOERR, nullptr));
    // The rename does not replace a file that appeared meanwhile; the copy's folder is flushed.
    if (result && !FileOps::instance().rename(temp, target))
        result = failure(QFileInfo::exists(target) ? DbError::FileExists : DbError::Failed,
            QStringLiteral("Valmista kopiota ei voitu nimetä nimelle %1.").arg(target));
    if (!result)
        removeWithJournal(temp);
    return result;
}

QString safetyCopyName(const QString& databasePath, const QString& command, const QDateTime& when)
{
    QString slug;
    for (const QChar c : command.trimmed())
        slug += c.isLetterOrNumber() ? c : u'-';
    return QFileInfo(databasePath).completeBaseName() + QStringLiteral("-ennen-") + slug + u'-'
        + when.toString(QStringLiteral("yyyyMMdd-HHmmss")) + QStringLiteral(".mdb");
}

SafetyCopy safetyCopy(const QSqlDatabase& db, const QString& command)
{
    SafetyCopy copy;
    const QString folder = Paths::defaultBackupDir();
    if (!QDir().mkpath(folder) || !QFileInfo(folder).isDir()) {
        copy.result
            = failure(DbError::InvalidPath, QStringLiteral("Kansiota %1 ei voitu luoda.").arg(folder));
        return copy;
    }
    const QString name = safetyCopyName(db.databaseName(), command, QDateTime::currentDateTime());
    QString path = folder + name;
    for (int n = 2; QFileInfo::exists(path); ++n)
        path = folder + name.chopped(4) + u'-' + QString::number(n) + QStringLiteral(".mdb");
    copy.result = backup(db, path);
    if (copy.result)
        copy.path = path;
    return copy;
}

} // namespace DatabaseCopy
