#pragma once

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <cstdio>

// Runs one statement of a bench's own set-up with bound values; a failure is printed with the
// statement, for the bench to stop on.
inline bool benchSql(const QSqlDatabase& db, const QString& sql, const QVariantList& values = {})
{
    QSqlQuery q(db);
    q.prepare(sql);
    for (const QVariant& v : values)
        q.addBindValue(v);
    if (!q.exec()) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(sql), qPrintable(q.lastError().text()));
        return false;
    }
    return true;
}

// The keys of the accounts whose numbers lie in [from, to), as a template's account list.
inline QString benchAccountList(const QSqlDatabase& db, int from, int to)
{
    QString list;
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT tlID FROM tl WHERE tlNumero >= ? AND tlNumero < ? ORDER BY tlNumero"));
    q.addBindValue(from);
    q.addBindValue(to);
    q.exec();
    while (q.next())
        list += q.value(0).toString() + u',';
    return list;
}
