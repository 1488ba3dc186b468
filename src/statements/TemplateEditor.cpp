#include "statements/TemplateEditor.h"

#include "accounts/ChartOfAccounts.h"
#include "core/DatabaseError.h"
#include "core/Dialogs.h"
#include "core/TemplateText.h"
#include "core/Transaction.h"
#include "statements/cMalli.h"
#include "statements/cMalliRivi.h"

#include <QSet>
#include <QVariant>

namespace {

struct RowPlace {
    qint32 maId = 0;
    qint32 parent = 0;
};

std::optional<RowPlace> placeOf(const QSqlDatabase& db, qint32 rowId)
{
    QSqlQuery q
        = Sql::run(db, QStringLiteral("SELECT mrmaID, mrBelongsToGroup FROM mr WHERE mrID = ?"), { rowId });
    if (!q.next())
        return std::nullopt;
    return RowPlace { q.value(0).toInt(), q.value(1).toInt() };
}

// The siblings of a row (its own included) in their order.
std::vector<qint32> siblings(const QSqlDatabase& db, const RowPlace& p)
{
    QSqlQuery q = Sql::run(db,
        QStringLiteral(
            "SELECT mrID FROM mr WHERE mrmaID = ? AND mrBelongsToGroup = ? ORDER BY mrGroupOrder, mrID"),
        { p.maId, p.parent });
    std::vector<qint32> ids;
    while (q.next())
        ids.push_back(q.value(0).toInt());
    return ids;
}

void renumber(const QSqlDatabase& db, const std::vector<qint32>& ids)
{
    QSqlQuery update = Sql::prepare(db, QStringLiteral("UPDATE mr SET mrGroupOrder = ? WHERE mrID = ?"));
    for (size_t i = 0; i < ids.size(); ++i) {
        update.addBindValue(qint32(i + 1));
        update.addBindValue(ids[i]);
        Sql::exec(update);
    }
}

bool move(const QSqlDatabase& db, qint32 rowId, int step)
{
    const std::optional<RowPlace> p = placeOf(db, rowId);
    if (!p)
        return false;
    std::vector<qint32> ids = siblings(db, *p);
    const auto at = std::find(ids.begin(), ids.end(), rowId);
    const qsizetype i = at - ids.begin();
    const qsizetype j = i + step;
    if (at == ids.end() || j < 0 || j >= qsizetype(ids.size()))
        return false;
    std::swap(ids[size_t(i)], ids[size_t(j)]);
    Transaction t(db);
    renumber(db, ids);
    t.commitOrThrow();
    return true;
}

// The caption of the main group above a row (the row's own when it is one).
QString mainGroupCaption(const QSqlDatabase& db, qint32 rowId)
{
    QSet<qint32> seen;
    qint32 id = rowId;
    QString caption;
    while (id != 0 && !seen.contains(id)) {
        seen.insert(id);
        QSqlQuery q = Sql::run(
            db, QStringLiteral("SELECT mrBelongsToGroup, mrTeksti FROM mr WHERE mrID = ?"), { id });
        if (!q.next())
            return {};
        caption = q.value(1).toString().trimmed();
        id = q.value(0).toInt();
    }
    return id == 0 ? caption : QString();
}

} // namespace

