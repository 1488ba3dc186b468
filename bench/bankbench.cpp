// Times a bank statement of 1,000 lines on a copy of the stress association (see README.md):
// read, proposed (the learning reads every line stored before) and stored as 1,000 vouchers in
// one transaction, beside bare prepared inserts of the same vouchers and entries. The second
// statement of each run finds the first one's lines to learn from. The file named on the
// command line is not changed.
#include "Timing.h"
#include "banking/BankImport.h"
#include "core/DatabaseError.h"
#include "core/Schema.h"
#include "core/ScopedConnection.h"
#include "core/Transaction.h"

#include <QDate>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <cstdio>

namespace {

constexpr int Lines = 1000;

// A camt.053 statement of `Lines` lines in the stress year: members paying by reference, a few
// suppliers paid with a message, archive references numbered from `first`.
QByteArray statement(int first, const QDate& day)
{
    QByteArray x
        = "<?xml version=\"1.0\"?><Document xmlns=\"urn:iso:std:iso:20022:tech:xsd:camt.053.001.02\">"
          "<BkToCstmrStmt><Stmt><Acct><Id><IBAN>FI2112345600000785</IBAN></Id></Acct>";
    qint64 sum = 0;
    QByteArray entries;
    for (int i = 0; i < Lines; ++i) {
        const bool in = i % 4 != 0;
        const qint64 cents = 1000 + (i * 37) % 9000;
        sum += in ? cents : -cents;
        const QByteArray party = in ? "Dbtr" : "Cdtr";
        const QByteArray name
            = in ? "Jasen " + QByteArray::number(i % 300) : "Toimittaja " + QByteArray::number(i % 20);
        entries += "<Ntry><Amt Ccy=\"EUR\">" + QByteArray::number(cents / 100) + '.'
            + QByteArray::number(cents % 100).rightJustified(2, '0') + "</Amt><CdtDbtInd>"
            + (in ? "CRDT" : "DBIT") + "</CdtDbtInd><BookgDt><Dt>"
            + day.addDays(i % 28).toString(Qt::ISODate).toLatin1() + "</Dt></BookgDt><AcctSvcrRef>R"
            + QByteArray::number(first + i) + "</AcctSvcrRef><NtryDtls><TxDtls><RltdPties><" + party + "><Nm>"
            + name + "</Nm></" + party + "></RltdPties><RmtInf><Ustrd>"
            + (in ? "Jasenmaksu" : "Lasku tarvikkeista") + "</Ustrd></RmtInf>"
            + "</TxDtls></NtryDtls></Ntry>\n";
    }
    const auto balance = [](const char* code, qint64 cents) {
        return "<Bal><Tp><CdOrPrtry><Cd>" + QByteArray(code) + "</Cd></CdOrPrtry></Tp><Amt Ccy=\"EUR\">"
            + QByteArray::number(std::abs(cents) / 100) + '.'
            + QByteArray::number(std::abs(cents) % 100).rightJustified(2, '0') + "</Amt><CdtDbtInd>"
            + (cents < 0 ? "DBIT" : "CRDT") + "</CdtDbtInd></Bal>";
    };
    return x + balance("OPBD", 0) + balance("CLBD", sum) + entries + "</Stmt></BkToCstmrStmt></Document>";
}

// A writable copy of the stress association in a folder of its own, brought up to date.
QString copyOf(const QString& file, const QTemporaryDir& dir)
{
    const QString path = dir.path() + QStringLiteral("/stress.mdb");
    QFile::copy(file, path);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
    return path;
}

struct Copy {
    QTemporaryDir dir;
    ScopedConnection books;
    explicit Copy(const QString& file)
        : books(copyOf(file, dir))
    {
        Schema::UpdateDatabase(books.db());
    }
};

// The same vouchers written by bare prepared inserts in one transaction.
void bareInserts(const QSqlDatabase& db, const BankStatement& s, qint32 bank, qint32 other)
{
    Transaction t(db);
    QSqlQuery to
        = Sql::prepare(db, QStringLiteral("INSERT INTO \"to\" (toNumero, toPvm, toSelite) VALUES (?, ?, ?)"));
    QSqlQuery vi = Sql::prepare(db,
        QStringLiteral("INSERT INTO vi (vitlID, vitoID, viTyyppi, viArvo, viSelite) VALUES (?, ?, ?, ?, ?)"));
    int n = 1000000;
    for (const BankLine& l : s.lines) {
        to.addBindValue(++n);
        to.addBindValue(l.bookingDate.toString(Qt::ISODate));
        to.addBindValue(l.counterparty);
        Sql::exec(to);
        const qint64 id = to.lastInsertId().toLongLong();
        for (const qint32 account : { bank, other }) {
            vi.addBindValue(account);
            vi.addBindValue(id);
            vi.addBindValue(QStringLiteral("D"));
            vi.addBindValue(l.amount.raw());
            vi.addBindValue(l.counterparty);
            Sql::exec(vi);
        }
    }
    t.commitOrThrow();
}

} // namespace

