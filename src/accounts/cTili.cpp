#include "cTili.h"

#include "DBC.h"
#include "RecordText.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace {

const QString Columns
    = QStringLiteral("tlID, tlNimi, tlKuvaus, tlNumero, tlAlkusaldo, tlLoppusaldo, tlPrint");

} // namespace

cTili::cTili(QObject* parent)
    : QObject(parent)
{
    m_undo = m_fields;
    m_stored = m_fields;
}

cTili::~cTili()
{
    // A changed account is not lost when its window lets go of it.
    if (m_changed && !IsEmpty())
        Save(false);
}

void cTili::reset()
{
    m_id = 0;
    m_fields = Fields();
    m_stored = m_fields;
    m_changed = false;
}

void cTili::Undo()
{
    if (IsEmpty())
        return;
    m_fields = m_undo;
    // Undo after a Save returns to values that are no longer in the database.
    m_changed = !(m_fields == m_stored);
}

void cTili::setNimi(const QString& value)
{
    const QString cut = RecordText::cut(value, RecordText::NameLength);
    if (cut != m_fields.nimi) {
        m_fields.nimi = cut;
        m_changed = true;
    }
    if (id() != 0)
        emit NameChanged(Nimi(), Numero(), id());
}

void cTili::setKuvaus(const QString& value)
{
    const QString cut = RecordText::cut(value, RecordText::DescriptionLength);
    if (cut != m_fields.kuvaus) {
        m_fields.kuvaus = cut;
        m_changed = true;
    }
}

void cTili::setNumero(qint32 value)
{
    if (value != m_fields.numero) {
        m_fields.numero = value;
        m_changed = true;
    }
    if (id() != 0)
        emit NameChanged(Nimi(), Numero(), id());
}

void cTili::setAlkusaldo(Money value)
{
    if (value != m_fields.alkusaldo) {
        m_fields.alkusaldo = value;
        m_changed = true;
    }
}

void cTili::setLoppusaldo(Money value)
{
    if (value != m_fields.loppusaldo) {
        m_fields.loppusaldo = value;
        m_changed = true;
    }
}

cAlkusaldot cTili::Alkusaldot() const
{
    cAlkusaldot saldot;
    if (IsEmpty() || m_id == 0)
        return saldot;
    // Only entries flagged as opening entries count, on any date and in any voucher; the side
    // comes from the type code and other codes add nothing.
    const auto sums = [this](const QString& sql, Money* debet, Money* kredit) {
        QSqlQuery q(DBC::instance().AvaaDB());
        q.prepare(sql);
        q.addBindValue(m_id);
        if (!q.exec()) {
            m_lastError = q.lastError().text();
            return;
        }
        if (q.next()) {
            *debet = Money::fromRaw(q.value(0).toLongLong());
            *kredit = Money::fromRaw(q.value(1).toLongLong());
        }
    };
    Money debet, kredit;
    sums(QStringLiteral("SELECT COALESCE(SUM(CASE WHEN viTyyppi = 'D' THEN viArvo END), 0), "
                        "COALESCE(SUM(CASE WHEN viTyyppi = 'K' THEN viArvo END), 0) "
                        "FROM vi WHERE vitlID = ? AND viAvausvienti <> 0"),
        &debet, &kredit);
    saldot.setAlkusaldoDebet(debet);
    saldot.setAlkusaldoKredit(kredit);
    debet = kredit = Money();
    sums(QStringLiteral("SELECT COALESCE(SUM(CASE WHEN viETyyppi = 'D' THEN viEArvo END), 0), "
                        "COALESCE(SUM(CASE WHEN viETyyppi = 'K' THEN viEArvo END), 0) "
                        "FROM viE WHERE viEtlID = ? AND viEAvausvienti <> 0"),
        &debet, &kredit);
    saldot.setEdAlkusaldoDebet(debet);
    saldot.setEdAlkusaldoKredit(kredit);
    return saldot;
}

