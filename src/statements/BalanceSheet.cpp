#include "BalanceSheet.h"

#include "DatabaseError.h"
#include "Dialogs.h"
#include "EntrySums.h"
#include "StatementAccounts.h"
#include "StatementRows.h"
#include "TemplateText.h"
#include "TemplateTree.h"
#include "Transaction.h"

#include <QHash>
#include <QVariant>

namespace {

// Filters of the current year's query, in this order; the previous year has one.
enum Filter { Opening = 0, Change = 1 };

const QString Assets = QStringLiteral("Vastaavaa");

class Builder {
public:
    Builder(const QSqlDatabase& db, const StatementOptions& o, qint32 incomeTemplateId)
        : m_db(db)
        , m_o(o)
        , m_incomeTemplateId(incomeTemplateId)
        , m_tree(TemplateTree::load(db, o.templateId))
    {
        const std::vector<qint32> accounts = m_tree.allAccounts();
        m_current = EntrySums::read(db, FiscalYear::Current, accounts,
            { EntryFilter::opening(), EntryFilter::datedNotOpening(o.fiscalStart, o.end) });
        m_previous = EntrySums::read(db, FiscalYear::Previous, accounts,
            { EntryFilter::dated(o.previousFiscalStart, o.end.addYears(-1)) });
        if (o.perAccount)
            m_names = StatementAccounts::captions(db, accounts);
    }

    BalanceSheetLines build()
    {
        const auto& main = m_tree.mainRows();
        for (size_t i = 0; i < main.size(); ++i) {
            const TemplateRow& r = *main[i];
            m_printGroup = r.teksti.trimmed().compare(Assets, Qt::CaseInsensitive) == 0 ? 1 : 2;
            if (r.equation) {
                profit(r, 0);
            } else if (r.hasChildren()) {
                group(r, 0);
            } else if (m_o.perAccount) {
                details(r, 1);
                add(TaseLine::Kind::Total, 0, r, amounts(TemplateText::accounts(r.tilit), r.saldoPuoli));
            } else {
                add(TaseLine::Kind::Total, 0, r, amounts(TemplateText::accounts(r.tilit), r.saldoPuoli));
                separator(0);
            }
            if (m_o.progress)
                m_o.progress(int(i) + 1, int(main.size()));
        }
        return std::move(m_result);
    }

private:
    struct Amounts {
        Money alkusaldo, muutos, edellinen;
    };

    Amounts amounts(const std::vector<qint32>& accounts, const QString& side) const
    {
        return { m_current.amount(accounts, side, Opening), m_current.amount(accounts, side, Change),
            m_previous.amount(accounts, side, 0) };
    }

    TaseLine& add(TaseLine::Kind kind, qint16 level, const TemplateRow& r, const Amounts& a = {})
    {
        TaseLine line;
        line.kind = kind;
        line.level = level;
        line.teksti = r.teksti;
        line.mrId = r.id;
        line.tlId = r.tlId;
        line.viTyyppi = r.viTyyppi;
        line.printGroup = m_printGroup;
        line.alkusaldo = a.alkusaldo;
        line.muutos = a.muutos;
        line.loppusaldoEdellinen = a.edellinen;
        m_result.lines.push_back(line);
        return m_result.lines.back();
    }

    void separator(qint16 level)
    {
        TaseLine line;
        line.kind = TaseLine::Kind::Separator;
        line.level = level;
        line.printGroup = m_printGroup;
        m_result.lines.push_back(line);
    }

    // With the per-account breakdown each account is a line of its own that carries the
    // account and the row's side, from which the fiscal year change carries the closing
    // balance forward.
    void details(const TemplateRow& r, qint16 level)
    {
        const std::vector<qint32> accounts = TemplateText::accounts(r.tilit);
        if (!m_o.perAccount || accounts.empty()) {
            add(TaseLine::Kind::Detail, level, r, amounts(accounts, r.saldoPuoli));
            return;
        }
        for (qint32 id : accounts) {
            TaseLine& line = add(TaseLine::Kind::Detail, level, r, amounts({ id }, r.saldoPuoli));
            line.teksti = m_names.value(id, r.teksti);
            line.tlId = id;
            line.viTyyppi = r.saldoPuoli;
        }
    }

    void group(const TemplateRow& r, qint16 level)
    {
        const size_t header = m_result.lines.size();
        add(TaseLine::Kind::Header, level, r);
        for (const TemplateRow* child : r.children) {
            if (child->equation)
                profit(*child, qint16(level + 1));
            else if (child->hasChildren())
                group(*child, qint16(level + 1));
            else
                details(*child, qint16(level + 1));
        }
        // Profit lines are total lines, so the group's total leaves them out.
        Amounts sum;
        for (size_t i = header + 1; i < m_result.lines.size(); ++i) {
            const TaseLine& line = m_result.lines[i];
            if (line.kind != TaseLine::Kind::Detail)
                continue;
            sum.alkusaldo += line.alkusaldo;
            sum.muutos += line.muutos;
            sum.edellinen += line.loppusaldoEdellinen;
        }
        add(TaseLine::Kind::Total, level, r, sum);
        separator(level);
    }

