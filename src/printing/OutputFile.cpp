#include "printing/OutputFile.h"

#include "core/ErrorText.h"
#include "printing/ReportError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>
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
    if (!file.open()) {
        const int error = errno;
        throw ReportError(failure(target, reason(error)));
    }
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
        throw ReportError(failure(m_target, reason(errno)));
    QFile::setPermissions(m_target,
        QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther);
    m_committed = true;
}

QString OutputFile::failure(const QString& target, const QString& reason)
{
    return QStringLiteral("Tiedostoa %1 ei voitu kirjoittaa: %2")
        .arg(QDir::toNativeSeparators(target), reason);
}

QString OutputFile::reason(int error)
{
    // What to do about it, after the system's reason in Finnish.
    QString advice;
    switch (error) {
    case ENOSPC:
    case EDQUOT:
        advice = QStringLiteral("Vapauta levyltä tilaa tai tallenna toiseen paikkaan.");
        break;
    case EACCES:
    case EPERM:
    case EROFS:
        advice = QStringLiteral("Valitse kansio, johon saat kirjoittaa.");
        break;
    case EBUSY:
    case ETXTBSY:
        advice = QStringLiteral("Sulje se ja yritä uudelleen.");
        break;
    default:
        break;
    }
    const QString text = ErrorText::meaning(error) + u'.';
    return advice.isEmpty() ? text : text + u' ' + advice;
}

QString OutputFile::writeFailure(const QString& fallback) const
{
    const QString folder = QFileInfo(m_target).absolutePath();
    QStorageInfo storage(folder);
    storage.refresh();
    // A library that gives up on a full disk leaves less room than one more page needs.
    if (storage.isValid() && storage.bytesAvailable() >= 0 && storage.bytesAvailable() < 1024 * 1024)
        return reason(ENOSPC);
    if (storage.isValid() && storage.isReadOnly())
        return reason(EROFS);
    if (!QFileInfo(folder).isWritable())
        return reason(EACCES);
    return fallback;
}
