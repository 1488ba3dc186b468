#include "accounts/cTilienSaldot.h"

#include "accounts/cTilienSaldo.h"
#include "core/DatabaseError.h"
#include "core/KeyTable.h"
#include "core/RowReader.h"
#include "core/Transaction.h"

#include <QHash>
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
    // The year is read in two plain scans and summed here, by account: joining every entry to its
    // voucher in the engine costs several times more. An entry counts when its voucher exists.
    KeyTable<bool> tositteet;
    {
        RowReader q(m_db, QStringLiteral("SELECT toID FROM \"to\""));
        while (q.next())
            tositteet.set(q.integer(0), true);
    }
    QHash<qint32, std::pair<qint64, qint64>> summat; // tlID → debit, credit
    {
        RowReader q(
            m_db, QStringLiteral("SELECT vitoID, vitlID, viTyyppi, viArvo FROM vi WHERE viAutomaatti = 0"));
        while (q.next()) {
            const QByteArrayView tyyppi = q.bytes(2);
            if (!tositteet.value(q.integer(0)) || q.isNull(2) || (tyyppi != "D" && tyyppi != "K"))
                continue;
            std::pair<qint64, qint64>& s = summat[qint32(q.integer(1))];
            (tyyppi == "D" ? s.first : s.second) += q.integer(3);
        }
    }
    Transaction transaction(m_db);
    Tyhjenna();
    // Every account in number order; one without entries gets zeros.
    QSqlQuery q = Sql::run(
        m_db, QStringLiteral("SELECT tl.tlNumero, tl.tlNimi, tl.tlID FROM tl ORDER BY tl.tlNumero, tl.tlID"));
    while (q.next()) {
        Rivi r;
        r.tili = QString::number(q.value(0).toLongLong()) + u' ' + q.value(1).toString();
        const std::pair<qint64, qint64> s = summat.value(q.value(2).toInt());
        r.debet = Money::fromRaw(s.first);
        r.kredit = Money::fromRaw(s.second);
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