bool cTili::Read(qint32 id)
{
    if (IsEmpty())
        return false;
    QSqlQuery q(DBC::instance().AvaaDB());
    q.prepare(QStringLiteral("SELECT %1 FROM tl WHERE tlID = ?").arg(Columns));
    q.addBindValue(id);
    bool found = false;
    if (!q.exec()) {
        m_lastError = q.lastError().text();
        reset();
    } else if (!q.next()) {
        reset();
    } else {
        m_id = id;
        m_fields.nimi = q.value(1).toString();
        m_fields.kuvaus = q.value(2).toString();
        m_fields.numero = q.value(3).toInt();
        m_fields.alkusaldo = Money::fromRaw(q.value(4).toLongLong());
        m_fields.loppusaldo = Money::fromRaw(q.value(5).toLongLong());
        m_fields.print = q.value(6).toLongLong() != 0;
        m_fields.isEmpty = false;
        m_stored = m_fields;
        m_changed = false;
        found = true;
    }
    m_undo = m_fields;
    return found;
}

bool cTili::Save(bool force)
{
    if (IsEmpty())
        return false;
    if (!force && !m_changed)
        return true;
    QSqlQuery q(DBC::instance().AvaaDB());
    if (m_id != 0) {
        q.prepare(QStringLiteral("UPDATE tl SET tlNimi = ?, tlKuvaus = ?, tlNumero = ?, tlAlkusaldo = ?, "
                                 "tlLoppusaldo = ?, tlPrint = ? WHERE tlID = ?"));
    } else {
        q.prepare(QStringLiteral("INSERT INTO tl (tlNimi, tlKuvaus, tlNumero, tlAlkusaldo, tlLoppusaldo, "
                                 "tlPrint) VALUES (?, ?, ?, ?, ?, ?)"));
    }
    q.addBindValue(RecordText::blankIfEmpty(m_fields.nimi));
    q.addBindValue(RecordText::blankIfEmpty(m_fields.kuvaus));
    q.addBindValue(m_fields.numero);
    q.addBindValue(m_fields.alkusaldo.raw());
    q.addBindValue(m_fields.loppusaldo.raw());
    q.addBindValue(m_fields.print ? 1 : 0);
    if (m_id != 0)
        q.addBindValue(m_id);
    if (!q.exec()) {
        m_lastError = q.lastError().text();
        return false;
    }
    if (m_id == 0) {
        m_id = q.lastInsertId().toInt();
    } else if (q.numRowsAffected() == 0) {
        m_lastError = QStringLiteral("Tiliä ei löydy tietokannasta.");
        return false;
    }
    m_stored = m_fields;
    m_changed = false;
    return true;
}

bool cTili::Delete()
{
    if (IsEmpty() || m_id == 0)
        return false;
    QSqlQuery q(DBC::instance().AvaaDB());
    q.prepare(QStringLiteral("DELETE FROM tl WHERE tlID = ?"));
    q.addBindValue(m_id);
    if (!q.exec()) {
        m_lastError = q.lastError().text();
        return false;
    }
    return true;
}

std::unique_ptr<cTili> cTili::navigate(const QString& sql, bool bindNumber) const
{
    auto result = std::make_unique<cTili>();
    // A step from an object that stands for no account leads nowhere.
    if (bindNumber && IsEmpty()) {
        result->setIsEmpty(true);
        return result;
    }
    QSqlQuery q(DBC::instance().AvaaDB());
    q.prepare(sql);
    if (bindNumber)
        q.addBindValue(Numero());
    if (!q.exec()) {
        m_lastError = q.lastError().text();
        result->setIsEmpty(true);
    } else if (q.next()) {
        const qint32 found = q.value(0).toInt();
        q.finish();
        result->Read(found);
    } else {
        result->setIsEmpty(true);
    }
    return result;
}

std::unique_ptr<cTili> cTili::GetFirst() const
{
    return navigate(
        QStringLiteral("SELECT tlID FROM tl WHERE tlNumero > 0 ORDER BY tlNumero ASC, tlID ASC LIMIT 1"),
        false);
}

std::unique_ptr<cTili> cTili::GetPrevious() const
{
    // The lower bound is only the current number, so accounts numbered 0 and below are reached.
    return navigate(
        QStringLiteral("SELECT tlID FROM tl WHERE tlNumero < ? ORDER BY tlNumero DESC, tlID DESC LIMIT 1"),
        true);
}

std::unique_ptr<cTili> cTili::GetNext() const
{
    return navigate(
        QStringLiteral("SELECT tlID FROM tl WHERE tlNumero > ? ORDER BY tlNumero ASC, tlID ASC LIMIT 1"),
        true);
}

std::unique_ptr<cTili> cTili::GetLast() const
{
    return navigate(
        QStringLiteral("SELECT tlID FROM tl WHERE tlNumero > 0 ORDER BY tlNumero DESC, tlID DESC LIMIT 1"),
        false);
}
