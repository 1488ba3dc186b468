#pragma once

#include <QChar>
#include <QString>
#include <optional>
#include <vector>

// The two text formats of a template row. An account list (mrTilit) holds account keys (tlID)
// in decimal, each followed by a comma: "12,15,31,". A formula (mrKaava) holds terms, each a
// sign followed by the key (mrID) of the row whose total it takes, each followed by a comma:
// "+41,-57,".
namespace TemplateText {

// The accounts of a list in list order, each once (a list names a set of accounts, as an SQL
// IN list does). Pieces that are not whole numbers above 0 name no account and are left out,
// so an empty text, "," and the empty-list marker "-1," give no accounts.
std::vector<qint32> accounts(const QString& tilit);
// "12,15,31," for the keys given.
QString accountList(const std::vector<qint32>& ids);

struct Term {
    // The first character of the term: "+" adds, any other character subtracts.
    QChar sign;
    // The row the term names; nullopt when the rest of the term is not a whole number, and
    // such a term takes nothing.
    std::optional<qint32> rowId;
    bool adds() const { return sign == u'+'; }
};
// Formulas are read up to this many terms.
constexpr int MaxTerms = 256;
// The terms in order of evaluation; a text equal to "," and empty pieces give no terms.
std::vector<Term> terms(const QString& kaava);
// The formula with one more term: "+" + row key + ",", or "-" + row key + ",".
QString appendTerm(const QString& kaava, bool adds, qint32 rowId);

} // namespace TemplateText
