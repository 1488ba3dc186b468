#include "JetFixtures.h"
#include "TestEnv.h"
#include "core/JetReader.h"
#include "core/Schema.h"

#include <QProcess>
#include <QTest>

#include <limits>

namespace {

// Everything the reader took out, for comparing two readings.
QByteArray dump(const JetBooks& books)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << books;
    return bytes;
}

// What a command-line tool printed; empty when it failed.
QByteArray run(const QString& program, const QStringList& arguments)
{
    QProcess tool;
    tool.start(program, arguments, QIODevice::ReadOnly);
    if (!tool.waitForFinished(120000) || tool.exitStatus() != QProcess::NormalExit || tool.exitCode() != 0)
        return {};
    return tool.readAllStandardOutput();
}

const QString ExportedNull = QStringLiteral("\x1d");

// mdb-export's rows of `table`, the first the field names. Control characters separate the
// fields and rows and stand for NULL, so that no value needs quotes.
QList<QStringList> exportedRows(const QString& file, const QString& table)
{
    const QStringList options = QStringLiteral("-Q|-d|\x1f|-R|\x1e|-0|%1|-b|hex|-D|%2|-T|%2")
                                    .arg(ExportedNull, QStringLiteral("%Y-%m-%d %H:%M:%S"))
                                    .split(u'|');
    QStringList lines
        = QString::fromUtf8(run(QStringLiteral("mdb-export"), options + QStringList { file, table }))
              .split(u'\x1e');
    lines.removeLast(); // after the last row's end
    QList<QStringList> rows;
    for (const QString& line : lines)
        rows << line.split(u'\x1f');
    return rows;
}

// Whether mdb-export's field shows the reader's value; each rule is one of presentation only.
bool exportShows(JetColumn::Kind kind, const QVariant& value, const QString& field)
{
    if (value.isNull() || field == ExportedNull)
        return value.isNull() && field == ExportedNull;
    switch (kind) {
    case JetColumn::Kind::Money: // Currency with four decimals; exact in a double at the sample's sizes
        return field == QString::number(value.toLongLong() / 10000.0, 'f', 4);
    case JetColumn::Kind::Real: // a Single to 8 significant digits, a Double to 16
        return field == QString::asprintf("%.8g", value.toDouble())
            || field == QString::asprintf("%.16g", value.toDouble());
    case JetColumn::Kind::Date: // as %Y-%m-%d %H:%M:%S
        return field == value.toString() + QStringLiteral(" 00:00:00");
    case JetColumn::Kind::Binary: // OLE and binary as hex digits
        return field == QString::fromLatin1(value.toByteArray().toHex().toUpper());
    default:
        return field == value.toString();
    }
}

JetReader::Result readCopy(const TestEnv& env, const QByteArray& bytes)
{
    const QString file = env.path(QStringLiteral("kopio.mdb"));
    TestEnv::writeFile(file, bytes);
    return JetReader::read(file, Schema::tableNames());
}

} // namespace

