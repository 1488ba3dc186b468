#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include <cstdio>

// The keys vorkam_stressgen gives the stress association's statements and profit accounts, for
// the benches that compute the statements or change the fiscal year on the file.
namespace StressBooks {

constexpr qint32 IncomeTemplate = 1;
constexpr qint32 BalanceTemplate = 2;
// After the 500 accounts of the chart, which the vouchers use.
constexpr qint32 IncomeProfitAccount = 501;
constexpr qint32 BalanceProfitAccount = 502;
// The income statement's profit row, and the balance sheet's row of its profit account.
inline const QString ProfitRow = QStringLiteral("Tilikauden ylijäämä (alijäämä)");

// Whether the file holds the pair as the generator writes it; a file written by an older
// generator has no templates, and the statement figures would be of nothing.
inline bool present(const QSqlDatabase& db)
{
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT COUNT(*) FROM ma WHERE (maID = ? AND maTyyppi = 1) OR (maID = ? AND "
                             "maTyyppi = 2 AND maTulosMaID = ?)"));
    q.addBindValue(IncomeTemplate);
    q.addBindValue(BalanceTemplate);
    q.addBindValue(IncomeTemplate);
    if (q.exec() && q.next() && q.value(0).toInt() == 2)
        return true;
    std::fprintf(stderr, "the file has no statement templates: write it again with vorkam_stressgen\n");
    return false;
}

} // namespace StressBooks
