// Builds a model or demo database from SQL text: the core tables, the upgrade to the current
// layout, then the given SQL files in one transaction. "@VUOSI@" and "@EDVUOSI@" in the text
// become the current and the previous calendar year.
//
//   vorkam_mkdb OUTPUT.mdb FILE.sql [FILE.sql ...]

#include "core/DatabaseError.h"
#include "core/Schema.h"
#include "core/Transaction.h"

#include <QCoreApplication>
#include <QDate>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTextStream>

#include <cstdio>

namespace {

int fail(const QString& message)
{
    QTextStream(stderr) << "vorkam_mkdb: " << message << '\n';
    return 1;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    if (args.size() < 2)
        return fail(QStringLiteral("usage: vorkam_mkdb OUTPUT.mdb FILE.sql [FILE.sql ...]"));

    const QString output = args.first();
    const QString temp = output + QStringLiteral(".tmp");
    QFile::remove(temp);
    const int year = QDate::currentDate().year();
    int rc = 0;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("mkdb"));
        db.setDatabaseName(temp);
        if (!db.open())
            return fail(db.lastError().text());
        try {
            Schema::createCoreTables(db);
        } catch (const DatabaseError& e) {
            return fail(e.text());
        }
        const Schema::UpgradeResult upgrade = Schema::UpdateDatabase(db);
        if (!upgrade.ok)
            return fail(upgrade.error);

        Transaction tx(db);
        for (const QString& file : args.mid(1)) {
            QFile in(file);
            if (!in.open(QIODevice::ReadOnly))
                return fail(QStringLiteral("cannot read %1").arg(file));
            QString text = QString::fromUtf8(in.readAll());
            text.replace(QLatin1String("@EDVUOSI@"), QString::number(year - 1));
            text.replace(QLatin1String("@VUOSI@"), QString::number(year));
            try {
                Sql::runScript(db, text);
            } catch (const DatabaseError& e) {
                return fail(file + QStringLiteral(": ") + e.text());
            }
        }
        if (!tx.commit())
            return fail(db.lastError().text());
        QSqlQuery(db).exec(QStringLiteral("VACUUM"));
        db.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("mkdb"));
    if (std::rename(QFile::encodeName(temp).constData(), QFile::encodeName(output).constData()) != 0)
        rc = fail(QStringLiteral("cannot write %1").arg(output));
    return rc;
}
