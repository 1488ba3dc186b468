#pragma once

#include <QString>

// The payment references of Finnish banks: the national reference (4–20 digits, the last a
// check digit of the weights 7, 3, 1) and the international RF creditor reference (ISO 11649).
namespace References {

// Blanks removed and letters in capitals: "RF18 5390 0754 7034" → "RF18539007547034".
QString compact(const QString& text);

// A whole national reference, check digit included (leading zeros of a fixed-width field
// are ignored).
bool validFinnish(const QString& text);
// The check digit of the base part of a national reference (3–19 digits); -1 for anything else.
int finnishCheckDigit(const QString& base);
// A whole RF reference: "RF", two check digits and 1–21 letters or digits, modulo 97 gives 1.
bool validRf(const QString& text);

// A reference that may be used for learning: a valid national or RF reference in its compact
// form; an empty string for anything else (a reference with a wrong check digit is only text).
QString usable(const QString& text);

} // namespace References
