// The stress association after five years of use (vorkam_bench FILE.mdb --five-years): on a
// copy of the file, four real fiscal year changes, each followed by a new year as large as the
// file's own (100,000 vouchers and 300,000 entries in the stress association), so that 1.5
// million entries have been booked and 1.2 million copied into the previous-year history. Then
// the books are opened and checked as at start and the statements are computed, against the same
// targets as on the fresh file. The file named is not changed.
#include "StressBooks.h"
#include "Timing.h"
#include "core/DBC.h"
#include "core/DatabaseFile.h"
#include "core/Paths.h"
#include "core/ProgramSettings.h"
#include "core/Transaction.h"
#include "statements/BalanceSheet.h"
#include "statements/IncomeStatement.h"
#include "statements/ProfitEntries.h"
#include "statements/StatementOptions.h"
#include "yearchange/FiscalYearChange.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QVariant>
#include <algorithm>
#include <cstdio>

namespace {

constexpr int Income = StressBooks::IncomeTemplate;
constexpr int Balance = StressBooks::BalanceTemplate;
// Vouchers a year: as many as the file's own year holds (100,000 in the stress association).
int YearVouchers = 100000;

QVariant scalar(const QSqlDatabase& db, const QString& sql)
{
    QSqlQuery q(db);
    return q.exec(sql) && q.next() ? q.value(0) : QVariant();
}

// A year of vouchers in the current fiscal year, as the stress generator writes them: each a
// debit and two credits that balance it, numbered after the opening voucher.
bool bookYear(const QSqlDatabase& db, const QDate& start, quint32 seed)
{
    const int accounts = scalar(db, QStringLiteral("SELECT COUNT(*) FROM tl")).toInt();
    QSqlQuery ids(db);
    ids.prepare(QStringLiteral("SELECT tlID FROM tl WHERE tlID NOT IN (?, ?) ORDER BY tlID"));
    ids.addBindValue(StressBooks::IncomeProfitAccount);
    ids.addBindValue(StressBooks::BalanceProfitAccount);
    ids.exec();
    std::vector<int> tl;
    while (ids.next())
        tl.push_back(ids.value(0).toInt());
    if (tl.empty() || accounts == 0)
        return false;
    Transaction tx(db);
    QSqlQuery t(db);
    QSqlQuery v(db);
    t.prepare(QStringLiteral("INSERT INTO \"to\" (toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, "
                             "toAutomaatti) VALUES (?, ?, ?, 0, 0, 0)"));
    v.prepare(QStringLiteral("INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti, "
                             "viPaatosvienti, viAutomaatti) VALUES (?, ?, ?, ?, ?, 0, 0, 0)"));
    quint32 r = seed;
    const auto next = [&r] { return r = r * 1664525u + 1013904223u; };
    for (int i = 1; i <= YearVouchers; ++i) {
        const QString selite = QStringLiteral("Tosite %1").arg(i);
        t.addBindValue(i);
        t.addBindValue(start.addDays(qint64(i) * 364 / (YearVouchers + 1)).toString(Qt::ISODate));
        t.addBindValue(selite);
        if (!t.exec())
            return false;
        const QVariant toId = t.lastInsertId();
        const qint64 amount = 100 * (1 + qint64(next() % 500000));
        const qint64 part = 100 * (qint64(next() % quint32(amount / 100)));
        const int debit = (i % 3 == 0) ? tl.front() : tl[next() % tl.size()];
        const struct {
            int tl;
            const char* type;
            qint64 arvo;
        } rows[] = { { debit, "D", amount }, { tl[next() % tl.size()], "K", part },
            { tl[next() % tl.size()], "K", amount - part } };
        for (const auto& row : rows) {
            v.addBindValue(toId);
            v.addBindValue(row.tl);
            v.addBindValue(QString::fromLatin1(row.type));
            v.addBindValue(row.arvo);
            v.addBindValue(selite);
            if (!v.exec())
                return false;
        }
    }
    return tx.commit();
}

void line(const char* name, double ms, const char* target)
{
    std::printf("%-52s %10.2f ms   %s\n", name, ms, target);
}

} // namespace

