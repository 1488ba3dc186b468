#include "statements/frmNewTulosJaTase.h"
#include "ui_frmNewTulosJaTase.h"

#include "accounts/ChartOfAccounts.h"
#include "accounts/frmLisaaTili.h"
#include "core/DatabaseError.h"
#include "core/Dialogs.h"
#include "core/ProgramSettings.h"
#include "core/TemplateText.h"
#include "core/Transaction.h"
#include "printing/PrintOptions.h"
#include "printing/ReportRunner.h"
#include "printing/frmDates.h"
#include "printing/frmTulostus.h"
#include "statements/StatementPrint.h"
#include "statements/Statements.h"
#include "statements/TemplateChecks.h"
#include "statements/TemplateEditor.h"
#include "statements/TemplateTree.h"
#include "statements/frmTarkistusVirheet.h"

#include <QAction>
#include <QCloseEvent>
#include <QDropEvent>
#include <QSet>
#include <QTimer>
#include <QTreeWidget>
#include <functional>

using TemplateEditor::Node;

namespace {

constexpr int KeyRole = Qt::UserRole;

QString keyOf(const QTreeWidgetItem* item) { return item ? item->data(0, KeyRole).toString() : QString(); }

// The tree: dragging a row onto another node asks the window to move it; the tree itself
// never moves anything, so a refused move leaves it as it was.
class TemplateTreeView final : public QTreeWidget {
public:
    explicit TemplateTreeView(QWidget* parent)
        : QTreeWidget(parent)
    {
        setObjectName(QStringLiteral("tvMalli"));
        setHeaderHidden(true);
        setDragEnabled(true);
        setAcceptDrops(true);
        setDropIndicatorShown(true);
        setDragDropMode(QAbstractItemView::InternalMove);
        setSelectionMode(QAbstractItemView::SingleSelection);
    }
    std::function<void(QTreeWidgetItem*, QTreeWidgetItem*)> onDrop;

protected:
    void dropEvent(QDropEvent* event) override
    {
        QTreeWidgetItem* target = itemAt(event->position().toPoint());
        QTreeWidgetItem* dragged = currentItem();
        event->setDropAction(Qt::IgnoreAction);
        event->accept();
        if (onDrop && target && dragged && target != dragged)
            onDrop(dragged, target);
    }
};

// A caption as typed, without line breaks, tabs or other control characters that a paste
// can bring along.
QString cleanCaption(const QString& text)
{
    QString out;
    for (const QChar c : text)
        out += c.category() == QChar::Other_Control || c.category() == QChar::Other_Format ? u' ' : c;
    return out;
}

} // namespace

