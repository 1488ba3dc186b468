#include "accounts/frmLisaaTili.h"
#include "ui_frmLisaaTili.h"

#include "accounts/ChartOfAccounts.h"
#include "core/DatabaseError.h"
#include "core/Dialogs.h"
#include "ui/EnterAsTab.h"

frmLisaaTili::frmLisaaTili(const QSqlDatabase& db, QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmLisaaTili>())
    , m_db(db)
{
    ui->setupUi(this);
    ui->cLisaa->setDefault(true);
    EnterAsTab::install(this);
    connect(ui->cLisaa, &QPushButton::clicked, this, &frmLisaaTili::lisaa);
    connect(ui->cPeruuta, &QPushButton::clicked, this, &QDialog::reject);
    if (ChartOfAccounts::tietokantaAsetusPuuttuu())
        showInformation(QStringLiteral("Tarkista tietokanta asetukset asetusikkunasta!"));
    ui->tTilinumero->setFocus();
}

frmLisaaTili::~frmLisaaTili() = default;

void frmLisaaTili::lisaa()
{
    ChartOfAccounts::Tarkistus virhe;
    qint32 id = 0;
    try {
        id = ChartOfAccounts::lisaaTili(
            m_db, ui->tTilinumero->text(), ui->tNimi->text(), ui->tKuvaus->text(), &virhe);
    } catch (const DatabaseError& e) {
        Dialogs::instance().error(e.message(QStringLiteral("Tilin lisääminen ei onnistunut.")));
        return;
    }
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