// Values decoded from the old file's bytes, and a reader that never takes a damaged or
// deleted row for one of the books.
class tst_JetReader : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        if (!JetFixtures::present() || !JetFixtures::present(QStringLiteral("northwind-jet3.mdb")))
            QSKIP("The old-format sample files are not beside the project.");
    }

    void jet4Text_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text"); // null: no text
        QTest::newRow("compressed, switching to two-byte characters and back")
            << QByteArray("\xff\xfeJ\xe4sen \x00\xac\x20\x00!", 13) << "Jäsen €!";
        QTest::newRow("two-byte text") << QByteArray("O\0'\0B\0r\0i\0e\0n\0", 14) << "O'Brien";
        QTest::newRow("cut inside a two-byte character") << QByteArray("\xff\xfe\x00\xac", 4) << QString();
    }

    void jet4Text()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, text);
        QString decoded;
        QCOMPARE(JetValues::jet4Text(bytes, &decoded), !text.isNull());
        if (!text.isNull())
            QCOMPARE(decoded, text);
    }

    void codePageText()
    {
        // A file that names no code page is in the Western one.
        QCOMPARE(JetValues::codePageText("J\xe4senmaksu 5\x80", 0), QStringLiteral("Jäsenmaksu 5€"));
        QCOMPARE(JetValues::codePageText("\x84", 865), QStringLiteral("ä"));
    }

    void date_data()
    {
        QTest::addColumn<double>("days");
        QTest::addColumn<QDate>("date"); // invalid: no date
        QTest::addColumn<bool>("hasTime");
        QTest::newRow("noon") << 40544.5 << QDate(2011, 1, 1) << true;
        QTest::newRow("a hair before midnight") << 40544.9999999999 << QDate(2011, 1, 2) << false;
        QTest::newRow("six in the evening before day zero") << -1.75 << QDate(1899, 12, 29) << true;
        QTest::newRow("beyond 9999") << 3e6 << QDate() << false;
        QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << QDate() << false;
    }

    void date()
    {
        QFETCH(double, days);
        QFETCH(QDate, date);
        QFETCH(bool, hasTime);
        QDate d;
        bool time = false;
        QCOMPARE(JetValues::date(days, &d, &time), date.isValid());
        if (date.isValid()) {
            QCOMPARE(d, date);
            QCOMPARE(time, hasTime);
        }
    }

    // Currency: eight little-endian bytes in ten-thousandths, to the last one a double would lose.
    void currencyBytes()
    {
        const auto int64 = [](const char* bytes) {
            return JetValues::int64(reinterpret_cast<const unsigned char*>(bytes));
        };
        QCOMPARE(int64("\xe8\x1b\xfc\xff\xff\xff\xff\xff"), qint64(-255000));
        QCOMPARE(int64("\x01\x00\x00\x00\x00\x00\x20\x00"), qint64(9007199254740993));
    }

    // What the first page tells and what the file's size allows, before any row is read.
    void headerAndSize()
    {
        const QByteArray clean = TestEnv::readFile(JetFixtures::path(QStringLiteral("seura-jet4.mdb")));
        JetReader::Header h;
        QCOMPARE(JetReader::readHeader(clean.left(4096), &h), JetReader::Problem::None);
        QCOMPARE(h.codePage, 1252);
        QByteArray ace = clean.left(4096);
        ace[0x14] = 2;
        QCOMPARE(JetReader::readHeader(ace, &h), JetReader::Problem::Unsupported);
        QCOMPARE(JetReader::readHeader(QByteArray("SQLite format 3").leftJustified(4096, '\0'), &h),
            JetReader::Problem::NotJet);
        // Cut inside a page or on a page boundary, pages are missing; a bare header holds none.
        TestEnv env;
        for (const int bytes : { 150000, 40 * 4096, 4096 })
            QCOMPARE(readCopy(env, clean.left(bytes)).problem, JetReader::Problem::Truncated);
        QCOMPARE(
            readCopy(env, JetFixtures::withPassword(clean, "seura")).problem, JetReader::Problem::Password);
    }

    void readsTheTablesAskedFor()
    {
        // Only the tables asked for are read, matched whatever the case; the rest are named.
        const JetReader::Result some
            = JetReader::read(JetFixtures::path(QStringLiteral("seura-jet4.mdb")), { QStringLiteral("TL") });
        QVERIFY(some);
        QCOMPARE(some.books.tables.size(), 1);
        QCOMPARE(some.books.tables.first().name, QStringLiteral("TL"));
        QCOMPARE(some.books.unknownTables.size(), 14);
    }

    // The row offsets' deleted flag is the high bit; a row moved to another page leaves a
    // pointer behind. Both are patched into a copy as Jet writes them.
    void deletedAndMovedRows()
    {
        TestEnv env;
        const QByteArray clean = TestEnv::readFile(JetFixtures::path(QStringLiteral("seura-jet4.mdb")));
        const auto vi = JetFixtures::dataPageWithRows(clean, 26);
        QVERIFY2(vi, "The entries are no longer on one page of their own.");
        const qsizetype page = qsizetype(vi->first) * JetFixtures::PageSize;
        const qsizetype rowCount = qsizetype(vi->second) * JetFixtures::PageSize + 16;
        const JetReader::Result before = readCopy(env, clean);
        QVERIFY(before);
        const QList<QVariantList> rows = before.books.table(QStringLiteral("vi"))->rows;
        const auto flag = [&](QByteArray& bytes, int row, quint16 bit) {
            const qsizetype offset = page + 0x0c + 2 + 2 * row;
            qToLittleEndian<quint16>(JetFixtures::le<quint16>(clean, offset) | bit, bytes.data() + offset);
        };

        // Row 2 deleted: it is gone, the others are read as they were.
        QByteArray deleted = clean;
        flag(deleted, 2, 0x8000);
        qToLittleEndian<quint32>(25, deleted.data() + rowCount);
        const JetReader::Result afterDelete = readCopy(env, deleted);
        QVERIFY2(afterDelete, qPrintable(afterDelete.detail));
        QList<QVariantList> expected = rows;
        expected.removeAt(2);
        QCOMPARE(afterDelete.books.table(QStringLiteral("vi"))->rows, expected);
        // Without the row count lowered, a row is missing: refused.
        qToLittleEndian<quint32>(26, deleted.data() + rowCount);
        QCOMPARE(readCopy(env, deleted).problem, JetReader::Problem::Damaged);

        // Row 0 moved to the place of row 1, which Jet marks so that a scan passes it by.
        QByteArray moved = clean;
        flag(moved, 0, 0x4000);
        flag(moved, 1, 0x8000);
        const quint16 start0 = JetFixtures::le<quint16>(clean, page + 0x0c + 2);
        qToLittleEndian<quint32>(quint32(vi->first) << 8 | 1, moved.data() + page + start0);
        qToLittleEndian<quint32>(25, moved.data() + rowCount);
        const JetReader::Result afterMove = readCopy(env, moved);
        QVERIFY2(afterMove, qPrintable(afterMove.detail));
        expected = rows;
        expected.removeAt(0);
        QCOMPARE(afterMove.books.table(QStringLiteral("vi"))->rows, expected);
    }

    // Whatever page is garbled, the reader either refuses the file or reads exactly what the
    // undamaged file holds; it never crashes and never makes up a row.
    void garbledPageNeverChangesWhatIsRead()
    {
        TestEnv env;
        const QByteArray clean = TestEnv::readFile(JetFixtures::path(QStringLiteral("seura-jet4.mdb")));
        const JetReader::Result whole = readCopy(env, clean);
        QVERIFY(whole);
        const QByteArray expected = dump(whole.books);
        int refused = 0;
        for (int page = 0; page < JetFixtures::pageCount(clean); ++page) {
            const JetReader::Result r = readCopy(env, JetFixtures::garbled(clean, page));
            if (!r) {
                ++refused;
                QVERIFY(!r.detail.isEmpty());
                continue;
            }
            QVERIFY2(dump(r.books) == expected, qPrintable(QStringLiteral("page %1").arg(page)));
        }
        // The pages of the books themselves are among them.
        QVERIFY2(refused >= 12, qPrintable(QString::number(refused)));
    }

    // Every user table, row and value of a real Jet 3 file of another program (memo, OLE,
    // currency, code page texts), as mdbtools' own export shows them.
    void readsLikeMdbExport()
    {
        const QString file = JetFixtures::path(QStringLiteral("northwind-jet3.mdb"));
        const JetReader::Result read = JetReader::read(file, {});
        QVERIFY2(read, qPrintable(read.detail));
        QVERIFY(read.books.unknownTables.isEmpty());
        QStringList names
            = QString::fromUtf8(run(QStringLiteral("mdb-tables"), { QStringLiteral("-1"), file }))
                  .split(u'\n', Qt::SkipEmptyParts);
        QVERIFY2(!names.isEmpty(), "mdb-tables (mdbtools) did not run.");
        QStringList readNames;
        for (const JetTable& t : read.books.tables)
            readNames << t.name;
        QCOMPARE(readNames, names);

        for (const JetTable& t : read.books.tables) {
            const QList<QStringList> exported = exportedRows(file, t.name);
            QVERIFY2(!exported.isEmpty(), qPrintable(t.name));
            QStringList columns;
            for (const JetColumn& c : t.columns)
                columns << c.name;
            QCOMPARE(exported.first(), columns);
            QCOMPARE(t.rows.size(), exported.size() - 1);
            for (qsizetype r = 0; r < t.rows.size(); ++r) {
                const QStringList& fields = exported.at(r + 1);
                QCOMPARE(fields.size(), t.columns.size());
                for (qsizetype c = 0; c < t.columns.size(); ++c)
                    QVERIFY2(exportShows(t.columns.at(c).kind, t.rows.at(r).at(c), fields.at(c)),
                        qPrintable(QStringLiteral("%1 row %2: %3").arg(t.name).arg(r).arg(fields.at(c))));
            }
        }
    }
};

QTEST_GUILESS_MAIN(tst_JetReader)
#include "tst_JetReader.moc"
