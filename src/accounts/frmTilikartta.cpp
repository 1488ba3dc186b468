#include "accounts/frmTilikartta.h"
#include "ui_frmTilikartta.h"

#include "accounts/ChartOfAccounts.h"
#include "accounts/PrintChoices.h"
#include "core/DatabaseError.h"
#include "core/Dialogs.h"

#include <QVariant>

frmTilikartta::frmTilikartta(const QSqlDatabase& db, QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmTilikartta>())
{
    ui->setupUi(this);
    ui->cSeuraava->setDefault(true);
    connect(ui->cSeuraava, &QPushButton::clicked, this, &frmTilikartta::seuraava);
    connect(ui->cPeru, &QPushButton::clicked, this, &frmTilikartta::peru);
    if (ChartOfAccounts::tietokantaAsetusPuuttuu())
        showInformation(QStringLiteral("Tarkista tietokanta asetukset asetusikkunasta!"));

    bool malleja = false;
    if (db.isOpen())
        try {
            for (const ChartOfAccounts::Malli& malli : ChartOfAccounts::tilinpaatosMallit(db)) {
                malleja = true;
                QComboBox* lista = malli.tyyppi == 1 ? ui->cmbTuloslaskelma
                    : malli.tyyppi == 2              ? ui->cmbTase
                                                     : nullptr;
                if (lista)
                    lista->addItem(malli.nimi, malli.id);
            }
        } catch (const DatabaseError& e) {
            Dialogs::instance().error(e.message(QStringLiteral("Tilinpäätösmalleja ei voitu lukea.")));
        }
    if (!malleja)
        showInformation(QStringLiteral("Tee ensin tuloslaskelman ja taseen mallit!"));
}

frmTilikartta::~frmTilikartta() = default;

void frmTilikartta::seuraava()
{
    const auto valittu
        = [](const QComboBox* lista) { return lista->currentIndex() < 0 ? 0 : lista->currentData().toInt(); };
    PrintChoices::tilikarttaMallit() = { valittu(ui->cmbTuloslaskelma), valittu(ui->cmbTase) };
    PrintChoices::dialogCancelled() = false;
    accept();
}

void frmTilikartta::peru()
{
    PrintChoices::dialogCancelled() = true;
    reject();
}
