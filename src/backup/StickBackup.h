#pragma once

#include "backup/Drives.h"
#include "backup/VerifiedCopy.h"

#include <QDate>
#include <QString>
#include <functional>

// The memory-stick backup of the books in use, step by step: find the stick, copy the books to
// it into the folder of the day, and compact the books. Each step closes the books first; the
// books are opened again by whoever needs them next.
class StickBackup final {
public:
    explicit StickBackup(const QString& books);

    const QString& books() const { return m_books; }
    bool booksExist() const;
    qint64 booksSize() const;

    enum class Found { NotFound, NoSpace, Ready };
    // Step 1: the first suitable stick, and whether its free space is strictly larger than the
    // books.
    Found find();
    const Volume& stick() const { return m_stick; }

    struct Copied {
        bool ok = false;
        bool stickLost = false; // the stick must be found again before another try
        QString message; // Finnish, when not ok
        QString path; // the copy on the stick, when ok
    };
    // Step 2: copies the books into stick / "Vorkam" / YYYYMMDD / file name, replacing a copy of
    // the same day only with a complete, checked copy.
    Copied copy(const VerifiedCopy::Progress& progress = {});

    struct Compacted {
        bool ok = false;
        QString text; // the text of step 5
    };
    // Step 4: compacts the books into a new file beside them and puts it in their place. A failure
    // leaves the books as they were.
    Compacted compact();

    // The day of the copy's folder.
    QDate today = QDate::currentDate();
    // Renames `from` over `to`: 0 or the system's error number. Tests make it fail.
    std::function<int(const QString& from, const QString& to)> renameOver;
    // A new unique file name in `folder` (the file made and deleted again): 0 or the system's
    // error number. Tests make it fail.
    std::function<int(const QString& folder, const QString& prefix, QString* name)> temporaryName;

private:
    QString m_books;
    Volume m_stick;
    bool m_found = false;
};
