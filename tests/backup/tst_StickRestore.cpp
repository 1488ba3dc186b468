#include "../core/JetFixtures.h"
#include "BackupTestSupport.h"
#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "backup/StickRestore.h"
#include "core/DBC.h"
#include "core/Paths.h"
#include "core/ProgramSettings.h"

#include <QDir>
#include <QTest>

class tst_StickRestore : public QObject {
    Q_OBJECT

private slots:
    void restoresOverTheBooksInUse_data();
    void restoresOverTheBooksInUse();
};

// A copy of Vorkam's books, a text file and old-format copies, each in place of the books in use.
// Whatever stops a restore, the books keep their bytes, the data folder gets no file or folder of
// its own, the next start opens the same books, and the last message tells why. Which files are
// sound books is told by the damaged-file corpus; here what is told and what is left.
void tst_StickRestore::restoresOverTheBooksInUse_data()
{
    QTest::addColumn<QString>("copy"); // "books", "text", or an old-format sample
    QTest::addColumn<QList<bool>>("answers"); // Yes or No to each question in turn
    QTest::addColumn<StickRestore::Outcome>("outcome");
    QTest::addColumn<QString>("told");
    using A = QList<bool>;
    using O = StickRestore::Outcome;
    const QString restarted = QStringLiteral(
        "information: Tietokantaa on vaihdettu. Vorkam sammutetaan ja se tulee käynnistää uudestaan.");
    QTest::newRow("restored") << "books" << A { true } << O::Restored << restarted;
    QTest::newRow("overwrite refused")
        << "books" << A { false } << O::Cancelled << "information: Palautus keskeytyi.";
    QTest::newRow("not books") << "text" << A {} << O::Failed
                               << "ei voi palauttaa: se ei ole Vorkamin tietokanta tai se on vioittunut.";
    QTest::newRow("jet converted") << "seura-jet4.mdb" << A { true, true } << O::Restored << restarted;
    QTest::newRow("jet not converted") << "seura-jet4.mdb" << A { false } << O::Cancelled
                                       << "keskeytyi. Vanhan muotoista varmuuskopiota ei voi palauttaa";
    QTest::newRow("jet of another program")
        << "northwind-jet3.mdb" << A { true } << O::Failed << "ei ole yhdistyksen kirjanpito";
}

void tst_StickRestore::restoresOverTheBooksInUse()
{
    QFETCH(QString, copy);
    QFETCH(QList<bool>, answers);
    QFETCH(StickRestore::Outcome, outcome);
    QFETCH(QString, told);
    const bool jet = copy.endsWith(u".mdb");
    if (jet && !JetFixtures::present(copy))
        QSKIP("The old-format sample files are not beside the project.");
    TestEnv env;
    const QString stick = env.path(QStringLiteral("tikku/Vorkam/20240312/seura.mdb"));
    const QString target = env.path(QStringLiteral("data/seura.mdb"));
    // The copy holds a mark the books in use do not.
    QVERIFY(openBooks(stick));
    QVERIFY(writeMark(QStringLiteral("kopiolla")));
    DBC::instance().SuljeDB();
    if (copy != u"books")
        QVERIFY(TestEnv::writeFile(
            stick, copy == u"text" ? "Kokouksen pöytäkirja\n" : TestEnv::readFile(JetFixtures::path(copy))));
    QVERIFY(openBooks(target));
    const QByteArray before = TestEnv::readFile(target);
    const QByteArray bytes = TestEnv::readFile(stick);
    const QString kept = Paths::dataDir() + QStringLiteral("/seura-jet.mdb");
    ScriptedDialogs dialogs;
    for (bool yes : answers)
        yes ? dialogs.answerYes() : dialogs.answerNo();

    QCOMPARE(StickRestore::restore(stick), outcome);
    QVERIFY(!DBC::instance().isOpen());
    const QStringList said = dialogs.transcript();
    QCOMPARE(said.size(), answers.size() + (jet && outcome == StickRestore::Outcome::Restored ? 2 : 1));
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Question).size(), answers.size());
    QVERIFY2(said.last().contains(told), qPrintable(said.last()));
    QCOMPARE(env.readIni().contains(QStringLiteral("Database=") + target),
        outcome == StickRestore::Outcome::Restored);
    const QStringList left
        = QDir(Paths::dataDir()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    if (!jet || outcome != StickRestore::Outcome::Restored) {
        // A refusal names the copy on the stick, never a work file of the restore.
        QVERIFY2(
            outcome != StickRestore::Outcome::Failed || said.last().contains(stick), qPrintable(said.last()));
        QCOMPARE(TestEnv::readFile(target), outcome == StickRestore::Outcome::Restored ? bytes : before);
        QCOMPARE(left, QStringList(QStringLiteral("seura.mdb")));
        return;
    }
    // Converted as the start-up converts old books: the old file and the report beside them.
    QCOMPARE(left, QStringList({ "seura-jet.mdb", "seura-muunnos.txt", "seura.mdb" }));
    QCOMPARE(TestEnv::readFile(kept), bytes);
    const QString report = QString::fromUtf8(TestEnv::readFile(Paths::dataDir() + "/seura-muunnos.txt"));
    QVERIFY(report.contains("Kirjanpito: " + target + "\nAlkuperäinen (Jet 4) säilytetty nimellä: " + kept));
    QVERIFY(said.at(2).contains(report.trimmed()));
    // The converted books, not the ones that were there.
    const QByteArray restored = TestEnv::readFile(target);
    QVERIFY(restored != before && restored.startsWith("SQLite format 3"));
}

QTEST_GUILESS_MAIN(tst_StickRestore)
#include "tst_StickRestore.moc"
