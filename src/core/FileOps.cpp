#include "core/FileOps.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <cstdio>

namespace {

FileOps defaultFileOps()
{
    FileOps ops;
    // A copy is written beside its target and renamed over it, so an existing target is
    // either replaced whole or left as it was (a full disk, a missing stick).
    ops.copy = [](const QString& from, const QString& to) {
        const QFileInfo target(to);
        if (target.isDir() || !target.absoluteDir().exists())
            return false;
        const QString temp = to + QStringLiteral(".vorkam-") + QUuid::createUuid().toString(QUuid::Id128);
        if (!QFile::copy(from, temp)) {
            QFile::remove(temp);
            return false;
        }
        if (std::rename(QFile::encodeName(temp).constData(), QFile::encodeName(to).constData()) != 0) {
            QFile::remove(temp);
            return false;
        }
        return true;
    };
    ops.rename = [](const QString& from, const QString& to) { return QFile::rename(from, to); };
    ops.replace = [](const QString& from, const QString& to) {
        return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
    };
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
