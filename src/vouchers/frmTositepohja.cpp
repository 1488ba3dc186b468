#include "vouchers/frmTositepohja.h"

#include "ui/EnterAsTab.h"
#include "vouchers/EntryDelegate.h"
#include "vouchers/EntryModel.h"

#include <QAbstractTableModel>
#include <QCloseEvent>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

// The entry patterns of the template on screen, in the columns of the voucher window's rows.
class VientiPohjaModel final : public QAbstractTableModel {
public:
    VientiPohjaModel(VoucherTemplateEditor& muokkaus, QObject* parent)
        : QAbstractTableModel(parent)
        , m_muokkaus(muokkaus)
    {
    }
    void refill()
    {
        beginResetModel();
        endResetModel();
    }
    int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : m_muokkaus.riviMaara();
    }
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : 4; }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        return EntryModel::header(section, orientation, role);
    }
    Qt::ItemFlags flags(const QModelIndex& index) const override
    {
        return QAbstractTableModel::flags(index) | Qt::ItemIsEditable;
    }
    QVariant data(const QModelIndex& index, int role) const override
    {
        if (!index.isValid() || index.row() >= m_muokkaus.riviMaara())
            return {};
        if (role == Qt::TextAlignmentRole && !EntryModel::isAccountColumn(index.column()))
            return int(Qt::AlignRight | Qt::AlignVCenter);
        if (role != Qt::DisplayRole && role != Qt::EditRole)
            return {};
        const auto puoli = EntryModel::side(index.column());
        return EntryModel::isAccountColumn(index.column()) ? m_muokkaus.tiliTeksti(puoli, index.row())
                                                           : m_muokkaus.arvoTeksti(puoli, index.row());
    }
    bool setData(const QModelIndex& index, const QVariant& value, int role) override
    {
        if (!index.isValid() || role != Qt::EditRole || index.row() >= m_muokkaus.riviMaara())
            return false;
        const auto puoli = EntryModel::side(index.column());
        const bool changed = EntryModel::isAccountColumn(index.column())
            ? m_muokkaus.setTiliTeksti(puoli, index.row(), value.toString())
            : m_muokkaus.setArvoTeksti(puoli, index.row(), value.toString());
        emit dataChanged(index, index);
        return changed;
    }

private:
    VoucherTemplateEditor& m_muokkaus;
};

namespace {

QPushButton* button(const QString& caption, const char* name, QWidget* parent)
{
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(QString::fromLatin1(name));
    b->setAutoDefault(false);
    return b;
}

} // namespace

frmTositepohja::frmTositepohja(const QSqlDatabase& db, QWidget* parent)
    : QDialog(parent)
    , m_muokkaus(std::make_unique<VoucherTemplateEditor>(db))
{
    setObjectName(QStringLiteral("frmTositepohja"));
    setWindowTitle(QStringLiteral("Tositepohjat"));
    auto* paa = new QHBoxLayout(this);
    auto* vasen = new QVBoxLayout;
    auto* listaOtsikko = new QLabel(QStringLiteral("&Tositepohjat:"), this);
    m_lista = new QListWidget(this);
    m_lista->setObjectName(QStringLiteral("lstTositepohjat"));
    listaOtsikko->setBuddy(m_lista);
    vasen->addWidget(listaOtsikko);
    vasen->addWidget(m_lista);
    paa->addLayout(vasen, 1);

    auto* oikea = new QVBoxLayout;
    auto* kentat = new QFormLayout;
    m_nimi = new QLineEdit(this);
    m_nimi->setObjectName(QStringLiteral("tNimi"));
    m_nimi->setMaxLength(50);
    m_selite = new QLineEdit(this);
    m_selite->setObjectName(QStringLiteral("tSelite"));
    m_selite->setMaxLength(255);
    m_pikavalinta = new QComboBox(this);
    m_pikavalinta->setObjectName(QStringLiteral("cmbPikavalinta"));
    m_pikavalinta->addItems({ QStringLiteral("-"), QStringLiteral("1"), QStringLiteral("2"),
        QStringLiteral("3"), QStringLiteral("4") });
    kentat->addRow(QStringLiteral("&Nimi:"), m_nimi);
    kentat->addRow(QStringLiteral("S&elite:"), m_selite);
    kentat->addRow(QStringLiteral("&Pikavalinta:"), m_pikavalinta);
    oikea->addLayout(kentat);
    m_rivit = new QTableView(this);
    m_rivit->setObjectName(QStringLiteral("grdViennit"));
    m_model = new VientiPohjaModel(*m_muokkaus, this);
    m_rivit->setModel(m_model);
    m_rivit->setEditTriggers(QAbstractItemView::AllEditTriggers);
    m_rivit->setSelectionMode(QAbstractItemView::SingleSelection);
    m_rivit->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_rivit->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_rivit->setWordWrap(false);
    oikea->addWidget(m_rivit);
    auto* napit = new QHBoxLayout;
    auto* uusi = button(QStringLiteral("&Uusi"), "cUusi", this);
    auto* tallenna = button(QStringLiteral("T&allenna"), "cTallenna", this);
    auto* poista = button(QStringLiteral("P&oista"), "cPoista", this);
    auto* lisaa = button(QStringLiteral("&Lisää rivi"), "cLisaaVienteja", this);
    auto* sulje = button(QStringLiteral("&Sulje"), "cSulje", this);
    for (QPushButton* b : { uusi, tallenna, poista, lisaa, sulje })
        napit->addWidget(b);
    oikea->addLayout(napit);
    paa->addLayout(oikea, 3);
    resize(860, 420);

    setTabOrder(m_lista, m_nimi);
    setTabOrder(m_nimi, m_selite);
    setTabOrder(m_selite, m_pikavalinta);
    setTabOrder(m_pikavalinta, m_rivit);
    setTabOrder(m_rivit, uusi);

    connect(m_muokkaus.get(), &VoucherTemplateEditor::pohjaVaihtui, this, &frmTositepohja::naytaPohja);
    connect(m_muokkaus.get(), &VoucherTemplateEditor::pohjatMuuttuivat, this, [this] {
        taytaLuettelo();
        emit pohjatMuuttuivat();
    });
    connect(m_nimi, &QLineEdit::textEdited, m_muokkaus.get(), &VoucherTemplateEditor::setNimi);
    connect(m_selite, &QLineEdit::textEdited, m_muokkaus.get(), &VoucherTemplateEditor::setSelite);
    connect(m_pikavalinta, &QComboBox::activated, this, [this](int index) {
        if (!m_muokkaus->setPikavalinta(index))
            m_pikavalinta->setCurrentIndex(m_muokkaus->pohja().Pikavalinta());
    });
    const auto valitse = [this](QListWidgetItem* item) {
        if (!item)
            return;
        sulkeEditori();
        if (!m_muokkaus->lataa(item->data(Qt::UserRole).toInt())) {
            naytaVirhePaikka();
            taytaLuettelo();
        }
    };
    connect(m_lista, &QListWidget::itemActivated, this, valitse);
    connect(m_lista, &QListWidget::itemClicked, this, valitse);
    connect(uusi, &QPushButton::clicked, this, &frmTositepohja::Uusi);
    connect(tallenna, &QPushButton::clicked, this, &frmTositepohja::Tallenna);
    connect(poista, &QPushButton::clicked, this, &frmTositepohja::Poista);
    connect(lisaa, &QPushButton::clicked, this, &frmTositepohja::LisaaVienteja);
    connect(sulje, &QPushButton::clicked, this, &QDialog::close);

    if (m_muokkaus->avaa())
        m_rivit->setItemDelegate(new EntryDelegate(m_muokkaus->tilit().texts(), m_rivit));
    taytaLuettelo();
    naytaPohja();
    EnterAsTab::install(this);
}

