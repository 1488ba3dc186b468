#include "core/ProgramSettings.h"

#include "core/Dates.h"
#include "core/Paths.h"
#include "core/SettingsStore.h"

#include <QFileInfo>

namespace {

InstallationSettings g_installation;
BookkeepingSettings g_bookkeeping = BookkeepingSettings::defaults(QDate::currentDate());
ReportMargins g_margins;

constexpr int TwipsPerMarginUnit = 48;

QDate readDate(const SettingsStore& store, const QString& key, const QDate& fallback)
{
    const QDate d = Dates::parse(store.read(key, Dates::format(fallback)));
    return d.isValid() ? d : fallback;
}

qint64 readNumber(const SettingsStore& store, const QString& key, qint64 fallback)
{
    return ProgramSettings::numberValue(store.read(key, QString::number(fallback)));
}

QString yesNo(bool value) { return value ? QStringLiteral("1") : QStringLiteral("0"); }

} // namespace

BookkeepingSettings BookkeepingSettings::defaults(const QDate& today)
{
    BookkeepingSettings s;
    s.TilikausiAlku = Dates::yearStart(today);
    s.TilikausiLoppu = Dates::yearEnd(today);
    s.EdTilikausiAlku = QDate(today.year() - 1, 1, 1);
    // Deliberately the same day: a database without the key has a one-day previous year
    // until real dates are stored.
    s.EdTilikausiLoppu = QDate(today.year() - 1, 1, 1);
    return s;
}

