#include "DatabaseFile.h"

#include "Schema.h"
#include "Transaction.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>
#include <QUuid>
#include <QVariant>

#include <cstdio>

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

// Copies every readable row of `source` into a new database at `target`.
OpenResult salvage(const QString& source, const QString& target)
{
    const QString srcName = tempConnectionName();
    const QString dstName = tempConnectionName();
    OpenResult result;
    {
        QSqlDatabase src = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), srcName);
        src.setDatabaseName(source);
        src.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        QSqlDatabase dst = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), dstName);
        dst.setDatabaseName(target);

        QStringList tables, tableSql, otherSql;
        if (src.open()) {
            QSqlQuery q(src);
            // Lets the engine read the table list of a file whose size no longer matches its header.
            q.exec(QStringLiteral("PRAGMA writable_schema = ON"));
            if (q.exec(QStringLiteral("SELECT type, name, sql FROM sqlite_master WHERE sql IS NOT NULL"))) {
                while (q.next()) {
                    const QString type = q.value(0).toString();
                    const QString name = q.value(1).toString();
                    if (name.startsWith(QLatin1String("sqlite_")))
                        continue;
                    if (type == QLatin1String("table")) {
                        tables.append(name);
                        tableSql.append(q.value(2).toString());
                    } else {
                        otherSql.append(q.value(2).toString());
                    }
                }
            }
        }
        if (tables.isEmpty()) {
            result = failure(DbError::Damaged, QStringLiteral("Tietokannan rakennetta ei voi lukea."));
        } else if (!dst.open()) {
            result = failure(DbError::Failed, dst.lastError().text());
        } else {
            Transaction tx(dst);
            QSqlQuery create(dst);
            for (const QString& sql : tableSql)
                create.exec(sql);
            for (const QString& table : tables) {
                QSqlQuery read(src);
                read.setForwardOnly(true);
                const QString quotedName = u'"' + QString(table).replace(u'"', QStringLiteral("\"\"")) + u'"';
                if (!read.exec(QStringLiteral("SELECT * FROM ") + quotedName))
                    continue;
                QSqlQuery insert(dst);
                bool prepared = false;
                // Rows up to the first unreadable page are kept; the rest of that table is lost.
                while (read.next()) {
                    const QSqlRecord rec = read.record();
                    if (!prepared) {
                        QStringList marks;
                        for (int i = 0; i < rec.count(); ++i)
                            marks.append(QStringLiteral("?"));
                        insert.prepare(
                            QStringLiteral("INSERT INTO %1 VALUES (%2)").arg(quotedName, marks.join(u',')));
                        prepared = true;
                    }
                    for (int i = 0; i < rec.count(); ++i)
                        insert.bindValue(i, rec.value(i));
                    insert.exec();
                }
            }
            for (const QString& sql : otherSql)
                create.exec(sql);
            if (!tx.commit())
                result = failure(DbError::Failed, dst.lastError().text());
            else if (!Schema::missingCoreTables(dst).isEmpty())
                result = failure(DbError::Damaged, QStringLiteral("Tietokannan tauluja ei voi lukea."));
        }
        src.close();
        dst.close();
    }
    QSqlDatabase::removeDatabase(srcName);
    QSqlDatabase::removeDatabase(dstName);
    if (result)
        result = withConnection(target, true, [](QSqlDatabase&) { return OpenResult {}; });
    if (!result)
        QFile::remove(target);
    return result;
}

} // namespace

namespace DatabaseFile {

bool isReadOnly(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() && !(info.permissions() & QFileDevice::WriteOwner);
}

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

OpenResult open(const QString& path, const QString& connectionName, bool readOnly)
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
            result = failure(DbError::Damaged, db.lastError().text());
        } else {
            QSqlQuery q(db);
            if (!q.exec(QStringLiteral("PRAGMA quick_check")) || !q.next()) {
                result = failure(DbError::Damaged, q.lastError().text());
            } else if (q.value(0).toString() != QLatin1String("ok")) {
                result = failure(DbError::Damaged, q.value(0).toString());
            } else {
                q.finish();
                if (!readOnly) {
                    // The .mdb file alone must always be the whole database.
                    q.exec(QStringLiteral("PRAGMA journal_mode=DELETE"));
                    q.exec(QStringLiteral("PRAGMA synchronous=FULL"));
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
            return failure(DbError::Failed, q.lastError().text());
        return OpenResult {};
    });
    if (!result && QFileInfo::exists(target) && !QFileInfo(target).isDir())
        QFile::remove(target);
    return result;
}

OpenResult repairInto(const QString& source, const QString& target)
{
    if (QFileInfo::exists(target))
        return failure(DbError::FileExists, QStringLiteral("Tiedosto on jo olemassa: %1").arg(target));
    const OpenResult seen = examine(source);
    if (seen.error != DbError::None && seen.error != DbError::Damaged)
        return seen;
    // A file that does not even start like a database has nothing to save.
    bool readable = false;
    if (!readHeader(source, &readable).startsWith(QByteArray("SQLite format 3\0", 16)))
        return failure(DbError::Damaged, QStringLiteral("Tiedosto ei ole tietokanta."));
    if (compactInto(source, target))
        return {};
    return salvage(source, target);
}

} // namespace DatabaseFile
