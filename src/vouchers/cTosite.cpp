#include "vouchers/cTosite.h"

#include <QVariant>
#include <limits>

qint32 cTosite::SetTositeNumeroJaPaiva(const QDate& defaultDate, bool avaustosite)
{
    Q_UNUSED(avaustosite) // one sequence for every kind, by design
    return numberAndDate(defaultDate, true);
}

std::unique_ptr<cVienti> cTosite::AddNewVienti(const QString& tyyppi) const
{
    return newVienti<cVienti>(tyyppi);
}

cTosite::Viennit cTosite::GetViennit(const QString& tyyppi) const { return viennit<cVienti>(tyyppi); }

std::unique_ptr<cTosite> cTosite::step(
    CursorStep::Compare compare, qint32 numero, bool avaustosite, bool paatostosite, bool descending) const
{
    return loaded<cTosite>(
        cursorKey({ compare, numero, descending, CursorStep::Kind { avaustosite, paatostosite } }));
}

std::unique_ptr<cTosite> cTosite::GetFirst(bool avaustosite, bool paatostosite) const
{
    return step(CursorStep::Compare::Above, 0, avaustosite, paatostosite, false);
}

std::unique_ptr<cTosite> cTosite::GetPrevious(bool avaustosite, bool paatostosite) const
{
    if (IsEmpty())
        return loaded<cTosite>(0);
    return step(CursorStep::Compare::Below, Numero(), avaustosite, paatostosite, true);
}

std::unique_ptr<cTosite> cTosite::GetNext(bool avaustosite, bool paatostosite) const
{
    if (IsEmpty())
        return loaded<cTosite>(0);
    return step(CursorStep::Compare::Above, Numero(), avaustosite, paatostosite, false);
}

std::unique_ptr<cTosite> cTosite::GetLast(bool avaustosite, bool paatostosite) const
{
    return step(CursorStep::Compare::Above, 0, avaustosite, paatostosite, true);
}

std::unique_ptr<cTosite> cTosite::GetLastFromZero(bool avaustosite, bool paatostosite) const
{
    return step(CursorStep::Compare::Above, -1, avaustosite, paatostosite, true);
}

qint16 cTosite::MaxLkmViennitPerTosite(const QSqlDatabase& db)
{
    // Entries of vouchers that no longer exist do not count. The entries are counted per voucher
    // and side from their index first, and only the groups are looked up among the vouchers.
    const qint64 most = Sql::scalar(db,
        QStringLiteral(
            "SELECT MAX(n) FROM (SELECT vitoID, COUNT(*) AS n FROM vi WHERE viTyyppi IN ('D', 'K') "
            "GROUP BY vitoID, viTyyppi) WHERE vitoID IN (SELECT toID FROM \"to\")"))
                            .toLongLong();
    return qint16(std::min<qint64>(most, std::numeric_limits<qint16>::max()));
}

std::vector<cTosite::Rivi> cTosite::Luettelo(const QSqlDatabase& db, bool avaustosite, bool paatostosite)
{
    QSqlQuery q = Sql::run(db,
        QStringLiteral(
            "SELECT toID, toNumero, toSelite FROM \"to\" WHERE (toAvaustosite <> 0) = ? "
            "AND (toPaatostosite <> 0) = ? AND toNumero >= 0 AND toAutomaatti = 0 ORDER BY toNumero, toID"),
        { avaustosite ? 1 : 0, paatostosite ? 1 : 0 });
    std::vector<Rivi> rivit;
    while (q.next())
        rivit.push_back({ q.value(0).toInt(), q.value(1).toInt(), q.value(2).toString() });
    return rivit;
}

std::optional<qint32> cTosite::SuurinNumero(const QSqlDatabase& db)
{
    const QVariant max = Sql::scalar(db, QStringLiteral("SELECT MAX(toNumero) FROM \"to\""));
    return max.isNull() ? std::nullopt : std::optional<qint32>(max.toInt());
}
