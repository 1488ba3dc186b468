#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// Bank statements written by the tests: camt.053 XML and TITO records.
namespace BankFiles {

// One camt entry: amount in the file's notation ("12.50"), "CRDT" or "DBIT".
struct Entry {
    const char* amount;
    const char* direction;
    const char* date; // "2026-03-05"
    const char* archive;
    const char* party = "";
    const char* partyIban = "";
    const char* reference = "";
    const char* message = "";
    const char* currency = "EUR";
    bool reversal = false;
    QByteArray details = {}; // given TxDtls, in place of the one made from the fields above
};

inline QByteArray txDetails(const Entry& e, int version)
{
    const bool in = QByteArray(e.direction) == "CRDT";
    const QByteArray party = QByteArray(in ? "Dbtr" : "Cdtr");
    const QByteArray name = version >= 8 ? "<Pty><Nm>" + QByteArray(e.party) + "</Nm></Pty>"
                                         : "<Nm>" + QByteArray(e.party) + "</Nm>";
    QByteArray x = "<TxDtls><RltdPties><" + party + ">" + name + "</" + party + "><" + party
        + "Acct><Id><IBAN>" + e.partyIban + "</IBAN></Id></" + party + "Acct></RltdPties><RmtInf>";
    if (*e.reference)
        x += "<Strd><CdtrRefInf><Ref>" + QByteArray(e.reference) + "</Ref></CdtrRefInf></Strd>";
    if (*e.message)
        x += "<Ustrd>" + QByteArray(e.message) + "</Ustrd>";
    return x + "</RmtInf></TxDtls>";
}

inline QByteArray camt(const QList<Entry>& entries, const char* opening, const char* closing,
    const char* iban = "FI2112345600000785", int version = 2)
{
    const QByteArray v = QByteArray::number(version).rightJustified(2, '0');
    QByteArray x = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Document "
                   "xmlns=\"urn:iso:std:iso:20022:tech:xsd:camt.053.001."
        + v + "\"><BkToCstmrStmt><GrpHdr><MsgId>1</MsgId></GrpHdr><Stmt><Acct><Id><IBAN>" + iban
        + "</IBAN></Id><Ccy>EUR</Ccy></Acct>";
    const auto balance = [&](const char* code, const char* amount) {
        QByteArray a(amount);
        const bool negative = a.startsWith('-');
        return "<Bal><Tp><CdOrPrtry><Cd>" + QByteArray(code) + "</Cd></CdOrPrtry></Tp><Amt Ccy=\"EUR\">"
            + (negative ? a.mid(1) : a) + "</Amt><CdtDbtInd>" + (negative ? "DBIT" : "CRDT")
            + "</CdtDbtInd></Bal>\n";
    };
    if (opening)
        x += balance("OPBD", opening);
    if (closing)
        x += balance("CLBD", closing);
    for (const Entry& e : entries)
        x += "<Ntry><Amt Ccy=\"" + QByteArray(e.currency) + "\">" + e.amount + "</Amt><CdtDbtInd>"
            + e.direction + "</CdtDbtInd>" + (e.reversal ? "<RvslInd>true</RvslInd>" : "") + "<BookgDt><Dt>"
            + e.date + "</Dt></BookgDt><AcctSvcrRef>" + e.archive + "</AcctSvcrRef><NtryDtls>"
            + (e.details.isEmpty() ? txDetails(e, version) : e.details) + "</NtryDtls></Ntry>\n";
    return x + "</Stmt></BkToCstmrStmt></Document>\n";
}

// A fixed-width record: `fields` as (1-based position, text) pairs, blanks elsewhere.
inline QByteArray record(int length, const QList<std::pair<int, QByteArray>>& fields)
{
    QByteArray r(length, ' ');
    for (const auto& [at, text] : fields)
        r.replace(at - 1, text.size(), text);
    return r;
}

inline QByteArray titoAmount(qint64 cents)
{
    return (cents < 0 ? "-" : "+") + QByteArray::number(std::abs(cents)).rightJustified(18, '0');
}

} // namespace BankFiles
