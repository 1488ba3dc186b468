#include "Dates.h"
#include "Paths.h"
#include "PrintOptions.h"
#include "ScriptedDialogs.h"
#include "StatementFixture.h"
#include "TilikaudenVaihto.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>
#include <csignal>
#include <stdexcept>
#include <unistd.h>

namespace {

using F = StatementFixture;

void setYears(const QDate& alku, const QDate& loppu, const QDate& edAlku, const QDate& edLoppu)
{
    BookkeepingSettings& s = ProgramSettings::bookkeeping();
    s.TilikausiAlku = alku;
    s.TilikausiLoppu = loppu;
    s.EdTilikausiAlku = edAlku;
    s.EdTilikausiLoppu = edLoppu;
    ProgramSettings::saveBookkeeping(F::db());
}

// Everything the change touches, as text: both years' vouchers and entries with their keys,
// the stored dates and those in force.
QStringList books()
{
    QStringList lines;
    const QStringList queries {
        QStringLiteral("SELECT * FROM \"to\" ORDER BY toID"),
        QStringLiteral("SELECT * FROM vi ORDER BY viID"),
        QStringLiteral("SELECT * FROM toE ORDER BY toEID"),
        QStringLiteral("SELECT * FROM viE ORDER BY viEID"),
        QStringLiteral(
            "SELECT setKey, setString FROM Settings WHERE setKey LIKE '%Tilikausi%' ORDER BY setKey"),
    };
    for (const QString& sql : queries) {
        QSqlQuery q(F::db());
        q.exec(sql);
        while (q.next()) {
            QStringList cells;
            for (int i = 0; i < q.record().count(); ++i)
                cells << q.value(i).toString();
            lines << cells.join(u'|');
        }
        lines << QStringLiteral("--");
    }
    const TilikaudenVaihto::Kaudet k = TilikaudenVaihto::nykyiset();
    lines << Dates::format(k.alku) + u' ' + Dates::format(k.loppu) + u' ' + Dates::format(k.edAlku) + u' '
            + Dates::format(k.edLoppu);
    return lines;
}

QStringList safetyCopies() { return QDir(Paths::defaultBackupDir()).entryList(QDir::Files); }

// The small association with the fiscal year 2011 (the previous 2010), its opening balances and
// the year's postings; 2010 has a voucher of its own. Balance sheet 3 names no income statement.
// Closing balances 2011: bank 1 1 800,00 D; 4 −200,00 (credit); 8 1 000,00 K; 9 500,00 K;
// profit 2 100,00 K once the profit entries are posted (sales 300,00, expenses 200,00).
void booksOf2011()
{
    F::smallAssociation();
    F::malli(3, QStringLiteral("Aakkosissa ensin"), 2, 0);
    setYears(QDate(2011, 1, 1), QDate(2011, 12, 31), QDate(2010, 1, 1), QDate(2010, 12, 31));
    F::post(QStringLiteral("2011-01-01"), 1, 8, 100000, false, true);
    F::post(QStringLiteral("2011-03-01"), 1, 9, 50000);
    F::post(QStringLiteral("2011-04-10"), 1, 3, 30000);
    F::post(QStringLiteral("2011-05-10"), 5, 1, 20000);
    F::post(QStringLiteral("2011-06-10"), 1, 4, 20000);
    F::post(QStringLiteral("2010-01-01"), 1, 8, 70000, true, true);
    F::post(QStringLiteral("2010-05-01"), 5, 1, 1234, true);
}

class ThrowAt final : public std::runtime_error {
public:
    ThrowAt()
        : std::runtime_error("keskeytetty")
    {
    }
};

// The program killed in the middle of the change: a second process runs it on `file` and is
// killed when stage `stage` is done, before the transaction is committed.
int changeAndDie(const QString& file, const QString& dataDir, int stage)
{
    Paths::setDataDir(dataDir);
    ProgramSettings::installation().Database = file;
    const QSqlDatabase db = DBC::instance().AvaaDB();
    if (!db.isOpen())
        return 2;
    ProgramSettings::loadBookkeeping(db, file);
    TilikaudenVaihto vaihto(db);
    vaihto.setEdistyminen([stage](const QString& teksti, int valmiina) {
        if (valmiina == stage && teksti == TilikaudenVaihto::vaiheTeksti(stage))
            ::kill(::getpid(), SIGKILL);
    });
    vaihto.suorita(2, true);
    return 3;
}

} // namespace

