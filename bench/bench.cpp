// Times what the treasurer waits for on a stress association, each beside a baseline that does
// the same SQL work in plain queries on the same file, as the minimum and median of several
// runs and the ratio of the medians. Every step's result is checked: a step that lands on
// nothing fails the run.
//
//   vorkam_bench FILE.mdb [--runs N]        (make the file with vorkam_stressgen)
//   vorkam_bench FILE.mdb --reports         (only the reports as whole vorkam_report processes)
//   vorkam_bench FILE.mdb --bank            (only the bank statement import, on copies)
//   vorkam_bench FILE.mdb --five-years      (only five years of use, on a copy)
//
// The bench makes and deletes vouchers of its own: the books are left with the same rows, but
// the key counters of the voucher and entry tables move on.

#include "app/frmMain.h"
#include "core/DBC.h"
#include "core/Dialogs.h"
#include "core/Paths.h"
#include "core/ProgramSettings.h"
#include "core/SettingsStore.h"
#include "core/Transaction.h"
#include "vouchers/cTosite.h"
#include "vouchers/frmNewTositteet.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSqlQuery>
#include <QTableView>
#include <QTemporaryDir>
#include <QVariant>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

// Answers every question Yes and counts what else was shown: an error fails the run.
class BenchDialogs final : public Dialogs {
public:
    void information(const QString& text) override { shown(text); }
    void plain(const QString& text) override { shown(text); }
    void error(const QString& text) override
    {
        std::fprintf(stderr, "error shown: %s\n", qPrintable(text));
        failed = true;
    }
    bool question(const QString&) override { return true; }
    std::optional<QString> input(const QString&, const QString&) override { return std::nullopt; }
    QString openFileName(const QString&, const QString&, const QString&) override { return {}; }
    QString saveFileName(const QString&, const QString&, const QString&) override { return {}; }
    void beep() override { ++beeps; }
    void openUrl(const QUrl&) override { }
    void shown(const QString& text) { std::fprintf(stderr, "message shown: %s\n", qPrintable(text)); }

    bool failed = false;
    int beeps = 0;
};

BenchDialogs* g_dialogs = nullptr;

struct Timing {
    double min = 0;
    double median = 0;
};

Timing summary(std::vector<double> ms)
{
    std::sort(ms.begin(), ms.end());
    return { ms.front(), ms[ms.size() / 2] };
}

// `prepare` runs untimed before each run.
Timing measure(int runs, const std::function<void()>& work, const std::function<void()>& prepare = {})
{
    std::vector<double> ms;
    for (int i = 0; i < runs; ++i) {
        if (prepare)
            prepare();
        QElapsedTimer t;
        t.start();
        work();
        ms.push_back(double(t.nsecsElapsed()) / 1e6);
    }
    return summary(ms);
}

QSqlDatabase db() { return DBC::instance().AvaaDB(); }

// Runs a statement and reads every row, as the program would.
void sql(const QString& text, const QVariantList& values = {})
{
    QSqlQuery q(db());
    q.setForwardOnly(true);
    q.prepare(text);
    for (const QVariant& v : values)
        q.addBindValue(v);
    q.exec();
    while (q.next()) { }
}

QVariant scalar(const QString& text, const QVariantList& values = {})
{
    QSqlQuery q(db());
    q.prepare(text);
    for (const QVariant& v : values)
        q.addBindValue(v);
    return q.exec() && q.next() ? q.value(0) : QVariant();
}

int g_failures = 0;

void check(bool ok, const char* what)
{
    if (!ok || (g_dialogs && g_dialogs->failed)) {
        std::fprintf(stderr, "FAILED: %s\n", what);
        ++g_failures;
    }
}

void report(const char* name, Timing vorkam, Timing baseline, const char* target)
{
    std::printf("%-46s %8.2f %8.2f   %8.2f %8.2f %7.2fx   %s\n", name, vorkam.min, vorkam.median,
        baseline.min, baseline.median, vorkam.median / std::max(baseline.median, 1e-3), target);
}

