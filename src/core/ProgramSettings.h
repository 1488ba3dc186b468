#pragma once

#include <QDate>
#include <QSqlDatabase>
#include <QString>

// Installation settings: the ini file "lxvorkam.ini", section "VORKAM".
struct InstallationSettings {
    QString Database;
    QString DatabaseBackup;
    bool MultiDb = false;
    // Where the service file is mailed; an installation may point it at its own support.
    QString HuoltoOsoite = QStringLiteral("tuki@vorkam.fi");
};

// Bookkeeping settings: the association database's Settings table, section "VORKAM".
struct BookkeepingSettings {
    QDate TilikausiAlku;
    QDate TilikausiLoppu;
    QDate EdTilikausiAlku;
    QDate EdTilikausiLoppu;
    qint32 LaskettavaTili = 0;
    qint32 VoittoTaseella = 0;
    // tlID of the suspense account where bank statement lines wait for their account; 0: none.
    qint32 Selvittelytili = 0;
    bool VaakaTulostus = false;
    bool VanhatMallit = false;
    bool VanhatTositteet = false;
    bool AutomaattisestiUusiTosite = false;
    QString Email;
    QString SMTP;
    qint16 MargOik = 0;
    qint16 MargVas = 0;
    qint16 MargYla = 0;
    qint16 MargAla = 0;
    QString Fontti = QStringLiteral("Times New Roman");
    qint16 FonttiKoko = 10;
    // The association's name on reports and in the main window's caption.
    QString Seurannimi;

    // What a database without stored settings gets, computed from `today`.
    static BookkeepingSettings defaults(const QDate& today);
};

// Report margins in twips, set from the bookkeeping settings (each margin unit is 48 twips).
struct ReportMargins {
    int top = 0;
    int bottom = 0;
    int left = 0;
    int right = 0;
};

// The settings in force for this run of the program.
namespace ProgramSettings {

InstallationSettings& installation();
BookkeepingSettings& bookkeeping();
ReportMargins& reportMargins();

// Reads the ini file, writes AppPath, and fills and stores the defaults of an empty Database
// or DatabaseBackup. Returns "" or a message saying why the file could not be read or written.
QString loadInstallation();
// Writes the Database key; false when the ini file could not be written.
bool saveDatabase();
// Writes Database, DatabaseBackup and MultiDb.
bool saveInstallation();

// Reads every bookkeeping key in its order from the database's Settings table, with the
// defaults of a missing key, and applies the report margins. `databasePath` names the
// association when Seurannimi is not stored.
void loadBookkeeping(
    const QSqlDatabase& db, const QString& databasePath, const QDate& today = QDate::currentDate());
// Sets the report margins from the bookkeeping settings in force.
void applyReportMargins();
// Writes every bookkeeping key; false when any write failed.
bool saveBookkeeping(const QSqlDatabase& db);

// A yes/no or number setting is read as a number: the leading integer of the text, 0 when none.
qint64 numberValue(const QString& text);

} // namespace ProgramSettings
