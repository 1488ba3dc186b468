#include "TositeRecord.h"

#include "DBC.h"
#include "Dates.h"
#include "RecordText.h"
#include "Transaction.h"
#include "VientiRecord.h"
#include "VoucherDatabaseError.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace {

QSqlQuery prepared(const QSqlDatabase& db, const QString& sql)
{
    QSqlQuery q(db);
    if (!q.prepare(sql))
        throw VoucherDatabaseError(q.lastError().text());
    return q;
}

QVariant dateValue(const QDate& date)
{
    return date.isValid() ? QVariant(Dates::toSql(date)) : QVariant(QMetaType(QMetaType::QString));
}

} // namespace

TositeRecord::~TositeRecord()
{
    if (m_isEmpty || !m_dirty)
        return;
    try {
        Save(false);
    } catch (const VoucherDatabaseError& e) {
        qWarning("Tosite could not be saved on release: %s", e.what());
    }
}

void TositeRecord::setNumero(qint32 numero)
{
    assign(m_v.numero, numero);
    if (m_toId != 0)
        emit NameChanged(m_v.selite, m_toId);
}

void TositeRecord::setPaiva(const QDate& paiva) { assign(m_v.paiva, paiva.isValid() ? paiva : QDate()); }

void TositeRecord::setSelite(const QString& selite)
{
    assign(m_v.selite, RecordText::cut(selite, RecordText::DescriptionLength));
    if (m_toId != 0)
        emit NameChanged(m_v.selite, m_toId);
}

void TositeRecord::setAvaustosite(bool on) { assign(m_v.avaus, on); }
void TositeRecord::setPaatostosite(bool on) { assign(m_v.paatos, on); }
void TositeRecord::setAutomaatti(bool on) { assign(m_v.automaatti, on); }

void TositeRecord::reset()
{
    m_toId = 0;
    m_v = Values();
    m_undo = Values();
    m_dirty = false;
}

bool TositeRecord::Load(qint32 id)
{
    if (m_isEmpty)
        return false;
    const VoucherLayout& l = m_layout;
    QSqlQuery q = prepared(DBC::instance().AvaaDB(),
        QStringLiteral("SELECT %1, %2, %3, %4, %5, %6 FROM %7 WHERE %8 = ?")
            .arg(l.toNumero, l.toPvm, l.toSelite, l.toAvaustosite, l.toPaatostosite, l.toAutomaatti, l.to,
                l.toID));
    q.addBindValue(id);
    VoucherDatabaseError::exec(q);
    if (!q.next()) {
        reset();
        return false;
    }
    m_toId = id;
    m_v.numero = q.value(0).toInt();
    m_v.paiva = Dates::fromSql(q.value(1).toString());
    m_v.selite = q.value(2).toString();
    m_v.avaus = q.value(3).toInt() != 0;
    m_v.paatos = q.value(4).toInt() != 0;
    m_v.automaatti = q.value(5).toInt() != 0;
    m_undo = m_v;
    m_dirty = false;
    return true;
}

void TositeRecord::Save(bool force)
{
    if (m_isEmpty || (!force && !m_dirty))
        return;
    const VoucherLayout& l = m_layout;
    const QSqlDatabase db = DBC::instance().AvaaDB();
    QSqlQuery q(db);
    qint32 newKey = 0;
    const QString columns
        = QStringList { l.toNumero, l.toPvm, l.toSelite, l.toAvaustosite, l.toPaatostosite }.join(
            QStringLiteral(", "));
    if (m_toId != 0) {
        q = prepared(db,
            QStringLiteral("UPDATE %1 SET %2 = ?, %3 = ?, %4 = ?, %5 = ?, %6 = ?, %7 = ? WHERE %8 = ?")
                .arg(l.to, l.toNumero, l.toPvm, l.toSelite, l.toAvaustosite, l.toPaatostosite, l.toAutomaatti,
                    l.toID));
    } else if (l.programKeys) {
        QSqlQuery max = prepared(db, QStringLiteral("SELECT MAX(%1) FROM %2").arg(l.toID, l.to));
        VoucherDatabaseError::exec(max);
        newKey = (max.next() && !max.value(0).isNull()) ? max.value(0).toInt() + 1 : 1;
        // The key is written before the automatic flag, as the previous year's rows always were.
        q = prepared(db,
            QStringLiteral("INSERT INTO %1 (%2, %3, %4) VALUES (?, ?, ?, ?, ?, ?, ?)")
                .arg(l.to, columns, l.toID, l.toAutomaatti));
    } else {
        q = prepared(db,
            QStringLiteral("INSERT INTO %1 (%2, %3) VALUES (?, ?, ?, ?, ?, ?)")
                .arg(l.to, columns, l.toAutomaatti));
    }
    q.addBindValue(m_v.numero);
    q.addBindValue(dateValue(m_v.paiva));
    q.addBindValue(RecordText::blankIfEmpty(m_v.selite));
    q.addBindValue(m_v.avaus ? 1 : 0);
    q.addBindValue(m_v.paatos ? 1 : 0);
    if (m_toId == 0 && l.programKeys)
        q.addBindValue(newKey);
    q.addBindValue(m_v.automaatti ? 1 : 0);
    if (m_toId != 0)
        q.addBindValue(m_toId);
    VoucherDatabaseError::exec(q);
    if (m_toId == 0)
        m_toId = l.programKeys ? newKey : q.lastInsertId().toInt();
    m_undo = m_v;
    m_dirty = false;
}

