#include "ModelChecks.h"

#include "Dates.h"
#include "Money.h"

#include <QDate>
#include <QHash>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

#include <algorithm>
#include <optional>
#include <utility>

namespace ModelChecks {

namespace {

const QString ProfitCaption = QStringLiteral("Tilikauden ylijäämä (alijäämä)");
const QString AssetsCaption = QStringLiteral("Vastaavaa");
const QString LiabilitiesCaption = QStringLiteral("Vastattavaa");
const QString Section = QStringLiteral("VORKAM");
const QStringList SettingKeys = { QStringLiteral("VoittoTaseella"), QStringLiteral("LaskettavaTili"),
    QStringLiteral("Seurannimi"), QStringLiteral("TilikausiAlku"), QStringLiteral("TilikausiLoppu"),
    QStringLiteral("EdTilikausiAlku"), QStringLiteral("EdTilikausiLoppu") };

using Rows = QList<QVariantList>;

// A failing query is a finding too: a book without a table must not pass by reading nothing.
Rows select(const QSqlDatabase& db, const QString& sql, QStringList& findings)
{
    Rows rows;
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(sql)) {
        findings << QStringLiteral("Kysely epäonnistui: %1 (%2)").arg(q.lastError().text(), sql);
        return rows;
    }
    const int columns = q.record().count();
    while (q.next()) {
        QVariantList row;
        for (int i = 0; i < columns; ++i)
            row << q.value(i);
        rows << row;
    }
    return rows;
}

qint64 scalar(const QSqlDatabase& db, const QString& sql, QStringList& findings)
{
    const Rows rows = select(db, sql, findings);
    return rows.isEmpty() || rows.first().isEmpty() ? 0 : rows.first().first().toLongLong();
}

QString euros(qint64 raw) { return Money::fromRaw(raw).toCurrencyString(); }

bool inRange(qint64 number, qint64 low, qint64 high) { return number >= low && number <= high; }

struct Account {
    qint32 id = 0;
    qint64 number = 0;
    QVariant name;
    QVariant description;
    QVariant print;
    QVariant opening;
    QVariant closing;
};

struct Template {
    qint32 id = 0;
    QVariant name;
    qint64 kind = 0;
    qint64 resultTemplate = 0;
};

struct Row {
    qint32 id = 0;
    qint32 templateId = 0;
    qint32 parent = 0;
    qint64 order = 0;
    QString caption;
    QString accountsText;
    QString formulaText;
    QString side;
    bool equation = false;
    bool turnover = false;
    bool profit = false;
    bool accountsWellFormed = true;
    bool formulaWellFormed = true;
    QList<qint32> accounts;
    QList<std::pair<int, qint32>> terms; // sign and mrID

    // From the walk over the template's tree, in the order a statement is written.
    QList<qint32> children;
    bool inTree = false;
    int depth = 0;
    QString root; // caption of the main group above
    int position = -1; // where the row is computed
    int total = -1; // where its total line is written; -1 when it has none
};

// The chart, templates and settings of one book, read once for all the checks.
class Book {
public:
    Book(const QSqlDatabase& db, QStringList& findings)
    {
        for (const QVariantList& r : select(db,
                 QStringLiteral("SELECT tlID, tlNumero, tlNimi, tlKuvaus, tlPrint, tlAlkusaldo, tlLoppusaldo "
                                "FROM tl ORDER BY tlNumero, tlID"),
                 findings)) {
            accountAt.insert(r[0].toInt(), int(accounts.size()));
            accounts << Account { r[0].toInt(), r[1].toLongLong(), r[2], r[3], r[4], r[5], r[6] };
        }
        for (const QVariantList& r :
            select(db, QStringLiteral("SELECT maID, maNimi, maTyyppi, maTulosMaID FROM ma ORDER BY maID"),
                findings))
            templates << Template { r[0].toInt(), r[1], r[2].toLongLong(), r[3].toLongLong() };
        for (const Template& t : templates) {
            if (t.kind == 1)
                incomeStatements << t;
            else if (t.kind == 2)
                balanceSheets << t;
        }

        static const QRegularExpression accountList(QStringLiteral("^(?:[0-9]+,)*$"));
        static const QRegularExpression formula(QStringLiteral("^(?:[+-][0-9]+,)*$"));
        for (const QVariantList& r : select(db,
                 QStringLiteral(
                     "SELECT mrID, mrmaID, mrBelongsToGroup, mrGroupOrder, mrTeksti, mrTilit, mrKaava, "
                     "mrSaldoPuoli, mrIsEquation, mrIsLiikevaihto, mrIsVoitto FROM mr ORDER BY mrID"),
                 findings)) {
            Row row;
            row.id = r[0].toInt();
            row.templateId = r[1].toInt();
            row.parent = r[2].toInt();
            row.order = r[3].toLongLong();
            row.caption = r[4].toString();
            row.accountsText = r[5].toString();
            row.formulaText = r[6].toString();
            row.side = r[7].toString();
            row.equation = r[8].toLongLong() != 0;
            row.turnover = r[9].toLongLong() != 0;
            row.profit = r[10].toLongLong() != 0;
            row.accountsWellFormed = accountList.match(row.accountsText).hasMatch();
            if (row.accountsWellFormed)
                for (const QString& item : row.accountsText.split(u',', Qt::SkipEmptyParts))
                    row.accounts << item.toInt();
            row.formulaWellFormed = formula.match(row.formulaText).hasMatch();
            if (row.formulaWellFormed)
                for (const QString& item : row.formulaText.split(u',', Qt::SkipEmptyParts))
                    row.terms << std::pair { item.front() == u'-' ? -1 : 1, item.mid(1).toInt() };
            rowAt.insert(row.id, int(rows.size()));
            rows << row;
        }
        walkTrees();

        for (const QVariantList& r :
            select(db, QStringLiteral("SELECT setSection, setKey, setString FROM Settings ORDER BY setID"),
                findings))
            settings << r;
    }

    QList<Account> accounts;
    QHash<qint32, int> accountAt;
    QList<Template> templates;
    QList<Template> incomeStatements;
    QList<Template> balanceSheets;
    QList<Row> rows;
    QHash<qint32, int> rowAt;
    Rows settings;

