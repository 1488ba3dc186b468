#include "backup/frmBackupRestore.h"
#include "ui_frmBackupRestore.h"

#include "backup/BackupStick.h"
#include "backup/StickRestore.h"
#include "core/Dialogs.h"

#include <QCoreApplication>
#include <QDir>

frmBackupRestore::frmBackupRestore(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmBackupRestore>())
{
    ui->setupUi(this);
    m_days = std::make_unique<StickDays>(StickDays::Controls { ui->lblVaihe1, ui->lblVapaaTilaStatus,
                                             ui->lblVaihe2, ui->lstPaiva, ui->lblVaihe3, ui->lstTietokanta },
        QStringLiteral("valitse palautettavan varmuuskopion päivä:"),
        QStringLiteral("valitse palautettavan tietokannan nimi:"));
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
    if (!m_days->supported()) {
        ui->cEtsiMuistitikku->setEnabled(false);
        ui->cSulje->setFocus();
        return;
    }
    ui->cEtsiMuistitikku->setFocus();
}

frmBackupRestore::~frmBackupRestore() = default;

void frmBackupRestore::etsiMuistitikku()
{
    m_days->find();
    valitseTietokanta();
}

void frmBackupRestore::valitsePaiva()
{
    m_days->showDay();
    valitseTietokanta();
}

QString frmBackupRestore::chosenCopy() const
{
    const QString day = m_days->day();
    const QList<QListWidgetItem*> chosen = ui->lstTietokanta->selectedItems();
    if (day.isEmpty() || chosen.isEmpty())
        return {};
    return BackupStick::copyPath(m_days->mountPoint(), day, chosen.first()->text());
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
        // No wait cursor: the restore asks its questions on the way; the bar shows the copying, and
        // the conversion of an old-format copy sets the cursor for its own time.
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
