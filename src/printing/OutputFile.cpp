#include "OutputFile.h"

#include "ReportError.h"

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
    switch (error) {
    case ENOSPC:
    case EDQUOT:
        return QStringLiteral("levy on täynnä. Vapauta levyltä tilaa tai tallenna toiseen paikkaan.");
    case EACCES:
    case EPERM:
        return QStringLiteral("kansioon ei ole kirjoitusoikeutta. Valitse toinen kansio.");
    case EROFS:
        return QStringLiteral("levy on kirjoitussuojattu. Valitse toinen paikka.");
    case ENOENT:
    case ENOTDIR:
        return QStringLiteral("kansiota ei ole.");
    case EBUSY:
    case ETXTBSY:
        return QStringLiteral("tiedosto on toisen ohjelman käytössä. Sulje se ja yritä uudelleen.");
    case EIO:
        return QStringLiteral("levyn käsittely epäonnistui. Onko muistitikku irrotettu?");
    default:
        break;
    }
    return QStringLiteral("järjestelmä ei sallinut kirjoittamista.\n")
        + QString::fromLocal8Bit(std::strerror(error));
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