frmNewTulosJaTase::frmNewTulosJaTase(const QSqlDatabase& db, QWidget* parent)
    : QMainWindow(parent)
    , ui(std::make_unique<Ui::frmNewTulosJaTase>())
    , m_db(db)
{
    ui->setupUi(this);
    auto* tree = new TemplateTreeView(ui->puuPaikka);
    // The move and its messages come after the drop has ended, not inside the drag's own loop.
    tree->onDrop = [this](QTreeWidgetItem* dragged, QTreeWidgetItem* target) {
        QTimer::singleShot(0, this, [this, from = keyOf(dragged), to = keyOf(target)] { dropped(from, to); });
    };
    ui->layoutPuuPaikka->addWidget(tree);
    m_tree = tree;
    ui->frameLasketaan->hide();
    ui->lstTilit->setToolTip(
        QStringLiteral("Rastita rivin tilit. Tilejä valitaan vain alimman tason riveille."));
    ui->lstKaavaRivit->setToolTip(QStringLiteral("Valitse rivi ja lisää se kaavaan painikkeella + tai -."));

    // The tree's own keys; F2 renames anywhere in the window.
    const auto shortcut = [this](const QString& keys, void (frmNewTulosJaTase::*slot)()) {
        auto* a = new QAction(m_tree);
        a->setShortcut(QKeySequence(keys));
        a->setShortcutContext(Qt::WidgetShortcut);
        connect(a, &QAction::triggered, this, slot);
        m_tree->addAction(a);
    };
    shortcut(QStringLiteral("Ins"), &frmNewTulosJaTase::uusi);
    shortcut(QStringLiteral("Del"), &frmNewTulosJaTase::poista);
    shortcut(QStringLiteral("Alt+Up"), &frmNewTulosJaTase::siirraAiemmaksi);
    shortcut(QStringLiteral("Alt+Down"), &frmNewTulosJaTase::siirraMyohemmaksi);
    auto* rename = new QAction(this);
    rename->setShortcut(QKeySequence(Qt::Key_F2));
    rename->setShortcutContext(Qt::WindowShortcut);
    connect(rename, &QAction::triggered, this, [this] {
        if (ui->tNimi->isEnabled()) {
            ui->tNimi->setFocus();
            ui->tNimi->selectAll();
        }
    });
    addAction(rename);
    // Enter in the name goes back to the tree.
    connect(ui->tNimi, &QLineEdit::returnPressed, m_tree, qOverload<>(&QWidget::setFocus));

    connect(m_tree, &QTreeWidget::currentItemChanged, this, &frmNewTulosJaTase::selectionChanged);
    connect(ui->cUusi, &QPushButton::clicked, this, &frmNewTulosJaTase::uusi);
    connect(ui->cPoista, &QPushButton::clicked, this, &frmNewTulosJaTase::poista);
    connect(ui->cHigherGroupOrder, &QPushButton::clicked, this, &frmNewTulosJaTase::siirraMyohemmaksi);
    connect(ui->cLowerGroupOrder, &QPushButton::clicked, this, &frmNewTulosJaTase::siirraAiemmaksi);
    connect(ui->cPlussaa, &QPushButton::clicked, this, [this] { lisaaKaavaan(true); });
    connect(ui->cMiinusta, &QPushButton::clicked, this, [this] { lisaaKaavaan(false); });
    connect(ui->cTyhjennaKaava, &QPushButton::clicked, this, &frmNewTulosJaTase::tyhjennaKaava);
    connect(ui->cTallenna, &QPushButton::clicked, this, &frmNewTulosJaTase::tallenna);
    connect(ui->cTulosta, &QPushButton::clicked, this, &frmNewTulosJaTase::tulosta);
    connect(ui->mTulosta, &QAction::triggered, this, &frmNewTulosJaTase::tulosta);
    connect(ui->cSulje, &QPushButton::clicked, this, &QWidget::close);
    connect(ui->mSulje, &QAction::triggered, this, &QWidget::close);
    connect(ui->mTarkistaTilikartta, &QAction::triggered, this, &frmNewTulosJaTase::tarkista);
    connect(ui->mAvaaTarkistusikkuna, &QAction::triggered, this, &frmNewTulosJaTase::avaaTarkistusikkuna);
    connect(ui->mLisaaTili, &QAction::triggered, this, &frmNewTulosJaTase::lisaaTili);

    connect(ui->tNimi, &QLineEdit::textEdited, this, &frmNewTulosJaTase::nameEdited);
    connect(ui->chkSuojattu, &QCheckBox::toggled, this, [this](bool on) {
        if (!m_filling && curModel)
            curModel->setSuojattu(on);
    });
    connect(ui->cmbTuloslaskelma, &QComboBox::activated, this, [this] {
        if (!m_filling && curModel)
            curModel->setTulosMaID(ui->cmbTuloslaskelma->currentData().toInt());
    });
    connect(ui->optDebet, &QRadioButton::toggled, this, [this](bool on) {
        if (!m_filling && curModelRow && on)
            curModelRow->setSaldoPuoli(QStringLiteral("D"));
    });
    connect(ui->optKredit, &QRadioButton::toggled, this, [this](bool on) {
        if (!m_filling && curModelRow && on)
            curModelRow->setSaldoPuoli(QStringLiteral("K"));
    });
    connect(ui->chkLiikevaihto, &QCheckBox::toggled, this, [this](bool on) {
        if (!m_filling && curModelRow)
            curModelRow->setIsLiikevaihto(on);
    });
    connect(ui->chkVoitto, &QCheckBox::toggled, this, [this](bool on) {
        if (!m_filling && curModelRow)
            curModelRow->setIsVoitto(on);
    });
    connect(ui->chkKaava, &QCheckBox::toggled, this, [this](bool on) {
        if (!m_filling && curModelRow)
            curModelRow->setIsEquation(on);
    });
    connect(ui->lstTilit, &QListWidget::itemChanged, this, &frmNewTulosJaTase::accountChanged);
    connect(ui->lstKaavaRivit, &QListWidget::itemDoubleClicked, this, [this] { lisaaKaavaan(true); });

    if (!m_db.isOpen()) {
        Dialogs::instance().information(QStringLiteral("Tarkista tietokanta asetukset asetusikkunasta!"));
        ui->frameMalli->setEnabled(false);
        return;
    }
    rebuildTree(QStringLiteral("root1"));
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i)
        m_tree->topLevelItem(i)->setExpanded(true);
    m_tree->setFocus();
}

