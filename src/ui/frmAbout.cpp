#include "ui/frmAbout.h"
#include "ui_frmAbout.h"

#include "core/Paths.h"
#include "core/ProgramInfo.h"
#include "core/ProgramSettings.h"

#include <QApplication>
#include <QDir>
#include <QHeaderView>

frmAbout::frmAbout(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmAbout>())
{
    ui->setupUi(this);
    ui->lblKuvake->setPixmap(QApplication::windowIcon().pixmap(64, 64));
    ui->lblVersio->setText(
        QStringLiteral("Versio %1\nLisenssi: %2").arg(ProgramInfo::version(), ProgramInfo::licence()));

    const std::vector<ProgramInfo::Library> libraries = ProgramInfo::libraries();
    ui->tKirjastot->setRowCount(int(libraries.size()));
    for (int row = 0; row < int(libraries.size()); ++row) {
        const ProgramInfo::Library& l = libraries[size_t(row)];
        ui->tKirjastot->setItem(row, 0, new QTableWidgetItem(l.name));
        ui->tKirjastot->setItem(row, 1, new QTableWidgetItem(l.version));
        ui->tKirjastot->setItem(row, 2, new QTableWidgetItem(l.licence));
    }
    ui->tKirjastot->resizeColumnsToContents();
    ui->tKirjastot->setMinimumHeight(ui->tKirjastot->horizontalHeader()->height()
        + ui->tKirjastot->rowHeight(0) * (int(libraries.size()) + 1));

    ui->lblTiedostot->setText(
        QStringLiteral("Tietokanta: %1\nAsetukset: %2\nOhjelmakansio: %3")
            .arg(QDir::toNativeSeparators(ProgramSettings::installation().Database),
                QDir::toNativeSeparators(Paths::iniFile()), QDir::toNativeSeparators(Paths::programDir())));
    connect(ui->cOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(ui->cTietojaQt, &QPushButton::clicked, this, [this] { QApplication::aboutQt(); });
}

frmAbout::~frmAbout() = default;
