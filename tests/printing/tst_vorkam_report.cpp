#include "ReportCommand.h"
#include "TestEnv.h"

#include <QCryptographicHash>
#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlQuery>
#include <QTest>

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

// vorkam_report on the demo association's books, and on books and arguments it must refuse.
class tst_vorkam_report final : public QObject {
    Q_OBJECT

private slots:
    // A damaged page of the entries met by the journal's query in the middle of the report ends
    // in the message and exit code 3, with no file written.
    void damagedPageMidReport()
    {
        TestEnv env;
        const QString books = env.path(QStringLiteral("demo1.mdb"));
        QVERIFY(ReportCommand::copyBuilt(QStringLiteral("demo1.mdb"), books));
        int page = 0;
        int pageSize = 0;
        withDatabase(books, [&](QSqlDatabase& db) {
            QSqlQuery q(db);
            q.exec(QStringLiteral("SELECT rootpage FROM sqlite_master WHERE name = 'vi'"));
            page = q.next() ? q.value(0).toInt() : 0;
            q.exec(QStringLiteral("PRAGMA page_size"));
            pageSize = q.next() ? q.value(0).toInt() : 0;
        });
        QVERIFY(page > 0 && pageSize > 0);
        // The demo's entries fit on their root page: it becomes a leaf whose cells point at garbage.
        QByteArray bytes = TestEnv::readFile(books);
        QByteArray garbage(pageSize, '\xff');
        garbage.replace(0, 5, QByteArray("\x0d\x00\x00\x00\x77", 5));
        bytes.replace((page - 1) * pageSize, pageSize, garbage);
        QVERIFY(TestEnv::writeFile(books, bytes));
        const QString pdf = env.path(QStringLiteral("r.pdf"));
        const ReportCommand r = ReportCommand::run({ books, "paivakirja", "--pdf", pdf });
        QCOMPARE(r.code, 3);
        QVERIFY2(r.err.contains(QStringLiteral("vioittunut")), qPrintable(r.err));
        QVERIFY(!QFile::exists(pdf));
    }

    void refusals_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("message");
        const auto row = [](const char* tag, const QStringList& args, int code, const char* message) {
            QTest::newRow(tag) << args << code << QString::fromUtf8(message);
        };
        row("unknown report", { "kassakirja" }, 2, "Raporttia kassakirja ei ole.");
        row("option the report does not take", { "tilit", "--account", "1910" }, 2,
            "ei käytä valitsinta --account");
        row("no output", { "tilit" }, 2, "Anna tulostiedosto");
        row("inspection without an account", { "tilitark" }, 1, "Anna tarkasteltava tili");
        row("unknown account", { "tilitark", "--account", "9999" }, 1, "Tiliä 9999 ei ole.");
    }
    void refusals()
    {
        QFETCH(QStringList, args);
        QFETCH(int, code);
        QFETCH(QString, message);
        TestEnv env;
        const QString books = env.path(QStringLiteral("kirjat.mdb"));
        QVERIFY(ReportCommand::copyBuilt(QStringLiteral("demo1.mdb"), books));
        const QString pdf = env.path(QStringLiteral("r.pdf"));
        QStringList all = QStringList { books } + args;
        if (message != u"Anna tulostiedosto")
            all << "--pdf" << pdf;
        const ReportCommand r = ReportCommand::run(all);
        QCOMPARE(r.code, code);
        QVERIFY2(r.err.contains(message), qPrintable(r.err));
        QVERIFY(!QFile::exists(pdf));
    }

    // The journal's totals are the ledger's movements.
    void booksAgree()
    {
        TestEnv env;
        const QString books = env.path(QStringLiteral("demo1.mdb"));
        QVERIFY(ReportCommand::copyBuilt(QStringLiteral("demo1.mdb"), books));
        const auto journal = rows(env, books, { "paivakirja" });
        QStringList journalTotal;
        for (const QStringList& row : journal)
            if (row.first() == u"Yhteensä")
                journalTotal = row;
        QVERIFY(cents(journalTotal.value(4)) > 0);
        QCOMPARE(journalTotal.value(4), journalTotal.value(5));

        const auto ledger = rows(env, books, { "paakirja", "--kind", "normal" });
        QStringList ledgerTotal;
        for (const QStringList& row : ledger)
            if (row.value(2) == u"Kaikki tilit yhteensä")
                ledgerTotal = row;
        QCOMPARE(cents(ledgerTotal.value(5)), cents(journalTotal.value(4)));
        QCOMPARE(cents(ledgerTotal.value(6)), cents(journalTotal.value(5)));
    }

    // Every report of the catalogue, in its periods and forms, runs on a read-only copy of the
    // books in a read-only folder and leaves the file's bytes as they were. One kind of entries
    // stands for all: the ledger's preparation is kept from writing for every kind by its own test.
    void reportsNeverWrite_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::newRow("as it comes") << QStringList {};
        QTest::newRow("a quarter") << QStringList { "--from", day(1, 4), "--to", day(30, 6) };
        QTest::newRow("opening entries") << QStringList { "--kind", "opening" };
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
};

QTEST_GUILESS_MAIN(tst_vorkam_report)
#include "tst_vorkam_report.moc"
