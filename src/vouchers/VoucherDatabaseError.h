#pragma once

#include <QSqlQuery>
#include <QString>
#include <stdexcept>

// A failed statement of the voucher records. The records do not catch it: the window that
// called them shows it as the program's general error message, and the surrounding
// transaction leaves the books as they were.
class VoucherDatabaseError final : public std::runtime_error {
public:
    explicit VoucherDatabaseError(const QString& text)
        : std::runtime_error(text.toStdString())
        , m_text(text)
    {
    }
    const QString& text() const { return m_text; }

    // Prepares and runs `q`; throws with the driver's text when either fails.
    static void exec(QSqlQuery& q);

private:
    QString m_text;
};
