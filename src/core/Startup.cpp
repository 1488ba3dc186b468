#include "core/Startup.h"

#include "core/DBC.h"
#include "core/DatabaseFile.h"
#include "core/Dialogs.h"
#include "core/FileOps.h"
#include "core/JetConversion.h"
#include "core/Paths.h"
#include "core/ProgramSettings.h"
#include "core/Schema.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QSqlDatabase>
#include <algorithm>

namespace {

const QString StartupConnection = QStringLiteral("vorkam_startup");

enum class OpenOutcome { Open, Retry, Stop };

} // namespace

Startup::Startup()
    : formatCurrency([] { return QLocale::system().toCurrencyString(1234.5); })
{
}

QString Startup::currencyWarning()
{
    return QStringList {
        QStringLiteral(
            "Windowsin kansallisuus / maakohtaisissa asetuksissa on valuuttatunnuksena vielä 'mk'."),
        QStringLiteral("Vorkam ja monet muut ohjelmat käyttävät tätä asetusta näytöllä ja tulosteilla."),
        QStringLiteral("1. Avaa Käynnistä -valikosta Ohjauspaneeli (Control Panel)."),
        QStringLiteral("2. Avaa Kansallisuus (tai Maakohtaiset) asetukset (Regional and Language Options)."),
        QStringLiteral("3. Avaa Valuutta välilehti (Currency)."),
        QStringLiteral("4. Vaihda valuuttatunnukseksi € ja hyväksy muutos."),
        QStringLiteral("Yksityiskohdat vaihtelevat eri Windows versioissa."),
        QStringLiteral("Lisätietoja asiasta löydät Windowsin käyttöohjeista."),
    }
        .join(u'\n');
}

QString Startup::caption(bool databaseOpen, bool readOnly)
{
    QStringList parts { QStringLiteral("Vorkam") };
    if (databaseOpen) {
        parts.append(ProgramSettings::bookkeeping().Seurannimi);
        parts.append(QFileInfo(ProgramSettings::installation().Database).fileName());
    }
    return parts.join(QStringLiteral(" - ")) + (readOnly ? QStringLiteral(" (vain luku)") : QString());
}

Startup::Result Startup::run()
{
    Dialogs& dialogs = Dialogs::instance();
    Result result;

    // 2. A currency symbol still in marks.
    if (formatCurrency().toLower().contains(QLatin1String("mk")))
        dialogs.information(currencyWarning());

    // 3. Installation settings.
    const QString iniProblem = ProgramSettings::loadInstallation();
    if (!iniProblem.isEmpty())
        dialogs.information(iniProblem);
    InstallationSettings& install = ProgramSettings::installation();

    // 4. The association choice.
    if (install.MultiDb) {
        const QString current = install.Database;
        const QString start = current.contains(QLatin1String("mdb")) ? current : QDir(current).absolutePath();
        const QString chosen = dialogs.openFileName(
            QStringLiteral("Seuran valinta"), QStringLiteral("Tietokanta (*.mdb)"), start);
        if (!chosen.isEmpty()) {
            install.Database = chosen;
            if (!ProgramSettings::saveDatabase())
                dialogs.information(
                    QStringLiteral("Asetustiedostoon %1 ei voi kirjoittaa.").arg(Paths::iniFile()));
        }
    }

    // 5.–6. Open, check and upgrade.
    if (openAndCheck(install.Database, StartupConnection, true, result)) {
        QSqlDatabase db = QSqlDatabase::database(StartupConnection, false);
        // Books open for reading only are not changed, and a repaired file is upgraded at the
        // next start.
        if (!result.readOnly && !result.repairedOpen) {
            const Schema::UpgradeResult upgrade = Schema::UpdateDatabase(db);
            result.upgraded = upgrade.ok;
            if (!upgrade.ok)
                dialogs.error(QStringLiteral("Tietokannan rakenteen päivitys ei onnistunut (vaihe %1).\n%2")
                                  .arg(upgrade.failedStep)
                                  .arg(upgrade.error));
        }
        if (result.defaultTaken && !ProgramSettings::saveDatabase())
            dialogs.information(
                QStringLiteral("Asetustiedostoon %1 ei voi kirjoittaa.").arg(Paths::iniFile()));
        ProgramSettings::loadBookkeeping(db, install.Database, today);
        result.databaseOpen = true;
    }

    // 7. Caption; 8. the start-up's own connection is closed, windows use DBC from here on. The
    // file has been checked in this run: DBC opens it without checking it again.
    result.caption = caption(result.databaseOpen, result.readOnly);
    DatabaseFile::close(StartupConnection);
    DBC::instance().setMode(result.databaseOpen ? install.Database : QString(), result.readOnly);
    return result;
}