    const Template* income() const
    {
        return incomeStatements.size() == 1 ? &incomeStatements.first() : nullptr;
    }
    const Template* balance() const { return balanceSheets.size() == 1 ? &balanceSheets.first() : nullptr; }

    const Row* row(qint32 id) const
    {
        const auto it = rowAt.constFind(id);
        return it == rowAt.constEnd() ? nullptr : &rows[*it];
    }
    const Account* account(qint32 id) const
    {
        const auto it = accountAt.constFind(id);
        return it == accountAt.constEnd() ? nullptr : &accounts[*it];
    }

    QList<const Row*> rowsOf(qint32 templateId) const
    {
        QList<const Row*> list;
        for (const Row& r : rows)
            if (r.templateId == templateId)
                list << &r;
        return list;
    }

    QList<const Row*> mainRows(qint32 templateId) const
    {
        QList<const Row*> list;
        for (const Row& r : rows)
            if (r.templateId == templateId && r.parent == 0)
                list << &r;
        std::stable_sort(
            list.begin(), list.end(), [](const Row* a, const Row* b) { return a->order < b->order; });
        return list;
    }

    // The accounts of the row and of every row below it, as a statement sums a group.
    QList<qint32> subtreeAccounts(const Row& r) const
    {
        QList<qint32> list = r.accounts;
        for (qint32 child : r.children)
            if (const Row* c = row(child))
                list += subtreeAccounts(*c);
        return list;
    }

    // How many times each account counts in the total line of `r`. A group's total adds its
    // lowest-level rows only; a formula adds or subtracts the totals it names.
    QMap<qint32, int> expansion(const Row& r, QSet<qint32>& visiting) const
    {
        QMap<qint32, int> counts;
        if (visiting.contains(r.id))
            return counts;
        visiting.insert(r.id);
        if (r.equation) {
            for (const auto& [sign, id] : r.terms) {
                const Row* term = row(id);
                if (!term || term->templateId != r.templateId)
                    continue;
                const QMap<qint32, int> part = expansion(*term, visiting);
                for (auto it = part.cbegin(); it != part.cend(); ++it)
                    counts[it.key()] += sign * it.value();
            }
        } else if (r.children.isEmpty()) {
            for (qint32 a : r.accounts)
                counts[a] += 1;
        } else {
            for (qint32 child : r.children) {
                const Row* c = row(child);
                if (!c || c->equation)
                    continue;
                const QMap<qint32, int> part = expansion(*c, visiting);
                for (auto it = part.cbegin(); it != part.cend(); ++it)
                    counts[it.key()] += it.value();
            }
        }
        visiting.remove(r.id);
        return counts;
    }

    QString templateName(qint32 id) const
    {
        for (const Template& t : templates)
            if (t.id == id)
                return t.name.toString();
        return QStringLiteral("maID %1").arg(id);
    }

    // "Yhdistyksen tase / Saamiset": where to look in the template editor.
    QString place(const Row& r) const
    {
        return templateName(r.templateId) + QStringLiteral(" / ") + r.caption;
    }
    QString place(qint32 rowId) const
    {
        const Row* r = row(rowId);
        return r ? place(*r) : QStringLiteral("mrID %1").arg(rowId);
    }

    QString label(qint32 accountId) const
    {
        const Account* a = account(accountId);
        return a ? QStringLiteral("%1 %2").arg(a->number).arg(a->name.toString())
                 : QStringLiteral("tlID %1").arg(accountId);
    }

    QList<QString> settingValues(const QString& key) const
    {
        QList<QString> values;
        for (const QVariantList& s : settings)
            if (s[1].toString() == key)
                values << s[2].toString();
        return values;
    }
    QString setting(const QString& key) const
    {
        const QList<QString> values = settingValues(key);
        return values.isEmpty() ? QString() : values.first();
    }

    // The one account of the income statement's profit row, when there is exactly one.
    std::optional<qint32> profitAccount() const
    {
        const Template* t = income();
        if (!t)
            return std::nullopt;
        QList<const Row*> profit;
        for (const Row* r : rowsOf(t->id))
            if (r->profit)
                profit << r;
        if (profit.size() != 1 || profit.first()->accounts.size() != 1)
            return std::nullopt;
        return profit.first()->accounts.first();
    }

    // The balance sheet's "Tilikauden ylijäämä (alijäämä)" row.
    const Row* balanceProfitRow() const
    {
        const Template* t = balance();
        if (!t)
            return nullptr;
        for (const Row* r : rowsOf(t->id))
            if (r->caption == ProfitCaption)
                return r;
        return nullptr;
    }

private:
    void walkTrees()
    {
        for (Row& r : rows) {
            if (r.parent == 0)
                continue;
            const auto it = rowAt.constFind(r.parent);
            if (it != rowAt.constEnd() && rows[*it].templateId == r.templateId)
                rows[*it].children << r.id;
        }
        for (Row& r : rows)
            std::stable_sort(r.children.begin(), r.children.end(),
                [this](qint32 a, qint32 b) { return rows[rowAt[a]].order < rows[rowAt[b]].order; });
        for (const Template& t : templates) {
            int position = 0;
            for (const Row* main : mainRows(t.id))
                walk(rowAt[main->id], 0, main->caption, position);
        }
    }

