// Power cuts in the middle of Vorkam's writes (README: "Power cuts"). For each operation a child
// process performs it on a copy of the books and is killed at a random moment inside it; the
// books must then open as Vorkam opens them, pass the integrity check and hold exactly what they
// held before the operation or after it. With --cache the child runs with the pagecache library
// preloaded, and after the kill every file and folder is put back as it was at its last flush.
//
//   vorkam_powercut [--trials N] [--operation NAME] [--seed S] [--cache]   runs the trials
//   vorkam_powercut --child NAME WORLD                                     performs one operation
//
// Exits non-zero when any trial finds the books damaged or in a third state.

#include "accounts/cTili.h"
#include "backup/StickRestore.h"
#include "core/DBC.h"
#include "core/DatabaseCommands.h"
#include "core/DatabaseFile.h"
#include "core/Dialogs.h"
#include "core/Money.h"
#include "core/Paths.h"
#include "core/ProgramSettings.h"
#include "vouchers/VoucherEditor.h"
#include "yearchange/FiscalYearChange.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QProcess>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThread>

#include <cstdio>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Where one trial's files lie: program folder, data folder with the books, ini and the backup
// folder of the reorganisation.
struct World {
    QString root;
    QString books() const { return root + QStringLiteral("/data/seura.mdb"); }
    QString data() const { return root + QStringLiteral("/data"); }
    // The copy the restore takes back; it holds other books than the data folder.
    QString restoreSource() const { return root + QStringLiteral("/palautus/Vorkam/20240101/seura.mdb"); }
};

// Answers yes to every question and records what is shown.
class YesDialogs final : public Dialogs {
public:
    QStringList shown;
    void information(const QString& text) override { shown << text; }
    void plain(const QString& text) override { shown << text; }
    void error(const QString& text) override { shown << QStringLiteral("virhe: ") + text; }
    bool question(const QString&) override { return true; }
    std::optional<QString> input(const QString&, const QString&) override { return {}; }
    QString openFileName(const QString&, const QString&, const QString&) override { return {}; }
    QString saveFileName(const QString&, const QString&, const QString&) override { return {}; }
    void beep() override { }
    void openUrl(const QUrl&) override { }
};

void useWorld(const World& w)
{
    Paths::setProgramDir(w.root + QStringLiteral("/bin"));
    Paths::setDataDir(w.data());
    Paths::setIniFile(w.root + QStringLiteral("/config/lxvorkam.ini"));
    ProgramSettings::installation().Database = w.books();
    ProgramSettings::installation().DatabaseBackup = w.root + QStringLiteral("/varmistus/");
}

QSqlDatabase openBooks(const World& w)
{
    useWorld(w);
    const QSqlDatabase db = DBC::instance().AvaaDB();
    if (db.isOpen())
        ProgramSettings::loadBookkeeping(db, w.books());
    return db;
}

// Performs the operation; calls `ready` just before its writing begins, once what it reads
// first has been read.
using Ready = std::function<void()>;
using Work = std::function<bool(const World&, const Ready& ready)>;

bool saveVoucher(const World& w, const Ready& ready)
{
    using P = VoucherEditor::Puoli;
    VoucherEditor m(openBooks(w), VoucherEditor::Laji::Tavallinen);
    if (!m.avaa())
        return false;
    ready();
    // Ten entries: five debits on the bank account, five credits on income accounts.
    std::vector<VoucherEditor::Malli> entries;
    for (int i = 0; i < 5; ++i) {
        entries.push_back({ P::Debet, 12, Money::fromCents(1000 + i) });
        entries.push_back({ P::Kredit, 32 + i, Money::fromCents(1000 + i) });
    }
    return m.uusiMallista(QStringLiteral("Kymmenen vientiä"), entries);
}

bool deleteVoucher(const World& w, const Ready& ready)
{
    VoucherEditor m(openBooks(w), VoucherEditor::Laji::Tavallinen);
    if (!m.avaa())
        return false;
    ready();
    return m.poista();
}

bool saveAccount(const World& w, const Ready& ready)
{
    cTili t(openBooks(w));
    if (!t.Read(12))
        return false;
    ready();
    t.setNimi(QStringLiteral("Pankkitili, uusi nimi"));
    t.setKuvaus(QStringLiteral("Vaihdettu katkostestissä"));
    t.setAlkusaldo(Money::fromCents(123456));
    t.Save();
    return true;
}

bool yearChange(const World& w, const Ready& ready)
{
    FiscalYearChange vaihto(openBooks(w));
    ready();
    return vaihto.suorita(2, true);
}