int bankBench(const QString& file, int runs)
{
    std::printf("\nbank statement of %d lines (camt.053)\n", Lines);
    try {
        std::vector<double> read, propose, store, total, bare;
        for (int run = 0; run < runs; ++run) {
            Copy copy(file);
            const QSqlDatabase& db = copy.books.db();
            const QDate start = QDate::fromString(
                Sql::scalar(db, QStringLiteral("SELECT MIN(toPvm) FROM \"to\" WHERE toPvm IS NOT NULL"))
                    .toString(),
                Qt::ISODate);
            const qint32 bank = Sql::scalar(db, QStringLiteral("SELECT MIN(tlID) FROM tl")).toInt();
            BankImport::createSuspenseAccount(db, BankImport::suspenseOffer(db));
            // The first statement teaches the second one.
            {
                const BankStatement first = *BankStatements::read(statement(0, start)).statement;
                const BankImport::Plan plan = BankImport::propose(db, first, bank, start, start.addYears(1));
                BankImport::store(db, plan, BankImport::newLines(plan));
            }
            const QByteArray content = statement(Lines, start.addMonths(1));
            QElapsedTimer t;
            t.start();
            const BankStatement s = *BankStatements::read(content).statement;
            const double r = double(t.nsecsElapsed()) / 1e6;
            const BankImport::Plan plan = BankImport::propose(db, s, bank, start, start.addYears(1));
            const double p = double(t.nsecsElapsed()) / 1e6;
            const BankImport::Stored stored = BankImport::store(db, plan, BankImport::newLines(plan));
            const double all = double(t.nsecsElapsed()) / 1e6;
            if (stored.vouchers != Lines) {
                std::fprintf(
                    stderr, "stored %d of %d lines: %s\n", stored.vouchers, Lines, qPrintable(stored.error));
                return 1;
            }
            read.push_back(r);
            propose.push_back(p - r);
            store.push_back(all - p);
            total.push_back(all);
            bare.push_back(
                medianMs(1, [&] { bareInserts(db, s, bank, plan.proposals.front().counterAccount); }));
        }
        const auto median = [](std::vector<double> v) {
            std::sort(v.begin(), v.end());
            return v[v.size() / 2];
        };
        std::printf("%-44s %9.2f ms\n", "read", median(read));
        std::printf("%-44s %9.2f ms\n", "proposed (learning from 1,000 lines)", median(propose));
        std::printf("%-44s %9.2f ms\n", "stored in one transaction", median(store));
        std::printf("%-44s %9.2f ms %9.2f ms %8.2fx   %s\n", "read + proposed + stored, against bare inserts",
            median(total), median(bare), median(total) / median(bare), "< 1000 ms");
        std::printf("%-44s %9.2fx\n", "  as a share of the 1 s budget", median(total) / 1000.0);
        return 0;
    } catch (const DatabaseError& e) {
        std::fprintf(stderr, "bank bench: %s\n", qPrintable(e.text()));
        return 1;
    }
}
