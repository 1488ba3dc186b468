#include "core/DatabaseFile.h"

#include "core/DatabaseError.h"
#include "core/ErrorText.h"
#include "core/PageRecovery.h"
#include "core/Schema.h"
#include "core/ScopedConnection.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>
#include <QUuid>
#include <QVariant>

#include <algorithm>
#include <atomic>
#include <iterator>
#include <sqlite3.h>

namespace {

QByteArray readHeader(const QString& path, bool* readable)
{
    QFile file(path);
    *readable = file.open(QIODevice::ReadOnly);
    return *readable ? file.read(100) : QByteArray();
}

QString tempConnectionName()
{
    return QStringLiteral("vorkam_tmp_") + QUuid::createUuid().toString(QUuid::Id128);
}

// Runs `work` with a short-lived connection to `path` and removes the connection afterwards.
template <typename Work> OpenResult withConnection(const QString& path, bool readOnly, Work work)
{
    const QString name = tempConnectionName();
    OpenResult result = DatabaseFile::open(path, name, readOnly);
    if (result) {
        QSqlDatabase db = QSqlDatabase::database(name, false);
        result = work(db);
    }
    DatabaseFile::close(name);
    return result;
}

OpenResult failure(DbError kind, const QString& message) { return OpenResult { kind, message }; }

QString pragmaValue(const QSqlDatabase& db, const QString& pragma)
{
    QSqlQuery q(db);
    return q.exec(QStringLiteral("PRAGMA ") + pragma) && q.next() ? q.value(0).toString().toLower()
                                                                  : QString();
}

// Rollback journal beside the file (asking for the mode it already has writes nothing) and full
// synchronisation, each read back. Gives "" when both hold, otherwise the message.
std::atomic<bool> damage { false };

void logError(void*, int code, const char*)
{
    const int primary = code & 0xff;
    if (primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB)
        damage = true;
}

} // namespace

namespace DatabaseFile {

QString durableWrites(const QSqlDatabase& db)
{
    QString mode = pragmaValue(db, QStringLiteral("journal_mode"));
    if (mode != u"delete")
        mode = pragmaValue(db, QStringLiteral("journal_mode=DELETE"));
    QSqlQuery(db).exec(QStringLiteral("PRAGMA synchronous=FULL"));
    const QString sync = pragmaValue(db, QStringLiteral("synchronous"));
    if (mode == u"delete" && sync == u"2")
        return {};
    return QStringLiteral("Tietokannan kirjoitustapaa ei voitu varmistaa, joten kirjanpitoon ei kirjoiteta.\n"
                          "Tekninen tieto: journal_mode %1, synchronous %2")
        .arg(mode.isEmpty() ? QStringLiteral("?") : mode, sync.isEmpty() ? QStringLiteral("?") : sync);
}

bool isReadOnly(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() && !(info.permissions() & QFileDevice::WriteOwner);
}

bool folderReadOnly(const QString& path)
{
    const QFileInfo folder(QFileInfo(path).absolutePath());
    // The owner's write flag counts even for a user (root) whom the system lets write anyway.
    return folder.isDir() && (!folder.isWritable() || !(folder.permissions() & QFileDevice::WriteOwner));
}

bool isReadOnly(const QSqlDatabase& db)
{
    return db.connectOptions().contains(QLatin1String("QSQLITE_OPEN_READONLY"));
}

bool watchForDamage() { return sqlite3_config(SQLITE_CONFIG_LOG, logError, nullptr) == SQLITE_OK; }

bool damageSeen() { return damage; }

bool isJetFile(const QString& path)
{
    bool readable = false;
    const QByteArray header = readHeader(path, &readable);
    return header.mid(4, 15) == "Standard Jet DB" || header.mid(4, 15) == "Standard ACE DB";
}

OpenResult examine(const QString& path)
{
    if (path.isEmpty())
        return failure(DbError::FileNotFound, QStringLiteral("Tietokannan nimi puuttuu."));
    const QFileInfo info(path);
    if (!info.absoluteDir().exists() || info.isDir())
        return failure(DbError::InvalidPath, QStringLiteral("Virheellinen polku: %1").arg(path));
    if (!info.exists())
        return failure(DbError::FileNotFound, QStringLiteral("Tiedostoa ei löydy: %1").arg(path));
    bool readable = false;
    const QByteArray header = readHeader(path, &readable);
    if (!readable)
        return failure(DbError::Unreadable, QStringLiteral("Tiedostoa ei voi lukea: %1").arg(path));
    if (isJetFile(path))
        return failure(DbError::JetFormat, QStringLiteral("Vanhan muodon tietokanta: %1").arg(path));
    if (!header.startsWith(QByteArray("SQLite format 3\0", 16)))
        return failure(DbError::Damaged, QStringLiteral("Tiedosto ei ole tietokanta tai se on vioittunut."));
    return {};
}

OpenResult open(const QString& path, const QString& connectionName, bool readOnly, bool check)
{
    OpenResult result = examine(path);
    if (!result)
        return result;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connectionName);
        db.setDatabaseName(path);
        if (readOnly)
            db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (!db.open()) {
            result = failure(DbError::Damaged, ErrorText::technical(db.lastError().text()));
        } else {
            QSqlQuery q(db);
            if (check && (!q.exec(QStringLiteral("PRAGMA quick_check")) || !q.next())) {
                result = failure(DbError::Damaged, ErrorText::technical(q.lastError().text()));
            } else if (check && q.value(0).toString() != QLatin1String("ok")) {
                result = failure(DbError::Damaged,
                    QStringLiteral("Tietokannan tarkistus löysi vikoja.\n")
                        + ErrorText::technical(q.value(0).toString()));
            } else {
                q.finish();
                if (!readOnly) {
                    // The .mdb file alone must always be the whole database, and every commit
                    // on the disk before it returns: the books are not written otherwise.
                    const QString setUp = durableWrites(db);
                    if (!setUp.isEmpty())
                        result = failure(DbError::Failed, setUp);
                }
                q.finish();
                // Every page is checked as it is read, so that damage met while reading is told,
                // not read as rows (a report opens the books without the whole-file check).
                q.exec(QStringLiteral("PRAGMA cell_size_check=ON"));
                q.finish();
                // The reports' work tables live beside the books, never in them.
                try {
                    Schema::createWorkTables(db);
                } catch (const DatabaseError& e) {
                    result = failure(
                        DbError::Failed, e.message(QStringLiteral("Raporttien työtauluja ei voitu tehdä.")));
                }
            }
        }
        if (!result)
            db.close();
    }
    if (!result)
        QSqlDatabase::removeDatabase(connectionName);
    return result;
}

