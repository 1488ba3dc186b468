#pragma once

#include <QDate>
#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <functional>

// The settings window's values as its controls hold them, and the rules of its Save: the
// installation settings, a newly chosen database checked as at start, and the bookkeeping
// settings key by key with the messages of the fields that cannot be stored.
struct SettingsForm {
    // Installation settings.
    QString Database;
    QString DatabaseBackup;
    bool MultiDb = false;
    // Bookkeeping settings, as typed.
    QString TilikausiAlku;
    QString EdTilikausiAlku;
    QString TilikausiLoppu;
    QString EdTilikausiLoppu;
    qint32 LaskettavaTili = 0; // tlID, 0 = no selection
    qint32 VoittoTaseella = 0;
    qint32 Selvittelytili = 0;
    QString Email;
    QString SMTP;
    bool VaakaTulostus = false;
    bool VanhatMallit = false;
    bool VanhatTositteet = false;
    bool AutomaattisestiUusiTosite = false;
    QString Fontti;
    QString FonttiKoko;
    QString MargYla;
    QString MargAla;
    QString MargVas;
    QString MargOik;
    QString Seurannimi;

    bool operator==(const SettingsForm&) const = default;

    // The settings in force, as the window shows them.
    static SettingsForm current();

    // One item of the account lists: "tlNumero tlNimi", keeping tlID.
    struct Account {
        qint32 id = 0;
        QString text;
    };
    // Every account, by number. Throws DatabaseError.
    static QList<Account> accounts(const QSqlDatabase& db);

    // What is wrong with a fiscal year and the one before it, in Finnish; empty when nothing.
    // A year checked (`current`, `previous`) ends after it starts and lasts at most 18 months;
    // either checked, the previous ends before the current starts.
    static QString fiscalYearProblem(const QDate& start, const QDate& end, const QDate& previousStart,
        const QDate& previousEnd, bool current, bool previous);

    struct Saved {
        // Controls whose values were refused, in the order of their messages; they keep what
        // was stored before.
        QStringList refused;
        // Nothing was stored: the new database could not be used, or its change was stopped.
        bool stopped = false;
        // The Database setting now names other books: the program is to end.
        bool databaseChanged = false;
    };

    // Save: a newly chosen database is first opened and checked as at start (nothing is stored
    // when it cannot be used); `beforeDatabaseChange` then runs (the main window closes its
    // working windows; false stops the save). Then the installation settings are written, and
    // the bookkeeping settings into `books` (the books in use, when open for writing) in one
    // transaction, in their fixed order; every stored value takes effect at once. When the
    // database was changed the program is told to end.
    Saved save(const QSqlDatabase& books, const std::function<bool()>& beforeDatabaseChange = {}) const;
};
