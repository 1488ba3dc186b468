#include "PrintChoices.h"

namespace PrintChoices {

bool& dialogCancelled()
{
    static bool cancelled = false;
    return cancelled;
}

TilikarttaMallit& tilikarttaMallit()
{
    static TilikarttaMallit mallit;
    return mallit;
}

} // namespace PrintChoices
