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

// A text from the engine, Qt or the system for a message: the Finnish meaning of the ones Vorkam
// knows ("database disk image is malformed": "Tietokanta on vioittunut."), any other behind
// "Tekninen tieto: ". Empty stays empty.
QString technical(const QString& text);

} // namespace ErrorText
