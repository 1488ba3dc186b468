#include "OutputFile.h"

#include "ReportError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>
#include <cerrno>
#include <cstdio>
#include <cstring>

OutputFile::OutputFile(const QString& target)
    : m_target(QFileInfo(target).absoluteFilePath())
{
    const QFileInfo info(m_target);
    if (info.fileName().isEmpty() || info.isDir())
        throw ReportError(failure(target, QStringLiteral("nimi ei ole tiedoston nimi.")));
    if (!info.absoluteDir().exists())
        throw ReportError(failure(target, QStringLiteral("kansiota %1 ei ole.").arg(info.absolutePath())));
    QTemporaryFile file(info.absolutePath() + QStringLiteral("/.") + info.completeBaseName()
        + QStringLiteral("-XXXXXX.") + info.suffix());
    file.setAutoRemove(false);
    if (!file.open())
        throw ReportError(failure(target, file.errorString()));
    m_temporary = file.fileName();
}

OutputFile::~OutputFile()
{
    if (!m_committed)
        QFile::remove(m_temporary);
}

void OutputFile::commit()
{
    // rename() replaces the old file in one step.
    if (std::rename(QFile::encodeName(m_temporary).constData(), QFile::encodeName(m_target).constData()) != 0)
        throw ReportError(failure(m_target, QString::fromLocal8Bit(std::strerror(errno))));
    QFile::setPermissions(m_target,
        QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther);
    m_committed = true;
}

QString OutputFile::failure(const QString& target, const QString& reason)
{
    return QStringLiteral("Tiedostoa %1 ei voitu kirjoittaa: %2")
        .arg(QDir::toNativeSeparators(target), reason);
}