namespace ProgramSettings {

InstallationSettings& installation() { return g_installation; }
BookkeepingSettings& bookkeeping() { return g_bookkeeping; }
ReportMargins& reportMargins() { return g_margins; }

qint64 numberValue(const QString& text)
{
    const QString t = text.trimmed();
    int i = 0;
    if (i < t.size() && (t.at(i) == u'-' || t.at(i) == u'+'))
        ++i;
    const int digitsStart = i;
    while (i < t.size() && t.at(i).isDigit() && t.at(i).unicode() < 128 && i - digitsStart < 18)
        ++i;
    if (i == digitsStart)
        return 0;
    return t.left(i).toLongLong();
}

QString loadInstallation()
{
    IniSettingsStore ini(Paths::iniFile());
    QString problem = ini.loadProblem();
    bool writeFailed = false;

    writeFailed |= !ini.write(QStringLiteral("AppPath"), Paths::programDir());

    InstallationSettings& s = g_installation;
    s.Database = ini.read(QStringLiteral("Database"), QString());
    if (s.Database.isEmpty()) {
        // The first start opens the user's own copy of the demo association.
        s.Database = Paths::defaultDatabase();
        writeFailed |= !ini.write(QStringLiteral("Database"), s.Database);
    }
    s.DatabaseBackup = ini.read(QStringLiteral("DatabaseBackup"), QString());
    if (s.DatabaseBackup.isEmpty()) {
        s.DatabaseBackup = Paths::defaultBackupDir();
        writeFailed |= !ini.write(QStringLiteral("DatabaseBackup"), s.DatabaseBackup);
    }
    s.MultiDb = numberValue(ini.read(QStringLiteral("MultiDb"), QStringLiteral("0"))) != 0;
    // Read only: the default is not written into the ini file.
    s.HuoltoOsoite = ini.read(QStringLiteral("HuoltoOsoite"), QString()).trimmed();
    if (s.HuoltoOsoite.isEmpty())
        s.HuoltoOsoite = InstallationSettings().HuoltoOsoite;

    if (writeFailed && problem.isEmpty())
        problem = QStringLiteral("Asetustiedostoon %1 ei voi kirjoittaa. Asetuksia ei tallenneta.")
                      .arg(Paths::iniFile());
    return problem;
}

bool saveDatabase()
{
    IniSettingsStore ini(Paths::iniFile());
    return ini.loadProblem().isEmpty() && ini.write(QStringLiteral("Database"), g_installation.Database);
}

bool saveInstallation()
{
    IniSettingsStore ini(Paths::iniFile());
    if (!ini.loadProblem().isEmpty())
        return false;
    bool ok = ini.write(QStringLiteral("Database"), g_installation.Database);
    ok &= ini.write(QStringLiteral("DatabaseBackup"), g_installation.DatabaseBackup);
    ok &= ini.write(QStringLiteral("MultiDb"), yesNo(g_installation.MultiDb));
    return ok;
}

void loadBookkeeping(const QSqlDatabase& db, const QString& databasePath, const QDate& today)
{
    const DbSettingsStore store(db);
    const BookkeepingSettings d = BookkeepingSettings::defaults(today);
    BookkeepingSettings& s = g_bookkeeping;

    s.TilikausiAlku = readDate(store, QStringLiteral("TilikausiAlku"), d.TilikausiAlku);
    s.TilikausiLoppu = readDate(store, QStringLiteral("TilikausiLoppu"), d.TilikausiLoppu);
    s.EdTilikausiAlku = readDate(store, QStringLiteral("EdTilikausiAlku"), d.EdTilikausiAlku);
    s.EdTilikausiLoppu = readDate(store, QStringLiteral("EdTilikausiLoppu"), d.EdTilikausiLoppu);
    s.LaskettavaTili = qint32(readNumber(store, QStringLiteral("LaskettavaTili"), 0));
    s.VoittoTaseella = qint32(readNumber(store, QStringLiteral("VoittoTaseella"), 0));
    s.Selvittelytili = qint32(readNumber(store, QStringLiteral("Selvittelytili"), 0));
    s.VaakaTulostus = readNumber(store, QStringLiteral("VaakaTulostus"), 0) != 0;
    s.VanhatMallit = readNumber(store, QStringLiteral("VanhatMallit"), 0) != 0;
    s.VanhatTositteet = readNumber(store, QStringLiteral("VanhatTositteet"), 0) != 0;
    s.AutomaattisestiUusiTosite = readNumber(store, QStringLiteral("AutomaattisestiUusiTosite"), 0) != 0;
    s.Email = store.read(QStringLiteral("Email"), QString());
    s.SMTP = store.read(QStringLiteral("SMTP"), QString());
    s.MargOik = qint16(readNumber(store, QStringLiteral("MargOik"), 0));
    s.MargVas = qint16(readNumber(store, QStringLiteral("MargVas"), 0));
    s.MargYla = qint16(readNumber(store, QStringLiteral("MargYla"), 0));
    s.MargAla = qint16(readNumber(store, QStringLiteral("MargAla"), 0));
    s.Fontti = store.read(QStringLiteral("Fontti"), d.Fontti);
    s.FonttiKoko = qint16(readNumber(store, QStringLiteral("FonttiKoko"), d.FonttiKoko));
    s.Seurannimi = store.read(QStringLiteral("Seurannimi"), QString()).trimmed();
    if (s.Seurannimi.isEmpty())
        s.Seurannimi = QFileInfo(databasePath).completeBaseName();

    applyReportMargins();
}

void applyReportMargins()
{
    const BookkeepingSettings& s = g_bookkeeping;
    g_margins.bottom = s.MargAla * TwipsPerMarginUnit;
    g_margins.left = s.MargVas * TwipsPerMarginUnit;
    g_margins.right = s.MargOik * TwipsPerMarginUnit;
    g_margins.top = s.MargYla * TwipsPerMarginUnit;
}

bool saveBookkeeping(const QSqlDatabase& db)
{
    DbSettingsStore store(db);
    const BookkeepingSettings& s = g_bookkeeping;
    bool ok = true;
    ok &= store.write(QStringLiteral("TilikausiAlku"), Dates::format(s.TilikausiAlku));
    ok &= store.write(QStringLiteral("TilikausiLoppu"), Dates::format(s.TilikausiLoppu));
    ok &= store.write(QStringLiteral("EdTilikausiAlku"), Dates::format(s.EdTilikausiAlku));
    ok &= store.write(QStringLiteral("EdTilikausiLoppu"), Dates::format(s.EdTilikausiLoppu));
    ok &= store.write(QStringLiteral("LaskettavaTili"), QString::number(s.LaskettavaTili));
    ok &= store.write(QStringLiteral("VoittoTaseella"), QString::number(s.VoittoTaseella));
    ok &= store.write(QStringLiteral("Selvittelytili"), QString::number(s.Selvittelytili));
    ok &= store.write(QStringLiteral("VaakaTulostus"), yesNo(s.VaakaTulostus));
    ok &= store.write(QStringLiteral("VanhatMallit"), yesNo(s.VanhatMallit));
    ok &= store.write(QStringLiteral("VanhatTositteet"), yesNo(s.VanhatTositteet));
    ok &= store.write(QStringLiteral("AutomaattisestiUusiTosite"), yesNo(s.AutomaattisestiUusiTosite));
    ok &= store.write(QStringLiteral("Email"), s.Email);
    ok &= store.write(QStringLiteral("SMTP"), s.SMTP);
    ok &= store.write(QStringLiteral("MargOik"), QString::number(s.MargOik));
    ok &= store.write(QStringLiteral("MargVas"), QString::number(s.MargVas));
    ok &= store.write(QStringLiteral("MargYla"), QString::number(s.MargYla));
    ok &= store.write(QStringLiteral("MargAla"), QString::number(s.MargAla));
    ok &= store.write(QStringLiteral("Fontti"), s.Fontti);
    ok &= store.write(QStringLiteral("FonttiKoko"), QString::number(s.FonttiKoko));
    ok &= store.write(QStringLiteral("Seurannimi"), s.Seurannimi);
    return ok;
}

} // namespace ProgramSettings
