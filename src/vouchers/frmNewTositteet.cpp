#include "frmNewTositteet.h"
#include "ui_frmNewTositteet.h"

#include "DBC.h"
#include "Dates.h"
#include "Dialogs.h"
#include "EnterAsTab.h"
#include "ProgramSettings.h"
#include "Transaction.h"
#include "VoucherDatabaseError.h"

#include <QAbstractListModel>
#include <QAbstractTableModel>
#include <QCloseEvent>
#include <QCompleter>
#include <QHeaderView>
#include <QIntValidator>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScrollBar>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringListModel>
#include <QStyledItemDelegate>
#include <QTimer>
#include <algorithm>

namespace {

constexpr int VisibleRows = 6;
const QString Debet = QStringLiteral("D");
const QString Kredit = QStringLiteral("K");

bool isAccountColumn(int column) { return column == 0 || column == 2; }

} // namespace

// The vouchers of the window's kind, one line each: number, a blank and the description.
class TositeListModel final : public QAbstractListModel {
public:
    using QAbstractListModel::QAbstractListModel;

    struct Line {
        qint32 id;
        QString text;
    };

    void setLines(std::vector<Line> lines)
    {
        beginResetModel();
        m_lines = std::move(lines);
        endResetModel();
    }
    int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : int(m_lines.size());
    }
    QVariant data(const QModelIndex& index, int role) const override
    {
        if (!index.isValid() || size_t(index.row()) >= m_lines.size())
            return {};
        if (role == Qt::DisplayRole)
            return m_lines[size_t(index.row())].text;
        if (role == Qt::UserRole)
            return m_lines[size_t(index.row())].id;
        return {};
    }
    int rowOf(qint32 id) const
    {
        for (size_t i = 0; i < m_lines.size(); ++i)
            if (m_lines[i].id == id)
                return int(i);
        return -1;
    }
    void setLine(qint32 id, const QString& text)
    {
        const int row = rowOf(id);
        if (row >= 0) {
            m_lines[size_t(row)].text = text;
            emit dataChanged(index(row), index(row));
            return;
        }
        beginInsertRows({}, rowCount(), rowCount());
        m_lines.push_back({ id, text });
        endInsertRows();
    }
    void removeLine(qint32 id)
    {
        const int row = rowOf(id);
        if (row < 0)
            return;
        beginRemoveRows({}, row, row);
        m_lines.erase(m_lines.begin() + row);
        endRemoveRows();
    }

private:
    std::vector<Line> m_lines;
};

