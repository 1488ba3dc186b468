#include "cTilienSaldot.h"

#include "DatabaseError.h"
#include "Transaction.h"
#include "cTilienSaldo.h"

#include <QVariant>

cTilienSaldot::cTilienSaldot(const QSqlDatabase& db)
    : m_db(db)
{
}

void cTilienSaldot::Tyhjenna() { Sql::run(m_db, QStringLiteral("DELETE FROM tlSaldot")); }

void cTilienSaldot::Laske()
{
    std::vector<Rivi> rivit;
    Money debet, kredit;
    Transaction transaction(m_db);
    Tyhjenna();
    // One pass over the entries, grouped by account; accounts without entries get zeros. The
    // unary plus keeps the planner from walking the entries in account-index order, one random
    // read each: a plain scan grouped in a temporary tree is several times faster.
    QSqlQuery q = Sql::run(m_db,
        QStringLiteral(
            "SELECT tl.tlNumero, tl.tlNimi, COALESCE(s.debet, 0), COALESCE(s.kredit, 0) FROM tl LEFT JOIN ("
            "SELECT vi.vitlID AS tlID, SUM(CASE WHEN vi.viTyyppi = 'D' THEN vi.viArvo ELSE 0 END) AS debet, "
            "SUM(CASE WHEN vi.viTyyppi = 'K' THEN vi.viArvo ELSE 0 END) AS kredit "
            "FROM vi INNER JOIN \"to\" ON \"to\".toID = vi.vitoID WHERE vi.viAutomaatti = 0 GROUP BY "
            "+vi.vitlID"
            ") s ON s.tlID = tl.tlID ORDER BY tl.tlNumero, tl.tlID"));
    while (q.next()) {
        Rivi r;
        r.tili = QString::number(q.value(0).toLongLong()) + u' ' + q.value(1).toString();
        r.debet = Money::fromRaw(q.value(2).toLongLong());
        r.kredit = Money::fromRaw(q.value(3).toLongLong());
        r.erotus = r.debet - r.kredit;
        cTilienSaldo rivi(m_db);
        rivi.setTili(r.tili);
        rivi.setDebet(r.debet);
        rivi.setKredit(r.kredit);
        rivi.setErotus(r.erotus);
        rivi.Save();
        r.id = rivi.id();
        r.tili = rivi.Tili();
        debet += r.debet;
        kredit += r.kredit;
        rivit.push_back(r);
    }
    transaction.commitOrThrow();
    m_rivit = std::move(rivit);
    m_debet = debet;
    m_kredit = kredit;
}