bool Startup::openAndCheck(QString& path, const QString& connection, bool offerDefault, Result& result)
{
    Dialogs& dialogs = Dialogs::instance();
    if (!openFile(path, connection, offerDefault, result))
        return false;
    const QStringList missing = Schema::missingCoreTables(QSqlDatabase::database(connection, false));
    if (!missing.isEmpty()) {
        dialogs.error(QStringLiteral("Tiedosto %1 ei ole Vorkamin tietokanta: siitä puuttuu taulu %2.")
                          .arg(path, missing.first()));
        return false;
    }
    return true;
}

void Startup::provideDemo(QString& path, Result& result)
{
    const QString demo = Paths::programDemo();
    const QString own = Paths::defaultDatabase();
    const QFileInfo shipped(demo);
    // Settings of an older start may still name the program's own demo: its folder is never
    // written to, so the user's copy takes its place.
    if (!path.isEmpty() && shipped.exists()
        && QFileInfo(path).canonicalFilePath() == shipped.canonicalFilePath()) {
        path = own;
        result.defaultTaken = true;
    }
    if (path != own || QFileInfo::exists(own) || !shipped.isFile())
        return;
    FileOps& ops = FileOps::instance();
    if (!QDir().mkpath(QFileInfo(own).absolutePath()) || !ops.copy(demo, own)) {
        Dialogs::instance().information(
            QStringLiteral("Esimerkkiyhdistyksen kirjanpitoa ei voi kopioida tiedostoksi %1.\n"
                           "Tarkista, että kansioon voi kirjoittaa ja levyllä on tilaa.")
                .arg(own));
        return;
    }
    // An installed demo may be read-only; the user's copy is the user's to change.
    ops.makeWritable(own);
}

bool Startup::openFile(QString& path, const QString& connection, bool offerDefault, Result& result)
{
    Dialogs& dialogs = Dialogs::instance();
    OpenResult opened;
    provideDemo(path, result);
    if (path.isEmpty()) {
        opened = OpenResult { DbError::FileNotFound, QString() };
    } else if (DatabaseFile::isJetFile(path)) {
        // An old-format file is only read, by its conversion: whether it may be written to
        // does not matter here.
        opened = DatabaseFile::examine(path);
    } else {
        if (DatabaseFile::isReadOnly(path)) {
            dialogs.information(QStringLiteral("Tietokanta on kirjoitussuojatussa tilassa.\nEnnen avaamista "
                                               "Vorkamissa sen tulee olla kirjoitettavassa tilassa."));
            result.readOnly = true;
            if (dialogs.question(
                    QStringLiteral("Haluatko, että Vorkam muuttaa tietokannan kirjoitettavaan tilaan?"))) {
                if (FileOps::instance().makeWritable(path))
                    result.readOnly = false;
                else
                    dialogs.information(
                        QStringLiteral("Kirjoitussuojauksen poistaminen ei jostain syystä onnistunut."));
            }
        } else if (DatabaseFile::folderReadOnly(path)) {
            // The engine writes its journal beside the file: books in a folder it may not write
            // to can only be read.
            dialogs.information(
                QStringLiteral("Tietokannan kansioon ei voi kirjoittaa, joten kirjanpito avataan "
                               "vain luettavaksi:\n%1")
                    .arg(QFileInfo(path).absolutePath()));
            result.readOnly = true;
        }
        opened = DatabaseFile::open(path, connection, result.readOnly);
    }

    for (;;) {
        switch (opened.error) {
        case DbError::None:
            return true;
        case DbError::JetFormat:
            if (!convertJetFile(path, result))
                return false;
            opened = DatabaseFile::open(path, connection);
            break;
        case DbError::Damaged:
        case DbError::Failed:
            // A file that may not be changed is not repaired in place either.
            if (result.readOnly) {
                dialogs.error(
                    QStringLiteral("Tietokanta %1 on vioittunut, eikä sitä voi korjata, koska siihen ei "
                                   "voi kirjoittaa.\n%2")
                        .arg(path, opened.message));
                return false;
            }
            return repair(path, connection, result);
        case DbError::Unreadable:
            dialogs.information(
                QStringLiteral("Tietokantaa %1 ei voi lukea: käyttöoikeus puuttuu.").arg(path));
            [[fallthrough]];
        case DbError::FileNotFound:
        case DbError::InvalidPath:
        case DbError::FileExists:
            dialogs.information(QStringLiteral("Tietokantaa ei löydy, korjaa asetuksista tietokannan nimi"));
            if (!offerDefault || !dialogs.question(QStringLiteral("Yritetäänkö avata oletustietokanta?")))
                return false;
            path = Paths::defaultDatabase();
            result.defaultTaken = true;
            result.readOnly = false;
            provideDemo(path, result);
            // A missing default database asks again; No ends the loop.
            opened = DatabaseFile::open(path, connection);
            break;
        }
    }
}

