#include "BackupTestSupport.h"
#include "ScriptedDialogs.h"
#include "ScriptedDrives.h"
#include "TestEnv.h"
#include "backup/BackupStick.h"
#include "backup/StickBackup.h"
#include "core/DBC.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

#include <cerrno>
#include <optional>

class tst_StickBackup : public QObject {
    Q_OBJECT

private slots:
    void copyHoldsTheBooksAsClosedAndReplacesTheDaysFirst();
    void failedCopyLeavesNothingLikeABackup_data();
    void failedCopyLeavesNothingLikeABackup();
    void compaction();
    void compactionFailures_data();
    void compactionFailures();
};

namespace {

struct Setup {
    TestEnv env;
    ScriptedDrives drives;
    QString books = env.path(QStringLiteral("kirjat/seura.mdb"));
    QString stick;
    Setup()
    {
        QVERIFY(openBooks(books));
        stick = drives.add(QStringLiteral("KOPIOTIKKU"));
    }
};

} // namespace

void tst_StickBackup::copyHoldsTheBooksAsClosedAndReplacesTheDaysFirst()
{
    Setup s;
    ScriptedDialogs dialogs;
    QVERIFY(writeMark(QStringLiteral("aamu")));
    StickBackup backup(s.books);
    backup.today = QDate(2011, 9, 5);
    QCOMPARE(backup.find(), StickBackup::Found::Ready);
    qint64 lastDone = 0, lastTotal = 0;
    const StickBackup::Copied copied = backup.copy([&](qint64 done, qint64 total) {
        QVERIFY(done >= lastDone && done <= total);
        lastDone = done;
        lastTotal = total;
    });
    QVERIFY2(copied.ok, qPrintable(copied.message));
    QCOMPARE(copied.path, s.stick + QStringLiteral("/Vorkam/20110905/seura.mdb"));
    QCOMPARE(lastDone, lastTotal);
    // The books were closed first, so the file on the disk is the whole of them.
    QVERIFY(!DBC::instance().isOpen());
    QCOMPARE(TestEnv::readFile(copied.path), TestEnv::readFile(s.books));

    // A second copy of the same day takes the first one's place.
    QVERIFY(writeMark(QStringLiteral("ilta")));
    QCOMPARE(backup.find(), StickBackup::Found::Ready);
    QVERIFY(backup.copy().ok);
    QCOMPARE(BackupStick::days(s.stick), QStringList(QStringLiteral("20110905")));
    QCOMPARE(filesIn(QFileInfo(copied.path).absolutePath()), QStringList(QStringLiteral("seura.mdb")));
    QCOMPARE(marksIn(copied.path), QStringList({ QStringLiteral("aamu"), QStringLiteral("ilta") }));
    QVERIFY(dialogs.shown().isEmpty());
}

void tst_StickBackup::failedCopyLeavesNothingLikeABackup_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("stickLost");
    QTest::newRow("write-protected stick")
        << "read-only"
        << "Muistitikulle ei voi kirjoittaa: se on kirjoitussuojattu tai liitetty vain luettavaksi. Poista "
           "kirjoitussuojaus ja yritä uudelleen."
        << false;
    QTest::newRow("stick pulled out after finding") << "pulled out" << BackupStick::lostMessage() << true;
    QTest::newRow("stick filled since finding") << "full"
                                                << "Muistitikun vapaa tila ei riitä." << false;
    QTest::newRow("writes fail in the middle") << "writes fail"
                                               << "Kopiointi muistitikulle ei onnistunut." << false;
    QTest::newRow("backup folder is a file") << "folder is a file"
                                             << "Kansiota " << false;
}