// The entry rows: debit account, debit amount, credit account, credit amount. Each row shows
// the entry objects of the window's two arrays at that index.
class VientiModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    VientiModel(
        cTosite::Viennit& debet, cTosite::Viennit& kredit, const VoucherAccounts& tilit, QObject* parent)
        : QAbstractTableModel(parent)
        , m_debet(debet)
        , m_kredit(kredit)
        , m_tilit(tilit)
    {
    }

    void refill()
    {
        beginResetModel();
        endResetModel();
    }
    void setEditable(bool editable) { m_editable = editable; }

    int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : int(m_debet.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : 4; }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (role != Qt::DisplayRole)
            return {};
        if (orientation == Qt::Vertical)
            return section + 1;
        static const QString captions[] = { QStringLiteral("Debet-tili"), QStringLiteral("Debet"),
            QStringLiteral("Kredit-tili"), QStringLiteral("Kredit") };
        return section >= 0 && section < 4 ? captions[section] : QString();
    }

    Qt::ItemFlags flags(const QModelIndex& index) const override
    {
        Qt::ItemFlags f = QAbstractTableModel::flags(index);
        return m_editable ? f | Qt::ItemIsEditable : f;
    }

    QVariant data(const QModelIndex& index, int role) const override
    {
        const cVienti* v = entry(index);
        if (!v)
            return {};
        if (role == Qt::TextAlignmentRole && !isAccountColumn(index.column()))
            return int(Qt::AlignRight | Qt::AlignVCenter);
        if (role != Qt::DisplayRole && role != Qt::EditRole)
            return {};
        if (isAccountColumn(index.column()))
            return m_tilit.text(v->tlID());
        return v->Arvo().isZero() ? QString() : v->Arvo().toString();
    }

    bool setData(const QModelIndex& index, const QVariant& value, int role) override
    {
        cVienti* v = entry(index);
        if (!v || role != Qt::EditRole || !m_editable)
            return false;
        const QString text = value.toString();
        if (isAccountColumn(index.column())) {
            if (text.trimmed() == m_tilit.text(v->tlID()))
                return false;
            const qint32 id = m_tilit.resolve(text);
            if (id == 0 && !text.trimmed().isEmpty())
                Dialogs::instance().information(QStringLiteral("Valitse tili, jolle vienti tehdään."));
            v->settlID(id);
        } else {
            const AmountInput in = AmountInput::parse(text);
            if (in.result != AmountInput::Result::Ok)
                Dialogs::instance().information(in.message());
            if (in.result == AmountInput::Result::Ok || in.result == AmountInput::Result::NotANumber)
                v->setArvo(in.value);
        }
        emit dataChanged(index, index);
        emit entryChanged(index.row(), index.column());
        return true;
    }

    cVienti* entry(const QModelIndex& index) const
    {
        if (!index.isValid() || size_t(index.row()) >= m_debet.size())
            return nullptr;
        auto& side = index.column() < 2 ? m_debet : m_kredit;
        return side[size_t(index.row())].get();
    }

signals:
    void entryChanged(int row, int column);

private:
    cTosite::Viennit& m_debet;
    cTosite::Viennit& m_kredit;
    const VoucherAccounts& m_tilit;
    bool m_editable = true;
};

// Cell editors: account cells complete a number or the start of a name from the chart of
// accounts; Enter stores the cell and moves to the next one.
class VientiDelegate final : public QStyledItemDelegate {
public:
    VientiDelegate(const QStringList& accounts, QObject* parent)
        : QStyledItemDelegate(parent)
        , m_accounts(accounts)
    {
    }

    QWidget* createEditor(
        QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const override
    {
        auto* editor = new QLineEdit(parent);
        editor->setFrame(false);
        if (isAccountColumn(index.column())) {
            editor->setObjectName(QStringLiteral("tTili"));
            auto* completer = new QCompleter(m_accounts, editor);
            completer->setCaseSensitivity(Qt::CaseInsensitive);
            completer->setFilterMode(Qt::MatchContains);
            editor->setCompleter(completer);
        } else {
            editor->setObjectName(QStringLiteral("tSumma"));
            editor->setAlignment(Qt::AlignRight);
            editor->setMaxLength(20);
        }
        return editor;
    }
    void setEditorData(QWidget* editor, const QModelIndex& index) const override
    {
        static_cast<QLineEdit*>(editor)->setText(index.data(Qt::EditRole).toString());
        static_cast<QLineEdit*>(editor)->selectAll();
    }
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override
    {
        model->setData(index, static_cast<QLineEdit*>(editor)->text(), Qt::EditRole);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::KeyPress) {
            auto* key = static_cast<QKeyEvent*>(event);
            auto* editor = qobject_cast<QLineEdit*>(watched);
            if (editor && (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)
                && key->modifiers() == Qt::NoModifier) {
                emit commitData(editor);
                emit closeEditor(editor, QAbstractItemDelegate::EditNextItem);
                return true;
            }
        }
        return QStyledItemDelegate::eventFilter(watched, event);
    }

private:
    QStringList m_accounts;
};

