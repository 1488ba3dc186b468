#include "frmTilikartta.h"
#include "ui_frmTilikartta.h"

#include "DBC.h"
#include "Dialogs.h"
#include "PrintChoices.h"
#include "Tilikartta.h"

#include <QSqlQuery>
#include <QVariant>

frmTilikartta::frmTilikartta(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmTilikartta>())
{
    ui->setupUi(this);
    ui->cSeuraava->setDefault(true);
    connect(ui->cSeuraava, &QPushButton::clicked, this, &frmTilikartta::seuraava);
    connect(ui->cPeru, &QPushButton::clicked, this, &frmTilikartta::peru);
    if (Tilikartta::tietokantaAsetusPuuttuu())
        showInformation(QStringLiteral("Tarkista tietokanta asetukset asetusikkunasta!"));

    QSqlQuery q(DBC::instance().AvaaDB());
    bool malleja = false;
    if (q.exec(QStringLiteral("SELECT maID, maNimi, maTyyppi FROM ma ORDER BY maTyyppi, maNimi"))) {
        while (q.next()) {
            malleja = true;
            const int tyyppi = q.value(2).toInt();
            QComboBox* lista = tyyppi == 1 ? ui->cmbTuloslaskelma : tyyppi == 2 ? ui->cmbTase : nullptr;
            if (lista)
                lista->addItem(q.value(1).toString(), q.value(0).toInt());
        }
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
