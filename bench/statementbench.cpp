// Times the statements on the stress association: the income statement and the balance sheet
// with all four columns, and the automatic profit entries, each beside plain grouped SQL sums
// over the same accounts and date ranges (see README.md), with the stress association's own
// templates; the work tables are emptied at the end.
#include "StressBooks.h"
#include "Timing.h"
#include "core/ProgramSettings.h"
#include "core/Transaction.h"
#include "statements/BalanceSheet.h"
#include "statements/IncomeStatement.h"
#include "statements/ProfitEntries.h"

#include <QElapsedTimer>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

void line(const char* name, double vorkam, double baseline, const char* target)
{
    std::printf("%-44s %9.2f ms %9.2f ms %8.2fx   %s\n", name, vorkam, baseline,
        vorkam / std::max(baseline, 1e-3), target);
}

bool exec(const QSqlDatabase& db, const QString& sql, const QVariantList& values = {})
{
    QSqlQuery q(db);
    q.prepare(sql);
    for (const QVariant& v : values)
        q.addBindValue(v);
    if (!q.exec()) {
        std::fprintf(stderr, "%s\n", qPrintable(sql));
        return false;
    }
    while (q.next()) { }
    return true;
}

QVariant scalar(const QSqlDatabase& db, const QString& sql, const QVariantList& values = {})
{
    QSqlQuery q(db);
    q.prepare(sql);
    for (const QVariant& v : values)
        q.addBindValue(v);
    return q.exec() && q.next() ? q.value(0) : QVariant();
}

// The stress association's statements, as vorkam_stressgen writes them.
struct Pair {
    qint32 income = StressBooks::IncomeTemplate;
    qint32 balance = StressBooks::BalanceTemplate;
    QString profitRow = StressBooks::ProfitRow;
};

// The work tables are the statements' own: cleared, the file is as the bench found it.
void removeResults(const QSqlDatabase& db)
{
    Transaction t(db);
    exec(db, QStringLiteral("DELETE FROM tula"));
    exec(db, QStringLiteral("DELETE FROM tase"));
    t.commit();
}

// The accounts of a template, for the baselines' IN lists.
QString accountsOf(const QSqlDatabase& db, qint32 ma)
{
    QStringList ids;
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT mrTilit FROM mr WHERE mrmaID = ?"));
    q.addBindValue(ma);
    q.exec();
    while (q.next())
        for (const QString& id : q.value(0).toString().split(u',', Qt::SkipEmptyParts))
            ids << id;
    return ids.join(u',');
}

// One plain grouped sum per account over one date range of a year: the work a statement's
// column needs, without the template.
void groupedSum(const QSqlDatabase& db, bool previous, const QString& accounts, const QString& condition,
    const QVariantList& values)
{
    const QString sql = previous
        ? QStringLiteral(
            "SELECT viEtlID, SUM(CASE WHEN viETyyppi = 'D' THEN viEArvo ELSE -viEArvo END) FROM viE "
            "INNER JOIN toE ON toEID = viEtoID WHERE %1 AND +viEtlID IN (%2) GROUP BY +viEtlID")
        : QStringLiteral("SELECT vitlID, SUM(CASE WHEN viTyyppi = 'D' THEN viArvo ELSE -viArvo END) FROM vi "
                         "INNER JOIN \"to\" ON toID = vitoID WHERE %1 AND +vitlID IN (%2) GROUP BY +vitlID");
    exec(db, sql.arg(condition, accounts), values);
}

QString iso(const QDate& d) { return d.toString(Qt::ISODate); }

