#pragma once

#include <QString>

// The table and column names of one fiscal year's vouchers and entries: the current year
// ("to"/vi) or the previous one (toE/viE). The record classes of both years share one
// implementation and differ only by this layout.
struct VoucherLayout final {
    QString to; // quoted where needed: "to" is an SQL keyword
    QString toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti;
    QString vi;
    QString viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti;
    // The previous year's keys are given by the program (largest key + 1), not by the database.
    bool programKeys = false;

    static const VoucherLayout& current();
    static const VoucherLayout& previous();
};
