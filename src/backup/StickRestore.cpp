#include "backup/StickRestore.h"

#include "backup/BackupStick.h"
#include "core/DBC.h"
#include "core/DatabaseFile.h"
#include "core/Dialogs.h"
#include "core/Paths.h"
#include "core/ProgramSettings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace StickRestore {

QString targetOf(const QString& copy) { return Paths::dataDir() + u'/' + QFileInfo(copy).fileName(); }

Outcome restore(const QString& copy, const VerifiedCopy::Progress& progress)
{
    Dialogs& dialogs = Dialogs::instance();
    DBC::instance().SuljeDB();

    const QString folder = Paths::dataDir();
    if (!QDir().mkpath(folder)) {
        dialogs.error(QStringLiteral("Kansiota %1 ei voitu tehdä.").arg(folder));
        return Outcome::Failed;
    }
    const QString target = targetOf(copy);
    if (!QFileInfo(copy).isFile()) {
        dialogs.error(QStringLiteral("Varmuuskopiota %1 ei löydy. Onko muistitikku irrotettu?").arg(copy));
        return Outcome::Failed;
    }
    if (QFileInfo(copy).canonicalFilePath() == QFileInfo(target).canonicalFilePath()) {
        dialogs.information(QStringLiteral("Varmuuskopiota ei voi palauttaa itsensä päälle."));
        return Outcome::Failed;
    }

    // Brought over and checked before anything is replaced.
    VerifiedCopy brought(copy, target);
    if (!brought.write(progress)) {
        dialogs.error(QStringLiteral("Varmuuskopion palautus ei onnistunut.\n") + brought.error());
        return Outcome::Failed;
    }
    QString why;
    if (!BackupStick::soundBooks(brought.staged(), &why)) {
        dialogs.error(QStringLiteral(
            "Varmuuskopiota %1 ei voi palauttaa: se ei ole Vorkamin tietokanta tai se on vioittunut.\n%2\n"
            "Mitään tiedostoa ei ole muutettu.")
                          .arg(copy, why));
        return Outcome::Failed;
    }

    if (QFileInfo::exists(target)
        && !dialogs.question(
            QStringLiteral("Palautus kirjoittaa yli olemassa olevan tiedoston, korvataanko tämä "
                           "tiedosto varmuuskopiolla?\n\n(%1)")
                .arg(target))) {
        dialogs.information(QStringLiteral("Palautus keskeytyi."));
        return Outcome::Cancelled;
    }

    if (!brought.commit()) {
        dialogs.error(QStringLiteral("Varmuuskopion palautus ei onnistunut.\n") + brought.error());
        return Outcome::Failed;
    }

    ProgramSettings::installation().Database = target;
    if (!ProgramSettings::saveDatabase())
        dialogs.information(
            QStringLiteral("Palautetun tietokannan nimeä ei voitu tallentaa asetustiedostoon %1.")
                .arg(Paths::iniFile()));
    dialogs.information(QStringLiteral("Tietokantaa on vaihdettu. Vorkam sammutetaan ja se tulee käynnistää "
                                       "uudestaan."));
    return Outcome::Restored;
}

} // namespace StickRestore
