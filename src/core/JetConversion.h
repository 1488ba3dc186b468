#pragma once

#include "core/Money.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <functional>

// Converts an association's books from an old Jet file into Vorkam's format: every table of
// Vorkam's layout that the old file has, every row with its ids, into a new book written in
// one transaction, then brought up to the current layout by the ordinary upgrade and checked.
// The converted book takes the old file's name, so the settings and the user's habits keep
// working; the old file itself is kept byte for byte beside it as NAME-jet.mdb. Any failure
// leaves the old file where it was and no new file behind.
class JetConversion final {
public:
    struct TableCount {
        QString table;
        qint64 read = 0;
        qint64 written = 0;
    };

    // Amounts of one entry table by side.
    struct Sums {
        Money debit; // "D"
        Money credit; // "K"
        Money other; // any other entry type
        bool operator==(const Sums&) const = default;
    };

    struct Result {
        bool ok = false;
        QString message; // Finnish: why the conversion was not made
        QString books; // the converted book: the old file's path
        QString original; // where the old file is kept
        QString reportFile; // the report beside the books; empty when it could not be written
        int jetVersion = 0;
        QDateTime when;
        QList<TableCount> tables;
        QStringList skippedTables; // tables Vorkam does not know: not copied
        QStringList extraFields; // "mr.mrtlID": copied although Vorkam's layout has no such field
        Sums entriesBefore, entriesAfter; // vi.viArvo
        Sums previousBefore, previousAfter; // viE.viEArvo
        QList<int> upgradeSteps; // steps of the upgrade that changed the converted book
        int timesDropped = 0; // date/time values whose time of day was left out

        // The conversion report, in Finnish.
        QString report() const;
    };

    // Free bytes in a folder; tests make it small. A negative value means "unknown".
    std::function<qint64(const QString& folder)> freeSpace;

    JetConversion();

    // Converts the Jet file at `path` in place as described above.
    Result convert(const QString& path) const;

    enum class Outcome { Converted, Declined, Failed };
    // The step Vorkam takes wherever it meets a Jet file in place of books: asks the user,
    // converts, and shows the report or what went wrong. After Converted, `path` holds the
    // converted books.
    static Outcome offer(const QString& path);

    // Where the old file of `path` is kept: NAME-jet.mdb beside it, NAME-jet-2.mdb and so on
    // when that is taken.
    static QString keptName(const QString& path);
    // The report beside the books: NAME-muunnos.txt, numbered likewise.
    static QString reportName(const QString& path);
};