    // The year's result from the linked income statement's profit row. The income statement
    // named by the template (maTulosMaID) is the one used, whatever the row's formula names.
    // Without a profit row the line holds zeros.
    void profit(const TemplateRow& r, qint16 level)
    {
        if (!m_result.income) {
            StatementOptions income = m_o;
            income.templateId = m_incomeTemplateId;
            income.start = m_o.start.isValid() ? m_o.start : m_o.fiscalStart;
            income.groupsOnly = false;
            income.progress = nullptr;
            m_result.income = IncomeStatement::compute(m_db, income);
        }
        Amounts a;
        const QVariant caption = Sql::scalar(m_db,
            QStringLiteral(
                "SELECT mrTeksti FROM mr WHERE mrmaID = ? AND mrIsVoitto <> 0 ORDER BY mrID LIMIT 1"),
            { m_incomeTemplateId });
        if (caption.isValid()) {
            IncomeStatement::checkLookupCaption(caption.toString());
            if (const TulaLine* found
                = IncomeStatement::findTotal(m_result.income->lines, caption.toString())) {
                a.muutos = found->kuluvaAlusta;
                a.edellinen = found->edellinenAlusta;
            }
        }
        add(TaseLine::Kind::Total, level, r, a);
    }

    QSqlDatabase m_db;
    const StatementOptions& m_o;
    qint32 m_incomeTemplateId = 0;
    TemplateTree m_tree;
    EntrySums m_current;
    EntrySums m_previous;
    QHash<qint32, QString> m_names;
    qint16 m_printGroup = 0;
    BalanceSheetLines m_result;
};

QVariant money(Money m) { return QVariant(m.raw()); }

} // namespace

namespace BalanceSheet {

QString noIncomeStatementMessage()
{
    return QStringLiteral(
        "Tasemallille ei ole määritelty tuloslaskelmaa, jonka perusteella tilikauden voitto kirjataan.");
}

qint32 incomeTemplateOf(const QSqlDatabase& db, qint32 balanceTemplateId)
{
    return Sql::scalar(db, QStringLiteral("SELECT maTulosMaID FROM ma WHERE maID = ?"), { balanceTemplateId })
        .toInt();
}

BalanceSheetLines compute(const QSqlDatabase& db, const StatementOptions& options, qint32 incomeTemplateId)
{
    return Builder(db, options, incomeTemplateId).build();
}

void finish(BalanceSheetLines& sheet, bool groupsOnly)
{
    std::vector<TaseLine>& lines = sheet.lines;
    if (groupsOnly)
        std::erase_if(lines, [](const TaseLine& line) { return line.level != 0; });
    // No empty line after a main-level total ("Vastaavaa", "Vastattavaa"). Only a separator
    // goes: a total followed directly by another line keeps that line.
    std::vector<TaseLine> kept;
    kept.reserve(lines.size());
    for (size_t i = 0; i < lines.size(); ++i) {
        const bool afterMainTotal
            = i > 0 && lines[i - 1].kind == TaseLine::Kind::Total && lines[i - 1].level == 0;
        if (!(afterMainTotal && lines[i].kind == TaseLine::Kind::Separator))
            kept.push_back(lines[i]);
    }
    lines = std::move(kept);
}

void write(const QSqlDatabase& db, const BalanceSheetLines& sheet)
{
    QSqlQuery q = Sql::prepare(db,
        QStringLiteral(
            "INSERT INTO tase (taseTyyppi, taseteksti, tasemrID, taseMerkki, taseIsGroupRow, tasetlID, "
            "taseviTyyppi, tasePrintGroup, taseAlkusaldo, taseMuutos, taseLoppusaldo, "
            "taseLoppusaldoEdellinen, taseMuutosEdelliseen, taseMuutosProsEdelliseen) "
            "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    const QVariant noText(QMetaType(QMetaType::QString));
    const QVariant noNumber(QMetaType(QMetaType::LongLong));
    const QVariant noPercent(QMetaType(QMetaType::Double));
    for (const TaseLine& line : sheet.lines) {
        const bool separator = line.kind == TaseLine::Kind::Separator;
        StatementRows::bindHeading(q, line);
        q.addBindValue(separator ? noNumber : QVariant(line.tlId));
        q.addBindValue(separator ? noText : QVariant(line.viTyyppi));
        q.addBindValue(line.printGroup);
        if (line.hasAmounts()) {
            const Money change = line.loppusaldo() - line.loppusaldoEdellinen;
            const std::optional<double> pct = IncomeStatement::percentage(change, line.loppusaldoEdellinen);
            q.addBindValue(money(line.alkusaldo));
            q.addBindValue(money(line.muutos));
            q.addBindValue(money(line.loppusaldo()));
            q.addBindValue(money(line.loppusaldoEdellinen));
            q.addBindValue(money(change));
            q.addBindValue(pct ? QVariant(*pct) : noPercent);
        } else {
            for (int i = 0; i < 5; ++i)
                q.addBindValue(noNumber);
            q.addBindValue(noPercent);
        }
        Sql::exec(q);
    }
}

bool run(const QSqlDatabase& db, const StatementOptions& options)
{
    const qint32 income = incomeTemplateOf(db, options.templateId);
    if (income == 0) {
        Dialogs::instance().information(noIncomeStatementMessage());
        return false;
    }
    Transaction t(db);
    Sql::run(db, QStringLiteral("DELETE FROM tula"));
    Sql::run(db, QStringLiteral("DELETE FROM tase"));
    BalanceSheetLines sheet = compute(db, options, income);
    if (sheet.income)
        IncomeStatement::write(db, *sheet.income);
    finish(sheet, options.groupsOnly);
    write(db, sheet);
    t.commitOrThrow();
    return true;
}

} // namespace BalanceSheet
