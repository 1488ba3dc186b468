#include "StatementFixture.h"
#include "core/Dates.h"
#include "core/Paths.h"
#include "printing/PrintOptions.h"
#include "yearchange/FiscalYearChange.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>
#include <memory>
#include <stdexcept>

namespace {

using F = StatementFixture;

QString text(const FiscalYearChange::Kaudet& k)
{
    return QStringList { Dates::format(k.alku), Dates::format(k.loppu), Dates::format(k.edAlku),
        Dates::format(k.edLoppu) }
        .join(u' ');
}

// The rows `sql` gives, each with its cells joined by '|'.
QStringList rows(const QString& sql)
{
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
}

// Everything the change touches as text: both years' vouchers and entries, and the dates.
QStringList books()
{
    QStringList lines;
    for (const char* sql : { "SELECT * FROM \"to\" ORDER BY toID", "SELECT * FROM vi ORDER BY viID",
             "SELECT * FROM toE ORDER BY toEID", "SELECT * FROM viE ORDER BY viEID",
             "SELECT setKey, setString FROM Settings WHERE setKey LIKE '%Tilikausi%' ORDER BY setKey" })
        lines << QString::fromUtf8(sql) << rows(QString::fromUtf8(sql));
    return lines << text(FiscalYearChange::nykyiset());
}

QStringList safetyCopies() { return QDir(Paths::defaultBackupDir()).entryList(QDir::Files); }

// The small association in 2011 (closing: bank 1800 D, 4 200 K, 8 1000 K, 9 500 K, profit 100 K).
void booksOf2011()
{
    F::smallAssociation();
    F::malli(3, QStringLiteral("Aakkosissa ensin"), 2, 0);
    BookkeepingSettings& s = ProgramSettings::bookkeeping();
    s.TilikausiAlku = QDate(2011, 1, 1);
    s.TilikausiLoppu = QDate(2011, 12, 31);
    s.EdTilikausiAlku = QDate(2010, 1, 1);
    s.EdTilikausiLoppu = QDate(2010, 12, 31);
    ProgramSettings::saveBookkeeping(F::db());
    F::post(QStringLiteral("2011-01-01"), 1, 8, 100000, false, true);
    F::post(QStringLiteral("2011-03-01"), 1, 9, 50000);
    F::post(QStringLiteral("2011-04-10"), 1, 3, 30000);
    F::post(QStringLiteral("2011-05-10"), 5, 1, 20000);
    F::post(QStringLiteral("2011-06-10"), 1, 4, 20000);
    F::post(QStringLiteral("2010-01-01"), 1, 8, 70000, true, true);
    F::post(QStringLiteral("2010-05-01"), 5, 1, 1234, true);
}

} // namespace

class tst_FiscalYearChange : public QObject {
    Q_OBJECT

    std::unique_ptr<StatementFixture> f;

private slots:
    void init() { QVERIFY(StatementFixture::start(f, booksOf2011)); }
    void cleanup() { StatementFixture::finish(f); }

    void nextYears();
    void refusals_data();
    void refusals();
    void openingEntries();
    void withoutOpeningEntries();
    void failureLeavesBooks_data();
    void failureLeavesBooks();
};

// Each date moves one calendar year by itself: 29 February becomes 28 February, a gap stays.
void tst_FiscalYearChange::nextYears()
{
    const std::pair<const char*, const char*> cases[] = {
        { "1.3.2011 29.2.2012 1.3.2010 28.2.2011", "1.3.2012 28.2.2013 1.3.2011 28.2.2012" },
        { "1.7.2011 30.6.2012 1.1.2010 31.12.2010", "1.7.2012 30.6.2013 1.1.2011 31.12.2011" },
    };
    for (const auto& [years, expected] : cases) {
        QList<QDate> d;
        for (const QString& day : QString::fromLatin1(years).split(u' '))
            d << QDate::fromString(day, QStringLiteral("d.M.yyyy"));
        QCOMPARE(
            text(FiscalYearChange::seuraavat({ d[0], d[1], d[2], d[3] })), QString::fromLatin1(expected));
    }
}

void tst_FiscalYearChange::refusals_data()
{
    QTest::addColumn<int>("malli"); // -1: nothing chosen
    QTest::addColumn<QString>("setup"); // SQL that puts a slip into the books, or "read-only"
    QTest::addColumn<QString>("shown"); // how the one message shown begins
    QTest::addColumn<QString>("detail"); // what else it says
    const auto row
        = [](const char* name, int malli, const char* setup, const QString& shown, const char* detail = "") {
              QTest::newRow(name) << malli << QString::fromUtf8(setup) << shown << QString::fromUtf8(detail);
          };
    row("nothing chosen", -1, "",
        QStringLiteral("information: Valitse tasemalli, jonka mukaan kirjataan avausviennit!"));
    row("no income statement linked", 3, "",
        QStringLiteral("information: Tasemallille ei ole määritelty tuloslaskelmaa, jonka perusteella "
                       "tilikauden voitto kirjataan."));
    row("read-only books", 2, "read-only",
        QStringLiteral(
            "information: Tietokantatiedosto on vain luettava, joten tilikautta ei voi vaihtaa.\n"),
        "tilinpaatos.mdb");
    // The voucher checks that also stop the change are tst_cTositeTarkistus's.
    row("account on no template row", 2, "UPDATE mr SET mrTilit = '8,' WHERE mrID = 21",
        QStringLiteral("information: Tilikautta ei vaihdettu, koska kirjanpidossa on korjattavaa:"),
        "ei ole tuloslaskelman eikä taseen millään rivillä");
}

