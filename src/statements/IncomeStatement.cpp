#include "statements/IncomeStatement.h"

#include "core/DatabaseError.h"
#include "core/Dialogs.h"
#include "core/Schema.h"
#include "core/TemplateText.h"
#include "core/Transaction.h"
#include "statements/EntrySums.h"
#include "statements/StatementAccounts.h"
#include "statements/StatementRows.h"
#include "statements/TemplateTree.h"

#include <QHash>
#include <QVariant>

namespace {

struct Amounts {
    Money kuluva, kuluvaAlusta, edellinen, edellinenAlusta;
};

// Filters of the two years' queries, in this order.
enum Filter { Period = 0, FromYearStart = 1 };

class Builder {
public:
    Builder(const QSqlDatabase& db, const StatementOptions& o, std::optional<IncomeStatementSums> sums)
        : m_db(db)
        , m_o(o)
        , m_tree(TemplateTree::load(db, o.templateId))
    {
        const std::vector<qint32> accounts = m_tree.allAccounts();
        if (sums) {
            m_current = std::move(sums->current);
            m_previous = std::move(sums->previous);
        } else {
            m_current = EntrySums::read(
                db, FiscalYear::Current, accounts, IncomeStatement::filters(o, FiscalYear::Current));
            m_previous = EntrySums::read(
                db, FiscalYear::Previous, accounts, IncomeStatement::filters(o, FiscalYear::Previous));
        }
        if (o.perAccount)
            m_names = StatementAccounts::captions(db, accounts);
        m_result.noPreviousPeriod = !m_previous.hasEntries(Period);
        m_result.noPreviousYear = !m_previous.hasEntries(FromYearStart);
    }

    IncomeStatementLines build()
    {
        // The year's result counts on the profit rows as if it were booked.
        m_result.profit = ProfitEntries::fromSums(
            m_tree, m_current, m_previous, Period, FromYearStart, m_o.start, m_o.end);
        if (!m_result.profit.posted)
            Dialogs::instance().information(m_result.profit.refusal);
        m_current.add(m_result.profit.entries);
        m_previous.add(m_result.profit.entries);
        turnover();
        const auto& main = m_tree.mainRows();
        for (size_t i = 0; i < main.size(); ++i) {
            const TemplateRow& r = *main[i];
            if (r.equation) {
                formula(r, 0);
            } else if (r.hasChildren()) {
                group(r, 0);
            } else if (m_o.perAccount) {
                // Each account on a line of its own, then the row's total, which formulas and the
                // balance sheet's profit line find by the row's caption.
                details(r, 1, false);
                total(r, 0, amounts(TemplateText::accounts(r.tilit), r.saldoPuoli));
            } else {
                total(r, 0, amounts(TemplateText::accounts(r.tilit), r.saldoPuoli));
                separator(0);
            }
            if (m_o.progress)
                m_o.progress(int(i) + 1, int(main.size()));
        }
        return std::move(m_result);
    }

private:
    void turnover()
    {
        const TemplateRow* row = nullptr;
        for (const TemplateRow& r : m_tree.rows())
            if (r.liikevaihto && (!row || r.id < row->id))
                row = &r;
        if (!row) {
            Dialogs::instance().information(QStringLiteral(
                "Liikevaihtoriviä ei ole määritelty.\nSuhdelukuja liikevaihtoon ei voida laskea ilman "
                "liikevaihtorivin määrittelyä."));
            return;
        }
        const std::vector<qint32> accounts = m_tree.subtreeAccounts(*row);
        m_result.turnoverPeriod = m_current.amount(accounts, row->saldoPuoli, Period);
        m_result.turnoverYear = m_current.amount(accounts, row->saldoPuoli, FromYearStart);
    }

    Amounts amounts(const std::vector<qint32>& accounts, const QString& side) const
    {
        return { m_current.amount(accounts, side, Period), m_current.amount(accounts, side, FromYearStart),
            m_previous.amount(accounts, side, Period), m_previous.amount(accounts, side, FromYearStart) };
    }

    TulaLine& add(
        TulaLine::Kind kind, qint16 level, const QString& teksti, qint32 mrId, const Amounts& a = {})
    {
        TulaLine line;
        line.kind = kind;
        line.level = level;
        line.teksti = teksti;
        line.mrId = mrId;
        line.kuluva = a.kuluva;
        line.kuluvaAlusta = a.kuluvaAlusta;
        line.edellinen = a.edellinen;
        line.edellinenAlusta = a.edellinenAlusta;
        m_result.lines.push_back(line);
        return m_result.lines.back();
    }

