#include "backup/StickRestore.h"

#include "backup/BackupStick.h"
#include "core/DBC.h"
#include "core/DatabaseFile.h"
#include "core/Dialogs.h"
#include "core/FileOps.h"
#include "core/JetConversion.h"
#include "core/Paths.h"
#include "core/ProgramSettings.h"

#include <QCursor>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QSaveFile>
#include <QTemporaryDir>

namespace StickRestore {

namespace {

const QString Failure = QStringLiteral("Varmuuskopion palautus ei onnistunut.\n");

// Asks before books already at `target` are replaced; false when the user keeps them.
bool overwriteAllowed(const QString& target)
{
    Dialogs& dialogs = Dialogs::instance();
    if (!QFileInfo::exists(target)
        || dialogs.question(
            QStringLiteral("Palautus kirjoittaa yli olemassa olevan tiedoston, korvataanko tämä "
                           "tiedosto varmuuskopiolla?\n\n(%1)")
                .arg(target)))
        return true;
    dialogs.information(QStringLiteral("Palautus keskeytyi."));
    return false;
}

// The restored books become the books of the installation, taken into use at the next start.
Outcome takenIntoUse(const QString& target)
{
    Dialogs& dialogs = Dialogs::instance();
    ProgramSettings::installation().Database = target;
    if (!ProgramSettings::saveDatabase())
        dialogs.information(
            QStringLiteral("Palautetun tietokannan nimeä ei voitu tallentaa asetustiedostoon %1.")
                .arg(Paths::iniFile()));
    dialogs.information(QStringLiteral("Tietokantaa on vaihdettu. Vorkam sammutetaan ja se tulee käynnistää "
                                       "uudestaan."));
    return Outcome::Restored;
}

// A copy in the old Jet format, checked and staged in `brought`, is converted as the start-up
// converts one: in a hidden folder beside the books and under their name, so that nothing is
// written beside them until the conversion has succeeded. The converted books then take the
// books' place through a checked copy; the old file stays beside them as NAME-jet.mdb and the
// conversion's report as NAME-muunnos.txt.
Outcome restoreJet(const QString& copy, const QString& target, VerifiedCopy& brought)
{
    Dialogs& dialogs = Dialogs::instance();
    const QString folder = QFileInfo(target).absolutePath();
    const QString kept = JetConversion::keptName(target);
    if (!dialogs.question(
            QStringLiteral("Varmuuskopio %1 on vanhassa muodossa. Muunnetaanko se palautettaessa "
                           "Vorkamin muotoon? Alkuperäinen tiedosto säilytetään nimellä %2.")
                .arg(copy, QDir::toNativeSeparators(kept)))) {
        dialogs.information(QStringLiteral("Palautus keskeytyi. Vanhan muotoista varmuuskopiota ei voi "
                                           "palauttaa muuntamatta. Mitään tiedostoa ei ole muutettu."));
        return Outcome::Cancelled;
    }

    QTemporaryDir work(folder + QStringLiteral("/.") + QFileInfo(target).fileName()
        + QStringLiteral(".vorkam-muunnos-XXXXXX"));
    const QString book = work.filePath(QFileInfo(target).fileName());
    // The staged copy moves into the work folder: nothing stays under its hidden name.
    if (!work.isValid() || !QFile::rename(brought.staged(), book)) {
        dialogs.error(Failure + QStringLiteral("Kansioon %1 ei voi kirjoittaa.").arg(folder));
        return Outcome::Failed;
    }
    brought.discard();

    const bool gui = qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
    if (gui)
        QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
    JetConversion::Result r = JetConversion().convert(book);
    if (gui)
        QGuiApplication::restoreOverrideCursor();
    if (!r.ok) {
        // The conversion speaks of the copy it was given: the user knows it by its place on the stick.
        dialogs.error(
            QStringLiteral("Varmuuskopion muuntaminen ei onnistunut.\n%1\nMitään tiedostoa ei ole muutettu.")
                .arg(QString(r.message).replace(book, copy).replace(work.path(), folder)));
        return Outcome::Failed;
    }

    VerifiedCopy converted(book, target);
    if (!converted.write()) {
        dialogs.error(Failure + converted.error());
        return Outcome::Failed;
    }
    if (!overwriteAllowed(target))
        return Outcome::Cancelled;
    FileOps& ops = FileOps::instance();
    if (!ops.rename(r.original, kept)) {
        dialogs.error(Failure
            + QStringLiteral("Alkuperäistä tiedostoa ei voitu tallentaa nimelle %1.")
                  .arg(QDir::toNativeSeparators(kept)));
        return Outcome::Failed;
    }
    if (!converted.commit()) {
        ops.remove(kept);
        dialogs.error(Failure + converted.error());
        return Outcome::Failed;
    }

    r.books = target;
    r.original = kept;
    r.reportFile = JetConversion::reportName(target);
    QSaveFile report(r.reportFile);
    if (!report.open(QIODevice::WriteOnly) || report.write((r.report() + u'\n').toUtf8()) < 0
        || !report.commit())
        r.reportFile.clear();
    dialogs.information(r.report() + QStringLiteral("\n\n")
        + (r.reportFile.isEmpty() ? QStringLiteral("Raporttia ei voitu tallentaa kirjanpidon viereen.")
                                  : QStringLiteral("Raportti on tallessa tiedostossa %1.")
                                        .arg(QDir::toNativeSeparators(r.reportFile))));
    return takenIntoUse(target);
}

} // namespace

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
        dialogs.error(Failure + brought.error());
        return Outcome::Failed;
    }
    if (DatabaseFile::examine(brought.staged()).error == DbError::JetFormat)
        return restoreJet(copy, target, brought);
    QString why;
    if (!BackupStick::soundBooks(brought.staged(), &why)) {
        dialogs.error(QStringLiteral(
            "Varmuuskopiota %1 ei voi palauttaa: se ei ole Vorkamin tietokanta tai se on vioittunut.\n%2\n"
            "Mitään tiedostoa ei ole muutettu.")
                          .arg(copy, why));
        return Outcome::Failed;
    }
    if (!overwriteAllowed(target))
        return Outcome::Cancelled;
    if (!brought.commit()) {
        dialogs.error(Failure + brought.error());
        return Outcome::Failed;
    }
    return takenIntoUse(target);
}

} // namespace StickRestore
