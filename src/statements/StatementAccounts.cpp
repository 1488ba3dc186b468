#include "statements/StatementAccounts.h"

#include "accounts/ChartOfAccounts.h"

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
    for (const ChartOfAccounts::Account& a : ChartOfAccounts::accounts(db))
        if (wanted.contains(a.id))
            result.insert(a.id, a.caption());
    return result;
}

} // namespace StatementAccounts
