#pragma once

#include <QString>

// Text rules shared by every record object: an empty text is stored as a single blank,
// names are cut to 50 characters and descriptions to 255.
namespace RecordText {

constexpr int NameLength = 50;
constexpr int DescriptionLength = 255;

QString cut(const QString& text, int maxLength);
QString blankIfEmpty(const QString& text);
inline QString storedName(const QString& text) { return blankIfEmpty(cut(text, NameLength)); }
inline QString storedDescription(const QString& text) { return blankIfEmpty(cut(text, DescriptionLength)); }

} // namespace RecordText
