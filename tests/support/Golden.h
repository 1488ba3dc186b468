#pragma once

#include <QString>
#include <QTest>

// Golden files: a report's rendered text compared with tests/golden/NAME.txt. The files change
// only on purpose: with VORKAM_UPDATE_GOLDEN=1 in the environment the text is written as the
// new golden file instead. A missing golden file fails the test.
namespace Golden {

// True when `actual` equals the golden file; otherwise `why` says so, and the actual text is
// left beside the build's tests as NAME.actual.txt for a diff.
bool matches(const QString& name, const QString& actual, QString* why);

} // namespace Golden

#define VERIFY_GOLDEN(name, text)                                                                            \
    do {                                                                                                     \
        QString goldenWhy_;                                                                                  \
        if (!Golden::matches(name, text, &goldenWhy_))                                                       \
            QFAIL(qPrintable(goldenWhy_));                                                                   \
    } while (false)