void TositeRecord::Delete()
{
    if (m_isEmpty)
        return;
    if (m_toId != 0) {
        const QSqlDatabase db = DBC::instance().AvaaDB();
        Transaction t(db);
        QSqlQuery q
            = prepared(db, QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(m_layout.to, m_layout.toID));
        q.addBindValue(m_toId);
        VoucherDatabaseError::exec(q);
        q = prepared(db, QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(m_layout.vi, m_layout.vitoID));
        q.addBindValue(m_toId);
        VoucherDatabaseError::exec(q);
        if (t.isActive() && !t.commit())
            throw VoucherDatabaseError(db.lastError().text());
    }
    reset();
}

void TositeRecord::Undo()
{
    if (m_isEmpty)
        return;
    m_v = m_undo;
    m_dirty = false;
}

qint32 TositeRecord::cursorKey(const QString& where, const QVariantList& binds, bool descending) const
{
    const VoucherLayout& l = m_layout;
    QSqlQuery q = prepared(DBC::instance().AvaaDB(),
        QStringLiteral("SELECT %1 FROM %2 WHERE %3 ORDER BY %4 %5, %1 %5 LIMIT 1")
            .arg(l.toID, l.to, where, l.toNumero,
                descending ? QStringLiteral("DESC") : QStringLiteral("ASC")));
    for (const QVariant& v : binds)
        q.addBindValue(v);
    VoucherDatabaseError::exec(q);
    return q.next() ? q.value(0).toInt() : 0;
}

qint32 TositeRecord::numberAndDate(const QDate& defaultDate, bool onlyUserVouchers)
{
    const VoucherLayout& l = m_layout;
    const QSqlDatabase db = DBC::instance().AvaaDB();
    const QString filter = onlyUserVouchers ? QStringLiteral(" WHERE %1 >= 0").arg(l.toNumero) : QString();
    QSqlQuery q = prepared(
        db, QStringLiteral("SELECT MAX(%1), MAX(%2) FROM %3").arg(l.toNumero, l.toPvm, l.to) + filter);
    VoucherDatabaseError::exec(q);
    qint32 numero = 1;
    QDate paiva = defaultDate;
    if (q.next()) {
        if (!q.value(0).isNull())
            numero = q.value(0).toInt() + 1;
        const QDate latest = Dates::fromSql(q.value(1).toString());
        if (latest.isValid())
            paiva = latest;
    }
    setPaiva(paiva);
    setNumero(numero);
    return numero;
}

void TositeRecord::initNewVienti(VientiRecord& vienti, const QString& tyyppi) const
{
    vienti.setToId(m_toId);
    vienti.setTyyppi(tyyppi);
    vienti.setAvausvienti(m_v.avaus);
    vienti.setPaatosvienti(m_v.paatos);
    vienti.setSelite(m_v.selite);
    vienti.setAutomaatti(m_v.automaatti);
    vienti.takeUndoCopy();
}

bool TositeRecord::selectViennit(QSqlQuery& q, const QString& tyyppi) const
{
    if (m_isEmpty || m_toId == 0)
        return false;
    if (!q.prepare(VientiRecord::selectSql(m_layout)
            + QStringLiteral(" WHERE %1 = ? AND %2 = ? ORDER BY %3")
                  .arg(m_layout.vitoID, m_layout.viTyyppi, m_layout.viID)))
        throw VoucherDatabaseError(q.lastError().text());
    q.addBindValue(m_toId);
    q.addBindValue(tyyppi);
    VoucherDatabaseError::exec(q);
    return true;
}
