#pragma once

#include "TestEnv.h"
#include "core/DBC.h"
#include "core/ProgramSettings.h"

#include <QDir>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <csignal>
#include <sys/resource.h>

// Every write of this process beyond `bytes` fails while the limit lives, as on a disk that
// fills up or a stick pulled out in the middle of a copy.
class FileSizeLimit final {
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_old);
        const rlimit limit { bytes, m_old.rlim_max };
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &m_old); }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_old {};
};

// Books in use at `file`, opened through the shared connection as after a start.
inline bool openBooks(const QString& file)
{
    QDir().mkpath(QFileInfo(file).absolutePath());
    if (!TestEnv::createDatabase(file))
        return false;
    ProgramSettings::installation().Database = file;
    return DBC::instance().AvaaDB().isOpen();
}

// A setting row written through the shared connection: the books change.
inline bool writeMark(const QString& value)
{
    QSqlQuery q(DBC::instance().AvaaDB());
    q.prepare(
        QStringLiteral("INSERT INTO Settings (setSection, setKey, setString) VALUES ('TEST', 'merkki', ?)"));
    q.addBindValue(value);
    return q.exec();
}

// The marks the books at `file` hold, in the order written.
inline QStringList marksIn(const QString& file)
{
    QStringList marks;
    withDatabase(file, [&](QSqlDatabase& db) {
        QSqlQuery q(
            QStringLiteral("SELECT setString FROM Settings WHERE setSection = 'TEST' ORDER BY setID"), db);
        while (q.next())
            marks.append(q.value(0).toString());
    });
    return marks;
}

// Every file of `folder`, hidden ones too.
inline QStringList filesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
}
