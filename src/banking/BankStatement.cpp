#include "banking/BankStatement.h"

#include "banking/References.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QStringList>
#include <QXmlStreamReader>

namespace {

const QString CamtNamespace = QStringLiteral("urn:iso:std:iso:20022:tech:xsd:camt.053.001.");
const QString Euro = QStringLiteral("EUR");

BankReadResult refused(const QString& error)
{
    BankReadResult r;
    r.error = error;
    return r;
}

// A decimal of the file ("1234.5"): digits, a point and at most four decimals.
std::optional<Money> decimal(QStringView text)
{
    text = text.trimmed();
    bool negative = false;
    if (text.startsWith(u'-')) {
        negative = true;
        text = text.mid(1);
    }
    const qsizetype point = text.indexOf(u'.');
    const QStringView whole = point < 0 ? text : text.left(point);
    const QStringView fraction = point < 0 ? QStringView() : text.mid(point + 1);
    if (whole.isEmpty() || whole.size() > 14 || fraction.size() > 4)
        return std::nullopt;
    qint64 raw = 0;
    for (const QChar c : whole) {
        if (!c.isDigit())
            return std::nullopt;
        raw = raw * 10 + (c.unicode() - u'0');
    }
    qint64 scale = Money::Scale;
    for (const QChar c : fraction) {
        if (!c.isDigit())
            return std::nullopt;
        scale /= 10;
        raw = raw * 10 + (c.unicode() - u'0');
    }
    raw *= scale;
    return Money::fromRaw(negative ? -raw : raw);
}

// A stand-in archive reference for a line the bank gave none: the same line of the same
// statement always gets the same one.
QString derivedArchiveRef(const BankLine& line, int occurrence)
{
    const QString key = QStringList { line.bookingDate.toString(Qt::ISODate), line.amount.toPlainString(),
        line.counterparty, line.reference, line.message, QString::number(occurrence) }
                            .join(u'\x1f');
    return u'#'
        + QString::fromLatin1(
            QCryptographicHash::hash(key.toUtf8(), QCryptographicHash::Sha1).toHex().left(20));
}

void giveArchiveRefs(std::vector<BankLine>& lines)
{
    QHash<QString, int> seen;
    for (BankLine& line : lines)
        if (line.archiveRef.isEmpty()) {
            const QString base = derivedArchiveRef(line, 0);
            line.archiveRef = derivedArchiveRef(line, seen[base]++);
        }
}

QString euros(Money m) { return m.toString(); }

// camt.053 ---------------------------------------------------------------------------------

struct CamtParty {
    QString name;
    QString account;
};

struct CamtDetail {
    QString archiveRef;
    std::optional<Money> amount;
    QString currency;
    QString direction; // CRDT / DBIT, when the detail gives its own
    CamtParty debtor, creditor;
    QString reference;
    QStringList message;
    QString extra;
};

struct CamtEntry {
    std::optional<Money> amount;
    QString currency;
    QString direction;
    bool reversal = false;
    QDate booked;
    QString archiveRef;
    QString entryRef;
    QString extra;
    std::vector<CamtDetail> details;
};

class CamtReader {
public:
    explicit CamtReader(const QByteArray& content)
        : m_xml(content)
    {
    }

    BankReadResult read()
    {
        if (!m_xml.readNextStartElement())
            return failure();
        const QString ns = m_xml.namespaceUri().toString();
        if (m_xml.name() != u"Document" || !ns.startsWith(CamtNamespace))
            return refused(QStringLiteral("Tiedosto ei ole tiliote: sanomatyyppi %1 ei ole camt.053.")
                               .arg(ns.isEmpty() ? m_xml.name().toString() : ns));
        const int version = ns.mid(CamtNamespace.size()).toInt();
        if (version < 2)
            return refused(QStringLiteral("Tiliotteen versiota %1 ei tunneta.").arg(ns));
        m_statement.format = QStringLiteral("camt.053.001.%1").arg(version, 2, 10, QLatin1Char('0'));
        m_path.append(QStringLiteral("Document"));
        while (!m_xml.atEnd()) {
            m_xml.readNext();
            if (m_xml.isStartElement())
                start();
            else if (m_xml.isEndElement())
                end();
            else if (m_xml.isCharacters())
                m_text += m_xml.text();
        }
        if (m_xml.hasError())
            return failure();
        if (!m_problem.isEmpty())
            return refused(m_problem);
        BankReadResult r;
        r.statement = std::move(m_statement);
        return r;
    }

private:
    BankReadResult failure() const
    {
        return refused(QStringLiteral("Tiliotetta ei voi lukea: tiedosto on vioittunut tai katkennut "
                                      "(rivi %1).")
                           .arg(m_xml.lineNumber()));
    }

