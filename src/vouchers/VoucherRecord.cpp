#include "vouchers/VoucherRecord.h"

#include "core/Dates.h"
#include "core/RecordText.h"

#include <QVariant>

namespace {

QVariant dateValue(const QDate& date)
{
    return date.isValid() ? QVariant(Dates::toSql(date)) : QVariant(QMetaType(QMetaType::QString));
}

} // namespace

VoucherRecord::~VoucherRecord() { saveOnRelease(); }

QString VoucherRecord::releaseFailure() const
{
    return QStringLiteral("Tositteen tallentaminen ei onnistunut.");
}

void VoucherRecord::setNumero(qint32 numero)
{
    assign(m_v.numero, numero);
    if (ToId() != 0)
        emit NameChanged(m_v.selite, ToId());
}

void VoucherRecord::setSelite(const QString& selite)
{
    assign(m_v.selite, RecordText::cut(selite, RecordText::DescriptionLength));
    if (ToId() != 0)
        emit NameChanged(m_v.selite, ToId());
}

std::optional<TositeValues> VoucherRecord::selectRow(qint32 id) const
{
    const VoucherLayout& l = m_layout;
    QSqlQuery q = Sql::run(database(),
        QStringLiteral("SELECT %1, %2, %3, %4, %5, %6 FROM %7 WHERE %8 = ?")
            .arg(l.toNumero, l.toPvm, l.toSelite, l.toAvaustosite, l.toPaatostosite, l.toAutomaatti, l.to,
                l.toID),
        { id });
    if (!q.next())
        return std::nullopt;
    TositeValues v;
    v.numero = q.value(0).toInt();
    v.paiva = Dates::fromSql(q.value(1).toString());
    v.selite = q.value(2).toString();
    v.avaus = q.value(3).toInt() != 0;
    v.paatos = q.value(4).toInt() != 0;
    v.automaatti = q.value(5).toInt() != 0;
    return v;
}

void VoucherRecord::bindValues(QSqlQuery& q, bool withKeyBeforeFlag, qint32 newKey) const
{
    q.addBindValue(m_v.numero);
    q.addBindValue(dateValue(m_v.paiva));
    q.addBindValue(RecordText::blankIfEmpty(m_v.selite));
    q.addBindValue(m_v.avaus ? 1 : 0);
    q.addBindValue(m_v.paatos ? 1 : 0);
    if (withKeyBeforeFlag)
        q.addBindValue(newKey);
    q.addBindValue(m_v.automaatti ? 1 : 0);
}

qint32 VoucherRecord::insertRow()
{
    const VoucherLayout& l = m_layout;
    const QString columns
        = QStringList { l.toNumero, l.toPvm, l.toSelite, l.toAvaustosite, l.toPaatostosite }.join(
            QStringLiteral(", "));
    if (!l.programKeys) {
        QSqlQuery q = Sql::prepare(database(),
            QStringLiteral("INSERT INTO %1 (%2, %3) VALUES (?, ?, ?, ?, ?, ?)")
                .arg(l.to, columns, l.toAutomaatti));
        bindValues(q, false, 0);
        Sql::exec(q);
        return q.lastInsertId().toInt();
    }
    const QVariant max = Sql::scalar(database(), QStringLiteral("SELECT MAX(%1) FROM %2").arg(l.toID, l.to));
    const qint32 newKey = max.isNull() ? 1 : max.toInt() + 1;
    // The key is written before the automatic flag, as the previous year's rows always were.
    QSqlQuery q = Sql::prepare(database(),
        QStringLiteral("INSERT INTO %1 (%2, %3, %4) VALUES (?, ?, ?, ?, ?, ?, ?)")
            .arg(l.to, columns, l.toID, l.toAutomaatti));
    bindValues(q, true, newKey);
    Sql::exec(q);
    return newKey;
}