frmNewTositteet::frmNewTositteet(Kind kind, QWidget* parent)
    : QMainWindow(parent)
    , ui(std::make_unique<Ui::frmNewTositteet>())
    , m_kind(kind)
    , m_avaus(kind == Kind::Opening)
    , m_paatos(kind == Kind::Closing)
    , m_tosite(std::make_unique<cTosite>())
{
    ui->setupUi(this);
    ui->cEnsimmainen->setObjectName(QStringLiteral("cEnsimmäinen"));
    setWindowTitle(kind == Kind::Opening ? QStringLiteral("Tositteet - Avausviennit")
            : kind == Kind::Closing      ? QStringLiteral("Tositteet - Tilinpäätösviennit")
                                         : QStringLiteral("Tositteet"));
    m_tosite->setIsEmpty(true);

    // Windows of later versions: present, not yet available.
    for (QAction* a : { ui->mPaivakirja, ui->mPaakirja, ui->mHaku, ui->mTilienSaldot, ui->mTilitarkastelu,
             ui->mTilinPaivasaldot, ui->mTositteidenTarkistus, ui->mMuokkaaTositepohjia })
        a->setEnabled(false);
    ui->mTositepohjat->setEnabled(false);
    ui->mTositepohjat->menuAction()->setEnabled(false);
    ui->cHaku->setEnabled(false);
    ui->cTositePohja->setEnabled(false);

    ui->tTositenumero->setValidator(new QIntValidator(0, 999999999, ui->tTositenumero));
    ui->tTositepvm->installEventFilter(this);
    // The typing order: header fields, then the entry rows, then the commands.
    setTabOrder(ui->tTositenumero, ui->tTositepvm);
    setTabOrder(ui->tTositepvm, ui->tTositeSelite);
    setTabOrder(ui->tTositeSelite, ui->grdViennit);
    setTabOrder(ui->grdViennit, ui->cUusi);

    m_list = new TositeListModel(this);
    ui->lstTositteet->setModel(m_list);
    ui->lstTositteet->setUniformItemSizes(true);
    ui->lstTositteet->setEditTriggers(QAbstractItemView::NoEditTriggers);

    auto* grid = ui->grdViennit;
    m_model = new VientiModel(m_debet, m_kredit, m_tilit, this);
    grid->setModel(m_model);
    grid->verticalScrollBar()->setObjectName(QStringLiteral("scrlViennit"));
    grid->setEditTriggers(QAbstractItemView::AllEditTriggers);
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->setSelectionBehavior(QAbstractItemView::SelectItems);
    grid->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    grid->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    grid->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Six rows are visible; more are reached by scrolling.
    const int rowHeight = grid->verticalHeader()->defaultSectionSize();
    grid->setFixedHeight(
        grid->horizontalHeader()->sizeHint().height() + VisibleRows * rowHeight + 2 * grid->frameWidth());

    connect(m_model, &VientiModel::entryChanged, this, &frmNewTositteet::entryChanged);
    connect(ui->tTositenumero, &QLineEdit::textEdited, this, &frmNewTositteet::numeroEdited);
    connect(ui->tTositepvm, &QLineEdit::editingFinished, this, &frmNewTositteet::pvmFinished);
    connect(ui->tTositepvm, &QLineEdit::textEdited, this, [this](const QString& text) {
        const QDate d = Dates::parse(text);
        if (d.isValid() && !m_tosite->IsEmpty())
            m_tosite->setPaiva(d);
    });
    connect(ui->tTositeSelite, &QLineEdit::textEdited, this, &frmNewTositteet::seliteEdited);
    connect(ui->lstTositteet, &QAbstractItemView::activated, this, &frmNewTositteet::loadFromList);
    connect(ui->lstTositteet, &QAbstractItemView::clicked, this, &frmNewTositteet::loadFromList);

    const auto both = [this](QPushButton* button, QAction* action, void (frmNewTositteet::*command)()) {
        connect(button, &QPushButton::clicked, this, command);
        if (action)
            connect(action, &QAction::triggered, this, command);
    };
    both(ui->cUusi, ui->mUusi, &frmNewTositteet::Uusi);
    both(ui->cTallenna, ui->mTallenna, &frmNewTositteet::Tallenna);
    both(ui->cPoista, ui->mPoista, &frmNewTositteet::Poista);
    both(ui->cPeru, ui->mPeru, &frmNewTositteet::Peru);
    both(ui->cEnsimmainen, ui->mEnsimmaiseen, &frmNewTositteet::Ensimmainen);
    both(ui->cEdellinen, ui->mEdelliseen, &frmNewTositteet::Edellinen);
    both(ui->cSeuraava, ui->mSeuraavaan, &frmNewTositteet::Seuraava);
    both(ui->cViimeinen, ui->mViimeiseen, &frmNewTositteet::Viimeinen);
    both(ui->cLisaaVienteja, nullptr, &frmNewTositteet::LisaaVienteja);
    connect(ui->cSulje, &QPushButton::clicked, this, &QWidget::close);
    connect(ui->mSulje, &QAction::triggered, this, &QWidget::close);
    const auto selaa = [this] {
        ui->lstTositteet->setFocus();
        if (m_tosite->ToId() != 0)
            ui->lstTositteet->setCurrentIndex(m_list->index(m_list->rowOf(m_tosite->ToId())));
    };
    connect(ui->cSelaa, &QPushButton::clicked, this, selaa);
    connect(ui->mSelaa, &QAction::triggered, this, selaa);

    try {
        m_maxLkm = cTosite::MaxLkmViennitPerTosite();
        m_tilit.load();
        grid->setItemDelegate(new VientiDelegate(m_tilit.texts(), grid));
        fillList();
        const qint32 laskettava = ProgramSettings::bookkeeping().LaskettavaTili;
        if (laskettava != 0)
            m_kaikki = VoucherAccounts::storedSums(laskettava);
        setCurrent(m_tosite->GetLast(m_avaus, m_paatos));
    } catch (const VoucherDatabaseError& e) {
        showError(e.text());
        setCurrent(nullptr);
    }
    EnterAsTab::install(ui->frameTosite);
}