void tst_StickBackup::failedCopyLeavesNothingLikeABackup()
{
    QFETCH(QString, fault);
    QFETCH(QString, message);
    QFETCH(bool, stickLost);
    Setup s;
    StickBackup backup(s.books);
    backup.today = QDate(2024, 3, 12);
    const QString copy
        = BackupStick::copyPath(s.stick, QStringLiteral("20240312"), QStringLiteral("seura.mdb"));
    const QString day = QFileInfo(copy).absolutePath();
    // An earlier copy of the same day is there and must survive the failed one.
    QVERIFY(writeMark(QStringLiteral("aamu")));
    QCOMPARE(backup.find(), StickBackup::Found::Ready);
    QVERIFY(backup.copy().ok);
    const QByteArray morning = TestEnv::readFile(copy);
    QVERIFY(writeMark(QStringLiteral("ilta")));
    QCOMPARE(backup.find(), StickBackup::Found::Ready);

    std::optional<FileSizeLimit> limit;
    if (fault == QLatin1String("read-only")) {
        s.drives.volume(0).readOnly = true;
    } else if (fault == QLatin1String("pulled out")) {
        s.drives.pullOut(0);
    } else if (fault == QLatin1String("full")) {
        s.drives.volume(0).freeBytes = QFileInfo(s.books).size();
    } else if (fault == QLatin1String("writes fail")) {
        limit.emplace(8192);
    } else {
        QVERIFY(QDir(BackupStick::backupFolder(s.stick)).removeRecursively());
        QVERIFY(TestEnv::writeFile(BackupStick::backupFolder(s.stick), "ei kansio"));
    }
    const StickBackup::Copied copied = backup.copy();
    limit.reset();
    QVERIFY(!copied.ok);
    QVERIFY2(copied.message.startsWith(message), qPrintable(copied.message));
    QCOMPARE(copied.stickLost, stickLost);
    if (fault == QLatin1String("folder is a file")) {
        QVERIFY(!QFileInfo::exists(copy));
    } else {
        // The morning's copy as it was, and no half-written or hidden file beside it.
        QCOMPARE(TestEnv::readFile(copy), morning);
        QCOMPARE(filesIn(day), QStringList(QStringLiteral("seura.mdb")));
    }
    // The books are untouched and still open for work.
    QCOMPARE(marksIn(s.books), QStringList({ QStringLiteral("aamu"), QStringLiteral("ilta") }));
    QVERIFY(writeMark(QStringLiteral("yö")));
}

void tst_StickBackup::compaction()
{
    Setup s;
    QVERIFY(writeMark(QString(200000, u'a')));
    QVERIFY(QSqlQuery(DBC::instance().AvaaDB())
                .exec(QStringLiteral("DELETE FROM Settings WHERE setSection = 'TEST'")));
    QVERIFY(writeMark(QStringLiteral("jää")));
    const qint64 before = QFileInfo(s.books).size();
    StickBackup backup(s.books);
    const StickBackup::Compacted compacted = backup.compact();
    QVERIFY2(compacted.ok, qPrintable(compacted.text));
    QVERIFY(compacted.text.startsWith(QStringLiteral("5. Tiivistys onnistui.")));
    QVERIFY(QFileInfo(s.books).size() < before);
    QCOMPARE(marksIn(s.books), QStringList(QStringLiteral("jää")));
    QCOMPARE(filesIn(QFileInfo(s.books).absolutePath()), QStringList(QStringLiteral("seura.mdb")));
    // The books open again for work after the compaction.
    QVERIFY(writeMark(QStringLiteral("jälkeen")));
}

void tst_StickBackup::compactionFailures_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("text");
    QTest::newRow("no temporary file") << "temporary"
                                       << "5. Tiivistys ei onnistunut: Väliaikaisen tiedoston luonti ei "
                                          "onnistunut: 28: Levyllä ei ole tilaa";
    QTest::newRow("disk fills during compaction")
        << "disk full"
        << "5. Tiivistys ei onnistunut: 778: Levyn luku- tai kirjoitusvirhe";
    QTest::newRow("compacted file cannot replace the books")
        << "rename"
        << "5. Tiivistetyn tietokannan kopiointi käyttöön ei onnistunut: 18: Tiedostoa ei voi siirtää "
           "toiselle levylle";
}

void tst_StickBackup::compactionFailures()
{
    QFETCH(QString, fault);
    QFETCH(QString, text);
    Setup s;
    QVERIFY(writeMark(QStringLiteral("tärkeä")));
    DBC::instance().SuljeDB();
    const QByteArray books = TestEnv::readFile(s.books);
    StickBackup backup(s.books);
    if (fault == QLatin1String("temporary"))
        backup.temporaryName = [](const QString&, const QString&, QString*) { return ENOSPC; };
    if (fault == QLatin1String("rename"))
        backup.renameOver = [](const QString&, const QString&) { return EXDEV; };
    std::optional<FileSizeLimit> limit;
    if (fault == QLatin1String("disk full"))
        limit.emplace(8192);
    const StickBackup::Compacted compacted = backup.compact();
    limit.reset();
    QVERIFY(!compacted.ok);
    QVERIFY2(compacted.text.startsWith(text), qPrintable(compacted.text));
    // The books byte for byte as they were, no temporary file beside them, and still usable.
    QCOMPARE(TestEnv::readFile(s.books), books);
    QCOMPARE(filesIn(QFileInfo(s.books).absolutePath()), QStringList(QStringLiteral("seura.mdb")));
    QVERIFY(writeMark(QStringLiteral("jälkeen")));
    QCOMPARE(marksIn(s.books), QStringList({ QStringLiteral("tärkeä"), QStringLiteral("jälkeen") }));
}

QTEST_GUILESS_MAIN(tst_StickBackup)
#include "tst_StickBackup.moc"
