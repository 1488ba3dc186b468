#include "frmLisaaTili.h"
#include "ui_frmLisaaTili.h"

#include "DBC.h"
#include "Dialogs.h"
#include "EnterAsTab.h"
#include "Tilikartta.h"

frmLisaaTili::frmLisaaTili(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmLisaaTili>())
{
    ui->setupUi(this);
    ui->cLisaa->setDefault(true);
    EnterAsTab::install(this);
    connect(ui->cLisaa, &QPushButton::clicked, this, &frmLisaaTili::lisaa);
    connect(ui->cPeruuta, &QPushButton::clicked, this, &QDialog::reject);
    if (Tilikartta::tietokantaAsetusPuuttuu())
        showInformation(QStringLiteral("Tarkista tietokanta asetukset asetusikkunasta!"));
    ui->tTilinumero->setFocus();
}

frmLisaaTili::~frmLisaaTili() = default;

void frmLisaaTili::lisaa()
{
    Tilikartta::Tarkistus virhe;
    const qint32 id = Tilikartta::lisaaTili(
        DBC::instance().AvaaDB(), ui->tTilinumero->text(), ui->tNimi->text(), ui->tKuvaus->text(), &virhe);
    if (id == 0) {
        showInformation(virhe.viesti);
        QLineEdit* field = virhe.numerossa ? ui->tTilinumero : ui->tNimi;
        field->setFocus();
        field->selectAll();
        return;
    }
    if (ui->tKuvaus->text().isEmpty())
        ui->tKuvaus->setText(QStringLiteral(" "));
    m_uusiId = id;
    accept();
}
