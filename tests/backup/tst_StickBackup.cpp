#include "BackupTestSupport.h"
#include "ScriptedDrives.h"
#include "TestEnv.h"
#include "backup/StickBackup.h"
#include "core/DBC.h"

#include <QFileInfo>
#include <QTest>

#include <cerrno>

class tst_StickBackup : public QObject {
    Q_OBJECT

private slots:
    void copyToTheStick_data();
    void copyToTheStick();
    void compaction_data();
    void compaction();
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
        QVERIFY(writeMark(QStringLiteral("aamu")));
        stick = drives.add(QStringLiteral("KOPIOTIKKU"));
    }
};

} // namespace

void tst_StickBackup::copyToTheStick_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("message");
    textRow("second copy of the day", "", "");
    textRow("write-protected stick", "read-only", "Muistitikulle ei voi kirjoittaa");
    textRow("stick pulled out after finding", "pulled out", "Muistitikkua ei enää löydy.");
    textRow("stick filled since finding", "full", "Muistitikun vapaa tila ei riitä.");
    textRow("writes fail in the middle", "writes fail", "Kopiointi muistitikulle ei onnistunut.");
}

// A morning's copy of the day, then the evening's: it takes the morning's place, or fails and
// leaves the morning's copy as it was.
void tst_StickBackup::copyToTheStick()
{
    QFETCH(QString, fault);
    QFETCH(QString, message);
    Setup s;
    StickBackup backup(s.books);
    backup.today = QDate(2024, 3, 12);
    const QString copy = s.stick + QStringLiteral("/Vorkam/20240312/seura.mdb");
    QCOMPARE(backup.find(), StickBackup::Found::Ready);
    QVERIFY(backup.copy().ok);
    // The books were closed first, so the file on the disk is the whole of them.
    QVERIFY(!DBC::instance().isOpen());
    const QByteArray morning = TestEnv::readFile(copy);
    QCOMPARE(morning, TestEnv::readFile(s.books));
    QVERIFY(writeMark(QStringLiteral("ilta")));
    const QByteArray books = TestEnv::readFile(s.books);

    if (fault == QLatin1String("read-only")) {
        s.drives.list[0].readOnly = true;
    } else if (fault == QLatin1String("pulled out")) {
        s.drives.list.clear();
    } else if (fault == QLatin1String("full")) {
        s.drives.list[0].freeBytes = QFileInfo(s.books).size();
    }
    const StickBackup::Copied copied
        = withFileSizeLimit(fault == u"writes fail" ? 8192 : RLIM_INFINITY, [&] { return backup.copy(); });
    QCOMPARE(copied.ok, fault.isEmpty());
    QCOMPARE(copied.path, fault.isEmpty() ? copy : QString());
    QCOMPARE(copied.message.left(message.size()), message);
    QCOMPARE(copied.stickLost, fault == u"pulled out");
    // No half-written or hidden file beside the copy.
    QCOMPARE(TestEnv::readFile(copy), fault.isEmpty() ? books : morning);
    QCOMPARE(filesIn(QFileInfo(copy).absolutePath()), QStringList(QStringLiteral("seura.mdb")));
    // The books are untouched and still open for work.
    QCOMPARE(TestEnv::readFile(s.books), books);
    QVERIFY(writeMark(QStringLiteral("yö")));
}

void tst_StickBackup::compaction_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("text");
    textRow("compacted", "", "5. Tiivistys onnistui.");
    textRow("no temporary file", "temporary",
        "5. Tiivistys ei onnistunut: Väliaikaisen tiedoston luonti ei onnistunut: 28: Levyllä ei ole tilaa");
    textRow("disk fills during compaction", "disk full", "5. Tiivistys ei onnistunut: 778:");
    textRow("compacted file cannot replace the books", "rename", "5. Tiivistetyn tietokannan kopiointi");
}

// A compaction keeps every row of the books; one that fails leaves them byte for byte as they
// were. Either way no work file is left beside them and the books open again.
void tst_StickBackup::compaction()
{
    QFETCH(QString, fault);
    QFETCH(QString, text);
    Setup s;
    QVERIFY(writeMark(QString(200000, u'a')));
    QVERIFY(
        QSqlQuery(DBC::instance().AvaaDB())
            .exec(QStringLiteral("DELETE FROM Settings WHERE setSection = 'TEST' AND setString <> 'aamu'")));
    DBC::instance().SuljeDB();
    const QByteArray books = TestEnv::readFile(s.books);
    StickBackup backup(s.books);
    if (fault == QLatin1String("temporary"))
        backup.temporaryName = [](const QString&, const QString&, QString*) { return ENOSPC; };
    if (fault == QLatin1String("rename"))
        backup.renameOver = [](const QString&, const QString&) { return EXDEV; };
    const StickBackup::Compacted compacted
        = withFileSizeLimit(fault == u"disk full" ? 8192 : RLIM_INFINITY, [&] { return backup.compact(); });
    QCOMPARE(compacted.text.left(text.size()), text);
    QCOMPARE(compacted.ok, fault.isEmpty());
    if (fault.isEmpty())
        QVERIFY(QFileInfo(s.books).size() < books.size());
    else
        QCOMPARE(TestEnv::readFile(s.books), books);
    QCOMPARE(filesIn(QFileInfo(s.books).absolutePath()), QStringList(QStringLiteral("seura.mdb")));
    QSqlQuery q(DBC::instance().AvaaDB());
    QVERIFY(q.exec(QStringLiteral("SELECT group_concat(setString) FROM Settings WHERE setSection = 'TEST'")));
    QVERIFY(q.next());
    QCOMPARE(q.value(0).toString(), QStringLiteral("aamu"));
}

QTEST_GUILESS_MAIN(tst_StickBackup)
#include "tst_StickBackup.moc"