frmNewTositteet::~frmNewTositteet()
{
    // Fields that lose the focus while the window is torn down must not call back into it.
    for (QObject* child : findChildren<QObject*>())
        QObject::disconnect(child, nullptr, this, nullptr);
    // A window torn down without closing still keeps what was typed.
    if (!m_closing)
        saveAll();
    m_model->setEditable(false);
}

int frmNewTositteet::rowCount() const { return int(m_debet.size()); }

void frmNewTositteet::showError(const QString& text)
{
    Dialogs::instance().error(QStringLiteral("Tietokantavirhe: ") + text);
}

void frmNewTositteet::fillList()
{
    QSqlQuery q(DBC::instance().AvaaDB());
    q.setForwardOnly(true);
    if (!q.prepare(
            QStringLiteral("SELECT toID, toNumero, toSelite FROM \"to\" WHERE (toAvaustosite <> 0) = ? "
                           "AND (toPaatostosite <> 0) = ? AND toNumero >= 0 ORDER BY toNumero, toID")))
        throw VoucherDatabaseError(q.lastError().text());
    q.addBindValue(m_avaus ? 1 : 0);
    q.addBindValue(m_paatos ? 1 : 0);
    VoucherDatabaseError::exec(q);
    std::vector<TositeListModel::Line> lines;
    while (q.next())
        lines.push_back({ q.value(0).toInt(), q.value(1).toString() + u' ' + q.value(2).toString() });
    m_list->setLines(std::move(lines));
}

void frmNewTositteet::refreshListLine(const QString& selite, qint32 toId)
{
    if (toId == m_tosite->ToId())
        m_list->setLine(toId, QString::number(m_tosite->Numero()) + u' ' + selite);
}

void frmNewTositteet::removeListLine(qint32 toId) { m_list->removeLine(toId); }

