#include "yearchange/frmKaudenVaihto.h"
#include "ui_frmKaudenVaihto.h"

#include "core/DatabaseError.h"
#include "core/Dates.h"
#include "core/Dialogs.h"
#include "ui/WaitCursor.h"
#include "yearchange/FiscalYearChange.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDir>

frmKaudenVaihto::frmKaudenVaihto(const QSqlDatabase& db, QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmKaudenVaihto>())
    , m_db(db)
{
    ui->setupUi(this);
    ui->pBar->setRange(0, FiscalYearChange::Vaiheet);
    ui->pBar->setValue(0);
    connect(ui->cTilikaudenvaihto, &QPushButton::clicked, this, &frmKaudenVaihto::vaihda);
    connect(ui->cPeru, &QPushButton::clicked, this, &frmKaudenVaihto::reject);
    naytaKaudet();
    taytaMallit();
    ui->cmbTasemalli->setFocus();
}

frmKaudenVaihto::~frmKaudenVaihto() = default;

void frmKaudenVaihto::naytaKaudet()
{
    const FiscalYearChange::Kaudet nyt = FiscalYearChange::nykyiset();
    const FiscalYearChange::Kaudet uudet = FiscalYearChange::seuraavat(nyt);
    ui->lblTilikausiAlku->setText(Dates::format(nyt.alku));
    ui->lblTilikausiLoppu->setText(Dates::format(nyt.loppu));
    ui->lblTilikausiUusiAlku->setText(Dates::format(uudet.alku));
    ui->lblTilikausiUusiLoppu->setText(Dates::format(uudet.loppu));
}

void frmKaudenVaihto::taytaMallit()
{
    // A blank first item, then the balance-sheet templates by name; nothing is chosen yet.
    ui->cmbTasemalli->addItem(QStringLiteral(" "), 0);
    tellIfFails(QStringLiteral("Tasemalleja ei voitu lukea."), [this] {
        for (const FiscalYearChange::Tasemalli& m : FiscalYearChange::tasemallit(m_db))
            ui->cmbTasemalli->addItem(m.nimi, m.id);
    });
    ui->cmbTasemalli->setCurrentIndex(-1);
}

void frmKaudenVaihto::setKaynnissa(bool kaynnissa)
{
    m_kaynnissa = kaynnissa;
    for (QWidget* w :
        { static_cast<QWidget*>(ui->cmbTasemalli), static_cast<QWidget*>(ui->chkTeeAvausviennit),
            static_cast<QWidget*>(ui->cTilikaudenvaihto), static_cast<QWidget*>(ui->cPeru) })
        w->setEnabled(!kaynnissa);
}

void frmKaudenVaihto::vaihda()
{
    if (m_kaynnissa)
        return;
    const int valittu = ui->cmbTasemalli->currentIndex();
    const std::optional<qint32> malli
        = valittu < 0 ? std::nullopt : std::optional<qint32>(ui->cmbTasemalli->itemData(valittu).toInt());

    FiscalYearChange vaihto(m_db);
    vaihto.setEdistyminen([this](const QString& teksti, int valmiina) {
        ui->lblStatus->setText(teksti);
        ui->pBar->setValue(valmiina);
        // The stages repaint; the controls are disabled meanwhile.
        QCoreApplication::processEvents();
    });
    vaihto.setVahvistus([](const FiscalYearChange::Kaudet& uudet) {
        return Dialogs::instance().question(QStringLiteral(
            "Vaihdetaanko tilikausi? Uusi tilikausi on %1 - %2.\n\nKirjanpidosta otetaan ensin "
            "varmuuskopio, ja vaihdon jälkeen sen nimi näkyy tässä ikkunassa.")
                                                .arg(Dates::format(uudet.alku), Dates::format(uudet.loppu)));
    });
    vaihto.setVahvistus([](const FiscalYearChange::Kaudet& uudet) {
        return Dialogs::instance().question(QStringLiteral(
            "Vaihdetaanko tilikausi? Uusi tilikausi on %1 - %2.\n\nKirjanpidosta otetaan ensin "
            "varmuuskopio, ja vaihdon jälkeen sen nimi näkyy tässä ikkunassa.")
                                                .arg(Dates::format(uudet.alku), Dates::format(uudet.loppu)));
    });
    ui->pBar->setRange(0, FiscalYearChange::Vaiheet);
    ui->pBar->setValue(0);
    bool tehty = false;
    {
        setKaynnissa(true);
        WaitCursor busy;
        tehty = vaihto.suorita(malli, ui->chkTeeAvausviennit->isChecked());
        setKaynnissa(false);
    }
    if (!tehty) {
        ui->pBar->setValue(0);
        ui->lblStatus->setText(vaihto.varmuuskopio().isEmpty()
                ? QString()
                : QStringLiteral("Tilikautta ei vaihdettu. Varmuuskopio: ") + vaihto.varmuuskopio());
        return;
    }
    m_vaihdettu = true;
    ui->lblStatus->setText(FiscalYearChange::valmisViesti() + QStringLiteral(" Varmuuskopio: ")
        + QDir::toNativeSeparators(vaihto.varmuuskopio()));
    Dialogs::instance().information(FiscalYearChange::valmisViesti());
    accept();
}

void frmKaudenVaihto::reject()
{
    // The change cannot be left half-way: Esc and the close button wait for it.
    if (!m_kaynnissa)
        QDialog::reject();
}

void frmKaudenVaihto::closeEvent(QCloseEvent* event)
{
    if (m_kaynnissa)
        event->ignore();
    else
        QDialog::closeEvent(event);
}
