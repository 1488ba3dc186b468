// Times the fiscal year change on a copy of the stress association (see README.md): the whole
// change with its safety copy, and each of its stages, beside a bare INSERT INTO viE SELECT …
// FROM vi of the same rows on another copy, with the stress association's own balance sheet. The
// file named on the command line is not changed.
#include "BenchSql.h"
#include "StressBooks.h"
#include "core/DBC.h"
#include "core/Paths.h"
#include "core/ProgramSettings.h"
#include "yearchange/FiscalYearChange.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QVariant>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <map>

namespace {

qint64 rowsIn(const QSqlDatabase& db, const QString& table)
{
    QSqlQuery q(db);
    return q.exec(QStringLiteral("SELECT COUNT(*) FROM %1").arg(table)) && q.next() ? q.value(0).toLongLong()
                                                                                    : -1;
}

// The bare copy of the entries into the history, after the same deletion the change makes.
double bareInsertMs(const QString& file)
{
    const QString name = QStringLiteral("yearchange_baseline");
    double ms = -1;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(file);
        if (db.open()) {
            benchSql(db, QStringLiteral("PRAGMA synchronous=FULL"));
            benchSql(db, QStringLiteral("BEGIN"));
            benchSql(db, QStringLiteral("DELETE FROM viE"));
            benchSql(db, QStringLiteral("DELETE FROM toE"));
            QElapsedTimer t;
            t.start();
            if (benchSql(db,
                    QStringLiteral("INSERT INTO viE (viEID, viEtlID, viEtoID, viETyyppi, viEArvo, viESelite, "
                                   "viEAvausvienti, "
                                   "viEPaatosvienti, viEAutomaatti) SELECT viID, vitlID, vitoID, viTyyppi, "
                                   "viArvo, viSelite, "
                                   "viAvausvienti, viPaatosvienti, viAutomaatti FROM vi")))
                ms = double(t.nsecsElapsed()) / 1e6;
            benchSql(db, QStringLiteral("ROLLBACK"));
            db.close();
        }
    }
    QSqlDatabase::removeDatabase(name);
    return ms;
}

void line(const char* name, double vorkam, double baseline, const char* target)
{
    if (baseline > 0)
        std::printf("%-44s %9.2f ms %9.2f ms %8.2fx   %s\n", name, vorkam, baseline,
            vorkam / std::max(baseline, 1e-3), target);
    else
        std::printf("%-44s %9.2f ms %12s %9s   %s\n", name, vorkam, "", "", target);
}

} // namespace

// Leaves the program's database closed.
int yearChangeBench(const QString& stressFile)
{
    DBC::instance().SuljeDB();
    QTemporaryDir dir;
    const QString copy = dir.filePath(QStringLiteral("stress-vaihto.mdb"));
    const QString baseCopy = dir.filePath(QStringLiteral("stress-perus.mdb"));
    if (!QFile::copy(stressFile, copy) || !QFile::copy(stressFile, baseCopy)) {
        std::fprintf(stderr, "the stress file could not be copied into %s\n", qPrintable(dir.path()));
        return 1;
    }
    const double bare = bareInsertMs(baseCopy);
    QFile::remove(baseCopy);

    const QString savedDatabase = ProgramSettings::installation().Database;
    const QString savedDataDir = Paths::dataDir();
    Paths::setDataDir(dir.path());
    ProgramSettings::installation().Database = copy;
    const QSqlDatabase db = DBC::instance().AvaaDB();
    int rc = 0;
    if (!db.isOpen()) {
        std::fprintf(stderr, "the copy of the stress file could not be opened\n");
        rc = 1;
    } else if (!StressBooks::present(db)) {
        rc = 1;
    } else {
        ProgramSettings::loadBookkeeping(db, copy);
        const qint32 malli = StressBooks::BalanceTemplate;
        const qint64 entries = rowsIn(db, QStringLiteral("vi"));
        const qint64 previous = rowsIn(db, QStringLiteral("viE"));

        // Each stage's time, from its start to its end, and the safety copy's before them.
        std::map<int, double> stages;
        QElapsedTimer total;
        QElapsedTimer stage;
        FiscalYearChange vaihto(db);
        vaihto.setEdistyminen([&](const QString& teksti, int valmiina) {
            for (int i = 1; i <= FiscalYearChange::Vaiheet; ++i) {
                if (teksti != FiscalYearChange::vaiheTeksti(i))
                    continue;
                if (valmiina == i - 1 && !stages.count(-i)) {
                    stages[-i] = 1;
                    stage.start();
                } else if (valmiina == i) {
                    stages[i] = double(stage.nsecsElapsed()) / 1e6;
                }
                return;
            }
            stages[0] = double(total.nsecsElapsed()) / 1e6; // the safety copy is written
        });
        total.start();
        const std::clock_t cpuStart = std::clock();
        const bool done = vaihto.suorita(malli, true);
        const double all = double(total.nsecsElapsed()) / 1e6;
        const double cpu = double(std::clock() - cpuStart) * 1000.0 / CLOCKS_PER_SEC;
        if (!done) {
            std::fprintf(stderr, "the year change failed\n");
            rc = 1;
        } else {
            std::printf(
                "\nfiscal year change on a copy of the file: %lld entries this year, %lld the previous "
                "year, %lld opening entries\n",
                static_cast<long long>(entries), static_cast<long long>(previous),
                static_cast<long long>(rowsIn(db, QStringLiteral("vi"))));
            std::printf("%-44s %12s %12s %9s   %s\n", "year change", "Vorkam", "baseline", "ratio", "target");
            line("whole change, safety copy included", all, 0, "< 5000 ms");
            // On a machine shared with other work the wall time is mostly waiting for the disk.
            line("  of which processor time", cpu, 0, "");
            line("  safety copy", stages[0], 0, "");
            for (int i = 1; i <= FiscalYearChange::Vaiheet; ++i) {
                const QByteArray name = ("  " + FiscalYearChange::vaiheTeksti(i)).toUtf8();
                if (i == 3)
                    line(name.constData(), stages[i], bare, "ratio <= 3 (INSERT INTO viE SELECT … FROM vi)");
                else
                    line(name.constData(), stages[i], 0, "");
            }
            const double commit
                = all - stages[0] - stages[1] - stages[2] - stages[3] - stages[4] - stages[5] - stages[6];
            line("  commit and the rest", commit, 0, "");
        }
    }
    DBC::instance().SuljeDB();
    ProgramSettings::installation().Database = savedDatabase;
    Paths::setDataDir(savedDataDir);
    return rc;
}