frmTositepohja::~frmTositepohja()
{
    for (QObject* child : findChildren<QObject*>())
        QObject::disconnect(child, nullptr, this, nullptr);
    disconnect(m_muokkaus.get(), nullptr, this, nullptr);
    m_rivit->setModel(nullptr);
    delete m_model;
}

void frmTositepohja::taytaLuettelo()
{
    const QSignalBlocker block(m_lista);
    m_lista->clear();
    for (const cTositePohjat::Rivi& r : m_muokkaus->luettelo()) {
        auto* item
            = new QListWidgetItem(r.nimi.trimmed().isEmpty() ? QStringLiteral("(nimetön)") : r.nimi, m_lista);
        item->setData(Qt::UserRole, r.tpId);
        if (r.tpId == m_muokkaus->pohja().tpID())
            m_lista->setCurrentItem(item);
    }
}

void frmTositepohja::naytaPohja()
{
    const cTositePohja& pohja = m_muokkaus->pohja();
    m_nimi->setText(pohja.Nimi().trimmed().isEmpty() ? QString() : pohja.Nimi());
    m_selite->setText(pohja.Selite() == u" " ? QString() : pohja.Selite());
    m_pikavalinta->setCurrentIndex(pohja.Pikavalinta());
    m_model->refill();
    for (int i = 0; i < m_lista->count(); ++i)
        if (m_lista->item(i)->data(Qt::UserRole).toInt() == pohja.tpID() && pohja.tpID() != 0)
            m_lista->setCurrentRow(i);
}

void frmTositepohja::sulkeEditori()
{
    QWidget* editor = m_rivit->indexWidget(m_rivit->currentIndex());
    if (!editor)
        return;
    QMetaObject::invokeMethod(m_rivit, "commitData", Q_ARG(QWidget*, editor));
    QMetaObject::invokeMethod(m_rivit, "closeEditor", Q_ARG(QWidget*, editor),
        Q_ARG(QAbstractItemDelegate::EndEditHint, QAbstractItemDelegate::NoHint));
}

void frmTositepohja::naytaVirhePaikka()
{
    const auto& paikka = m_muokkaus->virhePaikka();
    if (!paikka)
        return;
    m_rivit->setFocus();
    m_rivit->setCurrentIndex(m_model->index(paikka->rivi, EntryModel::accountColumn(paikka->puoli)));
}

void frmTositepohja::Uusi()
{
    sulkeEditori();
    if (!m_muokkaus->uusi()) {
        naytaVirhePaikka();
        return;
    }
    m_lista->clearSelection();
    m_nimi->setFocus();
}

void frmTositepohja::Tallenna()
{
    sulkeEditori();
    if (!m_muokkaus->tallenna())
        naytaVirhePaikka();
}

void frmTositepohja::Poista()
{
    sulkeEditori();
    m_muokkaus->poista();
}

void frmTositepohja::LisaaVienteja()
{
    sulkeEditori();
    m_muokkaus->lisaaRivi();
    m_model->refill();
}

void frmTositepohja::closeEvent(QCloseEvent* event)
{
    sulkeEditori();
    if (!m_muokkaus->sulje()) {
        naytaVirhePaikka();
        event->ignore();
        return;
    }
    event->accept();
}

// Escape closes as the button does, through the same save.
void frmTositepohja::reject() { close(); }