frmNewTulosJaTase::~frmNewTulosJaTase() = default;

QString frmNewTulosJaTase::selectedKey() const { return keyOf(m_tree->currentItem()); }

bool frmNewTulosJaTase::selectNode(const QString& key)
{
    QTreeWidgetItem* item = itemOf(key);
    if (!item)
        return false;
    for (QTreeWidgetItem* p = item->parent(); p; p = p->parent())
        p->setExpanded(true);
    m_tree->setCurrentItem(item);
    return selectedKey() == key;
}

QTreeWidgetItem* frmNewTulosJaTase::itemOf(const QString& key) const
{
    QList<QTreeWidgetItem*> open;
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i)
        open.append(m_tree->topLevelItem(i));
    while (!open.isEmpty()) {
        QTreeWidgetItem* item = open.takeFirst();
        if (keyOf(item) == key)
            return item;
        for (int i = 0; i < item->childCount(); ++i)
            open.append(item->child(i));
    }
    return nullptr;
}

void frmNewTulosJaTase::rebuildTree(const QString& key)
{
    QSet<QString> expanded;
    QList<QTreeWidgetItem*> open;
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i)
        open.append(m_tree->topLevelItem(i));
    while (!open.isEmpty()) {
        QTreeWidgetItem* item = open.takeFirst();
        if (item->isExpanded())
            expanded.insert(keyOf(item));
        for (int i = 0; i < item->childCount(); ++i)
            open.append(item->child(i));
    }
    const QSignalBlocker block(m_tree);
    m_tree->clear();
    tellIfFails(QStringLiteral("Malleja ei voitu lukea."), [&] {
        QTreeWidgetItem* roots[2];
        for (const int kind : { 1, 2 }) {
            roots[kind - 1] = new QTreeWidgetItem(m_tree, { TemplateEditor::rootCaption(kind) });
            roots[kind - 1]->setData(0, KeyRole, Node::root(kind).key());
        }
        for (const ChartOfAccounts::Malli& m : ChartOfAccounts::tilinpaatosMallit(m_db)) {
            if (m.tyyppi != 1 && m.tyyppi != 2)
                continue;
            auto* item = new QTreeWidgetItem(roots[m.tyyppi - 1], { m.nimi.trimmed() });
            item->setData(0, KeyRole, Node::ofTemplate(m.id).key());
            addRows(item, TemplateTree::load(m_db, m.id));
        }
    });
    for (const QString& k : expanded)
        if (QTreeWidgetItem* item = itemOf(k))
            item->setExpanded(true);
    QTreeWidgetItem* selected = itemOf(key);
    for (QTreeWidgetItem* p = selected ? selected->parent() : nullptr; p; p = p->parent())
        p->setExpanded(true);
    m_tree->setCurrentItem(selected);
    if (selected)
        m_tree->scrollToItem(selected);
    load(keyOf(selected));
}

void frmNewTulosJaTase::addRows(QTreeWidgetItem* parent, const TemplateTree& tree)
{
    // The template's tree as the statements read it: rows whose links loop or lead nowhere are
    // outside it, and the template checks show them.
    std::function<void(QTreeWidgetItem*, const std::vector<const TemplateRow*>&)> add
        = [&add](QTreeWidgetItem* under, const std::vector<const TemplateRow*>& rows) {
              for (const TemplateRow* r : rows) {
                  auto* item = new QTreeWidgetItem(under, { r->teksti.trimmed() });
                  item->setData(0, KeyRole, Node::ofRow(r->id).key());
                  add(item, r->children);
              }
          };
    add(parent, tree.mainRows());
}