// Each refusal comes before the question and before anything, the safety copy included, is written.
void tst_FiscalYearChange::refusals()
{
    QFETCH(int, malli);
    QFETCH(QString, setup);
    QFETCH(QString, shown);
    QFETCH(QString, detail);
    const QString file = F::db().databaseName();
    if (setup == u"read-only")
        QVERIFY(QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::ReadGroup));
    else if (!setup.isEmpty())
        QVERIFY(F::exec(setup));
    const QStringList before = books();
    FiscalYearChange vaihto(F::db());
    bool asked = false;
    vaihto.setVahvistus([&](const FiscalYearChange::Kaudet&) { return asked = true; });
    QVERIFY(!vaihto.suorita(malli < 0 ? std::nullopt : std::optional<qint32>(malli), true));
    QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    const QStringList transcript = f->dialogs.transcript();
    QCOMPARE(transcript.size(), 1);
    QVERIFY2(transcript.first().startsWith(shown) && transcript.first().contains(detail),
        qPrintable(transcript.first()));
    QVERIFY(!asked);
    QCOMPARE(books(), before);
    QCOMPARE(safetyCopies(), QStringList());
}

// The old year becomes the history with its keys; the new year opens with one entry per non-zero
// account line, its side from the print group and the sign. The new dates are stored, survive a
// restart and become the report period.
void tst_FiscalYearChange::openingEntries()
{
    // A closing voucher pays account 9 back: its zero balance gets no opening entry.
    F::post(QStringLiteral("2011-11-01"), 9, 1, 50000);
    F::exec(QStringLiteral("UPDATE \"to\" SET toPaatostosite = 1 WHERE toPvm = '2011-11-01'"));
    F::exec(QStringLiteral("UPDATE vi SET viPaatosvienti = 1 WHERE viArvo = 5000000 AND vitlID = 9"));
    // The same columns of this year's tables (prefix vi, to) and of the history's (viE, toE).
    const QString entries = QStringLiteral("SELECT %1ID, %1tlID, %1toID, %1Tyyppi, %1Arvo, %1Selite, "
                                           "%1Avausvienti, %1Paatosvienti, %1Automaatti FROM %1 WHERE %2 "
                                           "ORDER BY %1ID");
    const QString vouchers = QStringLiteral("SELECT %1ID, %1Numero, %1Pvm, %1Selite, %1Avaustosite, "
                                            "%1Paatostosite FROM \"%1\" WHERE %2 ORDER BY %1ID");
    const QString all = QStringLiteral("1 = 1");
    const QStringList entriesBefore = rows(entries.arg(QStringLiteral("vi"), all));
    const QStringList vouchersBefore = rows(vouchers.arg(QStringLiteral("to"), all));
    FiscalYearChange vaihto(F::db());
    QVERIFY(vaihto.suorita(2, true));
    QCOMPARE(f->dialogs.transcript(), QStringList());
    const QString copy = QFileInfo(vaihto.varmuuskopio()).fileName();
    QVERIFY2(copy.startsWith(QStringLiteral("tilinpaatos-ennen-tilikaudenvaihtoa-")), qPrintable(copy));
    QCOMPARE(safetyCopies(), QStringList { copy });

    // The year travels as it was: the profit entries are computed, never stored.
    QCOMPARE(rows(entries.arg(QStringLiteral("viE"), QStringLiteral("viEAutomaatti = 0"))), entriesBefore);
    QCOMPARE(rows(vouchers.arg(QStringLiteral("toE"),
                 QStringLiteral("toEID IN (SELECT viEtoID FROM viE WHERE viEAutomaatti = 0)"))),
        vouchersBefore);
    QCOMPARE(F::count(QStringLiteral("viE"), QStringLiteral("viEAutomaatti <> 0")), 0);
    QCOMPARE(F::count(QStringLiteral("toE"), QStringLiteral("toEPvm < '2011-01-01'")), 0);

    QCOMPARE(
        rows(QStringLiteral(
            "SELECT toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti FROM \"to\"")),
        QStringList { QStringLiteral("0|2012-01-01|Tilinavausviennit|1|0|0") });
    // Bank 1 300,00 D; receivables −200,00 on the assets side: 200,00 K; equity 1 000,00 K, profit
    // 100,00 K; the voucher balances.
    QCOMPARE(rows(QStringLiteral("SELECT vitlID, viTyyppi, printf('%.2f', viArvo / 10000.0), viAvausvienti, "
                                 "viPaatosvienti, viAutomaatti, vitoID = (SELECT toID FROM \"to\") "
                                 "FROM vi ORDER BY viID")),
        (QStringList {
            "1|D|1300.00|1|0|0|1", "4|K|200.00|1|0|0|1", "8|K|1000.00|1|0|0|1", "2|K|100.00|1|0|0|1" }));

    const QString expected = QStringLiteral("1.1.2012 31.12.2012 1.1.2011 31.12.2011");
    QCOMPARE(text(FiscalYearChange::nykyiset()), expected);
    QCOMPARE(PrintOptions::current().alkupvm, QDate(2012, 1, 1));
    QCOMPARE(PrintOptions::current().loppupvm, QDate(2012, 12, 31));
    ProgramSettings::bookkeeping() = BookkeepingSettings::defaults(QDate(2030, 6, 1));
    ProgramSettings::loadBookkeeping(F::db(), F::db().databaseName());
    QCOMPARE(text(FiscalYearChange::nykyiset()), expected);
}

