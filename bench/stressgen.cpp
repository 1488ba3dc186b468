// Writes the stress association: 500 accounts, a fiscal year of 100,000 vouchers and 300,000
// entries, a previous year of the same size, and what a whole association has besides: an income
// statement and a balance sheet over the whole chart, the two profit accounts, the settings that
// name them and every account marked for the ledger, so that every report runs on the file.
//
//   vorkam_stressgen FILE.mdb [--vouchers N]      (N vouchers a year; 100000 when not given)
#include "BenchSql.h"
#include "StressBooks.h"
#include "core/Schema.h"

#include <QCoreApplication>
#include <QDate>
#include <QElapsedTimer>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <cstdio>

namespace {

using StressBooks::BalanceProfitAccount;
using StressBooks::BalanceTemplate;
using StressBooks::IncomeProfitAccount;
using StressBooks::IncomeTemplate;

constexpr int Accounts = 500;
static_assert(IncomeProfitAccount > Accounts && BalanceProfitAccount > Accounts,
    "the vouchers are booked on the chart's accounts, never on the profit accounts");
int Vouchers = 100000;

bool fail(const QSqlQuery& q)
{
    std::fprintf(stderr, "%s\n", qPrintable(q.lastError().text()));
    return false;
}

// The chart's number of account i: 1020–6000 by tens, with the bank account 1910 first; the
// account whose number would repeat the bank's takes 1915, so that every number names one account.
int accountNumber(int i) { return i == 1 ? 1910 : i == 91 ? 1915 : 1000 + i * 10; }

// An association's pair of statements over the whole chart, each account on exactly one row: the
// income statement by activity (3000–6000) with a row per hundred accounts, its turnover group
// and its profit row on the profit account IncomeProfitAccount, and a small-undertaking balance
// sheet (1000–2999) whose equity holds the profit account BalanceProfitAccount (the setting
// VoittoTaseella, where the automatic profit entries post the year's result) and the profit line,
// a formula row taking the linked income statement's profit row.
bool writeTemplates(const QSqlDatabase& db)
{
    bool ok
        = benchSql(db,
              QStringLiteral("INSERT INTO tl (tlID, tlNumero, tlNimi, tlKuvaus, tlPrint) VALUES (?, 9990, "
                             "'Tilikauden tulos (tuloslaskelma)', 'Tilikauden tulos tuloslaskelmassa', 1)"),
              { IncomeProfitAccount })
        && benchSql(db,
            QStringLiteral("INSERT INTO tl (tlID, tlNumero, tlNimi, tlKuvaus, tlPrint) VALUES (?, 2295, "
                           "'Tilikauden tulos (tase)', 'Automaattikirjausten tulos', 1)"),
            { BalanceProfitAccount })
        && benchSql(db,
            QStringLiteral("INSERT INTO ma (maID, maNimi, maTyyppi, maSuojattu, maTulosMaID) VALUES (?, "
                           "'Yhdistyksen tuloslaskelma', 1, 0, 0)"),
            { IncomeTemplate })
        && benchSql(db,
            QStringLiteral("INSERT INTO ma (maID, maNimi, maTyyppi, maSuojattu, maTulosMaID) VALUES (?, "
                           "'Yhdistyksen tase', 2, 0, ?)"),
            { BalanceTemplate, IncomeTemplate });
    int id = 0;
    const auto row = [&](qint32 ma, const QString& teksti, int parent, const QString& tilit,
                         const QString& side, const QString& kaava = QString(), bool turnover = false,
                         bool profit = false) {
        ++id;
        ok = ok
            && benchSql(db,
                QStringLiteral("INSERT INTO mr (mrID, mrmaID, mrTeksti, mrTilit, mrKaava, mrSaldoPuoli, "
                               "mrIsEquation, mrIsLiikevaihto, mrIsVoitto, mrBelongsToGroup, mrGroupOrder) "
                               "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                { id, ma, teksti, tilit, kaava, side, kaava.isEmpty() ? 0 : 1, turnover ? 1 : 0,
                    profit ? 1 : 0, parent, id });
        return id;
    };
    // The accounts numbered from `from` to `to` + 99, as one row per hundred; the profit accounts
    // have rows of their own.
    const auto hundreds = [&](qint32 ma, int parent, int from, int to, const QString& side,
                              const QString& caption) {
        for (int h = from; h <= to; h += 100) {
            QString tilit;
            for (const QString& account : benchAccountList(db, h, h + 100).split(u',', Qt::SkipEmptyParts))
                if (account.toInt() != IncomeProfitAccount && account.toInt() != BalanceProfitAccount)
                    tilit += account + u',';
            row(ma, QStringLiteral("%1 %2").arg(caption).arg(h), parent, tilit, side);
        }
    };
    const QString k = QStringLiteral("K");
    const QString d = QStringLiteral("D");
    const int varsinainen = row(IncomeTemplate, QStringLiteral("Varsinainen toiminta"), 0, QString(), k);
    const int tuotot = row(IncomeTemplate, QStringLiteral("Varsinaisen toiminnan tuotot"), varsinainen,
        QString(), k, QString(), true);
    hundreds(IncomeTemplate, tuotot, 3000, 3900, k, QStringLiteral("Tuotot"));
    const int kulut
        = row(IncomeTemplate, QStringLiteral("Varsinaisen toiminnan kulut"), varsinainen, QString(), k);
    hundreds(IncomeTemplate, kulut, 4000, 4900, k, QStringLiteral("Kulut"));
    const int varainhankinta = row(IncomeTemplate, QStringLiteral("Varainhankinta"), 0, QString(), k);
    hundreds(IncomeTemplate, varainhankinta, 5000, 5900, k, QStringLiteral("Varainhankinta"));
    const int sijoitus
        = row(IncomeTemplate, QStringLiteral("Sijoitus- ja rahoitustoiminta"), 0, QString(), k);
    hundreds(IncomeTemplate, sijoitus, 6000, 6000, k, QStringLiteral("Rahoitus"));
    row(IncomeTemplate, QStringLiteral("Tilikauden tulos"), 0, QString(), k,
        QStringLiteral("+%1,+%2,+%3,").arg(varsinainen).arg(varainhankinta).arg(sijoitus));
    const int profitRow = row(IncomeTemplate, StressBooks::ProfitRow, 0,
        QString::number(IncomeProfitAccount) + u',', k, QString(), false, true);

    const int vastaavaa = row(BalanceTemplate, QStringLiteral("Vastaavaa"), 0, QString(), d);
    const int pysyvat = row(BalanceTemplate, QStringLiteral("Pysyvät vastaavat"), vastaavaa, QString(), d);
    hundreds(BalanceTemplate, pysyvat, 1000, 1400, d, QStringLiteral("Pysyvät"));
    const int vaihtuvat
        = row(BalanceTemplate, QStringLiteral("Vaihtuvat vastaavat"), vastaavaa, QString(), d);
    hundreds(BalanceTemplate, vaihtuvat, 1500, 1900, d, QStringLiteral("Vaihtuvat"));
    const int vastattavaa = row(BalanceTemplate, QStringLiteral("Vastattavaa"), 0, QString(), k);
    const int oma = row(BalanceTemplate, QStringLiteral("Oma pääoma"), vastattavaa, QString(), k);
    hundreds(BalanceTemplate, oma, 2000, 2200, k, QStringLiteral("Oma pääoma"));
    // The account row carries the posted result into the totals; the formula line shows the
    // income statement's result beside it and is summed into no total.
    row(BalanceTemplate, StressBooks::ProfitRow, oma, QString::number(BalanceProfitAccount) + u',', k);
    row(BalanceTemplate, QStringLiteral("Tilikauden ylijäämä tuloslaskelman mukaan"), oma, QString(), k,
        QStringLiteral("+%1,").arg(profitRow));
    const int vieras = row(BalanceTemplate, QStringLiteral("Vieras pääoma"), vastattavaa, QString(), k);
    hundreds(BalanceTemplate, vieras, 2300, 2900, k, QStringLiteral("Vieras pääoma"));
    return ok;
}

// One year: voucher i has a debit on one account and two credits that balance it.
bool writeYear(
    QSqlDatabase& db, const QString& to, const QString& vi, const QString& p, int year, quint32 seed)
{
    QSqlQuery t(db);
    QSqlQuery v(db);
    if (!t.prepare(
            QStringLiteral("INSERT INTO %1 (%2ID, %2Numero, %2Pvm, %2Selite, %2Avaustosite, %2Paatostosite, "
                           "%2Automaatti) VALUES (?, ?, ?, ?, ?, 0, 0)")
                .arg(to, p)))
        return fail(t);
    const QString e = p == u"to" ? QStringLiteral("vi") : QStringLiteral("viE");
    if (!v.prepare(
            QStringLiteral("INSERT INTO %1 (%2ID, %2toID, %2tlID, %2Tyyppi, %2Arvo, %2Selite, %2Avausvienti, "
                           "%2Paatosvienti, %2Automaatti) VALUES (?, ?, ?, ?, ?, ?, ?, 0, 0)")
                .arg(vi, e)))
        return fail(v);
    quint32 r = seed;
    const auto next = [&r] { return r = r * 1664525u + 1013904223u; };
    const QDate start(year, 1, 1);
    int viId = 0;
    for (int i = 1; i <= Vouchers; ++i) {
        const bool opening = i == 1;
        const QString selite = QStringLiteral("Tosite %1").arg(i);
        t.addBindValue(i);
        t.addBindValue(i);
        t.addBindValue(start.addDays(qint64(i) * 365 / (Vouchers + 1)).toString(Qt::ISODate));
        t.addBindValue(selite);
        t.addBindValue(opening ? 1 : 0);
        if (!t.exec())
            return fail(t);
        const qint64 amount = 100 * (1 + qint64(next() % 500000));
        const qint64 part = 100 * (qint64(next() % quint32(amount / 100)));
        const int debit = (i % 3 == 0) ? 1 : 1 + int(next() % Accounts);
        const struct {
            int tl;
            const char* type;
            qint64 arvo;
        } rows[] = { { debit, "D", amount }, { 1 + int(next() % Accounts), "K", part },
            { 1 + int(next() % Accounts), "K", amount - part } };
        for (const auto& row : rows) {
            v.addBindValue(++viId);
            v.addBindValue(i);
            v.addBindValue(row.tl);
            v.addBindValue(QString::fromLatin1(row.type));
            v.addBindValue(row.arvo);
            v.addBindValue(selite);
            v.addBindValue(opening ? 1 : 0);
            if (!v.exec())
                return fail(v);
        }
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() == 4 && args.at(2) == u"--vouchers")
        Vouchers = args.at(3).toInt();
    if ((args.size() != 2 && args.size() != 4) || Vouchers < 10) {
        std::fprintf(stderr, "usage: vorkam_stressgen FILE.mdb [--vouchers N]\n");
        return 2;
    }
    const QString file = QString::fromLocal8Bit(argv[1]);
    QFile::remove(file);
    QElapsedTimer timer;
    timer.start();
    bool ok = true;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("stressgen"));
        db.setDatabaseName(file);
        ok = db.open();
        QSqlQuery q(db);
        // Speed over safety while writing a throw-away file; the finished file is a normal one.
        ok = ok && q.exec(QStringLiteral("PRAGMA journal_mode=OFF"))
            && q.exec(QStringLiteral("PRAGMA synchronous=OFF"));
        if (ok)
            Schema::createCoreTables(db);
        ok = ok && Schema::UpdateDatabase(db).ok;
        ok = ok && db.transaction();
        QSqlQuery a(db);
        ok = ok
            && a.prepare(QStringLiteral(
                "INSERT INTO tl (tlID, tlNumero, tlNimi, tlKuvaus, tlPrint) VALUES (?, ?, ?, ' ', 1)"));
        for (int i = 1; ok && i <= Accounts; ++i) {
            a.addBindValue(i);
            a.addBindValue(accountNumber(i));
            a.addBindValue(i == 1 ? QStringLiteral("Pankkitili") : QStringLiteral("Tili %1").arg(i));
            ok = a.exec() || fail(a);
        }
        const int year = QDate::currentDate().year();
        QSqlQuery s(db);
        ok = ok
            && s.prepare(QStringLiteral(
                "INSERT INTO Settings (setSection, setKey, setString) VALUES ('VORKAM', ?, ?)"));
        const QList<QPair<QString, QString>> settings
            = { { QStringLiteral("Seurannimi"), QStringLiteral("Stressiyhdistys ry") },
                  { QStringLiteral("TilikausiAlku"), QStringLiteral("1.1.%1").arg(year) },
                  { QStringLiteral("TilikausiLoppu"), QStringLiteral("31.12.%1").arg(year) },
                  { QStringLiteral("EdTilikausiAlku"), QStringLiteral("1.1.%1").arg(year - 1) },
                  { QStringLiteral("EdTilikausiLoppu"), QStringLiteral("31.12.%1").arg(year - 1) },
                  { QStringLiteral("LaskettavaTili"), QStringLiteral("1") },
                  { QStringLiteral("VoittoTaseella"), QString::number(BalanceProfitAccount) } };
        for (const auto& [key, value] : settings) {
            if (!ok)
                break;
            s.addBindValue(key);
            s.addBindValue(value);
            ok = s.exec() || fail(s);
        }
        ok = ok && writeTemplates(db);
        ok = ok
            && writeYear(db, QStringLiteral("\"to\""), QStringLiteral("vi"), QStringLiteral("to"), year, 1);
        ok = ok
            && writeYear(
                db, QStringLiteral("toE"), QStringLiteral("viE"), QStringLiteral("toE"), year - 1, 2);
        ok = ok && db.commit();
        ok = ok && q.exec(QStringLiteral("PRAGMA journal_mode=DELETE")) && q.exec(QStringLiteral("ANALYZE"));
        db.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("stressgen"));
    if (!ok) {
        std::fprintf(stderr, "Writing %s failed.\n", argv[1]);
        return 1;
    }
    std::printf("Wrote %s: %d accounts and two profit accounts, an income statement and a balance sheet, "
                "%d vouchers and %d entries per year, two years, in %.1f s.\n",
        argv[1], Accounts, Vouchers, 3 * Vouchers, double(timer.elapsed()) / 1000.0);
    return 0;
}