// The plain queries the voucher window runs when it shows a voucher.
void showVoucherBaseline(const QVariant& toId)
{
    sql(QStringLiteral("SELECT * FROM \"to\" WHERE toID = ?"), { toId });
    sql(QStringLiteral("SELECT * FROM vi WHERE vitoID = ? AND viTyyppi = 'D'"), { toId });
    sql(QStringLiteral("SELECT * FROM vi WHERE vitoID = ? AND viTyyppi = 'K'"), { toId });
    sql(QStringLiteral(
            "SELECT viTyyppi, SUM(viArvo) FROM vi WHERE vitoID = ? AND vitlID = ? GROUP BY viTyyppi"),
        { toId, ProgramSettings::bookkeeping().LaskettavaTili });
}

void paint(QWidget& w)
{
    w.show();
    QApplication::processEvents();
    w.repaint();
}

} // namespace

// The report figures, in reportbench.cpp.
int reportBench(const QSqlDatabase& db, const QString& binDir);
// The statement figures, in statementbench.cpp.
int statementBench(const QSqlDatabase& db);
// The journal, the ledger and the per-account windows, in ledgerbench.cpp.
int ledgerBench(const QSqlDatabase& db, const QString& binDir);
// The voucher tools' figures, in toolsbench.cpp.
int toolsBench(const QSqlDatabase& db);
int bankBench(const QString& file, int runs);
// The fiscal year change on a copy of the file (yearchangebench.cpp).
int yearChangeBench(const QString& stressFile);
// Five years of use grown on a copy of the file (fiveyearsbench.cpp).
int fiveYearsBench(const QString& stressFile);
// Every report as a whole vorkam_report process on a copy of the file (processbench.cpp).
int processBench(const QString& stressFile, const QString& binDir);