void frmNewTulosJaTase::selectionChanged()
{
    const QString key = selectedKey();
    if (key == m_shownKey)
        return;
    if (!settle()) {
        // The save failed: the user stays where the changes are.
        const QSignalBlocker block(m_tree);
        m_tree->setCurrentItem(itemOf(m_shownKey));
        return;
    }
    load(key);
}

bool frmNewTulosJaTase::dirty() const
{
    return (curModel && !curModel->IsEmpty() && curModel->Dirty())
        || (curModelRow && !curModelRow->IsEmpty() && curModelRow->Dirty());
}

bool frmNewTulosJaTase::settle()
{
    if (!dirty())
        return true;
    if (Dialogs::instance().question(QStringLiteral("Tallennetaanko muutokset?")))
        return tallenna();
    if (curModel)
        curModel->Undo();
    if (curModelRow)
        curModelRow->Undo();
    // The tree shows the name that was given back.
    if (curModelRow && !curModelRow->IsEmpty())
        if (QTreeWidgetItem* item = itemOf(Node::ofRow(curModelRow->id()).key()))
            item->setText(0, curModelRow->Teksti().trimmed());
    if (curModel && !curModel->IsEmpty())
        if (QTreeWidgetItem* item = itemOf(Node::ofTemplate(curModel->id()).key()))
            item->setText(0, curModel->Nimi().trimmed());
    return true;
}

void frmNewTulosJaTase::load(const QString& key)
{
    curModelRow.reset();
    curModel.reset();
    m_shownKey = key;
    const Node node = Node::parse(key);
    tellIfFails(QStringLiteral("Mallia ei voitu lukea."), [&] {
        qint32 maId = node.kind == Node::Kind::Template ? node.id : 0;
        if (node.kind == Node::Kind::Row) {
            curModelRow = std::make_unique<cMalliRivi>(m_db);
            if (curModelRow->Load(node.id))
                maId = curModelRow->MalliId();
            else
                curModelRow.reset();
        }
        if (maId != 0) {
            curModel = std::make_unique<cMalli>(m_db);
            if (!curModel->Load(maId))
                curModel.reset();
        }
    });
    if (curModel)
        connect(curModel.get(), &cMalli::NameChanged, this, [this](qint16, const QString& nimi, qint32 id) {
            if (QTreeWidgetItem* item = itemOf(Node::ofTemplate(id).key()))
                item->setText(0, nimi.trimmed());
        });
    if (curModelRow)
        connect(curModelRow.get(), &cMalliRivi::NameChanged, this, [this](const QString& teksti, qint32 id) {
            if (QTreeWidgetItem* item = itemOf(Node::ofRow(id).key()))
                item->setText(0, teksti.trimmed());
        });
    fillLists();
    showSelected();
}

void frmNewTulosJaTase::fillLists()
{
    const QSignalBlocker blockAccounts(ui->lstTilit);
    ui->lstTilit->clear();
    ui->lstKaavaRivit->clear();
    ui->cmbTuloslaskelma->clear();
    tellIfFails(QStringLiteral("Tilejä ja rivejä ei voitu lukea."), [&] {
        for (const TemplateEditor::Item& a : TemplateEditor::accounts(m_db)) {
            auto* item = new QListWidgetItem(a.text, ui->lstTilit);
            item->setData(KeyRole, a.id);
            if (a.id != 0)
                item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
            item->setCheckState(Qt::Unchecked);
        }
        if (!curModel)
            return;
        for (const TemplateEditor::Item& r :
            TemplateEditor::formulaRows(m_db, curModel->id(), curModel->Tyyppi() == cMalli::Tase)) {
            auto* item = new QListWidgetItem(r.text, ui->lstKaavaRivit);
            item->setData(KeyRole, r.id);
        }
        ui->cmbTuloslaskelma->addItem(QString(), 0);
        for (const TemplateEditor::Item& m : TemplateEditor::incomeStatements(m_db))
            ui->cmbTuloslaskelma->addItem(m.text, m.id);
    });
}

