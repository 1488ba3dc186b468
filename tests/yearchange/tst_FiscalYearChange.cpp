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
    QSqlQuery q(sql, F::db());
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

// The small association in 2012, the fixture's year (closing: bank 1800 D, 4 200 K, 8 1000 K,
// 9 500 K, profit 100 K).
void booksOf2012()
{
    F::smallAssociation();
    F::malli(3, QStringLiteral("Aakkosissa ensin"), 2, 0);
    F::post(QStringLiteral("2012-01-01"), 1, 8, 100000, false, true);
    F::post(QStringLiteral("2012-03-01"), 1, 9, 50000);
    F::post(QStringLiteral("2012-04-10"), 1, 3, 30000);
    F::post(QStringLiteral("2012-05-10"), 5, 1, 20000);
    F::post(QStringLiteral("2012-06-10"), 1, 4, 20000);
    F::post(QStringLiteral("2011-01-01"), 1, 8, 70000, true, true);
    F::post(QStringLiteral("2011-05-01"), 5, 1, 1234, true);
}

} // namespace

class tst_FiscalYearChange : public QObject {
    Q_OBJECT

    std::unique_ptr<StatementFixture> f;

private slots:
    void init() { QVERIFY(StatementFixture::start(f, booksOf2012)); }
    void cleanup() { StatementFixture::finish(f); }

    void nextYears();
    void refusals();
    void openingEntries();
    void failureLeavesBooks();
};

// Each date moves one calendar year by itself: 29 February becomes 28 February, a gap stays.
void tst_FiscalYearChange::nextYears()
{
    using D = QDate;
    const FiscalYearChange::Kaudet kaudet { D(2011, 3, 1), D(2012, 2, 29), D(2010, 1, 1), D(2010, 12, 31) };
    QCOMPARE(
        text(FiscalYearChange::seuraavat(kaudet)), QStringLiteral("1.3.2012 28.2.2013 1.1.2011 31.12.2011"));
}

// Each refusal kind is told alone, before the question and before anything, the safety copy
// included, is written. The voucher checks that also stop the change are tst_cTositeTarkistus's.
void tst_FiscalYearChange::refusals()
{
    const QString file = F::db().databaseName();
    // The template (-1: none chosen), SQL that puts a slip into the books or "read-only", how the
    // one message shown begins (in full once) and what else it says.
    const std::tuple<int, const char*, const char*, const char*> cases[] = {
        { -1, "", "information: Valitse tasemalli, jonka mukaan kirjataan avausviennit!", "" },
        { 3, "", "information: Tasemallille ei ole määritelty tuloslaskelmaa", "" },
        { 2, "UPDATE mr SET mrTilit = '8,' WHERE mrID = 21",
            "information: Tilikautta ei vaihdettu, koska kirjanpidossa on korjattavaa:",
            "ei ole tuloslaskelman eikä taseen millään rivillä" },
        // The voucher check's findings stop the change too: never on unbalanced books.
        { 2, "UPDATE vi SET viArvo = viArvo + 100 WHERE viID = (SELECT MIN(viID) FROM vi)",
            "information: Tilikautta ei vaihdettu, koska kirjanpidossa on korjattavaa:",
            "debet ja kredit saldo ei täsmää" },
        { 2, "read-only",
            "information: Tietokantatiedosto on vain luettava, joten tilikautta ei voi vaihtaa.\n",
            "tilinpaatos.mdb" },
    };
    for (const auto& [malli, setup, shown, detail] : cases) {
        if (setup == QLatin1String("read-only"))
            QVERIFY(QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::ReadGroup));
        else if (*setup)
            QVERIFY(F::exec(QString::fromUtf8(setup)));
        f->dialogs.clear();
        const QStringList before = books();
        FiscalYearChange vaihto(F::db());
        bool asked = false;
        vaihto.setVahvistus([&](const FiscalYearChange::Kaudet&) { return asked = true; });
        QVERIFY(!vaihto.suorita(malli < 0 ? std::nullopt : std::optional<qint32>(malli), true));
        const QStringList told = f->dialogs.transcript();
        QVERIFY2(told.size() == 1 && told.first().startsWith(QString::fromUtf8(shown))
                && told.first().contains(QString::fromUtf8(detail)),
            qPrintable(told.join(u'\n')));
        QVERIFY(!asked);
        QCOMPARE(books(), before);
    }
    QCOMPARE(safetyCopies(), QStringList());
}

