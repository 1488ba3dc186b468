#include "ScriptedDialogs.h"
#include "ScriptedDrives.h"
#include "TestEnv.h"
#include "backup/BackupStick.h"
#include "backup/SystemDrives.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

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
    void deletingFromAPulledOutStick();
    void removableFromTheKernel_data();
    void removableFromTheKernel();
    void realVolumeOfAnImage();
};

// The stick is the first volume that is ready, removable and named KOPIOTIKKU in any case; a
// fixed disk, a label with more in it and a volume not ready are passed over.
void tst_BackupStick::firstSuitableInOrder()
{
    ScriptedDrives drives;
    drives.add(QStringLiteral("KOPIOTIKKU"), false);
    drives.add(QStringLiteral("KOPIOTIKKU2"));
    drives.add(QStringLiteral(" KOPIOTIKKU"));
    drives.add(QStringLiteral("KOPIOTIKKU"), true, qint64(1) << 30, false);
    const QString first = drives.add(QStringLiteral("KopioTikku"));
    drives.add(QStringLiteral("KOPIOTIKKU"));
    const std::optional<Volume> found = BackupStick::find();
    QVERIFY(found);
    QCOMPARE(found->mountPoint, first);
    QVERIFY(BackupStick::stillThere(first));
    drives.pullOut(4);
    QVERIFY(!BackupStick::stillThere(first));
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
    QVERIFY(BackupStick::files(stick.path(), QStringLiteral("20990101")).isEmpty());
}

void tst_BackupStick::deletingFromAPulledOutStick()
{
    ScriptedDrives drives;
    const QString stick = drives.add(QStringLiteral("KOPIOTIKKU"));
    const QString copy = BackupStick::copyPath(stick, QStringLiteral("20240312"), QStringLiteral("a.mdb"));
    QVERIFY(touch(copy));
    drives.pullOut(0);
    ScriptedDialogs dialogs;
    QCOMPARE(BackupStick::deleteCopies(stick, QStringLiteral("20240312"), { QStringLiteral("a.mdb") }), -1);
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Error), QStringList(BackupStick::lostMessage()));
    QVERIFY(QFileInfo::exists(copy));
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
    QTest::newRow("not a device") << "tmpfs" << false;
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

void tst_BackupStick::realVolumeOfAnImage()
{
    // The system's own list against a real FAT file system on a loop device: only where the
    // administrator runs the test, a loop device is free and the kernel mounts FAT.
    if (::geteuid() != 0)
        QSKIP("Mounting a disk image needs the administrator's rights.");
    const QString mkfs = QStandardPaths::findExecutable(QStringLiteral("mkfs.fat"),
        { QStringLiteral("/usr/sbin"), QStringLiteral("/sbin"), QStringLiteral("/usr/bin") });
    if (mkfs.isEmpty())
        QSKIP("mkfs.fat (dosfstools) is not installed.");
    // The tool's output, and whether it succeeded.
    const auto run = [](const QString& program, const QStringList& args) {
        QProcess p;
        p.setProcessChannelMode(QProcess::MergedChannels);
        p.start(program, args);
        const bool ok
            = p.waitForFinished(60000) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
        return std::make_pair(ok, QString::fromLocal8Bit(p.readAll()).trimmed());
    };
    QTemporaryDir dir;
    const QString image = dir.path() + QStringLiteral("/tikku.img");
    const QString mountPoint = dir.path() + QStringLiteral("/KOPIOTIKKU");
    QVERIFY(QDir().mkpath(mountPoint));
    QFile file(image);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(4 * 1024 * 1024));
    file.close();
    const auto [made, mkfsSaid] = run(mkfs, { QStringLiteral("-n"), QStringLiteral("KOPIOTIKKU"), image });
    QVERIFY2(made, qPrintable(mkfsSaid));
    const auto attached
        = run(QStringLiteral("losetup"), { QStringLiteral("--find"), QStringLiteral("--show"), image });
    if (!attached.first)
        QSKIP(qPrintable(QStringLiteral("no loop device: ") + attached.second));
    const QString device = attached.second;
    const auto detach = qScopeGuard([&] {
        run(QStringLiteral("losetup"), { QStringLiteral("--detach"), device });
    });
    const auto [mounted, mountSaid]
        = run(QStringLiteral("mount"), { QStringLiteral("-t"), QStringLiteral("vfat"), device, mountPoint });
    if (!mounted)
        QSKIP(qPrintable(
            (TestEnv::readFile(QStringLiteral("/proc/filesystems")).contains("vfat")
                    ? QStringLiteral("the kernel would not mount the image: ")
                    : QStringLiteral("the kernel has no vfat file system (not in /proc/filesystems): "))
            + mountSaid));
    const auto unmount = qScopeGuard([&] { run(QStringLiteral("umount"), { mountPoint }); });

    const QList<Volume> volumes = SystemDrives().volumes();
    const auto it = std::find_if(
        volumes.begin(), volumes.end(), [&](const Volume& v) { return v.mountPoint == mountPoint; });
    QVERIFY(it != volumes.end());
    QCOMPARE(it->label.toUpper(), QStringLiteral("KOPIOTIKKU"));
    QVERIFY(it->ready);
    QVERIFY(it->freeBytes > 0 && it->freeBytes < 4 * 1024 * 1024);
    // A loop device is a disk that cannot be unplugged: the right label on a fixed disk is not
    // the stick.
    QVERIFY(!it->removable);
    QVERIFY(!BackupStick::suitable(*it));
    for (int i = 1; i < volumes.size(); ++i)
        QVERIFY(volumes[i - 1].mountPoint <= volumes[i].mountPoint);
}

QTEST_GUILESS_MAIN(tst_BackupStick)
#include "tst_BackupStick.moc"