void frmNewTulosJaTase::showSelected()
{
    m_filling = true;
    const bool template_ = curModel && !curModelRow;
    const bool row = bool(curModelRow);
    ui->tNimi->setEnabled(template_ || row);
    ui->tNimi->setText(row ? curModelRow->Teksti().trimmed()
            : template_    ? curModel->Nimi().trimmed()
                           : QString());
    ui->grpMalli->setEnabled(template_);
    ui->chkSuojattu->setChecked(curModel && curModel->Suojattu());
    const bool balance = curModel && curModel->Tyyppi() == cMalli::Tase;
    ui->cmbTuloslaskelma->setEnabled(template_ && balance);
    ui->lblTuloslaskelma->setEnabled(template_ && balance);
    const int at = curModel ? ui->cmbTuloslaskelma->findData(curModel->TulosMaID()) : -1;
    ui->cmbTuloslaskelma->setCurrentIndex(balance && at >= 0 ? at : 0);

    ui->grpRivi->setEnabled(row);
    const QString side = row ? curModelRow->SaldoPuoli() : QString();
    ui->optDebet->setAutoExclusive(false);
    ui->optKredit->setAutoExclusive(false);
    ui->optDebet->setChecked(side == u"D");
    ui->optKredit->setChecked(side == u"K");
    ui->optDebet->setAutoExclusive(true);
    ui->optKredit->setAutoExclusive(true);
    // In a balance sheet the main group gives the side; only rows outside the two standard
    // groups choose their own.
    bool sideOwn = row;
    if (row && balance) {
        const QString own
            = TemplateEditor::sideForNewRow(m_db, curModelRow->MalliId(), curModelRow->BelongsToGroup());
        sideOwn = curModelRow->BelongsToGroup() == 0 || own != side;
    }
    ui->optDebet->setEnabled(sideOwn);
    ui->optKredit->setEnabled(sideOwn);
    ui->chkLiikevaihto->setChecked(row && curModelRow->IsLiikevaihto());
    ui->chkVoitto->setChecked(row && curModelRow->IsVoitto());
    ui->chkKaava->setChecked(row && curModelRow->IsEquation());
    ui->tabSivu->setEnabled(row);

    const Node node = Node::parse(selectedKey());
    ui->cPoista->setEnabled(node.kind == Node::Kind::Template || node.kind == Node::Kind::Row);
    ui->cUusi->setEnabled(node.kind != Node::Kind::None);
    ui->cHigherGroupOrder->setEnabled(row);
    ui->cLowerGroupOrder->setEnabled(row);
    ui->cTulosta->setEnabled(bool(curModel));
    ui->mTulosta->setEnabled(bool(curModel));
    m_filling = false;
    showAccounts();
    showFormula();
}

void frmNewTulosJaTase::showAccounts()
{
    const QSignalBlocker block(ui->lstTilit);
    const std::vector<qint32> chosen
        = curModelRow ? TemplateText::accounts(curModelRow->Tilit()) : std::vector<qint32>();
    const QSet<qint32> set(chosen.begin(), chosen.end());
    for (int i = 0; i < ui->lstTilit->count(); ++i) {
        QListWidgetItem* item = ui->lstTilit->item(i);
        if (item->data(KeyRole).toInt() != 0)
            item->setCheckState(set.contains(item->data(KeyRole).toInt()) ? Qt::Checked : Qt::Unchecked);
    }
}

void frmNewTulosJaTase::showFormula()
{
    QString text;
    if (curModelRow)
        tellIfFails(QStringLiteral("Kaavaa ei voitu lukea."),
            [&] { text = TemplateEditor::formulaText(m_db, curModelRow->MalliId(), curModelRow->Kaava()); });
    ui->lblKaava->setText(
        text.isEmpty() ? QStringLiteral("Kaava: (tyhjä)") : QStringLiteral("Kaava: ") + text);
}

void frmNewTulosJaTase::nameEdited(const QString& typed)
{
    const QString text = cleanCaption(typed);
    if (text != typed) {
        const int cursor = ui->tNimi->cursorPosition();
        ui->tNimi->setText(text);
        ui->tNimi->setCursorPosition(cursor);
    }
    if (curModelRow)
        curModelRow->setTeksti(text);
    else if (curModel)
        curModel->setNimi(text);
}

