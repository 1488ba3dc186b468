#include "statements/TemplateChecks.h"

#include "accounts/ChartOfAccounts.h"
#include "core/DatabaseError.h"
#include "core/Dialogs.h"
#include "core/TemplateText.h"
#include "core/Transaction.h"
#include "statements/TemplateTree.h"
#include "statements/cMalli.h"

#include <QHash>
#include <QVariant>

namespace {

const QString Vastaavaa = QStringLiteral("Vastaavaa");
const QString Vastattavaa = QStringLiteral("Vastattavaa");
const QString Separator = QStringLiteral(" / ");

struct Template {
    qint32 id = 0;
    QString nimi;
    qint16 tyyppi = 0;
    TemplateTree tree;
};

std::vector<Template> templates(const QSqlDatabase& db, std::optional<qint32> only)
{
    QSqlQuery q = only
        ? Sql::run(db, QStringLiteral("SELECT maID, maNimi, maTyyppi FROM ma WHERE maID = ?"), { *only })
        : Sql::run(db, QStringLiteral("SELECT maID, maNimi, maTyyppi FROM ma ORDER BY maNimi, maID"));
    std::vector<Template> list;
    while (q.next())
        list.push_back(
            { q.value(0).toInt(), q.value(1).toString().trimmed(), qint16(q.value(2).toInt()), {} });
    for (Template& t : list)
        t.tree = TemplateTree::load(db, t.id);
    return list;
}

// The row's chain from its main group down to itself; a broken or circular chain stops where
// it breaks.
std::vector<const TemplateRow*> chain(const TemplateTree& tree, const TemplateRow& row)
{
    std::vector<const TemplateRow*> up { &row };
    const TemplateRow* r = &row;
    while (r->parent != 0 && up.size() <= tree.rows().size()) {
        r = tree.row(r->parent);
        if (!r)
            break;
        up.push_back(r);
    }
    return { up.rbegin(), up.rend() };
}

QString place(const Template& t, const TemplateRow& row)
{
    QStringList parts { t.nimi };
    for (const TemplateRow* r : chain(t.tree, row))
        parts.append(r->teksti.trimmed());
    return parts.join(Separator);
}

// The caption of the main group a row belongs to.
QString mainGroupOf(const Template& t, const TemplateRow& row)
{
    const std::vector<const TemplateRow*> c = chain(t.tree, row);
    return c.front()->parent == 0 ? c.front()->teksti.trimmed() : QString();
}

bool hasAccounts(const TemplateRow& r) { return !TemplateText::accounts(r.tilit).empty(); }

class Checker final {
public:
    Checker(const QSqlDatabase& db, std::optional<qint32> only)
        : m_db(db)
        , m_templates(templates(db, only))
    {
    }

    void formulaOrder()
    {
        for (const Template& t : m_templates) {
            QHash<qint32, int> position;
            const std::vector<const TemplateRow*> order = t.tree.printOrder();
            for (int i = 0; i < int(order.size()); ++i)
                position.insert(order[size_t(i)]->id, i);
            for (int i = 0; i < int(order.size()); ++i) {
                const TemplateRow& r = *order[size_t(i)];
                if (!r.equation)
                    continue;
                for (const TemplateText::Term& term : TemplateText::terms(r.kaava))
                    if (term.rowId && position.value(*term.rowId, -1) >= i) {
                        add(cMalliVirhe::KaavaJarjestys,
                            QStringLiteral("Kaavassa summausjärjestys on väärin."), place(t, r));
                        break;
                    }
            }
        }
    }

    // The accounts of the pair: named twice, or not at all.
    void accounts(TemplateChecks::Pair pair)
    {
        QHash<qint32, int> uses;
        QSqlQuery rows
            = Sql::run(m_db, QStringLiteral("SELECT mrTilit FROM mr WHERE mrmaID = ? OR mrmaID = ?"),
                { pair.tulos, pair.tase });
        while (rows.next())
            for (const QString& piece : rows.value(0).toString().split(u',', Qt::SkipEmptyParts)) {
                bool ok = false;
                const int id = piece.trimmed().toInt(&ok);
                if (ok && id > 0)
                    ++uses[id];
            }
        const std::vector<ChartOfAccounts::Account> accounts = ChartOfAccounts::accounts(m_db);
        for (const ChartOfAccounts::Account& a : accounts)
            if (uses.value(a.id) > 1)
                add(cMalliVirhe::SamaTili, QStringLiteral("Sama tili on mallissa useampaan kertaan."),
                    a.caption());
        for (const ChartOfAccounts::Account& a : accounts)
            if (uses.value(a.id) == 0)
                add(cMalliVirhe::TiliKayttamatta, QStringLiteral("Kaikki tilit eivät ole käytössä."),
                    a.caption());
    }

