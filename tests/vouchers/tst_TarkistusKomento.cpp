#include "ReportCommand.h"
#include "TestEnv.h"

#include <QFile>
#include <QProcess>
#include <QSqlQuery>
#include <QTest>

namespace {

struct Result {
    int code = -1;
    QStringList lines;
    QString err;
};

Result check(const QString& books)
{
    const ReportCommand r = ReportCommand::run({ books, QStringLiteral("tarkistus") });
    return { r.code, r.out.split(u'\n', Qt::SkipEmptyParts), r.err };
}

void exec(const QString& file, const QStringList& statements)
{
    withDatabase(file, [&](QSqlDatabase& db) {
        for (const QString& sql : statements) {
            QSqlQuery q(db);
            QVERIFY2(q.exec(sql), qPrintable(sql));
        }
    });
}

int count(const QString& file, const QString& sql)
{
    int n = -1;
    withDatabase(file, [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        if (q.exec(sql) && q.next())
            n = q.value(0).toInt();
    });
    return n;
}

} // namespace

// The voucher check from the command line, as a treasurer runs it before closing the year.
class tst_TarkistusKomento final : public QObject {
    Q_OBJECT

private slots:
    void demoBooks()
    {
        TestEnv env;
        const QString books = env.path(QStringLiteral("demo1.mdb"));
        QVERIFY(ReportCommand::copyBuilt(QStringLiteral("demo1.mdb"), books));
        Result r = check(books);
        QVERIFY2(r.code == 0, qPrintable(r.err));
        QCOMPARE(r.lines, QStringList { QStringLiteral("Tarkistus suoritettu virheettömästi.") });

        // An unbalanced voucher and an entry whose voucher is gone.
        exec(books,
            { QStringLiteral(
                  "INSERT INTO \"to\" (toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, "
                  "toAutomaatti) SELECT MAX(toNumero) + 1, MAX(toPvm), 'Vino', 0, 0, 0 FROM \"to\""),
                QStringLiteral(
                    "INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viSelite) SELECT MAX(toID), "
                    "(SELECT MIN(tlID) FROM tl), 'D', 10000, 'Vino' FROM \"to\""),
                QStringLiteral(
                    "INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viSelite) VALUES (999999, 1, "
                    "'D', 1, 'x')") });
        const int numero = count(books, QStringLiteral("SELECT MAX(toNumero) FROM \"to\""));

        // Read-only books are checked without the repair.
        QFile::setPermissions(books, QFileDevice::ReadOwner);
        r = check(books);
        QCOMPARE(r.code, 1);
        QCOMPARE(r.lines,
            QStringList { QStringLiteral("Tositteen no: %1 debet ja kredit saldo ei täsmää.").arg(numero) });
        QCOMPARE(count(books, QStringLiteral("SELECT COUNT(*) FROM vi WHERE vitoID = 999999")), 1);

        QFile::setPermissions(books, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        r = check(books);
        QCOMPARE(r.code, 1);
        QCOMPARE(r.lines.size(), 1);
        QCOMPARE(count(books, QStringLiteral("SELECT COUNT(*) FROM vi WHERE vitoID = 999999")), 0);
    }

    // Damaged files are refused in the tests of damaged files; a missing one too.
    void missingBooks()
    {
        TestEnv env;
        QCOMPARE(check(env.path(QStringLiteral("puuttuu.mdb"))).code, 3);
    }
};

QTEST_GUILESS_MAIN(tst_TarkistusKomento)
#include "tst_TarkistusKomento.moc"
