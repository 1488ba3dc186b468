#include "JetFixtures.h"
#include "TestEnv.h"
#include "core/JetReader.h"
#include "core/Schema.h"

#include <QProcess>
#include <QTest>

#include <cmath>
#include <limits>

namespace {

QString rowsOf(const JetTable& table)
{
    QStringList lines;
    for (const QVariantList& row : table.rows) {
        QStringList values;
        for (const QVariant& v : row)
            values << (v.isNull() ? QStringLiteral("NULL") : v.toString());
        lines << values.join(u'|');
    }
    return lines.join(u'\n');
}

// Everything the reader took out, for comparing two readings.
QString dump(const JetBooks& books)
{
    QStringList parts { books.unknownTables.join(u',') };
    for (const JetTable& t : books.tables)
        parts << t.name + u'\n' + rowsOf(t);
    return parts.join(QStringLiteral("\n--\n"));
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
    const QString format = QStringLiteral("%Y-%m-%d %H:%M:%S");
    QStringList lines = QString::fromUtf8(
        run(QStringLiteral("mdb-export"),
            { QStringLiteral("-Q"), QStringLiteral("-d"), QStringLiteral("\x1f"), QStringLiteral("-R"),
                QStringLiteral("\x1e"), QStringLiteral("-0"), ExportedNull, QStringLiteral("-b"),
                QStringLiteral("hex"), QStringLiteral("-D"), format, QStringLiteral("-T"), format, file,
                table }))
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
    case JetColumn::Kind::Money: { // Currency with four decimals
        const qint64 raw = value.toLongLong();
        const quint64 abs = raw < 0 ? 0 - quint64(raw) : quint64(raw);
        return field == QString::asprintf("%s%llu.%04llu", raw < 0 ? "-" : "", abs / 10000, abs % 10000);
    }
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

// A value for a message: its start and its length.
QString shown(const QVariant& v)
{
    const QString text = v.typeId() == QMetaType::QByteArray
        ? QString::fromLatin1(v.toByteArray().toHex().toUpper())
        : v.toString();
    return v.isNull() ? QStringLiteral("NULL")
                      : QStringLiteral("%1… (%2)").arg(text.left(40)).arg(text.size());
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
    void jet4Text_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QByteArray() << true << QString();
        QTest::newRow("compressed, Latin-1 letters") << QByteArray("\xff\xfeJ\xe4sen", 7) << true << "Jäsen";
        QTest::newRow("compressed, then two-byte characters") << QByteArray("\xff\xfe"
                                                                            "10 \x00\xac\x20",
            8) << true << "10 €";
        QTest::newRow("back to compressed") << QByteArray("\xff\xfe\x00\xac\x20\x00!", 7) << true << "€!";
        QTest::newRow("two-byte text") << QByteArray("O\0'\0B\0r\0i\0e\0n\0", 14) << true << "O'Brien";
        QTest::newRow("odd two-byte text") << QByteArray("O\0'", 3) << false << QString();
        QTest::newRow("cut inside a two-byte character")
            << QByteArray("\xff\xfe\x00\xac", 4) << false << QString();
    }

    void jet4Text()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, ok);
        QFETCH(QString, text);
        QString decoded;
        QCOMPARE(JetValues::jet4Text(bytes, &decoded), ok);
        if (ok)
            QCOMPARE(decoded, text);
    }

    void codePageText_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("codePage");
        QTest::addColumn<QString>("text");
        QTest::newRow("Western") << QByteArray("J\xe4senmaksu 5\x80") << 1252 << "Jäsenmaksu 5€";
        QTest::newRow("none named: Western") << QByteArray("\xd6ljy") << 0 << "Öljy";
        QTest::newRow("DOS Nordic") << QByteArray("\x84") << 865 << "ä";
    }

    void codePageText()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(int, codePage);
        QFETCH(QString, text);
        QCOMPARE(JetValues::codePageText(bytes, codePage), text);
    }

    void date_data()
    {
        QTest::addColumn<double>("days");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QDate>("date");
        QTest::addColumn<bool>("hasTime");
        QTest::newRow("day zero") << 0.0 << true << QDate(1899, 12, 30) << false;
        QTest::newRow("noon") << 40544.5 << true << QDate(2011, 1, 1) << true;
        QTest::newRow("a hair before midnight") << 40544.9999999999 << true << QDate(2011, 1, 2) << false;
        QTest::newRow("six in the evening before day zero") << -1.75 << true << QDate(1899, 12, 29) << true;
        QTest::newRow("beyond 9999") << 3e6 << false << QDate() << false;
        QTest::newRow("not a number")
            << std::numeric_limits<double>::quiet_NaN() << false << QDate() << false;
    }

    void date()
    {
        QFETCH(double, days);
        QFETCH(bool, ok);
        QFETCH(QDate, date);
        QFETCH(bool, hasTime);
        QDate d;
        bool time = false;
        QCOMPARE(JetValues::date(days, &d, &time), ok);
        if (ok) {
            QCOMPARE(d, date);
            QCOMPARE(time, hasTime);
        }
    }

    void currencyBytes_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<qint64>("raw");
        QTest::newRow("-25,50") << QByteArray("\xe8\x1b\xfc\xff\xff\xff\xff\xff", 8) << qint64(-255000);
        QTest::newRow("beyond double precision")
            << QByteArray("\x01\x00\x00\x00\x00\x00\x20\x00", 8) << qint64(9007199254740993);
    }

    void currencyBytes()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(qint64, raw);
        QCOMPARE(JetValues::int64(reinterpret_cast<const unsigned char*>(bytes.constData())), raw);
    }

    void header()
    {
        if (!JetFixtures::present())
            QSKIP("The old-format sample files are not beside the project.");
        // The password is the conversion's test; the version and page size every reading's.
        const QByteArray first
            = TestEnv::readFile(JetFixtures::path(QStringLiteral("seura-jet4.mdb"))).left(4096);
        JetReader::Header h;
        QCOMPARE(JetReader::readHeader(first, &h), JetReader::Problem::None);
        QCOMPARE(h.codePage, 1252);
        QByteArray ace = first;
        ace[0x14] = 2;
        QCOMPARE(JetReader::readHeader(ace, &h), JetReader::Problem::Unsupported);
        QCOMPARE(JetReader::readHeader(QByteArray("SQLite format 3").leftJustified(4096, '\0'), &h),
            JetReader::Problem::NotJet);
    }

    void readsTheTablesAskedFor()
    {
        if (!JetFixtures::present())
            QSKIP("The old-format sample files are not beside the project.");
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
        if (!JetFixtures::present())
            QSKIP("The old-format sample files are not beside the project.");
        TestEnv env;
        const QByteArray clean = TestEnv::readFile(JetFixtures::path(QStringLiteral("seura-jet4.mdb")));
        const auto vi = JetFixtures::dataPageWithRows(clean, 26);
        QVERIFY2(vi, "The entries are no longer on one page of their own.");
        const qsizetype page = qsizetype(vi->first) * JetFixtures::PageSize;
        const qsizetype rowCount = qsizetype(vi->second) * JetFixtures::PageSize + 16;
        QCOMPARE(JetFixtures::u32(clean, rowCount), 26u);
        const JetReader::Result before = readCopy(env, clean);
        QVERIFY(before);
        const QList<QVariantList> rows = before.books.table(QStringLiteral("vi"))->rows;

        // Row 2 deleted: it is gone, the others are read as they were.
        QByteArray deleted = clean;
        const qsizetype offset2 = page + 0x0c + 2 + 2 * 2;
        qToLittleEndian<quint16>(JetFixtures::u16(clean, offset2) | 0x8000, deleted.data() + offset2);
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
        const qsizetype offset0 = page + 0x0c + 2;
        const qsizetype offset1 = offset0 + 2;
        const quint16 start0 = JetFixtures::u16(clean, offset0);
        qToLittleEndian<quint16>(start0 | 0x4000, moved.data() + offset0);
        qToLittleEndian<quint32>(quint32(vi->first) << 8 | 1, moved.data() + page + start0);
        qToLittleEndian<quint16>(JetFixtures::u16(clean, offset1) | 0x8000, moved.data() + offset1);
        qToLittleEndian<quint32>(25, moved.data() + rowCount);
        const JetReader::Result afterMove = readCopy(env, moved);
        QVERIFY2(afterMove, qPrintable(afterMove.detail));
        expected = rows;
        expected.removeAt(0);
        QCOMPARE(afterMove.books.table(QStringLiteral("vi"))->rows, expected);
    }

    // Whatever page is garbled, the reader either refuses the file or reads exactly what the
    // undamaged file holds; it never crashes and never makes up a row.
    void garbledPageNeverChangesWhatIsRead_data()
    {
        QTest::addColumn<QString>("fixture");
        QTest::newRow("oldest layout") << "vanha-seura-jet4.mdb";
        QTest::newRow("current layout") << "seura-jet4.mdb";
    }

    void garbledPageNeverChangesWhatIsRead()
    {
        QFETCH(QString, fixture);
        if (!JetFixtures::present())
            QSKIP("The old-format sample files are not beside the project.");
        TestEnv env;
        const QByteArray clean = TestEnv::readFile(JetFixtures::path(fixture));
        const JetReader::Result whole = readCopy(env, clean);
        QVERIFY(whole);
        const QString expected = dump(whole.books);
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

    // Every user table, row and value of real files of other programs, as mdbtools' own export
    // shows them.
    void readsLikeMdbExport_data()
    {
        QTest::addColumn<QString>("fixture");
        QTest::addColumn<QStringList>("beyondExport"); // the dates mdb-export cannot print
        QTest::newRow("Jet 3: memo, OLE, currency, code page") << "northwind-jet3.mdb" << QStringList();
        QTest::newRow("Jet 4: dates across the centuries")
            << "dates-jet4.mdb"
            << QStringList { "9999-01-01", "9999-01-01", "9999-01-01", "1898-01-01", "1899-01-01",
                   "0632-01-01", "0633-01-01", "0634-01-01" };
    }

    void readsLikeMdbExport()
    {
        QFETCH(QString, fixture);
        QFETCH(QStringList, beyondExport);
        if (!JetFixtures::present(fixture))
            QSKIP(qPrintable(QStringLiteral("The sample file %1 is not beside the project.").arg(fixture)));
        const QString file = JetFixtures::path(fixture);
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
        names.sort();
        readNames.sort();
        QCOMPARE(readNames, names);

        QStringList differences, beyond;
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
                for (qsizetype c = 0; c < t.columns.size(); ++c) {
                    const JetColumn& column = t.columns.at(c);
                    const QVariant& value = t.rows.at(r).at(c);
                    // mdb-export zeroes the days before 30.12.1899 and past day 1 000 000.
                    if (column.kind == JetColumn::Kind::Date && fields.at(c) == u"1900-01-00 00:00:00")
                        beyond << value.toString();
                    else if (!exportShows(column.kind, value, fields.at(c)))
                        differences << QStringLiteral("%1 row %2 %3: read %4, exported %5")
                                           .arg(t.name)
                                           .arg(r)
                                           .arg(column.name, shown(value), shown(fields.at(c)));
                }
            }
        }
        QVERIFY2(differences.isEmpty(), qPrintable(differences.mid(0, 10).join(u'\n')));
        QCOMPARE(beyond, beyondExport);
    }

    void cutShortIsTruncated_data()
    {
        QTest::addColumn<int>("bytes");
        // Inside a page: the conversion's test.
        QTest::newRow("on a page boundary") << 40 * 4096;
        QTest::newRow("header only") << 4096;
    }

    void cutShortIsTruncated()
    {
        QFETCH(int, bytes);
        if (!JetFixtures::present())
            QSKIP("The old-format sample files are not beside the project.");
        TestEnv env;
        const QByteArray clean = TestEnv::readFile(JetFixtures::path(QStringLiteral("seura-jet4.mdb")));
        const JetReader::Result r = readCopy(env, clean.left(bytes));
        QCOMPARE(r.problem, JetReader::Problem::Truncated);
    }
};

QTEST_GUILESS_MAIN(tst_JetReader)
#include "tst_JetReader.moc"
