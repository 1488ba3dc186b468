#include "TestEnv.h"
#include "core/PageRecovery.h"

#include <QRandomGenerator>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTest>

namespace {

using Rows = QMap<QString, QString>; // "table key" → the row's values joined

// Every row of the three tables that carry the books, and every index, view and trigger.
Rows dump(const QString& file)
{
    Rows rows;
    withDatabase(file, [&](QSqlDatabase& db) {
        for (const char* table : { "tl", "to", "vi" }) {
            QSqlQuery q(QStringLiteral("SELECT * FROM \"%1\"").arg(QLatin1String(table)), db);
            while (q.next()) {
                QStringList values;
                for (int i = 0; i < q.record().count(); ++i)
                    values.append(q.value(i).toString());
                rows.insert(QLatin1String(table) + u' ' + q.value(0).toString(), values.join(u'|'));
            }
        }
        QSqlQuery schema(
            QStringLiteral("SELECT type || ' ' || name FROM sqlite_master WHERE type <> 'table'"), db);
        while (schema.next())
            rows.insert(schema.value(0).toString(), QString());
    });
    return rows;
}

} // namespace

// Rows read straight from the pages of a damaged file: never a row that was not in the books,
// never a deleted row back, never a crash, whatever the damage.
class tst_PageRecovery : public QObject {
    Q_OBJECT

    TestEnv env; // the books every row damages a copy of, and the files recovered
    QByteArray books;
    Rows original;

private slots:
    void initTestCase()
    {
        const QString file = env.path(QStringLiteral("seura.mdb"));
        QVERIFY(TestEnv::createDatabase(file));
        // A view of the user's own; deleted rows lie on free pages, or cleared on their page: they
        // must stay deleted.
        QVERIFY(TestEnv::exec(file,
            { QStringLiteral("CREATE VIEW tilit AS SELECT tlNumero FROM tl"),
                QStringLiteral("PRAGMA secure_delete = OFF"),
                QStringLiteral("DELETE FROM \"to\" WHERE toNumero BETWEEN 100 AND 250") }));
        books = TestEnv::readFile(file);
        original = dump(file);
    }

    void damageNeverInventsRows_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("whole"); // every row comes back
        QTest::addColumn<QStringList>("skipped");
        QTest::newRow("none") << books << true << QStringList();
        // Schema text is run only when it is one plain CREATE of the table, index or view its row
        // names: a trigger, or text that goes on after the statement, is left out and named.
        const QString file = env.path(QStringLiteral("skeema.mdb"));
        QVERIFY(TestEnv::writeFile(file, books));
        QVERIFY(TestEnv::exec(file,
            { QStringLiteral("CREATE TRIGGER t AFTER INSERT ON tl BEGIN DELETE FROM vi; END"),
                QStringLiteral("CREATE INDEX i ON tl(tlNimi)"), QStringLiteral("PRAGMA writable_schema = ON"),
                QStringLiteral(
                    "UPDATE sqlite_master SET sql = sql || '; DROP TABLE vi' WHERE name = 'i'") }));
        QTest::newRow("trigger and a statement after a CREATE") << TestEnv::readFile(
            file) << true << QStringList { QStringLiteral("trigger t"), QStringLiteral("index i") };
        QRandomGenerator random { 1 };
        QByteArray page = books;
        const int start = random.bounded(1, int(books.size() / 4096)) * 4096;
        for (int i = start; i < start + 4096; ++i)
            page[i] = char(random.bounded(256));
        QTest::newRow("a garbled page") << page << false << QStringList();
        QTest::newRow("cut short") << books.left(random.bounded(1, int(books.size()))) << false
                                   << QStringList();
    }

    void damageNeverInventsRows()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, whole);
        QFETCH(QStringList, skipped);
        const PageRecovery::Result read = PageRecovery::read(bytes);
        QCOMPARE(read.skipped, skipped);
        const QString target
            = env.path(QString::fromLatin1(QTest::currentDataTag()) + QStringLiteral(".mdb"));
        QString error;
        QVERIFY2(PageRecovery::write(read, target, QStringLiteral("loydetyt"), &error), qPrintable(error));
        const Rows recovered = dump(target);
        for (auto row = recovered.cbegin(); row != recovered.cend(); ++row)
            QVERIFY2(original.value(row.key()) == row.value(), qPrintable(row.key() + u' ' + row.value()));
        if (whole)
            QCOMPARE(recovered, original);
    }
};

QTEST_GUILESS_MAIN(tst_PageRecovery)
#include "tst_PageRecovery.moc"
