#include "ReportDefinition.h"

#include "ReportError.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

class Reader final {
public:
    explicit Reader(const QString& name)
        : m_name(name)
    {
    }

    [[noreturn]] void fail(const QString& detail) const
    {
        throw ReportError(QStringLiteral("Raportin %1 määrittely on virheellinen: %2").arg(m_name, detail));
    }

    QString text(const QJsonObject& o, const char* key, bool required = false) const
    {
        const QJsonValue v = o.value(QLatin1String(key));
        if (v.isUndefined() || v.isNull()) {
            if (required)
                fail(QStringLiteral("kohta \"%1\" puuttuu.").arg(QLatin1String(key)));
            return {};
        }
        if (!v.isString())
            fail(QStringLiteral("kohdan \"%1\" tulee olla tekstiä.").arg(QLatin1String(key)));
        return v.toString();
    }

    QStringList texts(const QJsonObject& o, const char* key) const
    {
        const QJsonValue v = o.value(QLatin1String(key));
        if (v.isUndefined())
            return {};
        if (!v.isArray())
            fail(QStringLiteral("kohdan \"%1\" tulee olla luettelo.").arg(QLatin1String(key)));
        QStringList list;
        for (const QJsonValue& item : v.toArray()) {
            if (!item.isString())
                fail(QStringLiteral("kohdan \"%1\" jäsenten tulee olla tekstiä.").arg(QLatin1String(key)));
            list.append(item.toString());
        }
        return list;
    }

    QJsonObject object(const QJsonValue& v, const QString& what) const
    {
        if (!v.isObject())
            fail(QStringLiteral("%1 ei ole JSON-olio.").arg(what));
        return v.toObject();
    }

    template <typename E>
    E choice(const QJsonObject& o, const char* key, std::initializer_list<std::pair<const char*, E>> options,
        E fallback) const
    {
        const QString value = text(o, key);
        if (value.isEmpty())
            return fallback;
        for (const auto& [word, e] : options)
            if (value == QLatin1String(word))
                return e;
        fail(QStringLiteral("kohdan \"%1\" arvoa \"%2\" ei tunneta.").arg(QLatin1String(key), value));
    }

    void font(const QJsonObject& o, FontSpec& spec) const
    {
        if (o.contains(QLatin1String("face")))
            spec.face = text(o, "face");
        if (o.contains(QLatin1String("size"))) {
            const double size = o.value(QLatin1String("size")).toDouble();
            if (size < 4 || size > 72)
                fail(QStringLiteral("kirjasinkoon tulee olla 4–72 pistettä."));
            spec.size = size;
        }
        spec.bold = o.value(QLatin1String("bold")).toBool(spec.bold);
        spec.italic = o.value(QLatin1String("italic")).toBool(spec.italic);
    }

private:
    QString m_name;
};

} // namespace

ReportDefinition ReportDefinition::load(const QString& path)
{
    const QString name = QFileInfo(path).fileName();
    QFile file(path);
    if (!file.exists())
        throw ReportError(
            QStringLiteral("Raporttia %1 ei löydy kansiosta %2.").arg(name, QFileInfo(path).absolutePath()));
    if (!file.open(QIODevice::ReadOnly))
        throw ReportError(QStringLiteral("Raporttia %1 ei voitu lukea: %2").arg(name, file.errorString()));
    return parse(file.readAll(), name);
}

