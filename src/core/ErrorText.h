#pragma once

#include <QString>

// Error numbers and their meaning in Finnish, for the texts that show "number: description".
namespace ErrorText {

// A system error number (errno): "28: Levyllä ei ole tilaa".
QString system(int number);
// Its meaning alone: "Levyllä ei ole tilaa".
QString meaning(int number);
// An engine error code with the engine's own words after the Finnish ones:
// "13: Levyllä ei ole tilaa (database or disk is full)".
QString engine(int code, const QString& engineText);

} // namespace ErrorText