class tst_TilikaudenVaihto : public QObject {
    Q_OBJECT

private slots:
    void dates_data();
    void dates();
    void refusals_data();
    void refusals();
    void withoutOpeningEntries();
    void openingEntries();
    void historyReplaced();
    void slipsRefuse_data();
    void slipsRefuse();
    void failureLeavesBooks_data();
    void failureLeavesBooks();
    void fullDiskLeavesBooks();
    void readOnlyBooks();
    void safetyCopyImpossible();
    void killedLeavesBooks_data();
    void killedLeavesBooks();
};

void tst_TilikaudenVaihto::dates_data()
{
    QTest::addColumn<QDate>("alku");
    QTest::addColumn<QDate>("loppu");
    QTest::addColumn<QDate>("edAlku");
    QTest::addColumn<QDate>("edLoppu");
    QTest::addColumn<QString>("expected");
    QTest::newRow("calendar years") << QDate(2011, 1, 1) << QDate(2011, 12, 31) << QDate(2010, 1, 1)
                                    << QDate(2010, 12, 31) << "1.1.2012 31.12.2012 1.1.2011 31.12.2011";
    QTest::newRow("29 February") << QDate(2011, 3, 1) << QDate(2012, 2, 29) << QDate(2010, 3, 1)
                                 << QDate(2011, 2, 28) << "1.3.2012 28.2.2013 1.3.2011 28.2.2012";
    QTest::newRow("gap kept") << QDate(2011, 7, 1) << QDate(2012, 6, 30) << QDate(2010, 1, 1)
                              << QDate(2010, 12, 31) << "1.7.2012 30.6.2013 1.1.2011 31.12.2011";
    QTest::newRow("overlap kept") << QDate(2011, 1, 1) << QDate(2011, 12, 31) << QDate(2010, 1, 1)
                                  << QDate(2011, 3, 31) << "1.1.2012 31.12.2012 1.1.2011 31.3.2012";
}

// The four dates move one year each, are stored, survive a restart and become the report period.
void tst_TilikaudenVaihto::dates()
{
    QFETCH(QDate, alku);
    QFETCH(QDate, loppu);
    QFETCH(QDate, edAlku);
    QFETCH(QDate, edLoppu);
    QFETCH(QString, expected);
    F f;
    QVERIFY(f.ok);
    ScriptedDialogs dialogs;
    setYears(alku, loppu, edAlku, edLoppu);
    PrintOptions::current().alkupvm = QDate(2011, 5, 1);
    PrintOptions::current().loppupvm = QDate(2011, 5, 31);

    TilikaudenVaihto vaihto(F::db());
    QVERIFY(vaihto.suorita(0, false));
    QCOMPARE(dialogs.transcript(), QStringList());
    const TilikaudenVaihto::Kaudet k = TilikaudenVaihto::nykyiset();
    const auto text = [](const TilikaudenVaihto::Kaudet& d) {
        return QStringList { Dates::format(d.alku), Dates::format(d.loppu), Dates::format(d.edAlku),
            Dates::format(d.edLoppu) }
            .join(u' ');
    };
    QCOMPARE(text(k), expected);
    QCOMPARE(text(TilikaudenVaihto::seuraavat({ alku, loppu, edAlku, edLoppu })), expected);
    QCOMPARE(PrintOptions::current().alkupvm, k.alku);
    QCOMPARE(PrintOptions::current().loppupvm, k.loppu);

    // A restart reads the new year from the books.
    ProgramSettings::bookkeeping() = BookkeepingSettings::defaults(QDate(2030, 6, 1));
    ProgramSettings::loadBookkeeping(F::db(), F::db().databaseName());
    QCOMPARE(text(TilikaudenVaihto::nykyiset()), expected);
}

void tst_TilikaudenVaihto::refusals_data()
{
    QTest::addColumn<int>("malli"); // -1: nothing chosen
    QTest::addColumn<bool>("avausviennit");
    QTest::addColumn<QString>("message");
    const QString noIncome = QStringLiteral("information: Tasemallille ei ole määritelty tuloslaskelmaa, "
                                            "jonka perusteella tilikauden voitto kirjataan.");
    QTest::newRow("nothing chosen") << -1 << true
                                    << "information: Valitse tasemalli, jonka mukaan kirjataan avausviennit!";
    QTest::newRow("nothing chosen, no opening entries")
        << -1 << false << "information: Valitse tasemalli, jonka mukaan kirjataan avausviennit!";
    QTest::newRow("blank item with opening entries") << 0 << true << noIncome;
    QTest::newRow("no income statement linked") << 3 << true << noIncome;
    QTest::newRow("no such template") << 77 << true << noIncome;
}