bool reorganise(const World& w, const Ready& ready)
{
    useWorld(w);
    ready();
    return DatabaseCommands::backupAndReorganize();
}

bool restore(const World& w, const Ready& ready)
{
    useWorld(w);
    ready();
    return StickRestore::restore(w.restoreSource()) == StickRestore::Outcome::Restored;
}

// Each operation by the name --operation and the child know it by.
const QMap<QString, Work>& operations()
{
    static const QMap<QString, Work> list { { "tosite", saveVoucher }, { "poisto", deleteVoucher },
        { "tili", saveAccount }, { "vaihto", yearChange }, { "jarjestely", reorganise },
        { "palautus", restore } };
    return list;
}

// The child: performs the operation, tells the parent when its writing begins and prints how
// long the writing took in microseconds.
int child(const QString& name, const QString& root)
{
    const Work work = operations().value(name);
    if (!work)
        return 2;
    YesDialogs dialogs;
    Dialogs::install(&dialogs);
    const World w { root };
    useWorld(w);
    QElapsedTimer timer;
    const Ready ready = [&timer] {
        std::fputs("R\n", stdout);
        std::fflush(stdout);
        timer.start();
    };
    bool ok = false;
    try {
        ok = work(w, ready);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
    }
    DBC::instance().SuljeDB();
    const qint64 took = timer.nsecsElapsed() / 1000;
    Dialogs::install(nullptr);
    if (!ok) {
        for (const QString& s : dialogs.shown)
            std::fprintf(stderr, "%s\n", qPrintable(s));
        return 3;
    }
    std::printf("%lld\n", static_cast<long long>(took));
    return 0;
}

// The books as text: every row of the tables that hold them, values as text, sorted; a table
// that is missing is named as missing. Empty with `error` set when the file cannot be opened
// as Vorkam opens it or fails the integrity check.
QByteArray canonicalDump(const QString& file, QString* error)
{
    static const char* const tables[]
        = { "to", "vi", "toE", "viE", "tl", "ma", "mr", "Settings", "tpPohjat", "vipPohjat" };
    const QString connection = QStringLiteral("vorkam_powercut_check");
    const OpenResult opened = DatabaseFile::open(file, connection);
    if (!opened) {
        *error = QStringLiteral("ei aukea: ") + opened.message;
        return {};
    }
    QByteArray dump;
    {
        const QSqlDatabase db = QSqlDatabase::database(connection, false);
        QSqlQuery q(db);
        if (!q.exec(QStringLiteral("PRAGMA integrity_check")) || !q.next()
            || q.value(0).toString() != u"ok") {
            *error = QStringLiteral("integrity_check: ") + q.value(0).toString();
        } else {
            for (const char* table : tables) {
                QStringList rows;
                if (!q.exec(QStringLiteral("SELECT * FROM \"%1\"").arg(QLatin1String(table))))
                    rows << QStringLiteral("(puuttuu)");
                while (q.next()) {
                    QStringList cells;
                    for (int i = 0; i < q.record().count(); ++i)
                        cells << (q.isNull(i) ? QStringLiteral("NULL") : q.value(i).toString());
                    rows << cells.join(u'|');
                }
                rows.sort();
                dump += QByteArray(table) + '\n' + rows.join(u'\n').toUtf8() + '\n';
            }
        }
    }
    DatabaseFile::close(connection);
    return error->isEmpty() ? dump : QByteArray();
}

