#include "EntrySums.h"

#include "DatabaseError.h"
#include "Dates.h"
#include "VoucherLayout.h"

#include <QStringList>
#include <QVariant>
#include <algorithm>

namespace {

const VoucherLayout& layoutOf(FiscalYear year)
{
    return year == FiscalYear::Current ? VoucherLayout::current() : VoucherLayout::previous();
}

// Up to this many runs of consecutive account keys are tested as ranges, more as a list.
constexpr int MaxRuns = 12;

} // namespace

QString entryCondition(FiscalYear year, const EntryFilter& filter, QVariantList& values)
{
    const VoucherLayout& l = layoutOf(year);
    if (filter.kind == EntryFilter::Kind::Opening)
        return QStringLiteral("t.%1 <> 0").arg(l.toAvaustosite);
    if (!filter.from.isValid() || !filter.to.isValid())
        return QStringLiteral("0 = 1");
    values << Dates::toSql(filter.from) << Dates::toSql(filter.to);
    QString condition = QStringLiteral("(t.%1 >= ? AND t.%1 <= ?").arg(l.toPvm);
    if (filter.kind == EntryFilter::Kind::DatedNotOpening)
        condition += QStringLiteral(" AND t.%1 = 0").arg(l.toAvaustosite);
    return condition + u')';
}

QString accountCondition(const QString& column, std::vector<qint32> ids, QVariantList& values)
{
    if (ids.empty())
        return QStringLiteral("0 = 1");
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    // Runs of consecutive keys: the accounts of a template row usually come in a few of them,
    // and a range is tested far faster than a list.
    std::vector<std::pair<qint32, qint32>> runs;
    for (qint32 id : ids) {
        if (!runs.empty() && runs.back().second + 1 == id)
            runs.back().second = id;
        else
            runs.push_back({ id, id });
    }
    QStringList terms;
    if (int(runs.size()) <= MaxRuns) {
        for (const auto& [first, last] : runs) {
            terms << QStringLiteral("+%1 BETWEEN ? AND ?").arg(column);
            values << first << last;
        }
        return u'(' + terms.join(QStringLiteral(" OR ")) + u')';
    }
    // The unary plus keeps the planner from walking the account index: one pass over the
    // year's entries is far cheaper than visiting them account by account.
    for (qint32 id : ids) {
        terms << QStringLiteral("?");
        values << id;
    }
    return QStringLiteral("+%1 IN (%2)").arg(column, terms.join(u','));
}

EntrySums EntrySums::read(const QSqlDatabase& db, FiscalYear year, const std::vector<qint32>& accounts,
    const std::vector<EntryFilter>& filters)
{
    EntrySums result;
    if (accounts.empty() || filters.empty())
        return result;
    const VoucherLayout& l = layoutOf(year);
    QStringList sums;
    QStringList any;
    QVariantList sumValues;
    QVariantList anyValues;
    for (const EntryFilter& f : filters) {
        const QString condition = entryCondition(year, f, sumValues);
        sums << QStringLiteral("SUM(CASE WHEN %1 THEN v.%2 ELSE 0 END)").arg(condition, l.viArvo);
        any << entryCondition(year, f, anyValues);
    }
    QVariantList listValues;
    const QString listed = accountCondition(QStringLiteral("v.") + l.vitlID, accounts, listValues);
    // The entries are read in their own order and each one's voucher is found by its key: one
    // pass over the year, cheaper than walking the date index and reading entries by voucher.
    const QString sql = QStringLiteral("SELECT v.%1, v.%2, %3 FROM %4 v CROSS JOIN %5 t WHERE t.%6 = v.%7 "
                                       "AND t.%8 >= 0 AND %9 AND (%10) GROUP BY +v.%1, v.%2")
                            .arg(l.vitlID, l.viTyyppi, sums.join(QStringLiteral(", ")), l.vi, l.to, l.toID,
                                l.vitoID, l.toNumero, listed, any.join(QStringLiteral(" OR ")));
    QSqlQuery q = Sql::run(db, sql, sumValues + listValues + anyValues);
    while (q.next()) {
        TypeSums t;
        t.type = q.value(1).toString();
        for (int i = 0; i < int(filters.size()); ++i)
            t.sums.push_back(Money::fromRaw(q.value(2 + i).toLongLong()));
        result.m_byAccount[q.value(0).toInt()].push_back(std::move(t));
    }
    return result;
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
