#pragma once

#include "backup/Drives.h"

#include <QDir>
#include <QTemporaryDir>

// Volumes for tests: each "stick" is a folder with a label, a removable flag, readiness and a
// free-space figure. Installs itself as the computer's list of volumes while it lives.
class ScriptedDrives final : public Drives {
public:
    ScriptedDrives() { Drives::install(this); }
    ~ScriptedDrives() override { Drives::install(nullptr); }
    ScriptedDrives(const ScriptedDrives&) = delete;
    ScriptedDrives& operator=(const ScriptedDrives&) = delete;

    // A new volume in its own folder, listed after the ones added before it; returns its folder.
    QString add(
        const QString& label, bool removable = true, qint64 freeBytes = qint64(1) << 30, bool ready = true)
    {
        Volume v;
        v.mountPoint = m_root.path() + QStringLiteral("/media") + QString::number(m_volumes.size());
        QDir().mkpath(v.mountPoint);
        v.label = label;
        v.removable = removable;
        v.freeBytes = freeBytes;
        v.ready = ready;
        m_volumes.append(v);
        return v.mountPoint;
    }
    Volume& volume(int i) { return m_volumes[i]; }
    // The stick is pulled out: the volume goes, its empty mount folder stays behind.
    void pullOut(int i) { m_volumes.removeAt(i); }

    bool supported() const override { return m_supported; }
    QList<Volume> volumes() const override { return m_volumes; }
    bool m_supported = true;

private:
    QTemporaryDir m_root;
    QList<Volume> m_volumes;
};
