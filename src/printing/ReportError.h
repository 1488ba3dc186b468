#pragma once

#include <QString>
#include <stdexcept>

// A report that cannot be made: a missing or malformed definition, a formula or field the engine
// does not know, an output file that cannot be written. The text is a whole Finnish sentence
// for the user and names the report.
class ReportError final : public std::runtime_error {
public:
    explicit ReportError(const QString& text)
        : std::runtime_error(text.toStdString())
        , m_text(text)
    {
    }
    const QString& text() const { return m_text; }

private:
    QString m_text;
};
