#include "banking/BankImportWindow.h"

#include "core/DatabaseError.h"
#include "core/Dates.h"
#include "core/Dialogs.h"
#include "core/ProgramSettings.h"
#include "ui/AccountEditor.h"
#include "ui/WaitCursor.h"

#include <QComboBox>
#include <QEventLoop>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QThread>
#include <QVBoxLayout>

namespace {

// The account cell completes a number or any part of a name, as the voucher window's does.
class AccountDelegate final : public QStyledItemDelegate {
public:
    AccountDelegate(const QStringList& accounts, QObject* parent)
        : QStyledItemDelegate(parent)
        , m_accounts(accounts)
    {
    }
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex&) const override
    {
        auto* self = const_cast<AccountDelegate*>(this);
        return accountEditor(parent, m_accounts, self, [self](QLineEdit* editor) {
            emit self->commitData(editor);
            emit self->closeEditor(editor);
        });
    }

private:
    QStringList m_accounts;
};

QString stateText(const BankImport::Proposal& p)
{
    if (p.state != BankImport::State::New)
        return p.note;
    return BankImport::sourceText(p.source);
}

} // namespace

BankLinesModel::BankLinesModel(const AccountLookup& accounts, QObject* parent)
    : QAbstractTableModel(parent)
    , m_accounts(accounts)
{
}

void BankLinesModel::setPlan(BankImport::Plan plan)
{
    beginResetModel();
    m_plan = std::move(plan);
    m_chosen.assign(m_plan.proposals.size(), false);
    for (size_t i = 0; i < m_chosen.size(); ++i)
        m_chosen[i] = m_plan.proposals[i].state == BankImport::State::New;
    endResetModel();
}

std::vector<size_t> BankLinesModel::chosen() const
{
    std::vector<size_t> out;
    for (size_t i = 0; i < m_chosen.size(); ++i)
        if (m_chosen[i])
            out.push_back(i);
    return out;
}

void BankLinesModel::fillMissing(qint32 tlId)
{
    for (BankImport::Proposal& p : m_plan.proposals)
        if (!p.counterAccount) {
            p.counterAccount = tlId;
            p.source = BankImport::Source::Suspense;
        }
    m_plan.suspenseAccount = tlId;
    emit dataChanged(index(0, Tili), index(rowCount() - 1, Peruste));
}

int BankLinesModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_plan.proposals.size());
}

int BankLinesModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant BankLinesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const char* const Titles[]
        = { "Tallenna", "Päivä", "Summa", "Maksaja tai saaja", "Viite tai viesti", "Vastatili", "Peruste" };
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole && section >= 0 && section < ColumnCount)
        return QString::fromUtf8(Titles[section]);
    return {};
}

QVariant BankLinesModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || size_t(index.row()) >= m_plan.proposals.size())
        return {};
    const BankImport::Proposal& p = m_plan.proposals[size_t(index.row())];
    const BankLine& l = p.line;
    if (role == Qt::CheckStateRole && index.column() == Valittu)
        return m_chosen[size_t(index.row())] ? Qt::Checked : Qt::Unchecked;
    if (role == Qt::TextAlignmentRole && index.column() == Summa)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return {};
    switch (index.column()) {
    case Paiva:
        return Dates::format(l.bookingDate);
    case Summa:
        return l.amount.toString();
    case Osapuoli:
        return l.counterparty;
    case Viesti:
        return l.reference.isEmpty() ? l.message : QStringLiteral("viite ") + l.reference;
    case Tili:
        return p.counterAccount ? m_accounts.text(p.counterAccount) : QStringLiteral("(selvittelytili)");
    case Peruste:
        return stateText(p);
    default:
        return {};
    }
}

Qt::ItemFlags BankLinesModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags f = QAbstractTableModel::flags(index);
    if (!index.isValid() || m_plan.proposals[size_t(index.row())].state != BankImport::State::New)
        return f;
    if (index.column() == Valittu)
        f |= Qt::ItemIsUserCheckable;
    if (index.column() == Tili)
        f |= Qt::ItemIsEditable;
    return f;
}

bool BankLinesModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!(flags(index) & (Qt::ItemIsUserCheckable | Qt::ItemIsEditable)))
        return false;
    if (role == Qt::CheckStateRole && index.column() == Valittu) {
        m_chosen[size_t(index.row())] = value.toInt() == Qt::Checked;
        emit dataChanged(index, index);
        return true;
    }
    if (role != Qt::EditRole || index.column() != Tili)
        return false;
    const qint32 tlId = m_accounts.resolve(value.toString());
    if (!tlId) {
        Dialogs::instance().information(
            QStringLiteral("Tiliä \"%1\" ei ole tilikartassa.").arg(value.toString()));
        return false;
    }
    BankImport::Proposal& p = m_plan.proposals[size_t(index.row())];
    p.counterAccount = tlId;
    p.source = BankImport::Source::User;
    emit dataChanged(this->index(index.row(), Tili), this->index(index.row(), Peruste));
    return true;
}