    // The path below the innermost element of `name`, or a null string outside it.
    QString below(QStringView name) const
    {
        for (qsizetype i = m_path.size() - 1; i >= 0; --i)
            if (m_path.at(i) == name)
                return m_path.mid(i + 1).join(u'/');
        return {};
    }
    bool inside(QStringView name) const { return m_path.contains(name); }

    void start()
    {
        const QString name = m_xml.name().toString();
        m_path.append(name);
        m_text.clear();
        if (name == u"Bal" && m_path.size() >= 2 && m_path.at(m_path.size() - 2) == u"Stmt")
            m_balance = {};
        else if (name == u"Ntry")
            m_entry = CamtEntry {};
        else if (name == u"TxDtls" && inside(u"Ntry"))
            m_entry.details.emplace_back();
        if (name == u"Amt")
            m_currency = m_xml.attributes().value(QStringLiteral("Ccy")).toString();
    }

    void end()
    {
        const QString text = m_text.trimmed();
        m_text.clear();
        if (inside(u"TxDtls") && !m_entry.details.empty())
            detailField(m_entry.details.back(), below(u"TxDtls"), text);
        else if (inside(u"Ntry"))
            entryField(below(u"Ntry"), text);
        else if (inside(u"Bal"))
            balanceField(below(u"Bal"), text);
        else if (inside(u"Stmt"))
            statementField(below(u"Stmt"), text);
        const QString name = m_path.takeLast();
        if (name == u"Ntry")
            finishEntry();
        else if (name == u"Bal" && inside(u"Stmt") && !inside(u"Ntry"))
            finishBalance();
    }

    void statementField(const QString& path, const QString& text)
    {
        if (path != u"Acct/Id/IBAN" && path != u"Acct/Id/Othr/Id")
            return;
        const QString account = References::compact(text);
        if (!m_statement.iban.isEmpty() && m_statement.iban != account)
            m_problem = QStringLiteral("Tiedostossa on usean tilin tiliotteita (%1 ja %2); tuo ne erikseen.")
                            .arg(m_statement.iban, account);
        m_statement.iban = account;
    }

    void balanceField(const QString& path, const QString& text)
    {
        if (path == u"Tp/CdOrPrtry/Cd")
            m_balance.code = text;
        else if (path == u"Amt") {
            m_balance.amount = decimal(text);
            m_balance.currency = m_currency;
        } else if (path == u"CdtDbtInd")
            m_balance.direction = text;
    }

    void finishBalance()
    {
        if (!m_balance.amount)
            return;
        const Money amount = m_balance.direction == u"DBIT" ? -*m_balance.amount : *m_balance.amount;
        if ((m_balance.code == u"OPBD" || m_balance.code == u"PRCD") && !m_statement.opening)
            m_statement.opening = amount;
        else if (m_balance.code == u"CLBD")
            m_statement.closing = amount;
    }

    void entryField(const QString& path, const QString& text)
    {
        if (path == u"Amt") {
            m_entry.amount = decimal(text);
            m_entry.currency = m_currency;
            if (!m_entry.amount)
                m_problem = QStringLiteral("Tiliotteen rivillä %1 on virheellinen summa \"%2\".")
                                .arg(m_xml.lineNumber())
                                .arg(text);
        } else if (path == u"CdtDbtInd")
            m_entry.direction = text;
        else if (path == u"RvslInd")
            m_entry.reversal = text == u"true" || text == u"1";
        else if (path == u"BookgDt/Dt" || path == u"BookgDt/DtTm")
            m_entry.booked = QDate::fromString(text.left(10), Qt::ISODate);
        else if (path == u"AcctSvcrRef")
            m_entry.archiveRef = text;
        else if (path == u"NtryRef")
            m_entry.entryRef = text;
        else if (path == u"AddtlNtryInf")
            m_entry.extra = text;
    }

    static void party(CamtParty& p, const QString& path, const QString& text)
    {
        // .001.02–.001.07 name the party directly, later versions under Pty.
        if (path == u"Nm" || path == u"Pty/Nm")
            p.name = text;
        else if (path == u"Id/IBAN" || (path == u"Id/Othr/Id" && p.account.isEmpty()))
            p.account = References::compact(text);
    }

