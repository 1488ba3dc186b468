#include "Statements.h"

#include "BalanceSheet.h"
#include "DatabaseError.h"
#include "Dialogs.h"
#include "IncomeStatement.h"
#include "ProfitEntries.h"
#include "Transaction.h"
#include "cMalli.h"

#include <QVariant>

namespace Statements {

int kindOf(const QSqlDatabase& db, qint32 templateId)
{
    const QVariant kind
        = Sql::scalar(db, QStringLiteral("SELECT maTyyppi FROM ma WHERE maID = ?"), { templateId });
    return kind.isValid() ? kind.toInt() : 0;
}

bool compute(const QSqlDatabase& db, const StatementOptions& options)
{
    const int kind = kindOf(db, options.templateId);
    if (kind != cMalli::Tuloslaskelma && kind != cMalli::Tase) {
        Dialogs::instance().information(QStringLiteral("Valittua mallia ei löydy."));
        return false;
    }
    if (kind == cMalli::Tase && BalanceSheet::incomeTemplateOf(db, options.templateId) == 0) {
        Dialogs::instance().information(BalanceSheet::noIncomeStatementMessage());
        return false;
    }
    Transaction t(db);
    if (kind == cMalli::Tuloslaskelma) {
        ProfitEntries::post(db, options.templateId, options.start, options.end);
        IncomeStatement::run(db, options);
    } else {
        ProfitEntries::post(
            db, BalanceSheet::incomeTemplateOf(db, options.templateId), options.fiscalStart, options.end);
        BalanceSheet::run(db, options);
    }
    t.commitOrThrow();
    return true;
}

} // namespace Statements
