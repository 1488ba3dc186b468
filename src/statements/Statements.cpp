#include "statements/Statements.h"

#include "core/DatabaseError.h"
#include "core/Dialogs.h"
#include "statements/BalanceSheet.h"
#include "statements/IncomeStatement.h"
#include "statements/TemplateTree.h"
#include "statements/cMalli.h"

#include <QVariant>

namespace Statements {

int kindOf(const QSqlDatabase& db, qint32 templateId)
{
    const QVariant kind
        = Sql::scalar(db, QStringLiteral("SELECT maTyyppi FROM ma WHERE maID = ?"), { templateId });
    return kind.isValid() ? kind.toInt() : 0;
}

namespace {

// Rows whose group links never reach a main group (a cycle, a missing group) are left out of
// the statement; the user is told how many, so that a total that looks short is explained.
void tellRowsOutsideTree(const QSqlDatabase& db, qint32 templateId)
{
    const TemplateTree tree = TemplateTree::load(db, templateId);
    const size_t outside = tree.rows().size() - tree.printOrder().size();
    if (outside > 0)
        Dialogs::instance().information(
            QStringLiteral("Mallissa on %1 riviä, jotka eivät kuulu mihinkään pääryhmään (ryhmät muodostavat "
                           "kehän tai ryhmä puuttuu). Niitä ei lasketa.\nKorjaa malli Tulos ja tase "
                           "-ikkunassa; mallien tarkistus näyttää rivit.")
                .arg(outside));
}

} // namespace

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
    tellRowsOutsideTree(db, options.templateId);
    if (kind == cMalli::Tuloslaskelma)
        IncomeStatement::run(db, options);
    else if (Money difference; BalanceSheet::run(db, options, &difference) && !difference.isZero())
        Dialogs::instance().information(BalanceSheet::imbalanceMessage(difference));
    return true;
}

} // namespace Statements