    void detailField(CamtDetail& d, const QString& path, const QString& text)
    {
        if (path == u"Refs/AcctSvcrRef")
            d.archiveRef = text;
        else if (path == u"AmtDtls/TxAmt/Amt" || path == u"Amt") {
            d.amount = decimal(text);
            d.currency = m_currency;
        } else if (path == u"CdtDbtInd")
            d.direction = text;
        else if (path.startsWith(QLatin1String("RltdPties/Dbtr/")))
            party(d.debtor, path.mid(15), text);
        else if (path.startsWith(QLatin1String("RltdPties/DbtrAcct/")))
            party(d.debtor, path.mid(19), text);
        else if (path.startsWith(QLatin1String("RltdPties/Cdtr/")))
            party(d.creditor, path.mid(15), text);
        else if (path.startsWith(QLatin1String("RltdPties/CdtrAcct/")))
            party(d.creditor, path.mid(19), text);
        else if (path == u"RmtInf/Ustrd")
            d.message.append(text);
        else if (path == u"RmtInf/Strd/CdtrRefInf/Ref")
            d.reference = text;
        else if (path == u"AddtlTxInf")
            d.extra = text;
    }

    BankLine line(const CamtDetail* d, Money amount, const QString& currency, const QString& direction) const
    {
        BankLine l;
        l.bookingDate = m_entry.booked;
        l.amount = direction == u"DBIT" ? -amount : amount;
        l.currency = currency.isEmpty() ? Euro : currency;
        l.reversal = m_entry.reversal;
        l.message = m_entry.extra;
        if (d) {
            const CamtParty& p = l.amount.isNegative() ? d->creditor : d->debtor;
            l.counterparty = p.name.simplified();
            l.counterpartyAccount = p.account;
            l.reference = d->reference;
            if (!d->message.isEmpty())
                l.message = d->message.join(u' ');
            else if (!d->extra.isEmpty())
                l.message = d->extra;
        }
        l.message = l.message.simplified();
        if (l.currency != Euro)
            l.problem = QStringLiteral("Valuutta on %1: vain euromääräiset rivit tuodaan.").arg(l.currency);
        else if (!l.bookingDate.isValid())
            l.problem = QStringLiteral("Rivillä ei ole kirjauspäivää.");
        return l;
    }

    void finishEntry()
    {
        if (!m_entry.amount || (m_entry.direction != u"CRDT" && m_entry.direction != u"DBIT")) {
            if (m_problem.isEmpty())
                m_problem = QStringLiteral("Tiliotteen tapahtumalta puuttuu summa tai suunta (rivi %1).")
                                .arg(m_xml.lineNumber());
            return;
        }
        const std::vector<CamtDetail>& details = m_entry.details;
        const QString entryRef = m_entry.archiveRef.isEmpty() ? m_entry.entryRef : m_entry.archiveRef;
        // A batch: one line per transaction, when the transactions add up to the entry.
        bool split = details.size() > 1;
        Money sum;
        for (const CamtDetail& d : details) {
            if (!d.amount || (!d.currency.isEmpty() && d.currency != m_entry.currency)) {
                split = false;
                break;
            }
            const QString dir = d.direction.isEmpty() ? m_entry.direction : d.direction;
            sum += dir == m_entry.direction ? *d.amount : -*d.amount;
        }
        if (split && sum == *m_entry.amount) {
            for (size_t i = 0; i < details.size(); ++i) {
                const CamtDetail& d = details[i];
                const QString dir = d.direction.isEmpty() ? m_entry.direction : d.direction;
                BankLine l = line(&d, *d.amount, m_entry.currency, dir);
                l.archiveRef = !d.archiveRef.isEmpty() && d.archiveRef != entryRef
                    ? d.archiveRef
                    : QStringLiteral("%1/%2").arg(entryRef).arg(i + 1);
                m_statement.lines.push_back(l);
            }
            return;
        }
        BankLine l = line(details.empty() ? nullptr : &details.front(), *m_entry.amount, m_entry.currency,
            m_entry.direction);
        l.archiveRef = entryRef;
        if (details.size() > 1)
            l.message = QStringLiteral("Erä, %1 tapahtumaa").arg(details.size());
        m_statement.lines.push_back(l);
    }