// The refusals come before anything is written, the safety copy included.
void tst_TilikaudenVaihto::refusals()
{
    QFETCH(int, malli);
    QFETCH(bool, avausviennit);
    QFETCH(QString, message);
    F f;
    QVERIFY(f.ok);
    booksOf2011();
    const QStringList before = books();
    ScriptedDialogs dialogs;
    TilikaudenVaihto vaihto(F::db());
    QVERIFY(!vaihto.suorita(malli < 0 ? std::nullopt : std::optional<qint32>(malli), avausviennit));
    QCOMPARE(dialogs.transcript(), QStringList { message });
    QCOMPARE(books(), before);
    QVERIFY(vaihto.varmuuskopio().isEmpty());
    QCOMPARE(safetyCopies(), QStringList());
}

// Without opening entries nothing is computed: no statement, no profit entries, an empty new year.
void tst_TilikaudenVaihto::withoutOpeningEntries()
{
    F f;
    QVERIFY(f.ok);
    booksOf2011();
    F::exec(QStringLiteral("INSERT INTO tase (taseteksti) VALUES ('vanha')"));
    ScriptedDialogs dialogs;
    TilikaudenVaihto vaihto(F::db());
    QVERIFY(vaihto.suorita(2, false));
    QCOMPARE(F::count(QStringLiteral("\"to\"")), 0);
    QCOMPARE(F::count(QStringLiteral("vi")), 0);
    QCOMPARE(F::count(QStringLiteral("tase")), 0);
    QCOMPARE(F::count(QStringLiteral("tula")), 0);
    QCOMPARE(F::count(QStringLiteral("viE"), QStringLiteral("viEAutomaatti <> 0")), 0);
    QCOMPARE(F::count(QStringLiteral("viE")), 10);
    QCOMPARE(F::count(QStringLiteral("toE")), 5);
}

// One entry per non-zero account line, its side from the print group and the sign.
void tst_TilikaudenVaihto::openingEntries()
{
    F f;
    QVERIFY(f.ok);
    booksOf2011();
    ScriptedDialogs dialogs;
    QStringList stages;
    TilikaudenVaihto vaihto(F::db());
    vaihto.setEdistyminen([&](const QString& teksti, int valmiina) {
        const QString line = QString::number(valmiina) + u' ' + teksti;
        if (stages.isEmpty() || stages.last() != line)
            stages << line;
    });
    QVERIFY(vaihto.suorita(2, true));
    QCOMPARE(dialogs.transcript(), QStringList());

    // The safety copy comes first and is named in the status.
    QVERIFY(QRegularExpression(QStringLiteral("^tilinpaatos-ennen-tilikaudenvaihtoa-\\d{8}-\\d{6}\\.mdb$"))
                .match(QFileInfo(vaihto.varmuuskopio()).fileName())
                .hasMatch());
    QCOMPARE(safetyCopies(), QStringList { QFileInfo(vaihto.varmuuskopio()).fileName() });
    QCOMPARE(stages.takeFirst(),
        QStringLiteral("0 Varmuuskopio ennen tilikauden vaihtoa: ")
            + QDir::toNativeSeparators(vaihto.varmuuskopio()));
    QCOMPARE(stages,
        (QStringList { "0 Lasketaan tilikauden tase.", "1 Lasketaan tilikauden tase.",
            "1 Poistetaan vanhat historiatiedot.", "2 Poistetaan vanhat historiatiedot.",
            "2 Siirretään viennit vertailutietoihin.", "3 Siirretään viennit vertailutietoihin.",
            "3 Poistetaan viennit.", "4 Poistetaan viennit.", "4 Vaihdetaan tilikausien päivämäärät.",
            "5 Vaihdetaan tilikausien päivämäärät.", "5 Kirjataan avausviennit.",
            "6 Kirjataan avausviennit." }));

    QCOMPARE(F::count(QStringLiteral("\"to\"")), 1);
    QSqlQuery v(F::db());
    v.exec(QStringLiteral(
        "SELECT toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti FROM \"to\""));
    QVERIFY(v.next());
    QCOMPARE(v.value(0).toInt(), 0);
    QCOMPARE(v.value(1).toString(), QStringLiteral("2012-01-01"));
    QCOMPARE(v.value(2).toString(), QStringLiteral("Tilinavausviennit"));
    QCOMPARE(v.value(3).toInt(), 1);
    QCOMPARE(v.value(4).toInt(), 0);
    QCOMPARE(v.value(5).toInt(), 0);

    QSqlQuery q(F::db());
    q.exec(QStringLiteral("SELECT vitlID, viTyyppi, viArvo, viAvausvienti, viPaatosvienti, viAutomaatti, "
                          "vitoID = (SELECT toID FROM \"to\") FROM vi ORDER BY viID"));
    QStringList entries;
    while (q.next())
        entries << QStringLiteral("%1 %2 %3 %4%5%6 %7")
                       .arg(q.value(0).toInt())
                       .arg(q.value(1).toString())
                       .arg(double(q.value(2).toLongLong()) / 10000.0, 0, 'f', 2)
                       .arg(q.value(3).toInt())
                       .arg(q.value(4).toInt())
                       .arg(q.value(5).toInt())
                       .arg(q.value(6).toInt());
    // Bank 1 800,00 D; receivables −200,00 on the assets side: 200,00 K; equity 1 000,00 K,
    // payables 500,00 K, profit 100,00 K. Every balance is non-zero here; the voucher balances.
    QCOMPARE(entries,
        (QStringList { "1 D 1800.00 100 1", "4 K 200.00 100 1", "8 K 1000.00 100 1", "9 K 500.00 100 1",
            "2 K 100.00 100 1" }));
}

