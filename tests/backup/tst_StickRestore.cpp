#include "../core/JetFixtures.h"
#include "BackupTestSupport.h"
#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "backup/StickRestore.h"
#include "core/DBC.h"
#include "core/Paths.h"
#include "core/ProgramSettings.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

namespace {

const QString Restarted = QStringLiteral(
    "information: Tietokantaa on vaihdettu. Vorkam sammutetaan ja se tulee käynnistää uudestaan.");

QString questionAbout(const QString& target)
{
    return QStringLiteral(
               "question: Palautus kirjoittaa yli olemassa olevan tiedoston, korvataanko tämä tiedosto "
               "varmuuskopiolla?\n\n(")
        + target + u')';
}

// A copy on a stick and the place it is restored to.
struct Setup {
    TestEnv env;
    QString copy = env.path(QStringLiteral("tikku/Vorkam/20240312/seura.mdb"));
    QString target = env.path(QStringLiteral("data/seura.mdb"));
    QString earlier = env.path(QStringLiteral("data/muu.mdb"));
    Setup()
    {
        // The copy holds a mark the books in the data folder do not.
        QVERIFY(openBooks(copy));
        QVERIFY(writeMark(QStringLiteral("kopiolla")));
        DBC::instance().SuljeDB();
        ProgramSettings::installation().Database = earlier;
    }
    // Books already at the target, with a mark of their own.
    void existingTarget()
    {
        QVERIFY(openBooks(target));
        QVERIFY(writeMark(QStringLiteral("koneella")));
        DBC::instance().SuljeDB();
        ProgramSettings::installation().Database = earlier;
    }
};

} // namespace

class tst_StickRestore : public QObject {
    Q_OBJECT

private slots:
    void restoresOntoTheOpenBooks();
    void restoresOverBooks_data();
    void restoresOverBooks();
};

void tst_StickRestore::restoresOntoTheOpenBooks()
{
    Setup s;
    s.existingTarget();
    ProgramSettings::installation().Database = s.target;
    QVERIFY(DBC::instance().AvaaDB().isOpen());
    ScriptedDialogs dialogs;
    dialogs.answerYes();
    QCOMPARE(StickRestore::restore(s.copy), StickRestore::Outcome::Restored);
    QCOMPARE(dialogs.transcript(), QStringList({ questionAbout(s.target), Restarted }));
    QVERIFY(!DBC::instance().isOpen());
    QCOMPARE(filesIn(Paths::dataDir()), QStringList(QStringLiteral("seura.mdb")));
    // What the next start opens: the restored books.
    QVERIFY(DBC::instance().AvaaDB().isOpen());
    QCOMPARE(marksIn(s.target), QStringList(QStringLiteral("kopiolla")));
}

// A copy of Vorkam's books, a text file and old-format copies, each in place of books that are
// there already. Whatever stops a restore, the books keep their bytes, the data folder gets no
// file or folder of its own, the settings keep their books, and the last message tells why.
// Which files are sound books is told by the damaged-file corpus; here the words and what is left.
void tst_StickRestore::restoresOverBooks_data()
{
    QTest::addColumn<QString>("copy"); // "books", "text", or an old-format sample, "garbled" damaged
    QTest::addColumn<QList<bool>>("answers"); // Yes or No to each question in turn
    QTest::addColumn<StickRestore::Outcome>("outcome");
    QTest::addColumn<QString>("told");
    using A = QList<bool>;
    using O = StickRestore::Outcome;
    QTest::newRow("overwrite refused")
        << "books" << A { false } << O::Cancelled << "information: Palautus keskeytyi.";
    QTest::newRow("not books") << "text" << A {} << O::Failed
                               << "ei voi palauttaa: se ei ole Vorkamin tietokanta tai se on vioittunut.";
    QTest::newRow("jet converted") << "seura-jet4.mdb" << A { true, true } << O::Restored << Restarted;
    QTest::newRow("jet not converted") << "seura-jet4.mdb" << A { false } << O::Cancelled
                                       << "keskeytyi. Vanhan muotoista varmuuskopiota ei voi palauttaa";
    QTest::newRow("jet damaged") << "garbled" << A { true } << O::Failed
                                 << "on vioittunut, eikä sitä voi muuntaa";
    QTest::newRow("jet of another program")
        << "northwind-jet3.mdb" << A { true } << O::Failed << "ei ole yhdistyksen kirjanpito";
}