    QXmlStreamReader m_xml;
    QStringList m_path;
    QString m_text;
    QString m_currency;
    QString m_problem;
    struct {
        QString code, direction, currency;
        std::optional<Money> amount;
    } m_balance;
    CamtEntry m_entry;
    BankStatement m_statement;
};

// TITO -------------------------------------------------------------------------------------

// A fixed-width field, 0-based as the record description counts from 1.
QString field(const QString& record, int from, int length) { return record.mid(from, length).trimmed(); }

std::optional<Money> titoAmount(const QString& record, int signAt)
{
    const QString digits = record.mid(signAt + 1, 18);
    if (digits.size() != 18)
        return std::nullopt;
    qint64 cents = 0;
    for (const QChar c : digits) {
        if (!c.isDigit())
            return std::nullopt;
        cents = cents * 10 + (c.unicode() - u'0');
    }
    const Money m = Money::fromCents(cents);
    return record.at(signAt) == u'-' ? -m : m;
}

QDate titoDate(const QString& yymmdd)
{
    if (yymmdd.size() != 6 || yymmdd == u"000000")
        return {};
    return QDate(2000 + yymmdd.left(2).toInt(), yymmdd.mid(2, 2).toInt(), yymmdd.mid(4, 2).toInt());
}

} // namespace

