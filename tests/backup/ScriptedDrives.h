#pragma once

#include "backup/Drives.h"

#include <QDir>
#include <QTemporaryDir>

// Volumes for tests, installed as the computer's list while this lives: each "stick" is a folder
// of its own. Tests change `list` to fill, protect or pull out a stick.
class ScriptedDrives final : public Drives {
public:
    ScriptedDrives() { Drives::install(this); }
    ~ScriptedDrives() override { Drives::install(nullptr); }

    // A ready volume in a new folder, listed after the ones added before it; returns its folder.
    QString add(const QString& label, bool removable = true, qint64 freeBytes = qint64(1) << 30)
    {
        const QString folder = m_root.filePath(QStringLiteral("media%1").arg(list.size()));
        QDir().mkpath(folder);
        list.append({ folder, label, true, removable, false, freeBytes }); // ready, not read-only
        return folder;
    }
    bool supported() const override { return isSupported; }
    QList<Volume> volumes() const override { return list; }

    QList<Volume> list;
    bool isSupported = true;

private:
    QTemporaryDir m_root;
};
