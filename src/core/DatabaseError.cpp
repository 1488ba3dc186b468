#include "DatabaseError.h"
#include "ErrorText.h"

#include <QSqlError>
#include <QVariant>

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

} // namespace Sql
