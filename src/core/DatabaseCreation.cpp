#include "core/DatabaseCreation.h"

#include "core/DBC.h"
#include "core/DatabaseCopy.h"
#include "core/DatabaseFile.h"
#include "core/Dialogs.h"
#include "core/Paths.h"
#include "core/ProgramEnd.h"
#include "core/ProgramSettings.h"

#include <QDir>
#include <QFileInfo>
#include <QUuid>

#include <algorithm>

namespace {

const QString Stopped = QStringLiteral(" Toiminto keskeytetään.");
constexpr int MaxNameLength = 8;

// Characters no file name may hold here or on a memory stick's file system.
bool refusedCharacter(QChar c)
{
    return c.unicode() < 0x20 || c.unicode() == 0x7F || QStringView(u"/\\:*?\"<>|").contains(c);
}

// The first `count` characters, never half of a character written as two code units.
QString firstCharacters(const QString& text, int count)
{
    int units = 0;
    for (int seen = 0; units < text.size() && seen < count; ++seen)
        units += (text.at(units).isHighSurrogate() && units + 1 < text.size()) ? 2 : 1;
    return text.left(units);
}

OpenResult copyModel(const QString& model, const QString& target)
{
    const QString connection = QStringLiteral("vorkam_model_") + QUuid::createUuid().toString(QUuid::Id128);
    OpenResult result = DatabaseFile::open(model, connection, true);
    if (result)
        result = DatabaseCopy::backup(QSqlDatabase::database(connection, false), target);
    DatabaseFile::close(connection);
    return result;
}

} // namespace

namespace DatabaseCreation {

QString explanation(Source source)
{
    if (source == Source::Nykyinen)
        return QStringLiteral(
            "Tämä toiminto kopioi nykyisen tietokannan sellaisenaan uuden kirjanpidon pohjaksi.\n"
            "Jos tietokantaan on syötetty tositteita tai vientejä, ne voi kopioinnin jälkeen tyhjentää.\n"
            "Tietokanta / Muokkaa tietokantaa valikkokomennolla käyttäen ohjekirjan käskyjä.");
    QString text = QStringLiteral("Tämä toiminto luo uuden tietokannan kirjanpidon pohjaksi\n"
                                  "Tietokantaan luodaan valmiiksi tilit ja tuloslaskelma- ja tasemallit, "
                                  "joiden pohjalta kirjanpitoa voi lähteä tekemään.");
    switch (source) {
    case Source::Yhdistys:
    case Source::Lions:
        text += QStringLiteral("\nPohjaksi tulevaan tilikarttaan on syytä nimetä tilejä uudestaan valmiina "
                               "olevien tilinimien kuten 'Tulotili 1' osalta toimintaa kuvaaviksi.");
        break;
    case Source::AOY:
        text
            += QStringLiteral("\nPohjaksi tulevaan tilikarttaan voi tarvittaessa lisätä ja siitä voi poistaa "
                              "tilejä.");
        break;
    case Source::Metalli:
    case Source::Nykyinen:
        break;
    }
    return text;
}

QString modelFile(Source source)
{
    switch (source) {
    case Source::Yhdistys:
        return QStringLiteral("perusmalli.mdb");
    case Source::AOY:
        return QStringLiteral("aoymalli.mdb");
    case Source::Metalli:
        return QStringLiteral("metalli.mdb");
    case Source::Lions:
        return QStringLiteral("lions.mdb");
    case Source::Nykyinen:
        break;
    }
    return {};
}

Name checkName(const QString& typed)
{
    QString name = typed.trimmed();
    if (name.endsWith(QLatin1String(".mdb"), Qt::CaseInsensitive))
        name = name.chopped(4).trimmed();
    if (name.isEmpty())
        return { {}, QStringLiteral("Tietokannan nimi ei voi olla tyhjä.") + Stopped };
    // A name that would lead out of the data folder or that a file system refuses is told, not
    // made into a file somewhere else.
    const bool refused = name.startsWith(u'.') || name.contains(QLatin1String(".."))
        || std::any_of(name.cbegin(), name.cend(), refusedCharacter);
    if (refused)
        return { {},
            QStringLiteral(
                "Nimi %1 ei kelpaa tiedoston nimeksi: siinä ei voi olla merkkejä / \\ : * ? \" < > | "
                "eikä kahta pistettä peräkkäin, eikä se voi alkaa pisteellä.")
                    .arg(name)
                + Stopped };
    return { firstCharacters(name, MaxNameLength).trimmed(), {} };
}

bool run(Source source, const std::function<bool()>& beforeCopy)
{
    Dialogs& dialogs = Dialogs::instance();
    dialogs.information(explanation(source));

    const std::optional<QString> typed
        = dialogs.input(QStringLiteral("Anna uudelle tietokannalle nimi (max. 8 kirjainta)."), QString());
    if (!typed)
        return false;
    const Name checked = checkName(*typed);
    if (checked.name.isEmpty()) {
        dialogs.information(checked.message);
        return false;
    }

    const QString folder = Paths::dataDir();
    if (!QDir().mkpath(folder) || !QFileInfo(folder).isDir()) {
        dialogs.error(
            QStringLiteral("Kansiota %1 ei voitu luoda.").arg(QDir::toNativeSeparators(folder)) + Stopped);
        return false;
    }
    const QString target = folder + u'/' + checked.name + QStringLiteral(".mdb");
    if (QFileInfo::exists(target) || QFileInfo(target).isSymLink()) {
        dialogs.information(
            QStringLiteral("Nimi: ") + checked.name + QStringLiteral(" on jo käytössä.") + Stopped);
        return false;
    }

    const QString model = Paths::programDir() + QStringLiteral("/mallit/") + modelFile(source);
    if (source != Source::Nykyinen && !QFileInfo(model).isFile()) {
        dialogs.error(QStringLiteral("Mallitietokantaa %1 ei löydy.").arg(model) + Stopped);
        return false;
    }
    if (beforeCopy && !beforeCopy())
        return false;

    OpenResult copied;
    if (source == Source::Nykyinen) {
        const QSqlDatabase books = DBC::instance().AvaaDB();
        copied = books.isOpen() ? DatabaseCopy::backup(books, target)
                                : OpenResult { DbError::FileNotFound,
                                      QStringLiteral("Tietokantaa %1 ei voitu avata.")
                                          .arg(ProgramSettings::installation().Database) };
    } else {
        copied = copyModel(model, target);
    }
    if (!copied) {
        dialogs.error(QStringLiteral("Uutta tietokantaa %1 ei voitu tehdä.\n%2\nToiminto keskeytetään.")
                          .arg(target, copied.message));
        return false;
    }

    InstallationSettings& install = ProgramSettings::installation();
    const QString previous = install.Database;
    install.Database = target;
    if (!ProgramSettings::saveDatabase()) {
        install.Database = previous;
        dialogs.error(
            QStringLiteral("Uutta tietokantaa ei voitu ottaa käyttöön, koska asetustiedostoon %1 ei "
                           "voi kirjoittaa.\nUusi tietokanta on tallessa: %2")
                .arg(Paths::iniFile(), target));
        return false;
    }
    dialogs.information(QStringLiteral(
        "Mallitietokanta on kopioitu ja se tulee käyttöön, kun Vorkam seuraavan kerran käynnistetään."));
    dialogs.information(QStringLiteral("Vorkam suljetaan, koska tietokanta on vaihdettu."));
    DBC::instance().SuljeDB();
    ProgramEnd::request();
    return true;
}

} // namespace DatabaseCreation