ReportDefinition ReportDefinition::parse(const QByteArray& json, const QString& name)
{
    if (json.trimmed().isEmpty())
        throw ReportError(QStringLiteral("Raportin %1 määrittely on tyhjä.").arg(name));
    const Reader r(name);
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError)
        r.fail(QStringLiteral("%1 (merkki %2).").arg(error.errorString()).arg(error.offset));
    if (!doc.isObject())
        r.fail(QStringLiteral("määrittely ei ole JSON-olio."));
    const QJsonObject root = doc.object();

    ReportDefinition d;
    d.name = name;
    d.orientation = r.choice(root, "orientation",
        { { "portrait", Orientation::Portrait }, { "landscape", Orientation::Landscape },
            { "setting", Orientation::Setting } },
        Orientation::Portrait);

    const QJsonObject query = r.object(root.value(QLatin1String("query")), QStringLiteral("Kohta \"query\""));
    d.select = r.text(query, "select", true);
    if (!d.select.trimmed().startsWith(QLatin1String("SELECT"), Qt::CaseInsensitive))
        r.fail(QStringLiteral("kyselyn tulee alkaa sanalla SELECT."));
    d.where = r.text(query, "where");
    d.orderBy = r.text(query, "orderBy");
    d.tables = r.texts(query, "tables");
    d.parameters = r.texts(query, "parameters");

    const QJsonValue formulas = root.value(QLatin1String("formulas"));
    if (!formulas.isUndefined()) {
        const QJsonObject f = r.object(formulas, QStringLiteral("Kohta \"formulas\""));
        for (auto it = f.begin(); it != f.end(); ++it) {
            if (!it.value().isString())
                r.fail(QStringLiteral("kaavan %1 oletuksen tulee olla tekstiä.").arg(it.key()));
            d.formulas.insert(it.key(), it.value().toString());
        }
    }
    d.title = r.texts(root, "title");

    const QJsonValue columns = root.value(QLatin1String("columns"));
    if (!columns.isArray() || columns.toArray().isEmpty())
        r.fail(QStringLiteral("sarakkeita (\"columns\") ei ole."));
    for (const QJsonValue& v : columns.toArray()) {
        const QJsonObject o = r.object(v, QStringLiteral("Sarake"));
        ReportColumn c;
        c.field = r.text(o, "field", true);
        c.caption = r.text(o, "caption");
        c.format = r.choice(o, "format",
            { { "text", CellFormat::Text }, { "money", CellFormat::Money }, { "date", CellFormat::Date },
                { "integer", CellFormat::Integer }, { "percentage", CellFormat::Percentage } },
            CellFormat::Text);
        const bool number = c.format == CellFormat::Money || c.format == CellFormat::Integer
            || c.format == CellFormat::Percentage;
        c.align = r.choice(o, "align",
            { { "left", CellAlign::Left }, { "right", CellAlign::Right }, { "center", CellAlign::Center } },
            number ? CellAlign::Right : CellAlign::Left);
        c.width = o.value(QLatin1String("width")).toDouble(1);
        if (!(c.width > 0))
            r.fail(QStringLiteral("sarakkeen %1 leveyden tulee olla suurempi kuin 0.").arg(c.field));
        c.total = o.value(QLatin1String("total")).toBool(false);
        if (c.total && c.format != CellFormat::Money && c.format != CellFormat::Integer)
            r.fail(QStringLiteral("vain rahamäärä- ja kokonaislukusarakkeet voi laskea yhteen (%1).")
                       .arg(c.field));
        d.columns.append(c);
    }

    const QJsonValue groups = root.value(QLatin1String("groups"));
    if (!groups.isUndefined()) {
        if (!groups.isArray())
            r.fail(QStringLiteral("kohdan \"groups\" tulee olla luettelo."));
        for (const QJsonValue& v : groups.toArray()) {
            const QJsonObject o = r.object(v, QStringLiteral("Ryhmä"));
            d.groups.append({ r.text(o, "field", true), r.text(o, "header"), r.text(o, "totalCaption") });
        }
    }
    d.grandTotal = r.text(root, "grandTotal");

    // The layout's own fonts; the section fonts of the settings are applied over them.
    d.fonts[size_t(Section::Title)] = { QStringLiteral("Times New Roman"), 12, true, false };
    d.fonts[size_t(Section::Header)] = { QStringLiteral("Times New Roman"), 10, true, false };
    d.fonts[size_t(Section::Detail)] = { QStringLiteral("Times New Roman"), 10, false, false };
    d.fonts[size_t(Section::Group)] = { QStringLiteral("Times New Roman"), 10, true, false };
    d.fonts[size_t(Section::Total)] = { QStringLiteral("Times New Roman"), 10, true, false };
    d.fonts[size_t(Section::Footer)] = { QStringLiteral("Times New Roman"), 8, false, false };
    const QJsonValue fonts = root.value(QLatin1String("fonts"));
    if (!fonts.isUndefined()) {
        const QJsonObject f = r.object(fonts, QStringLiteral("Kohta \"fonts\""));
        const char* const names[SectionCount] = { "title", "header", "detail", "group", "total", "footer" };
        for (auto it = f.begin(); it != f.end(); ++it) {
            int i = 0;
            while (i < SectionCount && it.key() != QLatin1String(names[i]))
                ++i;
            if (i == SectionCount)
                r.fail(QStringLiteral("raportin osaa \"%1\" ei ole.").arg(it.key()));
            r.font(r.object(it.value(), it.key()), d.fonts[size_t(i)]);
        }
    }
    return d;
}

bool ReportDefinition::hasTotals() const
{
    for (const ReportColumn& c : columns)
        if (c.total)
            return true;
    return false;
}

QString ReportDefinition::formulaName(const QString& formula) const
{
    for (auto it = formulas.begin(); it != formulas.end(); ++it)
        if (it.key().compare(formula, Qt::CaseInsensitive) == 0)
            return it.key();
    return {};
}
