// Times the voucher operations on an association database (normally the stress association of
// vorkam_stressgen) and prints each as a ratio to a plain SQL baseline on the same data.
#include "DBC.h"
#include "ProgramSettings.h"
#include "Transaction.h"
#include "cTosite.h"
#include "frmNewTositteet.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSqlQuery>
#include <QTableView>
#include <QVariant>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

// The median of `runs` timings in milliseconds.
double median(int runs, const std::function<void()>& work)
{
    std::vector<double> ms;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer t;
        t.start();
        work();
        ms.push_back(double(t.nsecsElapsed()) / 1e6);
    }
    std::sort(ms.begin(), ms.end());
    return ms[ms.size() / 2];
}

void sql(const QString& text, const QVariantList& values = {})
{
    QSqlQuery q(DBC::instance().AvaaDB());
    q.setForwardOnly(true);
    q.prepare(text);
    for (const QVariant& v : values)
        q.addBindValue(v);
    q.exec();
    while (q.next()) { }
}

void report(const char* name, double vorkam, double baseline, const char* target)
{
    std::printf("%-44s %9.2f ms %9.2f ms %8.2fx   %s\n", name, vorkam, baseline,
        vorkam / std::max(baseline, 1e-3), target);
}

} // namespace

int reportBench(const QSqlDatabase& db, const QString& binDir);

int run(char** argv)
{
    const QString file = QFileInfo(QString::fromLocal8Bit(argv[1])).absoluteFilePath();
    ProgramSettings::installation().Database = file;
    QSqlDatabase db = DBC::instance().AvaaDB();
    if (!db.isOpen()) {
        std::fprintf(stderr, "Cannot open %s\n", argv[1]);
        return 1;
    }
    ProgramSettings::loadBookkeeping(db, file);
    QSqlQuery count(db);
    count.exec(QStringLiteral(
        "SELECT (SELECT COUNT(*) FROM tl), (SELECT COUNT(*) FROM \"to\"), (SELECT COUNT(*) FROM vi)"));
    count.next();
    std::printf("%s: %d accounts, %d vouchers, %d entries; LaskettavaTili %d\n\n",
        qPrintable(QFileInfo(file).fileName()), count.value(0).toInt(), count.value(1).toInt(),
        count.value(2).toInt(), ProgramSettings::bookkeeping().LaskettavaTili);
    std::printf("%-44s %12s %12s %9s   %s\n", "operation", "Vorkam", "baseline", "ratio", "target");

    // The largest entry count of a voucher against one grouped count query.
    const double maxLkm = median(5, [&db] { cTosite::MaxLkmViennitPerTosite(db); });
    const double maxLkmBase = median(5, [] {
        sql(QStringLiteral("SELECT MAX(n) FROM (SELECT COUNT(*) AS n FROM vi GROUP BY vitoID, viTyyppi)"));
    });
    report("MaxLkmViennitPerTosite", maxLkm, maxLkmBase, "ratio <= 3");

    // Opening the window against reading its voucher list with one query.
    const double open = median(5, [&db] {
        frmNewTositteet w(db, frmNewTositteet::Laji::Tavallinen);
        w.close();
    });
    const double openBase = median(5, [] {
        sql(QStringLiteral(
            "SELECT toID, toNumero, toSelite FROM \"to\" WHERE toAvaustosite = 0 AND toPaatostosite = 0 "
            "AND toNumero >= 0 ORDER BY toNumero"));
    });
    report("open the voucher window", open, openBase, "< 300 ms");

    frmNewTositteet w(db, frmNewTositteet::Laji::Tavallinen);
    // Stepping: the window's Next against reading the next voucher and its entries.
    w.Ensimmainen();
    const double next = median(200, [&w] { w.Seuraava(); });
    const int numero = w.curTosite().Numero();
    const double nextBase = median(200, [numero] {
        QSqlQuery q(DBC::instance().AvaaDB());
        q.prepare(QStringLiteral("SELECT toID FROM \"to\" WHERE toNumero > ? ORDER BY toNumero LIMIT 1"));
        q.addBindValue(numero);
        q.exec();
        q.next();
        sql(QStringLiteral("SELECT * FROM \"to\" WHERE toID = ?"), { q.value(0) });
        sql(QStringLiteral("SELECT * FROM vi WHERE vitoID = ?"), { q.value(0) });
    });
    report("step to the next voucher (window)", next, nextBase, "< 20 ms");
    const std::unique_ptr<cTosite> tosite = w.curTosite().GetFirst(false, false);
    const double cursor = median(200, [&tosite] {
        auto n = tosite->GetNext(false, false);
        n->GetViennit(QStringLiteral("D"));
        n->GetViennit(QStringLiteral("K"));
    });
    report("cTosite GetNext + GetViennit D and K", cursor, nextBase, "");

    // Saving a changed voucher of ten entries against the same writes in plain SQL.
    w.Viimeinen();
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
    std::vector<double> saves;
    for (int i = 0; i < 30; ++i) {
        change();
        QElapsedTimer t;
        t.start();
        w.Tallenna();
        saves.push_back(double(t.nsecsElapsed()) / 1e6);
    }
    std::sort(saves.begin(), saves.end());
    const qint32 toId = w.curTosite().ToId();
    const double saveBase = median(30, [toId, &round] {
        ++round;
        Transaction t(DBC::instance().AvaaDB());
        sql(QStringLiteral("UPDATE \"to\" SET toSelite = ? WHERE toID = ?"),
            { QString::number(round), toId });
        QSqlQuery q(DBC::instance().AvaaDB());
        q.prepare(QStringLiteral("SELECT viID FROM vi WHERE vitoID = ?"));
        q.addBindValue(toId);
        q.exec();
        while (q.next())
            sql(QStringLiteral("UPDATE vi SET viArvo = ? WHERE viID = ?"), { round * 10000, q.value(0) });
        t.commit();
    });
    report("save a changed voucher with ten entries", saves[saves.size() / 2], saveBase, "< 20 ms");

    // Leave the stress file as it was.
    {
        Transaction t(db);
        sql(QStringLiteral("DELETE FROM vi WHERE vitoID = ?"), { toId });
        sql(QStringLiteral("DELETE FROM \"to\" WHERE toID = ?"), { toId });
        t.commit();
    }
    w.Viimeinen();
    return 0;
}

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    QApplication app(argc, argv);
    if (argc != 2 || !QFileInfo::exists(QString::fromLocal8Bit(argv[1]))) {
        std::fprintf(stderr, "usage: vorkam_bench FILE.mdb   (make one with vorkam_stressgen)\n");
        return 2;
    }
    int rc = run(argv);
    if (rc == 0)
        rc = reportBench(DBC::instance().AvaaDB(), QStringLiteral(VORKAM_BIN_DIR));
    DBC::instance().SuljeDB();
    return rc;
}
