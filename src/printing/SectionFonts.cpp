#include "printing/SectionFonts.h"

#include "printing/ReportError.h"

#include <vector>

namespace SectionFonts {

QStringList entries(int set, const QString& fontti, int fonttiKoko)
{
    const QString size = QString::number(fonttiKoko);
    const QString tail = QStringLiteral(";X;X;X;X");
    if (set == 2)
        return { QStringLiteral("ALL;") + fontti + u';' + size + tail,
            QStringLiteral("TITLE;") + fontti + QStringLiteral(";12") + tail,
            QStringLiteral("HEADER;") + fontti + QStringLiteral(";X") + tail, QString(), QString() };
    return { QStringLiteral("DETAIL;") + fontti + u';' + size + tail,
        QStringLiteral("TITLE;") + fontti + QStringLiteral(";12") + tail,
        QStringLiteral("HEADER;") + fontti + QStringLiteral(";X") + tail,
        QStringLiteral("GRNDTTL;") + fontti + u';' + size + tail,
        QStringLiteral("FOOTER;") + fontti + u';' + size + tail };
}

namespace {

void setFlag(const QString& text, bool& flag, const QString& entry)
{
    if (text == u"X")
        return;
    if (text != u"0" && text != u"1")
        throw ReportError(QStringLiteral("Osan kirjasinmääritys \"%1\" on virheellinen.").arg(entry));
    flag = text == u"1";
}

} // namespace

void apply(const QStringList& list, SectionFontTable& fonts)
{
    // "X" keeps the layout's own value, whatever an earlier entry set: a page header after ALL
    // keeps the layout's size.
    const SectionFontTable layout = fonts;
    for (const QString& entry : list) {
        if (entry.isEmpty())
            continue;
        // The font's own name may hold ";" (it is a setting the user types): the section is the
        // first field and the size and four flags the last five, the name is what lies between.
        const QStringList f = entry.split(u';');
        const qsizetype sizeAt = f.size() - 5;
        const QString face = f.mid(1, sizeAt - 1).join(u';').trimmed();
        if (f.size() < 7 || face.isEmpty())
            throw ReportError(QStringLiteral("Osan kirjasinmääritys \"%1\" on virheellinen.").arg(entry));
        const QString name = f.at(0).trimmed().toUpper();
        std::vector<Section> sections;
        if (name == u"ALL")
            sections = { Section::Title, Section::Header, Section::Detail, Section::Group, Section::Total,
                Section::Footer };
        else if (name == u"TITLE")
            sections = { Section::Title };
        else if (name == u"HEADER")
            sections = { Section::Header };
        else if (name == u"DETAIL")
            sections = { Section::Detail, Section::Group };
        else if (name == u"GRNDTTL")
            sections = { Section::Total };
        else if (name == u"FOOTER")
            sections = { Section::Footer };
        else
            throw ReportError(QStringLiteral("Raportin osaa \"%1\" ei ole.").arg(f.at(0)));
        double size = 0;
        if (f.at(sizeAt) != u"X") {
            bool ok = false;
            size = f.at(sizeAt).toDouble(&ok);
            if (!ok || size < 4 || size > 72)
                throw ReportError(QStringLiteral("Osan kirjasinmääritys \"%1\" on virheellinen.").arg(entry));
        }
        for (const Section s : sections) {
            FontSpec& font = fonts[size_t(s)];
            font = layout[size_t(s)];
            font.face = face;
            if (size > 0)
                font.size = size;
            setFlag(f.at(sizeAt + 1), font.italic, entry);
            setFlag(f.at(sizeAt + 2), font.bold, entry);
        }
    }
}

FontFamily family(const QString& face)
{
    const QString f = face.toLower();
    for (const char* mono : { "courier", "mono", "consol", "typewriter", "fixed" })
        if (f.contains(QLatin1String(mono)))
            return FontFamily::Mono;
    if (f.contains(QLatin1String("sans")))
        return FontFamily::Sans;
    for (const char* serif :
        { "times", "serif", "roman", "georgia", "garamond", "book", "cambria", "palatino" })
        if (f.contains(QLatin1String(serif)))
            return FontFamily::Serif;
    return FontFamily::Sans;
}

} // namespace SectionFonts