QByteArray bytesOf(const QString& file)
{
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

quint64 inodeOf(const QString& path)
{
    struct stat st { };
    return ::lstat(QFile::encodeName(path).constData(), &st) == 0 ? quint64(st.st_ino) : 0;
}

// What a power cut leaves when the disk kept only what was flushed: every folder and file the
// cache log saw changed since its last flush is put back as it was then (pagecache.c).
void loseUnflushed(const QString& root, const QString& log)
{
    QMap<QString, QString> folders; // folder -> its names at its last flush; parents sort first
    QHash<quint64, QString> files; // inode -> its content at its last flush
    QFile in(log);
    if (!in.open(QIODevice::ReadOnly))
        return;
    for (const QByteArray& line : in.readAll().split('\n')) {
        const QList<QByteArray> f = line.split('\t');
        if (f.size() == 3 && f[0] == "C" && !files.contains(f[1].toULongLong()))
            files.insert(f[1].toULongLong(), QFile::decodeName(f[2]));
        else if (f.size() == 2 && f[0] == "S")
            files.remove(f[1].toULongLong());
        else if (f.size() == 3 && f[0] == "L" && !folders.contains(QFile::decodeName(f[1])))
            folders.insert(QFile::decodeName(f[1]), QFile::decodeName(f[2]));
        else if (f.size() == 2 && f[0] == "SD")
            folders.remove(QFile::decodeName(f[1]));
    }
    for (auto it = folders.cbegin(); it != folders.cend(); ++it) {
        const QDir folder(it.key());
        if (!folder.exists()) // lost with its parent's names
            continue;
        QFile listing(it.value());
        QHash<QString, QList<QByteArray>> kept;
        if (listing.open(QIODevice::ReadOnly))
            for (const QByteArray& line : listing.readAll().split('\n'))
                if (const QList<QByteArray> f = line.split('\t'); f.size() >= 2)
                    kept.insert(QFile::decodeName(f[1]), f);
        for (const QFileInfo& e :
            folder.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot))
            if (!kept.contains(e.fileName()))
                e.isDir() && !e.isSymLink() ? QDir(e.filePath()).removeRecursively()
                                            : QFile::remove(e.filePath());
        for (auto k = kept.cbegin(); k != kept.cend(); ++k) {
            const QString path = folder.filePath(k.key());
            if (k.value()[0] == "D") {
                folder.mkpath(k.key());
            } else if (k.value().size() == 4 && inodeOf(path) != k.value()[2].toULongLong()) {
                QFile::remove(path);
                ::link(k.value()[3].constData(), QFile::encodeName(path).constData());
            }
        }
    }
    if (files.isEmpty())
        return;
    QDirIterator walk(root, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        const QString path = walk.next();
        if (const auto saved = files.constFind(inodeOf(path)); saved != files.cend()) {
            QFile from(*saved), to(path);
            if (from.open(QIODevice::ReadOnly) && to.open(QIODevice::WriteOnly | QIODevice::Truncate))
                to.write(from.readAll());
        }
    }
}

struct Trials {
    QString program;
    int trials;
    QRandomGenerator random;
    bool cache;
    QTemporaryDir dir {};
    World base {};
    QByteArray beforeDump {};
    QByteArray beforeBytes {};

    // The world every trial starts from: the demo association as the books, a copy of other
    // books to restore, and whatever opening the books writes already written.
    bool prepare(const QString& demo)
    {
        base = World { dir.path() + QStringLiteral("/alku") };
        for (const QString& folder :
            { base.data(), base.root + QStringLiteral("/bin"), base.root + QStringLiteral("/varmistus"),
                base.root + QStringLiteral("/config"), QFileInfo(base.restoreSource()).absolutePath() })
            QDir().mkpath(folder);
        for (const QString& books : { base.books(), base.restoreSource() })
            if (!QFile::copy(demo, books)
                || !QFile::setPermissions(books, QFileDevice::ReadOwner | QFileDevice::WriteOwner))
                return false;
        bool ok = openBooks(base).isOpen();
        DBC::instance().SuljeDB();
        // The copy to restore differs from the books: its last vouchers are gone.
        ProgramSettings::installation().Database = base.restoreSource();
        {
            const QSqlDatabase other = DBC::instance().AvaaDB();
            ok = ok && other.isOpen()
                && QSqlQuery(other).exec(QStringLiteral(
                    "DELETE FROM vi WHERE vitoID IN (SELECT toID FROM \"to\" ORDER BY toID DESC LIMIT 5)"))
                && QSqlQuery(other).exec(QStringLiteral(
                    "DELETE FROM \"to\" WHERE toID IN (SELECT toID FROM \"to\" ORDER BY toID DESC LIMIT 5)"));
        }
        DBC::instance().SuljeDB();
        QString error;
        beforeDump = canonicalDump(base.books(), &error);
        beforeBytes = bytesOf(base.books());
        return ok && error.isEmpty();
    }