int run(const QString& file, int runs)
{
    // A private configuration: the bench never touches the user's own settings.
    QTemporaryDir config;
    Paths::setIniFile(config.path() + QStringLiteral("/lxvorkam.ini"));
    {
        IniSettingsStore ini(Paths::iniFile());
        ini.write(QStringLiteral("Database"), file);
    }
    BenchDialogs dialogs;
    g_dialogs = &dialogs;
    Dialogs::install(&dialogs);

    ProgramSettings::installation().Database = file;
    if (!db().isOpen()) {
        std::fprintf(stderr, "Cannot open %s\n", qPrintable(file));
        return 1;
    }
    ProgramSettings::loadBookkeeping(db(), file);
    const qint32 laskettava = ProgramSettings::bookkeeping().LaskettavaTili;
    std::printf("%s: %d accounts, %d vouchers, %d entries; LaskettavaTili %d; %d runs\n\n",
        qPrintable(QFileInfo(file).fileName()), scalar(QStringLiteral("SELECT COUNT(*) FROM tl")).toInt(),
        scalar(QStringLiteral("SELECT COUNT(*) FROM \"to\"")).toInt(),
        scalar(QStringLiteral("SELECT COUNT(*) FROM vi")).toInt(), laskettava, runs);
    std::printf("%-46s %17s   %17s %8s   %s\n", "", "Vorkam ms", "baseline ms", "", "");
    std::printf("%-46s %8s %8s   %8s %8s %8s   %s\n", "operation", "min", "median", "min", "median", "ratio",
        "target");

    // Start-up to the painted main window: open and check the file once, read the settings.
    QString caption;
    const Timing startup = measure(
        runs,
        [&] {
            frmMain w;
            w.startUp();
            paint(w);
            caption = w.windowTitle();
        },
        [] { DBC::instance().SuljeDB(); });
    check(caption.endsWith(QFileInfo(file).fileName()), "the main window opened the books");
    const Timing startupBase = measure(
        runs,
        [&] {
            QSqlDatabase base = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("base"));
            base.setDatabaseName(file);
            base.open();
            QSqlQuery q(base);
            q.exec(QStringLiteral("PRAGMA quick_check"));
            q.next();
            q.exec(QStringLiteral("SELECT * FROM Settings"));
            while (q.next()) { }
            q.finish();
            base.close();
        },
        [] { QSqlDatabase::removeDatabase(QStringLiteral("base")); });
    QSqlDatabase::removeDatabase(QStringLiteral("base"));
    report("start-up to the main window", startup, startupBase, "< 300 ms");

    // The first voucher window of a session, with its connection.
    const Timing open = measure(
        runs,
        [] {
            frmNewTositteet w(db(), frmNewTositteet::Laji::Tavallinen);
            paint(w);
            check(!w.curTosite().IsEmpty(), "the voucher window shows the last voucher");
            w.close();
        },
        [] { DBC::instance().SuljeDB(); });
    const Timing openBase = measure(
        runs,
        [laskettava] {
            sql(QStringLiteral(
                "SELECT MAX(n) FROM (SELECT COUNT(viID) AS n FROM vi WHERE viTyyppi IN ('D', 'K') "
                "AND vitoID IN (SELECT toID FROM \"to\") GROUP BY vitoID, viTyyppi)"));
            sql(QStringLiteral("SELECT tlID, tlNumero, tlNimi FROM tl ORDER BY tlNumero, tlID"));
            sql(QStringLiteral("SELECT viTyyppi, SUM(viArvo) FROM vi WHERE vitlID = ? AND EXISTS "
                               "(SELECT 1 FROM \"to\" WHERE toID = vitoID) GROUP BY viTyyppi"),
                { laskettava });
            const QVariant last
                = scalar(QStringLiteral("SELECT toID FROM \"to\" WHERE toNumero > 0 AND "
                                        "toAvaustosite = 0 AND toPaatostosite = 0 ORDER BY toNumero "
                                        "DESC LIMIT 1"));
            showVoucherBaseline(last);
            sql(QStringLiteral("SELECT toID, toNumero, toSelite FROM \"to\" WHERE toAvaustosite = 0 AND "
                               "toPaatostosite = 0 AND toNumero >= 0 ORDER BY toNumero, toID"));
        },
        [] { DBC::instance().SuljeDB(); });
    report("first voucher window, with the connection", open, openBase, "< 300 ms");

    frmNewTositteet w(db(), frmNewTositteet::Laji::Tavallinen);
    paint(w);
    const qint32 lastId = w.curTosite().ToId();
    const qint32 lastNumero = w.curTosite().Numero();

    // New and Delete, in pairs: the books keep their rows.
    std::vector<double> news, deletes;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer t;
        t.start();
        w.Uusi();
        news.push_back(double(t.nsecsElapsed()) / 1e6);
        check(w.curTosite().Numero() == lastNumero + 1, "New gives the next number");
        t.start();
        w.Poista();
        deletes.push_back(double(t.nsecsElapsed()) / 1e6);
        check(w.curTosite().ToId() == lastId, "Delete shows the neighbour");
    }
    const Timing newBase = measure(runs, [lastId] {
        Transaction tx(db());
        tx.commit();
        scalar(QStringLiteral("SELECT MAX(toNumero) FROM \"to\" WHERE toNumero >= 0"));
        scalar(QStringLiteral(
            "SELECT toPvm FROM \"to\" WHERE toPvm IS NOT NULL AND toNumero >= 0 ORDER BY toPvm "
            "DESC LIMIT 1"));
        QSqlQuery q(db());
        q.prepare(
            QStringLiteral("INSERT INTO \"to\" (toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, "
                           "toAutomaatti) VALUES (?, ?, ' ', 0, 0, 0)"));
        q.addBindValue(999999999);
        q.addBindValue(QStringLiteral("2000-01-01"));
        q.exec();
        const QVariant id = q.lastInsertId();
        showVoucherBaseline(id);
        sql(QStringLiteral("DELETE FROM \"to\" WHERE toID = ?"), { id });
        Q_UNUSED(lastId)
    });
    report("New", summary(news), newBase, "< 5 ms");
    const Timing deleteBase = measure(runs, [lastId] {
        QSqlQuery q(db());
        q.prepare(QStringLiteral("INSERT INTO \"to\" (toNumero, toSelite) VALUES (999999999, ' ')"));
        q.exec();
        const QVariant id = q.lastInsertId();
        scalar(QStringLiteral("SELECT toID FROM \"to\" WHERE toNumero < 999999999 AND toAvaustosite = 0 AND "
                              "toPaatostosite = 0 ORDER BY toNumero DESC LIMIT 1"));
        Transaction tx(db());
        sql(QStringLiteral("DELETE FROM \"to\" WHERE toID = ?"), { id });
        sql(QStringLiteral("DELETE FROM vi WHERE vitoID = ?"), { id });
        tx.commit();
        showVoucherBaseline(lastId);
    });
    report("Delete (with the insert of its voucher in the base)", summary(deletes), deleteBase, "");

    // A line of the list clicked: two vouchers in the middle, in turn.
    const qint32 middle
        = scalar(QStringLiteral("SELECT toID FROM \"to\" WHERE toNumero >= 0 AND toAvaustosite = 0 "
                                "AND toPaatostosite = 0 ORDER BY toNumero LIMIT 1 OFFSET ?"),
            { scalar(QStringLiteral("SELECT COUNT(*) FROM \"to\"")).toInt() / 2 })
              .toInt();
    auto* list = w.findChild<QAbstractItemView*>(QStringLiteral("lstTositteet"));
    const QModelIndex lines[] = { list->model()->index(list->model()->rowCount() / 2, 0),
        list->model()->index(list->model()->rowCount() / 2 + 1, 0) };
    int turn = 0;
    const Timing click = measure(runs, [&] {
        emit list->clicked(lines[++turn % 2]);
        check(w.curTosite().ToId() == lines[turn % 2].data(Qt::UserRole).toInt(),
            "a line of the list loads it");
    });
    const Timing clickBase = measure(runs, [middle] { showVoucherBaseline(middle); });
    report("click a line of the list", click, clickBase, "< 20 ms");

    // Stepping back from the end of the list.
    const Timing step = measure(
        runs,
        [&] {
            w.Edellinen();
            check(
                !w.curTosite().IsEmpty() && w.curTosite().Numero() < lastNumero, "a step lands on a voucher");
        },
        [&] { w.Viimeinen(); });
    const Timing stepBase = measure(runs, [lastNumero] {
        const QVariant id
            = scalar(QStringLiteral("SELECT toID FROM \"to\" WHERE toNumero < ? AND toAvaustosite = 0 "
                                    "AND toPaatostosite = 0 ORDER BY toNumero DESC LIMIT 1"),
                { lastNumero });
        showVoucherBaseline(id);
    });
    report("step back from the end of the list", step, stepBase, "< 20 ms");

    // Saving a changed voucher of ten entries against the same writes in plain SQL.
    w.Uusi();
    auto* model = w.findChild<QTableView*>(QStringLiteral("grdViennit"))->model();
    for (int row = 0; row < 5; ++row) {
        model->setData(model->index(row, 0), QStringLiteral("1910"), Qt::EditRole);
        model->setData(model->index(row, 2), QStringLiteral("1910"), Qt::EditRole);
    }
    int round = 0;
    const auto change = [&] {
        ++round;
        for (int row = 0; row < 5; ++row) {
            model->setData(model->index(row, 1), QString::number(round * 10 + row), Qt::EditRole);
            model->setData(model->index(row, 3), QString::number(round * 10 + row), Qt::EditRole);
        }
    };
    change();
    w.Tallenna();
    const qint32 saved = w.curTosite().ToId();
    const Timing save = measure(
        runs, [&] { w.Tallenna(); }, change);
    check(scalar(QStringLiteral("SELECT COUNT(*) FROM vi WHERE vitoID = ?"), { saved }).toInt() == 10,
        "the voucher holds its ten entries");
    const Timing saveBase = measure(runs, [saved, laskettava, &round] {
        ++round;
        Transaction t(db());
        sql(QStringLiteral("UPDATE \"to\" SET toSelite = ? WHERE toID = ?"),
            { QString::number(round), saved });
        QSqlQuery q(db());
        q.prepare(QStringLiteral("SELECT viID FROM vi WHERE vitoID = ?"));
        q.addBindValue(saved);
        q.exec();
        while (q.next())
            sql(QStringLiteral("UPDATE vi SET viArvo = ? WHERE viID = ?"), { round * 10000, q.value(0) });
        t.commit();
        // The chosen account's sums in the saved voucher are read back after a save.
        sql(QStringLiteral(
                "SELECT viTyyppi, SUM(viArvo) FROM vi WHERE vitoID = ? AND vitlID = ? GROUP BY viTyyppi"),
            { saved, laskettava });
    });
    report("save a changed voucher with ten entries", save, saveBase, "< 20 ms");
    w.Poista();

    const Timing maxLkm = measure(runs, [] { cTosite::MaxLkmViennitPerTosite(db()); });
    const Timing maxLkmBase = measure(runs, [] {
        sql(QStringLiteral("SELECT MAX(n) FROM (SELECT COUNT(*) AS n FROM vi GROUP BY vitoID, viTyyppi)"));
    });
    report("MaxLkmViennitPerTosite", maxLkm, maxLkmBase, "ratio <= 3");

    w.close();
    Dialogs::install(nullptr);
    g_dialogs = nullptr;
    if (g_failures > 0) {
        std::fprintf(stderr, "%d checks failed\n", g_failures);
        return 1;
    }
    return 0;
}

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    int runs = 7;
    // The optional size: the stress association after five years of use (fiveyearsbench.cpp).
    if (args.size() == 3 && args.at(2) == u"--five-years" && QFileInfo::exists(args.at(1)))
        return fiveYearsBench(QFileInfo(args.at(1)).absoluteFilePath());
    // Only the reports as whole processes, which need no window and no connection of their own.
    if (args.size() == 3 && args.at(2) == u"--reports" && QFileInfo::exists(args.at(1)))
        return processBench(QFileInfo(args.at(1)).absoluteFilePath(), QStringLiteral(VORKAM_BIN_DIR));
    // Only the bank statement import, on copies of the file.
    if (args.size() == 3 && args.at(2) == u"--bank" && QFileInfo::exists(args.at(1)))
        return bankBench(QFileInfo(args.at(1)).absoluteFilePath(), 5);
    if (args.size() == 4 && args.at(2) == u"--runs")
        runs = args.at(3).toInt();
    if ((args.size() != 2 && args.size() != 4) || runs < 1 || !QFileInfo::exists(args.at(1))) {
        std::fprintf(stderr,
            "usage: vorkam_bench FILE.mdb [--runs N | --five-years | --reports | --bank]   (make the file "
            "with "
            "vorkam_stressgen)\n");
        return 2;
    }
    int rc = run(QFileInfo(args.at(1)).absoluteFilePath(), runs);
    if (rc == 0)
        rc = reportBench(DBC::instance().AvaaDB(), QStringLiteral(VORKAM_BIN_DIR));
    if (rc == 0)
        rc = statementBench(DBC::instance().AvaaDB());
    if (rc == 0)
        rc = ledgerBench(DBC::instance().AvaaDB(), QStringLiteral(VORKAM_BIN_DIR));
    if (rc == 0)
        rc = toolsBench(DBC::instance().AvaaDB());
    if (rc == 0)
        rc = yearChangeBench(QFileInfo(args.at(1)).absoluteFilePath());
    if (rc == 0)
        rc = bankBench(QFileInfo(args.at(1)).absoluteFilePath(), 5);
    DBC::instance().SuljeDB();
    if (rc == 0)
        rc = processBench(QFileInfo(args.at(1)).absoluteFilePath(), QStringLiteral(VORKAM_BIN_DIR));
    return rc;
}
