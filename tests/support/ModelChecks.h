#pragma once

#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>

// Checks of the books Vorkam ships in its program folder: the model databases from which new
// associations are made and the demo association. Each check returns one Finnish text per
// finding; an empty list means that the book is as it must be. The template rules are the
// program's own template checks; beyond them come what those do not see: account numbers and
// ranges, rows naming missing accounts, the settings, and the vouchers.
namespace ModelChecks {

struct ShippedBook {
    QString name; // "perusmalli"
    QString file; // relative to the program folder: "mallit/perusmalli.mdb"
    bool demo = false; // holds a year of vouchers; a model holds none
    QStringList incomeStatementMainRows; // in order
};

// The four models and the demo association, as the build puts them in the program folder.
QList<ShippedBook> shippedBooks();

// The shipped book of that name; an empty one if there is none.
ShippedBook shippedBook(const QString& name);

// Every check that applies to `book`, for a fiscal year that is the calendar year `year`.
// Runs the template checks, which write their findings into the work table tk.
QStringList checkShippedBook(const QSqlDatabase& db, const ShippedBook& book, int year);

} // namespace ModelChecks
