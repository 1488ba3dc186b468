#include "printing/ReportDefinition.h"

#include "printing/ReportError.h"

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

    CellFormat format(const QJsonObject& o) const
    {
        return choice(o, "format",
            { { "text", CellFormat::Text }, { "money", CellFormat::Money }, { "date", CellFormat::Date },
                { "integer", CellFormat::Integer }, { "percentage", CellFormat::Percentage } },
            CellFormat::Text);
    }

    CellAlign align(const QJsonObject& o, CellAlign fallback) const
    {
        return choice(o, "align",
            { { "left", CellAlign::Left }, { "right", CellAlign::Right }, { "center", CellAlign::Center } },
            fallback);
    }

    QList<ReportCell> cells(const QJsonValue& v, const QString& what) const
    {
        QList<ReportCell> list;
        if (v.isUndefined())
            return list;
        if (!v.isArray())
            fail(QStringLiteral("kohdan \"%1\" tulee olla luettelo soluista.").arg(what));
        for (const QJsonValue& item : v.toArray()) {
            const QJsonObject o = object(item, QStringLiteral("Solu"));
            ReportCell c;
            c.column = text(o, "column", true);
            c.to = text(o, "to");
            c.text = text(o, "text");
            c.wrap = o.value(QLatin1String("wrap")).toBool(false);
            if (o.contains(QLatin1String("align")))
                c.align = align(o, CellAlign::Left);
            list.append(c);
        }
        return list;
    }

    void readFont(const QJsonObject& o, FontSpec& style) const
    {
        if (o.contains(QLatin1String("face")))
            style.face = text(o, "face");
        if (o.contains(QLatin1String("size"))) {
            const double size = o.value(QLatin1String("size")).toDouble();
            if (size < 4 || size > 72)
                fail(QStringLiteral("kirjasinkoon tulee olla 4–72 pistettä."));
            style.size = size;
        }
        style.bold = o.value(QLatin1String("bold")).toBool(style.bold);
        style.italic = o.value(QLatin1String("italic")).toBool(style.italic);
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
    d.unionAll = r.text(query, "unionAll");
    if (!d.unionAll.isEmpty()
        && !d.unionAll.trimmed().startsWith(QLatin1String("SELECT"), Qt::CaseInsensitive))
        r.fail(QStringLiteral("kyselyn unionAll-osan tulee alkaa sanalla SELECT."));
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
        c.format = r.format(o);
        const bool number = c.format == CellFormat::Money || c.format == CellFormat::Integer
            || c.format == CellFormat::Percentage;
        c.align = r.align(o, number ? CellAlign::Right : CellAlign::Left);
        c.width = o.value(QLatin1String("width")).toDouble(1);
        if (!(c.width > 0))
            r.fail(QStringLiteral("sarakkeen %1 leveyden tulee olla suurempi kuin 0.").arg(c.field));
        c.total = o.value(QLatin1String("total")).toBool(false);
        c.detail = o.value(QLatin1String("detail")).toBool(true);
        if (o.contains(QLatin1String("running"))) {
            const QJsonObject running
                = r.object(o.value(QLatin1String("running")), QStringLiteral("Kohta \"running\""));
            c.runningStart = r.text(running, "start");
            c.runningPlus = r.text(running, "plus", true);
            c.runningMinus = r.text(running, "minus");
            if (c.format != CellFormat::Money && c.format != CellFormat::Integer)
                r.fail(QStringLiteral("juokseva summa (%1) voi olla vain rahamäärä tai kokonaisluku.")
                           .arg(c.field));
        }
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
            ReportGroup g { r.text(o, "field", true), r.text(o, "header"), r.text(o, "totalCaption"), {},
                {} };
            g.headerCells = r.cells(o.value(QLatin1String("headerCells")), QStringLiteral("headerCells"));
            g.footerCells = r.cells(o.value(QLatin1String("footerCells")), QStringLiteral("footerCells"));
            d.groups.append(g);
        }
    }
    d.grandTotal = r.text(root, "grandTotal");
    const QJsonValue summary = root.value(QLatin1String("summary"));
    if (!summary.isUndefined()) {
        if (!summary.isArray())
            r.fail(QStringLiteral("kohdan \"summary\" tulee olla luettelo riveistä."));
        for (const QJsonValue& line : summary.toArray())
            d.summary.append(r.cells(line, QStringLiteral("summary")));
    }
    const QJsonValue fields = root.value(QLatin1String("fields"));
    if (!fields.isUndefined()) {
        const QJsonObject f = r.object(fields, QStringLiteral("Kohta \"fields\""));
        for (auto it = f.begin(); it != f.end(); ++it) {
            QJsonObject holder;
            holder.insert(QStringLiteral("format"), it.value());
            d.fields.insert(it.key(), r.format(holder));
        }
    }
    const QJsonValue rowStyle = root.value(QLatin1String("rowStyle"));
    if (!rowStyle.isUndefined()) {
        const QJsonObject o = r.object(rowStyle, QStringLiteral("Kohta \"rowStyle\""));
        if (o.contains(QLatin1String("indent"))) {
            const QJsonObject indent
                = r.object(o.value(QLatin1String("indent")), QStringLiteral("Kohta \"indent\""));
            d.rowStyle.indentField = r.text(indent, "field", true);
            d.rowStyle.indentColumn = r.text(indent, "column", true);
            d.rowStyle.indentStep = indent.value(QLatin1String("step")).toDouble(10);
            if (d.rowStyle.indentStep < 0 || d.rowStyle.indentStep > 72)
                r.fail(QStringLiteral("sisennyksen tulee olla 0–72 pistettä."));
        }
        d.rowStyle.boldField = r.text(o, "bold");
        d.rowStyle.ruleField = r.text(o, "rule");
        // The style's fields are read with the rows like any field no column shows.
        for (const QString& f : { d.rowStyle.indentField, d.rowStyle.boldField, d.rowStyle.ruleField })
            if (!f.isEmpty() && !d.fields.contains(f))
                d.fields.insert(f, CellFormat::Integer);
    }
    // Every cell starts in a column of the report, and a span runs left to right.
    const auto columnOf = [&d](const QString& field) {
        for (int i = 0; i < int(d.columns.size()); ++i)
            if (d.columns[i].field.compare(field, Qt::CaseInsensitive) == 0)
                return i;
        return -1;
    };
    QList<const ReportCell*> all;
    for (const ReportGroup& g : d.groups)
        for (const QList<ReportCell>* list : { &g.headerCells, &g.footerCells })
            for (const ReportCell& c : *list)
                all.append(&c);
    for (const QList<ReportCell>& line : d.summary)
        for (const ReportCell& c : line)
            all.append(&c);
    if (!d.rowStyle.indentColumn.isEmpty() && columnOf(d.rowStyle.indentColumn) < 0)
        r.fail(QStringLiteral("sisennettävää saraketta %1 ei ole.").arg(d.rowStyle.indentColumn));
    for (const ReportCell* c : all) {
        const int from = columnOf(c->column);
        if (from < 0)
            r.fail(QStringLiteral("solun saraketta %1 ei ole.").arg(c->column));
        if (!c->to.isEmpty() && columnOf(c->to) < from)
            r.fail(
                QStringLiteral("solu ei voi ulottua sarakkeesta %1 sarakkeeseen %2.").arg(c->column, c->to));
    }

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
            r.readFont(r.object(it.value(), it.key()), d.fonts[size_t(i)]);
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
