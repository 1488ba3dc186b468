#pragma once

#include "Money.h"

#include <QDate>
#include <QHash>
#include <QSqlDatabase>
#include <QString>
#include <vector>

// Which entries of a year a sum takes. Only vouchers numbered 0 or above count: the vouchers
// below 0 carry the ledger's balance rows.
struct EntryFilter {
    enum class Kind {
        Dated, // vouchers dated from…to, inclusive
        DatedNotOpening, // the same without the opening vouchers
        Opening, // every opening voucher, whatever its date
    };
    Kind kind = Kind::Dated;
    QDate from;
    QDate to;

    static EntryFilter dated(const QDate& from, const QDate& to) { return { Kind::Dated, from, to }; }
    static EntryFilter datedNotOpening(const QDate& from, const QDate& to)
    {
        return { Kind::DatedNotOpening, from, to };
    }
    static EntryFilter opening() { return { Kind::Opening, {}, {} }; }
};

enum class FiscalYear { Current, Previous };

// The sums of the entries of a set of accounts under several filters, read in one grouped query
// over a year's entries, by account and entry type. A statement row's amount is then taken by
// the balance-side rule: entries whose type is the row's side add, the others subtract.
class EntrySums final {
public:
    EntrySums() = default;
    // Throws DatabaseError. A filter with a missing date takes nothing.
    static EntrySums read(const QSqlDatabase& db, FiscalYear year, const std::vector<qint32>& accounts,
        const std::vector<EntryFilter>& filters);

    // The amount of `accounts` under filter `filter` with balance side `side`.
    Money amount(const std::vector<qint32>& accounts, const QString& side, int filter) const;
    Money amount(qint32 account, const QString& side, int filter) const;

private:
    struct TypeSums {
        QString type;
        std::vector<Money> sums; // one per filter
    };
    QHash<qint32, std::vector<TypeSums>> m_byAccount;
};

// The SQL condition that `column` is one of `ids`, with its values appended to `values`; never
// true for no ids. Keeps the planner off the account index.
QString accountCondition(const QString& column, std::vector<qint32> ids, QVariantList& values);

// The SQL condition on a voucher (alias t, columns of `year`) that a filter stands for, with
// its values appended to `values`.
QString entryCondition(FiscalYear year, const EntryFilter& filter, QVariantList& values);