void frmNewTositteet::setEditable(bool editable)
{
    m_model->setEditable(editable);
    for (QWidget* w : { static_cast<QWidget*>(ui->tTositenumero), static_cast<QWidget*>(ui->tTositepvm),
             static_cast<QWidget*>(ui->tTositeSelite), static_cast<QWidget*>(ui->cTallenna),
             static_cast<QWidget*>(ui->cPoista), static_cast<QWidget*>(ui->cPeru),
             static_cast<QWidget*>(ui->cLisaaVienteja) })
        w->setEnabled(editable);
    for (QAction* a : { ui->mTallenna, ui->mPoista, ui->mPeru })
        a->setEnabled(editable);
}

void frmNewTositteet::discardEntries()
{
    // The objects were saved (or their voucher deleted): dropping them must write nothing.
    for (auto* side : { &m_debet, &m_kredit })
        for (auto& v : *side)
            v->setIsEmpty(true);
    m_debet.clear();
    m_kredit.clear();
}

void frmNewTositteet::setCurrent(std::unique_ptr<cTosite> tosite)
{
    if (m_tosite)
        m_tosite->setIsEmpty(true);
    discardEntries();
    if (tosite) {
        m_tosite = std::move(tosite);
    } else {
        m_tosite = std::make_unique<cTosite>();
        m_tosite->setIsEmpty(true);
    }
    connect(m_tosite.get(), &cTosite::NameChanged, this, &frmNewTositteet::refreshListLine);
    showVoucher();
}

void frmNewTositteet::showVoucher()
{
    m_model->refill();
    try {
        m_debet = m_tosite->GetViennit(Debet);
        m_kredit = m_tosite->GetViennit(Kredit);
    } catch (const VoucherDatabaseError& e) {
        showError(e.text());
    }
    const size_t rows
        = std::max({ size_t(std::max<int>(m_maxLkm, VisibleRows)), m_debet.size(), m_kredit.size() });
    // The sums of the chosen account outside this voucher: its stored entries leave the total.
    m_muut = m_kaikki;
    const qint32 laskettava = ProgramSettings::bookkeeping().LaskettavaTili;
    for (const auto* side : { &m_debet, &m_kredit })
        for (const auto& v : *side)
            if (v->tlID() == laskettava)
                (v->Tyyppi() == Debet ? m_muut.debet : m_muut.kredit) -= v->Arvo();
    while (m_debet.size() < rows)
        m_debet.push_back(m_tosite->AddNewVienti(Debet));
    while (m_kredit.size() < rows)
        m_kredit.push_back(m_tosite->AddNewVienti(Kredit));
    m_model->refill();
    showHeader();
    setEditable(!m_tosite->IsEmpty());
    updateTotals();
}

void frmNewTositteet::showHeader()
{
    const bool empty = m_tosite->IsEmpty();
    ui->tTositenumero->setText(empty ? QString() : QString::number(m_tosite->Numero()));
    ui->tTositepvm->setText(Dates::format(m_tosite->Paiva()));
    ui->tTositeSelite->setText(m_tosite->Selite() == u" " ? QString() : m_tosite->Selite());
    if (!empty && m_tosite->ToId() != 0) {
        const int row = m_list->rowOf(m_tosite->ToId());
        if (row >= 0)
            ui->lstTositteet->setCurrentIndex(m_list->index(row));
    }
}