// The profit entries, the income statement and the balance sheet for one period, each against
// its baseline. Gives the number of failed checks.
int period(const QSqlDatabase& db, const Pair& p, const QDate& start, const QDate& end, const char* label)
{
    int failures = 0;
    const auto check = [&failures](bool ok, const char* what) {
        if (!ok) {
            std::fprintf(stderr, "FAILED: %s\n", what);
            ++failures;
        }
    };
    const BookkeepingSettings& s = ProgramSettings::bookkeeping();
    const int runs = 5;
    std::printf("%s\n", label);
    const QString incomeAccounts = accountsOf(db, p.income);
    const QString balanceAccounts = accountsOf(db, p.balance);
    const QString dated = QStringLiteral("toPvm >= ? AND toPvm <= ?");
    const QString datedE = QStringLiteral("toEPvm >= ? AND toEPvm <= ?");

    // The automatic profit entries alone, as the statements below compute them with their sums.
    ProfitEntries::Outcome outcome;
    const double entries
        = medianMs(runs, [&] { outcome = ProfitEntries::compute(db, p.income, start, end); });
    check(outcome.posted && outcome.entries.size() == (start == s.TilikausiAlku ? 4u : 8u),
        "the profit entries have two entries for each part of each year");
    // Plain sums of the same entries: one pass over each year.
    const double entriesBase = medianMs(runs, [&] {
        const QString sums
            = QStringLiteral("SELECT SUM(CASE WHEN %1 >= ? THEN %2 ELSE 0 END), SUM(CASE WHEN %1 < ? "
                             "THEN %2 ELSE 0 END) FROM %3 WHERE %4 AND +%5 IN (%6)");
        exec(db,
            sums.arg(QStringLiteral("toPvm"),
                QStringLiteral("CASE WHEN viTyyppi = 'K' THEN viArvo ELSE -viArvo END"),
                QStringLiteral("vi INNER JOIN \"to\" ON toID = vitoID"), dated, QStringLiteral("vitlID"),
                incomeAccounts),
            { iso(start), iso(start), iso(s.TilikausiAlku), iso(end) });
        exec(db,
            sums.arg(QStringLiteral("toEPvm"),
                QStringLiteral("CASE WHEN viETyyppi = 'K' THEN viEArvo ELSE -viEArvo END"),
                QStringLiteral("viE INNER JOIN toE ON toEID = viEtoID"), datedE, QStringLiteral("viEtlID"),
                incomeAccounts),
            { iso(start.addYears(-1)), iso(start.addYears(-1)), iso(s.EdTilikausiAlku),
                iso(end.addYears(-1)) });
    });
    line("automatic profit entries", entries, entriesBase, "< 100 ms");

    const StatementOptions income = StatementOptions::forPeriod(p.income, start, end);
    const double incomeMs = medianMs(runs, [&] { IncomeStatement::run(db, income); });
    const double incomeBase = medianMs(runs, [&] {
        groupedSum(db, false, incomeAccounts, dated, { iso(start), iso(end) });
        groupedSum(db, false, incomeAccounts, dated, { iso(s.TilikausiAlku), iso(end) });
        groupedSum(db, true, incomeAccounts, datedE, { iso(start.addYears(-1)), iso(end.addYears(-1)) });
        groupedSum(db, true, incomeAccounts, datedE, { iso(s.EdTilikausiAlku), iso(end.addYears(-1)) });
    });
    const qint64 profit = scalar(db,
        QStringLiteral(
            "SELECT tulaToteutunutKuluvaAlusta FROM tula WHERE tulaTeksti = ? AND tulaMerkki = '**'"),
        { p.profitRow })
                              .toLongLong();
    check(profit == outcome.current.raw() && profit != 0, "the profit row shows the year's result");
    line("income statement, four columns", incomeMs, incomeBase, "< 250 ms, ratio <= 3");

    // The balance sheet at the same end date, with its profit entries from the year's start.
    const StatementOptions balance = StatementOptions::forPeriod(p.balance, start, end);
    const double balanceMs = medianMs(runs, [&] { BalanceSheet::run(db, balance); });
    const double balanceBase = medianMs(runs, [&] {
        groupedSum(db, false, balanceAccounts, QStringLiteral("toAvaustosite <> 0"), {});
        groupedSum(db, false, balanceAccounts, dated + QStringLiteral(" AND toAvaustosite = 0"),
            { iso(s.TilikausiAlku), iso(end) });
        groupedSum(db, true, balanceAccounts, datedE, { iso(s.EdTilikausiAlku), iso(end.addYears(-1)) });
    });
    const auto total = [&db](const char* caption, const char* column) {
        return scalar(db,
            QStringLiteral(
                "SELECT %1 FROM tase WHERE taseteksti = ? AND taseMerkki = '**' AND taseTyyppi = 0")
                .arg(QLatin1String(column)),
            { QString::fromLatin1(caption) })
            .toLongLong();
    };
    check(total("Vastaavaa", "taseLoppusaldo") == total("Vastattavaa", "taseLoppusaldo")
            && total("Vastaavaa", "taseLoppusaldo") != 0,
        "the balance sheet balances");
    check(total("Vastaavaa", "taseLoppusaldoEdellinen") == total("Vastattavaa", "taseLoppusaldoEdellinen"),
        "the previous year's column balances");
    line("balance sheet, four columns", balanceMs, balanceBase, "< 250 ms, ratio <= 3");
    return failures;
}

} // namespace

int statementBench(const QSqlDatabase& db)
{
    std::printf("\n%-44s %12s %12s %9s   %s\n", "statements", "Vorkam", "baseline", "ratio", "target");
    const BookkeepingSettings& s = ProgramSettings::bookkeeping();
    if (!StressBooks::present(db))
        return 1;
    const Pair p;
    std::printf("(templates of %d and %d rows over %d accounts)\n",
        scalar(db, QStringLiteral("SELECT COUNT(*) FROM mr WHERE mrmaID = ?"), { p.income }).toInt(),
        scalar(db, QStringLiteral("SELECT COUNT(*) FROM mr WHERE mrmaID = ?"), { p.balance }).toInt(),
        scalar(db, QStringLiteral("SELECT COUNT(*) FROM tl")).toInt());
    // The whole year, when every entry of both years is summed, and a quarter, when the four
    // columns take four different ranges.
    int failures = period(db, p, s.TilikausiAlku, s.TilikausiLoppu, "the whole fiscal year:");
    failures += period(db, p, s.TilikausiAlku.addMonths(3), s.TilikausiAlku.addMonths(6).addDays(-1),
        "the second quarter, from the year's start to its end:");
    removeResults(db);
    return failures == 0 ? 0 : 1;
}
