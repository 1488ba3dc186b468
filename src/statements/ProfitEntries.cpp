#include "ProfitEntries.h"

#include "DatabaseError.h"
#include "Dialogs.h"
#include "EntrySums.h"
#include "ProgramSettings.h"
#include "TemplateText.h"
#include "TemplateTree.h"
#include "Transaction.h"
#include "VoucherLayout.h"
#include "cTosite.h"
#include "cTositeEd.h"

#include <QMap>
#include <QSet>
#include <QStringList>
#include <QVariant>
#include <functional>
#include <tuple>
#include <type_traits>

namespace {

const QString Selite = QStringLiteral("Automaattikirjaukset");

// How an account's entries count in the result: for each template row that names the
// account, an entry adds when its type is the row's balance side and subtracts otherwise.
// Debit, credit and any other type get their own factor.
struct Weights {
    qint64 debit = 0;
    qint64 credit = 0;
    qint64 other = 0;
    bool operator<(const Weights& o) const
    {
        return std::tie(debit, credit, other) < std::tie(o.debit, o.credit, o.other);
    }
    bool isZero() const { return debit == 0 && credit == 0 && other == 0; }
};

bool sideIs(const QString& side, QChar c)
{
    return side.left(1).compare(QString(c), Qt::CaseInsensitive) == 0;
}

// The rows whose accounts make the result: every main row that is not a profit row, with its
// own accounts and those of every row below it, each row on its own balance side.
QMap<qint32, Weights> resultWeights(const TemplateTree& tree)
{
    QMap<qint32, Weights> weights;
    QSet<const TemplateRow*> seen;
    const std::function<void(const TemplateRow&)> visit = [&](const TemplateRow& r) {
        if (seen.contains(&r))
            return;
        seen.insert(&r);
        const bool debitSide = sideIs(r.saldoPuoli, u'D');
        const bool creditSide = sideIs(r.saldoPuoli, u'K');
        for (qint32 id : TemplateText::accounts(r.tilit)) {
            Weights& w = weights[id];
            w.debit += debitSide ? 1 : -1;
            w.credit += creditSide ? 1 : -1;
            // An entry of another type counts on a row of that same side only, which no
            // template of D and K rows has.
            w.other -= 1;
        }
        for (const TemplateRow* child : r.children)
            visit(*child);
    };
    for (const TemplateRow* r : tree.mainRows())
        if (!r->voitto)
            visit(*r);
    return weights;
}

// The result over each filter, in one pass over the year's entries without grouping: the
// accounts are gathered by their weights, and each entry is multiplied by its account's.
std::vector<Money> results(const QSqlDatabase& db, FiscalYear year, const QMap<qint32, Weights>& weights,
    const std::vector<EntryFilter>& filters)
{
    std::vector<Money> sums(filters.size());
    QMap<Weights, std::vector<qint32>> classes;
    std::vector<qint32> all;
    for (auto it = weights.cbegin(); it != weights.cend(); ++it)
        if (!it.value().isZero()) {
            classes[it.value()].push_back(it.key());
            all.push_back(it.key());
        }
    if (classes.isEmpty())
        return sums;
    const VoucherLayout& l
        = year == FiscalYear::Current ? VoucherLayout::current() : VoucherLayout::previous();
    const QString account = QStringLiteral("v.") + l.vitlID;
    const auto factor = [&l](const Weights& w, QVariantList& values) {
        values << w.debit << w.credit << w.other;
        return QStringLiteral(
            "v.%1 * (CASE WHEN v.%2 IN ('D', 'd') THEN ? WHEN v.%2 IN ('K', 'k') THEN ? ELSE ? END)")
            .arg(l.viArvo, l.viTyyppi);
    };
    // The weighted amount of an entry; one class needs no test of the account.
    QVariantList amountValues;
    QString amount;
    if (classes.size() == 1) {
        amount = factor(classes.firstKey(), amountValues);
    } else {
        amount = QStringLiteral("CASE");
        for (auto it = classes.cbegin(); it != classes.cend(); ++it) {
            amount
                += QStringLiteral(" WHEN %1 THEN ").arg(accountCondition(account, it.value(), amountValues))
                + factor(it.key(), amountValues);
        }
        amount += QStringLiteral(" ELSE 0 END");
    }
    QStringList columns;
    QVariantList columnValues;
    QStringList any;
    QVariantList anyValues;
    for (const EntryFilter& f : filters) {
        columns << QStringLiteral("SUM(CASE WHEN %1 THEN %2 ELSE 0 END)")
                       .arg(entryCondition(year, f, columnValues), amount);
        columnValues += amountValues;
        any << entryCondition(year, f, anyValues);
    }
    QVariantList listValues;
    const QString listed = accountCondition(account, all, listValues);
    // As the statements read their sums: the entries in their own order, each voucher by its key.
    QSqlQuery q = Sql::run(db,
        QStringLiteral("SELECT %1 FROM %2 v CROSS JOIN %3 t WHERE t.%4 = v.%5 AND t.%6 >= 0 AND %7 AND (%8)")
            .arg(columns.join(QStringLiteral(", ")), l.vi, l.to, l.toID, l.vitoID, l.toNumero, listed,
                any.join(QStringLiteral(" OR "))),
        columnValues + listValues + anyValues);
    if (q.next())
        for (size_t i = 0; i < filters.size(); ++i)
            sums[i] = Money::fromRaw(q.value(int(i)).toLongLong());
    return sums;
}

// One automatic voucher of a year with its two entries, both of the same type: on the income
// statement's profit account first, then on the balance sheet's.
template <typename Tosite>
void writeVoucher(
    const QSqlDatabase& db, const QDate& date, Money result, qint32 incomeAccount, qint32 balanceAccount)
{
    Tosite tosite(db);
    if constexpr (std::is_same_v<Tosite, cTosite>)
        tosite.SetTositeNumeroJaPaiva(date, false);
    else
        tosite.SetTositeNumeroJaPaiva(date);
    // The number is the next of the sequence, but the date is the end of the part of the year
    // the voucher stands for: the latest voucher date could lie past the statement's end.
    tosite.setPaiva(date);
    tosite.setSelite(Selite);
    tosite.setAutomaatti(true);
    tosite.Save(true);
    // A profit is posted as credits, a loss as debits: the income statement's profit row and
    // the balance sheet's profit row (both on the credit side) then show the result itself.
    const QString tyyppi = result > Money() ? QStringLiteral("K") : QStringLiteral("D");
    const Money arvo = result > Money() ? result : -result;
    for (qint32 account : { incomeAccount, balanceAccount }) {
        auto vienti = tosite.AddNewVienti(tyyppi);
        vienti->settlID(account);
        vienti->setArvo(arvo);
        vienti->setAutomaatti(true);
        vienti->Save(true);
    }
}

} // namespace