void close(const QString& connectionName)
{
    if (!QSqlDatabase::contains(connectionName))
        return;
    {
        QSqlDatabase db = QSqlDatabase::database(connectionName, false);
        db.close();
    }
    QSqlDatabase::removeDatabase(connectionName);
}

OpenResult compactInto(const QString& source, const QString& target)
{
    if (QFileInfo::exists(target))
        return failure(DbError::FileExists, QStringLiteral("Tiedosto on jo olemassa: %1").arg(target));
    OpenResult result = withConnection(source, true, [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        q.prepare(QStringLiteral("VACUUM INTO ?"));
        q.addBindValue(target);
        if (!q.exec())
            return OpenResult { DbError::Failed, ErrorText::technical(q.lastError().text()),
                q.lastError().nativeErrorCode().toInt() };
        return OpenResult {};
    });
    if (!result && QFileInfo::exists(target) && !QFileInfo(target).isDir())
        QFile::remove(target);
    return result;
}

namespace {

struct CoreTable {
    const char* name;
    const char* caption;
    // A repair that saves none of these rows from a file that had them has failed.
    bool essential;
};

const CoreTable CoreTables[] = {
    { "tl", "Tilit", true },
    { "to", "Tositteet", true },
    { "vi", "Viennit", false },
    { "toE", "Edellisen tilikauden tositteet", false },
    { "viE", "Edellisen tilikauden viennit", false },
    { "ma", "Tilinpäätösmallit", false },
    { "mr", "Tilinpäätösmallien rivit", false },
};

// Row counts of the core tables; nullopt where the table cannot be read (or is missing).
QList<std::optional<qint64>> countRows(const QString& path, bool writableSchema)
{
    QList<std::optional<qint64>> counts;
    {
        ScopedConnection connection(path, ScopedConnection::Mode::ReadOnly);
        const bool open = connection.isOpen();
        QSqlQuery q(connection.db());
        // Lets the engine read the table list of a file whose size no longer matches its header.
        if (open && writableSchema)
            q.exec(QStringLiteral("PRAGMA writable_schema = ON"));
        for (const CoreTable& t : CoreTables) {
            const QString table = u'"' + QString::fromLatin1(t.name) + u'"';
            // The table's own pages and its smallest index may disagree when one of them is
            // damaged: the larger figure is what the file claims.
            std::optional<qint64> count;
            for (const QString& sql : { QStringLiteral("SELECT COUNT(*) FROM %1 NOT INDEXED"),
                     QStringLiteral("SELECT COUNT(*) FROM %1") }) {
                if (open && q.exec(sql.arg(table)) && q.next())
                    count = std::max(count.value_or(0), q.value(0).toLongLong());
                q.finish();
            }
            counts.append(count);
        }
    }
    return counts;
}

bool integrityOk(const QString& path)
{
    return bool(withConnection(path, true, [](QSqlDatabase& db) {
        QSqlQuery q(db);
        if (q.exec(QStringLiteral("PRAGMA integrity_check")) && q.next() && q.value(0).toString() == u"ok")
            return OpenResult {};
        return failure(DbError::Damaged,
            QStringLiteral("Tietokannan tarkistus löysi vikoja.\n")
                + ErrorText::technical(q.value(0).toString()));
    }));
}

// Empty core tables where the repair found none, so that the books open; the report tells
// what they held. The engine's words when they could not be made.
QString addMissingCoreTables(const QString& path)
{
    ScopedConnection connection(path);
    if (!connection.isOpen())
        return ErrorText::technical(connection.db().lastError().text());
    try {
        const QStringList missing = Schema::missingCoreTables(connection.db());
        if (!missing.isEmpty())
            Schema::createCoreTables(connection.db(), missing);
    } catch (const DatabaseError& e) {
        return e.text();
    }
    return QString();
}

} // namespace

