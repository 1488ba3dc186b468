#include "accounts/DailyBalances.h"

#include "core/DatabaseError.h"
#include "core/Dates.h"

#include <QVariant>

namespace DailyBalances {

std::vector<Rivi> laske(const QSqlDatabase& db, qint32 tili, const QDate& alku, const QDate& loppu)
{
    // The day sums come from the database in one grouped pass; only the running balance is
    // summed here.
    QSqlQuery q = Sql::run(db,
        QStringLiteral("SELECT \"to\".toPvm, SUM(CASE WHEN vi.viTyyppi = 'D' THEN vi.viArvo ELSE 0 END), "
                       "SUM(CASE WHEN vi.viTyyppi = 'K' THEN vi.viArvo ELSE 0 END) FROM vi INNER JOIN \"to\" "
                       "ON \"to\".toID = vi.vitoID WHERE \"to\".toNumero >= 0 AND \"to\".toPvm >= ? AND "
                       "\"to\".toPvm <= ? AND vi.vitlID = ? GROUP BY \"to\".toPvm ORDER BY \"to\".toPvm"),
        { Dates::toSql(alku), Dates::toSql(loppu), tili });
    std::vector<Rivi> rivit;
    Money saldo;
    while (q.next()) {
        Rivi r;
        r.paiva = Dates::fromSql(q.value(0).toString());
        r.debet = Money::fromRaw(q.value(1).toLongLong());
        r.kredit = Money::fromRaw(q.value(2).toLongLong());
        r.erotus = r.debet - r.kredit;
        saldo += r.erotus;
        r.saldo = saldo;
        rivit.push_back(r);
    }
    return rivit;
}

} // namespace DailyBalances