// Leaves the program's database closed.
int fiveYearsBench(const QString& stressFile)
{
    DBC::instance().SuljeDB();
    QTemporaryDir dir;
    const QString copy = dir.filePath(QStringLiteral("stress-viisi.mdb"));
    if (!QFile::copy(stressFile, copy)) {
        std::fprintf(stderr, "the stress file could not be copied into %s\n", qPrintable(dir.path()));
        return 1;
    }
    Paths::setDataDir(dir.path());
    ProgramSettings::installation().Database = copy;
    QSqlDatabase db = DBC::instance().AvaaDB();
    if (!db.isOpen()) {
        std::fprintf(stderr, "the copy of the stress file could not be opened\n");
        return 1;
    }
    ProgramSettings::loadBookkeeping(db, copy);
    YearVouchers = std::max(10, scalar(db, QStringLiteral("SELECT COUNT(*) FROM \"to\"")).toInt());
    if (!StressBooks::present(db))
        return 1;

    std::printf("\nfive years of use: four fiscal year changes, each followed by a new year of %d vouchers\n",
        YearVouchers);
    std::printf("%-52s %13s   %s\n", "", "Vorkam", "target");
    qint64 booked = scalar(db, QStringLiteral("SELECT COUNT(*) FROM vi")).toLongLong();
    qint64 copied = 0;
    for (int year = 1; year <= 4; ++year) {
        copied += scalar(db, QStringLiteral("SELECT COUNT(*) FROM vi")).toLongLong();
        FiscalYearChange vaihto(db);
        QElapsedTimer t;
        t.start();
        if (!vaihto.suorita(Balance, true)) {
            std::fprintf(stderr, "year change %d failed\n", year);
            return 1;
        }
        const QByteArray name = QStringLiteral("year change %1, safety copy included").arg(year).toUtf8();
        line(name.constData(), double(t.nsecsElapsed()) / 1e6, "< 5000 ms");
        QFile::remove(vaihto.varmuuskopio());
        if (!bookYear(db, ProgramSettings::bookkeeping().TilikausiAlku, 7919u * quint32(year))) {
            std::fprintf(
                stderr, "year %d could not be booked: %s\n", year, qPrintable(db.lastError().text()));
            return 1;
        }
        booked += 3 * YearVouchers;
    }
    std::printf("(%lld entries booked in all, %lld copied into the history; the file is %.0f MB)\n",
        static_cast<long long>(booked), static_cast<long long>(copied), double(QFileInfo(copy).size()) / 1e6);

    // Opening and checking the file as the start does, with the settings.
    db = QSqlDatabase();
    DBC::instance().SuljeDB();
    const QString connection = QStringLiteral("five_years_open");
    const double open = medianMs(5, [&] {
        if (DatabaseFile::open(copy, connection))
            ProgramSettings::loadBookkeeping(QSqlDatabase::database(connection, false), copy);
        DatabaseFile::close(connection);
    });
    line("open and check the books, read the settings", open, "< 300 ms");

    db = DBC::instance().AvaaDB();
    const BookkeepingSettings& s = ProgramSettings::bookkeeping();
    ProfitEntries::Outcome outcome;
    const double entries = medianMs(
        5, [&] { outcome = ProfitEntries::compute(db, Income, s.TilikausiAlku, s.TilikausiLoppu); });
    line("automatic profit entries, the whole year", entries, "< 100 ms");
    const StatementOptions income = StatementOptions::forPeriod(Income, s.TilikausiAlku, s.TilikausiLoppu);
    const double incomeMs = medianMs(5, [&] { IncomeStatement::run(db, income); });
    line("income statement, four columns", incomeMs, "< 250 ms");
    const StatementOptions balance = StatementOptions::forPeriod(Balance, s.TilikausiAlku, s.TilikausiLoppu);
    const double balanceMs = medianMs(5, [&] { BalanceSheet::run(db, balance); });
    line("balance sheet, four columns", balanceMs, "< 250 ms");
    const bool balanced
        = scalar(db,
              QStringLiteral("SELECT COUNT(DISTINCT taseLoppusaldo) FROM tase WHERE taseMerkki = '**' AND "
                             "taseTyyppi = 0 AND taseteksti IN ('Vastaavaa', 'Vastattavaa')"))
              .toInt()
        == 1;
    db = QSqlDatabase();
    DBC::instance().SuljeDB();
    if (!outcome.posted || !balanced) {
        std::fprintf(
            stderr, "FAILED: the profit entries were refused or the balance sheet does not balance\n");
        return 1;
    }
    return 0;
}
