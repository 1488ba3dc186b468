#include "statements/frmTarkistusVirheet.h"
#include "ui_frmTarkistusVirheet.h"

#include "accounts/ChartOfAccounts.h"
#include "core/DatabaseError.h"
#include "core/Dialogs.h"
#include "statements/TemplateChecks.h"

#include <QVariant>

frmTarkistusVirheet::frmTarkistusVirheet(const QSqlDatabase& db, qint32 tulos, qint32 tase, QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmTarkistusVirheet>())
    , m_db(db)
{
    ui->setupUi(this);
    if (!m_db.isOpen()) {
        Dialogs::instance().information(QStringLiteral("Tarkista tietokanta asetukset asetusikkunasta!"));
        ui->cTarkista->setEnabled(false);
        ui->cKorjausSaldopuoli->setEnabled(false);
        return;
    }
    tellIfFails(QStringLiteral("Malleja ei voitu lukea."), [&] {
        for (const ChartOfAccounts::Malli& m : ChartOfAccounts::tilinpaatosMallit(m_db))
            (m.tyyppi == 2 ? ui->cmbTase : ui->cmbTuloslaskelma)->addItem(m.nimi.trimmed(), m.id);
    });
    for (const auto& [combo, id] :
        { std::pair { ui->cmbTuloslaskelma, tulos }, std::pair { ui->cmbTase, tase } }) {
        combo->insertItem(0, QString(), 0);
        const int at = combo->findData(id);
        combo->setCurrentIndex(id != 0 && at >= 0 ? at : (combo->count() > 1 ? 1 : 0));
    }
    addAction(ui->mKorjausSaldopuoli);
    connect(ui->cTarkista, &QPushButton::clicked, this, &frmTarkistusVirheet::tarkista);
    connect(ui->mKorjausSaldopuoli, &QAction::triggered, this, &frmTarkistusVirheet::korjaaSaldopuolet);
    connect(ui->cKorjausSaldopuoli, &QPushButton::clicked, ui->mKorjausSaldopuoli, &QAction::trigger);
    connect(ui->cSulje, &QPushButton::clicked, this, &QDialog::accept);
}

frmTarkistusVirheet::~frmTarkistusVirheet() = default;

qint32 frmTarkistusVirheet::chosen(bool tulos) const
{
    return (tulos ? ui->cmbTuloslaskelma : ui->cmbTase)->currentData().toInt();
}

void frmTarkistusVirheet::tarkista()
{
    ui->lstVirheet->clear();
    const TemplateChecks::Pair pair { chosen(true), chosen(false) };
    if (!pair.complete()) {
        Dialogs::instance().information(QStringLiteral("Valitse tarkistettava tulos- ja tasemalli."));
        return;
    }
    tellIfFails(QStringLiteral("Malleja ei voitu tarkistaa."), [&] {
        const std::vector<cMalliVirhe> findings = TemplateChecks::run(m_db, pair);
        if (findings.empty()) {
            ui->lstVirheet->addItem(QStringLiteral("Tarkistus suoritettu virheettömästi."));
            Dialogs::instance().information(QStringLiteral("Tarkistus suoritettu virheettömästi."));
            return;
        }
        ui->lstVirheet->addItems(TemplateChecks::listLines(findings));
        ui->lstVirheet->setCurrentRow(0);
        ui->lstVirheet->setFocus();
    });
}

void frmTarkistusVirheet::korjaaSaldopuolet()
{
    tellIfFails(QStringLiteral("Saldopuolia ei voitu korjata."), [&] {
        const TemplateChecks::Pair pair { chosen(true), chosen(false) };
        // Findings on the screen are brought up to date.
        if (TemplateChecks::korjaaSaldopuolet(m_db, pair) && pair.complete() && ui->lstVirheet->count() > 0)
            tarkista();
    });
}