void frmNewTulosJaTase::accountChanged()
{
    if (!curModelRow || !curModel)
        return;
    // The accounts keep their order in the list; new ones come last.
    QSet<qint32> ticked;
    for (int i = 0; i < ui->lstTilit->count(); ++i)
        if (ui->lstTilit->item(i)->checkState() == Qt::Checked)
            ticked.insert(ui->lstTilit->item(i)->data(KeyRole).toInt());
    std::vector<qint32> chosen;
    for (const qint32 id : TemplateText::accounts(curModelRow->Tilit()))
        if (ticked.remove(id))
            chosen.push_back(id);
    for (int i = 0; i < ui->lstTilit->count(); ++i)
        if (const qint32 id = ui->lstTilit->item(i)->data(KeyRole).toInt(); ticked.contains(id))
            chosen.push_back(id);
    bool group = false;
    tellIfFails(QStringLiteral("Riviä ei voitu lukea."), [&] { group = curModelRow->HasSubGroups(); });
    const std::optional<QString> tilit
        = TemplateEditor::chooseAccounts(group, curModel->Suojattu(), curModelRow->Tilit(), chosen);
    if (tilit)
        curModelRow->setTilit(*tilit);
    showAccounts();
}

void frmNewTulosJaTase::lisaaKaavaan(bool plus)
{
    const QListWidgetItem* term = ui->lstKaavaRivit->currentItem();
    const std::optional<QString> kaava = TemplateEditor::addTerm(curModelRow ? curModelRow->id() : 0,
        curModelRow ? curModelRow->Kaava() : QString(), plus, term ? term->data(KeyRole).toInt() : 0);
    if (!kaava)
        return;
    curModelRow->setKaava(*kaava);
    // A row that is given a formula is a formula row, unless it carries accounts.
    if (!curModelRow->IsEquation() && TemplateText::accounts(curModelRow->Tilit()).empty()) {
        curModelRow->setIsEquation(true);
        const QSignalBlocker block(ui->chkKaava);
        ui->chkKaava->setChecked(true);
    }
    showFormula();
}

void frmNewTulosJaTase::tyhjennaKaava()
{
    if (!curModelRow)
        return;
    curModelRow->setKaava(QString());
    showFormula();
}

bool frmNewTulosJaTase::tallenna()
{
    const bool saved = tellIfFails(QStringLiteral("Muutoksia ei voitu tallentaa."), [&] {
        Transaction t(m_db);
        if (curModel)
            curModel->Save();
        if (curModelRow)
            curModelRow->Save();
        t.commitOrThrow();
    });
    if (saved && curModel) {
        // Captions and names changed: the side lists show them.
        const int formulaRow = ui->lstKaavaRivit->currentRow();
        fillLists();
        showSelected();
        ui->lstKaavaRivit->setCurrentRow(formulaRow);
    }
    return saved;
}

template <typename Work> void frmNewTulosJaTase::change(Work&& work)
{
    if (!settle())
        return;
    QString next = selectedKey();
    bool changed = false;
    tellIfFails(QStringLiteral("Mallia ei voitu muuttaa."), [&] { changed = work(next); });
    if (changed) {
        m_shownKey.clear();
        rebuildTree(next);
    }
    m_tree->setFocus();
}

void frmNewTulosJaTase::uusi()
{
    bool added = false;
    change([&](QString& next) {
        const std::optional<Node> node = TemplateEditor::addNew(m_db, Node::parse(selectedKey()));
        if (node)
            next = node->key();
        added = node.has_value();
        return added;
    });
    // The new row or template is named at once.
    if (added && ui->tNimi->isEnabled()) {
        ui->tNimi->setFocus();
        ui->tNimi->selectAll();
    }
}

void frmNewTulosJaTase::poista()
{
    change([this](QString& next) {
        QTreeWidgetItem* item = m_tree->currentItem();
        // The node above takes the selection.
        QTreeWidgetItem* after = item ? m_tree->itemAbove(item) : nullptr;
        if (!TemplateEditor::remove(m_db, Node::parse(selectedKey())))
            return false;
        next = keyOf(after);
        return true;
    });
}

void frmNewTulosJaTase::siirraMyohemmaksi()
{
    change([this](QString&) {
        const Node n = Node::parse(selectedKey());
        return n.kind == Node::Kind::Row && TemplateEditor::moveLater(m_db, n.id);
    });
}

void frmNewTulosJaTase::siirraAiemmaksi()
{
    change([this](QString&) {
        const Node n = Node::parse(selectedKey());
        return n.kind == Node::Kind::Row && TemplateEditor::moveEarlier(m_db, n.id);
    });
}

