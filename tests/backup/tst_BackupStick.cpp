#include "ScriptedDialogs.h"
#include "ScriptedDrives.h"
#include "TestEnv.h"
#include "backup/BackupStick.h"
#include "backup/SystemDrives.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

bool touch(const QString& file, const QByteArray& bytes = "x")
{
    QDir().mkpath(QFileInfo(file).absolutePath());
    return TestEnv::writeFile(file, bytes);
}

} // namespace

class tst_BackupStick : public QObject {
    Q_OBJECT

private slots:
    void firstSuitableInOrder();
    void daysNewestFirstFilesWithoutLeftovers();
    void removableFromTheKernel_data();
    void removableFromTheKernel();
    void systemVolumes();
};

// The stick is the first volume that is ready, removable and named KOPIOTIKKU in any case; a
// fixed disk, a label with more in it and a volume not ready are passed over. Once it is pulled
// out, no other stick stands for it and nothing is deleted from its empty mount folder.
void tst_BackupStick::firstSuitableInOrder()
{
    ScriptedDrives drives;
    drives.add(QStringLiteral("KOPIOTIKKU"), false);
    drives.add(QStringLiteral("KOPIOTIKKU2"));
    drives.add(QStringLiteral("KOPIOTIKKU"));
    drives.list.last().ready = false;
    const QString first = drives.add(QStringLiteral("KopioTikku"));
    drives.add(QStringLiteral("KOPIOTIKKU"));
    QCOMPARE(BackupStick::find().value().mountPoint, first);
    QVERIFY(BackupStick::stillThere(first));
    const QString copy = BackupStick::copyPath(first, QStringLiteral("20240312"), QStringLiteral("a.mdb"));
    QVERIFY(touch(copy));

    drives.list.removeAt(3);
    QVERIFY(!BackupStick::stillThere(first));
    ScriptedDialogs dialogs;
    QCOMPARE(BackupStick::deleteCopies(first, QStringLiteral("20240312"), { QStringLiteral("a.mdb") }), -1);
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Error), QStringList(BackupStick::lostMessage()));
    QVERIFY(QFileInfo::exists(copy));
}

void tst_BackupStick::daysNewestFirstFilesWithoutLeftovers()
{
    // A stick mounted at the root of the file system does not double the separator.
    QCOMPARE(BackupStick::backupFolder(QStringLiteral("/")), QStringLiteral("/Vorkam"));
    QTemporaryDir stick;
    // The backup folder is made when missing, and no days are found in it.
    QVERIFY(BackupStick::days(stick.path()).isEmpty());
    QVERIFY(QFileInfo(stick.path() + QStringLiteral("/Vorkam")).isDir());

    const QString folder = stick.path() + QStringLiteral("/Vorkam/");
    // An unfinished copy is hidden and never listed, a foreign file is listed as it is, and a
    // file beside the day folders is not a day.
    for (const char* file :
        { "20240105/seura.mdb", "20231231/seura.mdb", "20240312/kuoro.mdb", "20240312/seura.mdb",
            "20240312/.seura.mdb.vorkam-a1b2c3", "20240312/muistio.txt", "lueminut.txt" })
        QVERIFY(touch(folder + QLatin1String(file)));

    QCOMPARE(BackupStick::days(stick.path()), (QStringList { "20240312", "20240105", "20231231" }));
    QCOMPARE(BackupStick::files(stick.path(), QStringLiteral("20240312")),
        (QStringList { "kuoro.mdb", "muistio.txt", "seura.mdb" }));
}

void tst_BackupStick::removableFromTheKernel_data()
{
    QTest::addColumn<QString>("device");
    QTest::addColumn<bool>("removable");
    QTest::newRow("partition of a removable disk") << "/dev/sdx1" << true;
    QTest::newRow("the removable disk itself") << "/dev/sdx" << true;
    QTest::newRow("partition of a disk on a USB bus") << "/dev/sdy1" << true;
    QTest::newRow("partition of a fixed disk") << "/dev/sdz1" << false;
    QTest::newRow("SD card") << "/dev/mmcblk0p1" << true;
    QTest::newRow("eMMC") << "/dev/mmcblk1p1" << false;
    QTest::newRow("unknown device") << "/dev/sdw1" << false;
}

void tst_BackupStick::removableFromTheKernel()
{
    QFETCH(QString, device);
    QFETCH(bool, removable);
    // The kernel's list: links to device folders; a partition's folder lies in its disk's.
    QTemporaryDir sys;
    const QString devices = sys.path() + QStringLiteral("/devices");
    const QString block = sys.path() + QStringLiteral("/block");
    QDir().mkpath(block);
    const auto disk
        = [&](const QString& path, const QString& name, const QByteArray& flag, const QString& part) {
              const QString diskDir = devices + path + u'/' + name;
              touch(diskDir + QStringLiteral("/removable"), flag);
              QFile::link(diskDir, block + u'/' + name);
              touch(diskDir + u'/' + part + QStringLiteral("/partition"), "1");
              QFile::link(diskDir + u'/' + part, block + u'/' + part);
          };
    disk(QStringLiteral("/pci0/ata1"), QStringLiteral("sdx"), "1", QStringLiteral("sdx1"));
    disk(QStringLiteral("/pci0/usb2/2-1"), QStringLiteral("sdy"), "0", QStringLiteral("sdy1"));
    disk(QStringLiteral("/pci0/ata2"), QStringLiteral("sdz"), "0", QStringLiteral("sdz1"));
    disk(QStringLiteral("/pci0/mmc0"), QStringLiteral("mmcblk0"), "0", QStringLiteral("mmcblk0p1"));
    touch(devices + QStringLiteral("/pci0/mmc0/mmcblk0/device/type"), "SD\n");
    disk(QStringLiteral("/pci0/mmc1"), QStringLiteral("mmcblk1"), "0", QStringLiteral("mmcblk1p1"));
    touch(devices + QStringLiteral("/pci0/mmc1/mmcblk1/device/type"), "MMC\n");

    const SystemDrives drives(block);
    QVERIFY(drives.supported());
    QCOMPARE(drives.removable(device), removable);
    QVERIFY(!SystemDrives(sys.path() + QStringLiteral("/none")).supported());
}

// The system's own list: the root file system is there, ready and with room, on no disk that can
// be unplugged, and the list is in the order of the mount points.
void tst_BackupStick::systemVolumes()
{
    const QList<Volume> volumes = SystemDrives().volumes();
    const auto root
        = std::find_if(volumes.begin(), volumes.end(), [](const Volume& v) { return v.mountPoint == u"/"; });
    QVERIFY(root != volumes.end());
    QVERIFY(root->ready && root->freeBytes > 0 && !root->removable);
    for (int i = 1; i < volumes.size(); ++i)
        QVERIFY(volumes[i - 1].mountPoint <= volumes[i].mountPoint);
}

QTEST_GUILESS_MAIN(tst_BackupStick)
#include "tst_BackupStick.moc"
