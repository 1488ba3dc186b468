#include "Startup.h"

#include "DatabaseFile.h"
#include "Dialogs.h"
#include "FileOps.h"
#include "Paths.h"
#include "ProgramSettings.h"
#include "Schema.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QSqlDatabase>

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

QString Startup::caption(bool databaseOpen)
{
    QStringList parts { QStringLiteral("Vorkam") };
    if (databaseOpen) {
        parts.append(ProgramSettings::bookkeeping().Seurannimi);
        parts.append(QFileInfo(ProgramSettings::installation().Database).fileName());
    }
    return parts.join(QStringLiteral(" - "));
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
            QStringLiteral("Seuran valinta"), QStringLiteral("Database (*.mdb)"), start);
        if (!chosen.isEmpty()) {
            install.Database = chosen;
            if (!ProgramSettings::saveDatabase())
                dialogs.information(
                    QStringLiteral("Asetustiedostoon %1 ei voi kirjoittaa.").arg(Paths::iniFile()));
        }
    }

    // 5.–6. Open, check and upgrade.
    if (openAndCheck(result)) {
        QSqlDatabase db = QSqlDatabase::database(StartupConnection, false);
        const QStringList missing = Schema::missingCoreTables(db);
        if (!missing.isEmpty()) {
            dialogs.error(QStringLiteral("Tiedosto %1 ei ole Vorkamin tietokanta: siitä puuttuu taulu %2.")
                              .arg(install.Database, missing.first()));
        } else {
            const Schema::UpgradeResult upgrade = Schema::UpdateDatabase(db);
            result.upgraded = upgrade.ok;
            if (!upgrade.ok)
                dialogs.error(QStringLiteral("Tietokannan rakenteen päivitys ei onnistunut (vaihe %1):\n%2")
                                  .arg(upgrade.failedStep)
                                  .arg(upgrade.error));
            if (result.defaultTaken && !ProgramSettings::saveDatabase())
                dialogs.information(
                    QStringLiteral("Asetustiedostoon %1 ei voi kirjoittaa.").arg(Paths::iniFile()));
            ProgramSettings::loadBookkeeping(db, install.Database, today);
            result.databaseOpen = true;
        }
    }

    // 7. Caption; 8. the start-up's own connection is closed, windows use DBC from here on.
    result.caption = caption(result.databaseOpen);
    DatabaseFile::close(StartupConnection);
    return result;
}

bool Startup::openAndCheck(Result& result)
{
    Dialogs& dialogs = Dialogs::instance();
    InstallationSettings& install = ProgramSettings::installation();

    OpenResult opened;
    if (install.Database.isEmpty()) {
        opened = OpenResult { DbError::FileNotFound, QString() };
    } else {
        bool readOnly = false;
        if (DatabaseFile::isReadOnly(install.Database)) {
            dialogs.information(QStringLiteral("Tietokanta on kirjoitussuojatussa tilassa.\nEnnen avaamista "
                                               "Vorkamissa sen tulee olla kirjoitettavassa tilassa."));
            readOnly = true;
            if (dialogs.question(
                    QStringLiteral("Haluatko, että Vorkam muuttaa tietokannan kirjoitettavaan tilaan?"))) {
                if (FileOps::instance().makeWritable(install.Database))
                    readOnly = false;
                else
                    dialogs.information(
                        QStringLiteral("Kirjoitussuojauksen poistaminen ei jostain syystä onnistunut."));
            }
        }
        opened = DatabaseFile::open(install.Database, StartupConnection, readOnly);
    }

    for (;;) {
        switch (opened.error) {
        case DbError::None:
            return true;
        case DbError::JetFormat:
            dialogs.error(
                QStringLiteral("Tietokanta %1 on vanhassa Jet-muodossa, jota Vorkam ei voi avata "
                               "sellaisenaan.\nTietokanta on muunnettava Vorkamin muotoon ennen käyttöä. "
                               "Tiedostoa ei ole muutettu.")
                    .arg(install.Database));
            return false;
        case DbError::Damaged:
        case DbError::Failed:
            repair(install.Database, result);
            return false;
        case DbError::Unreadable:
            dialogs.information(
                QStringLiteral("Tietokantaa %1 ei voi lukea: käyttöoikeus puuttuu.").arg(install.Database));
            [[fallthrough]];
        case DbError::FileNotFound:
        case DbError::InvalidPath:
        case DbError::FileExists:
            dialogs.information(QStringLiteral("Tietokantaa ei löydy, korjaa asetuksista tietokannan nimi"));
            if (!dialogs.question(QStringLiteral("Yritetäänkö avata oletustietokanta?")))
                return false;
            install.Database = Paths::defaultDatabase();
            result.defaultTaken = true;
            // A missing default database asks again; No ends the loop.
            opened = DatabaseFile::open(install.Database, StartupConnection);
            break;
        }
    }
}

void Startup::repair(const QString& path, Result& result)
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
    if (!DatabaseFile::repairInto(path, repaired)) {
        dialogs.plain(
            QStringLiteral("Tietokannan korjaus ei onnistunut. Palauta tietokanta varmuuskopiolta ennen "
                           "kuin jatkat Vorkamin käyttöä."));
        return;
    }
    if (!ops.rename(path, old)) {
        dialogs.plain(QStringLiteral("Vioittuneen tietokannan uudelleen nimeäminen ei onnistu."));
        return;
    }
    if (!ops.rename(repaired, path))
        dialogs.plain(QStringLiteral("Korjatun tietokannan uudelleen nimeäminen ei onnistu."));
}