    void walk(int index, int depth, const QString& root, int& position)
    {
        if (rows[index].inTree)
            return;
        rows[index].inTree = true;
        rows[index].depth = depth;
        rows[index].root = root;
        if (rows[index].children.isEmpty() || rows[index].equation) {
            // Sub-rows are ordinary lines; main rows and formulas are total lines.
            rows[index].position = position;
            if (depth == 0 || rows[index].equation)
                rows[index].total = position;
            ++position;
            return;
        }
        rows[index].position = position++;
        const QList<qint32> children = rows[index].children;
        for (qint32 child : children)
            walk(rowAt[child], depth + 1, root, position);
        rows[index].total = position++;
    }
};

void checkTables(const QSqlDatabase& db, QStringList& f)
{
    static const QSet<QString> known = { QStringLiteral("tl"), QStringLiteral("to"), QStringLiteral("toe"),
        QStringLiteral("vi"), QStringLiteral("vie"), QStringLiteral("ma"), QStringLiteral("mr"),
        QStringLiteral("tula"), QStringLiteral("tase"), QStringLiteral("tk"), QStringLiteral("settings"),
        QStringLiteral("tlsaldot"), QStringLiteral("tltarkastelut"), QStringLiteral("tppohjat"),
        QStringLiteral("vippohjat") };
    for (const QVariantList& r :
        select(db,
            QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite%'"),
            f))
        if (!known.contains(r[0].toString().toLower()))
            f << QStringLiteral("Ylimääräinen taulu %1").arg(r[0].toString());
    // Work tables are filled by reports; a shipped book starts with them empty.
    for (const char* table : { "tula", "tase", "tk", "tlSaldot", "tlTarkastelut" }) {
        const qint64 n = scalar(db, QStringLiteral("SELECT COUNT(*) FROM %1").arg(QLatin1String(table)), f);
        if (n != 0)
            f << QStringLiteral("Työtaulussa %1 on %2 riviä").arg(QLatin1String(table)).arg(n);
    }
}

void checkChart(const Book& b, QStringList& f)
{
    if (b.accounts.isEmpty())
        f << QStringLiteral("Tilikartassa ei ole tilejä");
    QHash<qint64, int> numbers;
    for (const Account& a : b.accounts) {
        const QString label = b.label(a.id);
        if (!inRange(a.number, 1000, 9999))
            f << QStringLiteral("Tilin %1 numero ei ole nelinumeroinen").arg(label);
        ++numbers[a.number];
        const QString name = a.name.toString();
        if (name.trimmed().isEmpty())
            f << QStringLiteral("Tilin %1 nimi on tyhjä").arg(label);
        else if (!name.front().isLetter())
            // The account tree drops leading accounts whose name does not begin with a letter.
            f << QStringLiteral("Tilin %1 nimi ei ala kirjaimella").arg(label);
        if (name.size() > 50)
            f << QStringLiteral("Tilin %1 nimi on yli 50 merkkiä").arg(label);
        if (a.description.isNull() || a.description.toString().isEmpty())
            f << QStringLiteral("Tilin %1 kuvaus puuttuu").arg(label);
        if (a.description.toString().size() > 255)
            f << QStringLiteral("Tilin %1 kuvaus on yli 255 merkkiä").arg(label);
        if (a.print.toLongLong() != 1 || a.print.isNull() || a.opening.toLongLong() != 0
            || a.closing.toLongLong() != 0)
            f << QStringLiteral("Tilin %1 tulostusvalinta ei ole 1 tai sen saldot eivät ole nollia")
                     .arg(label);
    }
    for (auto it = numbers.cbegin(); it != numbers.cend(); ++it)
        if (it.value() > 1)
            f << QStringLiteral("Tilinumero %1 on %2 tilillä").arg(it.key()).arg(it.value());
}

void checkTemplates(const Book& b, QStringList& f)
{
    if (b.incomeStatements.size() != 1)
        f << QStringLiteral("Tuloslaskelmamalleja on %1, pitää olla yksi").arg(b.incomeStatements.size());
    if (b.balanceSheets.size() != 1)
        f << QStringLiteral("Tasemalleja on %1, pitää olla yksi").arg(b.balanceSheets.size());
    for (const Template& t : b.templates) {
        if (t.kind != 1 && t.kind != 2)
            f << QStringLiteral("Mallin %1 tyyppi %2 ei ole tuloslaskelma (1) eikä tase (2)")
                     .arg(t.name.toString())
                     .arg(t.kind);
        if (t.name.toString().trimmed().isEmpty() || t.name.toString().size() > 50)
            f << QStringLiteral("Mallin (maID %1) nimi on tyhjä tai yli 50 merkkiä").arg(t.id);
    }
    if (b.income() && b.income()->resultTemplate != 0)
        f << QStringLiteral("Tuloslaskelmamallin maTulosMaID ei ole 0");
    if (b.income() && b.balance() && b.balance()->resultTemplate != b.income()->id)
        f << QStringLiteral("Tasemallin maTulosMaID (%1) ei ole tuloslaskelmamallin tunnus %2")
                 .arg(b.balance()->resultTemplate)
                 .arg(b.income()->id);
}

void checkRows(const Book& b, QStringList& f)
{
    QSet<qint32> templateIds;
    for (const Template& t : b.templates)
        templateIds.insert(t.id);
    QHash<std::pair<qint32, QString>, int> captions;
    QHash<std::pair<qint32, qint32>, QList<qint64>> orders;
    for (const Row& r : b.rows) {
        if (!templateIds.contains(r.templateId)) {
            f << QStringLiteral("Mallirivi %1 (mrID %2) kuuluu malliin %3, jota ei ole")
                     .arg(r.caption)
                     .arg(r.id)
                     .arg(r.templateId);
            continue;
        }
        if (r.caption.trimmed().isEmpty() || r.caption.size() > 50 || r.caption.contains(u'\''))
            // Formulas look rows up by caption in unescaped SQL.
            f << QStringLiteral(
                "Rivin (mrID %1) otsikko \"%2\" on tyhjä, yli 50 merkkiä tai siinä on heittomerkki")
                     .arg(r.id)
                     .arg(r.caption);
        ++captions[{ r.templateId, r.caption }];
        orders[{ r.templateId, r.parent }] << r.order;
        if (!r.inTree)
            f << QStringLiteral("Rivi %1 ei ole mallin puussa (ryhmä mrID %2)").arg(b.place(r)).arg(r.parent);
        if (!r.accountsWellFormed)
            f << QStringLiteral("Rivin %1 tililuettelo \"%2\" ei ole muotoa \"id,id,\"")
                     .arg(b.place(r), r.accountsText);
        if (!r.formulaWellFormed)
            f << QStringLiteral("Rivin %1 kaava \"%2\" ei ole muotoa \"+id,-id,\"")
                     .arg(b.place(r), r.formulaText);
        for (qint32 a : r.accounts)
            if (!b.account(a))
                f << QStringLiteral("Rivin %1 tililuettelossa on tili %2, jota ei ole")
                         .arg(b.place(r))
                         .arg(a);
        if (!r.children.isEmpty() && !r.accounts.isEmpty())
            f << QStringLiteral("Ryhmärivillä %1 on tilejä").arg(b.place(r));
        if (r.children.isEmpty() && !r.equation && r.accounts.isEmpty())
            f << QStringLiteral("Rivillä %1 ei ole tilejä eikä kaavaa").arg(b.place(r));
    }
    for (auto it = captions.cbegin(); it != captions.cend(); ++it)
        if (it.value() > 1)
            f << QStringLiteral("Otsikko \"%1\" on mallissa %2 %3 kertaa")
                     .arg(it.key().second, b.templateName(it.key().first))
                     .arg(it.value());
    for (auto it = orders.cbegin(); it != orders.cend(); ++it) {
        QList<qint64> sorted = it.value();
        std::sort(sorted.begin(), sorted.end());
        for (int i = 0; i < sorted.size(); ++i) {
            if (sorted[i] != i + 1) {
                const QString group = it.key().second == 0
                    ? QStringLiteral("pääryhmien")
                    : QStringLiteral("ryhmän %1 alarivien").arg(b.place(it.key().second));
                f << QStringLiteral("Mallin %1 %2 järjestysnumerot eivät ole 1..%3")
                         .arg(b.templateName(it.key().first), group)
                         .arg(sorted.size());
                break;
            }
        }
    }
}

// Every account on exactly one row of the pair, and on the side its number belongs to.
void checkAccountsInPair(const Book& b, QStringList& f)
{
    const Template* income = b.income();
    const Template* balance = b.balance();
    if (!income || !balance)
        return;
    QHash<qint32, QStringList> placesOf;
    for (const Row& r : b.rows) {
        if (r.templateId != income->id && r.templateId != balance->id)
            continue;
        for (qint32 a : r.accounts) {
            placesOf[a] << b.place(r);
            const Account* account = b.account(a);
            if (!account)
                continue;
            const bool balanceAccount = account->number < 3000;
            if (balanceAccount && r.templateId != balance->id)
                f << QStringLiteral("Tili %1 kuuluu taseeseen, mutta se on rivillä %2")
                         .arg(b.label(a), b.place(r));
            if (!balanceAccount && r.templateId != income->id)
                f << QStringLiteral("Tili %1 kuuluu tuloslaskelmaan, mutta se on rivillä %2")
                         .arg(b.label(a), b.place(r));
        }
    }
    for (const Account& a : b.accounts) {
        const QStringList places = placesOf.value(a.id);
        if (places.isEmpty())
            f << QStringLiteral("Tili %1 ei ole tuloslaskelman eikä taseen rivillä").arg(b.label(a.id));
        else if (places.size() > 1)
            f << QStringLiteral("Tili %1 on %2 kertaa tuloslaskelman ja taseen riveillä: %3")
                     .arg(b.label(a.id))
                     .arg(places.size())
                     .arg(places.join(QStringLiteral(", ")));
    }
}

void checkFormulas(const Book& b, QStringList& f)
{
    for (const Row& r : b.rows) {
        if (!r.equation) {
            if (!r.formulaText.isEmpty())
                f << QStringLiteral("Rivillä %1 on kaava, vaikka se ei ole kaavarivi").arg(b.place(r));
            continue;
        }
        if (!r.accounts.isEmpty() || !r.children.isEmpty())
            f << QStringLiteral("Kaavarivillä %1 on tilejä tai alarivejä").arg(b.place(r));
        if (r.terms.isEmpty())
            f << QStringLiteral("Kaavarivin %1 kaava on tyhjä").arg(b.place(r));
        if (r.parent != 0)
            // Only the main pass of a statement evaluates formulas.
            f << QStringLiteral("Kaavarivi %1 ei ole päätasolla").arg(b.place(r));
        for (const auto& [sign, id] : r.terms) {
            const Row* term = b.row(id);
            if (!term || term->templateId != r.templateId)
                f << QStringLiteral("Kaava rivillä %1 viittaa riviin %2, jota ei ole samassa mallissa")
                         .arg(b.place(r))
                         .arg(id);
            else if (term->total < 0)
                f << QStringLiteral("Kaava rivillä %1 viittaa riviin %2, jolla ei ole summariviä")
                         .arg(b.place(r), term->caption);
            else if (term->total >= r.position)
                f << QStringLiteral(
                    "Kaava rivillä %1 viittaa riviin %2, joka lasketaan vasta kaavarivin jälkeen")
                         .arg(b.place(r), term->caption);
        }
        // Every row has the side of its statement, so a formula that counts an account twice
        // or subtracts it gives a wrong total.
        QSet<qint32> visiting;
        const QMap<qint32, int> counts = b.expansion(r, visiting);
        QList<qint32> wrong;
        for (auto it = counts.cbegin(); it != counts.cend(); ++it)
            if (it.value() != 0 && it.value() != 1)
                wrong << it.key();
        if (!wrong.isEmpty())
            f << QStringLiteral(
                "Kaava rivillä %1 laskee %2 tiliä muulla kertoimella kuin 1, esimerkiksi tilin %3 "
                "kertoimella %4")
                     .arg(b.place(r))
                     .arg(wrong.size())
                     .arg(b.label(wrong.first()))
                     .arg(counts.value(wrong.first()));
    }
}

void checkSides(const Book& b, QStringList& f)
{
    if (const Template* income = b.income())
        for (const Row* r : b.rowsOf(income->id))
            if (r->side != QLatin1String("K"))
                f << QStringLiteral("Tuloslaskelman rivin %1 saldopuoli on \"%2\", pitää olla K")
                         .arg(b.place(*r), r->side);
    const Template* balance = b.balance();
    if (!balance)
        return;
    QStringList mains;
    for (const Row* r : b.mainRows(balance->id))
        mains << r->caption;
    QStringList sorted = mains;
    sorted.sort();
    if (sorted != QStringList { AssetsCaption, LiabilitiesCaption })
        f << QStringLiteral("Taseen pääryhmät ovat %1, pitää olla täsmälleen Vastaavaa ja Vastattavaa")
                 .arg(mains.join(QStringLiteral(", ")));
    for (const Row* r : b.rowsOf(balance->id)) {
        const QString wanted = r->root == AssetsCaption ? QStringLiteral("D")
            : r->root == LiabilitiesCaption             ? QStringLiteral("K")
                                                        : QString();
        if (!wanted.isEmpty() && r->side != wanted)
            f << QStringLiteral("Taseen rivin %1 saldopuoli on \"%2\", pitää olla %3")
                     .arg(b.place(*r), r->side, wanted);
    }
}

void checkTurnoverAndProfit(const Book& b, QStringList& f)
{
    const Template* income = b.income();
    const Template* balance = b.balance();
    if (balance)
        for (const Row* r : b.rowsOf(balance->id))
            if (r->turnover || r->profit)
                f << QStringLiteral("Tasemallissa on liikevaihto- tai voittorivi %1").arg(b.place(*r));
    if (!income)
        return;
    QList<const Row*> turnover;
    QList<const Row*> profit;
    for (const Row* r : b.rowsOf(income->id)) {
        if (r->turnover)
            turnover << r;
        if (r->profit)
            profit << r;
    }
    if (turnover.size() != 1)
        f << QStringLiteral("Tuloslaskelmassa on %1 liikevaihtoriviä, pitää olla yksi").arg(turnover.size());
    for (const Row* r : turnover)
        if (r->equation || b.subtreeAccounts(*r).isEmpty())
            f << QStringLiteral("Liikevaihtorivi %1 on kaavarivi tai sillä ei ole tilejä").arg(b.place(*r));
    if (profit.size() != 1) {
        f << QStringLiteral("Tuloslaskelmassa on %1 voittoriviä, pitää olla yksi").arg(profit.size());
        return;
    }
    const Row& p = *profit.first();
    if (p.parent != 0 || !p.children.isEmpty() || p.equation)
        f << QStringLiteral("Voittorivi %1 ei ole päätason tilirivi").arg(b.place(p));
    if (p.caption != ProfitCaption)
        f << QStringLiteral("Voittorivin otsikko on \"%1\", pitää olla \"%2\"").arg(p.caption, ProfitCaption);
    const QList<const Row*> mains = b.mainRows(income->id);
    if (mains.isEmpty() || mains.last() != &p)
        f << QStringLiteral("Voittorivi %1 ei ole tuloslaskelman viimeinen päärivi").arg(b.place(p));
    if (p.accounts.size() != 1)
        f << QStringLiteral("Voittorivillä %1 on %2 tiliä, pitää olla yksi")
                 .arg(b.place(p))
                 .arg(p.accounts.size());

    const Row* bp = b.balanceProfitRow();
    if (!bp || bp->root != LiabilitiesCaption || !bp->children.isEmpty() || bp->equation) {
        f << QStringLiteral("Taseessa ei ole Vastattavaa-puolen tiliriviä \"%1\"").arg(ProfitCaption);
        return;
    }
    if (bp->accounts.size() != 1)
        f << QStringLiteral("Taseen rivillä %1 on %2 tiliä, pitää olla yksi")
                 .arg(b.place(*bp))
                 .arg(bp->accounts.size());
    else if (p.accounts.size() == 1 && bp->accounts.first() == p.accounts.first())
        // The automatic profit entries refuse to post when both are the same account.
        f << QStringLiteral("Taseen rivin %1 tili on sama kuin tuloslaskelman voittorivin").arg(b.place(*bp));
}

void checkSettings(const Book& b, int year, QStringList& f)
{
    for (const QVariantList& s : b.settings)
        if (s[0].toString() != Section)
            f << QStringLiteral("Asetus %1 on osiossa \"%2\", pitää olla %3")
                     .arg(s[1].toString(), s[0].toString(), Section);
    for (const QString& key : SettingKeys) {
        const qsizetype n = b.settingValues(key).size();
        if (n != 1)
            f << QStringLiteral("Asetus %1 on %2 kertaa, pitää olla kerran").arg(key).arg(n);
    }

    const QString profit = b.setting(QStringLiteral("VoittoTaseella"));
    const Row* bp = b.balanceProfitRow();
    if (!bp || bp->accounts.size() != 1 || profit != QString::number(bp->accounts.first()))
        f << QStringLiteral("VoittoTaseella (%1) ei ole taseen rivin \"%2\" tili").arg(profit, ProfitCaption);
    if (b.profitAccount() && profit == QString::number(*b.profitAccount()))
        f << QStringLiteral("VoittoTaseella on sama tili kuin tuloslaskelman voittorivillä");

    const QString bank = b.setting(QStringLiteral("LaskettavaTili"));
    const Account* bankAccount = b.account(bank.toInt());
    if (!bankAccount || QString::number(bankAccount->id) != bank || !inRange(bankAccount->number, 1910, 1919))
        f << QStringLiteral("LaskettavaTili (%1) ei ole pankkitili 1910–1919").arg(bank);

    const QList<std::pair<QString, QDate>> dates = {
        { QStringLiteral("TilikausiAlku"), QDate(year, 1, 1) },
        { QStringLiteral("TilikausiLoppu"), QDate(year, 12, 31) },
        { QStringLiteral("EdTilikausiAlku"), QDate(year - 1, 1, 1) },
        { QStringLiteral("EdTilikausiLoppu"), QDate(year - 1, 12, 31) },
    };
    for (const auto& [key, date] : dates)
        if (b.setting(key) != Dates::format(date))
            f << QStringLiteral("%1 on \"%2\", pitää olla %3").arg(key, b.setting(key), Dates::format(date));
    if (b.setting(QStringLiteral("Seurannimi")).trimmed().isEmpty())
        f << QStringLiteral("Seurannimi on tyhjä");
}

// Debit and credit sums of the current year's entries, by account.
QHash<qint32, std::pair<qint64, qint64>> entrySums(const QSqlDatabase& db, QStringList& f)
{
    QHash<qint32, std::pair<qint64, qint64>> sums;
    for (const QVariantList& r : select(db,
             QStringLiteral("SELECT vitlID, SUM(CASE WHEN viTyyppi = 'D' THEN viArvo ELSE 0 END), "
                            "SUM(CASE WHEN viTyyppi = 'K' THEN viArvo ELSE 0 END) FROM vi GROUP BY vitlID"),
             f))
        sums.insert(r[0].toInt(), { r[1].toLongLong(), r[2].toLongLong() });
    return sums;
}

// A row's amount as the statements compute it: entries on the row's side add, others subtract.
qint64 rowAmount(const Book& b, const Row& r, const QHash<qint32, std::pair<qint64, qint64>>& sums)
{
    qint64 amount = 0;
    for (qint32 a : b.subtreeAccounts(r)) {
        const auto [debit, credit] = sums.value(a);
        amount += r.side == QLatin1String("D") ? debit - credit : credit - debit;
    }
    return amount;
}

Totals totalsOf(const QSqlDatabase& db, const Book& b, QStringList& f)
{
    Totals t;
    const auto sums = entrySums(db, f);
    const std::optional<qint32> profit = b.profitAccount();
    for (const Account& a : b.accounts)
        if (a.number >= 3000 && (!profit || a.id != *profit)) {
            const auto [debit, credit] = sums.value(a.id);
            t.resultByAccounts += credit - debit;
        }
    if (const Template* income = b.income())
        for (const Row* r : b.mainRows(income->id))
            if (!r->profit && !r->equation)
                t.resultByTemplate += rowAmount(b, *r, sums);
    if (const Template* balance = b.balance())
        for (const Row* r : b.rowsOf(balance->id)) {
            if (!r->children.isEmpty() || r->equation)
                continue;
            if (r->root == AssetsCaption)
                t.assets += rowAmount(b, *r, sums);
            else if (r->root == LiabilitiesCaption)
                t.liabilities += rowAmount(b, *r, sums);
        }
    return t;
}

void checkVouchers(const QSqlDatabase& db, const Book& b, int year, QStringList& f)
{
    const qint64 previous
        = scalar(db, QStringLiteral("SELECT (SELECT COUNT(*) FROM toE) + (SELECT COUNT(*) FROM viE)"), f);
    if (previous != 0)
        f << QStringLiteral("Edellisen vuoden tauluissa on %1 riviä").arg(previous);
    const qint64 automatic = scalar(db,
        QStringLiteral("SELECT (SELECT COUNT(*) FROM \"to\" WHERE toAutomaatti <> 0) + "
                       "(SELECT COUNT(*) FROM vi WHERE viAutomaatti <> 0)"),
        f);
    if (automatic != 0)
        f << QStringLiteral("Automaattisia tositteita tai vientejä on %1").arg(automatic);

    for (const QVariantList& r : select(db,
             QStringLiteral(
                 "SELECT t.toNumero, SUM(CASE WHEN v.viTyyppi = 'D' THEN v.viArvo ELSE 0 END), "
                 "SUM(CASE WHEN v.viTyyppi = 'K' THEN v.viArvo ELSE 0 END), COUNT(v.viID) "
                 "FROM \"to\" t LEFT JOIN vi v ON v.vitoID = t.toID GROUP BY t.toID ORDER BY t.toNumero"),
             f)) {
        if (r[1].toLongLong() != r[2].toLongLong())
            f << QStringLiteral("Tosite %1 ei täsmää: debet %2, kredit %3")
                     .arg(r[0].toString(), euros(r[1].toLongLong()), euros(r[2].toLongLong()));
        if (r[3].toLongLong() < 2)
            f << QStringLiteral("Tositteessa %1 on alle kaksi vientiä").arg(r[0].toString());
    }

    const QDate start(year, 1, 1);
    const QDate end(year, 12, 31);
    QHash<qint32, QVariantList> vouchers;
    for (const QVariantList& r : select(db,
             QStringLiteral(
                 "SELECT toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite FROM \"to\" "
                 "ORDER BY toNumero, toID"),
             f)) {
        vouchers.insert(r[0].toInt(), r);
        const QString number = r[1].toString();
        const QDate date = Dates::fromSql(r[2].toString());
        if (!date.isValid() || Dates::toSql(date) != r[2].toString() || date < start || date > end)
            f << QStringLiteral("Tositteen %1 päivämäärä \"%2\" ei ole tilikaudella %3")
                     .arg(number, r[2].toString())
                     .arg(year);
        if (r[3].toString().trimmed().isEmpty() || r[3].toString().size() > 255)
            f << QStringLiteral("Tositteen %1 selite on tyhjä tai yli 255 merkkiä").arg(number);
    }

    const qint64 count = vouchers.size();
    const Rows numbering = select(
        db, QStringLiteral("SELECT MIN(toNumero), MAX(toNumero), COUNT(DISTINCT toNumero) FROM \"to\""), f);
    if (count == 0)
        f << QStringLiteral("Esimerkissä ei ole tositteita");
    else if (!numbering.isEmpty()
        && (numbering[0][0].toLongLong() != 0 || numbering[0][1].toLongLong() != count - 1
            || numbering[0][2].toLongLong() != count))
        f << QStringLiteral("Tositenumerot eivät ole 0..%1 peräkkäin").arg(count - 1);
    for (const QVariantList& r :
        select(db,
            QStringLiteral(
                "SELECT a.toNumero, a.toPvm, b.toNumero, b.toPvm FROM \"to\" a JOIN \"to\" b "
                "ON b.toNumero > a.toNumero WHERE b.toPvm < a.toPvm ORDER BY a.toNumero, b.toNumero LIMIT 1"),
            f))
        f << QStringLiteral("Tositenumerot eivät kasva päivämäärän mukaan: %1 (%2) ennen tositetta %3 (%4)")
                 .arg(r[0].toString(), r[1].toString(), r[2].toString(), r[3].toString());

    // Opening voucher: the previous year's closing balances, number 0 on the first day.
    QList<QVariantList> openings;
    for (const QVariantList& v : std::as_const(vouchers))
        if (v[4].toLongLong() != 0)
            openings << v;
    if (openings.size() != 1)
        f << QStringLiteral("Avaustositteita on %1, pitää olla yksi").arg(openings.size());
    for (const QVariantList& v : openings)
        if (v[1].toLongLong() != 0 || v[2].toString() != Dates::toSql(start)
            || v[3].toString() != QLatin1String("Tilinavausviennit") || v[5].toLongLong() != 0)
            f << QStringLiteral("Avaustosite %1 ei ole numero 0 päivältä %2 selitteellä Tilinavausviennit")
                     .arg(v[1].toString(), Dates::format(start));
    for (const QVariantList& v : std::as_const(vouchers))
        if (v[1].toLongLong() == 0 && v[4].toLongLong() == 0)
            f << QStringLiteral("Tosite 0 ei ole avaustosite");

    bool closing = false;
    for (const QVariantList& v : std::as_const(vouchers))
        if (v[5].toLongLong() != 0) {
            closing = true;
            if (v[2].toString() != Dates::toSql(end))
                f << QStringLiteral("Tilinpäätöstosite %1 ei ole päivältä %2")
                         .arg(v[1].toString(), Dates::format(end));
        }
    if (!closing)
        f << QStringLiteral("Tilinpäätöstositteita ei ole");

    const std::optional<qint32> profit = b.profitAccount();
    const QString balanceProfit = b.setting(QStringLiteral("VoittoTaseella"));
    QHash<QString, bool> opened; // the kinds of account the opening voucher must hold
    for (const QVariantList& e : select(db,
             QStringLiteral(
                 "SELECT viID, vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti "
                 "FROM vi ORDER BY viID"),
             f)) {
        const QString id = e[0].toString();
        const auto voucher = vouchers.constFind(e[1].toInt());
        const Account* account = b.account(e[2].toInt());
        if (!account)
            f << QStringLiteral("Viennin (viID %1) tiliä %2 ei ole").arg(id, e[2].toString());
        if (voucher == vouchers.constEnd()) {
            f << QStringLiteral("Viennin (viID %1) tositetta %2 ei ole").arg(id, e[1].toString());
            continue;
        }
        const QString type = e[3].toString();
        const qint64 amount = e[4].toLongLong();
        if ((type != QLatin1String("D") && type != QLatin1String("K")) || e[4].typeId() != QMetaType::LongLong
            || amount <= 0 || amount % 100 != 0)
            f << QStringLiteral("Viennin (viID %1) tyyppi tai summa on väärä: \"%2\" %3")
                     .arg(id, type, e[4].toString());
        if (e[5].toString() != (*voucher)[3].toString())
            f << QStringLiteral("Viennin (viID %1) selite ei ole tositteen %2 selite")
                     .arg(id, (*voucher)[1].toString());
        if ((e[6].toLongLong() != 0) != ((*voucher)[4].toLongLong() != 0))
            f << QStringLiteral("Viennin (viID %1) avausvientimerkintä ei vastaa tositetta").arg(id);
        if ((e[7].toLongLong() != 0) != ((*voucher)[5].toLongLong() != 0))
            f << QStringLiteral("Viennin (viID %1) tilinpäätösvientimerkintä ei vastaa tositetta").arg(id);
        if ((profit && e[2].toInt() == *profit) || e[2].toString() == balanceProfit)
            // The year's result reaches these accounts only through the automatic entries.
            f << QStringLiteral("Voittotilille %1 on kirjattu (viID %2)").arg(b.label(e[2].toInt()), id);
        if (!account || e[6].toLongLong() == 0)
            continue;
        if (account->number >= 3000)
            f << QStringLiteral("Avaustositteella on tuloslaskelman tili %1").arg(b.label(account->id));
        const qint64 n = account->number;
        opened[QStringLiteral("kassa")] |= n == 1900;
        opened[QStringLiteral("pankki")] |= inRange(n, 1910, 1919);
        opened[QStringLiteral("saaminen")] |= inRange(n, 1700, 1899);
        opened[QStringLiteral("oma pääoma")] |= inRange(n, 2000, 2299);
        opened[QStringLiteral("velka")] |= inRange(n, 2800, 2999);
    }
    for (const QString& kind : { QStringLiteral("pankki"), QStringLiteral("kassa"),
             QStringLiteral("saaminen"), QStringLiteral("velka"), QStringLiteral("oma pääoma") })
        if (!opened.value(kind))
            f << QStringLiteral("Avaustositteella ei ole vientiä: %1").arg(kind);

    // Cash and bank never run short, voucher by voucher.
    QHash<qint32, qint64> balances;
    QSet<qint32> reported;
    qint64 current = -1;
    const auto reportNegative = [&](qint64 voucher) {
        for (auto it = balances.cbegin(); it != balances.cend(); ++it)
            if (it.value() < 0 && !reported.contains(it.key())) {
                reported.insert(it.key());
                f << QStringLiteral("Tilin %1 saldo on negatiivinen tositteen %2 jälkeen: %3")
                         .arg(b.label(it.key()))
                         .arg(voucher)
                         .arg(euros(it.value()));
            }
    };
    for (const QVariantList& e : select(db,
             QStringLiteral("SELECT t.toNumero, v.vitlID, v.viTyyppi, v.viArvo FROM vi v "
                            "JOIN \"to\" t ON t.toID = v.vitoID JOIN tl ON tl.tlID = v.vitlID "
                            "WHERE tl.tlNumero BETWEEN 1900 AND 1919 ORDER BY t.toNumero, v.viID"),
             f)) {
        if (e[0].toLongLong() != current && current >= 0)
            reportNegative(current);
        current = e[0].toLongLong();
        balances[e[1].toInt()]
            += e[2].toString() == QLatin1String("D") ? e[3].toLongLong() : -e[3].toLongLong();
    }
    if (current >= 0)
        reportNegative(current);

    const Totals t = totalsOf(db, b, f);
    if (t.resultByAccounts != t.resultByTemplate)
        f << QStringLiteral("Tulos tileittäin (%1) ei ole sama kuin tuloslaskelman riveiltä (%2)")
                 .arg(euros(t.resultByAccounts), euros(t.resultByTemplate));
    if (t.assets != t.liabilities + t.resultByTemplate)
        f << QStringLiteral("Tase ei täsmää: vastaavaa %1, vastattavaa ja tilikauden tulos %2")
                 .arg(euros(t.assets), euros(t.liabilities + t.resultByTemplate));
}

} // namespace

