#pragma once

#include <QHash>
#include <QSqlDatabase>
#include <QString>
#include <vector>

namespace StatementAccounts {

// The caption of a per-account line, "1910 Pankkitili", for each of `ids` that the chart of
// accounts holds. Throws DatabaseError.
QHash<qint32, QString> captions(const QSqlDatabase& db, const std::vector<qint32>& ids);

} // namespace StatementAccounts