// Without opening entries the year still moves to the history, but nothing is computed and the
// new year is empty.
void tst_FiscalYearChange::withoutOpeningEntries()
{
    F::exec(QStringLiteral("INSERT INTO tase (taseteksti) VALUES ('vanha')"));
    const int entries = F::count(QStringLiteral("vi"));
    QVERIFY(FiscalYearChange(F::db()).suorita(2, false));
    QCOMPARE(F::count(QStringLiteral("viE")), entries);
    QCOMPARE(F::count(QStringLiteral("\"to\"")) + F::count(QStringLiteral("vi")), 0);
    QCOMPARE(F::count(QStringLiteral("tase")) + F::count(QStringLiteral("tula")), 0);
}

void tst_FiscalYearChange::failureLeavesBooks_data()
{
    QTest::addColumn<QString>("failure");
    QTest::addColumn<QString>("error"); // how the one error shown begins
    const QString failed = QStringLiteral("Tilikauden vaihto ei onnistunut. Kirjanpito on ennallaan.\n");
    // Thrown when the last stage is done, before the commit.
    QTest::newRow("stopped") << "stopped" << failed + QStringLiteral("keskeytetty");
    QTest::newRow("disk full") << "disk full" << failed;
    QTest::newRow("no safety copy")
        << "no safety copy"
        << "Kirjanpidosta ei voitu ottaa varmuuskopiota, joten tilikautta ei vaihdettu. Kirjanpitoa ei "
           "muutettu.\nKansiota ";
}

// A failure at any point rolls back the books, work tables and dates; no safety copy, no change.
void tst_FiscalYearChange::failureLeavesBooks()
{
    QFETCH(QString, failure);
    QFETCH(QString, error);
    // Enough current-year rows that the history needs more pages than it frees.
    if (failure == u"disk full")
        F::exec(
            QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 3000) "
                           "INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viSelite) "
                           "SELECT (SELECT MIN(toID) FROM \"to\" WHERE toAvaustosite = 0), 1, 'D', 0, "
                           "'rivi numero ' || i FROM n"));
    const QStringList before = books();
    if (failure == u"disk full") {
        const int pages = F::value(QStringLiteral("PRAGMA page_count")).toInt();
        QVERIFY(F::exec(QStringLiteral("PRAGMA max_page_count = %1").arg(pages + 2)));
    }
    QString folder = Paths::defaultBackupDir();
    folder.chop(1);
    if (failure == u"no safety copy") {
        // A file stands where the backup folder should be made.
        QDir().mkpath(QFileInfo(folder).absolutePath());
        QVERIFY(TestEnv::writeFile(folder, "ei kansio"));
    }
    FiscalYearChange vaihto(F::db());
    vaihto.setEdistyminen([&](const QString&, int valmiina) {
        if (failure == u"stopped" && valmiina == FiscalYearChange::Vaiheet)
            throw std::runtime_error("keskeytetty");
    });
    QVERIFY(!vaihto.suorita(2, true));
    QCOMPARE(f->dialogs.transcript().size(), 1);
    QVERIFY2(f->dialogs.texts(ScriptedDialogs::Kind::Error).value(0).startsWith(error),
        qPrintable(f->dialogs.transcript().join(u'\n')));
    QCOMPARE(QFileInfo::exists(vaihto.varmuuskopio()), failure != u"no safety copy");
    F::exec(QStringLiteral("PRAGMA max_page_count = 1073741823"));
    QCOMPARE(books(), before);
    QCOMPARE(F::count(QStringLiteral("tase")), 0);
    // Nothing is left half-done: the next try goes through.
    QFile::remove(folder);
    f->dialogs.clear();
    FiscalYearChange uudestaan(F::db());
    QVERIFY(uudestaan.suorita(2, true));
    QCOMPARE(FiscalYearChange::nykyiset().alku, QDate(2012, 1, 1));
}

QTEST_GUILESS_MAIN(tst_FiscalYearChange)
#include "tst_FiscalYearChange.moc"
