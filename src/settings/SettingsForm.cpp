#include "settings/SettingsForm.h"

#include "accounts/ChartOfAccounts.h"
#include "core/DatabaseError.h"
#include "core/DatabaseFile.h"
#include "core/Dates.h"
#include "core/Dialogs.h"
#include "core/Paths.h"
#include "core/ProgramSettings.h"
#include "core/SettingsStore.h"
#include "core/Startup.h"
#include "core/Transaction.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>

namespace {

const QString CheckConnection = QStringLiteral("vorkam_settings_check");
// Values of the Settings table are text(255).
constexpr int MaxValue = 255;

// The same file, however its path is written.
bool samePath(const QString& a, const QString& b)
{
    if (a == b)
        return true;
    const QFileInfo x(a), y(b);
    if (x.exists() && y.exists())
        return x.canonicalFilePath() == y.canonicalFilePath();
    return !a.isEmpty() && x.absoluteFilePath() == y.absoluteFilePath();
}

// A margin or a font size: digits only, and small enough for the report engine.
std::optional<qint16> digits(const QString& text)
{
    static const QRegularExpression onlyDigits(QStringLiteral("^[0-9]{1,5}$"));
    const QString t = text.trimmed();
    if (!onlyDigits.match(t).hasMatch())
        return std::nullopt;
    const int value = t.toInt();
    if (value > 32767)
        return std::nullopt;
    return qint16(value);
}

QString yesNo(bool value) { return value ? QStringLiteral("1") : QStringLiteral("0"); }

} // namespace

SettingsForm SettingsForm::current()
{
    const InstallationSettings& i = ProgramSettings::installation();
    const BookkeepingSettings& b = ProgramSettings::bookkeeping();
    SettingsForm f;
    f.Database = i.Database;
    f.DatabaseBackup = i.DatabaseBackup;
    f.MultiDb = i.MultiDb;
    f.TilikausiAlku = Dates::format(b.TilikausiAlku);
    f.EdTilikausiAlku = Dates::format(b.EdTilikausiAlku);
    f.TilikausiLoppu = Dates::format(b.TilikausiLoppu);
    f.EdTilikausiLoppu = Dates::format(b.EdTilikausiLoppu);
    f.LaskettavaTili = b.LaskettavaTili;
    f.VoittoTaseella = b.VoittoTaseella;
    f.Selvittelytili = b.Selvittelytili;
    f.Email = b.Email;
    f.SMTP = b.SMTP;
    f.VaakaTulostus = b.VaakaTulostus;
    f.VanhatMallit = b.VanhatMallit;
    f.VanhatTositteet = b.VanhatTositteet;
    f.AutomaattisestiUusiTosite = b.AutomaattisestiUusiTosite;
    f.Fontti = b.Fontti;
    f.FonttiKoko = QString::number(b.FonttiKoko);
    f.MargYla = QString::number(b.MargYla);
    f.MargAla = QString::number(b.MargAla);
    f.MargVas = QString::number(b.MargVas);
    f.MargOik = QString::number(b.MargOik);
    f.Seurannimi = b.Seurannimi;
    return f;
}

QList<SettingsForm::Account> SettingsForm::accounts(const QSqlDatabase& db)
{
    QList<Account> list;
    for (const ChartOfAccounts::Account& a : ChartOfAccounts::accounts(db))
        list.append({ a.id, a.caption() });
    return list;
}

QString SettingsForm::fiscalYearProblem(const QDate& start, const QDate& end, const QDate& previousStart,
    const QDate& previousEnd, bool current, bool previous)
{
    if (current && end <= start)
        return QStringLiteral("Tilikauden lopun tulee olla sen alun jälkeen.");
    if (current && end >= start.addMonths(18))
        return QStringLiteral("Tilikausi voi olla enintään 18 kuukautta.");
    if (previous && previousEnd <= previousStart)
        return QStringLiteral("Edellisen tilikauden lopun tulee olla sen alun jälkeen.");
    if (previous && previousEnd >= previousStart.addMonths(18))
        return QStringLiteral("Edellinen tilikausi voi olla enintään 18 kuukautta.");
    if ((current || previous) && previousEnd >= start)
        return QStringLiteral("Edellisen tilikauden tulee päättyä ennen tilikauden alkua.");
    return {};
}