void tst_StickRestore::restoresOverBooks()
{
    QFETCH(QString, copy);
    QFETCH(QList<bool>, answers);
    QFETCH(StickRestore::Outcome, outcome);
    QFETCH(QString, told);
    const bool jet = copy != u"books" && copy != u"text";
    if (jet && !JetFixtures::present())
        QSKIP("The old-format sample files are not beside the project.");
    Setup s;
    s.existingTarget();
    QByteArray bytes = copy == u"text"
        ? "Kokouksen pöytäkirja\n"
        : TestEnv::readFile(JetFixtures::path(copy == u"garbled" ? QStringLiteral("seura-jet4.mdb") : copy));
    if (copy == u"garbled")
        bytes = JetFixtures::garbled(bytes, JetFixtures::dataPageWithRows(bytes, 26).value().first);
    if (copy != u"books")
        QVERIFY(TestEnv::writeFile(s.copy, bytes));
    const QByteArray before = TestEnv::readFile(s.target);
    const QString kept = Paths::dataDir() + QStringLiteral("/seura-jet.mdb");
    ScriptedDialogs dialogs;
    for (bool yes : answers)
        yes ? dialogs.answerYes() : dialogs.answerNo();

    QCOMPARE(StickRestore::restore(s.copy), outcome);
    const QStringList said = dialogs.transcript();
    if (!answers.isEmpty())
        QCOMPARE(said.first(),
            jet ? QStringLiteral(
                "question: Varmuuskopio %1 on vanhassa muodossa. Muunnetaanko se "
                "palautettaessa Vorkamin muotoon? Alkuperäinen tiedosto säilytetään nimellä %2.")
                      .arg(s.copy, kept)
                : questionAbout(s.target));
    QVERIFY2(said.last().contains(told), qPrintable(said.last()));
    const QStringList left
        = QDir(Paths::dataDir()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    if (outcome != StickRestore::Outcome::Restored) {
        QCOMPARE(said.size(), answers.size() + 1);
        // A refusal names the copy on the stick, never a work file of the restore.
        QVERIFY2(outcome == StickRestore::Outcome::Cancelled || said.last().contains(s.copy),
            qPrintable(said.last()));
        QCOMPARE(TestEnv::readFile(s.target), before);
        QCOMPARE(left, QStringList(QStringLiteral("seura.mdb")));
        QCOMPARE(ProgramSettings::installation().Database, s.earlier);
        return;
    }
    // Converted as the start-up converts old books: the old file and the report beside them.
    QCOMPARE(said.at(1), questionAbout(s.target));
    QCOMPARE(left, QStringList({ "seura-jet.mdb", "seura-muunnos.txt", "seura.mdb" }));
    QCOMPARE(TestEnv::readFile(kept), bytes);
    const QString report = QString::fromUtf8(TestEnv::readFile(Paths::dataDir() + "/seura-muunnos.txt"));
    QVERIFY(
        report.contains("Kirjanpito: " + s.target + "\nAlkuperäinen (Jet 4) säilytetty nimellä: " + kept));
    QCOMPARE(said.at(2),
        "information: " + report.trimmed() + "\n\nRaportti on tallessa tiedostossa " + Paths::dataDir()
            + "/seura-muunnos.txt.");
    QCOMPARE(ProgramSettings::installation().Database, s.target);
    QCOMPARE(marksIn(s.target), QStringList());
    withDatabase(s.target, [](QSqlDatabase& db) {
        QSqlQuery q(QStringLiteral("SELECT COUNT(*) FROM tl"), db);
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toInt(), 8);
    });
}

QTEST_GUILESS_MAIN(tst_StickRestore)
#include "tst_StickRestore.moc"