BankImportWindow::BankImportWindow(const QSqlDatabase& db, QWidget* parent)
    : QWidget(parent)
    , m_db(db)
{
    setObjectName(QStringLiteral("BankImportWindow"));
    setWindowTitle(QStringLiteral("Tiliotteen tuonti"));
    m_accounts.load(db);
    m_model = new BankLinesModel(m_accounts, this);

    m_tili = new QComboBox(this);
    m_tili->setObjectName(QStringLiteral("cmbTili"));
    for (const ChartOfAccounts::Account& a : m_accounts.accounts())
        m_tili->addItem(a.caption(), a.id);
    // The account the last statement went to, else the first whose name speaks of a bank.
    const QVariant last
        = Sql::scalar(db, QStringLiteral("SELECT blAccount FROM BankLines ORDER BY blID DESC LIMIT 1"));
    int at = last.isValid() ? m_tili->findData(last.toInt()) : -1;
    if (at < 0)
        at = std::max(0, m_tili->findText(QStringLiteral("pankki"), Qt::MatchContains));
    m_tili->setCurrentIndex(at);
    connect(m_tili, &QComboBox::currentIndexChanged, this, &BankImportWindow::repropose);

    m_tiedosto = new QLineEdit(this);
    m_tiedosto->setObjectName(QStringLiteral("tTiedosto"));
    auto* valitse = new QPushButton(QStringLiteral("&Valitse tiedosto..."), this);
    valitse->setObjectName(QStringLiteral("cmdValitse"));
    connect(valitse, &QPushButton::clicked, this, &BankImportWindow::chooseFile);
    auto* lue = new QPushButton(QStringLiteral("&Lue"), this);
    lue->setObjectName(QStringLiteral("cmdLue"));
    connect(lue, &QPushButton::clicked, this, [this] { readStatement(m_tiedosto->text()); });
    connect(m_tiedosto, &QLineEdit::returnPressed, lue, &QPushButton::click);

    m_rivit = new QTableView(this);
    m_rivit->setObjectName(QStringLiteral("tblRivit"));
    m_rivit->setModel(m_model);
    m_rivit->setItemDelegateForColumn(BankLinesModel::Tili, new AccountDelegate(m_accounts.texts(), m_rivit));
    m_rivit->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_rivit->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed
        | QAbstractItemView::AnyKeyPressed);
    m_rivit->horizontalHeader()->setStretchLastSection(true);
    m_rivit->verticalHeader()->hide();
    m_rivit->setWordWrap(false);
    connect(m_model, &QAbstractItemModel::dataChanged, m_rivit,
        [this] { m_rivit->resizeColumnToContents(BankLinesModel::Tili); });

    m_yhteenveto = new QLabel(this);
    m_yhteenveto->setObjectName(QStringLiteral("lblYhteenveto"));
    m_tallenna = new QPushButton(QStringLiteral("&Tallenna valitut"), this);
    m_tallenna->setObjectName(QStringLiteral("cmdTallenna"));
    m_tallenna->setEnabled(false);
    connect(m_tallenna, &QPushButton::clicked, this, &BankImportWindow::storeChosen);
    auto* sulje = new QPushButton(QStringLiteral("&Sulje"), this);
    sulje->setObjectName(QStringLiteral("cmdSulje"));
    connect(sulje, &QPushButton::clicked, this, &QWidget::close);

    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("&Pankkitili:"), m_tili);
    auto* file = new QHBoxLayout;
    file->addWidget(m_tiedosto, 1);
    file->addWidget(valitse);
    file->addWidget(lue);
    auto* tiedostoLabel = new QLabel(QStringLiteral("Tiliotteen tie&dosto:"), this);
    tiedostoLabel->setBuddy(m_tiedosto);
    form->addRow(tiedostoLabel, file);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_yhteenveto, 1);
    buttons->addWidget(m_tallenna);
    buttons->addWidget(sulje);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_rivit, 1);
    layout->addLayout(buttons);
    resize(900, 500);
}

qint32 BankImportWindow::bankAccount() const { return m_tili->currentData().toInt(); }

void BankImportWindow::chooseFile()
{
    const QString path = Dialogs::instance().openFileName(QStringLiteral("Valitse tiliote"),
        QStringLiteral("Tiliotteet (*.xml *.XML *.txt *.TXT *.tito *.TITO *.to *.TO);;Kaikki tiedostot (*)"),
        m_tiedosto->text());
    if (path.isEmpty())
        return;
    m_tiedosto->setText(path);
    readStatement(path);
}

