#include "vouchers/frmTositeTarkistusVirheet.h"

#include "accounts/ChartOfAccounts.h"
#include "core/DatabaseError.h"
#include "ui/WaitCursor.h"
#include "vouchers/cTositeTarkistus.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

frmTositeTarkistusVirheet::frmTositeTarkistusVirheet(const QSqlDatabase& db, bool korjaa, QWidget* parent)
    : QDialog(parent)
    , m_db(db)
    , m_korjaa(korjaa)
{
    setObjectName(QStringLiteral("frmTositeTarkistusVirheet"));
    setWindowTitle(QStringLiteral("Tositteiden tarkistus"));
    auto* layout = new QVBoxLayout(this);
    auto* otsikko = new QLabel(
        QStringLiteral("&Havaitut puutteet (avaa tosite kaksoisnapsautuksella tai Enterillä):"), this);
    layout->addWidget(otsikko);
    m_lista = new QListWidget(this);
    m_lista->setObjectName(QStringLiteral("lstVirheet"));
    otsikko->setBuddy(m_lista);
    layout->addWidget(m_lista);
    auto* napit = new QHBoxLayout;
    auto* tarkista = new QPushButton(QStringLiteral("&Tarkista"), this);
    tarkista->setObjectName(QStringLiteral("cTarkista"));
    auto* sulje = new QPushButton(QStringLiteral("&Sulje"), this);
    sulje->setObjectName(QStringLiteral("cSulje"));
    napit->addStretch();
    napit->addWidget(tarkista);
    napit->addWidget(sulje);
    layout->addLayout(napit);
    resize(560, 360);

    connect(tarkista, &QPushButton::clicked, this, &frmTositeTarkistusVirheet::Tarkista);
    connect(sulje, &QPushButton::clicked, this, &QDialog::close);
    connect(m_lista, &QListWidget::itemActivated, this, &frmTositeTarkistusVirheet::valittu);

    if (ChartOfAccounts::tietokantaAsetusPuuttuu())
        showInformation(QStringLiteral("Tarkista tietokanta asetukset asetusikkunasta!"));
    else
        Tarkista();
}

void frmTositeTarkistusVirheet::Tarkista()
{
    std::vector<cTositeTarkistusVirhe> virheet;
    {
        WaitCursor wait;
        if (!tellIfFails(QStringLiteral("Tositteiden tarkistus ei onnistunut."),
                [&] { virheet = cTositeTarkistus(m_db).Tarkista(m_korjaa); }))
            return;
    }
    m_lista->clear();
    for (const cTositeTarkistusVirhe& v : virheet) {
        auto* item = new QListWidgetItem(v.rivi(), m_lista);
        item->setData(Qt::UserRole, v.ToId);
    }
    if (virheet.empty())
        m_lista->addItem(cTositeTarkistus::virheeton());
    m_lista->setCurrentRow(0);
    m_lista->setFocus();
}

void frmTositeTarkistusVirheet::valittu(QListWidgetItem* item)
{
    const qint32 toId = item ? item->data(Qt::UserRole).toInt() : 0;
    if (toId != 0)
        emit voucherChosen(toId);
}
