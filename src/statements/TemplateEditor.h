#pragma once

#include <QSqlDatabase>
#include <QString>
#include <optional>
#include <vector>

// The rules of the template editor (frmNewTulosJaTase) without a window: what the tree's nodes
// are, how templates and rows are added, deleted and moved, how formulas are built and shown,
// and when account choices are refused. Refusals and questions go through Dialogs; a refused
// operation leaves the books unchanged. Database errors throw DatabaseError.
namespace TemplateEditor {

// A node of the tree: its key tells what it stands for.
struct Node {
    enum class Kind { None, Root, Template, Row };
    Kind kind = Kind::None;
    // The kind of templates (1 or 2) of a root; maID of a template; mrID of a row.
    qint32 id = 0;

    // "root1"/"root2", "ma" + maID, "mr" + mrID; anything else is Kind::None.
    static Node parse(const QString& key);
    QString key() const;
    static Node root(int tyyppi) { return { Kind::Root, tyyppi }; }
    static Node ofTemplate(qint32 id) { return { Kind::Template, id }; }
    static Node ofRow(qint32 id) { return { Kind::Row, id }; }
    bool operator==(const Node&) const = default;
};

// The caption of a root: "Tuloslaskelma" or "Tase".
QString rootCaption(int tyyppi);

// cUusi: on a root a new template ("Uusi tuloslaskelmamalli", "Uusi tasemalli"); on a template
// or a row a new row "Uusi rivi" under it, last among its siblings, with the balance side of
// its place. The new node; nullopt when nothing was selected (told to the user).
std::optional<Node> addNew(const QSqlDatabase& db, const Node& selected);
// The balance side of a new row under `parentId` (0: a main group) of a template: "D" under
// "Vastaavaa" of a balance sheet, "K" under "Vastattavaa"; "K" in an income statement.
QString sideForNewRow(const QSqlDatabase& db, qint32 maId, qint32 parentId);

// cPoista: asks, refuses a group with sub-rows and a protected template. True when deleted.
bool remove(const QSqlDatabase& db, const Node& selected);

// cHigherGroupOrder / cLowerGroupOrder: one place later or earlier among the row's siblings,
// the siblings numbered 1, 2, … after the move. False when the row is already last or first.
bool moveLater(const QSqlDatabase& db, qint32 rowId);
bool moveEarlier(const QSqlDatabase& db, qint32 rowId);

// Dragging `rowId` onto a node: it becomes the last row under that template or row. Refuses a
// template ("Et voi siirtää kokonaista mallia!"), a main group ("Et voi siirtää pääryhmiä!"),
// another template's node and the row's own sub-rows. True when moved.
bool drop(const QSqlDatabase& db, const Node& dragged, const Node& target);

// cPlussaa / cMiinusta: the formula with one more term, or nullopt when refused (no row, no
// term chosen, or the row itself as its own term).
std::optional<QString> addTerm(qint32 rowId, const QString& kaava, bool adds, qint32 termRowId);
// The formula as shown: each term the caption of its row in brackets, joined with its sign;
// a row of another template (a balance sheet's profit) as that template's name and
// " : Voitto/Tappio".
QString formulaText(const QSqlDatabase& db, qint32 ownMaId, const QString& kaava);

// The accounts chosen for a row, as its new Tilit text; nullopt when refused: accounts for a
// group with sub-rows, or clearing them in a protected template or when the user says no.
std::optional<QString> chooseAccounts(
    bool isGroup, bool suojattu, const QString& current, const std::vector<qint32>& chosen);

// The side lists.
struct Item {
    qint32 id = 0; // tlID or mrID; 0 for the "[Ei …]" entry
    QString text;
};
// "tlNumero tlNimi" by number, or the single "[Ei tilejä]".
std::vector<Item> accounts(const QSqlDatabase& db);
// The rows of a template by caption, or the single "[Ei rivejä]"; for a balance sheet followed
// by the profit rows of every template ("maNimi : [Voitto / Tappio]").
std::vector<Item> formulaRows(const QSqlDatabase& db, qint32 maId, bool withProfitRows);
// The income statements, for cmbTuloslaskelma.
std::vector<Item> incomeStatements(const QSqlDatabase& db);

} // namespace TemplateEditor
