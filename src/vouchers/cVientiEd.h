#pragma once

#include "vouchers/EntryRecord.h"

// One entry of a voucher of the previous fiscal year (table viE). A new entry's key is the
// largest key + 1, given by the program.
class cVientiEd final : public EntryRecord {
public:
    explicit cVientiEd(const QSqlDatabase& db)
        : EntryRecord(db, VoucherLayout::previous())
    {
    }
};