QString RepairResult::report() const
{
    QStringList lines { QStringLiteral("Taulu: rivejä vioittuneessa tiedostossa / korjatussa") };
    for (const TableCount& c : counts) {
        QString line = c.caption + QStringLiteral(": ")
            + (c.before ? QString::number(*c.before) : QStringLiteral("ei luettavissa"))
            + QStringLiteral(" / ") + QString::number(c.after);
        if (c.before && *c.before > c.after)
            line += QStringLiteral(" – %1 riviä menetettiin").arg(*c.before - c.after);
        lines.append(line);
    }
    if (unplaced > 0)
        lines.append(
            QStringLiteral("Lisäksi %1 riviä, joiden taulua ei voitu päätellä, on tallessa taulussa %2.")
                .arg(unplaced)
                .arg(UnplacedTable));
    if (!skipped.isEmpty())
        lines.append(
            QStringLiteral("Vioittuneen tiedoston rakenteita, joita Vorkam ei tunne, ei tehty uudelleen: %1.")
                .arg(skipped.join(QStringLiteral(", "))));
    return lines.join(u'\n');
}

bool RepairResult::lostRows() const
{
    return unplaced > 0 || std::any_of(counts.begin(), counts.end(), [](const TableCount& c) {
        return !c.before || *c.before > c.after;
    });
}

RepairResult repairInto(const QString& source, const QString& target)
{
    RepairResult repair;
    if (QFileInfo::exists(target)) {
        repair.result
            = failure(DbError::FileExists, QStringLiteral("Tiedosto on jo olemassa: %1").arg(target));
        return repair;
    }
    const OpenResult seen = examine(source);
    if (seen.error != DbError::None && seen.error != DbError::Damaged) {
        repair.result = seen;
        return repair;
    }
    // A file that does not even start like a database has nothing to save.
    bool readable = false;
    if (!readHeader(source, &readable).startsWith(QByteArray("SQLite format 3\0", 16))) {
        repair.result = failure(DbError::Damaged, QStringLiteral("Tiedosto ei ole tietokanta."));
        return repair;
    }
    const QList<std::optional<qint64>> before = countRows(source, true);

    // What the engine can read whole is copied whole; otherwise the rows come from the pages.
    bool copied = compactInto(source, target) && integrityOk(target);
    if (!copied) {
        if (QFileInfo::exists(target))
            QFile::remove(target);
        QFile file(source);
        if (!file.open(QIODevice::ReadOnly)) {
            repair.result = failure(DbError::Unreadable, ErrorText::technical(file.errorString()));
            return repair;
        }
        const PageRecovery::Result rows = PageRecovery::read(file.readAll());
        QString error;
        if (!PageRecovery::write(rows, target, UnplacedTable, &error)) {
            QFile::remove(target);
            repair.result = failure(DbError::Failed, error);
            return repair;
        }
        repair.unplaced = qint64(rows.unplaced.size());
        repair.skipped = rows.skipped;
        const QString notMade = addMissingCoreTables(target);
        if (!notMade.isEmpty()) {
            QFile::remove(target);
            repair.result = failure(DbError::Failed, notMade);
            return repair;
        }
    }
    repair.byCompaction = copied;

    const QList<std::optional<qint64>> after = countRows(target, false);
    QStringList essentialLost;
    for (int i = 0; i < int(std::size(CoreTables)); ++i) {
        const CoreTable& t = CoreTables[i];
        const qint64 saved = after.value(i).value_or(0);
        repair.counts.append(
            { QString::fromLatin1(t.name), QString::fromUtf8(t.caption), before.value(i), saved });
        if (t.essential && saved == 0 && before.value(i) != std::optional<qint64>(0))
            essentialLost.append(QString::fromUtf8(t.caption).toLower());
    }
    if (!essentialLost.isEmpty()) {
        // Empty books in place of the damaged ones would hide the loss: the repair has failed.
        QFile::remove(target);
        repair.result = failure(DbError::Damaged,
            QStringLiteral("Korjatussa tietokannassa ei ollut yhtään riviä taulussa: %1.")
                .arg(essentialLost.join(QStringLiteral(", "))));
        return repair;
    }
    if (!integrityOk(target)) {
        QFile::remove(target);
        repair.result
            = failure(DbError::Damaged, QStringLiteral("Korjattu tietokanta ei läpäissyt tarkistusta."));
    }
    return repair;
}

} // namespace DatabaseFile