QList<ShippedBook> shippedBooks()
{
    const QStringList association
        = { QStringLiteral("Varsinainen toiminta"), QStringLiteral("Varainhankinta"),
              QStringLiteral("Sijoitus- ja rahoitustoiminta"), QStringLiteral("Yleisavustukset"),
              QStringLiteral("Tilikauden tulos"), QStringLiteral("Tilinpäätössiirrot"), ProfitCaption };
    const QStringList sections = association.mid(0, 4);
    QStringList lions = association;
    lions[5] = QStringLiteral("Aktiviteettirahaston muutos");
    const QStringList housing
        = { QStringLiteral("Kiinteistön tuotot"), QStringLiteral("Kiinteistön hoitokulut"),
              QStringLiteral("Hoitokate"), QStringLiteral("Poistot ja arvonalentumiset"),
              QStringLiteral("Rahoitustuotot ja -kulut"), ProfitCaption };
    const QString result = QStringLiteral("Tilikauden tulos");

    ShippedBook general { QStringLiteral("perusmalli"), QStringLiteral("mallit/perusmalli.mdb"), false,
        association, result, sections, QStringLiteral("Varsinaisen toiminnan tuotot"), true, false };
    ShippedBook demo = general;
    demo.name = QStringLiteral("demo1");
    demo.file = QStringLiteral("demo1.mdb");
    demo.demo = true;
    return {
        general,
        { QStringLiteral("aoymalli"), QStringLiteral("mallit/aoymalli.mdb"), false, housing,
            QStringLiteral("Hoitokate"), housing.mid(0, 2), QStringLiteral("Kiinteistön tuotot"), false,
            false },
        { QStringLiteral("metalli"), QStringLiteral("mallit/metalli.mdb"), false, association, result,
            sections, QStringLiteral("Varainhankinnan tuotot"), false, false },
        { QStringLiteral("lions"), QStringLiteral("mallit/lions.mdb"), false, lions, result, sections,
            QStringLiteral("Varainhankinnan tuotot"), false, true },
        demo,
    };
}

