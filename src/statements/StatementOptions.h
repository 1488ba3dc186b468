#pragma once

#include <QDate>
#include <functional>

// What one statement computation is asked for: the template, the period, the fiscal years and
// the choices of the date dialog.
struct StatementOptions {
    qint32 templateId = 0;
    // The period. A balance sheet uses only its end: balances always run from the fiscal
    // year's start.
    QDate start;
    QDate end;
    // TilikausiAlku and EdTilikausiAlku of the settings.
    QDate fiscalStart;
    QDate previousFiscalStart;
    // One line per account of a lowest-level row (chkTiliErottelu).
    bool perAccount = false;
    // Only the main-level lines are kept (chkVainRyhmat).
    bool groupsOnly = false;
    // Called after each main row with the rows done and their number, so that a window can
    // move its progress bar and let events run.
    std::function<void(int done, int total)> progress;

    // The period with the fiscal years of the bookkeeping settings in force.
    static StatementOptions forPeriod(qint32 templateId, const QDate& start, const QDate& end);
};
