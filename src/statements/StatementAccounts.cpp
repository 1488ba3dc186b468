#include "StatementAccounts.h"

#include "DatabaseError.h"

#include <QSet>
#include <QVariant>

namespace StatementAccounts {

QHash<qint32, QString> captions(const QSqlDatabase& db, const std::vector<qint32>& ids)
{
    QHash<qint32, QString> result;
    if (ids.empty())
        return result;
    const QSet<qint32> wanted(ids.begin(), ids.end());
    // The whole chart in one read: it is a few hundred rows at most.
    QSqlQuery q = Sql::run(db, QStringLiteral("SELECT tlID, tlNumero, tlNimi FROM tl"));
    while (q.next()) {
        const qint32 id = q.value(0).toInt();
        if (wanted.contains(id))
            result.insert(
                id, QStringLiteral("%1 %2").arg(q.value(1).toString(), q.value(2).toString().trimmed()));
    }
    return result;
}

} // namespace StatementAccounts
