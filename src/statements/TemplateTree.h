#pragma once

#include <QSqlDatabase>
#include <QString>
#include <vector>

// One row of a template as the statement computations read it.
struct TemplateRow {
    qint32 id = 0;
    qint32 parent = 0; // mrBelongsToGroup; 0 for a main group
    qint32 order = 0;
    QString teksti;
    QString saldoPuoli;
    QString tilit;
    QString kaava;
    bool liikevaihto = false;
    bool equation = false;
    bool voitto = false;
    qint32 tlId = 0;
    QString viTyyppi;
    // The rows below, in GroupOrder order (then by key, so that equal positions keep one order).
    std::vector<const TemplateRow*> children;

    bool hasChildren() const { return !children.empty(); }
};

// A template's rows read at once and arranged as its tree: the main groups (BelongsToGroup 0)
// and below each row the rows of the same template that name it as their group. Rows whose
// links never lead to a main group (a cycle, a missing group) are outside the tree.
class TemplateTree final {
public:
    // Throws DatabaseError.
    static TemplateTree load(const QSqlDatabase& db, qint32 maId);

    const std::vector<const TemplateRow*>& mainRows() const { return m_main; }
    const std::vector<TemplateRow>& rows() const { return m_rows; }
    // A row of this template by key, or nullptr.
    const TemplateRow* row(qint32 id) const;
    // The accounts of the row and of every row below it, each once, in tree order. A cycle in
    // the links is followed only once round.
    std::vector<qint32> subtreeAccounts(const TemplateRow& row) const;
    // Every account the template names, each once.
    std::vector<qint32> allAccounts() const;
    // The rows of the tree in print order: each main group, then its rows depth first.
    std::vector<const TemplateRow*> printOrder() const;

private:
    std::vector<TemplateRow> m_rows;
    std::vector<const TemplateRow*> m_main;
};
