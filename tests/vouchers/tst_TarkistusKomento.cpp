#include "ReportCommand.h"
#include "TestEnv.h"

#include <QFile>
#include <QTest>

// The voucher check from the command line, as a treasurer runs it before closing the year.
class tst_TarkistusKomento final : public QObject {
    Q_OBJECT

private slots:
    void demoBooks()
    {
        TestEnv env;
        const QString books = env.path(QStringLiteral("demo1.mdb"));
        QVERIFY(ReportCommand::copyBuilt(QStringLiteral("demo1.mdb"), books));
        const QStringList check { books, QStringLiteral("tarkistus") };
        const QByteArray clean = TestEnv::readFile(books);
        ReportCommand r = ReportCommand::run(check);
        QVERIFY2(r.code == 0, qPrintable(r.err));
        QVERIFY(TestEnv::readFile(books) == clean); // with nothing to repair, nothing is written

        // An unbalanced voucher and an entry whose voucher is gone.
        QVERIFY(TestEnv::exec(books,
            { QStringLiteral(
                  "INSERT INTO \"to\" (toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, "
                  "toAutomaatti) SELECT MAX(toNumero) + 1, MAX(toPvm), 'Vino', 0, 0, 0 FROM \"to\""),
                QStringLiteral(
                    "INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viSelite) SELECT MAX(toID), "
                    "(SELECT MIN(tlID) FROM tl), 'D', 10000, 'Vino' FROM \"to\""),
                QStringLiteral(
                    "INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viSelite) VALUES (999999, 1, "
                    "'D', 1, 'x')") }));

        // Read-only books are checked without the repair (what it removes: tst_cTositeTarkistus).
        QFile::setPermissions(books, QFileDevice::ReadOwner);
        const QByteArray before = TestEnv::readFile(books);
        r = ReportCommand::run(check);
        QCOMPARE(r.code, 1);
        QVERIFY(r.out.trimmed().endsWith(QStringLiteral(" debet ja kredit saldo ei täsmää.")));
        QVERIFY(TestEnv::readFile(books) == before);

        QFile::setPermissions(books, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        r = ReportCommand::run(check);
        QCOMPARE(r.code, 1);
        QVERIFY(TestEnv::readFile(books) != before); // the repair
    }
};

QTEST_GUILESS_MAIN(tst_TarkistusKomento)
#include "tst_TarkistusKomento.moc"
