#include "statements/ProfitEntries.h"

#include "core/DatabaseError.h"
#include "core/ProgramSettings.h"
#include "core/TemplateText.h"
#include "statements/IncomeStatement.h"
#include "statements/TemplateTree.h"

#include <QSet>
#include <QVariant>
#include <functional>

namespace {

// The entries of one part of a year: a profit is counted as credits, a loss as debits, so that
// the income statement's profit row and the balance sheet's profit row (both on the credit side)
// show the result itself.
void addPart(std::vector<ComputedEntry>& entries, FiscalYear year, const QDate& date, Money result,
    const ProfitEntries::Accounts& accounts)
{
    if (result.isZero() || !date.isValid())
        return;
    const QString type = result > Money() ? QStringLiteral("K") : QStringLiteral("D");
    const Money amount = result > Money() ? result : -result;
    for (qint32 account : { accounts.income, accounts.balance })
        entries.push_back({ year, date, account, type, amount });
}

} // namespace

namespace ProfitEntries {

Accounts accounts(const TemplateTree& tree)
{
    Accounts a;
    // The profit row is the first one marked (by key, as the balance sheet finds it); the first
    // account of its list is the profit account.
    const TemplateRow* profitRow = nullptr;
    for (const TemplateRow& r : tree.rows())
        if (r.voitto && (!profitRow || r.id < profitRow->id))
            profitRow = &r;
    if (profitRow) {
        const std::vector<qint32> listed = TemplateText::accounts(profitRow->tilit);
        if (!listed.empty())
            a.income = listed.front();
    }
    a.balance = ProgramSettings::bookkeeping().VoittoTaseella;
    if (a.income == 0)
        a.refusal = QStringLiteral("Voittotiliä ei ole määritelty tuloslaskelmaan.");
    else if (a.balance == 0)
        a.refusal = QStringLiteral("Taseen \"Tilikauden voitto\" tiliä ei ole määritelty asetuksissa.");
    else if (a.income == a.balance)
        a.refusal = QStringLiteral("Voittotili tuloslaskelmassa on sama kuin voittotili taseella.\n"
                                   "Tilikauden ylijäämän kirjauksia ei tehdä.");
    return a;
}

Money result(const TemplateTree& tree, const EntrySums& sums, int filter)
{
    Money sum;
    QSet<const TemplateRow*> seen;
    const std::function<void(const TemplateRow&)> visit = [&](const TemplateRow& r) {
        if (seen.contains(&r))
            return;
        seen.insert(&r);
        sum += sums.amount(TemplateText::accounts(r.tilit), r.saldoPuoli, filter);
        for (const TemplateRow* child : r.children)
            visit(*child);
    };
    for (const TemplateRow* r : tree.mainRows())
        if (!r->voitto)
            visit(*r);
    return sum;
}

Outcome fromSums(const TemplateTree& tree, const EntrySums& current, const EntrySums& previous, int period,
    int fromYearStart, const QDate& start, const QDate& end)
{
    Outcome outcome;
    const Accounts a = accounts(tree);
    if (!a.refusal.isEmpty()) {
        outcome.refusal = a.refusal;
        return outcome;
    }
    const auto year = [&](FiscalYear which, const EntrySums& sums, const QDate& from, const QDate& to) {
        const Money inPeriod = result(tree, sums, period);
        const Money total = result(tree, sums, fromYearStart);
        addPart(outcome.entries, which, from.addDays(-1), total - inPeriod, a);
        addPart(outcome.entries, which, to, inPeriod, a);
        return total;
    };
    outcome.current = year(FiscalYear::Current, current, start, end);
    outcome.previous = year(FiscalYear::Previous, previous, start.addYears(-1), end.addYears(-1));
    outcome.posted = true;
    return outcome;
}

Outcome compute(const QSqlDatabase& db, qint32 incomeTemplateId, const QDate& start, const QDate& end)
{
    // The sums the income statement of the same period reads.
    const StatementOptions o = StatementOptions::forPeriod(incomeTemplateId, start, end);
    const TemplateTree tree = TemplateTree::load(db, incomeTemplateId);
    const std::vector<qint32> listed = tree.allAccounts();
    const EntrySums current
        = EntrySums::read(db, FiscalYear::Current, listed, IncomeStatement::filters(o, FiscalYear::Current));
    const EntrySums previous = EntrySums::read(
        db, FiscalYear::Previous, listed, IncomeStatement::filters(o, FiscalYear::Previous));
    return fromSums(tree, current, previous, 0, 1, start, end);
}

std::vector<ComputedEntries::Entry> ofFiscalYear(const QSqlDatabase& db, qint32 account)
{
    QVariant income = Sql::scalar(db,
        QStringLiteral(
            "SELECT maTulosMaID FROM ma WHERE maTyyppi = 2 AND maTulosMaID <> 0 ORDER BY maID LIMIT 1"));
    if (!income.isValid())
        income
            = Sql::scalar(db, QStringLiteral("SELECT maID FROM ma WHERE maTyyppi = 1 ORDER BY maID LIMIT 1"));
    if (!income.isValid())
        return {};
    const Accounts profit = accounts(TemplateTree::load(db, income.toInt()));
    if (!profit.refusal.isEmpty() || (account != profit.income && account != profit.balance))
        return {};
    const BookkeepingSettings& s = ProgramSettings::bookkeeping();
    const Outcome o = compute(db, income.toInt(), s.TilikausiAlku, s.TilikausiLoppu);
    std::vector<ComputedEntries::Entry> entries;
    for (const ComputedEntry& e : o.entries)
        if (e.year == FiscalYear::Current && e.account == account)
            entries.push_back({ e.date, e.account, e.type, e.amount,
                QStringLiteral("Tilikauden tulos (laskettu, ei tositetta)") });
    return entries;
}

} // namespace ProfitEntries