// The old previous year goes; the old current year comes back with its own keys.
void tst_TilikaudenVaihto::historyReplaced()
{
    F f;
    QVERIFY(f.ok);
    booksOf2011();
    // A zero balance gets no entry: account 9 is paid back.
    F::post(QStringLiteral("2011-11-01"), 9, 1, 50000);
    F::exec(QStringLiteral("UPDATE \"to\" SET toPaatostosite = 1 WHERE toPvm = '2011-11-01'"));
    F::exec(QStringLiteral("UPDATE vi SET viPaatosvienti = 1 WHERE viArvo = 5000000 AND vitlID = 9"));
    const auto dump = [](const QString& sql) {
        QStringList lines;
        QSqlQuery q(F::db());
        q.exec(sql);
        while (q.next()) {
            QStringList cells;
            for (int i = 0; i < q.record().count(); ++i)
                cells << q.value(i).toString();
            lines << cells.join(u'|');
        }
        return lines;
    };
    const QStringList entries = dump(QStringLiteral("SELECT viID, vitlID, vitoID, viTyyppi, viArvo, "
                                                    "viSelite, viAvausvienti, viPaatosvienti, viAutomaatti "
                                                    "FROM vi ORDER BY viID"));
    const QStringList vouchers = dump(QStringLiteral(
        "SELECT toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite FROM \"to\" ORDER BY toID"));
    ScriptedDialogs dialogs;
    TilikaudenVaihto vaihto(F::db());
    QVERIFY(vaihto.suorita(2, true));

    // The year travels as it was: the profit entries are computed, never stored.
    QStringList expectedEntries = dump(QStringLiteral(
        "SELECT viEID, viEtlID, viEtoID, viETyyppi, viEArvo, viESelite, viEAvausvienti, viEPaatosvienti, "
        "viEAutomaatti FROM viE WHERE viEAutomaatti = 0 ORDER BY viEID"));
    QCOMPARE(expectedEntries, entries);
    QCOMPARE(
        dump(QStringLiteral("SELECT toEID, toENumero, toEPvm, toESelite, toEAvaustosite, toEPaatostosite "
                            "FROM toE WHERE toEID IN (SELECT viEtoID FROM viE WHERE "
                            "viEAutomaatti = 0) ORDER BY toEID")),
        vouchers);
    QCOMPARE(F::count(QStringLiteral("viE"), QStringLiteral("viEAutomaatti <> 0")), 0);
    QCOMPARE(F::count(QStringLiteral("toE"), QStringLiteral("toEPvm < '2011-01-01'")), 0);
    QCOMPARE(F::count(QStringLiteral("viE"), QStringLiteral("viEArvo = 123400")), 0);
    // Account 9 is at zero: no entry.
    QCOMPARE(F::count(QStringLiteral("vi")), 4);
    QCOMPARE(F::count(QStringLiteral("vi"), QStringLiteral("vitlID = 9")), 0);
}