QStringList checkBook(const QSqlDatabase& db, int year)
{
    QStringList f;
    checkTables(db, f);
    const Book b(db, f);
    checkChart(b, f);
    checkTemplates(b, f);
    checkRows(b, f);
    checkAccountsInPair(b, f);
    checkFormulas(b, f);
    checkSides(b, f);
    checkTurnoverAndProfit(b, f);
    checkSettings(b, year, f);
    return f;
}

QStringList checkLayout(const QSqlDatabase& db, const ShippedBook& book)
{
    QStringList f;
    const Book b(db, f);
    const Template* income = b.income();
    if (!income)
        return f << QStringLiteral("Tuloslaskelmamallia ei ole");

    QStringList mains;
    for (const Row* r : b.mainRows(income->id))
        mains << r->caption;
    if (mains != book.incomeStatementMainRows)
        f << QStringLiteral("Tuloslaskelman päärivit ovat %1, pitää olla %2")
                 .arg(mains.join(QStringLiteral(", ")),
                     book.incomeStatementMainRows.join(QStringLiteral(", ")));

    const Row* result = nullptr;
    for (const Row* r : b.rowsOf(income->id))
        if (r->caption == book.resultRow && r->equation)
            result = r;
    if (!result) {
        f << QStringLiteral("Tuloslaskelmassa ei ole kaavariviä %1").arg(book.resultRow);
    } else {
        QStringList adds;
        for (const auto& [sign, id] : result->terms)
            adds << (sign < 0 ? QStringLiteral("-") : QString())
                    + (b.row(id) ? b.row(id)->caption : QString::number(id));
        if (adds != book.resultRowAdds)
            f << QStringLiteral("Kaavarivi %1 laskee yhteen %2, pitää olla %3")
                     .arg(book.resultRow, adds.join(QStringLiteral(", ")),
                         book.resultRowAdds.join(QStringLiteral(", ")));
    }

    for (const Row* r : b.rowsOf(income->id))
        if (r->turnover && r->caption != book.turnoverRow)
            f << QStringLiteral("Liikevaihtorivi on %1, pitää olla %2").arg(r->caption, book.turnoverRow);

    const auto accountNumbered = [&b](qint64 number) -> const Account* {
        for (const Account& a : b.accounts)
            if (a.number == number)
                return &a;
        return nullptr;
    };
    if (book.generalModel) {
        for (qint64 number : { 1900, 1910, 5000 })
            if (!accountNumbered(number))
                f << QStringLiteral("Yhdistyksen mallista puuttuu tili %1").arg(number);
        const Account* bank = accountNumbered(1910);
        if (!bank || b.setting(QStringLiteral("LaskettavaTili")) != QString::number(bank->id))
            f << QStringLiteral("LaskettavaTili ei ole pankkitili 1910");
    }
    if (book.activityMoneyApart) {
        qsizetype banks = 0;
        for (const Account& a : b.accounts)
            banks += inRange(a.number, 1910, 1919) ? 1 : 0;
        if (banks < 2)
            f << QStringLiteral("Hallinnon ja aktiviteettien rahoille ei ole kahta pankkitiliä");
        const Row* fund = nullptr;
        if (const Template* balance = b.balance())
            for (const Row* r : b.rowsOf(balance->id))
                if (r->caption == QLatin1String("Aktiviteettirahasto"))
                    fund = r;
        const Row* group = fund ? b.row(fund->parent) : nullptr;
        if (!group || group->caption != QStringLiteral("Oma pääoma") || fund->accounts.size() != 1
            || !b.account(fund->accounts.first())
            || !inRange(b.account(fund->accounts.first())->number, 2000, 2299))
            f << QStringLiteral(
                "Taseen Oma pääoma -ryhmässä ei ole Aktiviteettirahasto-riviä oman pääoman tilillä");
    }
    return f;
}

