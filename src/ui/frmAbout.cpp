#include "frmAbout.h"
#include "ui_frmAbout.h"

#include "Paths.h"
#include "ProgramSettings.h"

#include <QCoreApplication>
#include <QDir>

frmAbout::frmAbout(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmAbout>())
{
    ui->setupUi(this);
    ui->lblVersio->setText(QStringLiteral("Versio %1").arg(QCoreApplication::applicationVersion()));
    ui->lblTiedostot->setText(
        QStringLiteral("Tietokanta: %1\nAsetukset: %2\nOhjelmakansio: %3")
            .arg(QDir::toNativeSeparators(ProgramSettings::installation().Database),
                QDir::toNativeSeparators(Paths::iniFile()), QDir::toNativeSeparators(Paths::programDir())));
    connect(ui->cOK, &QPushButton::clicked, this, &QDialog::accept);
}

frmAbout::~frmAbout() = default;
