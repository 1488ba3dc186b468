// Times every report as the treasurer's command line runs it: a whole vorkam_report process on a
// copy of the stress association, from the start of the process to its end, with the peak memory
// of the process (see README.md). The file named is not changed; whether the reports changed
// their copy is checked byte for byte and printed.
#include <QByteArray>
#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariant>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <vector>

extern char** environ;

namespace {

constexpr int Runs = 5;

struct Run {
    double ms = 0;
    double peakMb = 0;
    int exitCode = -1;
    QString out;
    QString err;
};

QString readAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(f.readAll()).trimmed() : QString();
}

// One process, its output into files: the wall time from before the spawn to after the wait,
// and the peak resident size the kernel reports for that child (wait4). The kernel counts the
// memory of the process the child was started from until the child's exec, so that figure is
// never below the bench's own size; peakOf gives the child's own.
Run runProcess(
    const QString& program, const QStringList& args, const QString& outFile, const QString& errFile)
{
    std::vector<QByteArray> storage { QFile::encodeName(program) };
    for (const QString& a : args)
        storage.push_back(QFile::encodeName(a));
    std::vector<char*> argv;
    for (QByteArray& a : storage)
        argv.push_back(a.data());
    argv.push_back(nullptr);
    const QByteArray out = QFile::encodeName(outFile);
    const QByteArray err = QFile::encodeName(errFile);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, out.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_addopen(&actions, 2, err.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);

    Run r;
    const auto start = std::chrono::steady_clock::now();
    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        r.err = QStringLiteral("%1 could not be started").arg(program);
        return r;
    }
    int status = 0;
    rusage usage {};
    while (wait4(pid, &status, 0, &usage) < 0 && errno == EINTR) { }
    r.ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    r.peakMb = double(usage.ru_maxrss) * 1024.0 / 1e6; // kibibytes on Linux
    r.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    r.out = readAll(outFile);
    r.err = readAll(errFile);
    return r;
}

QByteArray digest(const QString& path)
{
    QFile f(path);
    QCryptographicHash h(QCryptographicHash::Sha256);
    return f.open(QIODevice::ReadOnly) && h.addData(&f) ? h.result() : QByteArray();
}

// The child's own peak resident size in MB (10^6 bytes), measured by /usr/bin/time, which is small enough not
// to lift the figure as the bench does; nullopt without it.
std::optional<double> peakOf(const QString& program, const QStringList& args, const QString& dir)
{
    const QString time = QStringLiteral("/usr/bin/time");
    if (!QFileInfo(time).isExecutable())
        return std::nullopt;
    const QString kilobytes = dir + QStringLiteral("/peak.txt");
    const Run r = runProcess(time,
        QStringList { QStringLiteral("-f"), QStringLiteral("%M"), QStringLiteral("-o"), kilobytes, program }
            + args,
        dir + QStringLiteral("/out.txt"), dir + QStringLiteral("/err.txt"));
    bool ok = false;
    const double kb = readAll(kilobytes).toDouble(&ok);
    return r.exitCode == 0 && ok ? std::optional<double>(kb * 1024.0 / 1e6) : std::nullopt;
}

// The number of the account with the most entries this year, the account inspection's worst case.
std::optional<int> busiestAccount(const QString& file)
{
    const QString name = QStringLiteral("processbench");
    std::optional<int> number;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(file);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        QSqlQuery q(db);
        if (db.open()
            && q.exec(QStringLiteral("SELECT tlNumero FROM tl WHERE tlID = (SELECT vitlID FROM vi GROUP BY "
                                     "+vitlID ORDER BY COUNT(*) DESC LIMIT 1)"))
            && q.next())
            number = q.value(0).toInt();
        q = QSqlQuery();
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return number;
}

QString findReportProgram(const QString& binDir)
{
    const QString app = QCoreApplication::applicationDirPath();
    for (const QString& dir : { app, app + QStringLiteral("/../bin"), binDir }) {
        const QFileInfo f(dir + QStringLiteral("/vorkam_report"));
        if (f.isExecutable())
            return f.canonicalFilePath();
    }
    return {};
}

struct Report {
    const char* label;
    QStringList args; // after the file
    double targetMs; // 0: none
    double peakTargetMb; // 0: none
    double sizeTargetMb = 0; // the PDF's size; 0: none
};

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

} // namespace

