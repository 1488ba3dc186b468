#include "accounts/cTiliTarkastelut.h"

#include "core/ComputedEntries.h"
#include "core/DatabaseError.h"
#include "core/Dates.h"
#include "core/RowReader.h"
#include "core/Schema.h"
#include "core/Transaction.h"

#include <QVariant>

namespace {

// The entries of one account in inspection order. The order ends in the entry's own key, so the
// rows in memory and the rows written by one statement below come out alike.
const QString Entries
    = QStringLiteral("FROM vi INNER JOIN \"to\" ON \"to\".toID = vi.vitoID WHERE \"to\".toNumero >= 0 AND "
                     "\"to\".toAutomaatti = 0 AND vi.viAutomaatti = 0 AND vi.vitlID = ?");
const QString Order = QStringLiteral("ORDER BY \"to\".toPvm, \"to\".toNumero, vi.viID");

} // namespace

cTiliTarkastelut::cTiliTarkastelut(const QSqlDatabase& db)
    : m_db(db)
{
}

void cTiliTarkastelut::Tyhjenna() { Sql::run(m_db, QStringLiteral("DELETE FROM tlTarkastelut")); }

void cTiliTarkastelut::Laske(qint32 tili)
{
    std::vector<Rivi> rivit;
    Money debet, kredit;
    // Tens of thousands of rows for the busiest account: read without a QVariant per cell.
    RowReader q(m_db,
        QStringLiteral("SELECT \"to\".toID, \"to\".toNumero, \"to\".toPvm, \"to\".toSelite, vi.viTyyppi, "
                       "vi.viArvo ")
            + Entries + u' ' + Order,
        { tili });
    while (q.next()) {
        Rivi r;
        r.toId = qint32(q.integer(0));
        r.numero = qint32(q.integer(1));
        r.paiva = q.isNull(2) ? QDate() : Dates::fromSql(q.text(2));
        r.selite = q.text(3);
        const QString tyyppi = q.text(4);
        const Money arvo = Money::fromRaw(q.integer(5));
        if (tyyppi == u"D") {
            r.debet = arvo;
            debet += arvo;
        } else if (tyyppi == u"K") {
            r.kredit = arvo;
            kredit += arvo;
        }
        r.erotus = debet - kredit;
        rivit.push_back(std::move(r));
    }
    // The year's result lies on the profit accounts only as computed entries: shown last, marked.
    const std::vector<ComputedEntries::Entry> lasketut = ComputedEntries::forAccount(m_db, tili);
    for (const ComputedEntries::Entry& e : lasketut) {
        Rivi r;
        r.numero = Laskettu;
        r.paiva = e.date;
        r.selite = e.text;
        if (e.type == u"D") {
            r.debet = e.amount;
            debet += e.amount;
        } else {
            r.kredit = e.amount;
            kredit += e.amount;
        }
        r.erotus = debet - kredit;
        rivit.push_back(std::move(r));
    }
    Schema::createWorkTables(m_db);
    {
        // Thousands of rows: one statement writes them all, the running balance summed by the
        // database in the same order as above.
        Transaction transaction(m_db);
        Tyhjenna();
        Sql::run(m_db,
            QStringLiteral("INSERT INTO tlTarkastelut (Numero, Paiva, Selite, Debet, Kredit, Erotus) "
                           "SELECT \"to\".toNumero, \"to\".toPvm, CASE WHEN \"to\".toSelite IS NULL OR "
                           "\"to\".toSelite = '' "
                           "THEN ' ' ELSE substr(\"to\".toSelite, 1, 255) END, "
                           "CASE WHEN vi.viTyyppi = 'D' THEN vi.viArvo ELSE 0 END, "
                           "CASE WHEN vi.viTyyppi = 'K' THEN vi.viArvo ELSE 0 END, "
                           "SUM(CASE WHEN vi.viTyyppi = 'D' THEN vi.viArvo WHEN vi.viTyyppi = 'K' THEN "
                           "-vi.viArvo ELSE 0 "
                           "END) OVER (")
                + Order + QStringLiteral(" ROWS UNBOUNDED PRECEDING) ") + Entries + u' ' + Order,
            { tili });
        for (size_t i = rivit.size() - lasketut.size(); i < rivit.size(); ++i) {
            const Rivi& r = rivit[i];
            Sql::run(m_db,
                QStringLiteral(
                    "INSERT INTO tlTarkastelut (Numero, Paiva, Selite, Debet, Kredit, Erotus) VALUES "
                    "(NULL, ?, ?, ?, ?, ?)"),
                { Dates::toSql(r.paiva), r.selite, r.debet.raw(), r.kredit.raw(), r.erotus.raw() });
        }
        transaction.commitOrThrow();
    }
    m_rivit = std::move(rivit);
    m_debet = debet;
    m_kredit = kredit;
}
