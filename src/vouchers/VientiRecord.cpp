#include "VientiRecord.h"

#include "DBC.h"
#include "RecordText.h"
#include "VoucherDatabaseError.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QVariant>
#include <QtDebug>

void VoucherDatabaseError::exec(QSqlQuery& q)
{
    if (!q.exec())
        throw VoucherDatabaseError(q.lastError().text());
}

namespace {

QSqlQuery prepared(const QString& sql)
{
    QSqlQuery q(DBC::instance().AvaaDB());
    if (!q.prepare(sql))
        throw VoucherDatabaseError(q.lastError().text());
    return q;
}

} // namespace

VientiRecord::~VientiRecord()
{
    if (m_isEmpty || !m_dirty)
        return;
    try {
        Save(false);
    } catch (const VoucherDatabaseError& e) {
        qWarning("Vienti could not be saved on release: %s", e.what());
    }
}

void VientiRecord::settlID(qint32 id) { assign(m_v.tlId, id); }
void VientiRecord::setToId(qint32 id) { assign(m_v.toId, id); }
void VientiRecord::setTyyppi(const QString& tyyppi) { assign(m_v.tyyppi, tyyppi.left(1)); }
void VientiRecord::setArvo(Money arvo) { assign(m_v.arvo, arvo); }
void VientiRecord::setSelite(const QString& selite)
{
    assign(m_v.selite, RecordText::cut(selite, RecordText::DescriptionLength));
}
void VientiRecord::setAvausvienti(bool on) { assign(m_v.avaus, on); }
void VientiRecord::setPaatosvienti(bool on) { assign(m_v.paatos, on); }
void VientiRecord::setAutomaatti(bool on) { assign(m_v.automaatti, on); }

void VientiRecord::reset()
{
    m_viId = 0;
    m_v = Values();
    m_undo = Values();
    m_dirty = false;
}

QString VientiRecord::selectSql(const VoucherLayout& l)
{
    return QStringLiteral("SELECT %1, %2, %3, %4, %5, %6, %7, %8, %9 FROM %10")
        .arg(l.viID, l.vitlID, l.vitoID, l.viTyyppi, l.viArvo, l.viSelite, l.viAvausvienti, l.viPaatosvienti,
            l.viAutomaatti)
        .arg(l.vi);
}

void VientiRecord::loadFromRow(const QSqlQuery& q)
{
    m_viId = q.value(0).toInt();
    m_v.tlId = q.value(1).toInt();
    m_v.toId = q.value(2).toInt();
    m_v.tyyppi = q.value(3).toString();
    m_v.arvo = Money::fromRaw(q.value(4).toLongLong());
    m_v.selite = q.value(5).toString();
    m_v.avaus = q.value(6).toInt() != 0;
    m_v.paatos = q.value(7).toInt() != 0;
    m_v.automaatti = q.value(8).toInt() != 0;
    m_undo = m_v;
    m_dirty = false;
}

bool VientiRecord::Load(qint32 id)
{
    if (m_isEmpty)
        return false;
    QSqlQuery q = prepared(selectSql(m_layout) + QStringLiteral(" WHERE %1 = ?").arg(m_layout.viID));
    q.addBindValue(id);
    VoucherDatabaseError::exec(q);
    if (!q.next()) {
        reset();
        return false;
    }
    loadFromRow(q);
    return true;
}

void VientiRecord::Save(bool force)
{
    if (m_isEmpty || (!force && !m_dirty))
        return;
    if (m_v.arvo.isZero() && m_v.tlId == 0) {
        if (m_viId != 0)
            Delete();
        return;
    }
    const VoucherLayout& l = m_layout;
    const QString columns = QStringList { l.vitlID, l.vitoID, l.viTyyppi, l.viArvo, l.viSelite,
        l.viAvausvienti, l.viPaatosvienti, l.viAutomaatti }
                                .join(QStringLiteral(", "));
    QSqlQuery q(DBC::instance().AvaaDB());
    qint32 newKey = 0;
    if (m_viId != 0) {
        q = prepared(
            QStringLiteral("UPDATE %1 SET %2 = ?, %3 = ?, %4 = ?, %5 = ?, %6 = ?, %7 = ?, %8 = ?, %9 = ?")
                .arg(l.vi, l.vitlID, l.vitoID, l.viTyyppi, l.viArvo, l.viSelite, l.viAvausvienti,
                    l.viPaatosvienti, l.viAutomaatti)
            + QStringLiteral(" WHERE %1 = ?").arg(l.viID));
    } else if (l.programKeys) {
        QSqlQuery max = prepared(QStringLiteral("SELECT MAX(%1) FROM %2").arg(l.viID, l.vi));
        VoucherDatabaseError::exec(max);
        newKey = (max.next() && !max.value(0).isNull()) ? max.value(0).toInt() + 1 : 1;
        q = prepared(QStringLiteral("INSERT INTO %1 (%2, %3) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)")
                         .arg(l.vi, columns, l.viID));
    } else {
        q = prepared(
            QStringLiteral("INSERT INTO %1 (%2) VALUES (?, ?, ?, ?, ?, ?, ?, ?)").arg(l.vi, columns));
    }
    q.addBindValue(m_v.tlId);
    q.addBindValue(m_v.toId);
    q.addBindValue(m_v.tyyppi);
    q.addBindValue(m_v.arvo.raw());
    q.addBindValue(RecordText::blankIfEmpty(m_v.selite));
    q.addBindValue(m_v.avaus ? 1 : 0);
    q.addBindValue(m_v.paatos ? 1 : 0);
    q.addBindValue(m_v.automaatti ? 1 : 0);
    if (m_viId != 0)
        q.addBindValue(m_viId);
    else if (l.programKeys)
        q.addBindValue(newKey);
    VoucherDatabaseError::exec(q);
    if (m_viId == 0)
        m_viId = l.programKeys ? newKey : q.lastInsertId().toInt();
    m_undo = m_v;
    m_dirty = false;
}

void VientiRecord::Delete()
{
    if (m_isEmpty)
        return;
    if (m_viId != 0) {
        QSqlQuery q = prepared(QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(m_layout.vi, m_layout.viID));
        q.addBindValue(m_viId);
        VoucherDatabaseError::exec(q);
    }
    reset();
}

void VientiRecord::Undo()
{
    if (m_isEmpty)
        return;
    m_v = m_undo;
    // A new entry stays to be stored (or skipped, when blank) by its next save.
    m_dirty = m_viId == 0;
}
