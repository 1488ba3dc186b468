#pragma once

#include "printing/ReportJob.h"

#include <QSqlDatabase>
#include <functional>

class QWidget;
class ReportDocument;

// Runs a report for a window: the print options, the layout under a progress bar that can be
// cancelled, then the preview window or the printer. Every failure is told to the user in
// Finnish through Dialogs; nothing is thrown to the caller.
namespace ReportRunner {

// Shows frmTulostus and, unless it is cancelled, runs the report to the chosen destination.
void print(QWidget* parent, const QSqlDatabase& db, ReportJob job);
// Runs the report to job.destination with job.copies, without asking.
void run(QWidget* parent, const QSqlDatabase& db, const ReportJob& job);

// Prints a laid-out report on the printer chosen with cTulostin (or the default one), in the
// report's orientation. False when there is no printer or the user cancelled.
bool printDocument(QWidget* parent, const ReportDocument& document, int copies);
// Whether the machine has a printer to print on; tests give their own answer (empty: ask the
// system again).
bool printerAvailable();
void setPrinterCheck(std::function<bool()> check);
// What the user is told when there is none.
QString noPrinterText();

// Writes a PDF with a progress bar; throws ReportError or ReportCancelled.
void writePdf(QWidget* parent, const ReportDocument& document, const QString& path);

} // namespace ReportRunner
