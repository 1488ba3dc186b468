#include "core/ErrorText.h"

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

QString technical(const QString& text)
{
    static const std::pair<const char*, const char*> known[] = {
        { "database disk image is malformed", "Tietokanta on vioittunut." },
        { "is not a database", "Tiedosto ei ole tietokanta tai se on vioittunut." },
        { "database or disk is full", "Levyllä ei ole tilaa." },
        { "No space left on device", "Levyllä ei ole tilaa." },
        { "attempt to write a readonly database", "Tietokantaan ei voi kirjoittaa: se on vain luettavissa." },
        { "Read-only file system", "Levy on kirjoitussuojattu." },
        { "database is locked", "Tietokanta on toisen ohjelman käytössä." },
        { "disk I/O error", "Levyn luku- tai kirjoitusvirhe." },
        { "unable to open database file", "Tietokantatiedostoa ei voi avata." },
        { "Permission denied", "Käyttöoikeus ei riitä." },
        { "No such file or directory", "Tiedostoa tai kansiota ei löydy." },
        { "out of memory", "Muisti ei riitä." },
        { "interrupted", "Toiminto keskeytettiin." },
    };
    if (text.trimmed().isEmpty())
        return {};
    for (const auto& [english, finnish] : known)
        if (text.contains(QLatin1String(english), Qt::CaseInsensitive))
            return QString::fromUtf8(finnish);
    return QStringLiteral("Tekninen tieto: ") + text.trimmed();
}

QString system(int number) { return QString::number(number) + QStringLiteral(": ") + systemMeaning(number); }

QString meaning(int number) { return systemMeaning(number); }

QString engine(int code, const QString& engineText)
{
    // A code Vorkam knows is told in Finnish alone; another keeps the engine's words.
    const QString meaning = engineMeaning(code);
    QString text = QString::number(code) + QStringLiteral(": ") + meaning;
    if (!engineText.isEmpty() && meaning == engineMeaning(SQLITE_ERROR))
        text += u'\n' + technical(engineText);
    return text;
}

} // namespace ErrorText