// A balance sheet that leaves an account out does not balance: the voucher is written all the
// same, with what the sheet gives, and the change says nothing of it.
void tst_TilikaudenVaihto::slipsRefuse_data()
{
    QTest::addColumn<QString>("slip"); // SQL that puts it into the books
    QTest::addColumn<QString>("told");
    QTest::newRow("unbalanced voucher")
        << "UPDATE vi SET viArvo = viArvo + 100 WHERE viID = (SELECT MIN(viID) FROM vi)"
        << "debet ja kredit saldo ei täsmää";
    QTest::newRow("undated voucher")
        << "UPDATE \"to\" SET toPvm = NULL WHERE toID = (SELECT MIN(toID) FROM \"to\" WHERE toNumero > 0)"
        << "päivä ei kuulu tilikauteen";
    QTest::newRow("account on no template row") << "UPDATE mr SET mrTilit = '8,' WHERE mrID = 21"
                                                << "ei ole tuloslaskelman eikä taseen millään rivillä";
}

// Books with a slip are not carried into a new year: the change lists what to mend and leaves
// the books exactly as they were, without opening entries that would not balance.
void tst_TilikaudenVaihto::slipsRefuse()
{
    QFETCH(QString, slip);
    QFETCH(QString, told);
    F f;
    QVERIFY(f.ok);
    booksOf2011();
    F::exec(slip);
    const QStringList before = books();
    ScriptedDialogs dialogs;
    TilikaudenVaihto vaihto(F::db());
    bool asked = false;
    vaihto.setVahvistus([&](const TilikaudenVaihto::Kaudet&) { return asked = true; });
    QVERIFY(!vaihto.suorita(2, true));
    QVERIFY(!asked);
    const QStringList transcript = dialogs.transcript();
    QCOMPARE(transcript.size(), 1);
    QVERIFY2(transcript.first().startsWith(
                 QStringLiteral("information: Tilikautta ei vaihdettu, koska kirjanpidossa on korjattavaa:"))
            && transcript.first().contains(told),
        qPrintable(transcript.first()));
    QCOMPARE(books(), before);
    QVERIFY(vaihto.varmuuskopio().isEmpty());
}

void tst_TilikaudenVaihto::failureLeavesBooks_data()
{
    QTest::addColumn<int>("stage");
    QTest::addColumn<int>("done");
    for (int stage = 1; stage <= TilikaudenVaihto::Vaiheet; ++stage)
        for (int done : { stage - 1, stage })
            QTest::addRow("stage %d, %s", stage, done == stage ? "done" : "begun") << stage << done;
}

// A failure at any point of the change rolls everything back: the books, the work tables, the
// stored dates and those in force.
void tst_TilikaudenVaihto::failureLeavesBooks()
{
    QFETCH(int, stage);
    QFETCH(int, done);
    F f;
    QVERIFY(f.ok);
    booksOf2011();
    const QStringList before = books();
    ScriptedDialogs dialogs;
    TilikaudenVaihto vaihto(F::db());
    vaihto.setEdistyminen([&](const QString& teksti, int valmiina) {
        if (teksti == TilikaudenVaihto::vaiheTeksti(stage) && valmiina == done)
            throw ThrowAt();
    });
    QVERIFY(!vaihto.suorita(2, true));
    QCOMPARE(dialogs.transcript(),
        QStringList { QStringLiteral(
            "error: Tilikauden vaihto ei onnistunut. Kirjanpito on ennallaan.\nkeskeytetty") });
    QCOMPARE(books(), before);
    QCOMPARE(F::count(QStringLiteral("tase")), 0);
    QVERIFY(QFileInfo::exists(vaihto.varmuuskopio()));
    // Nothing is left half-done: the next try goes through.
    dialogs.clear();
    TilikaudenVaihto uudestaan(F::db());
    QVERIFY(uudestaan.suorita(2, true));
    QCOMPARE(TilikaudenVaihto::nykyiset().alku, QDate(2012, 1, 1));
}

