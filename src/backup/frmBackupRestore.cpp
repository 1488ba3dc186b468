#include "frmBackupRestore.h"
#include "ui_frmBackupRestore.h"

#include "BackupStick.h"
#include "Dialogs.h"
#include "StickRestore.h"

#include <QCoreApplication>
#include <QDir>

frmBackupRestore::frmBackupRestore(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmBackupRestore>())
{
    ui->setupUi(this);
    connect(ui->cEtsiMuistitikku, &QPushButton::clicked, this, &frmBackupRestore::etsiMuistitikku);
    connect(ui->cPalauta, &QPushButton::clicked, this, &frmBackupRestore::palauta);
    connect(ui->cSulje, &QPushButton::clicked, this, &frmBackupRestore::reject);
    connect(ui->lstPaiva, &QListWidget::currentRowChanged, this, &frmBackupRestore::valitsePaiva);
    connect(
        ui->lstTietokanta, &QListWidget::itemSelectionChanged, this, &frmBackupRestore::valitseTietokanta);
    // Enter on a chosen copy restores it.
    connect(ui->lstTietokanta, &QListWidget::itemActivated, this, [this] {
        if (ui->cPalauta->isEnabled())
            palauta();
    });
    ui->pbEdistyminen->setRange(0, 100);
    ui->pbEdistyminen->setValue(0);
    if (!Drives::instance().supported()) {
        ui->lblVaihe1->setText(
            QStringLiteral("Tietokoneesi ei tue %1-muistitikkuvarmistusta.").arg(BackupStick::Label));
        ui->cEtsiMuistitikku->setEnabled(false);
        ui->cSulje->setFocus();
        return;
    }
    ui->cEtsiMuistitikku->setFocus();
}

frmBackupRestore::~frmBackupRestore() = default;

void frmBackupRestore::backToFirstStep()
{
    m_mountPoint.clear();
    ui->lstPaiva->clear();
    ui->lstTietokanta->clear();
    ui->lblPalautettavaTiedostoNimi->setText(QStringLiteral("-"));
    for (QWidget* w : { static_cast<QWidget*>(ui->lblVaihe2), static_cast<QWidget*>(ui->lstPaiva),
             static_cast<QWidget*>(ui->lblVaihe3), static_cast<QWidget*>(ui->lstTietokanta),
             static_cast<QWidget*>(ui->lblVaihe4), static_cast<QWidget*>(ui->cPalauta) })
        w->setEnabled(false);
}

void frmBackupRestore::etsiMuistitikku()
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

void frmBackupRestore::valitsePaiva()
{
    ui->lstTietokanta->clear();
    valitseTietokanta();
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
            : QStringLiteral("3. Valitulle päivälle %1 löytyy seuraavat tietokannat, valitse palautettavan "
                             "tietokannan nimi:")
                  .arg(day));
}

QString frmBackupRestore::chosenCopy() const
{
    const QListWidgetItem* day = ui->lstPaiva->currentItem();
    const QList<QListWidgetItem*> chosen = ui->lstTietokanta->selectedItems();
    if (!day || chosen.isEmpty() || m_mountPoint.isEmpty())
        return {};
    return BackupStick::copyPath(m_mountPoint, day->text(), chosen.first()->text());
}

void frmBackupRestore::valitseTietokanta()
{
    const QString copy = chosenCopy();
    ui->lblVaihe4->setEnabled(!copy.isEmpty());
    ui->cPalauta->setEnabled(!copy.isEmpty());
    ui->lblPalautettavaTiedostoNimi->setText(
        copy.isEmpty() ? QStringLiteral("-") : QDir::toNativeSeparators(StickRestore::targetOf(copy)));
}

void frmBackupRestore::palauta()
{
    const QString copy = chosenCopy();
    if (copy.isEmpty())
        return;
    ui->lblPalautettavaTiedostoNimi->setText(QDir::toNativeSeparators(StickRestore::targetOf(copy)));
    StickRestore::Outcome outcome;
    {
        m_busy = true;
        ui->cSulje->setEnabled(false);
        ui->cPalauta->setEnabled(false);
        ui->pbEdistyminen->setValue(0);
        // No wait cursor: the restore asks its questions on the way; the bar shows the copying.
        outcome = StickRestore::restore(copy, [this](qint64 done, qint64 total) {
            ui->pbEdistyminen->setValue(total > 0 ? int(done * 100 / total) : 100);
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        });
        ui->cSulje->setEnabled(true);
        ui->cPalauta->setEnabled(true);
        m_busy = false;
    }
    if (outcome == StickRestore::Outcome::Restored) {
        ui->pbEdistyminen->setValue(100);
        m_restored = true;
        accept();
        return;
    }
    ui->pbEdistyminen->setValue(0);
    ui->lstTietokanta->setFocus();
}

void frmBackupRestore::reject()
{
    if (!m_busy)
        QDialog::reject();
}