namespace {

// The bookkeeping keys in the order they are stored, each checked first; a refused value is
// told and its key keeps what it had.
void saveBookkeeping(const SettingsForm& f, const QSqlDatabase& books, SettingsForm::Saved& saved)
{
    Dialogs& dialogs = Dialogs::instance();
    BookkeepingSettings next = ProgramSettings::bookkeeping();
    QList<QPair<QString, QString>> writes;
    const auto add = [&writes](const char* key, const QString& value) {
        writes.append({ QString::fromLatin1(key), value.left(MaxValue) });
    };
    // The fiscal years' dates: each read first, then the four together.
    struct YearDate {
        const QString& text;
        QDate& target;
        const char* key;
        const char* control;
        const char* message;
        QDate typed = {};
    };
    std::vector<YearDate> dates { { f.TilikausiAlku, next.TilikausiAlku, "TilikausiAlku", "tTilikausiAlku",
                                      "Syötä tilikauden aluksi päivämäärä." },
        { f.EdTilikausiAlku, next.EdTilikausiAlku, "EdTilikausiAlku", "tEdTilikausiAlku",
            "Syötä edellisen tilikauden aluksi päivämäärä." },
        { f.TilikausiLoppu, next.TilikausiLoppu, "TilikausiLoppu", "tTilikausiLoppu",
            "Syötä tilikauden lopuksi päivämäärä." },
        { f.EdTilikausiLoppu, next.EdTilikausiLoppu, "EdTilikausiLoppu", "tEdTilikausiLoppu",
            "Syötä edellisen tilikauden lopuksi päivämäärä." } };
    bool marginTold = false;
    const auto margin = [&](const QString& text, qint16& target, const char* key, const char* control) {
        const std::optional<qint16> value = digits(text);
        if (!value) {
            // One message for all margins typed wrong.
            if (!marginTold)
                dialogs.information(QStringLiteral("Syötä marginaaliksi ainoastaan numeroita."));
            marginTold = true;
            saved.refused.append(QString::fromLatin1(control));
            return;
        }
        target = *value;
        add(key, QString::number(*value));
    };

    for (YearDate& d : dates) {
        d.typed = Dates::parse(d.text.trimmed());
        if (!d.typed.isValid()) {
            dialogs.information(QString::fromUtf8(d.message));
            saved.refused.append(QString::fromLatin1(d.control));
        }
    }
    const auto chosen = [&](int i) {
        return dates[size_t(i)].typed.isValid() ? dates[size_t(i)].typed : dates[size_t(i)].target;
    };
    // A year is checked when its dates change: the stored years stand until then (a new book's
    // previous year is one day long until its real dates are stored).
    const auto changed = [&](int i) {
        const YearDate& d = dates[size_t(i)];
        return d.typed.isValid() && d.typed != d.target;
    };
    const QString yearProblem = SettingsForm::fiscalYearProblem(
        chosen(0), chosen(2), chosen(1), chosen(3), changed(0) || changed(2), changed(1) || changed(3));
    if (!yearProblem.isEmpty())
        dialogs.information(yearProblem + QStringLiteral("\nTilikausien päivämääriä ei tallennettu."));
    for (YearDate& d : dates) {
        if (!d.typed.isValid())
            continue;
        if (!yearProblem.isEmpty()) {
            saved.refused.append(QString::fromLatin1(d.control));
            continue;
        }
        d.target = d.typed;
        add(d.key, Dates::format(d.typed));
    }
    next.LaskettavaTili = f.LaskettavaTili;
    add("LaskettavaTili", QString::number(f.LaskettavaTili));
    next.VoittoTaseella = f.VoittoTaseella;
    add("VoittoTaseella", QString::number(f.VoittoTaseella));
    next.Selvittelytili = f.Selvittelytili;
    add("Selvittelytili", QString::number(f.Selvittelytili));
    next.Email = f.Email.trimmed().left(MaxValue);
    add("Email", next.Email);
    next.SMTP = f.SMTP.trimmed().left(MaxValue);
    add("SMTP", next.SMTP);
    next.VaakaTulostus = f.VaakaTulostus;
    add("VaakaTulostus", yesNo(f.VaakaTulostus));
    next.VanhatMallit = f.VanhatMallit;
    add("VanhatMallit", yesNo(f.VanhatMallit));
    next.VanhatTositteet = f.VanhatTositteet;
    add("VanhatTositteet", yesNo(f.VanhatTositteet));
    next.AutomaattisestiUusiTosite = f.AutomaattisestiUusiTosite;
    add("AutomaattisestiUusiTosite", yesNo(f.AutomaattisestiUusiTosite));
    if (!f.Fontti.trimmed().isEmpty()) {
        next.Fontti = f.Fontti.trimmed().left(MaxValue);
        add("Fontti", next.Fontti);
    }
    if (const std::optional<qint16> size = digits(f.FonttiKoko); size && *size > 0) {
        next.FonttiKoko = *size;
        add("FonttiKoko", QString::number(*size));
    } else {
        dialogs.information(QStringLiteral("Syötä kirjasimen kooksi numero."));
        saved.refused.append(QStringLiteral("cmbFonttiKoko"));
    }
    margin(f.MargYla, next.MargYla, "MargYla", "tMargYla");
    margin(f.MargAla, next.MargAla, "MargAla", "tMargAla");
    margin(f.MargVas, next.MargVas, "MargVas", "tMargVas");
    margin(f.MargOik, next.MargOik, "MargOik", "tMargOik");
    const QString name = f.Seurannimi.trimmed().left(MaxValue);
    add("Seurannimi", name);
    // An association without a name is shown by its file's name, as at start.
    next.Seurannimi = name.isEmpty() ? QFileInfo(books.databaseName()).completeBaseName() : name;

    const bool stored = tellIfFails(QStringLiteral("Asetuksia ei voitu tallentaa tietokantaan."), [&] {
        Transaction transaction(books);
        DbSettingsStore store(books);
        for (const auto& [key, value] : writes)
            if (!store.write(key, value))
                throw DatabaseError(QStringLiteral("Asetuksen %1 kirjoittaminen ei onnistunut.").arg(key));
        transaction.commitOrThrow();
    });
    if (!stored) {
        saved.stopped = true;
        return;
    }
    ProgramSettings::bookkeeping() = next;
    ProgramSettings::applyReportMargins();
}

} // namespace

