#include "app/ReportCatalog.h"

#include "accounts/AccountReports.h"
#include "accounts/ChartOfAccounts.h"
#include "accounts/cTiliTarkastelut.h"
#include "accounts/cTilienSaldot.h"
#include "core/DatabaseError.h"
#include "core/Dates.h"
#include "core/Dialogs.h"
#include "core/ProgramSettings.h"
#include "printing/PeriodCheck.h"
#include "printing/ReportError.h"
#include "statements/StatementPrint.h"
#include "statements/Statements.h"
#include "statements/cMalli.h"
#include "vouchers/JournalPrinting.h"

namespace {

// The first template of a kind, as the chart printout's lists preselect it.
qint32 ensimmainenMalli(const QSqlDatabase& db, int tyyppi)
{
    for (const ChartOfAccounts::Malli& m : ChartOfAccounts::tilinpaatosMallit(db))
        if (m.tyyppi == tyyppi)
            return m.id;
    return 0;
}

// A statement of the template named (or the first of its kind) for the period given (or the
// fiscal year), computed and printed as the statement window does it.
ReportJob statement(const QSqlDatabase& db, const ReportCatalog::Options& options, int kind)
{
    const bool income = kind == cMalli::Tuloslaskelma;
    qint32 id = 0;
    for (const ChartOfAccounts::Malli& m : ChartOfAccounts::tilinpaatosMallit(db))
        if (m.tyyppi == kind && id == 0
            && (options.templateName.isEmpty()
                || m.nimi.compare(options.templateName, Qt::CaseInsensitive) == 0))
            id = m.id;
    if (id == 0 && options.templateName.isEmpty())
        throw ReportError(income ? QStringLiteral("Kirjanpidossa ei ole tuloslaskelmamallia.")
                                 : QStringLiteral("Kirjanpidossa ei ole tasemallia."));
    if (id == 0)
        throw ReportError((income ? QStringLiteral("Tuloslaskelmamallia \"%1\" ei ole kirjanpidossa.")
                                  : QStringLiteral("Tasemallia \"%1\" ei ole kirjanpidossa."))
                              .arg(options.templateName));
    const BookkeepingSettings& s = ProgramSettings::bookkeeping();
    const QDate from = options.from.isValid() ? options.from : s.TilikausiAlku;
    const QDate to = options.to.isValid() ? options.to : s.TilikausiLoppu;
    for (const PeriodCheck::Result& r :
        { PeriodCheck::alku(Dates::format(from)), PeriodCheck::loppu(Dates::format(to)) })
        if (!r.ok())
            throw ReportError(r.message);
    StatementOptions o = StatementOptions::forPeriod(id, from, to);
    o.perAccount = options.perAccount;
    o.groupsOnly = options.groupsOnly;
    if (!Statements::compute(db, o))
        throw ReportError(
            income ? QStringLiteral("Tuloslaskelmaa ei laskettu.") : QStringLiteral("Tasetta ei laskettu."));
    return StatementPrint::job(kind, !options.narrow, from, to, s);
}

JournalPrinting::Laji laji(const QString& kind)
{
    return kind == u"opening" ? JournalPrinting::Laji::Avaus
        : kind == u"closing"  ? JournalPrinting::Laji::Paatos
                              : JournalPrinting::Laji::Tavallinen;
}

// The period given, or the fiscal year; refused as the date dialogs refuse it.
std::pair<QDate, QDate> jakso(const ReportCatalog::Options& o)
{
    const BookkeepingSettings& s = ProgramSettings::bookkeeping();
    const QDate alku = o.from.isValid() ? o.from : s.TilikausiAlku;
    const QDate loppu = o.to.isValid() ? o.to : s.TilikausiLoppu;
    if (const QString virhe = JournalPrinting::jaksonVirhe(alku, loppu); !virhe.isEmpty())
        throw ReportError(virhe);
    return { alku, loppu };
}

} // namespace

namespace ReportCatalog {

const std::vector<Entry>& entries()
{
    static const std::vector<Entry> list = {
        { QStringLiteral("tilit"), QStringLiteral("tililuettelo"), false, false, false,
            [](const QSqlDatabase&, const Options&) { return AccountReports::tililuettelo(); } },
        { QStringLiteral("tilikart"), QStringLiteral("tilikartta tuloslaskelma- ja tasemallia vasten"), false,
            false, false,
            [](const QSqlDatabase& db, const Options&) {
                return AccountReports::tilikartta(db, ensimmainenMalli(db, 1), ensimmainenMalli(db, 2));
            } },
        { QStringLiteral("tilisald"), QStringLiteral("tilien saldot"), false, false, false,
            [](const QSqlDatabase& db, const Options&) {
                cTilienSaldot saldot(db);
                saldot.Laske();
                return AccountReports::tilienSaldot();
            } },
        { QStringLiteral("tuloslaskelma"), QStringLiteral("tuloslaskelma mallista (--narrow: suppea)"), true,
            false, false,
            [](const QSqlDatabase& db, const Options& o) { return statement(db, o, cMalli::Tuloslaskelma); },
            true },
        { QStringLiteral("tase"), QStringLiteral("tase mallista (--narrow: suppea)"), true, false, false,
            [](const QSqlDatabase& db, const Options& o) { return statement(db, o, cMalli::Tase); }, true },
        { QStringLiteral("tilitark"), QStringLiteral("tilitarkastelu (--account tilinumero)"), false, true,
            false,
            [](const QSqlDatabase& db, const Options& o) {
                if (!o.account)
                    throw ReportError(QStringLiteral("Anna tarkasteltava tili: --account tilinumero."));
                const QVariant id = Sql::scalar(
                    db, QStringLiteral("SELECT tlID FROM tl WHERE tlNumero = ?"), { *o.account });
                if (!id.isValid())
                    throw ReportError(QStringLiteral("Tiliä %1 ei ole.").arg(*o.account));
                cTiliTarkastelut tarkastelu(db);
                tarkastelu.Laske(id.toInt());
                const QString nimi
                    = Sql::scalar(db, QStringLiteral("SELECT tlNimi FROM tl WHERE tlID = ?"), { id })
                          .toString();
                return AccountReports::tiliTarkastelu(
                    QString::number(*o.account) + u' ' + nimi.trimmed(), tarkastelu.erotusSumma());
            } },
        { QStringLiteral("paivakirja"), QStringLiteral("päiväkirja (--kind, jakso oletuksena tilikausi)"),
            true, false, true,
            [](const QSqlDatabase& db, const Options& o) {
                const auto [alku, loppu] = jakso(o);
                return JournalPrinting::paivakirja(db, laji(o.kind), alku, loppu);
            } },
        { QStringLiteral("paakirja"), QStringLiteral("pääkirja (--kind, jakso oletuksena tilikausi)"), true,
            false, true,
            [](const QSqlDatabase& db, const Options& o) {
                const auto [alku, loppu] = jakso(o);
                const JournalPrinting::Paakirja valmis
                    = JournalPrinting::valmistelePaakirja(db, laji(o.kind), alku, loppu);
                if (!valmis.virheelliset.isEmpty())
                    Dialogs::instance().information(
                        JournalPrinting::virheellisetViennit(valmis.virheelliset));
                return JournalPrinting::paakirja(valmis, laji(o.kind), alku, loppu);
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