void VoucherRecord::updateRow()
{
    const VoucherLayout& l = m_layout;
    QSqlQuery q = Sql::prepare(database(),
        QStringLiteral("UPDATE %1 SET %2 = ?, %3 = ?, %4 = ?, %5 = ?, %6 = ?, %7 = ? WHERE %8 = ?")
            .arg(l.to, l.toNumero, l.toPvm, l.toSelite, l.toAvaustosite, l.toPaatostosite, l.toAutomaatti,
                l.toID));
    bindValues(q, false, 0);
    q.addBindValue(ToId());
    Sql::exec(q);
}

void VoucherRecord::deleteRow()
{
    Sql::run(database(), QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(m_layout.to, m_layout.toID),
        { ToId() });
    Sql::run(database(), QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(m_layout.vi, m_layout.vitoID),
        { ToId() });
}

void VoucherRecord::Delete()
{
    if (IsEmpty())
        return;
    Transaction t(database());
    Record::Delete();
    t.commitOrThrow();
}

qint32 VoucherRecord::cursorKey(const CursorStep& step) const
{
    const VoucherLayout& l = m_layout;
    const QString order = step.descending ? QStringLiteral("DESC") : QStringLiteral("ASC");
    QString where = QStringLiteral("%1 %2 ?").arg(
        l.toNumero, step.compare == CursorStep::Compare::Above ? QStringLiteral(">") : QStringLiteral("<"));
    QVariantList values { step.numero };
    if (step.kind) {
        where
            += QStringLiteral(" AND (%1 <> 0) = ? AND (%2 <> 0) = ?").arg(l.toAvaustosite, l.toPaatostosite);
        values << (step.kind->avaus ? 1 : 0) << (step.kind->paatos ? 1 : 0);
    }
    const QVariant found = Sql::scalar(database(),
        QStringLiteral("SELECT %1 FROM %2 WHERE %3 ORDER BY %4 %5, %1 %5 LIMIT 1")
            .arg(l.toID, l.to, where, l.toNumero, order),
        values);
    return found.isValid() ? found.toInt() : 0;
}

qint32 VoucherRecord::numberAndDate(const QDate& defaultDate, bool onlyUserVouchers)
{
    const VoucherLayout& l = m_layout;
    const QString filter = onlyUserVouchers ? QStringLiteral(" WHERE %1 >= 0").arg(l.toNumero) : QString();
    // Each answered from its own index without reading the table: the largest number, and the
    // latest date walked down the date index to the first voucher that counts. The unary plus
    // keeps the planner of an analysed book from choosing the number index and sorting by date.
    const QVariant maxNumero
        = Sql::scalar(database(), QStringLiteral("SELECT MAX(%1) FROM %2").arg(l.toNumero, l.to) + filter);
    const QVariant maxPvm = Sql::scalar(database(),
        QStringLiteral("SELECT %1 FROM %2 WHERE %1 IS NOT NULL%3 ORDER BY %1 DESC LIMIT 1")
            .arg(l.toPvm, l.to,
                onlyUserVouchers ? QStringLiteral(" AND +%1 >= 0").arg(l.toNumero) : QString()));
    const qint32 numero = maxNumero.isNull() ? 1 : maxNumero.toInt() + 1;
    const QDate latest = Dates::fromSql(maxPvm.toString());
    setPaiva(latest.isValid() ? latest : defaultDate);
    setNumero(numero);
    return numero;
}

void VoucherRecord::initNewVienti(EntryRecord& vienti, const QString& tyyppi) const
{
    vienti.setToId(ToId());
    vienti.setTyyppi(tyyppi);
    vienti.setAvausvienti(m_v.avaus);
    vienti.setPaatosvienti(m_v.paatos);
    vienti.setSelite(m_v.selite);
    vienti.setAutomaatti(m_v.automaatti);
    vienti.takeUndoCopy();
}

QSqlQuery VoucherRecord::selectViennit(const QString& tyyppi) const
{
    return Sql::run(database(),
        EntryRecord::selectSql(m_layout)
            + QStringLiteral(" WHERE %1 = ? AND %2 = ? ORDER BY %3")
                  .arg(m_layout.vitoID, m_layout.viTyyppi, m_layout.viID),
        { ToId(), tyyppi });
}
