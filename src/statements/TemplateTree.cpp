#include "statements/TemplateTree.h"

#include "core/DatabaseError.h"
#include "core/TemplateText.h"

#include <QHash>
#include <QSet>
#include <QVariant>
#include <functional>

TemplateTree TemplateTree::load(const QSqlDatabase& db, qint32 maId)
{
    TemplateTree tree;
    QSqlQuery q = Sql::run(db,
        QStringLiteral(
            "SELECT mrID, mrBelongsToGroup, mrGroupOrder, mrTeksti, mrSaldoPuoli, mrTilit, mrKaava, "
            "mrIsLiikevaihto, mrIsEquation, mrIsVoitto, mrtlID, mrviTyyppi FROM mr WHERE mrmaID = ? "
            "ORDER BY mrGroupOrder, mrID"),
        { maId });
    while (q.next()) {
        TemplateRow r;
        r.id = q.value(0).toInt();
        r.parent = q.value(1).toInt();
        r.order = q.value(2).toInt();
        r.teksti = q.value(3).toString();
        r.saldoPuoli = q.value(4).toString();
        r.tilit = q.value(5).toString();
        r.kaava = q.value(6).toString();
        r.liikevaihto = q.value(7).toLongLong() != 0;
        r.equation = q.value(8).toLongLong() != 0;
        r.voitto = q.value(9).toLongLong() != 0;
        r.tlId = q.value(10).toInt();
        r.viTyyppi = q.value(11).toString();
        tree.m_rows.push_back(std::move(r));
    }
    // The rows stay where they are from here on, so pointers to them hold.
    QHash<qint32, TemplateRow*> byId;
    for (TemplateRow& r : tree.m_rows)
        byId.insert(r.id, &r);
    for (const TemplateRow& r : tree.m_rows) {
        if (r.parent == 0)
            tree.m_main.push_back(&r);
        else if (TemplateRow* parent = byId.value(r.parent))
            parent->children.push_back(&r);
    }
    return tree;
}

const TemplateRow* TemplateTree::row(qint32 id) const
{
    for (const TemplateRow& r : m_rows)
        if (r.id == id)
            return &r;
    return nullptr;
}

std::vector<qint32> TemplateTree::subtreeAccounts(const TemplateRow& start) const
{
    std::vector<qint32> ids;
    QSet<qint32> seenAccounts;
    QSet<const TemplateRow*> seenRows;
    const std::function<void(const TemplateRow&)> visit = [&](const TemplateRow& r) {
        if (seenRows.contains(&r))
            return;
        seenRows.insert(&r);
        for (qint32 id : TemplateText::accounts(r.tilit))
            if (!seenAccounts.contains(id)) {
                seenAccounts.insert(id);
                ids.push_back(id);
            }
        for (const TemplateRow* child : r.children)
            visit(*child);
    };
    visit(start);
    return ids;
}

std::vector<qint32> TemplateTree::allAccounts() const
{
    std::vector<qint32> ids;
    QSet<qint32> seen;
    for (const TemplateRow& r : m_rows)
        for (qint32 id : TemplateText::accounts(r.tilit))
            if (!seen.contains(id)) {
                seen.insert(id);
                ids.push_back(id);
            }
    return ids;
}

std::vector<const TemplateRow*> TemplateTree::printOrder() const
{
    std::vector<const TemplateRow*> order;
    const std::function<void(const TemplateRow*)> visit = [&](const TemplateRow* r) {
        order.push_back(r);
        for (const TemplateRow* child : r->children)
            visit(child);
    };
    for (const TemplateRow* r : m_main)
        visit(r);
    return order;
}