bool BankImportWindow::readStatement(const QString& path)
{
    m_statement.reset();
    m_model->setPlan({});
    showSummary();
    if (path.trimmed().isEmpty()) {
        Dialogs::instance().information(QStringLiteral("Valitse ensin tiliotteen tiedosto."));
        return false;
    }
    // A large file is read on a thread of its own while the window shows that it is working.
    BankReadResult result;
    {
        QProgressDialog progress(QStringLiteral("Luetaan tiliotetta..."), QString(), 0, 0, this);
        progress.setObjectName(QStringLiteral("prgLukee"));
        progress.setWindowModality(Qt::WindowModal);
        progress.setMinimumDuration(300);
        QEventLoop loop;
        QThread* reader = QThread::create([&result, path] { result = BankStatements::readFile(path); });
        connect(reader, &QThread::finished, &loop, &QEventLoop::quit);
        reader->start();
        loop.exec(QEventLoop::ExcludeUserInputEvents);
        reader->wait();
        delete reader;
    }
    if (!result.statement) {
        Dialogs::instance().error(result.error);
        return false;
    }
    m_statement = std::move(result.statement);
    repropose();
    return true;
}

void BankImportWindow::repropose()
{
    if (!m_statement)
        return;
    const WaitCursor wait;
    const BookkeepingSettings& year = ProgramSettings::bookkeeping();
    tellIfFails(QStringLiteral("Tiliotteen rivejä ei voitu ehdottaa."), [&] {
        m_model->setPlan(
            BankImport::propose(m_db, *m_statement, bankAccount(), year.TilikausiAlku, year.TilikausiLoppu));
    });
    if (!m_model->plan().error.isEmpty())
        Dialogs::instance().error(m_model->plan().error);
    showSummary();
    m_rivit->resizeColumnsToContents();
    m_rivit->setFocus();
}

void BankImportWindow::showSummary()
{
    const BankImport::Plan& plan = m_model->plan();
    if (plan.proposals.empty() || !plan.error.isEmpty()) {
        m_yhteenveto->clear();
        m_tallenna->setEnabled(false);
        return;
    }
    using BankImport::State;
    QString text = QStringLiteral("%1 riviä, joista uusia %2")
                       .arg(plan.proposals.size())
                       .arg(plan.linesIn(State::New));
    if (const int n = plan.linesIn(State::Imported))
        text += QStringLiteral(", jo tuotuja %1").arg(n);
    if (const int n = plan.linesIn(State::OutsideYear))
        text += QStringLiteral(", tilikauden ulkopuolella %1").arg(n);
    if (const int n = plan.linesIn(State::Refused))
        text += QStringLiteral(", hylättyjä %1").arg(n);
    m_yhteenveto->setText(text + u'.');
    m_tallenna->setEnabled(plan.linesIn(State::New) > 0);
}

bool BankImportWindow::storeChosen()
{
    BankImport::Plan& plan = m_model->plan();
    const std::vector<size_t> chosen = m_model->chosen();
    if (chosen.empty()) {
        Dialogs::instance().information(QStringLiteral("Valitse tallennettavat rivit."));
        return false;
    }
    const bool missing = std::any_of(
        chosen.begin(), chosen.end(), [&](size_t i) { return !plan.proposals[i].counterAccount; });
    if (missing) {
        const BankImport::SuspenseOffer offer = BankImport::suspenseOffer(m_db);
        if (!offer.numero
            || !Dialogs::instance().question(
                QStringLiteral("Kirjanpidossa ei ole selvittelytiliä riveille, joille ei löytynyt tiliä. "
                               "Luodaanko tili %1 %2 taseeseen?")
                    .arg(offer.numero)
                    .arg(offer.nimi))) {
            Dialogs::instance().information(
                QStringLiteral("Valitse vastatili jokaiselle tallennettavalle riville."));
            return false;
        }
        BankImport::CreatedSuspense created;
        if (!tellIfFails(QStringLiteral("Selvittelytiliä ei voitu luoda."),
                [&] { created = BankImport::createSuspenseAccount(m_db, offer); }))
            return false;
        m_accounts.load(m_db);
        m_model->fillMissing(created.tlId);
        Dialogs::instance().information(BankImport::suspenseCreatedText(offer, created));
    }
    BankImport::Stored stored;
    bool ok = false;
    {
        const WaitCursor wait;
        ok = tellIfFails(QStringLiteral("Tiliotteen rivejä ei voitu tallentaa; mitään ei tallennettu."),
            [&] { stored = BankImport::store(m_db, plan, chosen); });
    }
    if (!ok)
        return false;
    if (!stored.error.isEmpty()) {
        Dialogs::instance().information(stored.error);
        return false;
    }
    Dialogs::instance().information(BankImport::storedText(stored));
    repropose();
    return true;
}
