#include "core/DatabaseCommands.h"

#include "core/DBC.h"
#include "core/DatabaseFile.h"
#include "core/Dialogs.h"
#include "core/FileOps.h"
#include "core/Paths.h"
#include "core/ProgramSettings.h"

#include <QDir>
#include <QFileInfo>

namespace DatabaseCommands {

QString workName(const QString& databasePath, QChar last)
{
    if (databasePath.isEmpty())
        return QString(last);
    return databasePath.left(databasePath.size() - 1) + last;
}

QString keptName(const QString& copy)
{
    const QFileInfo info(copy);
    const QString stem = info.path() + u'/' + info.completeBaseName() + u' '
        + info.lastModified().toString(QStringLiteral("yyyy-MM-dd HH.mm.ss"));
    const QString suffix = info.suffix().isEmpty() ? QString() : u'.' + info.suffix();
    QString name = stem + suffix;
    for (int n = 2; QFileInfo::exists(name); ++n)
        name = stem + QStringLiteral(" (%1)").arg(n) + suffix;
    return name;
}

bool backupAndReorganize()
{
    Dialogs& dialogs = Dialogs::instance();
    FileOps& ops = FileOps::instance();
    DBC::instance().SuljeDB();

    const QString path = ProgramSettings::installation().Database;
    const QString folder = ProgramSettings::installation().DatabaseBackup;
    dialogs.information(QStringLiteral("Aloitetaan tietokannan varmuuskopiointi ja uudelleenjärjestely.\n"
                                       "Varmista että kohde %1 on valmiina.\nKopiointi kestää hetken...")
                            .arg(folder));

    // The default folder is Vorkam's own and is made when missing; a folder the user named is
    // used as it stands, so a missing stick is reported instead of written into a new folder.
    if (folder == Paths::defaultBackupDir())
        QDir().mkpath(folder);
    // The folder is used as it stands: one without a trailing "/" is glued to the file name.
    const QString copyName = folder + path.mid(path.lastIndexOf(u'/') + 1);
    // An earlier copy in the folder is kept under the time it was made, never overwritten.
    QString kept;
    if (QFileInfo::exists(copyName)) {
        kept = keptName(copyName);
        if (!ops.rename(copyName, kept)) {
            dialogs.error(QStringLiteral("Edellistä varmuuskopiota %1 ei voitu säilyttää nimellä %2. "
                                         "Varmuuskopiota ei tehty.")
                              .arg(copyName, kept));
            return false;
        }
    }
    if (!QFileInfo(path).isFile() || !ops.copy(path, copyName)) {
        dialogs.error(QStringLiteral("Tietokantaa ei voida kopioida \nhakemistosta: %1\nhakemistoon: %2\n"
                                     "Tarkista asetuksista tietokanta ja varmistushakemistot!\n"
                                     "Yritä tämän jälkeen uudestaan.")
                          .arg(path, copyName));
        return false;
    }

    const QString compacted = workName(path, u'2');
    const QString previous = workName(path, u'3');
    if (QFileInfo::exists(compacted))
        ops.remove(compacted);
    const OpenResult compaction = DatabaseFile::compactInto(path, compacted);
    if (!compaction) {
        dialogs.error(QStringLiteral("Tietokannan uudelleenjärjestely ei onnistunut. Palauta tietokanta "
                                     "varmuuskopiolta ennen kuin jatkat Vorkamin käyttöä.\n")
            + compaction.message);
        return false;
    }

    // The previous file is a copy of the books, and the compacted copy takes their place in one
    // rename: killed at any moment, the books' name holds the old books or the compacted ones.
    if (!ops.copy(path, previous)) {
        dialogs.error(QStringLiteral("Tietokannan uudelleen nimeäminen ei onnistu."));
        return false;
    }
    if (!ops.replace(compacted, path)) {
        dialogs.error(QStringLiteral("Korjatun tietokannan uudelleen nimeäminen ei onnistu."));
        return false;
    }
    dialogs.information(QStringLiteral("Tietokannan varmuuskopiointi ja uudelleenjärjestely valmis.")
        + (kept.isEmpty() ? QString()
                          : QStringLiteral("\nEdellinen varmuuskopio säilyi nimellä %1.").arg(kept)));
    return true;
}

namespace {

bool stopRestore()
{
    return Dialogs::instance().question(QStringLiteral("Haluatko keskeyttää tietokannan palautuksen?"));
}

} // namespace

bool restoreFromBackup()
{
    Dialogs& dialogs = Dialogs::instance();
    DBC::instance().SuljeDB();
    const QString filter = QStringLiteral("Tietokanta (*.mdb)");

    QString source;
    while (source.isEmpty()) {
        source = dialogs.openFileName(
            QStringLiteral("Valitse palautettava tietokanta"), filter, QDir::homePath());
        if (source.isEmpty() && stopRestore())
            return false;
        if (source.isEmpty())
            continue;
        // Only a database Vorkam can open is restored; anything else would replace good books.
        const OpenResult seen = DatabaseFile::examine(source);
        if (!seen) {
            dialogs.error(
                QStringLiteral("Tiedostoa %1 ei voi palauttaa: se ei ole Vorkamin tietokanta tai se on "
                               "vioittunut.")
                    .arg(source));
            source.clear();
            if (stopRestore())
                return false;
        }
    }

    QString target;
    while (target.isEmpty()) {
        target = dialogs.saveFileName(QStringLiteral("Valitse palautettavan tietokannan kohde"), filter,
            ProgramSettings::installation().Database);
        if (!target.isEmpty()
            && QFileInfo(target).absoluteFilePath() == QFileInfo(source).absoluteFilePath()) {
            dialogs.information(QStringLiteral("Varmuuskopiota ei voi palauttaa itsensä päälle."));
            target.clear();
        } else if (!target.isEmpty() && QFileInfo::exists(target)
            && !dialogs.question(QStringLiteral("Tiedosto on jo olemassa, korvataanko varmuuskopiolla?"))) {
            target.clear();
        }
        if (target.isEmpty() && stopRestore())
            return false;
    }

    if (!FileOps::instance().copy(source, target)) {
        dialogs.error(QStringLiteral("Tietokannan palautus ei onnistunut:\n%1\n->\n%2").arg(source, target));
        return false;
    }
    ProgramSettings::installation().Database = target;
    if (!ProgramSettings::saveDatabase())
        dialogs.information(
            QStringLiteral("Palautetun tietokannan nimeä ei voitu tallentaa asetustiedostoon."));
    dialogs.information(
        QStringLiteral("Tietokanta on palautettu. Vorkam suljetaan, jotta palautettu tietokanta "
                       "otetaan käyttöön seuraavalla käynnistyksellä."));
    return true;
}

} // namespace DatabaseCommands
