#pragma once

#include "VientiRecord.h"

// One entry of a voucher of the current fiscal year (table vi).
class cVienti final : public VientiRecord {
public:
    explicit cVienti(const QSqlDatabase& db)
        : VientiRecord(db, VoucherLayout::current())
    {
    }
};
