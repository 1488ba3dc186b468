#include "vouchers/VoucherLayout.h"

const VoucherLayout& VoucherLayout::current()
{
    static const VoucherLayout layout { QStringLiteral("\"to\""), QStringLiteral("toID"),
        QStringLiteral("toNumero"), QStringLiteral("toPvm"), QStringLiteral("toSelite"),
        QStringLiteral("toAvaustosite"), QStringLiteral("toPaatostosite"), QStringLiteral("toAutomaatti"),
        QStringLiteral("vi"), QStringLiteral("viID"), QStringLiteral("vitoID"), QStringLiteral("vitlID"),
        QStringLiteral("viTyyppi"), QStringLiteral("viArvo"), QStringLiteral("viSelite"),
        QStringLiteral("viAvausvienti"), QStringLiteral("viPaatosvienti"), QStringLiteral("viAutomaatti"),
        false };
    return layout;
}

const VoucherLayout& VoucherLayout::previous()
{
    static const VoucherLayout layout { QStringLiteral("toE"), QStringLiteral("toEID"),
        QStringLiteral("toENumero"), QStringLiteral("toEPvm"), QStringLiteral("toESelite"),
        QStringLiteral("toEAvaustosite"), QStringLiteral("toEPaatostosite"), QStringLiteral("toEAutomaatti"),
        QStringLiteral("viE"), QStringLiteral("viEID"), QStringLiteral("viEtoID"), QStringLiteral("viEtlID"),
        QStringLiteral("viETyyppi"), QStringLiteral("viEArvo"), QStringLiteral("viESelite"),
        QStringLiteral("viEAvausvienti"), QStringLiteral("viEPaatosvienti"), QStringLiteral("viEAutomaatti"),
        true };
    return layout;
}
