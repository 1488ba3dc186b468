#include "BankFiles.h"
#include "ReportCommand.h"
#include "TestEnv.h"
#include "banking/BankImport.h"
#include "banking/References.h"
#include "core/DatabaseError.h"
#include "core/Dates.h"
#include "core/ProgramSettings.h"
#include "core/Schema.h"
#include "core/SettingsStore.h"
#include "vouchers/cTositeTarkistus.h"

#include <QFile>
#include <QSqlQuery>
#include <QTest>
#include <numeric>

using namespace BankFiles;
using BankImport::Source;
using BankImport::State;

namespace {

const char* const Iban = "FI2112345600000785";

BankStatement parsed(const QByteArray& content)
{
    const BankReadResult r = BankStatements::read(content);
    if (!r.statement)
        qWarning("refused: %s", qPrintable(r.error));
    return r.statement.value_or(BankStatement {});
}

} // namespace

// Reading statements, and the vouchers they become in a copy of the demo association's books.
class tst_BankImport : public QObject {
    Q_OBJECT

    std::unique_ptr<TestEnv> env;
    QSqlDatabase db;
    qint32 bank = 0; // 1910 Pankkitili
    QDate start, end; // the fiscal year

    QString day(int month, int d) const { return QDate(start.year(), month, d).toString(Qt::ISODate); }
    qint32 account(int numero) const
    {
        return Sql::scalar(db, QStringLiteral("SELECT tlID FROM tl WHERE tlNumero = ?"), { numero }).toInt();
    }
    qint64 scalar(const QString& sql) const { return Sql::scalar(db, sql).toLongLong(); }
    BankImport::Plan propose(const QByteArray& file, qint32 to = 0)
    {
        return BankImport::propose(db, parsed(file), to ? to : bank, start, end);
    }
    static std::vector<size_t> all(const BankImport::Plan& plan)
    {
        std::vector<size_t> out(plan.proposals.size());
        std::iota(out.begin(), out.end(), size_t(0));
        return out;
    }
    // Debits less credits of every entry: zero in balanced books.
    qint64 imbalance() const
    {
        return scalar(
            QStringLiteral("SELECT COALESCE(SUM(CASE viTyyppi WHEN 'D' THEN viArvo ELSE -viArvo END), 0) "
                           "FROM vi"));
    }
    void reopen()
    {
        db.close();
        QVERIFY(db.open());
    }

private slots:
    void init()
    {
        env = std::make_unique<TestEnv>();
        const QString books = env->path(QStringLiteral("seura.mdb"));
        QVERIFY(QFile::copy(QStringLiteral(VORKAM_BIN_DIR "/demo1.mdb"), books));
        QFile::setPermissions(books, QFile::ReadOwner | QFile::WriteOwner);
        db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bank"));
        db.setDatabaseName(books);
        QVERIFY(db.open());
        QVERIFY(Schema::UpdateDatabase(db).ok);
        DbSettingsStore settings(db);
        start = Dates::parse(settings.read(QStringLiteral("TilikausiAlku"), {}));
        end = Dates::parse(settings.read(QStringLiteral("TilikausiLoppu"), {}));
        QVERIFY(start.isValid() && end.isValid());
        bank = account(1910);
        QVERIFY(bank);
    }
    void cleanup()
    {
        db.close();
        db = {};
        QSqlDatabase::removeDatabase(QStringLiteral("bank"));
        env.reset();
    }

