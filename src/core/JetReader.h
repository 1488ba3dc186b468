#pragma once

#include "core/JetBooks.h"

#include <QByteArray>
#include <QDate>
#include <QString>
#include <QStringList>

// Reads the tables of an old Jet database (Jet 3 and Jet 4 .mdb files) with mdbtools' libmdb.
//
// The file is only ever read. libmdb was not written for damaged files: it may loop, stop the
// process or read out of bounds on a garbled page. The reading therefore runs in a
// program of its own, vorkam_jetread, run with a time limit; what it sends back on its standard
// output is checked before anything is written.
// Rows are found by the reader itself, page by page, so that deleted rows stay deleted and
// moved (overflow) rows are not lost; libmdb parses the table definitions and the rows.
class JetReader final {
public:
    enum class Problem {
        None,
        Unreadable, // missing or not readable
        NotJet, // does not start like a Jet database
        Unsupported, // a newer Access format, or a field type Vorkam cannot carry over
        Truncated, // shorter than its pages say
        Password, // protected with a database password
        Damaged, // garbled pages, rows that do not add up, or a reader that gave up
    };

    struct Result {
        Problem problem = Problem::None;
        QString detail; // Finnish: what exactly was wrong
        JetBooks books;
        explicit operator bool() const { return problem == Problem::None; }
    };

    // What the first page of a Jet file says.
    struct Header {
        int jetVersion = 0; // 3, 4, or 0 for anything newer
        int pageSize = 0;
        int codePage = 0;
        bool password = false;
    };

    // Reads the tables named in `wanted` (names compared without regard to case) with every
    // row; other user tables are only listed by name. An empty `wanted` reads every user table
    // under its own name.
    static Result read(const QString& path, const QStringList& wanted);

    // The first page decoded; nullopt-like Problem::NotJet when it is no Jet header.
    static Problem readHeader(const QByteArray& firstPage, Header* header);

    // How long the reading program may take before it is stopped, for a file of `bytes`.
    static int timeLimitMs(qint64 bytes);

    // The reading program: vorkam_jetread FILE PAGES CODEPAGE [TABLE…] reads the file and writes
    // the reply on its standard output. Never returns; the exit status is 0 when it has
    // written the reply.
    [[noreturn]] static void runHelper(int argc, char** argv);
    // Where vorkam_jetread is, or empty when the installation lacks it.
    static QString helperProgram();
};

// The value forms of Jet files, as the reader decodes them.
namespace JetValues {

// Jet 4 text: UTF-16LE, or the compressed form that starts with FF FE and switches between
// one-byte and two-byte characters at each zero byte. False when the bytes cannot be text.
bool jet4Text(const QByteArray& bytes, QString* text);
// Jet 3 text in the file's Windows code page (1252 when the file names none).
QString codePageText(const QByteArray& bytes, int codePage);
// A date/time value (days since 30.12.1899, the fraction being the time of day) as a date.
// False when the value is no date at all; `hasTime` tells whether a time of day was dropped.
bool date(double days, QDate* date, bool* hasTime);
// Eight little-endian bytes as a 64-bit integer: Currency in ten-thousandths.
qint64 int64(const unsigned char* bytes);

} // namespace JetValues
