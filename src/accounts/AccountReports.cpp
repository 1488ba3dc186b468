#include "accounts/AccountReports.h"

#include "core/DatabaseError.h"
#include "core/ProgramSettings.h"
#include "printing/ReportFormulas.h"

namespace {

QString seurannimi()
{
    return QStringLiteral("Seurannimi= ") + ReportFormulas::quoted(ProgramSettings::bookkeeping().Seurannimi);
}

QString malliNimi(const QSqlDatabase& db, qint32 id)
{
    if (id == 0)
        return QStringLiteral("ei valittu");
    return Sql::scalar(db, QStringLiteral("SELECT maNimi FROM ma WHERE maID = ?"), { id }).toString();
}

} // namespace

namespace AccountReports {

ReportJob tililuettelo()
{
    ReportJob job;
    job.reportFile = QStringLiteral("tilit.rpt");
    job.formulas = { seurannimi(), QStringLiteral("Otsake= 'Tililuettelo'") };
    return job;
}

ReportJob tilikartta(const QSqlDatabase& db, qint32 tuloslaskelmaID, qint32 taseID)
{
    ReportJob job;
    job.reportFile = QStringLiteral("tilikart.rpt");
    job.formulas = { seurannimi(), QStringLiteral("Otsake= 'Tilikartta'"),
        QStringLiteral("Mallit= ")
            + ReportFormulas::quoted(QStringLiteral("Tuloslaskelma: ") + malliNimi(db, tuloslaskelmaID)
                + QStringLiteral(", tase: ") + malliNimi(db, taseID)) };
    job.parameters
        = { { QStringLiteral("tuloslaskelmaID"), tuloslaskelmaID }, { QStringLiteral("taseID"), taseID } };
    return job;
}

ReportJob tilienSaldot()
{
    ReportJob job;
    job.reportFile = QStringLiteral("tilisald.rpt");
    job.formulas = { seurannimi(), QStringLiteral("Otsake= 'Tilien saldot'") };
    job.sortFields = { QStringLiteral("+{tlSaldot.tlsID}") };
    // The balances are the current fiscal year's: its dates stand in the heading.
    job.periodStart = ProgramSettings::bookkeeping().TilikausiAlku;
    job.periodEnd = ProgramSettings::bookkeeping().TilikausiLoppu;
    return job;
}

ReportJob tiliTarkastelu(const QString& tili, Money loppusaldo)
{
    ReportJob job;
    job.reportFile = QStringLiteral("tilitark.rpt");
    job.formulas = { seurannimi(), QStringLiteral("Otsake= 'Tilitarkastelu'"),
        QStringLiteral("Tili= ") + ReportFormulas::quoted(tili),
        QStringLiteral("Erotus= ") + ReportFormulas::quoted(loppusaldo.toString()) };
    job.sortFields = { QStringLiteral("+{tlTarkastelut.tltID}") };
    return job;
}

} // namespace AccountReports
