#pragma once

#include "vouchers/EntryRecord.h"

// One entry of a voucher of the current fiscal year (table vi).
class cVienti final : public EntryRecord {
public:
    explicit cVienti(const QSqlDatabase& db)
        : EntryRecord(db, VoucherLayout::current())
    {
    }
};
