#include "backup/StickBackup.h"

#include "backup/BackupStick.h"
#include "core/DBC.h"
#include "core/DatabaseFile.h"
#include "core/ErrorText.h"
#include "core/FileOps.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

namespace {

// The compacted file over the books, flushed before and its folder after (FileOps::replace).
int renameFile(const QString& from, const QString& to)
{
    errno = 0;
    return FileOps::instance().replace(from, to) ? 0 : (errno != 0 ? errno : EIO);
}

int makeTemporaryName(const QString& folder, const QString& prefix, QString* name)
{
    QByteArray pattern = QFile::encodeName(folder + u'/' + prefix + QStringLiteral("XXXXXX"));
    const int fd = ::mkostemp(pattern.data(), O_CLOEXEC);
    if (fd < 0)
        return errno;
    ::close(fd);
    // The compaction writes a file that does not exist yet: the name is kept, the file is not.
    std::remove(pattern.constData());
    *name = QFile::decodeName(pattern);
    return 0;
}

// The engine's check of a database file, without changing it.
OpenResult checkDatabase(const QString& path)
{
    const QString connection = QStringLiteral("vorkam_check_") + QUuid::createUuid().toString(QUuid::Id128);
    const OpenResult result = DatabaseFile::open(path, connection, true, true);
    DatabaseFile::close(connection);
    return result;
}

int engineCode(const OpenResult& result)
{
    if (result.code != 0)
        return result.code;
    return result.error == DbError::Damaged ? SQLITE_NOTADB : SQLITE_CANTOPEN;
}

} // namespace

StickBackup::StickBackup(const QString& books)
    : renameOver(renameFile)
    , temporaryName(makeTemporaryName)
    , m_books(books)
{
}

bool StickBackup::booksExist() const { return !m_books.isEmpty() && QFileInfo(m_books).isFile(); }

qint64 StickBackup::booksSize() const { return booksExist() ? QFileInfo(m_books).size() : 0; }

StickBackup::Found StickBackup::find()
{
    const std::optional<Volume> found = BackupStick::find();
    m_found = found.has_value();
    m_stick = found.value_or(Volume());
    if (!m_found)
        return Found::NotFound;
    return m_stick.freeBytes > booksSize() ? Found::Ready : Found::NoSpace;
}

StickBackup::Copied StickBackup::copy(const VerifiedCopy::Progress& progress)
{
    Copied result;
    if (!booksExist()) {
        result.message = QStringLiteral("Kopioitavaa tiedostoa ei löydy.");
        return result;
    }
    // A stick pulled out leaves its mount point behind as an empty folder on the computer's own
    // disk: a copy there would look like a backup and be none.
    const std::optional<Volume> stick = m_found ? BackupStick::stillThere(m_stick.mountPoint) : std::nullopt;
    if (!stick) {
        m_found = false;
        result.stickLost = true;
        result.message = BackupStick::lostMessage();
        return result;
    }
    if (stick->readOnly) {
        result.message
            = QStringLiteral("Muistitikulle ei voi kirjoittaa: se on kirjoitussuojattu tai liitetty "
                             "vain luettavaksi. Poista kirjoitussuojaus ja yritä uudelleen.");
        return result;
    }

    if (stick->freeBytes <= booksSize()) {
        result.message = QStringLiteral("Muistitikun vapaa tila ei riitä.");
        return result;
    }

    // The books are copied as a closed file, whole.
    DBC::instance().SuljeDB();
    const QString fileName = QFileInfo(m_books).fileName();
    const QString day = BackupStick::dayName(today);
    const QString folder = BackupStick::dayFolder(stick->mountPoint, day);
    errno = 0;
    if (!QDir().mkpath(folder)) {
        const int error = errno ? errno : EIO;
        result.message = QStringLiteral("Kansiota %1 ei voitu tehdä muistitikulle.\n%2")
                             .arg(folder, ErrorText::system(error));
        return result;
    }
    VerifiedCopy::removeLeftovers(folder, fileName);

    const QString target = BackupStick::copyPath(stick->mountPoint, day, fileName);
    VerifiedCopy copy(m_books, target);
    if (!copy.write(progress)) {
        result.message = QStringLiteral("Kopiointi muistitikulle ei onnistunut.\n") + copy.error();
        return result;
    }
    QString fault;
    if (!BackupStick::soundBooks(copy.staged(), &fault)) {
        result.message
            = QStringLiteral("Muistitikulle kopioitu tietokanta ei läpäissyt tarkistusta, joten kopiota ei "
                             "tallennettu. Tietokanta voi olla vioittunut: sulje Vorkam ja käynnistä se "
                             "uudelleen, jolloin tietokanta tarkistetaan.\n")
            + fault;
        return result;
    }
    if (!copy.commit()) {
        result.message = QStringLiteral("Kopiointi muistitikulle ei onnistunut.\n") + copy.error();
        return result;
    }
    result.ok = true;
    result.path = target;
    return result;
}

StickBackup::Compacted StickBackup::compact()
{
    Compacted result;
    DBC::instance().SuljeDB();
    const QFileInfo books(m_books);
    const QString failed = QStringLiteral("5. Tiivistys ei onnistunut: ");
    if (!booksExist()) {
        result.text = failed + ErrorText::system(ENOENT);
        return result;
    }
    // Books that may not be written are not replaced by a compacted file either.
    if (DatabaseFile::isReadOnly(m_books)) {
        result.text = failed + ErrorText::system(EACCES);
        return result;
    }

    QString temp;
    if (const int error = temporaryName(
            books.absolutePath(), u'.' + books.fileName() + QStringLiteral(".tiivistys-"), &temp)) {
        result.text = failed + QStringLiteral("Väliaikaisen tiedoston luonti ei onnistunut: ")
            + ErrorText::system(error);
        return result;
    }
    const auto removeTemp = [&temp] {
        QFile::remove(temp);
        QFile::remove(temp + QStringLiteral("-journal"));
    };

    OpenResult compaction = DatabaseFile::compactInto(m_books, temp);
    if (compaction) {
        // The compacted file is checked before it takes the books' place.
        compaction = checkDatabase(temp);
        if (!compaction && compaction.code == 0)
            compaction.code = SQLITE_CORRUPT;
    }
    if (!compaction) {
        removeTemp();
        result.text = failed + ErrorText::engine(engineCode(compaction), compaction.message);
        return result;
    }

    QFile::setPermissions(temp, books.permissions());
    if (const int error = renameOver(temp, m_books)) {
        removeTemp();
        result.text = QStringLiteral("5. Tiivistetyn tietokannan kopiointi käyttöön ei onnistunut: ")
            + ErrorText::system(error);
        return result;
    }
    result.ok = true;
    result.text = QStringLiteral("5. Tiivistys onnistui. Varmuuskopio on muistitikulla ja tietokanta on "
                                 "tiivistetty. Voit sulkea ikkunan.");
    return result;
}
