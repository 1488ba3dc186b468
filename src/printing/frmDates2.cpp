#include "printing/frmDates2.h"
#include "ui_frmDates2.h"

#include "printing/DateFields.h"
#include "printing/PrintOptions.h"

frmDates2::frmDates2(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmDates2>())
{
    ui->setupUi(this);
    m_paivat = new DateFields(ui->tAlkupvm, ui->tLoppupvm, ui->cPeru, this);
    connect(ui->cSeuraava, &QPushButton::clicked, this, &frmDates2::seuraava);
    connect(ui->cPeru, &QPushButton::clicked, this, &frmDates2::reject);
}

frmDates2::~frmDates2() = default;

void frmDates2::seuraava()
{
    if (!m_paivat->hyvaksy())
        return;
    PrintOptions::current().cancelled = false;
    accept();
}

void frmDates2::reject()
{
    PrintOptions::current().cancelled = true;
    QDialog::reject();
}
