#pragma once

#include "core/Dialogs.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariantList>
#include <stdexcept>

// A failed statement. Logic classes do not catch it: the window or command that called them
// shows it with a Finnish sentence first, and the surrounding transaction leaves the books as
// they were.
class DatabaseError final : public std::runtime_error {
public:
    explicit DatabaseError(const QString& text)
        : std::runtime_error(text.toStdString())
        , m_text(text)
    {
    }
    // The engine's own description.
    const QString& text() const { return m_text; }
    // `sentence` (Finnish, saying what could not be done) and the engine's text on its own line.
    QString message(const QString& sentence) const { return sentence + u'\n' + m_text; }

private:
    QString m_text;
};

// The one way Vorkam runs SQL: every statement is prepared, its values bound, and a failure of
// either step throws DatabaseError.
namespace Sql {

QSqlQuery prepare(const QSqlDatabase& db, const QString& sql);
void exec(QSqlQuery& q);
// Prepares `sql`, binds `values` in order and runs it; the query is positioned before the
// first row.
QSqlQuery run(const QSqlDatabase& db, const QString& sql, const QVariantList& values = {});
// The first column of the first row, or an invalid QVariant when there is no row.
QVariant scalar(const QSqlDatabase& db, const QString& sql, const QVariantList& values = {});
// Runs every statement of an SQL text in order, as the engine itself splits them (so triggers
// with their inner semicolons, comments and quoted semicolons are whole). Throws DatabaseError
// naming the statement that failed.
void runScript(const QSqlDatabase& db, const QString& text);

} // namespace Sql

// Runs `work`; when it throws DatabaseError the user is told `sentence` and the engine's
// text, and false is given.
template <typename Work> bool tellIfFails(const QString& sentence, Work&& work)
{
    try {
        work();
        return true;
    } catch (const DatabaseError& e) {
        Dialogs::instance().error(e.message(sentence));
        return false;
    }
}
