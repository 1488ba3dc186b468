#include "printing/frmTulostus.h"
#include "ui_frmTulostus.h"

#include "core/Dialogs.h"
#include "printing/PrintOptions.h"
#include "printing/ReportRunner.h"

#include <QPrintDialog>
#include <QPrinter>

frmTulostus::frmTulostus(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmTulostus>())
{
    ui->setupUi(this);
    ui->cmbTulostusLaite->setCurrentIndex(int(Destination::Printer));
    ui->tKopioita->setText(QString::number(PrintOptions::current().copies));
    connect(ui->cTulostin, &QPushButton::clicked, this, &frmTulostus::tulostin);
    connect(ui->cTulosta, &QPushButton::clicked, this, &frmTulostus::tulosta);
    connect(ui->cPeruTulostus, &QPushButton::clicked, this, &frmTulostus::reject);
}

frmTulostus::~frmTulostus() = default;

void frmTulostus::tulostin()
{
    QPrinter printer;
    if (!PrintOptions::current().printerName.isEmpty())
        printer.setPrinterName(PrintOptions::current().printerName);
    QPrintDialog dialog(&printer, this);
    dialog.setOption(QAbstractPrintDialog::PrintToFile, false);
    if (dialog.exec() == QDialog::Accepted)
        PrintOptions::current().printerName = printer.printerName();
}

void frmTulostus::tulosta()
{
    PrintValues& values = PrintOptions::current();
    const auto destination = Destination(ui->cmbTulostusLaite->currentIndex());
    // Without a printer the dialog stays, with the window chosen in its place.
    if (destination == Destination::Printer && !ReportRunner::printerAvailable()) {
        Dialogs::instance().information(ReportRunner::noPrinterText());
        ui->cmbTulostusLaite->setCurrentIndex(int(Destination::Window));
        ui->cmbTulostusLaite->setFocus();
        return;
    }
    values.destination = destination;
    values.cancelled = false;
    if (const std::optional<int> copies = PrintOptions::copies(ui->tKopioita->text())) {
        values.copies = *copies;
    } else if (destination == Destination::Window) {
        values.copies = 1;
    } else if (Dialogs::instance().question(
                   QStringLiteral("Antamasi kopiomäärä on virheellinen. Haluatko tulostaa yhden kopion?"))) {
        values.copies = 1;
    } else {
        ui->tKopioita->setFocus();
        ui->tKopioita->selectAll();
        return;
    }
    accept();
}

void frmTulostus::reject()
{
    PrintOptions::current().cancelled = true;
    QDialog::reject();
}
