#pragma once

#include "TestEnv.h"
#include "core/DBC.h"
#include "core/ProgramSettings.h"

#include <QDir>
#include <QSqlQuery>

#include <algorithm>
#include <csignal>
#include <sys/resource.h>

// Runs `work` with every write of this process beyond `bytes` failing, as on a disk that fills
// up or a stick pulled out in the middle of a copy.
template <typename Work> auto withFileSizeLimit(rlim_t bytes, Work work)
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit old {};
    getrlimit(RLIMIT_FSIZE, &old);
    const rlimit limit { std::min(bytes, old.rlim_max), old.rlim_max };
    setrlimit(RLIMIT_FSIZE, &limit);
    const auto result = work();
    setrlimit(RLIMIT_FSIZE, &old);
    return result;
}

// Books in use at `file`, opened through the shared connection as after a start.
inline bool openBooks(const QString& file)
{
    QDir().mkpath(QFileInfo(file).absolutePath());
    ProgramSettings::installation().Database = file;
    return TestEnv::createDatabase(file) && DBC::instance().AvaaDB().isOpen();
}

// A setting row written through the shared connection: the books change.
inline bool writeMark(const QString& value)
{
    const QString sql = QStringLiteral("INSERT INTO Settings (setSection, setString) VALUES ('TEST', '%1')");
    return QSqlQuery(DBC::instance().AvaaDB()).exec(sql.arg(value));
}

// Every file of `folder`, hidden ones too.
inline QStringList filesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
}
