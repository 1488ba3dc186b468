#include "vouchers/cTositePohjat.h"

#include "core/DatabaseError.h"

#include <QVariant>

namespace cTositePohjat {

std::vector<Rivi> Kaikki(const QSqlDatabase& db)
{
    std::vector<Rivi> rivit;
    QSqlQuery q
        = Sql::run(db, QStringLiteral("SELECT tpID, Nimi, Pikavalinta FROM tpPohjat ORDER BY Nimi, tpID"));
    while (q.next())
        rivit.push_back({ q.value(0).toInt(), q.value(1).toString(), q.value(2).toInt() });
    return rivit;
}

qint32 Pikavalinnalla(const QSqlDatabase& db, int numero)
{
    const QVariant id = Sql::scalar(
        db, QStringLiteral("SELECT tpID FROM tpPohjat WHERE Pikavalinta = ? ORDER BY tpID"), { numero });
    return id.isValid() ? id.toInt() : 0;
}

bool Varattu(const QSqlDatabase& db, qint32 tpId, int numero)
{
    return Sql::scalar(
        db, QStringLiteral("SELECT tpID FROM tpPohjat WHERE tpID <> ? AND Pikavalinta = ?"), { tpId, numero })
        .isValid();
}

} // namespace cTositePohjat
