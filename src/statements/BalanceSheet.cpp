#include "statements/BalanceSheet.h"

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

// Filters of each year's sums after the linked income statement's two (the period and from the
// year's start): the current year's opening entries and change; the previous year's balance is
// the income statement's second, from its start to the date one year earlier.
enum Filter { Opening = 2, Change = 3, PreviousBalance = 1 };

const QString Assets = QStringLiteral("Vastaavaa");

class Builder {
public:
    Builder(const QSqlDatabase& db, const StatementOptions& o, qint32 incomeTemplateId)
        : m_db(db)
        , m_o(o)
        , m_incomeTemplateId(incomeTemplateId)
        , m_tree(TemplateTree::load(db, o.templateId))
    {
        // Each year is read once for both statements.
        m_income = m_o;
        m_income.templateId = m_incomeTemplateId;
        m_income.start = m_o.start.isValid() ? m_o.start : m_o.fiscalStart;
        m_income.groupsOnly = false;
        m_income.progress = nullptr;
        std::vector<qint32> accounts = m_tree.allAccounts();
        const std::vector<qint32> own = accounts;
        const std::vector<qint32> income = TemplateTree::load(db, m_incomeTemplateId).allAccounts();
        accounts.insert(accounts.end(), income.begin(), income.end());
        std::vector<EntryFilter> current = IncomeStatement::filters(m_income, FiscalYear::Current);
        current.push_back(EntryFilter::opening());
        current.push_back(EntryFilter::datedNotOpening(o.fiscalStart, o.end));
        m_current = EntrySums::read(db, FiscalYear::Current, accounts, current);
        m_previous = EntrySums::read(
            db, FiscalYear::Previous, accounts, IncomeStatement::filters(m_income, FiscalYear::Previous));
        if (o.perAccount)
            m_names = StatementAccounts::captions(db, own);
        m_result.noPreviousYear = !m_previous.hasEntries(PreviousBalance);
    }

    BalanceSheetLines build()
    {
        // The linked income statement first: its profit entries count on the balance sheet's
        // profit account, so that the balance sheet balances without a booked result.
        m_result.income
            = IncomeStatement::compute(m_db, m_income, IncomeStatementSums { m_current, m_previous });
        m_current.add(m_result.income->profit.entries);
        m_previous.add(m_result.income->profit.entries);
        const auto& main = m_tree.mainRows();
        for (size_t i = 0; i < main.size(); ++i) {
            const TemplateRow& r = *main[i];
            m_printGroup = r.teksti.trimmed().compare(Assets, Qt::CaseInsensitive) == 0 ? 1 : 2;
            if (r.equation) {
                profit(r, 0);
            } else if (r.hasChildren()) {
                group(r, 0);
            } else if (m_o.perAccount) {
                details(r, 1, false);
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
            m_previous.amount(accounts, side, PreviousBalance) };
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
    void details(const TemplateRow& r, qint16 level, bool ownTotal = true)
    {
        const std::vector<qint32> accounts = TemplateText::accounts(r.tilit);
        if (!m_o.perAccount || accounts.empty()) {
            add(TaseLine::Kind::Detail, level, r, amounts(accounts, r.saldoPuoli));
            return;
        }
        // The row's caption, its accounts beneath it and its own total; a main row's total
        // follows anyway.
        if (ownTotal)
            add(TaseLine::Kind::Header, level, r);
        const qint16 below = ownTotal ? qint16(level + 1) : level;
        for (qint32 id : accounts) {
            TaseLine& line = add(TaseLine::Kind::Detail, below, r, amounts({ id }, r.saldoPuoli));
            line.teksti = m_names.value(id, r.teksti);
            line.tlId = id;
            line.viTyyppi = r.saldoPuoli;
        }
        if (ownTotal)
            add(TaseLine::Kind::Subtotal, level, r, amounts(accounts, r.saldoPuoli));
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
    StatementOptions m_income;
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

namespace {

// Assets less liabilities, opening balance and change apart; with whether both sides were found.
std::pair<TaseLine, bool> sideDifference(const BalanceSheetLines& sheet)
{
    TaseLine difference;
    bool found[2] = { false, false };
    for (const TaseLine& line : sheet.lines) {
        // Main-level totals of the template's own rows (not the line telling the difference).
        if (line.level != 0 || line.kind != TaseLine::Kind::Total || line.mrId == 0)
            continue;
        const bool assets = line.printGroup == 1;
        difference.alkusaldo += assets ? line.alkusaldo : -line.alkusaldo;
        difference.muutos += assets ? line.muutos : -line.muutos;
        found[assets ? 0 : 1] = true;
    }
    return { difference, found[0] && found[1] };
}

} // namespace

Money imbalance(const BalanceSheetLines& sheet)
{
    const auto [difference, found] = sideDifference(sheet);
    return found ? difference.loppusaldo() : Money();
}

QString imbalanceMessage(Money difference)
{
    return QStringLiteral(
        "Tase ei täsmää: vastaavaa ja vastattavaa eroavat %1. Erotus näkyy myös tulosteessa.\n"
        "Tarkista mallit (Työkalut > Tarkista mallit): jokaisen tilin, jolla on vientejä, pitää "
        "olla tuloslaskelman tai taseen jollakin rivillä.")
        .arg(difference.toCurrencyString());
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
    if (auto [line, found] = sideDifference(sheet); found && !line.loppusaldo().isZero()) {
        TaseLine separator;
        separator.kind = TaseLine::Kind::Separator;
        separator.printGroup = 2;
        line.kind = TaseLine::Kind::Total;
        line.teksti = QStringLiteral("TASE EI TÄSMÄÄ: vastaavaa - vastattavaa");
        line.printGroup = 2;
        lines.push_back(separator);
        lines.push_back(line);
    }
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
    const bool noPrevious = sheet.noPreviousYear;
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
            q.addBindValue(noPrevious ? noNumber : money(line.loppusaldoEdellinen));
            q.addBindValue(noPrevious ? noNumber : money(change));
            q.addBindValue(pct && !noPrevious ? QVariant(*pct) : noPercent);
        } else {
            for (int i = 0; i < 5; ++i)
                q.addBindValue(noNumber);
            q.addBindValue(noPercent);
        }
        Sql::exec(q);
    }
}

bool run(const QSqlDatabase& db, const StatementOptions& options, Money* difference)
{
    const qint32 income = incomeTemplateOf(db, options.templateId);
    if (income == 0) {
        Dialogs::instance().information(noIncomeStatementMessage());
        return false;
    }
    Schema::createWorkTables(db);
    Transaction t(db);
    Sql::run(db, QStringLiteral("DELETE FROM tula"));
    Sql::run(db, QStringLiteral("DELETE FROM tase"));
    BalanceSheetLines sheet = compute(db, options, income);
    if (sheet.income)
        IncomeStatement::write(db, *sheet.income);
    if (difference)
        *difference = imbalance(sheet);
    finish(sheet, options.groupsOnly);
    write(db, sheet);
    t.commitOrThrow();
    return true;
}

} // namespace BalanceSheet
