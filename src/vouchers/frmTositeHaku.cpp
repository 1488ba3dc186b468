#include "vouchers/frmTositeHaku.h"

#include "core/DatabaseError.h"
#include "ui/WaitCursor.h"
#include "vouchers/VoucherSearch.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QPushButton* button(const QString& caption, const char* name, QWidget* parent)
{
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(QString::fromLatin1(name));
    // Enter in a search field searches; it never presses a button of its own accord.
    b->setAutoDefault(false);
    return b;
}

} // namespace

frmTositeHaku::frmTositeHaku(const QSqlDatabase& db, QWidget* parent)
    : QDialog(parent)
    , m_db(db)
{
    setObjectName(QStringLiteral("frmTositeHaku"));
    setWindowTitle(QStringLiteral("Tositteiden haku"));
    auto* layout = new QVBoxLayout(this);
    auto* ehdot = new QFormLayout;
    m_arvo = new QLineEdit(this);
    m_arvo->setObjectName(QStringLiteral("tVienninArvo"));
    m_selite = new QLineEdit(this);
    m_selite->setObjectName(QStringLiteral("tSelite"));
    m_selite->setMaxLength(255);
    ehdot->addRow(QStringLiteral("Viennin &arvo:"), m_arvo);
    ehdot->addRow(QStringLiteral("&Selite sisältää:"), m_selite);
    layout->addLayout(ehdot);
    auto* haku = button(QStringLiteral("&Hae"), "cSearch", this);
    layout->addWidget(haku, 0, Qt::AlignRight);
    m_lista = new QListWidget(this);
    m_lista->setObjectName(QStringLiteral("lstTositteet"));
    layout->addWidget(m_lista);
    m_tulos = new QLabel(this);
    m_tulos->setObjectName(QStringLiteral("lblTulos"));
    layout->addWidget(m_tulos);
    auto* napit = new QHBoxLayout;
    auto* avaa = button(QStringLiteral("A&vaa"), "cOpen", this);
    auto* peru = button(QStringLiteral("&Peruuta"), "cUndo", this);
    napit->addStretch();
    napit->addWidget(avaa);
    napit->addWidget(peru);
    layout->addLayout(napit);
    resize(520, 420);

    setTabOrder(m_arvo, m_selite);
    setTabOrder(m_selite, haku);
    setTabOrder(haku, m_lista);
    setTabOrder(m_lista, avaa);
    setTabOrder(avaa, peru);
    connect(m_arvo, &QLineEdit::returnPressed, this, &frmTositeHaku::Search);
    connect(m_selite, &QLineEdit::returnPressed, this, &frmTositeHaku::Search);
    connect(haku, &QPushButton::clicked, this, &frmTositeHaku::Search);
    connect(avaa, &QPushButton::clicked, this, &frmTositeHaku::Open);
    connect(peru, &QPushButton::clicked, this, &frmTositeHaku::Undo);
    connect(m_lista, &QListWidget::itemActivated, this, &frmTositeHaku::Open);
}

void frmTositeHaku::Search()
{
    VoucherSearch::Tulos tulos;
    {
        WaitCursor wait;
        if (!tellIfFails(QStringLiteral("Tositteita ei voitu hakea."),
                [&] { tulos = VoucherSearch::hae(m_db, m_arvo->text().trimmed(), m_selite->text()); }))
            return;
    }
    if (!tulos.virhe.isEmpty()) {
        showInformation(tulos.virhe);
        m_arvo->setFocus();
        m_arvo->selectAll();
        return;
    }
    m_lista->clear();
    for (const VoucherSearch::Osuma& o : tulos.osumat) {
        auto* item = new QListWidgetItem(o.rivi(), m_lista);
        item->setData(Qt::UserRole, o.toId);
    }
    m_tulos->setText(tulos.yhteenveto());
    if (!tulos.osumat.empty()) {
        m_lista->setCurrentRow(0);
        m_lista->setFocus();
    }
}

void frmTositeHaku::Open()
{
    QListWidgetItem* item = m_lista->currentItem();
    m_valittu = item && item->isSelected() ? item->data(Qt::UserRole).toInt() : 0;
    done(m_valittu != 0 ? QDialog::Accepted : QDialog::Rejected);
}

void frmTositeHaku::Undo()
{
    m_valittu = 0;
    QDialog::reject();
}

void frmTositeHaku::reject() { Undo(); }