int processBench(const QString& stressFile, const QString& binDir)
{
    const QString program = findReportProgram(binDir);
    if (program.isEmpty()) {
        std::fprintf(stderr, "vorkam_report was not found beside the bench nor in %s\n", qPrintable(binDir));
        return 1;
    }
    QTemporaryDir dir;
    const QString copy = dir.filePath(QStringLiteral("stress-raportit.mdb"));
    if (!QFile::copy(stressFile, copy)) {
        std::fprintf(stderr, "the stress file could not be copied into %s\n", qPrintable(dir.path()));
        return 1;
    }
    const QByteArray original = digest(stressFile);
    const std::optional<int> busiest = busiestAccount(copy);
    if (original.isEmpty() || original != digest(copy) || !busiest) {
        std::fprintf(stderr, "the copy of the stress file could not be read\n");
        return 1;
    }
    const QString pdf = dir.filePath(QStringLiteral("raportti.pdf"));
    const QString tilitark = QStringLiteral("tilitark --account %1").arg(*busiest);
    const QByteArray tilitarkLabel = tilitark.toUtf8();
    const std::vector<Report> reports = {
        // The fixed cost of every report: the program's start and end with nothing to do.
        { "start-up only (--version)", { QStringLiteral("--version") }, 0, 0 },
        { "tilit", { QStringLiteral("tilit") }, 60, 0 },
        { "tilikart", { QStringLiteral("tilikart") }, 250, 0 },
        { "tilisald", { QStringLiteral("tilisald") }, 250, 0 },
        { "tuloslaskelma", { QStringLiteral("tuloslaskelma") }, 250, 0 },
        { "tase", { QStringLiteral("tase") }, 250, 0 },
        // The account inspection has no whole-process target of its own; it is shown for scale.
        { tilitarkLabel.constData(),
            { QStringLiteral("tilitark"), QStringLiteral("--account"), QString::number(*busiest) }, 0, 0 },
        // The peer writes the stress year's journal in 16 MB.
        { "paivakirja", { QStringLiteral("paivakirja") }, 900, 0, 16 },
        { "paakirja", { QStringLiteral("paakirja") }, 1200, 200 },
    };

    std::printf("\nreports as whole processes: vorkam_report on a copy of the file, --pdf, "
                "%d runs after one warm-up\n",
        Runs);
    std::printf("%-28s %9s %9s %9s %10s  %-8s %s\n", "report", "min ms", "median ms", "target", "peak MB",
        "met", "note");
    int missed = 0;
    int failed = 0;
    for (const Report& report : reports) {
        QStringList args = report.args;
        if (args.first() != u"--version")
            args = QStringList { copy } + args + QStringList { QStringLiteral("--pdf"), pdf };
        const QByteArray before = digest(copy);
        std::vector<double> ms;
        double peak = 0;
        Run last;
        // Run 0 warms the disk cache and is not counted; a failing report is not run again. The
        // peak memory is measured on one more run.
        std::optional<double> ownPeak;
        for (int i = 0; i <= Runs + 1; ++i) {
            if (i == Runs + 1) {
                ownPeak = peakOf(program, args, dir.path());
                break;
            }
            last = runProcess(program, args, dir.filePath(QStringLiteral("out.txt")),
                dir.filePath(QStringLiteral("err.txt")));
            if (last.exitCode != 0)
                break;
            if (i > 0) {
                ms.push_back(last.ms);
                peak = std::max(peak, last.peakMb);
            }
        }
        const QString target = report.targetMs > 0 ? QStringLiteral("< %1").arg(report.targetMs) : QString();
        if (last.exitCode != 0 || ms.empty()) {
            ++failed;
            const QString why = QStringLiteral("FAILED (exit %1): %2")
                                    .arg(last.exitCode)
                                    .arg(last.err.isEmpty() ? last.out : last.err)
                                    .replace(u'\n', QStringLiteral(" / "));
            std::printf("%-28s %9s %9s %9s %10s  %-8s %s\n", report.label, "-", "-", qPrintable(target), "-",
                "-", qPrintable(why));
            continue;
        }
        if (ownPeak)
            peak = *ownPeak;
        const double min = *std::min_element(ms.begin(), ms.end());
        const bool timeMet = report.targetMs <= 0 || min <= report.targetMs;
        const bool peakMet = report.peakTargetMb <= 0 || peak <= report.peakTargetMb;
        const double sizeMb = double(QFileInfo(pdf).size()) / 1e6;
        const bool sizeMet = report.sizeTargetMb <= 0 || sizeMb <= report.sizeTargetMb;
        missed += timeMet && peakMet && sizeMet ? 0 : 1;
        QStringList note;
        static const QRegularExpression pages(QStringLiteral("\\((\\d+) sivua\\)"));
        if (const QRegularExpressionMatch m = pages.match(last.out); m.hasMatch())
            note << QStringLiteral("%1 pages, %2 MB PDF").arg(m.captured(1)).arg(sizeMb, 0, 'f', 1);
        if (report.sizeTargetMb > 0)
            note << QStringLiteral("PDF < %1 MB: %2").arg(report.sizeTargetMb).arg(sizeMet ? "yes" : "NO");
        if (report.peakTargetMb > 0)
            note << QStringLiteral("peak memory < %1 MB: %2")
                        .arg(report.peakTargetMb)
                        .arg(peakMet ? "yes" : "NO");
        if (!ownPeak)
            note << QStringLiteral("peak memory with the bench's own (no /usr/bin/time)");
        if (args.first() == copy && digest(copy) != before)
            note << QStringLiteral("wrote into the file");
        if (!last.err.isEmpty())
            note << QStringLiteral("said: ") + QString(last.err).replace(u'\n', QStringLiteral(" / "));
        std::printf("%-28s %9.1f %9.1f %9s %10.1f  %-8s %s\n", report.label, min, median(ms),
            qPrintable(target), peak,
            report.targetMs > 0 || report.peakTargetMb > 0 ? (timeMet && peakMet && sizeMet ? "yes" : "NO")
                                                           : "",
            qPrintable(note.join(QStringLiteral("; "))));
        QFile::remove(pdf);
    }
    const bool unchanged = digest(copy) == original;
    std::printf("file unchanged: %s\n", unchanged ? "yes" : "no");
    if (digest(stressFile) != original) {
        std::fprintf(stderr, "FAILED: the stress file itself changed\n");
        return 1;
    }
    std::printf("(%d of the reports with a target missed it, %d failed)\n", missed, failed);
    return failed == 0 ? 0 : 1;
}
