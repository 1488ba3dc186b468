#include "vouchers/cTositeTarkistus.h"

#include "accounts/ChartOfAccounts.h"
#include "core/DatabaseError.h"
#include "core/Dates.h"
#include "core/ProgramSettings.h"
#include "core/Transaction.h"

#include <QSqlQuery>
#include <QVariant>

namespace {

// The voucher columns every step reads, in this order, for finding().
const QString VoucherColumns = QStringLiteral("t.toID, t.toNumero, t.toAvaustosite, t.toPaatostosite, "
                                              "t.toPvm, t.toSelite");
// The vouchers checked for date and balance.
const QString Checked = QStringLiteral("t.toNumero >= 0 AND t.toAutomaatti = 0");

cTositeTarkistusVirhe finding(const QSqlQuery& q, const QString& teksti)
{
    cTositeTarkistusVirhe v;
    v.ToId = q.value(0).toInt();
    v.Numero = q.value(1).toInt();
    v.Avaustosite = q.value(2).toInt() != 0;
    v.Paatostosite = q.value(3).toInt() != 0;
    v.Paiva = Dates::fromSql(q.value(4).toString());
    v.Selite = q.value(5).toString();
    v.Teksti = teksti.arg(v.Numero);
    return v;
}

QVariant sqlDate(const QDate& d) { return d.isValid() ? QVariant(Dates::toSql(d)) : QVariant(); }

} // namespace

std::vector<cTositeTarkistusVirhe> cTositeTarkistus::Tarkista(bool korjaa) const
{
    if (korjaa)
        poistaOrvot();
    std::vector<cTositeTarkistusVirhe> virheet;
    paivat(virheet);
    saldot(virheet);
    tilit(virheet);
    selvittely(virheet);
    return virheet;
}

void cTositeTarkistus::poistaOrvot() const
{
    Transaction t(m_db);
    Sql::run(m_db,
        QStringLiteral(
            "DELETE FROM vi WHERE NOT EXISTS (SELECT * FROM \"to\" WHERE vi.vitoID = \"to\".toID)"));
    Sql::run(m_db,
        QStringLiteral("DELETE FROM viE WHERE NOT EXISTS (SELECT * FROM toE WHERE viE.viEtoID = toE.toEID)"));
    t.commitOrThrow();
}

void cTositeTarkistus::paivat(std::vector<cTositeTarkistusVirhe>& virheet) const
{
    const BookkeepingSettings& asetukset = ProgramSettings::bookkeeping();
    // A date that is missing or does not read as a date is outside the year as well.
    QSqlQuery q = Sql::run(m_db,
        QStringLiteral("SELECT %1 FROM \"to\" t WHERE %2 AND (t.toPvm IS NULL OR t.toPvm = '' OR t.toPvm < ? "
                       "OR t.toPvm > ?) ORDER BY t.toID")
            .arg(VoucherColumns, Checked),
        { sqlDate(asetukset.TilikausiAlku), sqlDate(asetukset.TilikausiLoppu) });
    while (q.next())
        virheet.push_back(finding(q, QStringLiteral("Tositteen no: %1 päivä ei kuulu tilikauteen.")));
}

void cTositeTarkistus::saldot(std::vector<cTositeTarkistusVirhe>& virheet) const
{
    // Money is stored as whole ten-thousandths, so the sums are exact.
    QSqlQuery q = Sql::run(m_db,
        QStringLiteral(
            "SELECT %1 FROM \"to\" t JOIN (SELECT vitoID, "
            "SUM(CASE WHEN viTyyppi = 'D' THEN viArvo ELSE 0 END) AS d, "
            "SUM(CASE WHEN viTyyppi = 'K' THEN viArvo ELSE 0 END) AS k "
            "FROM vi GROUP BY vitoID) s ON s.vitoID = t.toID WHERE %2 AND s.d <> s.k ORDER BY t.toID")
            .arg(VoucherColumns, Checked));
    while (q.next())
        virheet.push_back(finding(q, QStringLiteral("Tositteen no: %1 debet ja kredit saldo ei täsmää.")));
}

void cTositeTarkistus::tilit(std::vector<cTositeTarkistusVirhe>& virheet) const
{
    // One finding per entry, the voucher that holds it named.
    QSqlQuery q = Sql::run(m_db,
        QStringLiteral("SELECT %1 FROM vi JOIN \"to\" t ON t.toID = vi.vitoID WHERE t.toNumero >= 0 AND "
                       "NOT EXISTS (SELECT * FROM tl WHERE vi.vitlID = tl.tlID) ORDER BY vi.viID")
            .arg(VoucherColumns));
    while (q.next())
        virheet.push_back(finding(q, QStringLiteral("Jokin tilivalinta puuttuu tositteelta no: %1.")));
}

void cTositeTarkistus::selvittely(std::vector<cTositeTarkistusVirhe>& virheet) const
{
    // Bank statement lines booked on the suspense account wait for their real account.
    const qint32 tili = ChartOfAccounts::suspenseAccount(m_db);
    if (!tili)
        return;
    QSqlQuery q = Sql::run(m_db,
        QStringLiteral(
            "SELECT %1 FROM \"to\" t WHERE %2 AND EXISTS (SELECT * FROM vi WHERE vi.vitoID = t.toID "
            "AND vi.vitlID = ?) ORDER BY t.toNumero, t.toID")
            .arg(VoucherColumns, Checked),
        { tili });
    while (q.next())
        virheet.push_back(finding(q, QStringLiteral("Tositteen no: %1 on kirjattu selvittelytilille.")));
}