// A disk that fills up during the copy: the engine's error, and the books as they were.
void tst_TilikaudenVaihto::fullDiskLeavesBooks()
{
    F f;
    QVERIFY(f.ok);
    booksOf2011();
    // Enough current-year rows that the history needs more pages than it frees.
    F::exec(QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 3000) "
                           "INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viSelite) "
                           "SELECT (SELECT MIN(toID) FROM \"to\" WHERE toAvaustosite = 0), 1, 'D', 0, "
                           "'rivi numero ' || i FROM n"));
    const QStringList before = books();
    const int pages = F::value(QStringLiteral("PRAGMA page_count")).toInt();
    QVERIFY(F::exec(QStringLiteral("PRAGMA max_page_count = %1").arg(pages + 2)));
    ScriptedDialogs dialogs;
    TilikaudenVaihto vaihto(F::db());
    QVERIFY(!vaihto.suorita(2, true));
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Error).size(), 1);
    QVERIFY2(dialogs.texts(ScriptedDialogs::Kind::Error)
                 .first()
                 .startsWith(QStringLiteral("Tilikauden vaihto ei onnistunut. Kirjanpito on ennallaan.\n")),
        qPrintable(dialogs.transcript().join(u'\n')));
    F::exec(QStringLiteral("PRAGMA max_page_count = 1073741823"));
    QCOMPARE(books(), before);
}

// Books that may not be written are refused before the safety copy.
void tst_TilikaudenVaihto::readOnlyBooks()
{
    F f;
    QVERIFY(f.ok);
    booksOf2011();
    const QStringList before = books();
    const QString file = F::db().databaseName();
    QVERIFY(QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::ReadGroup));
    ScriptedDialogs dialogs;
    TilikaudenVaihto vaihto(F::db());
    QVERIFY(!vaihto.suorita(2, true));
    QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    QCOMPARE(dialogs.transcript(),
        QStringList {
            QStringLiteral("information: Tietokantatiedosto on vain luettava, joten tilikautta ei voi "
                           "vaihtaa.\n")
            + QDir::toNativeSeparators(file) });
    QCOMPARE(books(), before);
    QCOMPARE(safetyCopies(), QStringList());
}

// Without a safety copy the change does not start, and says why.
void tst_TilikaudenVaihto::safetyCopyImpossible()
{
    F f;
    QVERIFY(f.ok);
    booksOf2011();
    const QStringList before = books();
    // A file stands where the backup folder should be made.
    QString folder = Paths::defaultBackupDir();
    folder.chop(1);
    QDir().mkpath(QFileInfo(folder).absolutePath());
    QVERIFY(TestEnv::writeFile(folder, "ei kansio"));
    ScriptedDialogs dialogs;
    TilikaudenVaihto vaihto(F::db());
    QVERIFY(!vaihto.suorita(2, true));
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Error),
        QStringList {
            QStringLiteral("Kirjanpidosta ei voitu ottaa varmuuskopiota, joten tilikautta ei vaihdettu. "
                           "Kirjanpitoa ei muutettu.\nKansiota %1 ei voitu luoda.")
                .arg(Paths::defaultBackupDir()) });
    QCOMPARE(books(), before);
}

void tst_TilikaudenVaihto::killedLeavesBooks_data()
{
    QTest::addColumn<int>("stage");
    QTest::newRow("after the copy") << 3;
    QTest::newRow("after the new dates") << 5;
    QTest::newRow("after the opening voucher") << 6;
}

// The engine's journal brings the books back when they are next opened.
void tst_TilikaudenVaihto::killedLeavesBooks()
{
    QFETCH(int, stage);
    F f;
    QVERIFY(f.ok);
    booksOf2011();
    const QStringList before = books();
    const QString file = F::db().databaseName();
    DBC::instance().SuljeDB();

    QProcess child;
    child.start(QCoreApplication::applicationFilePath(),
        { QStringLiteral("--kesken"), file, f.env.path(QStringLiteral("data")), QString::number(stage) });
    QVERIFY(child.waitForFinished(120000));
    QCOMPARE(child.exitStatus(), QProcess::CrashExit);
    QVERIFY2(QFileInfo::exists(file + QStringLiteral("-journal")), "killed inside its transaction");

    QVERIFY(DBC::instance().AvaaDB().isOpen());
    QCOMPARE(books(), before);
    QCOMPARE(F::value(QStringLiteral("PRAGMA quick_check")).toString(), QStringLiteral("ok"));
}

int main(int argc, char** argv)
{
    if (argc == 5 && qstrcmp(argv[1], "--kesken") == 0) {
        QCoreApplication app(argc, argv);
        return changeAndDie(
            QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3]), std::atoi(argv[4]));
    }
    QCoreApplication app(argc, argv);
    tst_TilikaudenVaihto test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}
#include "tst_TilikaudenVaihto.moc"
