#include "ReportCommand.h"
#include "TestEnv.h"

#include <QCryptographicHash>
#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QProcess>
#include <QTest>
#include <algorithm>

namespace {

// The rows of report `args` on `books`, written by vorkam_report as CSV, cells split; none
// when it failed.
QList<QStringList> rows(const TestEnv& env, const QString& books, const QStringList& args)
{
    const QString file = env.path(args.join(u'_') + QStringLiteral(".csv"));
    const ReportCommand r = ReportCommand::run(QStringList { books } + args + QStringList { "--csv", file });
    if (r.code != 0) {
        qWarning("%s", qPrintable(r.err));
        return {};
    }
    QList<QStringList> rows;
    const QString text = QString::fromUtf8(TestEnv::readFile(file)).remove(QChar(0xfeff));
    for (const QString& line : text.split(QStringLiteral("\r\n"), Qt::SkipEmptyParts))
        rows.append(line.split(u';'));
    return rows;
}

qint64 cents(const QString& cell)
{
    QString t = cell;
    t.remove(u' ').remove(QChar(0xa0));
    return qRound64(t.replace(u',', u'.').toDouble() * 100);
}

QByteArray digest(const QString& file)
{
    return QCryptographicHash::hash(TestEnv::readFile(file), QCryptographicHash::Sha256);
}

// The report names vorkam_report lists in its usage text: a report added is tested here too.
QStringList reportNames()
{
    const QString usage = ReportCommand::run({ "--help" }).out;
    QStringList names;
    bool listed = false;
    for (const QString& line : usage.split(u'\n')) {
        if (line.startsWith(QLatin1String("Raportit:")))
            listed = true;
        else if (listed && line.startsWith(QLatin1String("  ")))
            names << line.trimmed().section(u' ', 0, 0);
    }
    return names;
}

QString day(int d, int m)
{
    return QStringLiteral("%1.%2.%3").arg(d).arg(m).arg(QDate::currentDate().year());
}

} // namespace

// The demo association's books as vorkam_report writes them.
class tst_vorkam_report_kirjat final : public QObject {
    Q_OBJECT

private slots:
    // The journal's totals are the ledger's movements; each account's balance after the closing
    // entries is its balance in the account balances and ends its inspection.
    void booksAgree()
    {
        TestEnv env;
        const QString books = env.path(QStringLiteral("demo1.mdb"));
        QVERIFY(ReportCommand::copyBuilt(QStringLiteral("demo1.mdb"), books));
        const auto journal = rows(env, books, { "paivakirja" });
        QVERIFY(!journal.isEmpty());
        QStringList journalTotal;
        for (const QStringList& row : journal)
            if (row.first() == u"Yhteensä")
                journalTotal = row;
        QCOMPARE(journal.first(),
            (QStringList { "Tosite", "Päivä", "Tilinumero", "Tili / selite", "Debet", "Kredit" }));
        QCOMPARE(journalTotal.size(), 6);
        // The summary's labels stand apart from their numbers.
        const auto vouchers = std::find_if(journal.begin(), journal.end(),
            [](const QStringList& row) { return row.first() == u"Tositteita"; });
        QVERIFY(vouchers != journal.end() && vouchers->at(1).toInt() > 0);
        QVERIFY(cents(journalTotal.at(4)) > 0);
        QCOMPARE(journalTotal.at(4), journalTotal.at(5));

        const auto ledger = rows(env, books, { "paakirja", "--kind", "normal" });
        QStringList ledgerTotal;
        for (const QStringList& row : ledger)
            if (row.value(2) == u"Kaikki tilit yhteensä")
                ledgerTotal = row;
        QCOMPARE(ledgerTotal.size(), 8);
        QCOMPARE(cents(ledgerTotal.at(5)), cents(journalTotal.at(4)));
        QCOMPARE(cents(ledgerTotal.at(6)), cents(journalTotal.at(5)));

        // Every account's balance after the closing entries against the account balances.
        const auto closing = rows(env, books, { "paakirja", "--kind", "closing" });
        QMap<QString, qint64> loppusaldot;
        for (const QStringList& row : closing)
            if (row.value(2).startsWith(QLatin1String("Loppusaldo ")))
                loppusaldot.insert(row.first(), cents(row.at(7)));
        QVERIFY(loppusaldot.size() > 10);
        const auto balances = rows(env, books, { "tilisald" });
        int compared = 0;
        for (const QStringList& row : balances) {
            const QString numero = row.first();
            if (loppusaldot.contains(numero)) {
                QCOMPARE(loppusaldot.value(numero), cents(row.at(4)));
                ++compared;
            }
        }
        QCOMPARE(compared, loppusaldot.size());

        // The inspection of the bank account ends at its balance, and says so on its last line.
        const auto inspection = rows(env, books, { "tilitark", "--account", "1910" });
        QVERIFY(inspection.size() > 3);
        qint64 pankki = 0;
        for (const QStringList& row : balances)
            if (row.first() == u"1910")
                pankki = cents(row.at(4));
        // Every row names the account.
        QCOMPARE(inspection.first().mid(0, 2), (QStringList { "Tilinumero", "Tili" }));
        QCOMPARE(inspection.at(1).mid(0, 2), (QStringList { "1910", "Pankkitili" }));
        QCOMPARE(cents(inspection.at(inspection.size() - 3).at(7)), pankki);
        QCOMPARE(inspection.last().at(4), QStringLiteral("Loppusaldo (debet - kredit)"));
        QCOMPARE(cents(inspection.last().at(7)), pankki);
    }

