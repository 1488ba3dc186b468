#include "JetFixtures.h"
#include "TestEnv.h"
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
QString copyFixture(const TestEnv& env, const QString& fixture)
{
    const QString file = env.path(QStringLiteral("seura.mdb"));
    if (!QFile::copy(JetFixtures::path(fixture), file))
        return {};
    QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    return file;
}

QString scalar(const QString& file, const QString& sql)
{
    QString value = QStringLiteral("<virhe tai ei riviä>");
    withDatabase(file, [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        if (q.exec(sql) && q.next())
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

    void endsAtTheCurrentLayout_data()
    {
        QTest::addColumn<QString>("fixture");
        QTest::addColumn<qint64>("previousCents"); // on each side
        QTest::addColumn<int>("tables");
        QTest::addColumn<QString>("templateRows"); // side, money and account of a voucher template
        QTest::newRow("oldest layout") << Old << qint64(0) << 9 << "NULL";
        // The stored queries are Vorkam's own and made anew.
        QTest::newRow("current layout") << Current << qint64(9990) << 15 << "D255000@1,K255000@5";
    }

    // Every table read is written whole with its values, the sums by side agree before and after,
    // the book ends in Vorkam's current layout, and the old file is kept beside it.
    void endsAtTheCurrentLayout()
    {
        QFETCH(QString, fixture);
        QFETCH(qint64, previousCents);
        QFETCH(int, tables);
        QFETCH(QString, templateRows);
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
        QCOMPARE(folderListing(env),
            (QStringList { QStringLiteral("seura-jet.mdb"), QStringLiteral("seura-muunnos.txt"),
                QStringLiteral("seura.mdb") }));
        const Money entries = Money::fromCents(310400);
        const Money previous = Money::fromCents(previousCents);
        QCOMPARE(r.entriesBefore, (JetConversion::Sums { entries, entries, Money() }));
        QCOMPARE(r.entriesAfter, r.entriesBefore);
        QCOMPARE(r.previousBefore, (JetConversion::Sums { previous, previous, Money() }));
        QCOMPARE(r.previousAfter, r.previousBefore);
        QCOMPARE(r.tables.size(), tables);
        for (const JetConversion::TableCount& t : r.tables)
            QCOMPARE(t.written, t.read);

        const QString fresh = env.path(QStringLiteral("uusi.mdb"));
        QVERIFY(TestEnv::createDatabase(fresh));
        // The template rows' account and side are part of Vorkam's layout: nothing is extra.
        QCOMPARE(layoutOf(file), layoutOf(fresh));
        QCOMPARE(r.extraFields, QStringList());
        withDatabase(file, [](QSqlDatabase& db) {
            QVERIFY(Schema::queryPresent(db, QStringLiteral("viennitA")));
            // An opening finds nothing to upgrade.
            QVERIFY(Schema::UpdateDatabase(db).appliedSteps.isEmpty());
        });

        // Ids, numbers, texts, dates, yes/no fields, money and the next automatic number.
        const QList<std::pair<const char*, QString>> values {
            { "SELECT group_concat(tlID || ':' || tlNumero, ',') FROM (SELECT * FROM tl ORDER BY tlID)",
                QStringLiteral("1:1910,2:1900,3:2250,4:2260,5:3000,6:4000,7:4920,8:9990") },
            { "SELECT tlNimi FROM tl WHERE tlNumero = 2250",
                QStringLiteral("Edellisten tilikausien ylijäämä") },
            { "SELECT toID || ' ' || toPvm || ' ' || toAvaustosite FROM \"to\" WHERE toNumero = 0",
                QStringLiteral("1 2011-01-01 1") },
            { "SELECT SUM(toAvaustosite) || ' ' || MAX(toPvm) FROM \"to\"", QStringLiteral("1 2011-12-15") },
            { "SELECT tlNumero || ' ' || viArvo || ' ' || viAvausvienti FROM vi JOIN tl ON vitlID = tlID "
              "WHERE vitoID = 1 AND viTyyppi = 'D'",
                QStringLiteral("1910 15000000 1") },
            { "SELECT seq FROM sqlite_sequence WHERE name = 'tl'", QStringLiteral("8") },
            { "SELECT group_concat(vipTyyppi || vipArvo || '@' || viptlID) FROM vipPohjat WHERE viptpID = 1",
                templateRows },
        };
        for (const auto& [sql, expected] : values)
            QCOMPARE(scalar(file, QString::fromUtf8(sql)), expected);
    }

    // vorkam_report converts from the command line; a second old file converted under the same
    // name keeps the first original. A table Vorkam does not know is reported, not copied.
    void secondConversionKeepsTheFirstOriginal()
    {
        TestEnv env;
        const QString file = copyFixture(env, Old);
        QProcess p;
        p.start(QStringLiteral(VORKAM_BIN_DIR "/vorkam_report"), { file, QStringLiteral("muunna") });
        QVERIFY(p.waitForFinished(120000));
        QVERIFY2(p.exitCode() == 0, qPrintable(QString::fromUtf8(p.readAllStandardError())));

        // The empty work table tk renamed: a table Vorkam does not know.
        QByteArray bytes = TestEnv::readFile(JetFixtures::path(Current));
        QVERIFY(renameTable(bytes, QStringLiteral("tk"), QStringLiteral("zz")));
        QVERIFY(TestEnv::writeFile(file, bytes));
        const JetConversion::Result second = JetConversion().convert(file);
        QVERIFY2(second.ok, qPrintable(second.message));
        QCOMPARE(second.original, env.path(QStringLiteral("seura-jet-2.mdb")));
        QCOMPARE(TestEnv::readFile(env.path(QStringLiteral("seura-jet.mdb"))),
            TestEnv::readFile(JetFixtures::path(Old)));
        QCOMPARE(TestEnv::readFile(second.original), bytes);
        QCOMPARE(second.skippedTables, QStringList { QStringLiteral("zz") });
        const QMap<QString, QStringList> layout = layoutOf(file);
        QVERIFY(!layout.contains(QStringLiteral("zz")));
        // The upgrade makes Vorkam's own tk as for any book without one.
        QVERIFY(layout.contains(QStringLiteral("tk")));
    }

    void badFileIsRefused_data()
    {
        QTest::addColumn<QString>("damage");
        QTest::addColumn<QString>("message");
        textRow("the entries' page garbled", "garbled", "vioittunut");
        textRow("another program's database", "foreign", "ei ole yhdistyksen kirjanpito");
        textRow("no room on the disk", "full", "tarpeeksi tilaa");
        textRow("read-only folder", "read-only folder", "ei voi kirjoittaa");
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
        // What the reader refuses is refused here too (the reader's test has each kind).
        if (damage == u"garbled") {
            const auto vi = JetFixtures::dataPageWithRows(bytes, 26);
            QVERIFY(vi);
            bytes = JetFixtures::garbled(bytes, vi->first);
        } else if (damage == u"foreign") {
            // Without the accounts' table what is left is not an association's books.
            QVERIFY(renameTable(bytes, QStringLiteral("tl"), QStringLiteral("xy")));
        } else if (damage == u"full") {
            conversion.freeSpace = [](const QString&) { return qint64(200000); };
        } else if (damage == u"copy fails") {
            FileOps::instance().copy = [](const QString&, const QString&) { return false; };
        } else if (damage == u"replace fails") {
            FileOps::instance().replace = [](const QString&, const QString&) { return false; };
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
};

QTEST_GUILESS_MAIN(tst_JetConversion)
#include "tst_JetConversion.moc"
