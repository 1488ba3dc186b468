#include "backup/SystemDrives.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

#include <blkid/blkid.h>

#include <algorithm>

namespace {

QByteArray firstLine(const QString& file)
{
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.readLine().trimmed() : QByteArray();
}

} // namespace

SystemDrives::SystemDrives(const QString& blockDevices)
    : m_blockDevices(blockDevices)
{
}

bool SystemDrives::supported() const { return QFileInfo(m_blockDevices).isDir(); }

bool SystemDrives::removable(const QString& device) const
{
    if (!device.startsWith(QLatin1String("/dev/")))
        return false;
    // /dev/disk/by-uuid/… and /dev/mapper/… lead to the kernel's own name.
    const QString real = QFileInfo(device).canonicalFilePath();
    const QString name = QFileInfo(real.isEmpty() ? device : real).fileName();
    const QFileInfo entry(m_blockDevices + u'/' + name);
    if (!entry.exists())
        return false;
    // A partition's folder lies inside its disk's folder; the disk carries the flags.
    QString disk = entry.canonicalFilePath();
    if (QFileInfo::exists(disk + QStringLiteral("/partition")))
        disk = QFileInfo(disk).absolutePath();
    if (firstLine(disk + QStringLiteral("/removable")) == "1")
        return true;
    // Many USB disks and card readers call themselves fixed, yet they are unplugged all the same.
    if (disk.contains(QLatin1String("/usb")))
        return true;
    return QFileInfo(disk).fileName().startsWith(QLatin1String("mmcblk"))
        && firstLine(disk + QStringLiteral("/device/type")) == "SD";
}

QString SystemDrives::labelOf(const QString& device)
{
    blkid_probe probe = blkid_new_probe_from_filename(QFile::encodeName(device).constData());
    if (!probe)
        return {};
    blkid_probe_enable_superblocks(probe, 1);
    blkid_probe_set_superblocks_flags(probe, BLKID_SUBLKS_LABEL);
    QString label;
    const char* value = nullptr;
    if (blkid_do_safeprobe(probe) == 0 && blkid_probe_lookup_value(probe, "LABEL", &value, nullptr) == 0
        && value)
        label = QString::fromUtf8(value);
    blkid_free_probe(probe);
    return label;
}

QList<Volume> SystemDrives::volumes() const
{
    QList<Volume> result;
    for (const QStorageInfo& storage : QStorageInfo::mountedVolumes()) {
        Volume v;
        v.mountPoint = storage.rootPath();
        v.ready = storage.isValid() && storage.isReady();
        v.readOnly = storage.isReadOnly();
        v.freeBytes = std::max<qint64>(0, storage.bytesAvailable());
        const QString device = QString::fromLocal8Bit(storage.device());
        v.removable = removable(device);
        v.label = storage.name();
        // Without the desktop's device manager the label is not published; the device tells it
        // to those who may read it.
        if (v.label.isEmpty() && device.startsWith(QLatin1String("/dev/")))
            v.label = labelOf(device);
        result.append(v);
    }
    std::stable_sort(result.begin(), result.end(),
        [](const Volume& a, const Volume& b) { return a.mountPoint < b.mountPoint; });
    return result;
}
