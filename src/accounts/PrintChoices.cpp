#include "accounts/PrintChoices.h"

#include "printing/PrintOptions.h"

namespace PrintChoices {

bool& dialogCancelled() { return PrintOptions::current().cancelled; }

TilikarttaMallit& tilikarttaMallit()
{
    static TilikarttaMallit mallit;
    return mallit;
}

} // namespace PrintChoices