    void notChecked()
    {
        add(cMalliVirhe::EiTarkistettu, QStringLiteral("Ei tarkistettu: Onko kaikki tilit käytössä."),
            QStringLiteral(" "));
        add(cMalliVirhe::EiTarkistettu,
            QStringLiteral("Ei tarkistettu: Onko sama tili useampaan kertaan taseessa tai tuloslaskelmassa."),
            QStringLiteral(" "));
    }

    void rowChecks()
    {
        eachRow(cMalliVirhe::KaavaKayttamatta,
            QStringLiteral("Mallissa on luotu kaava, joka ei ole käytössä."),
            [](const Template&, const TemplateRow& r) {
                return !r.equation && !TemplateText::terms(r.kaava).empty();
            });
        for (const Template& t : m_templates) {
            const qsizetype profits = std::count_if(
                t.tree.rows().begin(), t.tree.rows().end(), [](const TemplateRow& r) { return r.voitto; });
            if (profits > 1)
                add(cMalliVirhe::VoittoRivit,
                    QStringLiteral("Mallissa on %1 riviä, jotka on merkitty Voitto / Tappio riviksi.")
                        .arg(profits),
                    t.nimi);
        }
        eachRow(cMalliVirhe::TiletPaaryhmassa, QStringLiteral("Mallissa on valittuna tilejä pääryhmään."),
            [](const Template&, const TemplateRow& r) { return r.hasChildren() && hasAccounts(r); });
        eachRow(cMalliVirhe::TiletJaKaava,
            QStringLiteral("Mallissa on valittuna sekä tilejä, että käytä kaavaa."),
            [](const Template&, const TemplateRow& r) { return r.equation && hasAccounts(r); });
        for (const Template& t : m_templates)
            for (const TemplateRow& r : t.tree.rows()) {
                if (!hasAccounts(r))
                    continue;
                const QString side = r.saldoPuoli.trimmed().toUpper();
                const QString group = t.tyyppi == cMalli::Tase ? mainGroupOf(t, r) : QString();
                QString message;
                if (t.tyyppi == cMalli::Tuloslaskelma && side == u"D")
                    message = QStringLiteral("Tuloslaskelmassa on valittuna saldopuoleksi debet.");
                else if (group == Vastattavaa && side == u"D")
                    message = QStringLiteral("Vastattavaa-puolella on valittuna saldopuoleksi debet.");
                else if (group == Vastaavaa && side == u"K")
                    message = QStringLiteral("Vastaavaa-puolella on valittuna saldopuoleksi kredit.");
                if (!message.isEmpty())
                    add(cMalliVirhe::Saldopuoli, message, place(t, r));
            }
        for (const Template& t : m_templates) {
            if (t.tyyppi != cMalli::Tase)
                continue;
            for (const TemplateRow* r : t.tree.mainRows())
                if (r->teksti.trimmed() != Vastaavaa && r->teksti.trimmed() != Vastattavaa)
                    add(cMalliVirhe::EiStandardi,
                        QStringLiteral("Tasemalli ei ole standardi.\nSuoraan mallin alla pitää olla vain "
                                       "'Vastaavaa' ja 'Vastattavaa' ryhmät."),
                        place(t, *r));
        }
    }

    std::vector<cMalliVirhe> findings() const { return m_findings; }

private:
    template <typename Test> void eachRow(cMalliVirhe::Tyyppi tyyppi, const QString& message, Test test)
    {
        for (const Template& t : m_templates)
            for (const TemplateRow* r : t.tree.printOrder())
                if (test(t, *r))
                    add(tyyppi, message, place(t, *r));
    }

    void add(cMalliVirhe::Tyyppi tyyppi, const QString& teksti, const QString& param)
    {
        m_findings.push_back({ tyyppi, teksti, param.isEmpty() ? QStringLiteral(" ") : param });
    }

    const QSqlDatabase& m_db;
    std::vector<Template> m_templates;
    std::vector<cMalliVirhe> m_findings;
};

} // namespace

