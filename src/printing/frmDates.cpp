#include "printing/frmDates.h"
#include "ui_frmDates.h"

#include "printing/DateFields.h"
#include "printing/PrintOptions.h"

frmDates::frmDates(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmDates>())
{
    ui->setupUi(this);
    m_paivat = new DateFields(ui->tAlkupvm, ui->tLoppupvm, ui->cPeru, this);
    const PrintValues& v = PrintOptions::current();
    ui->chkTiliErottelu->setChecked(v.tiliErottelu);
    ui->chkVainRyhmat->setChecked(v.vainRyhmat);
    (v.laaja ? ui->optLaaja : ui->optSuppea)->setChecked(true);
    connect(ui->cSeuraava, &QPushButton::clicked, this, &frmDates::seuraava);
    connect(ui->cPeru, &QPushButton::clicked, this, &frmDates::reject);
}

frmDates::~frmDates() = default;

void frmDates::seuraava()
{
    if (!m_paivat->hyvaksy())
        return;
    PrintValues& v = PrintOptions::current();
    v.tiliErottelu = ui->chkTiliErottelu->isChecked();
    v.vainRyhmat = ui->chkVainRyhmat->isChecked();
    v.laaja = ui->optLaaja->isChecked();
    v.cancelled = false;
    accept();
}

void frmDates::reject()
{
    PrintOptions::current().cancelled = true;
    QDialog::reject();
}
