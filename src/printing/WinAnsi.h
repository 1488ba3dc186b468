#pragma once

#include <QByteArray>
#include <QString>

// The character set of the standard PDF fonts (Windows-1252). Reports hold their text in it, so
// that what the screen shows is what the PDF can print: ä, ö, å, € and the dashes are there;
// a character it lacks prints as "?" and a line break or tab as a blank.
namespace WinAnsi {

char encode(char16_t c);
QByteArray fromUnicode(const QString& text);
void append(QByteArray& out, const QString& text);
QString toUnicode(const char* text, qsizetype length);
inline QString toUnicode(const QByteArray& text) { return toUnicode(text.constData(), text.size()); }
// The Unicode character of one byte.
char16_t decode(unsigned char byte);

} // namespace WinAnsi