namespace BankStatements {

BankReadResult readCamt(const QByteArray& content)
{
    CamtReader reader(content);
    return reader.read();
}

BankReadResult readTito(const QByteArray& content)
{
    BankStatement s;
    s.format = QStringLiteral("TITO");
    struct Main {
        BankLine line;
        std::vector<BankLine> parts;
    };
    std::vector<Main> entries;
    int number = 0;
    bool header = false;
    for (QByteArray raw : content.split('\n')) {
        ++number;
        if (raw.endsWith('\r'))
            raw.chop(1);
        if (raw.trimmed().isEmpty())
            continue;
        const QString r = QString::fromLatin1(raw).leftJustified(322, u' ');
        const QString type = r.left(3);
        const auto bad = [&](const QString& what) {
            return refused(QStringLiteral("Tiliotteen rivi %1 on virheellinen: %2.").arg(number).arg(what));
        };
        if (type == u"T00") {
            if (header)
                return bad(QStringLiteral("tiedostossa on toinen tiliote; tuo tiliotteet yksitellen"));
            header = true;
            const QString ibanAndBic = field(r, 292, 30);
            s.iban = References::compact(ibanAndBic.section(u' ', 0, 0));
            if (s.iban.isEmpty())
                s.iban = References::compact(field(r, 9, 14));
            if (field(r, 96, 3) != Euro && !field(r, 96, 3).isEmpty())
                return refused(QStringLiteral("Tiliotteen valuutta on %1: vain euromääräiset tilit tuodaan.")
                                   .arg(field(r, 96, 3)));
            s.opening = titoAmount(r, 71);
            if (!s.opening)
                return bad(QStringLiteral("alkusaldo ei ole luku"));
        } else if (!header) {
            return refused(
                QStringLiteral("Tiedosto ei ole tiliote: se ei ala tiliotteen perustietueella (T00)."));
        } else if (type == u"T10" || type == u"T80") {
            BankLine l;
            l.archiveRef = field(r, 12, 18);
            l.bookingDate = titoDate(field(r, 30, 6));
            const std::optional<Money> amount = titoAmount(r, 87);
            if (!amount)
                return bad(QStringLiteral("summa ei ole luku"));
            l.amount = *amount;
            l.currency = Euro;
            l.reversal = r.at(48) == u'3' || r.at(48) == u'4';
            l.counterparty = field(r, 108, 35).simplified();
            l.counterpartyAccount = References::compact(field(r, 144, 14));
            l.reference = field(r, 159, 20);
            if (References::compact(l.reference).count(u'0') == References::compact(l.reference).size())
                l.reference.clear();
            l.message = field(r, 52, 35).simplified();
            if (!l.bookingDate.isValid())
                l.problem = QStringLiteral("Rivillä ei ole kirjauspäivää.");
            const QChar level = r.at(187);
            if (type == u"T10" && (level == u' ' || level == u'0'))
                entries.push_back({ l, {} });
            else if (!entries.empty())
                entries.back().parts.push_back(l);
            else
                return bad(QStringLiteral("erittelyrivi ilman tapahtumaa"));
        } else if (type == u"T11" || type == u"T81") {
            if (entries.empty())
                return bad(QStringLiteral("lisätietue ilman tapahtumaa"));
            BankLine& l = entries.back().parts.empty() ? entries.back().line : entries.back().parts.back();
            const QString kind = r.mid(6, 2);
            const QString data = QString::fromLatin1(raw).mid(8);
            if (kind == u"00" || kind == u"06") {
                QStringList parts;
                for (qsizetype i = 0; i < data.size(); i += 35)
                    parts.append(data.mid(i, 35).trimmed());
                parts.removeAll(QString());
                l.message = parts.join(u' ').simplified();
            } else if (kind == u"11") {
                const QString sepaRef = field(r, 8, 35);
                if (!sepaRef.isEmpty())
                    l.reference = sepaRef;
                const QString iban = References::compact(field(r, 43, 35));
                if (!iban.isEmpty())
                    l.counterpartyAccount = iban;
                const QString name = field(r, l.amount.isNegative() ? 113 : 183, 70).simplified();
                if (!name.isEmpty())
                    l.counterparty = name;
            }
        } else if (type == u"T40") {
            s.closing = titoAmount(r, 12);
            if (!s.closing)
                return bad(QStringLiteral("loppusaldo ei ole luku"));
        } else if (!type.startsWith(u'T') || !type.mid(1).toInt()) {
            return bad(QStringLiteral("tuntematon tietue \"%1\"").arg(type.trimmed()));
        }
    }
    if (!header)
        return refused(QStringLiteral("Tiedosto on tyhjä."));
    for (Main& e : entries) {
        Money sum;
        for (const BankLine& p : e.parts)
            sum += p.amount;
        if (e.parts.size() > 1 && sum == e.line.amount) {
            int i = 0;
            for (BankLine& p : e.parts) {
                p.bookingDate = e.line.bookingDate;
                p.reversal = e.line.reversal;
                if (p.archiveRef.isEmpty() || p.archiveRef == e.line.archiveRef)
                    p.archiveRef = QStringLiteral("%1/%2").arg(e.line.archiveRef).arg(++i);
                s.lines.push_back(p);
            }
        } else {
            if (e.parts.size() > 1)
                e.line.message = QStringLiteral("Erä, %1 tapahtumaa").arg(e.parts.size());
            s.lines.push_back(e.line);
        }
    }
    BankReadResult result;
    result.statement = std::move(s);
    return result;
}

QString balanceProblem(const BankStatement& statement)
{
    if (!statement.opening || !statement.closing)
        return {};
    Money sum;
    for (const BankLine& l : statement.lines)
        sum += l.amount;
    const Money expected = *statement.opening + sum;
    if (expected == *statement.closing)
        return {};
    return QStringLiteral("Tiliotteen saldot eivät täsmää: alkusaldo %1 ja tapahtumat %2 antavat %3, "
                          "mutta loppusaldo on %4. Ero on %5 €.")
        .arg(euros(*statement.opening), euros(sum), euros(expected), euros(*statement.closing),
            euros(expected > *statement.closing ? expected - *statement.closing
                                                : *statement.closing - expected));
}

BankReadResult read(const QByteArray& content)
{
    const QByteArray head = content.left(512).trimmed();
    BankReadResult r;
    if (head.startsWith("T00"))
        r = readTito(content);
    else if (head.startsWith('<') || head.startsWith("\xEF\xBB\xBF"))
        r = readCamt(content);
    else if (head.isEmpty())
        return refused(QStringLiteral("Tiedosto on tyhjä."));
    else
        return refused(QStringLiteral("Tiedosto ei ole tiliote: Vorkam tuo camt.053-tiliotteita (XML) ja "
                                      "konekielisiä tiliotteita."));
    if (!r.statement)
        return r;
    if (r.statement->lines.empty())
        return refused(QStringLiteral("Tiliotteella ei ole yhtään tapahtumaa."));
    if (r.statement->iban.isEmpty())
        return refused(QStringLiteral("Tiliotteesta puuttuu tilinumero."));
    const QString balance = balanceProblem(*r.statement);
    if (!balance.isEmpty())
        return refused(balance);
    giveArchiveRefs(r.statement->lines);
    return r;
}

BankReadResult readFile(const QString& path)
{
    QFile file(path);
    BankReadResult r;
    r.fileError = true;
    if (!QFileInfo(path).isFile())
        r.error = QStringLiteral("Tiedostoa %1 ei löydy.").arg(path);
    else if (file.size() > MaxFileSize)
        r.error = QStringLiteral("Tiedosto %1 on liian suuri tiliotteeksi (%2 Mt).")
                      .arg(path)
                      .arg(file.size() / (1024 * 1024));
    else if (!file.open(QIODevice::ReadOnly))
        r.error = QStringLiteral("Tiedostoa %1 ei voi lukea.").arg(path);
    else
        return read(file.readAll());
    return r;
}

} // namespace BankStatements