// The old year becomes the history with its keys; the new year opens with one entry per non-zero
// account line, its side from the print group and the sign. The new dates are stored, survive a
// restart and become the report period.
void tst_FiscalYearChange::openingEntries()
{
    // A closing voucher pays account 9 back: its zero balance gets no opening entry.
    F::post(QStringLiteral("2012-11-01"), 9, 1, 50000);
    F::exec(QStringLiteral("UPDATE \"to\" SET toPaatostosite = 1 WHERE toPvm = '2012-11-01'"));
    F::exec(QStringLiteral("UPDATE vi SET viPaatosvienti = 1 WHERE viArvo = 5000000 AND vitlID = 9"));
    const QStringList entriesBefore = rows(QStringLiteral("SELECT * FROM vi ORDER BY viID"));
    const QStringList vouchersBefore = rows(QStringLiteral("SELECT * FROM \"to\" ORDER BY toID"));
    FiscalYearChange vaihto(F::db());
    QVERIFY(vaihto.suorita(2, true));
    QCOMPARE(f->dialogs.transcript(), QStringList());
    QCOMPARE(safetyCopies(), QStringList { QFileInfo(vaihto.varmuuskopio()).fileName() });
    QVERIFY(vaihto.varmuuskopio().contains(QStringLiteral("/tilinpaatos-ennen-tilikaudenvaihtoa-")));

    // The year travels as it was, keys and all, and alone: the profit entries are computed, never
    // stored, and the old history is gone.
    QCOMPARE(rows(QStringLiteral("SELECT * FROM viE ORDER BY viEID")), entriesBefore);
    QCOMPARE(rows(QStringLiteral("SELECT * FROM toE ORDER BY toEID")), vouchersBefore);

    QCOMPARE(
        rows(QStringLiteral(
            "SELECT toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, toAutomaatti FROM \"to\"")),
        QStringList { QStringLiteral("0|2013-01-01|Tilinavausviennit|1|0|0") });
    // Bank 1 300,00 D; receivables −200,00 on the assets side: 200,00 K; equity 1 000,00 K, profit
    // 100,00 K; the voucher balances.
    QCOMPARE(rows(QStringLiteral("SELECT vitlID, viTyyppi, printf('%.2f', viArvo / 10000.0), viAvausvienti, "
                                 "viPaatosvienti, viAutomaatti, vitoID = (SELECT toID FROM \"to\") "
                                 "FROM vi ORDER BY viID")),
        (QStringList {
            "1|D|1300.00|1|0|0|1", "4|K|200.00|1|0|0|1", "8|K|1000.00|1|0|0|1", "2|K|100.00|1|0|0|1" }));

    const QString expected = QStringLiteral("1.1.2013 31.12.2013 1.1.2012 31.12.2012");
    QCOMPARE(text(FiscalYearChange::nykyiset()), expected);
    QCOMPARE(PrintOptions::current().alkupvm, QDate(2013, 1, 1));
    ProgramSettings::bookkeeping() = BookkeepingSettings::defaults(QDate(2030, 6, 1));
    ProgramSettings::loadBookkeeping(F::db(), F::db().databaseName());
    QCOMPARE(text(FiscalYearChange::nykyiset()), expected);
}

// A failure at any point rolls back the books, work tables and dates: stopped after the last
// stage, on a full disk, or without a safety copy. Nothing is left half-done: the next try goes
// through, here without opening entries.
void tst_FiscalYearChange::failureLeavesBooks()
{
    // Enough current-year rows that the history needs more pages than it frees.
    F::exec(QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 3000) "
                           "INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viSelite) "
                           "SELECT (SELECT MIN(toID) FROM \"to\" WHERE toAvaustosite = 0), 1, 'D', 0, "
                           "'rivi numero ' || i FROM n"));
    const QStringList before = books();
    const QString failed = QStringLiteral("Tilikauden vaihto ei onnistunut. Kirjanpito on ennallaan.\n");
    const auto fails = [&](bool stop, const QString& error, bool copied) {
        f->dialogs.clear();
        FiscalYearChange vaihto(F::db());
        vaihto.setEdistyminen([stop](const QString&, int valmiina) {
            if (stop && valmiina == FiscalYearChange::Vaiheet)
                throw std::runtime_error("keskeytetty");
        });
        QVERIFY(!vaihto.suorita(2, true));
        QVERIFY2(f->dialogs.transcript().size() == 1
                && f->dialogs.texts(ScriptedDialogs::Kind::Error).value(0).startsWith(error),
            qPrintable(f->dialogs.transcript().join(u'\n')));
        QCOMPARE(QFileInfo::exists(vaihto.varmuuskopio()), copied);
        QCOMPARE(books(), before);
        QCOMPARE(F::count(QStringLiteral("tase")), 0);
    };
    fails(true, failed + QStringLiteral("keskeytetty"), true);
    const int pages = F::value(QStringLiteral("PRAGMA page_count")).toInt();
    QVERIFY(F::exec(QStringLiteral("PRAGMA max_page_count = %1").arg(pages + 2)));
    fails(false, failed, true);
    QVERIFY(F::exec(QStringLiteral("PRAGMA max_page_count = 1073741823")));
    // A file stands where the backup folder should be made.
    QString folder = Paths::defaultBackupDir();
    folder.chop(1);
    QVERIFY(QDir(folder).removeRecursively() && TestEnv::writeFile(folder, "ei kansio"));
    fails(false,
        QStringLiteral("Kirjanpidosta ei voitu ottaa varmuuskopiota, joten tilikautta ei vaihdettu. "
                       "Kirjanpitoa ei muutettu.\nKansiota "),
        false);

    // Without opening entries the year still moves to the history, but nothing is computed and
    // the new year is empty.
    QFile::remove(folder);
    F::exec(QStringLiteral("INSERT INTO tase (taseteksti) VALUES ('vanha')"));
    const int entries = F::count(QStringLiteral("vi"));
    QVERIFY(FiscalYearChange(F::db()).suorita(2, false));
    QCOMPARE(F::count(QStringLiteral("viE")), entries);
    QCOMPARE(F::count(QStringLiteral("\"to\"")) + F::count(QStringLiteral("vi")), 0);
    QCOMPARE(F::count(QStringLiteral("tase")) + F::count(QStringLiteral("tula")), 0);
}

QTEST_GUILESS_MAIN(tst_FiscalYearChange)
#include "tst_FiscalYearChange.moc"