    void total(const TemplateRow& r, qint16 level, const Amounts& a)
    {
        add(TulaLine::Kind::Total, level, r.teksti, r.id, a);
    }
    void separator(qint16 level) { add(TulaLine::Kind::Separator, level, QString(), 0); }

    // A lowest-level row as ordinary lines: one for its accounts, or, account by account, its
    // caption, a line per account and the row's own total. `ownTotal` is false for a main row,
    // whose total line follows anyway.
    void details(const TemplateRow& r, qint16 level, bool ownTotal = true)
    {
        const std::vector<qint32> accounts = TemplateText::accounts(r.tilit);
        if (!m_o.perAccount || accounts.empty()) {
            add(TulaLine::Kind::Detail, level, r.teksti, r.id, amounts(accounts, r.saldoPuoli));
            return;
        }
        if (ownTotal)
            add(TulaLine::Kind::Header, level, r.teksti, r.id);
        const qint16 below = ownTotal ? qint16(level + 1) : level;
        for (qint32 id : accounts)
            add(TulaLine::Kind::Detail, below, m_names.value(id, r.teksti), r.id,
                amounts({ id }, r.saldoPuoli));
        if (ownTotal)
            add(TulaLine::Kind::Subtotal, level, r.teksti, r.id, amounts(accounts, r.saldoPuoli));
    }

    // Header, the rows below, the total of every ordinary line below at any depth, a separator.
    void group(const TemplateRow& r, qint16 level)
    {
        const size_t header = m_result.lines.size();
        add(TulaLine::Kind::Header, level, r.teksti, r.id);
        for (const TemplateRow* child : r.children) {
            if (child->equation)
                formula(*child, qint16(level + 1));
            else if (child->hasChildren())
                group(*child, qint16(level + 1));
            else
                details(*child, qint16(level + 1));
        }
        Amounts sum;
        for (size_t i = header + 1; i < m_result.lines.size(); ++i) {
            const TulaLine& line = m_result.lines[i];
            if (line.kind != TulaLine::Kind::Detail)
                continue;
            sum.kuluva += line.kuluva;
            sum.kuluvaAlusta += line.kuluvaAlusta;
            sum.edellinen += line.edellinen;
            sum.edellinenAlusta += line.edellinenAlusta;
        }
        total(r, level, sum);
        separator(level);
    }

    // The terms left to right, each the total line already written for the row it names; a
    // row computed later, or missing, adds nothing.
    void formula(const TemplateRow& r, qint16 level)
    {
        Amounts sum;
        for (const TemplateText::Term& term : TemplateText::terms(r.kaava)) {
            if (!term.rowId)
                continue;
            const std::optional<QString> caption = captionOf(*term.rowId);
            if (!caption)
                continue;
            IncomeStatement::checkLookupCaption(*caption);
            const TulaLine* found = IncomeStatement::findTotal(m_result.lines, *caption);
            if (!found)
                continue;
            const auto signed_ = [&term](Money m) { return term.adds() ? m : -m; };
            sum.kuluva += signed_(found->kuluva);
            sum.kuluvaAlusta += signed_(found->kuluvaAlusta);
            sum.edellinen += signed_(found->edellinen);
            sum.edellinenAlusta += signed_(found->edellinenAlusta);
        }
        total(r, level, sum);
    }

    // A formula may name a row of any template, as the row is found by its key alone.
    std::optional<QString> captionOf(qint32 id)
    {
        if (const TemplateRow* row = m_tree.row(id))
            return row->teksti;
        if (!m_otherCaptions.contains(id)) {
            const QVariant caption
                = Sql::scalar(m_db, QStringLiteral("SELECT mrTeksti FROM mr WHERE mrID = ?"), { id });
            m_otherCaptions.insert(
                id, caption.isValid() ? std::optional<QString>(caption.toString()) : std::nullopt);
        }
        return m_otherCaptions.value(id);
    }

    QSqlDatabase m_db;
    const StatementOptions& m_o;
    TemplateTree m_tree;
    EntrySums m_current;
    EntrySums m_previous;
    QHash<qint32, QString> m_names;
    QHash<qint32, std::optional<QString>> m_otherCaptions;
    IncomeStatementLines m_result;
};

QVariant money(Money m) { return QVariant(m.raw()); }

QVariant percent(std::optional<double> p)
{
    return p ? QVariant(*p) : QVariant(QMetaType(QMetaType::Double));
}

} // namespace

