#pragma once

#include "core/Money.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <functional>
#include <vector>

// Entries of the current fiscal year that Vorkam computes and never stores (the automatic profit
// entries of the year's result). The statements compute them; a report below them, the account
// inspection, asks for them through here, and the program registers the statements' source at
// start. Without a source there are none.
namespace ComputedEntries {

struct Entry {
    QDate date;
    qint32 account = 0;
    QString type; // "D" or "K"
    Money amount;
    QString text; // how the report marks the line
};

using Source = std::function<std::vector<Entry>(const QSqlDatabase& db, qint32 account)>;

void setSource(Source source);
// The entries of the fiscal year on the account tlID `account`, in the books' current state.
// Throws DatabaseError.
std::vector<Entry> forAccount(const QSqlDatabase& db, qint32 account);

} // namespace ComputedEntries
