#include "Golden.h"

#include "TestEnv.h"

#include <QDir>
#include <QFile>

namespace Golden {

bool matches(const QString& name, const QString& actual, QString* why)
{
    const QString path = QStringLiteral(VORKAM_GOLDEN_DIR "/") + name + QStringLiteral(".txt");
    if (qEnvironmentVariable("VORKAM_UPDATE_GOLDEN") == u"1") {
        if (!TestEnv::writeFile(path, actual.toUtf8())) {
            *why = QStringLiteral("Golden file %1 could not be written.").arg(path);
            return false;
        }
        qWarning("Golden file %s rewritten.", qPrintable(path));
        return true;
    }
    const bool exists = QFile::exists(path);
    if (exists && TestEnv::readFile(path) == actual.toUtf8())
        return true;
    const QString out = QDir::currentPath() + u'/' + name + QStringLiteral(".actual.txt");
    TestEnv::writeFile(out, actual.toUtf8());
    *why = exists
        ? QStringLiteral("%1 differs from the golden file %2; the actual text is in %3.").arg(name, path, out)
        : QStringLiteral("Golden file %1 is missing; make it with VORKAM_UPDATE_GOLDEN=1 and check it.")
              .arg(path);
    return false;
}

} // namespace Golden