namespace ProfitEntries {

void deleteAll(const QSqlDatabase& db)
{
    Sql::run(db, QStringLiteral("DELETE FROM \"to\" WHERE toAutomaatti <> 0"));
    Sql::run(db, QStringLiteral("DELETE FROM vi WHERE viAutomaatti <> 0"));
    Sql::run(db, QStringLiteral("DELETE FROM toE WHERE toEAutomaatti <> 0"));
    Sql::run(db, QStringLiteral("DELETE FROM viE WHERE viEAutomaatti <> 0"));
}

Outcome post(const QSqlDatabase& db, qint32 incomeTemplateId, const QDate& start, const QDate& end)
{
    Outcome outcome;
    const BookkeepingSettings& settings = ProgramSettings::bookkeeping();
    const TemplateTree tree = TemplateTree::load(db, incomeTemplateId);

    QString refusal;
    // The profit row is the first one marked (by key, as the balance sheet finds it); the
    // first account of its list is the profit account.
    const TemplateRow* profitRow = nullptr;
    for (const TemplateRow& r : tree.rows())
        if (r.voitto && (!profitRow || r.id < profitRow->id))
            profitRow = &r;
    const std::vector<qint32> profitAccounts
        = profitRow ? TemplateText::accounts(profitRow->tilit) : std::vector<qint32>();
    const qint32 incomeAccount = profitAccounts.empty() ? 0 : profitAccounts.front();
    const qint32 balanceAccount = settings.VoittoTaseella;
    if (incomeAccount == 0)
        refusal = QStringLiteral("Voittotiliä ei ole määritelty tuloslaskelmaan.");
    else if (balanceAccount == 0)
        refusal = QStringLiteral("Taseen \"Tilikauden voitto\" tiliä ei ole määritelty asetuksissa.");
    else if (incomeAccount == balanceAccount)
        refusal = QStringLiteral("Voittotili tuloslaskelmassa on sama kuin voittotili taseella.\n"
                                 "Tilikauden ylijäämän kirjauksia ei tehdä.");

    Transaction t(db);
    deleteAll(db);
    if (!refusal.isEmpty()) {
        t.commitOrThrow();
        Dialogs::instance().information(refusal);
        return outcome;
    }

    // Each year gets up to two vouchers, so that every column of the income statement shows
    // the result of its own dates and the balance sheet balances at the end date:
    //  - the part of the year before the period (fiscal year's start … the day before the
    //    period's start), dated that day, when the period starts later than the year;
    //  - the period itself, dated its last day.
    // The previous year's pair stands one calendar year earlier and begins at its own fiscal
    // year's start. A part whose result is 0 gets no voucher.
    const QMap<qint32, Weights> weights = resultWeights(tree);
    struct Part {
        QDate from, to;
    };
    const auto parts = [](const QDate& yearStart, const QDate& periodStart, const QDate& periodEnd) {
        std::vector<Part> list;
        if (yearStart.isValid() && periodStart.isValid() && periodStart > yearStart)
            list.push_back({ yearStart, periodStart.addDays(-1) });
        list.push_back({ periodStart, periodEnd });
        return list;
    };
    const auto filtersOf = [](const std::vector<Part>& list) {
        std::vector<EntryFilter> filters;
        for (const Part& p : list)
            filters.push_back(EntryFilter::dated(p.from, p.to));
        return filters;
    };
    const std::vector<Part> current = parts(settings.TilikausiAlku, start, end);
    const std::vector<Part> previous = parts(settings.EdTilikausiAlku, start.addYears(-1), end.addYears(-1));
    const std::vector<Money> currentResults = results(db, FiscalYear::Current, weights, filtersOf(current));
    const std::vector<Money> previousResults
        = results(db, FiscalYear::Previous, weights, filtersOf(previous));

    for (size_t i = 0; i < current.size(); ++i) {
        outcome.current += currentResults[i];
        if (!currentResults[i].isZero() && current[i].to.isValid()) {
            writeVoucher<cTosite>(db, current[i].to, currentResults[i], incomeAccount, balanceAccount);
            ++outcome.vouchers;
        }
    }
    for (size_t i = 0; i < previous.size(); ++i) {
        outcome.previous += previousResults[i];
        if (!previousResults[i].isZero() && previous[i].to.isValid()) {
            writeVoucher<cTositeEd>(db, previous[i].to, previousResults[i], incomeAccount, balanceAccount);
            ++outcome.vouchers;
        }
    }
    t.commitOrThrow();
    outcome.posted = true;
    return outcome;
}

} // namespace ProfitEntries
