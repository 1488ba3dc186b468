#pragma once

#include "core/Money.h"

#include <QByteArray>
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

// An entry that the books do not hold but the statements count as if they did: the automatic
// profit entries, computed afresh at every run and never stored.
struct ComputedEntry {
    FiscalYear year = FiscalYear::Current;
    QDate date;
    qint32 account = 0;
    QString type; // "D" or "K"
    Money amount;
};

// The sums of the entries of a set of accounts under several filters, read in one pass over a
// year's vouchers and entries, by account and entry type. A statement row's amount is then taken by
// the balance-side rule: entries whose type is the row's side add, the others subtract.
class EntrySums final {
public:
    EntrySums() = default;
    // Throws DatabaseError. A filter with a missing date takes nothing. Automatic entries that
    // an earlier version stored are left out: their computed successors are added instead.
    static EntrySums read(const QSqlDatabase& db, FiscalYear year, const std::vector<qint32>& accounts,
        const std::vector<EntryFilter>& filters);

    // Counts the computed entries of this year in every filter whose dates hold them.
    void add(const std::vector<ComputedEntry>& entries);
    // Whether any entry of the books fell under filter `filter`: a previous year without
    // entries is shown empty, not as zeros.
    bool hasEntries(int filter) const { return m_counts.at(size_t(filter)) > 0; }

    // The amount of `accounts` under filter `filter` with balance side `side`.
    Money amount(const std::vector<qint32>& accounts, const QString& side, int filter) const;
    Money amount(qint32 account, const QString& side, int filter) const;

private:
    struct TypeSums {
        QString type;
        QByteArray bytes; // the same in UTF-8, for comparing while reading
        std::vector<Money> sums; // one per filter
    };
    QHash<qint32, std::vector<TypeSums>> m_byAccount;
    FiscalYear m_year = FiscalYear::Current;
    std::vector<EntryFilter> m_filters;
    std::vector<qint64> m_counts; // entries of the books per filter
};