SettingsForm::Saved SettingsForm::save(
    const QSqlDatabase& books, const std::function<bool()>& beforeDatabaseChange) const
{
    Saved saved;
    Dialogs& dialogs = Dialogs::instance();
    InstallationSettings& install = ProgramSettings::installation();

    // Other books are opened and checked as at start before anything is stored, so that a
    // name that leads nowhere never becomes the setting.
    const QString wanted = Database.trimmed();
    const bool changed = !samePath(wanted, install.Database);
    if (changed) {
        QString path = wanted;
        Startup::Result check;
        const bool usable = Startup::openAndCheck(path, CheckConnection, false, check);
        DatabaseFile::close(CheckConnection);
        if (!usable) {
            saved.refused.append(QStringLiteral("tDatabase"));
            saved.stopped = true;
            return saved;
        }
        if (beforeDatabaseChange && !beforeDatabaseChange()) {
            saved.stopped = true;
            return saved;
        }
    }

    // 1. The installation settings.
    InstallationSettings next = install;
    if (changed)
        next.Database = wanted;
    next.DatabaseBackup
        = DatabaseBackup.trimmed().isEmpty() ? Paths::defaultBackupDir() : DatabaseBackup.trimmed();
    next.MultiDb = MultiDb;
    if (next.Database != install.Database || next.DatabaseBackup != install.DatabaseBackup
        || next.MultiDb != install.MultiDb) {
        const InstallationSettings before = install;
        install = next;
        if (!ProgramSettings::saveInstallation()) {
            install = before;
            dialogs.error(
                QStringLiteral("Asetustiedostoon %1 ei voi kirjoittaa, joten asetuksia ei tallennettu.")
                    .arg(Paths::iniFile()));
            saved.stopped = true;
            return saved;
        }
    }

    // 3. The bookkeeping settings belong to the books they were shown from: after a change of
    // database they are kept in the books left, and the new books keep their own.
    if (books.isOpen() && !DatabaseFile::isReadOnly(books))
        saveBookkeeping(*this, books, saved);

    if (changed) {
        dialogs.information(QStringLiteral("Vorkam suljetaan, koska tietokanta on vaihdettu."));
        saved.databaseChanged = true;
    }
    return saved;
}