bool Startup::convertJetFile(const QString& path, Result& result)
{
    switch (JetConversion::offer(path)) {
    case JetConversion::Outcome::Converted:
        // The converted book is a new file in a folder Vorkam may write to.
        result.readOnly = false;
        result.converted = true;
        return true;
    case JetConversion::Outcome::Declined:
        Dialogs::instance().error(
            QStringLiteral("Tietokanta %1 on vanhassa Jet-muodossa, jota Vorkam ei voi avata "
                           "sellaisenaan.\nTietokanta on muunnettava Vorkamin muotoon ennen käyttöä. "
                           "Tiedostoa ei ole muutettu.")
                .arg(path));
        return false;
    case JetConversion::Outcome::Failed:
        break;
    }
    return false;
}

bool Startup::repair(const QString& path, const QString& connection, Result& result)
{
    Dialogs& dialogs = Dialogs::instance();
    FileOps& ops = FileOps::instance();
    result.repaired = true;
    dialogs.plain(
        QStringLiteral("Tietokanta on vioittunut edellisen käyttökerran lopetuksen yhteydessä, yritän "
                       "korjata tietokannan. Odota hetki."));
    const QString repaired = path + u'2';
    const QString old = path + QStringLiteral("OLD");
    // A leftover copy of an earlier failed repair is only a copy: the damaged original is kept.
    if (QFileInfo::exists(repaired) && !QFileInfo(repaired).isDir())
        ops.remove(repaired);
    const DatabaseFile::RepairResult repair = DatabaseFile::repairInto(path, repaired);
    if (!repair) {
        dialogs.plain(
            QStringLiteral("Tietokannan korjaus ei onnistunut. Palauta tietokanta varmuuskopiolta ennen "
                           "kuin jatkat Vorkamin käyttöä."));
        // What the repair found is told, so the user knows what the damaged file still holds.
        const bool foundAnything = std::any_of(repair.counts.begin(), repair.counts.end(),
            [](const DatabaseFile::TableCount& c) { return c.before || c.after > 0; });
        if (foundAnything)
            dialogs.information(QStringLiteral("%1\nVioittunut tiedosto on jätetty ennalleen: %2\n\n%3")
                                    .arg(repair.result.message, path, repair.report()));
        return false;
    }
    // The damaged file is kept as a copy under its OLD name, and the repaired one takes its place
    // in one rename: stopped at any moment, the books' name holds the damaged or the repaired
    // books, never nothing. An OLD file of an earlier repair is never replaced.
    if (QFileInfo::exists(old) || !ops.copy(path, old)) {
        dialogs.plain(QStringLiteral("Vioittuneen tietokannan uudelleen nimeäminen ei onnistu."));
        return false;
    }
    if (!ops.replace(repaired, path)) {
        dialogs.plain(QStringLiteral("Korjatun tietokannan uudelleen nimeäminen ei onnistu."));
        return false;
    }
    const OpenResult opened = DatabaseFile::open(path, connection);
    if (!opened) {
        dialogs.error(
            QStringLiteral("Korjattua tietokantaa %1 ei voitu avata.\n%2").arg(path, opened.message));
        return false;
    }
    result.repairedOpen = true;
    dialogs.information(
        QStringLiteral("Tietokanta korjattiin. Vioittunut alkuperäinen on tallessa nimellä %1.\n\n%2\n\n%3")
            .arg(old, repair.report(),
                repair.lostRows()
                    ? QStringLiteral("Kaikkea ei saatu talteen: tarkista kirjanpito ja palauta tarvittaessa "
                                     "varmuuskopio.")
                    : QStringLiteral("Kaikki rivit saatiin talteen. Tarkista silti kirjanpito ennen kuin "
                                     "jatkat.")));
    return true;
}
