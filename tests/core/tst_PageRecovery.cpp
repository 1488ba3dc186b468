#include "TestEnv.h"
#include "core/PageRecovery.h"

#include <QRandomGenerator>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTest>

namespace {

using Rows = QMap<qint64, QString>; // key → the row's values joined

// Every row of the three tables that carry the books, by table and key.
QMap<QString, Rows> dump(const QString& file)
{
    QMap<QString, Rows> tables;
    withDatabase(file, [&](QSqlDatabase& db) {
        for (const QString& table : { QStringLiteral("tl"), QStringLiteral("to"), QStringLiteral("vi") }) {
            QSqlQuery q(db);
            if (!q.exec(QStringLiteral("SELECT * FROM \"%1\"").arg(table)))
                continue;
            while (q.next()) {
                QStringList values;
                for (int i = 0; i < q.record().count(); ++i)
                    values.append(q.value(i).toString());
                tables[table].insert(q.value(0).toLongLong(), values.join(u'|'));
            }
        }
    });
    return tables;
}

} // namespace

// Rows read straight from the pages of a damaged file: never a row that was not in the books,
// never a deleted row back, never a crash, whatever the damage.
class tst_PageRecovery : public QObject {
    Q_OBJECT

private slots:
    void damageNeverInventsRows_data()
    {
        QTest::addColumn<QString>("damage");
        QTest::addColumn<int>("seed");
        QTest::newRow("none: every row") << "none" << 0;
        for (int seed = 1; seed <= 6; ++seed) {
            QTest::addRow("a garbled page, %d", seed) << "page" << seed;
            QTest::addRow("scattered bytes, %d", seed) << "bytes" << seed;
            QTest::addRow("cut short, %d", seed) << "cut" << seed;
        }
        QTest::newRow("garbled header") << "header" << 0;
    }

    void damageNeverInventsRows()
    {
        QFETCH(QString, damage);
        QFETCH(int, seed);
        TestEnv env;
        const QString file = env.path(QStringLiteral("seura.mdb"));
        QVERIFY(TestEnv::createDatabase(file));
        // Deleted rows lie on free pages, or cleared on their page: they must stay deleted.
        QVERIFY(TestEnv::exec(file,
            { QStringLiteral("PRAGMA secure_delete = OFF"),
                QStringLiteral("DELETE FROM \"to\" WHERE toNumero BETWEEN 100 AND 250") }));
        const QMap<QString, Rows> original = dump(file);
        QByteArray bytes = TestEnv::readFile(file);
        QRandomGenerator random { quint32(seed) };
        const int pages = int(bytes.size() / 4096);
        if (damage == u"page") {
            const int page = random.bounded(2, pages + 1);
            for (int i = (page - 1) * 4096; i < page * 4096; ++i)
                bytes[i] = char(random.bounded(256));
        } else if (damage == u"bytes") {
            for (int i = 0; i < 40; ++i)
                bytes[random.bounded(100, int(bytes.size()))] = char(random.bounded(256));
        } else if (damage == u"cut") {
            bytes.truncate(random.bounded(1, int(bytes.size())));
        } else if (damage == u"header") {
            for (int i = 16; i < 100; ++i)
                bytes[i] = char(0xFF);
        }

        const PageRecovery::Result read = PageRecovery::read(bytes);
        const QString target = env.path(QStringLiteral("korjattu.mdb"));
        QString error;
        QVERIFY2(PageRecovery::write(read, target, QStringLiteral("loydetyt"), &error), qPrintable(error));
        const QMap<QString, Rows> recovered = dump(target);
        // A byte changed inside a value cannot be seen (the file keeps no checksums): there only
        // the keys are checked.
        for (auto table = recovered.cbegin(); table != recovered.cend(); ++table)
            for (auto row = table->cbegin(); row != table->cend(); ++row)
                QVERIFY2(damage == u"bytes" ? original[table.key()].contains(row.key())
                                            : original[table.key()].value(row.key()) == row.value(),
                    qPrintable(table.key() + QStringLiteral(" ") + row.value()));
        if (damage == u"none" || damage == u"header")
            QCOMPARE(recovered, original);
    }

    // Schema text read from a damaged file is run only when it is one plain CREATE of the
    // table, index or view its row names: a trigger, or text that goes on after the statement,
    // is left out and named in the result.
    void onlyPlainCreatesAreRun()
    {
        TestEnv env;
        const QString file = env.path(QStringLiteral("seura.mdb"));
        QVERIFY(TestEnv::createDatabase(file));
        QVERIFY(TestEnv::exec(file,
            { QStringLiteral("CREATE VIEW tilit AS SELECT tlNumero FROM tl"),
                QStringLiteral("CREATE TRIGGER t AFTER INSERT ON tl BEGIN DELETE FROM vi; END"),
                QStringLiteral("CREATE INDEX i ON tl(tlNimi)"), QStringLiteral("PRAGMA writable_schema = ON"),
                QStringLiteral(
                    "UPDATE sqlite_master SET sql = sql || '; DROP TABLE vi' WHERE name = 'i'") }));
        const PageRecovery::Result read = PageRecovery::read(TestEnv::readFile(file));
        QCOMPARE(read.skipped, (QStringList { QStringLiteral("trigger t"), QStringLiteral("index i") }));
        const QString target = env.path(QStringLiteral("korjattu.mdb"));
        QString error;
        QVERIFY2(PageRecovery::write(read, target, QStringLiteral("loydetyt"), &error), qPrintable(error));
        QStringList made;
        withDatabase(target, [&](QSqlDatabase& db) {
            QSqlQuery q(db);
            QVERIFY(q.exec(QStringLiteral(
                "SELECT type || ' ' || name FROM sqlite_master WHERE name IN ('t', 'i', 'tilit', 'vi')")));
            while (q.next())
                made << q.value(0).toString();
        });
        made.sort();
        QCOMPARE(made, (QStringList { QStringLiteral("table vi"), QStringLiteral("view tilit") }));
        QCOMPARE(dump(target).value(QStringLiteral("vi")), dump(file).value(QStringLiteral("vi")));
    }
};

QTEST_GUILESS_MAIN(tst_PageRecovery)
#include "tst_PageRecovery.moc"
