#include "statements/EntrySums.h"

#include "core/DatabaseError.h"
#include "core/Dates.h"
#include "core/KeyTable.h"
#include "core/RowReader.h"
#include "vouchers/VoucherLayout.h"

#include <QHash>
#include <QStringList>
#include <QVariant>
#include <algorithm>
#include <bit>

namespace {

const VoucherLayout& layoutOf(FiscalYear year)
{
    return year == FiscalYear::Current ? VoucherLayout::current() : VoucherLayout::previous();
}

// A filter's dates as day numbers, worked out once for the hundred thousand vouchers of a year.
struct FilterDays {
    EntryFilter::Kind kind;
    int from = 0; // 0: the filter takes no dated voucher
    int to = 0;
};

// Which filters a voucher falls under, one bit each.
quint32 filterMask(const std::vector<FilterDays>& filters, int day, bool opening)
{
    quint32 mask = 0;
    for (size_t i = 0; i < filters.size(); ++i) {
        const FilterDays& f = filters[i];
        bool in = false;
        if (f.kind == EntryFilter::Kind::Opening)
            in = opening;
        else if (day != 0 && f.from != 0)
            in = day >= f.from && day <= f.to && !(f.kind == EntryFilter::Kind::DatedNotOpening && opening);
        if (in)
            mask |= 1u << i;
    }
    return mask;
}

} // namespace

EntrySums EntrySums::read(const QSqlDatabase& db, FiscalYear year, const std::vector<qint32>& accounts,
    const std::vector<EntryFilter>& filters)
{
    EntrySums result;
    result.m_year = year;
    result.m_filters = filters;
    result.m_counts.assign(filters.size(), 0);
    if (accounts.empty() || filters.empty())
        return result;
    if (filters.size() > 32)
        throw DatabaseError(QStringLiteral("Liian monta summaehtoa."));
    const VoucherLayout& l = layoutOf(year);

    // The year is read once, in two plain scans, and summed here: joining every entry to its
    // voucher inside the engine costs several times more than the scans themselves. First each
    // voucher's filters (vouchers below 0 carry no bookkeeping; automatic ones an earlier version
    // stored are replaced by computed entries).
    std::vector<FilterDays> days;
    for (const EntryFilter& f : filters)
        days.push_back({ f.kind, f.from.isValid() && f.to.isValid() ? Dates::dayNumber(f.from) : 0,
            f.from.isValid() && f.to.isValid() ? Dates::dayNumber(f.to) : 0 });
    KeyTable<quint32> masks;
    {
        RowReader q(db,
            QStringLiteral("SELECT %1, %2, %3 FROM %4 WHERE %5 >= 0 AND %6 = 0")
                .arg(l.toID, l.toPvm, l.toAvaustosite, l.to, l.toNumero, l.toAutomaatti));
        while (q.next()) {
            const quint32 mask = filterMask(days, Dates::dayNumber(q.bytes(1)), q.integer(2) != 0);
            if (mask != 0)
                masks.set(q.integer(0), mask);
        }
    }
    // Each listed account's sums, found by its key through a table while the keys are small.
    const qint32 largest = *std::max_element(accounts.begin(), accounts.end());
    std::vector<std::vector<TypeSums>*> byKey(size_t(std::clamp(largest + 1, 0, 1 << 20)), nullptr);
    // Every listed account is in the table before the scan, which then adds none, so that the
    // table never grows under the pointers into it.
    for (qint32 id : accounts)
        result.m_byAccount[id];
    for (qint32 id : accounts)
        if (id >= 0 && size_t(id) < byKey.size())
            byKey[size_t(id)] = &result.m_byAccount[id];
    RowReader q(db,
        QStringLiteral("SELECT %1, %2, %3, %4 FROM %5 WHERE %6 = 0")
            .arg(l.vitoID, l.vitlID, l.viTyyppi, l.viArvo, l.vi, l.viAutomaatti));
    while (q.next()) {
        const quint32 mask = masks.value(q.integer(0));
        if (mask == 0)
            continue;
        const qint32 account = qint32(q.integer(1));
        std::vector<TypeSums>* slot = nullptr;
        if (account >= 0 && size_t(account) < byKey.size()) {
            slot = byKey[size_t(account)];
        } else {
            const auto far = result.m_byAccount.find(account);
            slot = far == result.m_byAccount.end() ? nullptr : &far.value();
        }
        if (!slot)
            continue;
        const QByteArrayView type = q.bytes(2);
        std::vector<TypeSums>& types = *slot;
        auto it = std::find_if(
            types.begin(), types.end(), [&type](const TypeSums& t) { return t.bytes == type; });
        if (it == types.end()) {
            types.push_back({ QString::fromUtf8(type), QByteArray(type.data(), type.size()),
                std::vector<Money>(filters.size()) });
            it = types.end() - 1;
        }
        const Money amount = Money::fromRaw(q.integer(3));
        for (quint32 bits = mask; bits != 0; bits &= bits - 1) {
            const int i = std::countr_zero(bits);
            it->sums[size_t(i)] += amount;
            ++result.m_counts[size_t(i)];
        }
    }
    return result;
}

void EntrySums::add(const std::vector<ComputedEntry>& entries)
{
    for (const ComputedEntry& e : entries) {
        if (e.year != m_year)
            continue;
        std::vector<TypeSums>& types = m_byAccount[e.account];
        auto it
            = std::find_if(types.begin(), types.end(), [&e](const TypeSums& t) { return t.type == e.type; });
        if (it == types.end()) {
            types.push_back({ e.type, e.type.toUtf8(), std::vector<Money>(m_filters.size()) });
            it = types.end() - 1;
        }
        for (size_t i = 0; i < m_filters.size(); ++i) {
            const EntryFilter& f = m_filters[i];
            // A computed entry is never an opening entry.
            if (f.kind != EntryFilter::Kind::Opening && f.from.isValid() && f.to.isValid() && e.date >= f.from
                && e.date <= f.to)
                it->sums[i] += e.amount;
        }
    }
}

Money EntrySums::amount(qint32 account, const QString& side, int filter) const
{
    Money sum;
    const auto it = m_byAccount.constFind(account);
    if (it == m_byAccount.constEnd())
        return sum;
    for (const TypeSums& t : *it)
        sum += amountBySide(t.type, side, t.sums[size_t(filter)]);
    return sum;
}

Money EntrySums::amount(const std::vector<qint32>& accounts, const QString& side, int filter) const
{
    Money sum;
    for (qint32 id : accounts)
        sum += amount(id, side, filter);
    return sum;
}
