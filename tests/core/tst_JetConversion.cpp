#include "JetFixtures.h"
#include "TestEnv.h"
#include "core/DatabaseFile.h"
#include "core/FileOps.h"
#include "core/JetConversion.h"
#include "core/Schema.h"

#include <QDir>
#include <QProcess>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTest>

namespace {

const QString Old = QStringLiteral("vanha-seura-jet4.mdb");
const QString Current = QStringLiteral("seura-jet4.mdb");

// A writable copy of a sample book in the test's folder.
QString copyFixture(
    const TestEnv& env, const QString& fixture, const QString& name = QStringLiteral("seura.mdb"))
{
    const QString file = env.path(name);
    QFile::remove(file);
    if (!QFile::copy(JetFixtures::path(fixture), file))
        return {};
    QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    return file;
}

QString scalar(const QString& file, const QString& sql)
{
    QString value = QStringLiteral("<ei riviä>");
    withDatabase(file, [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        if (!q.exec(sql))
            value = QStringLiteral("<virhe> ") + sql;
        else if (q.next())
            value = q.value(0).isNull() ? QStringLiteral("NULL") : q.value(0).toString();
    });
    return value;
}

// Table → its fields, lower case, of a book.
QMap<QString, QStringList> layoutOf(const QString& file)
{
    QMap<QString, QStringList> layout;
    withDatabase(file, [&](QSqlDatabase& db) {
        for (const QString& table : db.tables()) {
            if (table.startsWith(QLatin1String("sqlite_")))
                continue;
            QStringList fields;
            const QSqlRecord r = db.record(table);
            for (int i = 0; i < r.count(); ++i)
                fields << r.fieldName(i).toLower();
            fields.sort();
            layout.insert(table.toLower(), fields);
        }
    });
    return layout;
}

// Renames a table in the old file's table list (same length); false unless found exactly once.
bool renameTable(QByteArray& bytes, const QString& from, const QString& to)
{
    const auto utf16
        = [](const QString& s) { return QByteArray(reinterpret_cast<const char*>(s.utf16()), s.size() * 2); };
    const QByteArray entry = QByteArray(4, '\0') + utf16(from) + '\xa6';
    if (bytes.count(entry) != 1)
        return false;
    bytes.replace(bytes.indexOf(entry) + 4, entry.size() - 5, utf16(to));
    return true;
}

QStringList folderListing(const TestEnv& env)
{
    return QDir(env.path(QString())).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

// The converted book of a sample, converted once for all the rows that only read it.
QByteArray convertedOnce(const QString& fixture)
{
    static QHash<QString, QByteArray> converted;
    if (!converted.contains(fixture)) {
        TestEnv env;
        const QString file = copyFixture(env, fixture);
        const JetConversion::Result r = JetConversion().convert(file);
        if (!r.ok)
            qWarning("%s", qPrintable(r.message));
        converted.insert(fixture, r.ok ? TestEnv::readFile(file) : QByteArray());
    }
    return converted.value(fixture);
}

Money money(const char* text) { return *Money::parse(QString::fromUtf8(text)); }

} // namespace

// Old Jet books converted whole, the old file kept, and bad files refused with nothing changed.
class tst_JetConversion : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        if (!JetFixtures::present())
            QSKIP("The old-format sample files are not beside the project.");
    }

    void convertsEveryValue_data()
    {
        QTest::addColumn<QString>("fixture");
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QString>("expected");
        for (const QString& f : { Old, Current }) {
            const auto row = [&f](const char* what, const char* sql, const QString& expected) {
                QTest::addRow("%s: %s", qPrintable(f), what) << f << QString::fromUtf8(sql) << expected;
            };
            row("accounts",
                "SELECT group_concat(tlID || ':' || tlNumero, ',') FROM (SELECT * FROM tl ORDER BY tlID)",
                "1:1910,2:1900,3:2250,4:2260,5:3000,6:4000,7:4920,8:9990");
            row("account name", "SELECT tlNimi FROM tl WHERE tlNumero = 2250",
                "Edellisten tilikausien ylijäämä");
            row("vouchers", "SELECT COUNT(*) || ' ' || MIN(toNumero) || '-' || MAX(toNumero) FROM \"to\"",
                "13 0-12");
            row("opening voucher",
                "SELECT toID || ' ' || toPvm || ' ' || toAvaustosite FROM \"to\" WHERE toNumero = 0",
                "1 2011-01-01 1");
            row("opening debit",
                "SELECT tlNumero || ' ' || viArvo || ' ' || viAvausvienti FROM vi JOIN tl ON vitlID = tlID "
                "WHERE vitoID = 1 AND viTyyppi = 'D'",
                "1910 15000000 1");
            row("last date: day and month in their places", "SELECT MAX(toPvm) FROM \"to\"", "2011-12-15");
            row("ordinary vouchers are not opening ones", "SELECT SUM(toAvaustosite) FROM \"to\"", "1");
            row("next account id", "SELECT seq FROM sqlite_sequence WHERE name = 'tl'", "8");
        }
        // Money of the voucher templates, a field of the current layout only.
        QTest::newRow("current: voucher template rows")
            << Current
            << QStringLiteral("SELECT group_concat(vipTyyppi || vipArvo || '@' || viptlID) FROM vipPohjat "
                              "WHERE viptpID = 1")
            << QStringLiteral("D255000@1,K255000@5");
    }

    void convertsEveryValue()
    {
        QFETCH(QString, fixture);
        QFETCH(QString, sql);
        QFETCH(QString, expected);
        const QByteArray converted = convertedOnce(fixture);
        QVERIFY(!converted.isEmpty());
        TestEnv env;
        const QString file = env.path(QStringLiteral("seura.mdb"));
        QVERIFY(TestEnv::writeFile(file, converted));
        QCOMPARE(scalar(file, sql), expected);
    }

    void endsAtTheCurrentLayout_data()
    {
        QTest::addColumn<QString>("fixture");
        QTest::addColumn<QList<int>>("steps");
        QTest::addColumn<QString>("previousBySide");
        QTest::addColumn<int>("tables");
        QTest::newRow("oldest layout: every step")
            << Old << QList<int> { 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17 } << "0" << 9;
        // The sample's work tables lack their template-row field; the stored queries are
        // Vorkam's own and made anew.
        QTest::newRow("current layout") << Current << QList<int> { 6, 7, 12 } << "99,90" << 15;
    }

    // Every table read is written whole, the sums by side agree before and after, the book ends
    // in Vorkam's current layout, and the old file is kept beside it with a report.
    void endsAtTheCurrentLayout()
    {
        QFETCH(QString, fixture);
        QFETCH(QList<int>, steps);
        QFETCH(QString, previousBySide);
        QFETCH(int, tables);
        TestEnv env;
        const QString file = copyFixture(env, fixture);
        const auto readable = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup
            | QFileDevice::ReadOther;
        QVERIFY(QFile::setPermissions(file, readable));
        const QByteArray before = TestEnv::readFile(file);
        const JetConversion::Result r = JetConversion().convert(file);
        QVERIFY2(r.ok, qPrintable(r.message));
        QCOMPARE(r.original, env.path(QStringLiteral("seura-jet.mdb")));
        QCOMPARE(TestEnv::readFile(r.original), before);
        // Who may read the books does not change.
        const auto user = QFileDevice::ReadUser | QFileDevice::WriteUser | QFileDevice::ExeUser;
        QCOMPARE(QFileInfo(file).permissions() & ~user, readable);
        QCOMPARE(r.reportFile, env.path(QStringLiteral("seura-muunnos.txt")));
        QCOMPARE(folderListing(env),
            (QStringList { QStringLiteral("seura-jet.mdb"), QStringLiteral("seura-muunnos.txt"),
                QStringLiteral("seura.mdb") }));
        const QString report = QString::fromUtf8(TestEnv::readFile(r.reportFile));
        QCOMPARE(report, r.report() + u'\n');
        const QString sum = money("3 104,00").toString();
        for (const QString& line :
            { QStringLiteral("  vi: 26 / 26"), QStringLiteral("debet (D): ennen %1, jälkeen %1").arg(sum),
                QStringLiteral("Ohitettuja tauluja ei ollut."),
                QStringLiteral("Alkuperäinen (Jet 4) säilytetty nimellä: %1").arg(r.original) })
            QVERIFY2(report.contains(line), qPrintable(line));
        QCOMPARE(r.upgradeSteps, steps);
        const Money entries = money("3 104,00");
        const Money previous = money(previousBySide.toUtf8().constData());
        QCOMPARE(r.entriesBefore, (JetConversion::Sums { entries, entries, Money() }));
        QCOMPARE(r.entriesAfter, r.entriesBefore);
        QCOMPARE(r.previousBefore, (JetConversion::Sums { previous, previous, Money() }));
        QCOMPARE(r.previousAfter, r.previousBefore);
        QCOMPARE(r.tables.size(), tables);
        for (const JetConversion::TableCount& t : r.tables)
            QCOMPARE(t.written, t.read);
        QCOMPARE(r.timesDropped, 0);
        QVERIFY(!report.contains(QStringLiteral("Kellonaika")));

        const QString fresh = env.path(QStringLiteral("uusi.mdb"));
        QVERIFY(TestEnv::createDatabase(fresh));
        // The template rows' account and side are part of Vorkam's layout: nothing is extra.
        QCOMPARE(layoutOf(file), layoutOf(fresh));
        QCOMPARE(r.extraFields, QStringList());
        withDatabase(
            file, [](QSqlDatabase& db) { QVERIFY(Schema::queryPresent(db, QStringLiteral("viennitA"))); });
        // A converted book opens as any book does, and an opening finds nothing to upgrade.
        const OpenResult opened = DatabaseFile::open(file, QStringLiteral("check"));
        QVERIFY2(opened, qPrintable(opened.message));
        QVERIFY(
            Schema::UpdateDatabase(QSqlDatabase::database(QStringLiteral("check"))).appliedSteps.isEmpty());
        DatabaseFile::close(QStringLiteral("check"));
    }

    void unknownTableIsReportedNotCopied()
    {
        TestEnv env;
        const QString file = copyFixture(env, Current);
        // The empty work table tk renamed: a table Vorkam does not know.
        QByteArray bytes = TestEnv::readFile(file);
        QVERIFY(renameTable(bytes, QStringLiteral("tk"), QStringLiteral("zz")));
        QVERIFY(TestEnv::writeFile(file, bytes));
        const JetConversion::Result r = JetConversion().convert(file);
        QVERIFY2(r.ok, qPrintable(r.message));
        QCOMPARE(r.skippedTables, QStringList { QStringLiteral("zz") });
        QVERIFY(r.report().contains(
            QStringLiteral("Ohitetut taulut (Vorkam ei tunne niitä, joten niitä ei kopioitu): zz")));
        const QMap<QString, QStringList> layout = layoutOf(file);
        QVERIFY(!layout.contains(QStringLiteral("zz")));
        // The upgrade makes Vorkam's own tk as for any book without one.
        QVERIFY(layout.contains(QStringLiteral("tk")));
        QCOMPARE(r.upgradeSteps, (QList<int> { 5, 6, 7, 12 }));
    }

    void secondConversionKeepsTheFirstOriginal()
    {
        TestEnv env;
        const QString file = copyFixture(env, Old);
        QVERIFY(JetConversion().convert(file).ok);
        // The user puts another old file under the same name and converts it too.
        QVERIFY(QFile::remove(file));
        QVERIFY(!copyFixture(env, Current).isEmpty());
        const JetConversion::Result second = JetConversion().convert(file);
        QVERIFY2(second.ok, qPrintable(second.message));
        QCOMPARE(second.original, env.path(QStringLiteral("seura-jet-2.mdb")));
        QCOMPARE(TestEnv::readFile(env.path(QStringLiteral("seura-jet.mdb"))),
            TestEnv::readFile(JetFixtures::path(Old)));
        QCOMPARE(TestEnv::readFile(second.original), TestEnv::readFile(JetFixtures::path(Current)));
        QCOMPARE(second.reportFile, env.path(QStringLiteral("seura-muunnos-2.txt")));
        QCOMPARE(scalar(file, QStringLiteral("SELECT COUNT(*) FROM viE")), QStringLiteral("2"));
    }

    void badFileIsRefused_data()
    {
        QTest::addColumn<QString>("damage");
        QTest::addColumn<QString>("message");
        textRow("cut inside a page", "cut", "vajaa");
        textRow("the entries' page garbled", "garbled", "vioittunut");
        textRow("another program's database", "foreign", "ei ole yhdistyksen kirjanpito");
        textRow("another program's Jet 3 file", "northwind-jet3.mdb", "ei ole yhdistyksen kirjanpito");
        textRow("another program's Jet 4 file", "dates-jet4.mdb", "ei ole yhdistyksen kirjanpito");
        textRow("password", "password", "salasanalla");
        textRow("no room on the disk", "full", "tarpeeksi tilaa");
        textRow("read-only folder", "read-only folder", "ei voi kirjoittaa");
        textRow("already converted", "sqlite", "ei ole vanhan muodon");
        textRow("the old file cannot be kept", "copy fails", "Alkuperäistä tiedostoa ei voitu tallentaa");
        textRow("the new book cannot take its place", "replace fails",
            "Muunnettua kirjanpitoa ei voitu tallentaa");
    }

    void badFileIsRefused()
    {
        QFETCH(QString, damage);
        QFETCH(QString, message);
        TestEnv env;
        const QString file = copyFixture(env, Current);
        QByteArray bytes = TestEnv::readFile(file);
        JetConversion conversion;
        if (damage == u"cut") {
            bytes.truncate(150000);
        } else if (damage == u"garbled") {
            const auto vi = JetFixtures::dataPageWithRows(bytes, 26);
            QVERIFY(vi);
            bytes = JetFixtures::garbled(bytes, vi->first);
        } else if (damage == u"foreign") {
            // Without the accounts' table what is left is not an association's books.
            QVERIFY(renameTable(bytes, QStringLiteral("tl"), QStringLiteral("xy")));
        } else if (damage.endsWith(u".mdb")) {
            if (!JetFixtures::present(damage))
                QSKIP(
                    qPrintable(QStringLiteral("The sample file %1 is not beside the project.").arg(damage)));
            bytes = TestEnv::readFile(JetFixtures::path(damage));
        } else if (damage == u"password") {
            bytes = JetFixtures::withPassword(bytes, "seura");
        } else if (damage == u"full") {
            conversion.freeSpace = [](const QString&) { return qint64(200000); };
        } else if (damage == u"copy fails") {
            FileOps::instance().copy = [](const QString&, const QString&) { return false; };
        } else if (damage == u"replace fails") {
            FileOps::instance().replace = [](const QString&, const QString&) { return false; };
        } else if (damage == u"sqlite") {
            QVERIFY(TestEnv::createDatabase(env.path(QStringLiteral("uusi.mdb"))));
            bytes = TestEnv::readFile(env.path(QStringLiteral("uusi.mdb")));
            QFile::remove(env.path(QStringLiteral("uusi.mdb")));
        }
        QVERIFY(TestEnv::writeFile(file, bytes));
        const QString folder = env.path(QString());
        if (damage == u"read-only folder")
            QVERIFY(QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner));
        const QStringList listing = folderListing(env);

        const JetConversion::Result r = conversion.convert(file);
        QFile::setPermissions(
            folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        QVERIFY(!r.ok);
        QVERIFY2(r.message.contains(message), qPrintable(r.message));
        QCOMPARE(TestEnv::readFile(file), bytes);
        QCOMPARE(folderListing(env), listing);
    }

    void vorkamReportConverts()
    {
        TestEnv env;
        const QString file = copyFixture(env, Old);
        QProcess p;
        p.start(QStringLiteral(VORKAM_BIN_DIR "/vorkam_report"), { file, QStringLiteral("muunna") });
        QVERIFY(p.waitForFinished(120000));
        QVERIFY2(p.exitCode() == 0, qPrintable(QString::fromUtf8(p.readAllStandardError())));
        // The report is printed.
        QVERIFY(QString::fromUtf8(p.readAllStandardOutput()).contains(QStringLiteral("  vi: 26 / 26")));
        QVERIFY(QFile::exists(env.path(QStringLiteral("seura-jet.mdb"))));

        // The converted book is no longer an old one: refused.
        p.start(QStringLiteral(VORKAM_BIN_DIR "/vorkam_report"), { file, QStringLiteral("muunna") });
        QVERIFY(p.waitForFinished(120000));
        QCOMPARE(p.exitCode(), 3);
        QVERIFY(!QString::fromUtf8(p.readAllStandardError()).trimmed().isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_JetConversion)
#include "tst_JetConversion.moc"
