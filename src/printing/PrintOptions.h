#pragma once

#include "printing/ReportJob.h"

#include <QDate>
#include <QString>
#include <optional>

// The print values shared by every report for this run of the program: where reports go, how
// many copies, whether the last print dialog was cancelled, the report period of the date
// dialogs and the statement options of frmDates.
struct PrintValues {
    Destination destination = Destination::Printer;
    int copies = 1;
    bool cancelled = false;
    // The report period; invalid until a date dialog or a caller sets it.
    QDate alkupvm;
    QDate loppupvm;
    // The printer chosen with cTulostin; empty: the system's default printer.
    QString printerName;
    // Statement options of frmDates.
    bool tiliErottelu = false;
    bool vainRyhmat = false;
    bool laaja = true;
};

namespace PrintOptions {

PrintValues& current();

// The copies typed in the print dialog: a whole number from 1 to 99, blanks around it allowed;
// nullopt for anything else.
std::optional<int> copies(const QString& text);

// The report period the date dialogs start from: the remembered one, or the fiscal year.
QDate periodStart();
QDate periodEnd();

// A job's destination and copies from the current values.
void applyTo(ReportJob& job);

} // namespace PrintOptions
