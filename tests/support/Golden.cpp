#include "Golden.h"

#include "TestEnv.h"

#include <QDir>
#include <QFile>
#include <QStringList>

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
    if (!QFile::exists(path)) {
        *why = QStringLiteral("Golden file %1 is missing; make it with VORKAM_UPDATE_GOLDEN=1 and check it.")
                   .arg(path);
        return false;
    }
    const QString expected = QString::fromUtf8(TestEnv::readFile(path));
    if (expected == actual)
        return true;
    const QString out = QDir::currentPath() + u'/' + name + QStringLiteral(".actual.txt");
    TestEnv::writeFile(out, actual.toUtf8());
    const QStringList e = expected.split(u'\n');
    const QStringList a = actual.split(u'\n');
    qsizetype line = 0;
    while (line < e.size() && line < a.size() && e.at(line) == a.at(line))
        ++line;
    *why = QStringLiteral(
        "%1 differs from the golden file at line %2:\n  expected: %3\n  actual:   %4\n(whole text in %5)")
               .arg(name)
               .arg(line + 1)
               .arg(line < e.size() ? e.at(line) : QStringLiteral("<end>"),
                   line < a.size() ? a.at(line) : QStringLiteral("<end>"), out);
    return false;
}

} // namespace Golden
