#include "BackupTestSupport.h"
#include "DBC.h"
#include "Paths.h"
#include "ProgramSettings.h"
#include "ScriptedDialogs.h"
#include "StickRestore.h"
#include "TestEnv.h"

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
    void overwriteQuestion_data();
    void overwriteQuestion();
    void restoresOntoTheOpenBooks();
    void refusesWhatIsNotSoundBooks_data();
    void refusesWhatIsNotSoundBooks();
};

void tst_StickRestore::overwriteQuestion_data()
{
    QTest::addColumn<bool>("yes");
    QTest::newRow("yes replaces") << true;
    QTest::newRow("no keeps") << false;
}

void tst_StickRestore::overwriteQuestion()
{
    QFETCH(bool, yes);
    Setup s;
    s.existingTarget();
    const QByteArray before = TestEnv::readFile(s.target);
    ScriptedDialogs dialogs;
    if (yes)
        dialogs.answerYes();
    else
        dialogs.answerNo();
    const StickRestore::Outcome outcome = StickRestore::restore(s.copy);
    if (yes) {
        QCOMPARE(outcome, StickRestore::Outcome::Restored);
        QCOMPARE(dialogs.transcript(), QStringList({ questionAbout(s.target), Restarted }));
        QCOMPARE(marksIn(s.target), QStringList(QStringLiteral("kopiolla")));
        QCOMPARE(ProgramSettings::installation().Database, s.target);
    } else {
        QCOMPARE(outcome, StickRestore::Outcome::Cancelled);
        QCOMPARE(dialogs.transcript(),
            QStringList({ questionAbout(s.target), QStringLiteral("information: Palautus keskeytyi.") }));
        QCOMPARE(TestEnv::readFile(s.target), before);
        QCOMPARE(ProgramSettings::installation().Database, s.earlier);
    }
    // The copy brought over for checking never stays behind under a name of its own.
    QCOMPARE(filesIn(Paths::dataDir()), QStringList(QStringLiteral("seura.mdb")));
    QVERIFY(dialogs.failures().isEmpty());
}

void tst_StickRestore::restoresOntoTheOpenBooks()
{
    Setup s;
    s.existingTarget();
    ProgramSettings::installation().Database = s.target;
    QVERIFY(DBC::instance().AvaaDB().isOpen());
    ScriptedDialogs dialogs;
    dialogs.answerYes();
    QCOMPARE(StickRestore::restore(s.copy), StickRestore::Outcome::Restored);
    QVERIFY(!DBC::instance().isOpen());
    QCOMPARE(TestEnv::readFile(s.target), TestEnv::readFile(s.copy));
    // What the next start opens: the restored books.
    QVERIFY(DBC::instance().AvaaDB().isOpen());
    QCOMPARE(marksIn(s.target), QStringList(QStringLiteral("kopiolla")));
}

void tst_StickRestore::refusesWhatIsNotSoundBooks_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("foreign file") << "foreign";
    QTest::newRow("damaged books") << "damaged";
    QTest::newRow("old-format books") << "jet";
    QTest::newRow("database of another program") << "other";
    QTest::newRow("empty file") << "empty";
}

void tst_StickRestore::refusesWhatIsNotSoundBooks()
{
    QFETCH(QString, kind);
    Setup s;
    s.existingTarget();
    const QByteArray before = TestEnv::readFile(s.target);
    if (kind == QLatin1String("foreign")) {
        QVERIFY(TestEnv::writeFile(s.copy, "Kokouksen pöytäkirja\n"));
    } else if (kind == QLatin1String("damaged")) {
        QByteArray bytes = TestEnv::readFile(s.copy);
        bytes.truncate(bytes.size() / 2);
        bytes.replace(4096, 2048, QByteArray(2048, '\xAA'));
        QVERIFY(TestEnv::writeFile(s.copy, bytes));
    } else if (kind == QLatin1String("jet")) {
        QByteArray bytes(4096, '\0');
        bytes.replace(4, 15, "Standard Jet DB");
        QVERIFY(TestEnv::writeFile(s.copy, bytes));
    } else if (kind == QLatin1String("other")) {
        QVERIFY(QFile::remove(s.copy));
        withDatabase(s.copy, [](QSqlDatabase& db) {
            QSqlQuery(db).exec(QStringLiteral("CREATE TABLE muistiinpanot (teksti TEXT)"));
        });
    } else {
        QVERIFY(TestEnv::writeFile(s.copy, QByteArray()));
    }
    ScriptedDialogs dialogs;
    QCOMPARE(StickRestore::restore(s.copy), StickRestore::Outcome::Failed);
    const QStringList errors = dialogs.texts(ScriptedDialogs::Kind::Error);
    QCOMPARE(dialogs.shown().size(), 1);
    QCOMPARE(errors.size(), 1);
    QVERIFY2(errors.first().startsWith(QStringLiteral("Varmuuskopiota ") + s.copy
                 + QStringLiteral(" ei voi palauttaa: se ei ole Vorkamin tietokanta tai se on vioittunut.")),
        qPrintable(errors.first()));
    QVERIFY(errors.first().endsWith(QStringLiteral("Mitään tiedostoa ei ole muutettu.")));
    QCOMPARE(TestEnv::readFile(s.target), before);
    QCOMPARE(ProgramSettings::installation().Database, s.earlier);
    QCOMPARE(filesIn(Paths::dataDir()), QStringList(QStringLiteral("seura.mdb")));
}

QTEST_GUILESS_MAIN(tst_StickRestore)
#include "tst_StickRestore.moc"