    void references_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("usable");
        textRow("national", "12344", "12344");
        textRow("national with blanks", "1234 5678 9012 3450", "1234567890123450");
        textRow("national, wrong check digit", "12345", "");
        textRow("national, zero-filled field", "00000000000000012344", "12344");
        textRow("national, too short", "13", "");
        textRow("RF", "RF18 5390 0754 7034", "RF18539007547034");
        textRow("RF, small letters", "rf18539007547034", "RF18539007547034");
        textRow("RF, wrong check", "RF19539007547034", "");
        textRow("free text", "Jasenmaksu", "");
    }
    void references()
    {
        QFETCH(QString, text);
        QFETCH(QString, usable);
        QCOMPARE(References::usable(text), usable);
    }

    void camtEntriesBecomeLines()
    {
        for (const int version : { 2, 8 }) {
            const BankStatement s
                = parsed(camt({ { "120.50", "CRDT", "2026-03-02", "A1", "Matti  Meikäläinen",
                                    "FI4950009420028730", "12344", "" },
                                  { "45.00", "DBIT", "2026-03-03", "A2", "Kukkakauppa Oy",
                                      "FI7944052020036082", "", "Lasku 17" } },
                    "1000.00", "1075.50", Iban, version));
            QCOMPARE(s.iban, QString::fromLatin1(Iban));
            QCOMPARE(s.lines.size(), size_t(2));
            const BankLine& in = s.lines[0];
            QCOMPARE(in.amount, Money::fromCents(12050));
            QCOMPARE(in.counterparty, QStringLiteral("Matti Meikäläinen"));
            QCOMPARE(in.counterpartyAccount, QStringLiteral("FI4950009420028730"));
            QCOMPARE(in.reference, QStringLiteral("12344"));
            QCOMPARE(in.archiveRef, QStringLiteral("A1"));
            QCOMPARE(in.bookingDate, QDate(2026, 3, 2));
            const BankLine& out = s.lines[1];
            QCOMPARE(out.amount, Money::fromCents(-4500));
            QCOMPARE(out.counterparty, QStringLiteral("Kukkakauppa Oy"));
            QCOMPARE(out.message, QStringLiteral("Lasku 17"));
        }
    }

    void batchGivesALinePerTransaction()
    {
        Entry batch { "30.00", "CRDT", "2026-03-04", "B1" };
        batch.details = txDetails({ "10.00", "CRDT", "", "", "Aino", "", "", "Kurssi" }, 2)
                            .replace("<TxDtls>", "<TxDtls><Amt Ccy=\"EUR\">10.00</Amt>")
            + txDetails({ "20.00", "CRDT", "", "", "Eino", "", "", "Kurssi" }, 2)
                  .replace("<TxDtls>", "<TxDtls><Amt Ccy=\"EUR\">20.00</Amt>");
        const BankStatement s = parsed(camt({ batch }, "0", "30.00"));
        QCOMPARE(s.lines.size(), size_t(2));
        QCOMPARE(s.lines[0].counterparty, QStringLiteral("Aino"));
        QCOMPARE(s.lines[1].amount, Money::fromCents(2000));
        QCOMPARE(s.lines[1].archiveRef, QStringLiteral("B1/2"));
    }

    void reversalAndForeignCurrencyAreMarked()
    {
        Entry reversal { "5.00", "CRDT", "2026-03-05", "R1", "Kauppa" };
        reversal.reversal = true;
        Entry dollars { "7.00", "CRDT", "2026-03-05", "U1", "Shop" };
        dollars.currency = "USD";
        const BankStatement s = parsed(camt({ reversal, dollars }, "0", "12.00"));
        QVERIFY(s.lines[0].reversal);
        QVERIFY(s.lines[0].problem.isEmpty());
        QVERIFY(BankImport::description(s.lines[0]).startsWith(QStringLiteral("Palautus: Kauppa")));
        QVERIFY(s.lines[1].problem.contains(QStringLiteral("USD")));
    }

    void badFilesAreRefused_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("says");
        const QByteArray good = camt({ { "1.00", "CRDT", "2026-03-02", "A1" } }, "0", "1.00");
        QTest::newRow("truncated") << good.left(good.size() / 2) << "vioittunut tai katkennut";
        QTest::newRow("not XML") << QByteArray("hello") << "ei ole tiliote";
        QTest::newRow("another message")
            << QByteArray(good).replace("camt.053.001.02", "camt.054.001.02") << "ei ole camt.053";
        QTest::newRow("balances off")
            << camt({ { "1.00", "CRDT", "2026-03-02", "A1" } }, "0", "2.00") << "Ero on 1,00 €";
        QTest::newRow("no lines") << camt({}, "0", "0") << "ei ole yhtään tapahtumaa";
        QTest::newRow("bad amount") << camt({ { "1,00", "CRDT", "2026-03-02", "A1" } }, "0", "1.00")
                                    << "virheellinen summa";
        QTest::newRow("empty") << QByteArray() << "tyhjä";
    }
    void badFilesAreRefused()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, says);
        const BankReadResult r = BankStatements::read(content);
        QVERIFY(!r.statement);
        QVERIFY2(r.error.contains(says), qPrintable(r.error));
    }

    void titoRecordsBecomeLines()
    {
        const QByteArray file = record(322,
                                    { { 1, "T00322100" }, { 10, "12345600000785" }, { 72, titoAmount(10000) },
                                        { 97, "EUR" }, { 293, "FI2112345600000785 NDEAFIHH" } })
            + "\r\n"
            + record(188,
                { { 1, "T10188000001" }, { 13, "ARK1" }, { 31, "260302" }, { 49, "1" }, { 53, "VIITESIIRTO" },
                    { 88, titoAmount(2500) }, { 109, "VIRTANEN PEKKA" }, { 160, "00000000000000012344" } })
            + "\n" + record(80, { { 1, "T11080" }, { 7, "00" }, { 9, "Jasenmaksu 2026" } }) + "\n"
            + record(188,
                { { 1, "T10188000002" }, { 13, "ARK2" }, { 31, "260303" }, { 49, "2" }, { 53, "TILISIIRTO" },
                    { 88, titoAmount(-1000) }, { 109, "POSTI" } })
            + "\n" + record(50, { { 1, "T40050260331" }, { 13, titoAmount(11500) } }) + "\n";
        const BankStatement s = parsed(file);
        QCOMPARE(s.iban, QStringLiteral("FI2112345600000785"));
        QCOMPARE(s.lines.size(), size_t(2));
        QCOMPARE(s.lines[0].amount, Money::fromCents(2500));
        QCOMPARE(s.lines[0].message, QStringLiteral("Jasenmaksu 2026"));
        QCOMPARE(References::usable(s.lines[0].reference), QStringLiteral("12344"));
        QCOMPARE(s.lines[1].amount, Money::fromCents(-1000));
        QCOMPARE(s.lines[1].bookingDate, QDate(2026, 3, 3));
        QVERIFY(BankStatements::read(file + "T99\n").statement);
        QVERIFY(!BankStatements::read(file + "Kissa\n").statement);
        QVERIFY(
            !BankStatements::read(QByteArray(file).replace(titoAmount(11500), titoAmount(11501))).statement);
    }

    // Itemised records of a TITO batch (a level above 0) become the lines when they add up.
    void titoBatchGivesALinePerItem()
    {
        const auto item = [](const char* number, qint64 cents, const char* level, const char* name) {
            return record(188,
                       { { 1, "T10188" }, { 7, number }, { 13, level[0] == '0' ? "ARK9" : "" },
                           { 31, "260310" }, { 49, "1" }, { 88, titoAmount(cents) }, { 109, name },
                           { 188, level } })
                + "\n";
        };
        const QByteArray file
            = record(322, { { 1, "T00322100" }, { 72, titoAmount(0) }, { 293, "FI21123456" } }) + "\n"
            + item("000001", 3000, "0", "ERA") + item("000002", 1000, "1", "AINO")
            + item("000003", 2000, "1", "EINO")
            + record(50, { { 1, "T40050260331" }, { 13, titoAmount(3000) } });
        const BankStatement s = parsed(file);
        QCOMPARE(s.lines.size(), size_t(2));
        QCOMPARE(s.lines[1].counterparty, QStringLiteral("EINO"));
        QCOMPARE(s.lines[1].amount, Money::fromCents(2000));
        QCOMPARE(s.lines[1].archiveRef, QStringLiteral("ARK9/2"));
        QCOMPARE(s.lines[1].bookingDate, QDate(2026, 3, 10));
    }

    // A month becomes balanced vouchers, the same file again adds nothing, also after a restart.
    void monthIsStoredOnceInOneTransaction()
    {
        const QByteArray march
            = camt({ { "120.50", "CRDT", qPrintable(day(3, 2)), "A1", "Matti", "", "12344" },
                       { "45.00", "DBIT", qPrintable(day(3, 3)), "A2", "Kukka Oy" },
                       { "9.99", "DBIT", qPrintable(day(3, 4)), "A3", "Pankki", "", "", "Palvelumaksu" } },
                "0", "65.51");
        const qint64 vouchers = scalar(QStringLiteral("SELECT COUNT(*) FROM \"to\""));
        const qint64 maxNumber = scalar(QStringLiteral("SELECT MAX(toNumero) FROM \"to\""));
        BankImport::Plan plan = propose(march);
        QVERIFY(plan.error.isEmpty());
        QCOMPARE(plan.linesIn(State::New), 3);
        QCOMPARE(plan.suspenseAccount, 0); // the demo has none yet
        const BankImport::Stored refused = BankImport::store(db, plan, all(plan));
        QVERIFY(refused.error.contains(QStringLiteral("vastatili puuttuu")));
        QCOMPARE(scalar(QStringLiteral("SELECT COUNT(*) FROM \"to\"")), vouchers);

        const BankImport::CreatedSuspense created
            = BankImport::createSuspenseAccount(db, BankImport::suspenseOffer(db));
        QCOMPARE(created.rows, QStringList { QStringLiteral("Yhdistyksen tase: Saamiset") });
        plan = propose(march);
        QCOMPARE(plan.suspenseAccount, created.tlId);
        const BankImport::Plan stale = propose(march); // a second window on the same file
        const BankImport::Stored stored = BankImport::store(db, plan, all(plan));
        QVERIFY2(stored.error.isEmpty(), qPrintable(stored.error));
        QCOMPARE(stored.vouchers, 3);
        QCOMPARE(stored.onSuspense, 3);
        QCOMPARE(stored.firstNumber, maxNumber + 1);
        QCOMPARE(imbalance(), 0);
        QCOMPARE(
            scalar(QStringLiteral("SELECT viArvo FROM vi JOIN \"to\" ON toID = vitoID WHERE toNumero = %1 "
                                  "AND viTyyppi = 'K' AND vitlID = %2")
                       .arg(maxNumber + 2)
                       .arg(bank)),
            450000);

        // The stale plan's first line is stored now: the whole set is refused and rolled back.
        QVERIFY(BankImport::store(db, stale, all(stale)).error.contains(QStringLiteral("on jo tuotu")));
        QCOMPARE(scalar(QStringLiteral("SELECT COUNT(*) FROM \"to\"")), vouchers + 3);
        reopen();
        plan = propose(march);
        QCOMPARE(plan.linesIn(State::Imported), 3);
        QVERIFY(!BankImport::store(db, plan, all(plan)).error.isEmpty());
        QCOMPARE(scalar(QStringLiteral("SELECT COUNT(*) FROM \"to\"")), vouchers + 3);
    }

    // Reference first, then the counterparty's account, then the name, then the message's words.
    void proposalsLearnFromCorrectedVouchers()
    {
        BankImport::createSuspenseAccount(db, BankImport::suspenseOffer(db));
        const QByteArray first
            = camt({ { "10.00", "CRDT", qPrintable(day(2, 1)), "F1", "Aino", "FI4950009420028730", "12344" },
                       { "20.00", "CRDT", qPrintable(day(2, 2)), "F2", "Eino", "FI7944052020036082" },
                       { "30.00", "CRDT", qPrintable(day(2, 3)), "F3", "Toivo" },
                       { "40.00", "DBIT", qPrintable(day(2, 4)), "F4", "", "", "", "Kevatretken bussi" } },
                "0", "20.00");
        BankImport::Plan plan = propose(first);
        QVERIFY(BankImport::store(db, plan, all(plan)).error.isEmpty());
        // The treasurer corrects each counter-entry in the voucher window.
        const qint32 corrected[]
            = { account(3000), account(3010), account(3100), account(4000), account(4500) };
        for (int i = 0; i < 5; ++i) {
            QVERIFY(corrected[i]);
            QSqlQuery q(db);
            QVERIFY(q.exec(QStringLiteral("UPDATE vi SET vitlID = %1 WHERE vitlID <> %2 AND vitoID = (SELECT "
                                          "blVoucher FROM BankLines WHERE blArchiveRef = 'F%3')")
                               .arg(corrected[i])
                               .arg(bank)
                               .arg(i + 1)));
        }
        const QByteArray second
            = camt({ { "10.00", "CRDT", qPrintable(day(3, 1)), "S1", "Eino", "FI7944052020036082", "12344" },
                       { "20.00", "CRDT", qPrintable(day(3, 2)), "S2", "Toivo", "FI7944052020036082" },
                       { "30.00", "CRDT", qPrintable(day(3, 3)), "S3", "toivo" },
                       { "40.00", "DBIT", qPrintable(day(3, 4)), "S4", "", "", "", "Syysretken bussi" },
                       // A reference with a wrong check digit teaches nothing.
                       { "50.00", "DBIT", qPrintable(day(3, 5)), "S5", "", "", "12345", "" },
                       { "60.00", "DBIT", "1999-01-01", "S6" } },
                "15.00", "-75.00");
        plan = propose(second);
        const std::pair<qint32, Source> expected[] = { { corrected[0], Source::Reference },
            { corrected[1], Source::CounterpartyAccount }, { corrected[2], Source::CounterpartyName },
            { corrected[3], Source::Words }, { plan.suspenseAccount, Source::Suspense } };
        for (int i = 0; i < 5; ++i) {
            QCOMPARE(plan.proposals[i].counterAccount, expected[i].first);
            QCOMPARE(plan.proposals[i].source, expected[i].second);
        }
        QCOMPARE(plan.proposals[5].state, State::OutsideYear);
        const BankImport::Stored stored = BankImport::store(db, plan, all(plan));
        QCOMPARE(stored.vouchers, 5);
        QCOMPARE(stored.onSuspense, 1);
        QCOMPARE(scalar(QStringLiteral("SELECT COUNT(*) FROM \"to\" WHERE toPvm LIKE '1999%'")), 0);
        QCOMPARE(imbalance(), 0);
    }

    // An account chosen in the settings is the suspense account; no other is offered.
    void chosenSuspenseAccountIsUsed()
    {
        QVERIFY(DbSettingsStore(db).write(QStringLiteral("Selvittelytili"), QString::number(account(1800))));
        const BankImport::Plan plan
            = propose(camt({ { "1.00", "CRDT", qPrintable(day(3, 2)), "A1" } }, "0", "1.00"));
        QCOMPARE(plan.suspenseAccount, account(1800));
        QCOMPARE(plan.proposals.front().counterAccount, account(1800));
    }

    void statementIsBoundToItsAccount()
    {
        BankImport::createSuspenseAccount(db, BankImport::suspenseOffer(db));
        const QByteArray file = camt({ { "1.00", "CRDT", qPrintable(day(3, 2)), "A1" } }, "0", "1.00");
        BankImport::Plan plan = propose(file);
        QVERIFY(BankImport::store(db, plan, all(plan)).error.isEmpty());
        QVERIFY(propose(file, account(1915)).error.contains(QStringLiteral("on tuotu tilille 1910")));
        const QByteArray other
            = camt({ { "1.00", "CRDT", qPrintable(day(3, 2)), "A1" } }, "0", "1.00", "FI7944052020036082");
        plan = propose(other);
        QVERIFY(plan.error.contains(QStringLiteral("FI7944052020036082")));
        QVERIFY(!BankImport::store(db, plan, all(plan)).error.isEmpty());
    }

    // The command proposes without writing, stores with --tallenna once, and exits 1 for a
    // refused statement and 3 for a file it cannot read.
    void commandLine()
    {
        db.close();
        const QString books = db.databaseName();
        const QString file = env->path(QStringLiteral("ote.xml"));
        QVERIFY(TestEnv::writeFile(file,
            camt(
                { { "120.50", "CRDT", qPrintable(day(3, 2)), "A1", "Matti", "", "12344" } }, "0", "120.50")));
        const QByteArray before = TestEnv::readFile(books);
        const QStringList args { books, QStringLiteral("tiliote"), file, QStringLiteral("--account"),
            QStringLiteral("1910") };
        ReportCommand r = ReportCommand::run(args);
        QCOMPARE(r.code, 0);
        QVERIFY2(r.out.contains(QStringLiteral("120,50  Matti")), qPrintable(r.out));
        QCOMPARE(TestEnv::readFile(books), before);
        r = ReportCommand::run(args + QStringList { QStringLiteral("--tallenna") });
        QCOMPARE(r.code, 0);
        QVERIFY2(r.out.contains(QStringLiteral("Luotiin tili 1890 Selvittelytili")), qPrintable(r.out));
        QVERIFY(r.out.contains(QStringLiteral("Tallennettiin 1 tositetta")));
        r = ReportCommand::run(args + QStringList { QStringLiteral("--tallenna") });
        QCOMPARE(r.code, 0);
        QVERIFY(r.out.contains(QStringLiteral("Tuotu jo aiemmin.")));
        QVERIFY(r.out.contains(QStringLiteral("mitään ei tallennettu")));
        QFile::setPermissions(books, QFile::ReadOwner);
        QCOMPARE(ReportCommand::run(args + QStringList { QStringLiteral("--tallenna") }).code, 3);
        QVERIFY(TestEnv::writeFile(file, "kissa"));
        QCOMPARE(ReportCommand::run(args).code, 1);
        QStringList missing = args;
        missing[2] = file + QStringLiteral(".puuttuu");
        QCOMPARE(ReportCommand::run(missing).code, 3);
        QVERIFY(db.open());
        QCOMPARE(scalar(QStringLiteral("SELECT COUNT(*) FROM BankLines")), 1);
    }
};

QTEST_GUILESS_MAIN(tst_BankImport)
#include "tst_BankImport.moc"
