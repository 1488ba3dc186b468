#include "printing/DateFields.h"

#include "core/Dates.h"
#include "core/Dialogs.h"
#include "printing/PeriodCheck.h"
#include "printing/PrintOptions.h"

#include <QApplication>
#include <QLineEdit>

DateFields::DateFields(QLineEdit* alku, QLineEdit* loppu, QWidget* cancel, QObject* parent)
    : QObject(parent)
    , m_alku(alku)
    , m_loppu(loppu)
    , m_cancel(cancel)
{
    m_alku->setText(Dates::format(PrintOptions::periodStart()));
    m_loppu->setText(Dates::format(PrintOptions::periodEnd()));
    for (QLineEdit* field : { m_alku, m_loppu })
        connect(field, &QLineEdit::editingFinished, this, [this, field] {
            if (QApplication::focusWidget() != m_cancel)
                tarkista(field);
        });
}

bool DateFields::tarkista(QLineEdit* field)
{
    // The message box takes the focus, which would finish the editing a second time.
    if (m_checking)
        return false;
    m_checking = true;
    const PeriodCheck::Result r
        = field == m_alku ? PeriodCheck::alku(field->text()) : PeriodCheck::loppu(field->text());
    if (r.ok()) {
        field->setText(Dates::format(r.date));
    } else {
        showInformation(r.message);
        field->setFocus();
        field->selectAll();
    }
    m_checking = false;
    return r.ok();
}

bool DateFields::hyvaksy()
{
    if (!tarkista(m_alku) || !tarkista(m_loppu))
        return false;
    const QDate alku = Dates::parse(m_alku->text());
    const QDate loppu = Dates::parse(m_loppu->text());
    if (const QString virhe = PeriodCheck::jakso(alku, loppu); !virhe.isEmpty()) {
        showInformation(virhe);
        m_alku->setFocus();
        m_alku->selectAll();
        return false;
    }
    PrintOptions::current().alkupvm = alku;
    PrintOptions::current().loppupvm = loppu;
    return true;
}