void frmNewTositteet::updateTotals()
{
    Money debet;
    Money kredit;
    Money laskettavaD = m_muut.debet;
    Money laskettavaK = m_muut.kredit;
    const qint32 laskettava = ProgramSettings::bookkeeping().LaskettavaTili;
    for (const auto& v : m_debet) {
        debet += v->Arvo();
        if (laskettava != 0 && v->tlID() == laskettava)
            laskettavaD += v->Arvo();
    }
    for (const auto& v : m_kredit) {
        kredit += v->Arvo();
        if (laskettava != 0 && v->tlID() == laskettava)
            laskettavaK += v->Arvo();
    }
    ui->lblDebetSumma->setText(debet.toCurrencyString());
    ui->lblKreditSumma->setText(kredit.toCurrencyString());
    const Money erotus = debet - kredit;
    ui->lblErotus->setText(erotus.toCurrencyString());
    QPalette palette = ui->lblErotus->palette();
    palette.setColor(QPalette::WindowText,
        erotus.isZero() ? ui->cTallenna->palette().color(QPalette::ButtonText) : QColor(255, 0, 0));
    ui->lblErotus->setPalette(palette);
    ui->lblHalutunTilinSaldo->setText(
        laskettava == 0 ? QStringLiteral("- -") : (laskettavaD - laskettavaK).toCurrencyString());
}

bool frmNewTositteet::tarkistaTilit()
{
    // An editor still open holds what the user typed last.
    auto* grid = ui->grdViennit;
    if (QWidget* editor = grid->indexWidget(grid->currentIndex())) {
        QMetaObject::invokeMethod(grid, "commitData", Q_ARG(QWidget*, editor));
        QMetaObject::invokeMethod(grid, "closeEditor", Q_ARG(QWidget*, editor),
            Q_ARG(QAbstractItemDelegate::EndEditHint, QAbstractItemDelegate::NoHint));
    }
    if (!m_tosite || m_tosite->IsEmpty())
        return true;
    for (int column : { 0, 2 }) {
        const auto& side = column == 0 ? m_debet : m_kredit;
        for (size_t row = 0; row < side.size(); ++row) {
            const cVienti& v = *side[row];
            if (!v.IsEmpty() && v.tlID() < 1 && !v.Arvo().isZero()) {
                Dialogs::instance().information(QStringLiteral("Tarkista tilivalinta."));
                grid->setFocus();
                grid->setCurrentIndex(m_model->index(int(row), column));
                return false;
            }
        }
    }
    return true;
}

bool frmNewTositteet::saveAll()
{
    if (!m_tosite || m_tosite->IsEmpty())
        return true;
    const qint32 laskettava = ProgramSettings::bookkeeping().LaskettavaTili;
    try {
        QSqlDatabase db = DBC::instance().AvaaDB();
        Transaction t(db);
        m_tosite->Save(false);
        for (const auto* side : { &m_debet, &m_kredit })
            for (const auto& v : *side)
                v->Save(false);
        if (!t.commit())
            throw VoucherDatabaseError(db.lastError().text());
    } catch (const VoucherDatabaseError& e) {
        showError(e.text());
        // The books are as they were: show the voucher as it is stored.
        const qint32 id = m_tosite->ToId();
        auto stored = std::make_unique<cTosite>();
        try {
            if (!stored->Load(id))
                stored->setIsEmpty(true);
        } catch (const VoucherDatabaseError&) {
            stored->setIsEmpty(true);
        }
        setCurrent(std::move(stored));
        return false;
    }
    // What is stored now is what the screen shows.
    m_kaikki = m_muut;
    if (laskettava != 0)
        for (const auto* side : { &m_debet, &m_kredit })
            for (const auto& v : *side)
                if (v->tlID() == laskettava)
                    (v->Tyyppi() == Debet ? m_kaikki.debet : m_kaikki.kredit) += v->Arvo();
    return true;
}

void frmNewTositteet::Uusi()
{
    if (!tarkistaTilit() || !saveAll())
        return;
    auto tosite = std::make_unique<cTosite>();
    try {
        tosite->SetTositeNumeroJaPaiva(ProgramSettings::bookkeeping().TilikausiAlku, m_avaus);
        tosite->setAvaustosite(m_avaus);
        tosite->setPaatostosite(m_paatos);
        tosite->Save(true);
    } catch (const VoucherDatabaseError& e) {
        tosite->setIsEmpty(true);
        showError(e.text());
        return;
    }
    m_list->setLine(tosite->ToId(), QString::number(tosite->Numero()) + u' ' + tosite->Selite());
    setCurrent(std::move(tosite));
    ui->tTositepvm->setFocus();
    ui->tTositepvm->selectAll();
}

