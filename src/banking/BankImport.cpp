#include "banking/BankImport.h"

#include "accounts/AccountLookup.h"
#include "accounts/ChartOfAccounts.h"
#include "banking/References.h"
#include "core/DatabaseError.h"
#include "core/Dates.h"
#include "core/ProgramSettings.h"
#include "core/RecordText.h"
#include "core/SettingsStore.h"
#include "core/Transaction.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>

namespace BankImport {

namespace {

QString nameKey(const QString& name) { return name.simplified().toLower(); }

// The words a message teaches: four letters or more, in small letters.
QStringList words(const QString& message)
{
    static const QRegularExpression separators(QStringLiteral("[^\\p{L}]+"));
    QStringList out;
    for (const QString& w : message.toLower().split(separators, Qt::SkipEmptyParts))
        if (w.size() >= 4 && !out.contains(w))
            out.append(w);
    return out;
}

// What the lines stored before teach, the latest line winning.
class Memory {
public:
    // Lines still on the suspense account teach nothing.
    Memory(const QSqlDatabase& db, const AccountLookup& chart, qint32 suspense)
    {
        // The counter-entry as the voucher holds it now (the treasurer may have corrected it),
        // else as it was stored.
        QSqlQuery q = Sql::run(db,
            QStringLiteral(
                "SELECT bl.blReference, bl.blCounterpartyAccount, bl.blCounterparty, bl.blMessage, "
                "COALESCE((SELECT vi.vitlID FROM vi WHERE vi.vitoID = bl.blVoucher AND vi.vitlID <> "
                "bl.blAccount ORDER BY vi.viArvo DESC, vi.viID LIMIT 1), bl.blCounterAccount) "
                "FROM BankLines bl ORDER BY bl.blID"));
        int order = 0;
        while (q.next()) {
            const qint32 account = q.value(4).toInt();
            if (chart.text(account).isEmpty() || account == suspense)
                continue;
            ++order;
            const QString reference = References::usable(q.value(0).toString());
            if (!reference.isEmpty())
                m_byReference.insert(reference, account);
            if (!q.value(1).toString().isEmpty())
                m_byAccount.insert(q.value(1).toString(), account);
            if (!nameKey(q.value(2).toString()).isEmpty())
                m_byName.insert(nameKey(q.value(2).toString()), account);
            for (const QString& w : words(q.value(3).toString()))
                m_byWord.insert(w, { account, order });
        }
    }