namespace TemplateChecks {

std::vector<cMalliVirhe> run(const QSqlDatabase& db, Pair pair, std::optional<qint32> only)
{
    Checker checker(db, only);
    checker.formulaOrder();
    if (pair.complete())
        checker.accounts(pair);
    else
        checker.notChecked();
    checker.rowChecks();
    const std::vector<cMalliVirhe> findings = checker.findings();

    Transaction t(db);
    Sql::run(db, QStringLiteral("DELETE FROM tk"));
    QSqlQuery insert
        = Sql::prepare(db, QStringLiteral("INSERT INTO tk (tkTeksti, tkTyyppi, tkParam) VALUES (?, ?, ?)"));
    for (const cMalliVirhe& f : findings) {
        insert.addBindValue(f.teksti.left(255));
        insert.addBindValue(f.tyyppi);
        insert.addBindValue(f.param);
        Sql::exec(insert);
    }
    t.commitOrThrow();
    return findings;
}

Pair pairFor(const QSqlDatabase& db, qint32 maId)
{
    QSqlQuery q
        = Sql::run(db, QStringLiteral("SELECT maTyyppi, maTulosMaID FROM ma WHERE maID = ?"), { maId });
    if (!q.next())
        return {};
    if (q.value(0).toInt() == cMalli::Tase) {
        const qint32 tulos = q.value(1).toInt();
        const bool exists = tulos != 0
            && Sql::scalar(
                db, QStringLiteral("SELECT maID FROM ma WHERE maID = ? AND maTyyppi = 1"), { tulos })
                   .isValid();
        return { exists ? tulos : 0, maId };
    }
    const QVariant tase = Sql::scalar(
        db, QStringLiteral("SELECT MIN(maID) FROM ma WHERE maTyyppi = 2 AND maTulosMaID = ?"), { maId });
    return { maId, tase.isNull() ? 0 : tase.toInt() };
}

QString reportText(const std::vector<cMalliVirhe>& findings)
{
    if (findings.empty())
        return QStringLiteral("Tarkistus suoritettu virheettömästi.");
    QString text = QStringLiteral("Tarkistus suoritettu.");
    for (const cMalliVirhe& f : findings) {
        text += QStringLiteral("\n\n") + f.teksti;
        if (!f.param.trimmed().isEmpty())
            text += QStringLiteral("\nKohdassa:\n") + f.param;
    }
    return text;
}

QStringList listLines(const std::vector<cMalliVirhe>& findings)
{
    QStringList lines;
    for (const cMalliVirhe& f : findings) {
        QString line = QString(f.teksti).replace(u'\n', u' ');
        if (!f.param.trimmed().isEmpty())
            line += QStringLiteral(" -- Tarkista: ") + f.param;
        lines.append(line);
    }
    return lines;
}

std::optional<int> korjaaSaldopuolet(const QSqlDatabase& db, Pair pair)
{
    if (!Dialogs::instance().question(
            QStringLiteral("Tämä toiminto käy läpi tuloslaskelma ja tasemallin ja korjaa niiden saldopuoli "
                           "valinnan.\nHaluatko jatkaa?")))
        return std::nullopt;
    if (pair.tulos == 0 && pair.tase == 0) {
        Dialogs::instance().information(QStringLiteral("Valitse korjattava tulos- ja / tai tasemalli."));
        return std::nullopt;
    }
    std::vector<std::pair<qint32, QString>> changes;
    for (const qint32 id : { pair.tulos, pair.tase }) {
        if (id == 0)
            continue;
        const std::vector<Template> list = templates(db, id);
        for (const Template& t : list)
            for (const TemplateRow& r : t.tree.rows()) {
                QString wanted;
                if (t.tyyppi == cMalli::Tuloslaskelma)
                    wanted = QStringLiteral("K");
                else if (mainGroupOf(t, r) == Vastattavaa)
                    wanted = QStringLiteral("K");
                else if (mainGroupOf(t, r) == Vastaavaa)
                    wanted = QStringLiteral("D");
                if (!wanted.isEmpty() && r.saldoPuoli != wanted)
                    changes.emplace_back(r.id, wanted);
            }
    }
    Transaction t(db);
    for (const auto& [id, side] : changes)
        Sql::run(db, QStringLiteral("UPDATE mr SET mrSaldoPuoli = ? WHERE mrID = ?"), { side, id });
    t.commitOrThrow();
    Dialogs::instance().information(QStringLiteral("Korjaukset tehty."));
    return int(changes.size());
}

} // namespace TemplateChecks
