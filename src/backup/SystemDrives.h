#pragma once

#include "backup/Drives.h"

// The mounted volumes of this computer: Qt's storage information, the kernel's removable flag
// of each volume's disk, and the file system's label read from the device when the desktop has
// not published it.
class SystemDrives final : public Drives {
public:
    // `blockDevices` is the kernel's list of block devices; tests give a folder of their own.
    explicit SystemDrives(const QString& blockDevices = QStringLiteral("/sys/class/block"));

    bool supported() const override;
    // Sorted by mount point.
    QList<Volume> volumes() const override;

    // Whether the disk of `device` (/dev/sdb1) can be unplugged: its removable flag, a disk on
    // a USB bus, or an SD card.
    bool removable(const QString& device) const;
    // The label of the file system on `device`, read from the device itself; empty when it has
    // none or cannot be read.
    static QString labelOf(const QString& device);

private:
    QString m_blockDevices;
};
