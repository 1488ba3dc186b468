#include "ReportCatalog.h"

#include "DatabaseError.h"
#include "TiliRaportit.h"
#include "Tilikartta.h"
#include "cTilienSaldot.h"

namespace {

// The first template of a kind, as the chart printout's lists preselect it.
qint32 ensimmainenMalli(const QSqlDatabase& db, int tyyppi)
{
    for (const Tilikartta::Malli& m : Tilikartta::tilinpaatosMallit(db))
        if (m.tyyppi == tyyppi)
            return m.id;
    return 0;
}

} // namespace

namespace ReportCatalog {

const std::vector<Entry>& entries()
{
    static const std::vector<Entry> list = {
        { QStringLiteral("tilit"), QStringLiteral("tililuettelo"), false, false, false, false,
            [](const QSqlDatabase&, const Options&) { return TiliRaportit::tililuettelo(); } },
        { QStringLiteral("tilikart"), QStringLiteral("tilikartta tuloslaskelma- ja tasemallia vasten"), false,
            false, false, false,
            [](const QSqlDatabase& db, const Options&) {
                return TiliRaportit::tilikartta(db, ensimmainenMalli(db, 1), ensimmainenMalli(db, 2));
            } },
        { QStringLiteral("tilisald"), QStringLiteral("tilien saldot"), true, false, false, false,
            [](const QSqlDatabase& db, const Options&) {
                cTilienSaldot saldot(db);
                saldot.Laske();
                return TiliRaportit::tilienSaldot();
            } },
    };
    return list;
}

const Entry* find(const QString& name)
{
    for (const Entry& e : entries())
        if (e.name.compare(name, Qt::CaseInsensitive) == 0)
            return &e;
    return nullptr;
}

} // namespace ReportCatalog
