#include "core/FileOps.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

bool flushPath(const QString& path)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    int rc = ::fsync(fd);
    while (rc != 0 && errno == EINTR)
        rc = ::fsync(fd);
    const bool ok = rc == 0 || errno == EINVAL || errno == ENOTSUP || errno == EROFS;
    ::close(fd);
    return ok;
}

QString folderOf(const QString& path) { return QFileInfo(path).absolutePath(); }

bool renameOver(const QString& from, const QString& to)
{
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

FileOps defaultFileOps()
{
    FileOps ops;
    // A copy is written beside its target and renamed over it, so an existing target is
    // either replaced whole or left as it was (a full disk, a missing stick). Every step goes
    // through FileOps::instance(), so that a test sees the order.
    ops.copy = [](const QString& from, const QString& to) {
        const QFileInfo target(to);
        if (target.isDir() || !target.absoluteDir().exists())
            return false;
        const QString temp = to + QStringLiteral(".vorkam-") + QUuid::createUuid().toString(QUuid::Id128);
        if (!QFile::copy(from, temp) || !FileOps::instance().flush(temp) || !renameOver(temp, to)) {
            QFile::remove(temp);
            return false;
        }
        return FileOps::instance().flush(folderOf(to));
    };
    ops.rename = [](const QString& from, const QString& to) {
        if (!QFile::rename(from, to))
            return false;
        return FileOps::instance().flush(folderOf(to))
            && (folderOf(from) == folderOf(to) || FileOps::instance().flush(folderOf(from)));
    };
    ops.replace = [](const QString& from, const QString& to) {
        return FileOps::instance().flush(from) && renameOver(from, to)
            && FileOps::instance().flush(folderOf(to));
    };
    ops.flush = flushPath;
    ops.remove = [](const QString& path) { return QFile::remove(path); };
    ops.makeWritable = [](const QString& path) {
        QFile file(path);
        return file.setPermissions(file.permissions() | QFileDevice::WriteOwner | QFileDevice::WriteUser);
    };
    return ops;
}

FileOps g_ops = defaultFileOps();

} // namespace

FileOps& FileOps::instance() { return g_ops; }
void FileOps::resetToDefaults() { g_ops = defaultFileOps(); }
