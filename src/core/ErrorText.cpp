#include "ErrorText.h"

#include <cerrno>
#include <cstring>

#include <sqlite3.h>

namespace ErrorText {

namespace {

QString systemMeaning(int number)
{
    switch (number) {
    case ENOSPC:
    case EDQUOT:
        return QStringLiteral("Levyllä ei ole tilaa");
    case EFBIG:
        return QStringLiteral("Tiedosto on liian suuri kohteeseen");
    case EACCES:
    case EPERM:
        return QStringLiteral("Käyttöoikeus ei riitä");
    case EROFS:
        return QStringLiteral("Levy on kirjoitussuojattu");
    case EIO:
        return QStringLiteral("Levyn luku- tai kirjoitusvirhe");
    case ENOENT:
        return QStringLiteral("Tiedostoa tai kansiota ei löydy");
    case ENODEV:
    case ENXIO:
        return QStringLiteral("Laitetta ei löydy; onko muistitikku irrotettu?");
    case EBUSY:
        return QStringLiteral("Tiedosto on toisen ohjelman käytössä");
    case EEXIST:
        return QStringLiteral("Tiedosto on jo olemassa");
    case EISDIR:
        return QStringLiteral("Kohde on kansio");
    case ENAMETOOLONG:
        return QStringLiteral("Nimi on liian pitkä");
    case EXDEV:
        return QStringLiteral("Tiedostoa ei voi siirtää toiselle levylle");
    default:
        return QStringLiteral("Järjestelmävirhe (%1)").arg(QString::fromLocal8Bit(std::strerror(number)));
    }
}

QString engineMeaning(int code)
{
    switch (code & 0xFF) {
    case SQLITE_FULL:
        return QStringLiteral("Levyllä ei ole tilaa");
    case SQLITE_IOERR:
        return QStringLiteral("Levyn luku- tai kirjoitusvirhe");
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return QStringLiteral("Tietokanta on vioittunut");
    case SQLITE_CANTOPEN:
        return QStringLiteral("Tiedostoa ei voi avata tai luoda");
    case SQLITE_READONLY:
    case SQLITE_PERM:
        return QStringLiteral("Tiedostoon ei voi kirjoittaa");
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return QStringLiteral("Tietokanta on toisen ohjelman käytössä");
    case SQLITE_NOMEM:
        return QStringLiteral("Muisti ei riitä");
    default:
        return QStringLiteral("Tietokantavirhe");
    }
}

} // namespace

QString system(int number) { return QString::number(number) + QStringLiteral(": ") + systemMeaning(number); }

QString meaning(int number) { return systemMeaning(number); }

QString engine(int code, const QString& engineText)
{
    QString text = QString::number(code) + QStringLiteral(": ") + engineMeaning(code);
    if (!engineText.isEmpty())
        text += QStringLiteral(" (") + engineText + u')';
    return text;
}

} // namespace ErrorText
