#pragma once

#include <QSqlDatabase>
#include <QString>
#include <vector>

// The voucher templates of the books, for the template list and the quick-select menu.
namespace cTositePohjat {

struct Rivi {
    qint32 tpId = 0;
    QString nimi;
    int pikavalinta = 0;
};

// Every template by name. Throws DatabaseError.
std::vector<Rivi> Kaikki(const QSqlDatabase& db);
// The template with the quick-select number, 0 when none (the first by key when several).
qint32 Pikavalinnalla(const QSqlDatabase& db, int numero);
// Whether a template other than `tpId` has the quick-select number.
bool Varattu(const QSqlDatabase& db, qint32 tpId, int numero);

} // namespace cTositePohjat