QStringList checkNoVouchers(const QSqlDatabase& db)
{
    QStringList f;
    const Rows counts = select(db,
        QStringLiteral("SELECT (SELECT COUNT(*) FROM \"to\"), (SELECT COUNT(*) FROM vi), "
                       "(SELECT COUNT(*) FROM toE), (SELECT COUNT(*) FROM viE)"),
        f);
    if (!counts.isEmpty()) {
        const QVariantList& c = counts.first();
        if (c[0].toLongLong() + c[1].toLongLong() + c[2].toLongLong() + c[3].toLongLong() != 0)
            f << QStringLiteral("Mallissa on tositteita tai vientejä: to %1, vi %2, toE %3, viE %4")
                     .arg(c[0].toString(), c[1].toString(), c[2].toString(), c[3].toString());
    }
    return f;
}

QStringList checkDemo(const QSqlDatabase& db, int year)
{
    QStringList f;
    const Book b(db, f);
    checkVouchers(db, b, year, f);
    return f;
}

QStringList checkShippedBook(const QSqlDatabase& db, const ShippedBook& book, int year)
{
    QStringList f = checkBook(db, year) + checkLayout(db, book);
    f += book.demo ? checkDemo(db, year) : checkNoVouchers(db);
    return f;
}

Totals totals(const QSqlDatabase& db)
{
    QStringList ignored;
    const Book b(db, ignored);
    return totalsOf(db, b, ignored);
}

} // namespace ModelChecks
