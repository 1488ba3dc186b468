// Writes the stress association: 500 accounts, a fiscal year of 100,000 vouchers and 300,000
// entries, and a previous year of the same size.
//
//   vorkam_stressgen FILE.mdb [--vouchers N]      (N vouchers a year; 100000 when not given)
#include "Schema.h"

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

constexpr int Accounts = 500;
int Vouchers = 100000;

bool fail(const QSqlQuery& q)
{
    std::fprintf(stderr, "%s\n", qPrintable(q.lastError().text()));
    return false;
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
        ok = ok && Schema::createCoreTables(db) && Schema::UpdateDatabase(db).ok;
        ok = ok && db.transaction();
        QSqlQuery a(db);
        ok = ok
            && a.prepare(QStringLiteral(
                "INSERT INTO tl (tlID, tlNumero, tlNimi, tlKuvaus, tlPrint) VALUES (?, ?, ?, ' ', 0)"));
        for (int i = 1; ok && i <= Accounts; ++i) {
            a.addBindValue(i);
            a.addBindValue(i == 1 ? 1910 : 1000 + i * 10);
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
                  { QStringLiteral("LaskettavaTili"), QStringLiteral("1") } };
        for (const auto& [key, value] : settings) {
            if (!ok)
                break;
            s.addBindValue(key);
            s.addBindValue(value);
            ok = s.exec() || fail(s);
        }
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
    std::printf("Wrote %s: %d accounts, %d vouchers and %d entries per year, two years, in %.1f s.\n",
        argv[1], Accounts, Vouchers, 3 * Vouchers, double(timer.elapsed()) / 1000.0);
    return 0;
}