void frmNewTositteet::Tallenna()
{
    if (!tarkistaTilit() || !saveAll())
        return;
    if (m_tosite->ToId() != 0)
        refreshListLine(m_tosite->Selite(), m_tosite->ToId());
}

void frmNewTositteet::Poista()
{
    if (m_tosite->IsEmpty() || m_tosite->ToId() == 0) {
        Dialogs::instance().beep();
        return;
    }
    if (!Dialogs::instance().question(QStringLiteral("Haluatko varmasti poistaa valitun tositteen?")))
        return;
    try {
        // The neighbour to show next: the previous voucher of the kind, else the next one.
        auto naapuri = m_tosite->GetPrevious(m_avaus, m_paatos);
        if (naapuri->IsEmpty())
            naapuri = m_tosite->GetNext(m_avaus, m_paatos);
        const qint32 id = m_tosite->ToId();
        m_tosite->Delete();
        removeListLine(id);
        m_kaikki = m_muut;
        if (naapuri->IsEmpty())
            naapuri.reset();
        setCurrent(std::move(naapuri));
    } catch (const VoucherDatabaseError& e) {
        showError(e.text());
    }
}

void frmNewTositteet::Peru()
{
    if (m_tosite->IsEmpty())
        return;
    auto* grid = ui->grdViennit;
    if (QWidget* editor = grid->indexWidget(grid->currentIndex()))
        QMetaObject::invokeMethod(grid, "closeEditor", Q_ARG(QWidget*, editor),
            Q_ARG(QAbstractItemDelegate::EndEditHint, QAbstractItemDelegate::RevertModelCache));
    m_tosite->Undo();
    for (const auto* side : { &m_debet, &m_kredit })
        for (const auto& v : *side)
            v->Undo();
    m_model->refill();
    showHeader();
    updateTotals();
    if (m_tosite->ToId() != 0)
        refreshListLine(m_tosite->Selite(), m_tosite->ToId());
}

void frmNewTositteet::step(Step where)
{
    if (!tarkistaTilit())
        return;
    try {
        std::unique_ptr<cTosite> found;
        switch (where) {
        case Step::First:
            found = m_tosite->GetFirst(m_avaus, m_paatos);
            break;
        case Step::Previous:
            found = m_tosite->GetPrevious(m_avaus, m_paatos);
            break;
        case Step::Next:
            found = m_tosite->GetNext(m_avaus, m_paatos);
            break;
        case Step::Last:
            found = m_tosite->GetLast(m_avaus, m_paatos);
            break;
        }
        if (found->IsEmpty()) {
            Dialogs::instance().beep();
            return;
        }
        if (!saveAll())
            return;
        setCurrent(std::move(found));
    } catch (const VoucherDatabaseError& e) {
        showError(e.text());
    }
}

void frmNewTositteet::Ensimmainen() { step(Step::First); }
void frmNewTositteet::Edellinen() { step(Step::Previous); }
void frmNewTositteet::Seuraava() { step(Step::Next); }
void frmNewTositteet::Viimeinen() { step(Step::Last); }

void frmNewTositteet::LisaaVienteja()
{
    if (m_tosite->IsEmpty())
        return;
    m_debet.push_back(m_tosite->AddNewVienti(Debet));
    m_kredit.push_back(m_tosite->AddNewVienti(Kredit));
    m_model->refill();
}

