#pragma once

#include <QDate>
#include <QString>

// The checks of the date dialogs' fields against the current fiscal year.
namespace PeriodCheck {

struct Result {
    QDate date; // valid when accepted
    QString message; // why not, in the dialog's own words
    bool ok() const { return message.isEmpty(); }
};

// The start date typed in tAlkupvm: a date within TilikausiAlku…TilikausiLoppu inclusive.
Result alku(const QString& text);
// The end date typed in tLoppupvm, checked the same way.
Result loppu(const QString& text);

// The period as a whole: the start may not come after the end. "" when it is fine.
QString jakso(const QDate& alku, const QDate& loppu);

} // namespace PeriodCheck
