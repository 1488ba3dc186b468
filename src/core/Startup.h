#pragma once

#include <QDate>
#include <QString>
#include <functional>

// The start-up sequence of the main window, without the window: currency check, installation
// settings, the association choice, opening and checking the database (read-only file,
// missing file and default database, repair of a damaged file), the schema upgrade and the
// bookkeeping settings. All messages go through Dialogs.
class Startup final {
public:
    struct Result {
        bool databaseOpen = false; // opened cleanly and checked
        bool defaultTaken = false; // the default database replaced a missing one
        bool repaired = false; // the file was damaged; the repair ran (successfully or not)
        bool repairedOpen = false; // the repaired file is open for this run, not yet upgraded
        bool readOnly = false; // opened for reading only: nothing is written to the books
        bool converted = false; // an old-format file was converted in this start
        bool upgraded = false; // UpdateDatabase ran without error
        QString caption; // the main window's caption
    };

    // How the currency check formats an amount; the real one uses the system locale.
    std::function<QString()> formatCurrency;
    // The date the default fiscal years are computed from.
    QDate today = QDate::currentDate();

    Startup();
    Result run();

    static QString caption(bool databaseOpen, bool readOnly = false);
    static QString currencyWarning();

    // Opens the books at `path` as connection `connection` and checks them as the start does:
    // a read-only file or folder, a missing file (with the default database offered when
    // `offerDefault`; `path` then names it), an old Jet file, a damaged file and its repair, and
    // a file without Vorkam's tables. True when the connection is open on books Vorkam can use;
    // the caller closes the connection either way. The settings window checks a newly chosen
    // database with it.
    static bool openAndCheck(QString& path, const QString& connection, bool offerDefault, Result& result);

private:
    // The default database is the user's copy of the program's demo association, made when it
    // is missing; settings naming the program's own demo are pointed at that copy.
    static void provideDemo(QString& path, Result& result);
    static bool openFile(QString& path, const QString& connection, bool offerDefault, Result& result);
    // The user was asked about converting an old-format file; true when `path` now holds the
    // converted books.
    static bool convertJetFile(const QString& path, Result& result);
    // True when the repaired file took the damaged one's place and is open.
    static bool repair(const QString& path, const QString& connection, Result& result);
};