void frmNewTositteet::loadFromList(const QModelIndex& index)
{
    const qint32 id = index.data(Qt::UserRole).toInt();
    if (id == 0 || id == m_tosite->ToId() || !tarkistaTilit() || !saveAll())
        return;
    try {
        auto tosite = std::make_unique<cTosite>();
        if (!tosite->Load(id)) {
            Dialogs::instance().beep();
            return;
        }
        setCurrent(std::move(tosite));
    } catch (const VoucherDatabaseError& e) {
        showError(e.text());
    }
}

void frmNewTositteet::numeroEdited(const QString& text)
{
    bool ok = false;
    const int numero = text.toInt(&ok);
    if (ok && !m_tosite->IsEmpty())
        m_tosite->setNumero(numero);
}

void frmNewTositteet::pvmFinished()
{
    if (m_tosite->IsEmpty())
        return;
    const QDate d = Dates::parse(ui->tTositepvm->text());
    if (!d.isValid()) {
        m_tosite->setPaiva(QDate());
        ui->tTositepvm->clear();
        return;
    }
    ui->tTositepvm->setText(Dates::format(d));
    m_tosite->setPaiva(d);
    const BookkeepingSettings& s = ProgramSettings::bookkeeping();
    if (d < s.TilikausiAlku || d > s.TilikausiLoppu) {
        Dialogs::instance().information(
            QStringLiteral("Tositteen päivämäärän tulee kuulua tilikauteen!\n\nTilikausi: ")
            + Dates::format(s.TilikausiAlku) + QStringLiteral(" - ") + Dates::format(s.TilikausiLoppu));
        QTimer::singleShot(0, ui->tTositepvm, [this] {
            ui->tTositepvm->setFocus();
            ui->tTositepvm->selectAll();
        });
    }
}

void frmNewTositteet::seliteEdited(const QString& text)
{
    if (m_tosite->IsEmpty())
        return;
    m_tosite->setSelite(text);
    // Entries carry their voucher's description.
    for (const auto* side : { &m_debet, &m_kredit })
        for (const auto& v : *side)
            v->setSelite(m_tosite->Selite());
}

void frmNewTositteet::entryChanged(int /*row*/, int column)
{
    updateTotals();
    if (!isAccountColumn(column) && ProgramSettings::bookkeeping().AutomaattisestiUusiTosite)
        // After the cell editor has closed, not while it is committing.
        QTimer::singleShot(0, this, &frmNewTositteet::automaticNewVoucher);
}

void frmNewTositteet::automaticNewVoucher()
{
    if (m_tosite->IsEmpty())
        return;
    Money erotus;
    bool any = false;
    for (const auto* side : { &m_debet, &m_kredit }) {
        for (const auto& v : *side) {
            const bool hasAccount = v->tlID() > 0;
            const bool hasAmount = !v->Arvo().isZero();
            if (hasAccount != hasAmount)
                return;
            any = any || hasAmount;
            erotus += v->Tyyppi() == Debet ? v->Arvo() : -v->Arvo();
        }
    }
    if (!any || !erotus.isZero())
        return;
    QSqlQuery q(DBC::instance().AvaaDB());
    if (!q.exec(QStringLiteral("SELECT MAX(toNumero) FROM \"to\"")) || !q.next()
        || q.value(0).toInt() != m_tosite->Numero())
        return;
    Uusi();
}

bool frmNewTositteet::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == ui->tTositepvm && event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->text() == u"+" || key->text() == u"-") {
            const QDate d = Dates::parse(ui->tTositepvm->text());
            if (d.isValid() && !m_tosite->IsEmpty()) {
                const QDate moved = d.addDays(key->text() == u"+" ? 1 : -1);
                ui->tTositepvm->setText(Dates::format(moved));
                m_tosite->setPaiva(moved);
            }
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void frmNewTositteet::closeEvent(QCloseEvent* event)
{
    if (!tarkistaTilit()) {
        event->ignore();
        return;
    }
    saveAll();
    m_closing = true;
    event->accept();
}

#include "frmNewTositteet.moc"