namespace IncomeStatement {

std::optional<double> percentage(Money part, Money divisor)
{
    if (divisor.isZero())
        return std::nullopt;
    return double(part.raw()) / double(divisor.raw()) * 100.0;
}

const TulaLine* findTotal(const std::vector<TulaLine>& lines, const QString& caption)
{
    for (const TulaLine& line : lines)
        if (line.kind == TulaLine::Kind::Total && line.teksti.compare(caption, Qt::CaseInsensitive) == 0)
            return &line;
    return nullptr;
}

void checkLookupCaption(const QString& caption)
{
    if (caption.contains(u'\''))
        throw DatabaseError(QStringLiteral("Rivin \"%1\" nimessä on heittomerkki ('), joten sen summaa ei "
                                           "voi hakea kaavaan. Poista heittomerkki rivin nimestä.")
                                .arg(caption));
}

IncomeStatementLines compute(
    const QSqlDatabase& db, const StatementOptions& options, std::optional<IncomeStatementSums> sums)
{
    return Builder(db, options, std::move(sums)).build();
}

std::vector<EntryFilter> filters(const StatementOptions& o, FiscalYear year)
{
    if (year == FiscalYear::Current)
        return { EntryFilter::dated(o.start, o.end), EntryFilter::dated(o.fiscalStart, o.end) };
    return { EntryFilter::dated(o.start.addYears(-1), o.end.addYears(-1)),
        EntryFilter::dated(o.previousFiscalStart, o.end.addYears(-1)) };
}

void finish(IncomeStatementLines& statement, bool groupsOnly)
{
    std::vector<TulaLine>& lines = statement.lines;
    if (groupsOnly)
        std::erase_if(lines, [](const TulaLine& line) { return line.level != 0; });
    // The last line of the main pass is the separator after the last total; a statement that
    // ends in a formula line keeps it.
    if (!lines.empty() && lines.back().kind == TulaLine::Kind::Separator)
        lines.pop_back();
}

void write(const QSqlDatabase& db, const IncomeStatementLines& statement)
{
    QSqlQuery q = Sql::prepare(db,
        QStringLiteral(
            "INSERT INTO tula (tulaTyyppi, tulaTeksti, tulamrID, tulaMerkki, tulaIsGroupRow, "
            "tulaToteutunutKuluva, tulaToteutunutKuluvaAlusta, tulaToteutunutEdellinen, "
            "tulaToteutunutEdellinenAlusta, tulaMuutosAlusta, tulaProsLvastaKuluva, tulaProsMuutos, "
            "tulaProsLvastaKuluvaAlusta, tulaProsMuutosAlusta) "
            "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    const QVariant noNumber(QMetaType(QMetaType::LongLong));
    const QVariant noPercent(QMetaType(QMetaType::Double));
    const bool noPeriod = statement.noPreviousPeriod;
    const bool noYear = statement.noPreviousYear;
    for (const TulaLine& line : statement.lines) {
        StatementRows::bindHeading(q, line);
        if (line.hasAmounts()) {
            q.addBindValue(money(line.kuluva));
            q.addBindValue(money(line.kuluvaAlusta));
            q.addBindValue(noPeriod ? noNumber : money(line.edellinen));
            q.addBindValue(noYear ? noNumber : money(line.edellinenAlusta));
            q.addBindValue(noYear ? noNumber : money(line.kuluvaAlusta - line.edellinenAlusta));
            q.addBindValue(percent(percentage(line.kuluva, statement.turnoverPeriod)));
            q.addBindValue(
                noPeriod ? noPercent : percent(percentage(line.kuluva - line.edellinen, line.edellinen)));
            q.addBindValue(percent(percentage(line.kuluvaAlusta, statement.turnoverYear)));
            q.addBindValue(noYear
                    ? noPercent
                    : percent(percentage(line.kuluvaAlusta - line.edellinenAlusta, line.edellinenAlusta)));
        } else {
            for (int i = 0; i < 5; ++i)
                q.addBindValue(noNumber);
            for (int i = 0; i < 4; ++i)
                q.addBindValue(noPercent);
        }
        Sql::exec(q);
    }
}

void run(const QSqlDatabase& db, const StatementOptions& options)
{
    Schema::createWorkTables(db);
    Transaction t(db);
    Sql::run(db, QStringLiteral("DELETE FROM tula"));
    Sql::run(db, QStringLiteral("DELETE FROM tase"));
    IncomeStatementLines statement = compute(db, options);
    finish(statement, options.groupsOnly);
    write(db, statement);
    t.commitOrThrow();
}

} // namespace IncomeStatement
