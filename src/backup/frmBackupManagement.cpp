#include "frmBackupManagement.h"
#include "ui_frmBackupManagement.h"

#include "BackupStick.h"
#include "Dialogs.h"

#include <QDir>

frmBackupManagement::frmBackupManagement(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmBackupManagement>())
{
    ui->setupUi(this);
    connect(ui->cEtsiMuistitikku, &QPushButton::clicked, this, &frmBackupManagement::etsiMuistitikku);
    connect(ui->cPoistaValitut, &QPushButton::clicked, this, &frmBackupManagement::poistaValitut);
    connect(ui->cSulje, &QPushButton::clicked, this, &frmBackupManagement::reject);
    connect(ui->lstPaiva, &QListWidget::currentRowChanged, this, &frmBackupManagement::valitsePaiva);
    connect(ui->lstTietokanta, &QListWidget::itemSelectionChanged, this, [this] {
        const bool chosen = !ui->lstTietokanta->selectedItems().isEmpty();
        ui->lblVaihe4->setEnabled(chosen);
        ui->cPoistaValitut->setEnabled(chosen);
    });
    if (!Drives::instance().supported()) {
        ui->lblVaihe1->setText(
            QStringLiteral("Tietokoneesi ei tue %1-muistitikkuvarmistusta.").arg(BackupStick::Label));
        ui->cEtsiMuistitikku->setEnabled(false);
        ui->cSulje->setFocus();
        return;
    }
    ui->cEtsiMuistitikku->setFocus();
}

frmBackupManagement::~frmBackupManagement() = default;

void frmBackupManagement::backToFirstStep()
{
    m_mountPoint.clear();
    ui->lstPaiva->clear();
    ui->lstTietokanta->clear();
    for (QWidget* w : { static_cast<QWidget*>(ui->lblVaihe2), static_cast<QWidget*>(ui->lstPaiva),
             static_cast<QWidget*>(ui->lblVaihe3), static_cast<QWidget*>(ui->lstTietokanta),
             static_cast<QWidget*>(ui->lblVaihe4), static_cast<QWidget*>(ui->cPoistaValitut) })
        w->setEnabled(false);
}

void frmBackupManagement::etsiMuistitikku()
{
    backToFirstStep();
    const std::optional<Volume> stick = BackupStick::find();
    if (!stick) {
        ui->lblVapaaTilaStatus->setText(QStringLiteral("Sopivaa muistitikkua ei löydy."));
        return;
    }
    m_mountPoint = stick->mountPoint;
    ui->lblVapaaTilaStatus->clear();
    ui->lblVaihe2->setText(BackupStick::foundText(QDir::toNativeSeparators(m_mountPoint),
        QStringLiteral("valitse palautettavan varmuuskopion päivä:")));
    ui->lblVaihe2->setEnabled(true);
    const QStringList days = BackupStick::days(m_mountPoint);
    if (days.isEmpty()) {
        Dialogs::instance().information(QStringLiteral("Muistitikulta ei löydy varmuuskopioita."));
        return;
    }
    ui->lstPaiva->addItems(days);
    ui->lstPaiva->setEnabled(true);
    // The newest day is the one most often wanted.
    ui->lstPaiva->setCurrentRow(0);
    ui->lstPaiva->setFocus();
}

void frmBackupManagement::valitsePaiva()
{
    ui->lstTietokanta->clear();
    ui->lblVaihe4->setEnabled(false);
    ui->cPoistaValitut->setEnabled(false);
    const QListWidgetItem* item = ui->lstPaiva->currentItem();
    if (!item || m_mountPoint.isEmpty())
        return;
    const QString day = item->text();
    const QStringList files = BackupStick::files(m_mountPoint, day);
    ui->lstTietokanta->addItems(files);
    ui->lstTietokanta->setEnabled(!files.isEmpty());
    ui->lblVaihe3->setEnabled(true);
    ui->lblVaihe3->setText(files.isEmpty()
            ? QStringLiteral("3. Valitulle päivälle ei löydy tietokantoja.")
            : QStringLiteral("3. Valitulle päivälle %1 löytyy seuraavat tietokannat, valitse poistettavien "
                             "tietokantojen nimet:")
                  .arg(day));
}

void frmBackupManagement::poistaValitut()
{
    const QListWidgetItem* day = ui->lstPaiva->currentItem();
    if (!day)
        return;
    // In list order, whatever order they were chosen in.
    QStringList chosen;
    for (int row = 0; row < ui->lstTietokanta->count(); ++row)
        if (ui->lstTietokanta->item(row)->isSelected())
            chosen.append(ui->lstTietokanta->item(row)->text());
    if (BackupStick::deleteCopies(m_mountPoint, day->text(), chosen) < 0) {
        backToFirstStep();
        ui->lblVapaaTilaStatus->setText(QStringLiteral("Sopivaa muistitikkua ei löydy."));
        ui->cEtsiMuistitikku->setFocus();
        return;
    }
    valitsePaiva();
    ui->lstTietokanta->setFocus();
}