    // Every report of the catalogue, in each of its kinds, periods and forms, runs on a read-only
    // copy of the books in a read-only folder and leaves the file's bytes as they were.
    void reportsNeverWrite_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::newRow("as it comes") << QStringList {};
        QTest::newRow("a quarter") << QStringList { "--from", day(1, 4), "--to", day(30, 6) };
        QTest::newRow("opening entries") << QStringList { "--kind", "opening" };
        QTest::newRow("closing entries") << QStringList { "--kind", "closing" };
        QTest::newRow("account by account") << QStringList { "--accounts" };
        QTest::newRow("groups only, narrow") << QStringList { "--groups-only", "--narrow" };
        QTest::newRow("the bank account") << QStringList { "--account", "1910" };
        QTest::newRow("the profit account") << QStringList { "--account", "2290" };
    }
    void reportsNeverWrite()
    {
        QFETCH(QStringList, options);
        TestEnv env;
        const QString folder = env.path(QStringLiteral("tilintarkastaja"));
        QVERIFY(QDir().mkpath(folder));
        const QString books = folder + QStringLiteral("/demo1.mdb");
        QVERIFY(ReportCommand::copyBuilt(QStringLiteral("demo1.mdb"), books));
        QVERIFY(QFile::setPermissions(books, QFileDevice::ReadOwner | QFileDevice::ReadGroup));
        QVERIFY(QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner));
        const QByteArray before = digest(books);
        const QDateTime modified = QFileInfo(books).lastModified();
        const QStringList names = reportNames();
        QVERIFY(
            names.contains(QStringLiteral("tuloslaskelma")) && names.contains(QStringLiteral("paakirja")));
        int ran = 0;
        for (const QString& name : names) {
            const QString out = env.path(name + QStringLiteral(".csv"));
            const ReportCommand r
                = ReportCommand::run(QStringList { books, name } + options + QStringList { "--csv", out });
            // A report that takes none of these options says so (exit 2), or asks for an account.
            if (r.code == 2 || r.err.contains(QLatin1String("Anna tarkasteltava tili")))
                continue;
            QVERIFY2(r.code == 0, qPrintable(name + u' ' + options.join(u' ') + u'\n' + r.err));
            QVERIFY2(digest(books) == before, qPrintable(name + QStringLiteral(" changed the books")));
            ++ran;
        }
        QVERIFY(ran > 0);
        QCOMPARE(QFileInfo(books).lastModified(), modified);
        QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList { "demo1.mdb" });
        QFile::setPermissions(
            folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    }

    // A statement printed first changes neither the journal's balance nor its voucher numbers.
    void journalBalancesAfterStatements()
    {
        TestEnv env;
        const QString books = env.path(QStringLiteral("demo1.mdb"));
        QVERIFY(ReportCommand::copyBuilt(QStringLiteral("demo1.mdb"), books));
        const auto journal = [&] { return rows(env, books, { "paivakirja" }); };
        const QList<QStringList> first = journal();
        QVERIFY(!first.isEmpty());
        for (const QStringList& args :
            { QStringList { "tuloslaskelma", "--from", day(1, 4), "--to", day(30, 6) },
                QStringList { "tase" }, QStringList { "tuloslaskelma" } }) {
            const ReportCommand r = ReportCommand::run(
                QStringList { books } + args + QStringList { "--pdf", env.path("s.pdf") });
            QVERIFY2(r.code == 0, qPrintable(r.err));
        }
        QCOMPARE(journal(), first);
    }
};

QTEST_GUILESS_MAIN(tst_vorkam_report_kirjat)
#include "tst_vorkam_report_kirjat.moc"