    // All trials of one operation; false when any found the books damaged or in a third state.
    bool run(const QString& name)
    {
        QTextStream out(stdout);
        // The whole operation once, for the state after it and its duration.
        const World finished = fresh(QStringLiteral("valmis-") + name);
        const QString log = dir.path() + QStringLiteral("/valimuisti.log");
        QProcess p;
        start(p, name, finished, log);
        if (!p.waitForFinished(600000) || p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0) {
            out << name << ": toiminto ei onnistu: " << p.readAllStandardError() << Qt::endl;
            return false;
        }
        const QList<QByteArray> lines = p.readAllStandardOutput().split('\n');
        const qint64 micros = lines.size() > 1 ? lines[1].toLongLong() : 0;
        QString error;
        const QByteArray afterDump = canonicalDump(finished.books(), &error);
        if (!error.isEmpty()) {
            out << name << ": valmiit kirjat: " << error << Qt::endl;
            return false;
        }
        QDir(finished.root).removeRecursively();

        bool ok = true;
        for (int i = 0; i < trials; ++i) {
            const World w = fresh(QStringLiteral("koe"));
            QProcess c;
            start(c, name, w, log);
            // The cut lands anywhere from the start of the operation to a little past its
            // measured end.
            const qint64 delay = qint64(random.bounded(quint32(micros * 11 / 10 + 1)));
            bool ready = false;
            while (!ready && c.waitForReadyRead(60000))
                ready = c.peek(2).startsWith('R');
            QThread::usleep(quint64(delay));
            c.kill();
            c.waitForFinished(60000);
            if (c.exitStatus() == QProcess::NormalExit && c.exitCode() != 0) {
                ok = false;
                out << name << " koe " << i + 1
                    << ": toiminto päättyi virheeseen: " << c.readAllStandardError() << Qt::endl;
            }
            if (cache)
                loseUnflushed(w.root, log);
            const QString verdict = check(w, afterDump);
            if (!verdict.isEmpty()) {
                ok = false;
                out << name << " koe " << i + 1 << " (" << delay << " µs): " << verdict << Qt::endl;
            }
            QDir(w.root).removeRecursively();
        }
        return ok;
    }

    World fresh(const QString& name)
    {
        const World w { QFileInfo(dir.path()).canonicalFilePath() + u'/' + name };
        QDir(w.root).removeRecursively();
        QProcess::execute(QStringLiteral("cp"), { QStringLiteral("-a"), base.root, w.root });
        return w;
    }

    // With --cache, the child's changes are watched by the pagecache library and logged afresh in
    // `cacheLog`.
    void start(QProcess& p, const QString& name, const World& w, const QString& cacheLog)
    {
        QFile::remove(cacheLog);
        QDir(cacheLog + QStringLiteral(".d")).removeRecursively();
        if (cache) {
            QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
            env.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(VORKAM_PAGECACHE));
            env.insert(QStringLiteral("VORKAM_CACHE_ROOT"), w.root);
            env.insert(QStringLiteral("VORKAM_CACHE_LOG"), cacheLog);
            // The sanitizers' runtime need not come first when the library is preloaded.
            env.insert(QStringLiteral("ASAN_OPTIONS"),
                env.value(QStringLiteral("ASAN_OPTIONS")) + QStringLiteral(":verify_asan_link_order=0"));
            p.setProcessEnvironment(env);
        }
        p.start(program, { QStringLiteral("--child"), name, w.root });
        p.waitForStarted();
    }

    // Empty when the books are sound and either before or after; else what is wrong.
    QString check(const World& w, const QByteArray& afterDump)
    {
        const QByteArray bytes = bytesOf(w.books());
        QString error;
        const QByteArray now = canonicalDump(w.books(), &error);
        if (!error.isEmpty())
            return error;
        // Compaction keeps every row: there the file itself tells whether it was replaced.
        if ((now == beforeDump && (afterDump != beforeDump || bytes == beforeBytes)) || now == afterDump)
            return {};
        return QStringLiteral("kirjat eivät ole kummassakaan tilassa");
    }
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() == 4 && args[1] == u"--child")
        return child(args[2], args[3]);

    int trials = 20;
    quint32 seed = QRandomGenerator::global()->generate();
    QString only;
    const QString demo = QStringLiteral(VORKAM_BIN_DIR "/demo1.mdb");
    const bool cache = args.contains(QStringLiteral("--cache"));
    for (int i = 1; i + 1 < args.size(); i += 2) {
        if (args[i] == u"--cache")
            --i;
        else if (args[i] == u"--trials")
            trials = args[i + 1].toInt();
        else if (args[i] == u"--operation")
            only = args[i + 1];
        else if (args[i] == u"--seed")
            seed = args[i + 1].toUInt();
    }
    if (!only.isEmpty() && !operations().contains(only)) {
        std::fprintf(stderr, "Tuntematon toiminto: %s\n", qPrintable(only));
        return 2;
    }

    QTextStream out(stdout);
    out << "siemen " << seed << ", " << trials << " koetta toimintoa kohden"
        << (cache ? ", välimuistin flushaamaton sisältö menetetään" : ", prosessi tapetaan") << Qt::endl;
    Trials t { app.applicationFilePath(), trials, QRandomGenerator(seed), cache };
    if (!t.prepare(demo)) {
        out << "Lähtötilanteen kirjoja ei voitu tehdä: " << demo << Qt::endl;
        return 2;
    }
    bool ok = true;
    for (const QString& name : operations().keys())
        if (only.isEmpty() || only == name)
            ok = t.run(name) && ok;
    return ok ? 0 : 1;
}
