#pragma once

#include "printing/PageText.h"
#include "printing/SectionFonts.h"

#include <QByteArray>
#include <QString>
#include <vector>

// One printed page as positioned text and rules, in points (1/72 inch) from the page's top
// left corner. The renderers draw it; they do not lay anything out.

struct PageFont {
    FontFamily family = FontFamily::Serif;
    bool bold = false;
    bool italic = false;
    float size = 10;
    bool operator==(const PageFont&) const = default;
};

struct TextRun {
    float x = 0; // left edge of the text, already aligned by the layout
    float y = 0; // baseline
    quint32 offset = 0; // into ReportPage::text
    quint32 length = 0;
    quint8 font = 0; // index into the document's fonts
    quint8 align = 0; // how the layout aligned it (CellAlign), for text renderings
};

struct PageRule {
    float x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    float width = 0.5f;
};

struct ReportPage {
    std::vector<TextRun> runs;
    std::vector<PageRule> rules;
    // The runs' text in UTF-8, each run followed by a NUL byte.
    QByteArray text;

    const char* runBytes(const TextRun& run) const { return text.constData() + run.offset; }
    QString runText(const TextRun& run) const { return PageText::toUnicode(runBytes(run), run.length); }
};
