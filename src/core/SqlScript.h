#pragma once

#include <QStringList>

// Splits SQL text into statements at semicolons outside quotes and comments. Used for the
// model databases' source files.
namespace SqlScript {

QStringList split(const QString& text);

} // namespace SqlScript