namespace TemplateEditor {

Node Node::parse(const QString& key)
{
    const auto number = [&key](qsizetype from) {
        bool ok = false;
        const qint32 n = key.mid(from).toInt(&ok);
        return ok && n > 0 ? n : 0;
    };
    if (key == u"root1" || key == u"root2")
        return root(key.back().digitValue());
    if (key.startsWith(QLatin1String("ma")) && number(2) > 0)
        return ofTemplate(number(2));
    if (key.startsWith(QLatin1String("mr")) && number(2) > 0)
        return ofRow(number(2));
    return {};
}

QString Node::key() const
{
    switch (kind) {
    case Kind::Root:
        return QStringLiteral("root%1").arg(id);
    case Kind::Template:
        return QStringLiteral("ma%1").arg(id);
    case Kind::Row:
        return QStringLiteral("mr%1").arg(id);
    case Kind::None:
        break;
    }
    return {};
}

QString rootCaption(int tyyppi)
{
    return tyyppi == cMalli::Tase ? QStringLiteral("Tase") : QStringLiteral("Tuloslaskelma");
}

QString sideForNewRow(const QSqlDatabase& db, qint32 maId, qint32 parentId)
{
    const int kind
        = Sql::scalar(db, QStringLiteral("SELECT maTyyppi FROM ma WHERE maID = ?"), { maId }).toInt();
    if (kind != cMalli::Tase)
        return QStringLiteral("K");
    if (parentId == 0)
        return QStringLiteral("D");
    const QString group = mainGroupCaption(db, parentId);
    if (group == u"Vastattavaa")
        return QStringLiteral("K");
    if (group == u"Vastaavaa")
        return QStringLiteral("D");
    // Outside the two standard groups the row takes its group's side.
    const QString side
        = Sql::scalar(db, QStringLiteral("SELECT mrSaldoPuoli FROM mr WHERE mrID = ?"), { parentId })
              .toString();
    return side.isEmpty() ? QStringLiteral("D") : side.left(1);
}

std::optional<Node> addNew(const QSqlDatabase& db, const Node& selected)
{
    if (selected.kind == Node::Kind::None) {
        Dialogs::instance().information(QStringLiteral("Valitse ensin listalta kohde, johon lisätään."));
        return std::nullopt;
    }
    if (selected.kind == Node::Kind::Root) {
        cMalli malli(db);
        malli.setTyyppi(qint16(selected.id));
        malli.setNimi(selected.id == cMalli::Tase ? QStringLiteral("Uusi tasemalli")
                                                  : QStringLiteral("Uusi tuloslaskelmamalli"));
        malli.Save(true);
        return Node::ofTemplate(malli.id());
    }
    qint32 maId = selected.id;
    qint32 parent = 0;
    if (selected.kind == Node::Kind::Row) {
        const std::optional<RowPlace> p = placeOf(db, selected.id);
        if (!p) {
            Dialogs::instance().information(QStringLiteral("Valitse ensin listalta kohde, johon lisätään."));
            return std::nullopt;
        }
        maId = p->maId;
        parent = selected.id;
    }
    cMalliRivi rivi(db);
    rivi.setMalliId(maId);
    rivi.setBelongsToGroup(parent);
    rivi.setTeksti(QStringLiteral("Uusi rivi"));
    rivi.setSaldoPuoli(sideForNewRow(db, maId, parent));
    rivi.SetDefaultGroupOrder();
    rivi.Save(true);
    return Node::ofRow(rivi.id());
}

bool remove(const QSqlDatabase& db, const Node& selected)
{
    Dialogs& d = Dialogs::instance();
    switch (selected.kind) {
    case Node::Kind::None:
        d.information(QStringLiteral("Valitse poistettava rivi luettelosta!"));
        return false;
    case Node::Kind::Root:
        d.information(QStringLiteral("Valitse poistettavaksi malli tai mallin rivi!"));
        return false;
    case Node::Kind::Template: {
        cMalli malli(db);
        if (!malli.Load(selected.id))
            return false;
        if (!d.question(QStringLiteral("Poistetaanko näytössä oleva malli?")))
            return false;
        if (malli.Suojattu()) {
            d.information(QStringLiteral("Malli on suojattu, eikä sitä voi poistaa."));
            return false;
        }
        return malli.Delete();
    }
    case Node::Kind::Row: {
        cMalliRivi rivi(db);
        if (!rivi.Load(selected.id))
            return false;
        if (rivi.HasSubGroups()) {
            d.information(QStringLiteral(
                "Ryhmää, jolla on alaryhmiä, ei voi poistaa.\nPoista ensin poistettavan ryhmän alaryhmät."));
            return false;
        }
        if (!d.question(QStringLiteral("Poistetaanko näytössä oleva rivi?")))
            return false;
        const RowPlace p { rivi.MalliId(), rivi.BelongsToGroup() };
        Transaction t(db);
        rivi.Delete();
        renumber(db, siblings(db, p));
        t.commitOrThrow();
        return true;
    }
    }
    return false;
}

bool moveLater(const QSqlDatabase& db, qint32 rowId) { return move(db, rowId, +1); }

bool moveEarlier(const QSqlDatabase& db, qint32 rowId) { return move(db, rowId, -1); }

bool drop(const QSqlDatabase& db, const Node& dragged, const Node& target)
{
    Dialogs& d = Dialogs::instance();
    if (dragged.kind == Node::Kind::Template) {
        d.information(QStringLiteral("Et voi siirtää kokonaista mallia!"));
        return false;
    }
    if (dragged.kind != Node::Kind::Row)
        return false;
    const std::optional<RowPlace> from = placeOf(db, dragged.id);
    if (!from)
        return false;
    if (from->parent == 0) {
        d.information(QStringLiteral("Et voi siirtää pääryhmiä!"));
        return false;
    }
    qint32 maId = 0;
    qint32 parent = 0;
    if (target.kind == Node::Kind::Template) {
        maId = target.id;
    } else if (target.kind == Node::Kind::Row) {
        const std::optional<RowPlace> to = placeOf(db, target.id);
        if (!to)
            return false;
        maId = to->maId;
        parent = target.id;
    } else {
        return false;
    }
    if (maId != from->maId) {
        d.information(QStringLiteral("Rivin voi siirtää vain saman mallin sisällä."));
        return false;
    }
    if (parent == from->parent)
        return false;
    // Not under itself or any row below it.
    QSet<qint32> seen;
    for (qint32 id = parent; id != 0 && !seen.contains(id);) {
        if (id == dragged.id) {
            d.information(QStringLiteral("Riviä ei voi siirtää oman alaryhmänsä alle."));
            return false;
        }
        seen.insert(id);
        id = placeOf(db, id).value_or(RowPlace {}).parent;
    }
    Transaction t(db);
    const QVariant last = Sql::scalar(db,
        QStringLiteral("SELECT MAX(mrGroupOrder) FROM mr WHERE mrmaID = ? AND mrBelongsToGroup = ?"),
        { maId, parent });
    Sql::run(db, QStringLiteral("UPDATE mr SET mrBelongsToGroup = ?, mrGroupOrder = ? WHERE mrID = ?"),
        { parent, (last.isNull() ? 0 : last.toInt()) + 1, dragged.id });
    renumber(db, siblings(db, *from));
    // In a balance sheet the row and its rows take the side of the group they now belong to.
    const QString group = mainGroupCaption(db, dragged.id);
    const int kind
        = Sql::scalar(db, QStringLiteral("SELECT maTyyppi FROM ma WHERE maID = ?"), { maId }).toInt();
    if (kind == cMalli::Tase && (group == u"Vastaavaa" || group == u"Vastattavaa")) {
        const QString side = group == u"Vastaavaa" ? QStringLiteral("D") : QStringLiteral("K");
        std::vector<qint32> rows { dragged.id };
        QSet<qint32> done;
        while (!rows.empty()) {
            const qint32 id = rows.back();
            rows.pop_back();
            if (done.contains(id))
                continue;
            done.insert(id);
            Sql::run(db, QStringLiteral("UPDATE mr SET mrSaldoPuoli = ? WHERE mrID = ?"), { side, id });
            QSqlQuery q
                = Sql::run(db, QStringLiteral("SELECT mrID FROM mr WHERE mrBelongsToGroup = ?"), { id });
            while (q.next())
                rows.push_back(q.value(0).toInt());
        }
    }
    t.commitOrThrow();
    return true;
}

std::optional<QString> addTerm(qint32 rowId, const QString& kaava, bool adds, qint32 termRowId)
{
    Dialogs& d = Dialogs::instance();
    if (rowId == 0) {
        d.information(QStringLiteral("Valitse ensin puusta rivi, jonka kaavaa muokataan."));
        return std::nullopt;
    }
    if (termRowId == 0) {
        d.information(QStringLiteral("Valitse ensin kaavariveistä rivi, joka lisätään kaavaan."));
        return std::nullopt;
    }
    if (termRowId == rowId) {
        d.information(QStringLiteral("Rivi ei voi olla oman kaavansa osa."));
        return std::nullopt;
    }
    const QString next = TemplateText::appendTerm(kaava, adds, termRowId);
    if (next.size() > 255) {
        d.information(QStringLiteral("Kaava on jo niin pitkä, ettei siihen mahdu enempää rivejä."));
        return std::nullopt;
    }
    return next;
}

QString formulaText(const QSqlDatabase& db, qint32 ownMaId, const QString& kaava)
{
    QStringList parts;
    for (const TemplateText::Term& term : TemplateText::terms(kaava)) {
        QString name = QStringLiteral("[puuttuva rivi]");
        if (term.rowId) {
            QSqlQuery q = Sql::run(db,
                QStringLiteral(
                    "SELECT mrTeksti, mrmaID, maNimi FROM mr LEFT JOIN ma ON maID = mrmaID WHERE mrID = ?"),
                { *term.rowId });
            if (q.next())
                name = q.value(1).toInt() == ownMaId
                    ? QStringLiteral("[%1]").arg(q.value(0).toString().trimmed())
                    : q.value(2).toString().trimmed() + QStringLiteral(" : Voitto/Tappio");
        }
        const QString sign = term.adds() ? QStringLiteral("+") : QStringLiteral("-");
        parts.append(parts.isEmpty() && term.adds() ? name : sign + u' ' + name);
    }
    return parts.join(u' ');
}

std::optional<QString> chooseAccounts(
    bool isGroup, bool suojattu, const QString& current, const std::vector<qint32>& chosen)
{
    Dialogs& d = Dialogs::instance();
    const std::vector<qint32> before = TemplateText::accounts(current);
    if (chosen == before)
        return current;
    if (isGroup && !chosen.empty()) {
        d.information(
            QStringLiteral("Pääryhmään ei pidä valita tilejä. Valitse tilejä vain alimman tason ryhmiin."));
        return std::nullopt;
    }
    if (chosen.empty() && !before.empty()) {
        if (suojattu) {
            d.information(
                QStringLiteral("Poista ensin mallin suojaus poistaaksesi tämän ryhmän tilivalinnat."));
            return std::nullopt;
        }
        if (!d.question(QStringLiteral("Poistetaanko tämän ryhmän tilivalinnat?")))
            return std::nullopt;
        return QString();
    }
    const QString text = TemplateText::accountList(chosen);
    if (text.size() > 255) {
        d.information(
            QStringLiteral("Riville mahtuu vain 255 merkkiä tilejä. Jaa tilit useammalle riville."));
        return std::nullopt;
    }
    return text;
}

std::vector<Item> accounts(const QSqlDatabase& db)
{
    std::vector<Item> items;
    for (const ChartOfAccounts::Account& a : ChartOfAccounts::accounts(db))
        items.push_back({ a.id, a.caption() });
    if (items.empty())
        items.push_back({ 0, QStringLiteral("[Ei tilejä]") });
    return items;
}

std::vector<Item> formulaRows(const QSqlDatabase& db, qint32 maId, bool withProfitRows)
{
    std::vector<Item> items;
    QSqlQuery q = Sql::run(db,
        QStringLiteral("SELECT mrID, mrmaID, mrTeksti FROM mr WHERE mrmaID = ? ORDER BY mrTeksti, mrID"),
        { maId });
    while (q.next())
        items.push_back({ q.value(0).toInt(), q.value(2).toString().trimmed() });
    if (items.empty())
        items.push_back({ 0, QStringLiteral("[Ei rivejä]") });
    if (withProfitRows) {
        QSqlQuery p = Sql::run(db,
            QStringLiteral("SELECT mrID, maNimi FROM ma, mr WHERE mrmaID = maID AND mrIsVoitto <> 0 "
                           "AND maTyyppi = 1 ORDER BY maNimi, mrID"));
        while (p.next())
            items.push_back({ p.value(0).toInt(),
                p.value(1).toString().trimmed() + QStringLiteral(" : [Voitto / Tappio]") });
    }
    return items;
}

std::vector<Item> incomeStatements(const QSqlDatabase& db)
{
    std::vector<Item> items;
    QSqlQuery q = Sql::run(
        db, QStringLiteral("SELECT maID, maNimi FROM ma WHERE maTyyppi = 1 ORDER BY maNimi, maID"));
    while (q.next())
        items.push_back({ q.value(0).toInt(), q.value(1).toString().trimmed() });
    return items;
}

} // namespace TemplateEditor
