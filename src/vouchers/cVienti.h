#pragma once

#include "VientiRecord.h"

// One entry of a voucher of the current fiscal year (table vi).
class cVienti final : public VientiRecord {
public:
    cVienti()
        : VientiRecord(VoucherLayout::current())
    {
    }
};
