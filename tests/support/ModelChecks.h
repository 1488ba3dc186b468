#pragma once

#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QtGlobal>

// Checks of the books Vorkam ships in its program folder: the model databases from which new
// associations are made and the demo association. Each check returns one Finnish text per
// finding; an empty list means that the book is as it must be. The checks only read.
namespace ModelChecks {

// What one shipped book must look like beyond the rules that every book follows.
struct ShippedBook {
    QString name; // "perusmalli"
    QString file; // relative to the program folder: "mallit/perusmalli.mdb"
    bool demo = false; // holds a year of vouchers; a model holds none
    // The income statement's main rows, in order, and its formula row with the rows it adds.
    QStringList incomeStatementMainRows;
    QString resultRow;
    QStringList resultRowAdds;
    QString turnoverRow;
    bool generalModel = false; // the general association chart (perusmalli and the demo on it)
    bool activityMoneyApart = false; // administration and activity money apart (Lions)
};

// The four models and the demo association, as the build puts them in the program folder.
QList<ShippedBook> shippedBooks();

// Chart of accounts, the income statement and balance sheet templates, and the settings, for
// a fiscal year that is the calendar year `year`. Every shipped book passes these.
QStringList checkBook(const QSqlDatabase& db, int year);

// The book's own shape: main rows, result formula, turnover row and the model's own accounts.
QStringList checkLayout(const QSqlDatabase& db, const ShippedBook& book);

// A model database holds no vouchers of either year.
QStringList checkNoVouchers(const QSqlDatabase& db);

// The demo's vouchers of the calendar year `year`: balanced, numbered, dated in the year, with
// an opening voucher and closing entries, and statements that agree with the accounts.
QStringList checkDemo(const QSqlDatabase& db, int year);

// Everything above that applies to `book`.
QStringList checkShippedBook(const QSqlDatabase& db, const ShippedBook& book, int year);

// Sums over the current year's entries, in ten-thousandths of a euro. The result is income
// less expenses; the automatic profit entries are not made, so the profit accounts are empty.
struct Totals {
    qint64 resultByAccounts = 0; // accounts 3000-9999 other than the profit account
    qint64 resultByTemplate = 0; // the income statement's main rows other than the profit row
    qint64 assets = 0; // the balance sheet's rows under "Vastaavaa"
    qint64 liabilities = 0; // the rows under "Vastattavaa", without the year's result
};
Totals totals(const QSqlDatabase& db);

} // namespace ModelChecks
