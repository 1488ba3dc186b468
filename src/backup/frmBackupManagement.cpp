#include "backup/frmBackupManagement.h"
#include "ui_frmBackupManagement.h"

#include "backup/BackupStick.h"

frmBackupManagement::frmBackupManagement(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmBackupManagement>())
{
    ui->setupUi(this);
    m_days = std::make_unique<StickDays>(StickDays::Controls { ui->lblVaihe1, ui->lblVapaaTilaStatus,
                                             ui->lblVaihe2, ui->lstPaiva, ui->lblVaihe3, ui->lstTietokanta },
        QStringLiteral("valitse päivä, jolta varmuuskopioita poistetaan:"),
        QStringLiteral("valitse poistettavien tietokantojen nimet:"));
    connect(ui->cEtsiMuistitikku, &QPushButton::clicked, this, &frmBackupManagement::etsiMuistitikku);
    connect(ui->cPoistaValitut, &QPushButton::clicked, this, &frmBackupManagement::poistaValitut);
    connect(ui->cSulje, &QPushButton::clicked, this, &frmBackupManagement::reject);
    connect(ui->lstPaiva, &QListWidget::currentRowChanged, this, &frmBackupManagement::valitsePaiva);
    connect(ui->lstTietokanta, &QListWidget::itemSelectionChanged, this,
        &frmBackupManagement::valitseTietokannat);
    if (!m_days->supported()) {
        ui->cEtsiMuistitikku->setEnabled(false);
        ui->cSulje->setFocus();
        return;
    }
    ui->cEtsiMuistitikku->setFocus();
}

frmBackupManagement::~frmBackupManagement() = default;

void frmBackupManagement::etsiMuistitikku()
{
    m_days->find();
    valitseTietokannat();
}

void frmBackupManagement::valitsePaiva()
{
    m_days->showDay();
    valitseTietokannat();
}

void frmBackupManagement::valitseTietokannat()
{
    const bool chosen = !ui->lstTietokanta->selectedItems().isEmpty();
    ui->lblVaihe4->setEnabled(chosen);
    ui->cPoistaValitut->setEnabled(chosen);
}

void frmBackupManagement::poistaValitut()
{
    const QString day = m_days->day();
    if (day.isEmpty())
        return;
    // In list order, whatever order they were chosen in.
    QStringList chosen;
    for (int row = 0; row < ui->lstTietokanta->count(); ++row)
        if (ui->lstTietokanta->item(row)->isSelected())
            chosen.append(ui->lstTietokanta->item(row)->text());
    if (BackupStick::deleteCopies(m_days->mountPoint(), day, chosen) < 0) {
        m_days->forgetStick();
        valitseTietokannat();
        ui->lblVapaaTilaStatus->setText(QStringLiteral("Sopivaa muistitikkua ei löydy."));
        ui->cEtsiMuistitikku->setFocus();
        return;
    }
    valitsePaiva();
    ui->lstTietokanta->setFocus();
}
