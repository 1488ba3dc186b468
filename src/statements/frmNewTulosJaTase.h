#pragma once

#include "statements/cMalli.h"
#include "statements/cMalliRivi.h"

#include <QMainWindow>
#include <QSqlDatabase>
#include <memory>

namespace Ui {
class frmNewTulosJaTase;
}
class QTreeWidget;
class QTreeWidgetItem;
class TemplateTree;

// The statement window: the templates as a tree (tvMalli), the selected template's or row's
// fields, its accounts and its formula, the commands that build the tree, printing of the
// income statement and the balance sheet, and the template checks. The rules live in
// TemplateEditor, TemplateChecks and StatementPrint; this window maps them to widgets.
class frmNewTulosJaTase final : public QMainWindow {
    Q_OBJECT

public:
    explicit frmNewTulosJaTase(const QSqlDatabase& db, QWidget* parent = nullptr);
    ~frmNewTulosJaTase() override;

    // The selected node's key ("root1", "ma3", "mr17"); empty when none.
    QString selectedKey() const;
    // Selects the node of a key, as a click would (with the question about unsaved changes).
    bool selectNode(const QString& key);

    void uusi();
    void poista();
    void siirraMyohemmaksi();
    void siirraAiemmaksi();
    void lisaaKaavaan(bool plus);
    void tyhjennaKaava();
    // cTallenna: the template and the row as shown. False when the save failed.
    bool tallenna();
    void tulosta();
    void tarkista();
    void avaaTarkistusikkuna();
    void lisaaTili();
    // A node dragged onto another (keys of both): a row moves under it, last; the selection
    // stays on the row.
    void dropped(const QString& draggedKey, const QString& targetKey);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    // Builds the tree again from the books, keeping what was expanded, and selects `key`.
    void rebuildTree(const QString& key);
    void addRows(QTreeWidgetItem* parent, const TemplateTree& tree);
    QTreeWidgetItem* itemOf(const QString& key) const;
    void selectionChanged();
    // Loads the selected template and row and shows them.
    void load(const QString& key);
    void showSelected();
    void showAccounts();
    void showFormula();
    void fillLists();
    // Unsaved changes of the shown template or row: asked about, saved or dropped. The
    // window's values stay as they were when the save fails: false then.
    bool settle();
    bool dirty() const;
    void accountChanged();
    void nameEdited(const QString& text);
    // Runs a command that changes the tree and selects `key` afterwards (the selection when
    // empty).
    template <typename Work> void change(Work&& work);

    std::unique_ptr<Ui::frmNewTulosJaTase> ui;
    QTreeWidget* m_tree = nullptr;
    QSqlDatabase m_db;
    std::unique_ptr<cMalli> curModel;
    std::unique_ptr<cMalliRivi> curModelRow;
    QString m_shownKey;
    bool m_filling = false;
};
