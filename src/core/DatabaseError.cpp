#include "core/DatabaseError.h"
#include "core/ErrorText.h"
#include "core/Transaction.h"

#include <QSqlDriver>
#include <QSqlError>
#include <QVariant>

#include <sqlite3.h>

namespace Sql {

QSqlQuery prepare(const QSqlDatabase& db, const QString& sql)
{
    if (!db.isOpen())
        throw DatabaseError(QStringLiteral("Tietokanta ei ole auki."));
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.prepare(sql))
        throw DatabaseError(ErrorText::technical(q.lastError().text()));
    return q;
}

void exec(QSqlQuery& q)
{
    if (!q.exec())
        throw DatabaseError(ErrorText::technical(q.lastError().text()));
    Transaction::settle(q.driver());
}

QSqlQuery run(const QSqlDatabase& db, const QString& sql, const QVariantList& values)
{
    QSqlQuery q = prepare(db, sql);
    for (const QVariant& v : values)
        q.addBindValue(v);
    exec(q);
    return q;
}

QVariant scalar(const QSqlDatabase& db, const QString& sql, const QVariantList& values)
{
    QSqlQuery q = run(db, sql, values);
    return q.next() ? q.value(0) : QVariant();
}

void runScript(const QSqlDatabase& db, const QString& text)
{
    const QVariant handle = db.isOpen() && db.driver() ? db.driver()->handle() : QVariant();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0)
        throw DatabaseError(QStringLiteral("Tietokanta ei ole auki."));
    sqlite3* engine = *static_cast<sqlite3* const*>(handle.constData());
    char* message = nullptr;
    if (sqlite3_exec(engine, text.toUtf8().constData(), nullptr, nullptr, &message) != SQLITE_OK) {
        const QString error = QString::fromUtf8(message ? message : sqlite3_errmsg(engine));
        sqlite3_free(message);
        throw DatabaseError(ErrorText::technical(error));
    }
}

} // namespace Sql
