#include "ReportCommand.h"
#include "TestEnv.h"

#include <QFile>
#include <QSqlQuery>
#include <QTest>

class tst_vorkam_report final : public QObject {
    Q_OBJECT

private slots:
    // A damaged page of the entries met in the middle of any report ends in the message and
    // exit code 3, with no file written.
    void damagedPageMidReport_data()
    {
        QTest::addColumn<QString>("report");
        for (const char* report : { "tilisald", "tuloslaskelma", "tase", "paivakirja", "paakirja" })
            QTest::newRow(report) << QString::fromLatin1(report);
    }
    void damagedPageMidReport()
    {
        QFETCH(QString, report);
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
        const ReportCommand r = ReportCommand::run({ books, report, "--pdf", pdf });
        QCOMPARE(r.code, 3);
        QVERIFY2(r.err.contains(QStringLiteral("vioittunut")), qPrintable(r.err));
        QVERIFY(!QFile::exists(pdf));
    }

    void refusals_data()
    {
        QTest::addColumn<QByteArray>("content"); // empty for the demo association
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("message");
        const auto demo = [](const char* tag, const QStringList& args, int code, const char* message) {
            QTest::newRow(tag) << QByteArray() << args << code << QString::fromUtf8(message);
        };
        QByteArray jet(2048, '\0');
        jet.replace(0, 19, QByteArray("\x00\x01\x00\x00Standard Jet DB", 19));
        // Other foreign files are tst_DamagedFiles' (exit 3); a Jet file gets its own advice.
        QTest::newRow("Jet file") << jet << QStringList { "tilit" } << 3 << "Jet-tietokanta";
        demo("unknown report", { "kassakirja" }, 2, "Raporttia kassakirja ei ole.");
        demo("option the report does not take", { "tilit", "--account", "1910" }, 2,
            "ei käytä valitsinta --account");
        demo("kind the balances do not take", { "tilisald", "--kind", "closing" }, 2,
            "ei käytä valitsinta --kind");
        demo("invalid date", { "tilit", "--from", "31.2.2011", "--to", "1.3.2011" }, 2,
            "Päivämäärä 31.2.2011 ei ole muotoa p.k.vvvv");
        demo("reversed period", { "paakirja", "--from", "2.1.1990", "--to", "1.1.1990" }, 2,
            "Alkupäivämäärä on loppupäivämäärän jälkeen.");
        demo("no output", { "tilit" }, 2, "Anna tulostiedosto");
        demo("period outside the year", { "paivakirja", "--from", "1.1.1990", "--to", "2.1.1990" }, 1,
            "Alkupäivämäärä ei kuulu tilikauteen");
        demo("inspection without an account", { "tilitark" }, 1, "Anna tarkasteltava tili");
        demo("unknown account", { "tilitark", "--account", "9999" }, 1, "Tiliä 9999 ei ole.");
    }
    void refusals()
    {
        QFETCH(QByteArray, content);
        QFETCH(QStringList, args);
        QFETCH(int, code);
        QFETCH(QString, message);
        TestEnv env;
        const QString books = env.path(QStringLiteral("kirjat.mdb"));
        if (content.isEmpty())
            QVERIFY(ReportCommand::copyBuilt(QStringLiteral("demo1.mdb"), books));
        else
            QVERIFY(TestEnv::writeFile(books, content));
        const QString pdf = env.path(QStringLiteral("r.pdf"));
        QStringList all = QStringList { books } + args;
        if (message != u"Anna tulostiedosto")
            all << "--pdf" << pdf;
        const ReportCommand r = ReportCommand::run(all);
        QCOMPARE(r.code, code);
        QVERIFY2(r.err.contains(message), qPrintable(r.err));
        QVERIFY(!QFile::exists(pdf));
    }
};

QTEST_GUILESS_MAIN(tst_vorkam_report)
#include "tst_vorkam_report.moc"
