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
    void overwriteAnsweredNo();
    void restoresOntoTheOpenBooks();
    void refusesWhatIsNotSoundBooks();
};

void tst_StickRestore::overwriteAnsweredNo()
{
    Setup s;
    s.existingTarget();
    const QByteArray before = TestEnv::readFile(s.target);
    ScriptedDialogs dialogs;
    dialogs.answerNo();
    QCOMPARE(StickRestore::restore(s.copy), StickRestore::Outcome::Cancelled);
    QCOMPARE(dialogs.transcript(),
        QStringList({ questionAbout(s.target), QStringLiteral("information: Palautus keskeytyi.") }));
    QCOMPARE(TestEnv::readFile(s.target), before);
    QCOMPARE(ProgramSettings::installation().Database, s.earlier);
    // The copy brought over for checking never stays behind under a name of its own.
    QCOMPARE(filesIn(Paths::dataDir()), QStringList(QStringLiteral("seura.mdb")));
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
    QCOMPARE(dialogs.transcript(), QStringList({ questionAbout(s.target), Restarted }));
    QVERIFY(!DBC::instance().isOpen());
    QCOMPARE(filesIn(Paths::dataDir()), QStringList(QStringLiteral("seura.mdb")));
    // What the next start opens: the restored books.
    QVERIFY(DBC::instance().AvaaDB().isOpen());
    QCOMPARE(marksIn(s.target), QStringList(QStringLiteral("kopiolla")));
}

// Which files are sound books, and that both files keep their bytes, is told by the damaged-file
// corpus; here the refusal's words.
void tst_StickRestore::refusesWhatIsNotSoundBooks()
{
    Setup s;
    s.existingTarget();
    QVERIFY(TestEnv::writeFile(s.copy, "Kokouksen pöytäkirja\n"));
    ScriptedDialogs dialogs;
    QCOMPARE(StickRestore::restore(s.copy), StickRestore::Outcome::Failed);
    const QStringList errors = dialogs.texts(ScriptedDialogs::Kind::Error);
    QCOMPARE(dialogs.shown().size(), 1);
    QCOMPARE(errors.size(), 1);
    QVERIFY2(errors.first().startsWith(QStringLiteral("Varmuuskopiota ") + s.copy
                 + QStringLiteral(" ei voi palauttaa: se ei ole Vorkamin tietokanta tai se on vioittunut.")),
        qPrintable(errors.first()));
    QVERIFY(errors.first().endsWith(QStringLiteral("Mitään tiedostoa ei ole muutettu.")));
    QCOMPARE(ProgramSettings::installation().Database, s.earlier);
}

QTEST_GUILESS_MAIN(tst_StickRestore)
#include "tst_StickRestore.moc"