void frmNewTulosJaTase::dropped(const QString& draggedKey, const QString& targetKey)
{
    change([&](QString& next) {
        next = draggedKey;
        return TemplateEditor::drop(m_db, Node::parse(draggedKey), Node::parse(targetKey));
    });
}

void frmNewTulosJaTase::tulosta()
{
    if (!curModel) {
        Dialogs::instance().information(QStringLiteral("Valitse ensin tulostettava malli."));
        return;
    }
    if (!tallenna())
        return;
    const qint32 id = curModel->id();
    const int kind = curModel->Tyyppi();
    if (kind == cMalli::Tase && curModel->TulosMaID() == 0) {
        Dialogs::instance().information(QStringLiteral(
            "Tasemallille ei ole määritelty tuloslaskelmaa, jonka perusteella tilikauden voitto kirjataan."));
        return;
    }
    frmDates dates(this);
    if (dates.exec() != QDialog::Accepted || PrintOptions::current().cancelled)
        return;
    frmTulostus options(this);
    if (options.exec() != QDialog::Accepted || PrintOptions::current().cancelled)
        return;
    const PrintValues v = PrintOptions::current();
    StatementOptions o = StatementOptions::forPeriod(id, v.alkupvm, v.loppupvm);
    o.perAccount = v.tiliErottelu;
    o.groupsOnly = v.vainRyhmat;
    bool computed = false;
    ui->frameMalli->hide();
    ui->frameLasketaan->show();
    ui->lblLasketaan->setText(kind == cMalli::Tase ? QStringLiteral("Lasketaan tasetta...")
                                                   : QStringLiteral("Lasketaan tuloslaskelmaa..."));
    tellIfFails(QStringLiteral("Tilinpäätöstä ei voitu laskea."), [&] {
        ui->pbLasketaan->setRange(0, std::max(1, StatementPrint::rowCount(m_db, id)));
        ui->pbLasketaan->setValue(0);
        QCoreApplication::processEvents();
        o.progress = [this](int done, int total) {
            if (total > 0 && ui->pbLasketaan->maximum() < total)
                ui->pbLasketaan->setMaximum(total);
            ui->pbLasketaan->setValue(done);
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        };
        computed = Statements::compute(m_db, o);
    });
    ui->frameLasketaan->hide();
    ui->frameMalli->show();
    if (!computed)
        return;
    ReportJob job = StatementPrint::job(kind, v.laaja, v.alkupvm, v.loppupvm, ProgramSettings::bookkeeping());
    PrintOptions::applyTo(job);
    ReportRunner::run(this, m_db, job);
}

void frmNewTulosJaTase::tarkista()
{
    if (!settle())
        return;
    tellIfFails(QStringLiteral("Malleja ei voitu tarkistaa."), [&] {
        const TemplateChecks::Pair pair
            = curModel ? TemplateChecks::pairFor(m_db, curModel->id()) : TemplateChecks::Pair {};
        Dialogs::instance().information(TemplateChecks::reportText(TemplateChecks::run(m_db, pair)));
    });
}

void frmNewTulosJaTase::avaaTarkistusikkuna()
{
    if (!settle())
        return;
    TemplateChecks::Pair pair;
    if (curModel)
        tellIfFails(QStringLiteral("Mallia ei voitu lukea."),
            [&] { pair = TemplateChecks::pairFor(m_db, curModel->id()); });
    frmTarkistusVirheet dialog(m_db, pair.tulos, pair.tase, this);
    dialog.exec();
    // The correction may have changed balance sides.
    const QString key = selectedKey();
    m_shownKey.clear();
    rebuildTree(key);
}

void frmNewTulosJaTase::lisaaTili()
{
    frmLisaaTili dialog(m_db, this);
    dialog.exec();
    if (dialog.uusiId() == 0)
        return;
    const int formulaRow = ui->lstKaavaRivit->currentRow();
    fillLists();
    showAccounts();
    ui->lstKaavaRivit->setCurrentRow(formulaRow);
}

void frmNewTulosJaTase::closeEvent(QCloseEvent* event)
{
    if (!settle()) {
        event->ignore();
        return;
    }
    curModelRow.reset();
    curModel.reset();
    event->accept();
}
