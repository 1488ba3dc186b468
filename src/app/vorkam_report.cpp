// vorkam_report: writes a report of an association's books as PDF, CSV or XLSX without a
// window, computing its work table first exactly as the report's window does.
//
//   vorkam_report BOOKS.mdb REPORT [--from d.M.yyyy --to d.M.yyyy] [--account N]
//                 [--kind normal|opening|closing] [--template NAME] [--accounts] [--groups-only]
//                 [--narrow] (--pdf F | --csv F | --xlsx F)
//   vorkam_report OLD.mdb muunna      converts old Jet books into Vorkam's format
//   vorkam_report BOOKS.mdb tarkistus prints the findings of the voucher check (exit 1 with any)
//   vorkam_report BOOKS.mdb tiliote FILE --account N [--tallenna]
//                                     prints (and stores) the vouchers a bank statement proposes
#include "accounts/AccountLookup.h"
#include "app/ReportCatalog.h"
#include "banking/BankImport.h"
#include "core/ComputedEntries.h"
#include "core/DatabaseError.h"
#include "core/DatabaseFile.h"
#include "core/Dates.h"
#include "core/Dialogs.h"
#include "core/JetConversion.h"
#include "core/ProgramInfo.h"
#include "core/ProgramSettings.h"
#include "core/Schema.h"
#include "printing/CsvWriter.h"
#include "printing/PdfWriter.h"
#include "printing/ReportEngine.h"
#include "printing/ReportError.h"
#include "printing/XlsxWriter.h"
#include "statements/ProfitEntries.h"
#include "vouchers/cTositeTarkistus.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QSqlDatabase>
#include <cstdio>
#include <functional>

