#pragma once

#include <QtGlobal>

// Choices that a print dialog leaves for the printout that follows it, for this run of the
// program.
namespace PrintChoices {

// The session's shared flag: the last print-choice dialog was cancelled.
bool& dialogCancelled();

// The statement templates chosen for the chart of accounts against templates ("tilikart.rpt");
// 0 where nothing was chosen.
struct TilikarttaMallit {
    qint32 tuloslaskelmaID = 0;
    qint32 taseID = 0;
};
TilikarttaMallit& tilikarttaMallit();

} // namespace PrintChoices
