// Times the voucher tools on the stress association, each beside a plain SQL baseline of the
// same run (see README.md): the voucher check against its three grouped queries read row by
// row, and the voucher search by amount and by a description word against one bare query.
#include "Timing.h"
#include "core/DatabaseError.h"
#include "core/Dates.h"
#include "core/Money.h"
#include "core/ProgramSettings.h"
#include "vouchers/VoucherSearch.h"
#include "vouchers/cTositeTarkistus.h"

#include <QElapsedTimer>
#include <QSqlQuery>
#include <QVariant>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

void figure(const char* name, double vorkam, double baseline, const char* target)
{
    std::printf("%-44s %9.2f ms %9.2f ms %8.2fx   %s\n", name, vorkam, baseline,
        baseline > 0 ? vorkam / baseline : 0.0, target);
}

int readAll(const QSqlDatabase& db, const QString& sql, const QVariantList& values = {})
{
    QSqlQuery q = Sql::run(db, sql, values);
    int n = 0;
    while (q.next())
        n += q.value(0).toInt() != 0;
    return n;
}

} // namespace

int toolsBench(const QSqlDatabase& db)
{
    const int runs = 5;
    try {
        const BookkeepingSettings& s = ProgramSettings::bookkeeping();
        std::size_t found = 0;
        std::printf("\nvoucher tools\n");
        const double check = medianMs(runs, [&] { found = cTositeTarkistus(db).Tarkista().size(); });
        const double checkBase = medianMs(runs, [&] {
            readAll(db,
                QStringLiteral(
                    "SELECT toID FROM \"to\" WHERE toNumero >= 0 AND toAutomaatti = 0 AND (toPvm IS NULL "
                    "OR toPvm < ? OR toPvm > ?)"),
                { Dates::toSql(s.TilikausiAlku), Dates::toSql(s.TilikausiLoppu) });
            readAll(db,
                QStringLiteral(
                    "SELECT vitoID FROM vi GROUP BY vitoID HAVING SUM(CASE WHEN viTyyppi = 'D' THEN viArvo "
                    "ELSE 0 END) <> SUM(CASE WHEN viTyyppi = 'K' THEN viArvo ELSE 0 END)"));
            readAll(db,
                QStringLiteral(
                    "SELECT vitoID FROM vi WHERE NOT EXISTS (SELECT * FROM tl WHERE tl.tlID = vi.vitlID)"));
        });
        figure("voucher check (all steps)", check, checkBase, "< 1000 ms, ratio <= 3");
        std::printf("  findings: %zu\n", found);

        const qint64 raw
            = Sql::scalar(db, QStringLiteral("SELECT viArvo FROM vi ORDER BY viID LIMIT 1 OFFSET 1000"))
                  .toLongLong();
        const QString amount = Money::fromRaw(raw).toString();
        const double byAmount
            = medianMs(runs, [&] { found = VoucherSearch::hae(db, amount, {}).osumat.size(); });
        const double byAmountBase = medianMs(
            runs, [&] { readAll(db, QStringLiteral("SELECT vitoID FROM vi WHERE viArvo = ?"), { raw }); });
        figure("search by amount", byAmount, byAmountBase, "< 200 ms");
        std::printf("  found: %zu\n", found);

        const QString word = QStringLiteral("tosite 777");
        const double byWord = medianMs(runs, [&] { found = VoucherSearch::hae(db, {}, word).osumat.size(); });
        const double byWordBase = medianMs(runs, [&] {
            readAll(
                db, QStringLiteral("SELECT toID FROM \"to\" WHERE toSelite LIKE ?"), { u'%' + word + u'%' });
        });
        figure("search by a description word", byWord, byWordBase, "< 200 ms");
        std::printf("  found: %zu\n", found);
    } catch (const DatabaseError& e) {
        std::fprintf(stderr, "%s\n", qPrintable(e.text()));
        return 1;
    }
    return 0;
}
