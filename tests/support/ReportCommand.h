#pragma once

#include <QFile>
#include <QProcess>
#include <QString>
#include <QStringList>

// vorkam_report run from the build as a user runs it: its exit code (-1 when it crashed) and
// what it wrote.
struct ReportCommand {
    int code = -1;
    QString out;
    QString err;

    static ReportCommand run(const QStringList& args)
    {
        QProcess p;
        p.start(QStringLiteral(VORKAM_BIN_DIR "/vorkam_report"), args);
        p.waitForFinished(120000);
        return { p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
            QString::fromLocal8Bit(p.readAllStandardOutput()),
            QString::fromLocal8Bit(p.readAllStandardError()) };
    }

    // A writable copy of a file from the program folder ("demo1.mdb") at `target`.
    static bool copyBuilt(const QString& relative, const QString& target)
    {
        return QFile::copy(QStringLiteral(VORKAM_BIN_DIR "/") + relative, target)
            && QFile::setPermissions(target, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    }
};
