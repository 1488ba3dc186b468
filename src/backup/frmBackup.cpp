#include "backup/frmBackup.h"
#include "ui_frmBackup.h"

#include "backup/BackupStick.h"
#include "core/Dialogs.h"
#include "ui/WaitCursor.h"

#include <QCoreApplication>
#include <QDir>
#include <QLocale>

namespace {

QString megabytes(qint64 bytes)
{
    return QLocale(QLocale::Finnish, QLocale::Finland).toString(double(bytes) / (1024.0 * 1024.0), 'f', 1)
        + QStringLiteral(" Mt");
}

} // namespace

frmBackup::frmBackup(const QString& books, QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmBackup>())
    , m_backup(books)
{
    ui->setupUi(this);
    connect(ui->cEtsiMuistitikku, &QPushButton::clicked, this, &frmBackup::etsiMuistitikku);
    connect(ui->cKopioi, &QPushButton::clicked, this, &frmBackup::kopioi);
    connect(ui->cTiivista, &QPushButton::clicked, this, &frmBackup::tiivista);
    connect(ui->cSulje, &QPushButton::clicked, this, &frmBackup::reject);
    ui->pbEdistyminen->setRange(0, 100);
    ui->pbEdistyminen->setValue(0);

    if (!Drives::instance().supported()) {
        ui->lblVaihe1->setText(
            QStringLiteral("Tietokoneesi ei tue %1-muistitikkuvarmistusta.").arg(BackupStick::Label));
        ui->lblKopioitavaTiedostoNimi->setText(QStringLiteral("-"));
        ui->cEtsiMuistitikku->setEnabled(false);
        ui->cSulje->setFocus();
        return;
    }
    if (m_backup.booksExist()) {
        ui->lblKopioitavaTiedostoNimi->setText(QDir::toNativeSeparators(books));
        ui->lblKopioitavaTiedostoNimi->setToolTip(megabytes(m_backup.booksSize()));
    } else {
        ui->lblKopioitavaTiedostoNimi->setText(QStringLiteral("-"));
        Dialogs::instance().information(QStringLiteral("Kopioitavaa tiedostoa ei löydy."));
    }
    ui->cEtsiMuistitikku->setFocus();
}

frmBackup::~frmBackup() = default;

void frmBackup::setStep(int step, bool enabled)
{
    QWidget* const labels[] = { ui->lblVaihe1, ui->lblVaihe2, ui->lblVaihe3, ui->lblVaihe4, ui->lblVaihe5 };
    QWidget* const buttons[] = { ui->cEtsiMuistitikku, ui->cKopioi, nullptr, ui->cTiivista, nullptr };
    labels[step - 1]->setEnabled(enabled);
    if (buttons[step - 1])
        buttons[step - 1]->setEnabled(enabled);
}

void frmBackup::etsiMuistitikku()
{
    const StickBackup::Found found = m_backup.find();
    if (found == StickBackup::Found::NotFound) {
        ui->lblVapaaTilaStatus->setText(QStringLiteral("Sopivaa muistitikkua ei löydy."));
        Dialogs::instance().information(BackupStick::notFoundMessage());
        return;
    }
    const Volume& stick = m_backup.stick();
    ui->lblVaihe2->setText(
        BackupStick::foundText(QDir::toNativeSeparators(stick.mountPoint), QStringLiteral("tee kopio.")));
    if (found == StickBackup::Found::NoSpace) {
        ui->lblVapaaTilaStatus->setText(QStringLiteral("Muistitikun vapaa tila ei riitä."));
        return;
    }
    ui->lblVapaaTilaStatus->setText(
        QStringLiteral("Muistitikulla on vapaata tilaa %1.").arg(megabytes(stick.freeBytes)));
    setStep(1, false);
    setStep(2, true);
    ui->cKopioi->setFocus();
}

void frmBackup::kopioi()
{
    StickBackup::Copied copied;
    {
        m_busy = true;
        ui->cSulje->setEnabled(false);
        ui->cKopioi->setEnabled(false);
        ui->pbEdistyminen->setValue(0);
        WaitCursor wait;
        copied = m_backup.copy([this](qint64 done, qint64 total) {
            ui->pbEdistyminen->setValue(total > 0 ? int(done * 100 / total) : 100);
            // Repaints only: nothing the user does may start while the copy is written.
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        });
        ui->cSulje->setEnabled(true);
        m_busy = false;
    }
    if (!copied.ok) {
        ui->pbEdistyminen->setValue(0);
        Dialogs::instance().error(copied.message);
        if (copied.stickLost) {
            ui->lblVaihe2->setText(QStringLiteral("2. Kopioi tietokanta muistitikulle."));
            ui->lblVapaaTilaStatus->setText(QStringLiteral("Sopivaa muistitikkua ei löydy."));
            setStep(2, false);
            setStep(1, true);
            ui->cEtsiMuistitikku->setFocus();
        } else {
            ui->cKopioi->setEnabled(true);
            ui->cKopioi->setFocus();
        }
        return;
    }
    ui->pbEdistyminen->setValue(100);
    ui->lblVaihe3->setText(QStringLiteral("3. Kopiointi valmis."));
    ui->lblVaihe3->setToolTip(QDir::toNativeSeparators(copied.path));
    setStep(2, false);
    setStep(3, true);
    setStep(4, true);
    ui->cTiivista->setFocus();
}

void frmBackup::tiivista()
{
    StickBackup::Compacted compacted;
    {
        WaitCursor wait;
        compacted = m_backup.compact();
    }
    ui->lblVaihe5->setText(compacted.text);
    ui->cTiivista->setEnabled(false);
    ui->lblVaihe3->setEnabled(false);
    ui->lblVaihe4->setEnabled(false);
    ui->lblVaihe5->setEnabled(true);
    ui->cSulje->setFocus();
}

void frmBackup::reject()
{
    if (!m_busy)
        QDialog::reject();
}
