#pragma once

#include "core/Money.h"
#include "statements/IncomeStatement.h"
#include "statements/StatementOptions.h"

#include <QSqlDatabase>
#include <QString>
#include <vector>

// One printed line of a balance sheet: a row of the work table tase.
struct TaseLine {
    using Kind = TulaLine::Kind;
    Kind kind = Kind::Detail;
    qint16 level = 0; // taseTyyppi
    QString teksti;
    qint32 mrId = 0;
    qint32 tlId = 0; // tasetlID: the account of a per-account line, else the row's mrtlID
    QString viTyyppi; // taseviTyyppi
    qint16 printGroup = 0; // tasePrintGroup: 1 under "Vastaavaa", 2 elsewhere
    Money alkusaldo; // entries of the opening vouchers
    Money muutos; // other entries from the fiscal year's start to the end date
    Money loppusaldoEdellinen; // the previous year's balance one year before the end date

    Money loppusaldo() const { return alkusaldo + muutos; }
    bool hasAmounts() const { return kind == Kind::Detail || kind == Kind::Total || kind == Kind::Subtotal; }
    bool groupRow() const { return kind == Kind::Header || kind == Kind::Total || kind == Kind::Subtotal; }
};

struct BalanceSheetLines {
    std::vector<TaseLine> lines;
    // The linked income statement, computed for the same dates: its profit entries count in the
    // balance sheet, and its profit row is the profit line's result.
    std::optional<IncomeStatementLines> income;
    // The previous year held no entries of the template's accounts up to the date one year
    // earlier: its column (and the change) is left empty rather than shown as zeros.
    bool noPreviousYear = false;
};

// The balance sheet: a template's rows computed at an end date into the work table tase. The
// year's result is not booked: the automatic profit entries of the linked income statement are
// counted on the profit account, and a formula row of the template is the profit line, which
// takes the result from that income statement, computed for the same dates.
namespace BalanceSheet {

// The message when the template names no income statement.
QString noIncomeStatementMessage();

// Every line with its amounts. `incomeTemplateId` is the linked income statement. Throws
// DatabaseError.
BalanceSheetLines compute(const QSqlDatabase& db, const StatementOptions& options, qint32 incomeTemplateId);
// With `groupsOnly` only the main-level lines; the separator after each main-level total goes.
// A sheet that does not balance ends in a line saying so, with the difference.
void finish(BalanceSheetLines& sheet, bool groupsOnly);
// Assets less liabilities: the main-level totals under "Vastaavaa" less the others'. Zero when
// they agree, or when either side has no main-level total.
Money imbalance(const BalanceSheetLines& sheet);
// What the user is told of a balance sheet that does not balance.
QString imbalanceMessage(Money difference);
void write(const QSqlDatabase& db, const BalanceSheetLines& sheet);
// A template that names no income statement is refused with the message (false), and nothing
// is computed. Otherwise tula and tase are emptied and tase is filled (and tula, when the
// profit line needs the income statement), in one transaction. `difference`, when given,
// receives imbalance(). Throws DatabaseError.
bool run(const QSqlDatabase& db, const StatementOptions& options, Money* difference = nullptr);
// The template's maTulosMaID; 0 when none (or no such template).
qint32 incomeTemplateOf(const QSqlDatabase& db, qint32 balanceTemplateId);

} // namespace BalanceSheet