    std::pair<qint32, Source> teach(const BankLine& line) const
    {
        const QString reference = References::usable(line.reference);
        if (const qint32 a = m_byReference.value(reference); !reference.isEmpty() && a)
            return { a, Source::Reference };
        if (const qint32 a = m_byAccount.value(line.counterpartyAccount);
            !line.counterpartyAccount.isEmpty() && a)
            return { a, Source::CounterpartyAccount };
        if (const qint32 a = m_byName.value(nameKey(line.counterparty)); a)
            return { a, Source::CounterpartyName };
        // The account most of the message's words point to; of equals, the latest.
        QHash<qint32, std::pair<int, int>> score; // account → (words, latest order)
        for (const QString& w : words(line.message)) {
            const auto it = m_byWord.constFind(w);
            if (it == m_byWord.constEnd())
                continue;
            auto& s = score[it->first];
            ++s.first;
            s.second = std::max(s.second, it->second);
        }
        qint32 best = 0;
        std::pair<int, int> bestScore { 0, 0 };
        for (auto it = score.cbegin(); it != score.cend(); ++it)
            if (it.value() > bestScore) {
                bestScore = it.value();
                best = it.key();
            }
        return best ? std::pair { best, Source::Words } : std::pair { 0, Source::Suspense };
    }

private:
    QHash<QString, qint32> m_byReference, m_byAccount, m_byName;
    QHash<QString, std::pair<qint32, int>> m_byWord;
};

// "1910 Pankkitili"; the bare key of an account no longer in the chart.
QString caption(const AccountLookup& chart, qint32 tlId)
{
    const QString text = chart.text(tlId);
    return text.isEmpty() ? QString::number(tlId) : text;
}

} // namespace

int Plan::linesIn(State state) const
{
    return int(std::count_if(
        proposals.begin(), proposals.end(), [state](const Proposal& p) { return p.state == state; }));
}

SuspenseOffer suspenseOffer(const QSqlDatabase& db)
{
    for (const qint32 numero : { 1890, 1899, 1990, 2890, 2990, 1999, 2999 })
        if (Sql::scalar(db, QStringLiteral("SELECT 1 FROM tl WHERE tlNumero = ?"), { numero }).isNull())
            return { numero, QStringLiteral("Selvittelytili") };
    return { 0, {} };
}

CreatedSuspense createSuspenseAccount(const QSqlDatabase& db, const SuspenseOffer& offer)
{
    Transaction t(db);
    ChartOfAccounts::Tarkistus refusal;
    CreatedSuspense created;
    created.tlId = ChartOfAccounts::lisaaTili(db, QString::number(offer.numero), offer.nimi,
        QStringLiteral("Tiliotteen rivit, joille ei löytynyt tiliä"), &refusal);
    if (!created.tlId)
        throw DatabaseError(refusal.viesti);
    const ChartOfAccounts::Sijoitus place = ChartOfAccounts::sijoitus(db, created.tlId);
    ChartOfAccounts::lisaaRiveille(db, created.tlId, place.rivit);
    for (const ChartOfAccounts::MalliRivi& r : place.rivit)
        created.rows.append(r.malli + QStringLiteral(": ") + r.rivi);
    DbSettingsStore settings(db);
    if (!settings.write(ChartOfAccounts::suspenseKey(), QString::number(created.tlId)))
        throw DatabaseError(QStringLiteral("Selvittelytilin asetusta ei voitu tallentaa."));
    t.commitOrThrow();
    // In force at once, so that the settings window shows it and its save keeps it.
    ProgramSettings::bookkeeping().Selvittelytili = created.tlId;
    return created;
}

QString description(const BankLine& line)
{
    QString what = line.message;
    if (what.isEmpty() && !line.reference.isEmpty())
        what = QStringLiteral("viite ") + References::compact(line.reference);
    QString text = line.counterparty;
    if (!what.isEmpty())
        text = text.isEmpty() ? what : text + QStringLiteral(" / ") + what;
    if (line.reversal)
        text = QStringLiteral("Palautus: ") + text;
    return RecordText::cut(text.simplified(), RecordText::DescriptionLength);
}

Plan propose(const QSqlDatabase& db, const BankStatement& statement, qint32 bankAccount,
    const QDate& yearStart, const QDate& yearEnd)
{
    Plan plan;
    plan.iban = statement.iban;
    plan.bankAccount = bankAccount;
    AccountLookup chart;
    chart.load(db);
    const QString bank = chart.text(bankAccount);
    if (bank.isEmpty()) {
        plan.error = QStringLiteral("Pankkitiliä ei ole tilikartassa.");
        return plan;
    }
    QSqlQuery other = Sql::run(db,
        QStringLiteral("SELECT blAccount FROM BankLines WHERE blIban = ? AND blAccount <> ? LIMIT 1"),
        { statement.iban, bankAccount });
    if (other.next()) {
        plan.error = QStringLiteral("Tilin %1 tiliotteet on tuotu tilille %2, ei tilille %3.")
                         .arg(statement.iban, caption(chart, other.value(0).toInt()), bank);
        return plan;
    }
    QSqlQuery bound = Sql::run(db,
        QStringLiteral("SELECT blIban FROM BankLines WHERE blAccount = ? AND blIban <> ? LIMIT 1"),
        { bankAccount, statement.iban });
    if (bound.next()) {
        plan.error = QStringLiteral("Tilille %1 tuodaan tilin %2 tiliotteita; tämä tiliote on tilin %3.")
                         .arg(bank, bound.value(0).toString(), statement.iban);
        return plan;
    }
    QSet<QString> imported;
    QSqlQuery q = Sql::run(
        db, QStringLiteral("SELECT blArchiveRef FROM BankLines WHERE blIban = ?"), { statement.iban });
    while (q.next())
        imported.insert(q.value(0).toString());
    plan.suspenseAccount = ChartOfAccounts::suspenseAccount(db);
    const Memory memory(db, chart, plan.suspenseAccount);

    plan.proposals.reserve(statement.lines.size());
    for (const BankLine& line : statement.lines) {
        Proposal p;
        p.line = line;
        p.description = description(line);
        if (!line.problem.isEmpty()) {
            p.state = State::Refused;
            p.note = line.problem;
        } else if (imported.contains(line.archiveRef)) {
            p.state = State::Imported;
            p.note = QStringLiteral("Tuotu jo aiemmin.");
        } else if (line.bookingDate < yearStart || line.bookingDate > yearEnd) {
            p.state = State::OutsideYear;
            p.note
                = QStringLiteral("Päivä %1 ei ole tilikaudella %2–%3.")
                      .arg(Dates::format(line.bookingDate), Dates::format(yearStart), Dates::format(yearEnd));
        }
        const auto [account, source] = memory.teach(line);
        p.counterAccount = account ? account : plan.suspenseAccount;
        p.source = source;
        plan.proposals.push_back(std::move(p));
    }
    return plan;
}

Stored store(const QSqlDatabase& db, const Plan& plan, const std::vector<size_t>& chosen)
{
    Stored stored;
    if (!plan.error.isEmpty()) {
        stored.error = plan.error;
        return stored;
    }
    std::vector<const Proposal*> lines;
    for (const size_t i : chosen) {
        if (i >= plan.proposals.size() || plan.proposals[i].state != State::New)
            continue;
        const Proposal& p = plan.proposals[i];
        if (!p.counterAccount || p.counterAccount == plan.bankAccount) {
            stored.error
                = QStringLiteral("Rivin %1 %2 vastatili puuttuu. Valitse tili tai luo selvittelytili.")
                      .arg(Dates::format(p.line.bookingDate), p.line.amount.toString());
            return stored;
        }
        lines.push_back(&p);
    }
    if (lines.empty()) {
        stored.error = QStringLiteral("Tallennettavia rivejä ei ole valittu.");
        return stored;
    }

    Transaction t(db);
    QSqlQuery known
        = Sql::prepare(db, QStringLiteral("SELECT 1 FROM BankLines WHERE blIban = ? AND blArchiveRef = ?"));
    QSqlQuery voucher = Sql::prepare(db,
        QStringLiteral(
            "INSERT INTO \"to\" (toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti) "
            "VALUES (?, ?, ?, 0, 0, 0)"));
    QSqlQuery entry = Sql::prepare(db,
        QStringLiteral("INSERT INTO vi (vitlID, vitoID, viTyyppi, viArvo, viSelite, viAvausvienti, "
                       "viPaatosvienti, viAutomaatti) VALUES (?, ?, ?, ?, ?, 0, 0, 0)"));
    QSqlQuery line = Sql::prepare(db,
        QStringLiteral(
            "INSERT INTO BankLines (blIban, blArchiveRef, blAccount, blVoucher, blCounterAccount, blDate, "
            "blAmount, blReference, blCounterparty, blCounterpartyAccount, blMessage) VALUES (?, ?, ?, ?, ?, "
            "?, ?, ?, ?, ?, ?)"));
    const QVariant max
        = Sql::scalar(db, QStringLiteral("SELECT MAX(toNumero) FROM \"to\" WHERE toNumero >= 0"));
    qint32 numero = max.isNull() ? 1 : max.toInt() + 1;
    stored.firstNumber = numero;
    for (const Proposal* p : lines) {
        known.addBindValue(plan.iban);
        known.addBindValue(p->line.archiveRef);
        Sql::exec(known);
        if (known.next()) {
            stored.error
                = QStringLiteral("Rivi %1 on jo tuotu; mitään ei tallennettu.").arg(p->line.archiveRef);
            return stored; // the guard rolls back
        }
        known.finish();
        const QString selite = RecordText::storedDescription(p->description);
        voucher.addBindValue(numero);
        voucher.addBindValue(Dates::toSql(p->line.bookingDate));
        voucher.addBindValue(selite);
        Sql::exec(voucher);
        const qint32 toId = voucher.lastInsertId().toInt();
        const bool moneyIn = !p->line.amount.isNegative();
        const qint64 raw = moneyIn ? p->line.amount.raw() : -p->line.amount.raw();
        for (const auto& [account, side] : { std::pair { plan.bankAccount, moneyIn ? "D" : "K" },
                 std::pair { p->counterAccount, moneyIn ? "K" : "D" } }) {
            entry.addBindValue(account);
            entry.addBindValue(toId);
            entry.addBindValue(QString::fromLatin1(side));
            entry.addBindValue(raw);
            entry.addBindValue(selite);
            Sql::exec(entry);
        }
        for (const QVariant& v : QVariantList { plan.iban, p->line.archiveRef, plan.bankAccount, toId,
                 p->counterAccount, Dates::toSql(p->line.bookingDate), p->line.amount.raw(),
                 p->line.reference, p->line.counterparty, p->line.counterpartyAccount, p->line.message })
            line.addBindValue(v);
        Sql::exec(line);
        if (p->counterAccount == plan.suspenseAccount) {
            ++stored.onSuspense;
            stored.suspenseLines.append(
                QStringLiteral("%1 %2 %3")
                    .arg(Dates::format(p->line.bookingDate), p->line.amount.toString(), p->description));
        }
        stored.lastNumber = numero++;
        ++stored.vouchers;
    }
    t.commitOrThrow();
    return stored;
}

bool needsSuspense(const Plan& plan)
{
    return std::any_of(plan.proposals.begin(), plan.proposals.end(),
        [](const Proposal& p) { return p.state == State::New && !p.counterAccount; });
}

std::vector<size_t> newLines(const Plan& plan)
{
    std::vector<size_t> out;
    for (size_t i = 0; i < plan.proposals.size(); ++i)
        if (plan.proposals[i].state == State::New)
            out.push_back(i);
    return out;
}

QString sourceText(Source source)
{
    switch (source) {
    case Source::Reference:
        return QStringLiteral("viitenumero");
    case Source::CounterpartyAccount:
        return QStringLiteral("tilinumero");
    case Source::CounterpartyName:
        return QStringLiteral("nimi");
    case Source::Words:
        return QStringLiteral("viestin sanat");
    case Source::Suspense:
        return QStringLiteral("selvittelytili");
    case Source::User:
        break;
    }
    return QStringLiteral("valittu");
}

QString lineText(const AccountLookup& chart, const Proposal& p)
{
    const BankLine& l = p.line;
    QString what = l.message;
    if (!l.reference.isEmpty())
        what = QStringLiteral("viite ") + References::compact(l.reference)
            + (what.isEmpty() ? QString() : u' ' + what);
    QString target;
    if (p.state != State::New)
        target = p.note;
    else if (!p.counterAccount)
        target = QStringLiteral("→ selvittelytili (luodaan tallennettaessa)");
    else
        target = QStringLiteral("→ %1 (%2)").arg(caption(chart, p.counterAccount), sourceText(p.source));
    return QStringLiteral("%1  %2  %3  %4  %5")
        .arg(Dates::format(l.bookingDate), -10)
        .arg(l.amount.toString(), 12)
        .arg(l.counterparty.isEmpty() ? QStringLiteral("-") : l.counterparty, -25)
        .arg(what.isEmpty() ? QStringLiteral("-") : what)
        .arg(target);
}

QString suspenseCreatedText(const SuspenseOffer& offer, const CreatedSuspense& created)
{
    return QStringLiteral("Luotiin tili %1 %2%3.")
        .arg(offer.numero)
        .arg(offer.nimi,
            created.rows.isEmpty() ? QStringLiteral(" (se ei ole vielä millään tilinpäätöksen rivillä)")
                                   : QStringLiteral(" riville ") + created.rows.join(QStringLiteral(", ")));
}

QString storedText(const Stored& stored)
{
    QString text = QStringLiteral("Tallennettiin %1 tositetta, numerot %2–%3.")
                       .arg(stored.vouchers)
                       .arg(stored.firstNumber)
                       .arg(stored.lastNumber);
    if (stored.onSuspense)
        text += QStringLiteral("\nSelvittelytilille kirjattiin %1 riviä:\n  ").arg(stored.onSuspense)
            + stored.suspenseLines.join(QStringLiteral("\n  "));
    return text;
}

} // namespace BankImport