namespace {

enum Exit { Ok = 0, Failed = 1, Usage = 2, BadBooks = 3 };

const QString ConvertCommand = QStringLiteral("muunna");
const QString CheckCommand = QStringLiteral("tarkistus");
const QString StatementCommand = QStringLiteral("tiliote");

void say(FILE* stream, const QString& text)
{
    std::fputs(text.toLocal8Bit().constData(), stream);
    std::fputc('\n', stream);
}

// Messages of the logic classes go to the error stream; nobody is there to answer a question.
class ConsoleDialogs final : public Dialogs {
public:
    void information(const QString& text) override { say(stderr, text); }
    void plain(const QString& text) override { say(stderr, text); }
    void error(const QString& text) override { say(stderr, text); }
    bool question(const QString& text) override
    {
        say(stderr, text + QStringLiteral(" (ei)"));
        return false;
    }
    std::optional<QString> input(const QString&, const QString&) override { return std::nullopt; }
    QString openFileName(const QString&, const QString&, const QString&) override { return {}; }
    QString saveFileName(const QString&, const QString&, const QString&) override { return {}; }
    void beep() override { }
    void openUrl(const QUrl&) override { }
};

QString usage()
{
    QString text = QStringLiteral(
        "Käyttö: vorkam_report KIRJANPITO.mdb RAPORTTI [--from p.k.vvvv --to p.k.vvvv] [--account N]\n"
        "                      [--kind normal|opening|closing] [--template MALLI] [--accounts] "
        "[--groups-only] [--narrow]\n"
        "                      (--pdf TIEDOSTO | --csv TIEDOSTO | --xlsx TIEDOSTO)\n"
        "       vorkam_report VANHA.mdb muunna  (muuntaa vanhan Jet-tietokannan Vorkamin muotoon)\n"
        "       vorkam_report KIRJANPITO.mdb tarkistus  (tositteiden tarkistus; paluuarvo 1, kun puutteita "
        "on)\n"
        "       vorkam_report KIRJANPITO.mdb tiliote TILIOTE --account N [--tallenna]\n"
        "                      (tiliotteen rivien tositeehdotukset; --tallenna tallentaa ne)\n"
        "Raportit:\n");
    for (const ReportCatalog::Entry& e : ReportCatalog::entries())
        text += QStringLiteral("  %1  %2\n").arg(e.name, -10).arg(e.description);
    return text;
}

struct Arguments {
    QString books;
    QString report;
    ReportCatalog::Options options;
    QString format; // "pdf", "csv", "xlsx"
    QString output;
    QString statement; // the bank statement file of "tiliote"
    bool store = false; // --tallenna
};

// Reads the command line; gives a Finnish message when it is not right.
QString parse(const QStringList& args, Arguments& a)
{
    QStringList positional;
    for (int i = 1; i < args.size(); ++i) {
        const QString& arg = args.at(i);
        if (!arg.startsWith(QLatin1String("--"))) {
            positional.append(arg);
            continue;
        }
        if (arg == u"--help")
            return QStringLiteral("help");
        if (arg == u"--version")
            return QStringLiteral("version");
        if (arg == u"--tallenna") {
            a.store = true;
            continue;
        }
        if (arg == u"--accounts" || arg == u"--groups-only" || arg == u"--narrow") {
            (arg == u"--accounts"        ? a.options.perAccount
                    : arg == u"--narrow" ? a.options.narrow
                                         : a.options.groupsOnly)
                = true;
            continue;
        }
        if (i + 1 >= args.size())
            return QStringLiteral("Valitsimelta %1 puuttuu arvo.").arg(arg);
        const QString value = args.at(++i);
        if (arg == u"--from" || arg == u"--to") {
            const QDate d = Dates::parse(value);
            if (!d.isValid())
                return QStringLiteral("Päivämäärä %1 ei ole muotoa p.k.vvvv (esimerkiksi 31.12.2011).")
                    .arg(value);
            (arg == u"--from" ? a.options.from : a.options.to) = d;
        } else if (arg == u"--account") {
            bool ok = false;
            const int n = value.toInt(&ok);
            if (!ok || n <= 0)
                return QStringLiteral("Tilinumero %1 ei ole numero.").arg(value);
            a.options.account = n;
        } else if (arg == u"--kind") {
            if (value != u"normal" && value != u"opening" && value != u"closing")
                return QStringLiteral("Vientien laji on normal, opening tai closing, ei %1.").arg(value);
            a.options.kind = value;
        } else if (arg == u"--template") {
            a.options.templateName = value;
        } else if (arg == u"--pdf" || arg == u"--csv" || arg == u"--xlsx") {
            if (!a.format.isEmpty())
                return QStringLiteral("Anna vain yksi tulostiedosto (--pdf, --csv tai --xlsx).");
            a.format = arg.mid(2);
            a.output = value;
        } else {
            return QStringLiteral("Valitsinta %1 ei ole.").arg(arg);
        }
    }
    if (positional.size() == 3 && positional.at(1) == StatementCommand)
        a.statement = positional.takeLast();
    if (positional.size() != 2)
        return QStringLiteral("Anna kirjanpidon tiedosto ja raportin nimi.");
    a.books = positional.at(0);
    a.report = positional.at(1);
    const bool noOptions = a.format.isEmpty() && !a.options.from.isValid() && !a.options.account
        && a.options.kind.isEmpty() && !a.options.to.isValid();
    if (a.report == StatementCommand) {
        if (a.statement.isEmpty() || !a.options.account)
            return QStringLiteral(
                "Anna tiliotteen tiedosto ja pankkitilin numero: tiliote TIEDOSTO --account N.");
        return a.format.isEmpty() && !a.options.from.isValid() && a.options.kind.isEmpty()
            ? QString()
            : QStringLiteral("Tiliotteen tuonti käyttää vain valitsimia --account ja --tallenna.");
    }
    if (a.store)
        return QStringLiteral("Valitsin --tallenna kuuluu tiliotteen tuontiin.");
    if (a.report == ConvertCommand)
        return noOptions ? QString() : QStringLiteral("Muunnos ei käytä valitsimia.");
    if (a.report == CheckCommand)
        return noOptions ? QString() : QStringLiteral("Tarkistus ei käytä valitsimia.");
    if (a.format.isEmpty())
        return QStringLiteral("Anna tulostiedosto: --pdf, --csv tai --xlsx.");
    if (a.options.from.isValid() != a.options.to.isValid())
        return QStringLiteral("Anna jakso kokonaan: sekä --from että --to.");
    if (a.options.from.isValid() && a.options.from > a.options.to)
        return QStringLiteral("Alkupäivämäärä on loppupäivämäärän jälkeen.");
    return {};
}

QString unusedOption(const ReportCatalog::Entry& e, const ReportCatalog::Options& o)
{
    const auto refuse = [&e](const char* option) {
        return QStringLiteral("Raportti %1 ei käytä valitsinta %2.").arg(e.name, QLatin1String(option));
    };
    if (o.from.isValid() && !e.takesPeriod)
        return refuse("--from/--to");
    if (o.account && !e.takesAccount)
        return refuse("--account");
    if (!o.kind.isEmpty() && !e.takesKind)
        return refuse("--kind");
    if (!e.takesTemplate && (!o.templateName.isEmpty() || o.perAccount || o.groupsOnly || o.narrow))
        return refuse("--template/--accounts/--groups-only/--narrow");
    return {};
}

// Why the file cannot be read as an association's books; "" when it can be opened.
QString booksProblem(const QString& path)
{
    const OpenResult seen = DatabaseFile::examine(path);
    switch (seen.error) {
    case DbError::None:
        return {};
    case DbError::FileNotFound:
    case DbError::InvalidPath:
        return QStringLiteral("Kirjanpitoa %1 ei löydy.").arg(path);
    case DbError::Unreadable:
        return QStringLiteral("Kirjanpitoa %1 ei voi lukea: käyttöoikeus puuttuu.").arg(path);
    case DbError::JetFormat:
        return QStringLiteral(
            "Tiedosto %1 on vanhan ohjelman Jet-tietokanta. vorkam_report lukee vain Vorkamin "
            "kirjanpitoja: muunna se ensin komennolla vorkam_report %1 muunna")
            .arg(path);
    default:
        break;
    }
    return QStringLiteral("Tiedosto %1 ei ole Vorkamin kirjanpito tai se on vioittunut.").arg(path);
}

// Converts old Jet books in place and prints what was copied, table by table.
int convert(const QString& path)
{
    const QString books = QFileInfo(path).absoluteFilePath();
    const OpenResult seen = DatabaseFile::examine(books);
    if (seen.error != DbError::JetFormat) {
        say(stderr,
            seen.error == DbError::None
                ? QStringLiteral("Tiedosto %1 on jo Vorkamin muodossa: muunnettavaa ei ole.").arg(books)
                : QStringLiteral("Tiedosto %1 ei ole vanhan muodon (Jet) tietokanta.").arg(books));
        return BadBooks;
    }
    const JetConversion::Result r = JetConversion().convert(books);
    if (!r.ok) {
        say(stderr, r.message + QStringLiteral("\nAlkuperäistä tiedostoa ei ole muutettu."));
        return BadBooks;
    }
    say(stdout, r.report());
    if (!r.reportFile.isEmpty())
        say(stdout, QStringLiteral("Raportti: %1").arg(QDir::toNativeSeparators(r.reportFile)));
    return Ok;
}

// Prints each finding of the voucher check on its own line, as the findings window lists them.
// Opens the books (for reading only when asked), refuses a file that is not Vorkam's books,
// loads their settings and runs `work` on them; the connection is closed afterwards.
// A report opens the books for reading only and without the whole-file check, so that a big book
// starts as fast as a small one; damage met while reading is told all the same (exit 3).
int withBooks(const QString& books, bool readOnly, const std::function<int(const QSqlDatabase&)>& work,
    bool check = true)
{
    const QString connection = QStringLiteral("vorkam_report");
    const OpenResult opened = DatabaseFile::open(books, connection, readOnly, check);
    if (!opened) {
        say(stderr,
            QStringLiteral("Tiedosto %1 ei ole Vorkamin kirjanpito tai se on vioittunut.\n%2")
                .arg(books, opened.message));
        return BadBooks;
    }
    int rc = Ok;
    {
        const QSqlDatabase db = QSqlDatabase::database(connection, false);
        const QStringList missing = Schema::missingCoreTables(db);
        if (!missing.isEmpty()) {
            say(stderr,
                QStringLiteral("Tiedosto %1 ei ole Vorkamin kirjanpito (taulut %2 puuttuvat).")
                    .arg(books, missing.join(QStringLiteral(", "))));
            rc = BadBooks;
        } else {
            ProgramSettings::loadBookkeeping(db, books);
            rc = work(db);
        }
    }
    DatabaseFile::close(connection);
    if (DatabaseFile::damageSeen()) {
        say(stderr,
            QStringLiteral("Tiedosto %1 ei ole Vorkamin kirjanpito tai se on vioittunut.").arg(books));
        return BadBooks;
    }
    return rc;
}

// Orphan entries are removed as the window does, unless the books are open for reading only.
int check(const QString& path)
{
    const QString books = QFileInfo(path).absoluteFilePath();
    if (const QString problem = booksProblem(books); !problem.isEmpty()) {
        say(stderr, problem);
        return BadBooks;
    }
    const bool readOnly = DatabaseFile::isReadOnly(books);
    return withBooks(books, readOnly, [&](const QSqlDatabase& db) {
        try {
            const std::vector<cTositeTarkistusVirhe> virheet = cTositeTarkistus(db).Tarkista(!readOnly);
            for (const cTositeTarkistusVirhe& v : virheet)
                say(stdout, v.rivi());
            if (virheet.empty())
                say(stdout, cTositeTarkistus::virheeton());
            return virheet.empty() ? int(Ok) : int(Failed);
        } catch (const DatabaseError& e) {
            say(stderr, e.message(QStringLiteral("Tositteiden tarkistus ei onnistunut.")));
            return int(BadBooks);
        }
    });
}

// Prints the voucher each line of a bank statement proposes and, with --tallenna, stores them.
int importStatement(const Arguments& a)
{
    const BankReadResult read = BankStatements::readFile(a.statement);
    if (!read.statement) {
        say(stderr, read.error);
        return read.fileError ? BadBooks : Failed;
    }
    const QString books = QFileInfo(a.books).absoluteFilePath();
    if (const QString problem = booksProblem(books); !problem.isEmpty()) {
        say(stderr, problem);
        return BadBooks;
    }
    if (a.store && DatabaseFile::isReadOnly(books)) {
        say(stderr,
            QStringLiteral("Kirjanpito %1 on vain luettavissa: tositteita ei voi tallentaa.").arg(books));
        return BadBooks;
    }
    return withBooks(books, !a.store, [&](const QSqlDatabase& db) {
        if (Schema::tableMissing(db, QStringLiteral("BankLines"))) {
            say(stderr,
                QStringLiteral("Kirjanpito %1 on vanhempaa muotoa. Avaa se kerran Vorkamissa, joka päivittää "
                               "sen, ja tuo tiliote sitten uudelleen.")
                    .arg(books));
            return int(BadBooks);
        }
        try {
            const BookkeepingSettings& year = ProgramSettings::bookkeeping();
            AccountLookup chart;
            chart.load(db);
            const qint32 bank = chart.resolve(QString::number(*a.options.account));
            if (!bank) {
                say(stderr, QStringLiteral("Tiliä %1 ei ole tilikartassa.").arg(*a.options.account));
                return int(Failed);
            }
            BankImport::Plan plan
                = BankImport::propose(db, *read.statement, bank, year.TilikausiAlku, year.TilikausiLoppu);
            if (!plan.error.isEmpty()) {
                say(stderr, plan.error);
                return int(Failed);
            }
            if (a.store && !plan.suspenseAccount && BankImport::needsSuspense(plan)) {
                const BankImport::SuspenseOffer offer = BankImport::suspenseOffer(db);
                const BankImport::CreatedSuspense created = BankImport::createSuspenseAccount(db, offer);
                say(stdout, BankImport::suspenseCreatedText(offer, created));
                chart.load(db);
                plan
                    = BankImport::propose(db, *read.statement, bank, year.TilikausiAlku, year.TilikausiLoppu);
            }
            for (const BankImport::Proposal& p : plan.proposals)
                say(stdout, BankImport::lineText(chart, p));
            if (!a.store)
                return int(Ok);
            if (BankImport::newLines(plan).empty()) {
                say(stdout, QStringLiteral("Tiliotteella ei ole uusia rivejä: mitään ei tallennettu."));
                return int(Ok);
            }
            const BankImport::Stored stored = BankImport::store(db, plan, BankImport::newLines(plan));
            if (!stored.error.isEmpty()) {
                say(stderr, stored.error);
                return int(Failed);
            }
            say(stdout, BankImport::storedText(stored));
            return int(Ok);
        } catch (const DatabaseError& e) {
            say(stderr, e.message(QStringLiteral("Tiliotteen tuonti ei onnistunut; mitään ei tallennettu.")));
            return int(BadBooks);
        }
    });
}

int run(const Arguments& a)
{
    if (a.report == ConvertCommand)
        return convert(a.books);
    if (a.report == CheckCommand)
        return check(a.books);
    if (a.report == StatementCommand)
        return importStatement(a);
    const ReportCatalog::Entry* entry = ReportCatalog::find(a.report);
    if (!entry) {
        say(stderr, QStringLiteral("Raporttia %1 ei ole.").arg(a.report));
        say(stderr, usage());
        return Usage;
    }
    if (const QString unused = unusedOption(*entry, a.options); !unused.isEmpty()) {
        say(stderr, unused);
        return Usage;
    }
    if (entry->document && a.format == u"pdf") {
        say(stderr,
            QStringLiteral(
                "Raportille %1 ei vielä ole tulostusasettelua, joten PDF-tiedostoa ei voi kirjoittaa. "
                "Kirjoita sen rivit valitsimella --csv tai --xlsx.")
                .arg(entry->name));
        return Usage;
    }
    const QString books = QFileInfo(a.books).absoluteFilePath();
    if (const QString problem = booksProblem(books); !problem.isEmpty()) {
        say(stderr, problem);
        return BadBooks;
    }
    return withBooks(
        books, true,
        [&](const QSqlDatabase& db) {
            // The reports tell computed entries from booked ones by the automatic flags, which an
            // older layout lacks until Vorkam has brought it up to date.
            for (const auto& [table, field] :
                { std::pair("to", "toAutomaatti"), std::pair("vi", "viAutomaatti"),
                    std::pair("toE", "toEAutomaatti"), std::pair("viE", "viEAutomaatti") })
                if (Schema::fieldMissing(db, QLatin1String(table), QLatin1String(field))) {
                    say(stderr,
                        QStringLiteral("Kirjanpito %1 on vanhempaa muotoa. Avaa se kerran Vorkamissa, joka "
                                       "päivittää sen, ja aja raportti sitten uudelleen.")
                            .arg(books));
                    return int(BadBooks);
                }
            try {
                std::unique_ptr<ReportDocument> document;
                if (entry->document) {
                    document = entry->document(db, a.options);
                } else {
                    ReportJob job = entry->prepare(db, a.options);
                    if (a.options.from.isValid()) {
                        job.periodStart = a.options.from;
                        job.periodEnd = a.options.to;
                    }
                    document = ReportEngine::run(db, job);
                }
                // Damage the engine met but read past is not printed.
                if (DatabaseFile::damageSeen())
                    return int(Failed);
                // A spreadsheet or a CSV file has rows, not pages.
                QString size;
                if (a.format == u"pdf") {
                    PdfWriter::write(*document, a.output);
                    size = QStringLiteral("%1 sivua").arg(document->pageCount());
                } else {
                    const int rows = a.format == u"csv" ? CsvWriter::write(*document, a.output)
                                                        : XlsxWriter::write(*document, a.output);
                    size = QStringLiteral("%1 riviä").arg(rows);
                }
                say(stdout,
                    QStringLiteral("Kirjoitettiin %1 (%2).")
                        .arg(QDir::toNativeSeparators(QFileInfo(a.output).absoluteFilePath()), size));
                return int(Ok);
            } catch (const DatabaseError& e) {
                say(stderr,
                    e.message(QStringLiteral("Raportin %1 tietoja ei voitu laskea.").arg(entry->name)));
            } catch (const ReportError& e) {
                say(stderr, e.text());
            }
            return int(Failed);
        },
        false);
}

// Qt's remarks about the desktop session it runs without are of no use on a command line.
void quietHandler(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type != QtDebugMsg && type != QtInfoMsg && !message.startsWith(QLatin1String("QStandardPaths:")))
        say(stderr, message);
}

} // namespace

int main(int argc, char* argv[])
{
    qInstallMessageHandler(quietHandler);
    // Text is measured with the report fonts, which needs a GUI application but no display.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("Vorkam"));
    DatabaseFile::watchForDamage();
    ConsoleDialogs dialogs;
    Dialogs::install(&dialogs);
    ComputedEntries::setSource(ProfitEntries::ofFiscalYear);

    Arguments a;
    const QString problem = parse(QCoreApplication::arguments(), a);
    int rc = Ok;
    if (problem == u"help") {
        say(stdout, usage());
    } else if (problem == u"version") {
        say(stdout,
            QStringLiteral("vorkam_report %1 (%2)\n%3")
                .arg(ProgramInfo::version(), ProgramInfo::licence(), ProgramInfo::librariesText()));
    } else if (!problem.isEmpty()) {
        say(stderr, problem);
        say(stderr, usage());
        rc = Usage;
    } else {
        rc = run(a);
    }
    Dialogs::install(nullptr);
    return rc;
}
