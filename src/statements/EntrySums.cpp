#include "EntrySums.h"

#include "DatabaseError.h"
#include "Dates.h"
#include "VoucherLayout.h"

#include <QStringList>
#include <QVariant>

namespace {

const VoucherLayout& layoutOf(FiscalYear year)
{
    return year == FiscalYear::Current ? VoucherLayout::current() : VoucherLayout::previous();
}

// Past this many accounts the list is left out of the query and every account is summed: the
// grouping gives the same rows, and the number of bound values stays far from the limit.
constexpr int MaxListed = 2000;

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
    QString listed;
    QVariantList listValues;
    if (int(accounts.size()) <= MaxListed) {
        QStringList marks;
        for (qint32 id : accounts) {
            marks << QStringLiteral("?");
            listValues << id;
        }
        // The unary plus keeps the planner from walking the account index: one pass over the
        // year's entries is far cheaper than visiting them account by account.
        listed = QStringLiteral(" AND +v.%1 IN (%2)").arg(l.vitlID, marks.join(u','));
    }
    const QString sql = QStringLiteral("SELECT v.%1, v.%2, %3 FROM %4 v INNER JOIN %5 t ON t.%6 = v.%7 "
                                       "WHERE t.%8 >= 0%9 AND (%10) GROUP BY +v.%1, v.%2")
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
