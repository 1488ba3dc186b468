#include "printing/ReportEngine.h"

#include "core/DatabaseError.h"
#include "core/Dates.h"
#include "core/Paths.h"
#include "core/RowReader.h"
#include "core/Schema.h"
#include "printing/ReportError.h"
#include "printing/ReportFormulas.h"
#include "printing/SelectionFormula.h"

#include <QSqlError>
#include <QSqlRecord>

namespace {

[[noreturn]] void fail(const ReportDefinition& d, const QString& what, const ReportError& e)
{
    throw ReportError(QStringLiteral("Raportin %1 %2: %3").arg(d.name, what, e.text()));
}

FieldResolver resolver(const QSqlDatabase& db, const ReportDefinition& d)
{
    return [&db, &d](const QString& table, const QString& field) -> std::optional<FormulaField> {
        QString known;
        for (const QString& t : d.tables)
            if (t.compare(table, Qt::CaseInsensitive) == 0)
                known = t;
        if (known.isEmpty() || Schema::fieldMissing(db, known, field))
            return std::nullopt;
        bool money = false;
        for (const ReportColumn& c : d.columns)
            if (c.field.compare(field, Qt::CaseInsensitive) == 0 && c.format == CellFormat::Money)
                money = true;
        return FormulaField { u'"' + known + QStringLiteral("\".\"") + field + u'"', money };
    };
}

// Replaces the named parameters (":taseID") of the definition's SQL with "?" and appends their
// values in order; quoted texts and names are left alone.
QString bindNamed(const QString& sql, const ReportDefinition& d, const ReportJob& job, QVariantList& values)
{
    QString out;
    out.reserve(sql.size());
    for (qsizetype i = 0; i < sql.size(); ++i) {
        const QChar c = sql.at(i);
        if (c == u'\'' || c == u'"') {
            const qsizetype end = sql.indexOf(c, i + 1);
            const qsizetype stop = end < 0 ? sql.size() : end + 1;
            out += sql.mid(i, stop - i);
            i = stop - 1;
        } else if (c == u':' && i + 1 < sql.size() && (sql.at(i + 1).isLetter() || sql.at(i + 1) == u'_')) {
            qsizetype j = i + 1;
            while (j < sql.size() && (sql.at(j).isLetterOrNumber() || sql.at(j) == u'_'))
                ++j;
            const QString name = sql.mid(i + 1, j - i - 1);
            if (!d.parameters.contains(name))
                throw ReportError(
                    QStringLiteral("Raportin %1 kyselyssä on tieto :%2, jota sen parametreissa ei ole.")
                        .arg(d.name, name));
            values.append(job.parameters.value(name));
            out += u'?';
            i = j - 1;
        } else {
            out += c;
        }
    }
    return out;
}

} // namespace

namespace ReportEngine {

ReportDefinition definition(const QString& reportFile)
{
    return ReportDefinition::load(Paths::programDir() + u'/' + reportFile);
}

Query query(const QSqlDatabase& db, const ReportDefinition& d, const ReportJob& job)
{
    for (const QString& p : d.parameters)
        if (!job.parameters.contains(p))
            throw ReportError(QStringLiteral("Raportille %1 ei annettu tietoa %2.").arg(d.name, p));
    for (auto it = job.parameters.begin(); it != job.parameters.end(); ++it)
        if (!d.parameters.contains(it.key()))
            throw ReportError(QStringLiteral("Raportissa %1 ei ole tietoa %2.").arg(d.name, it.key()));

    const FieldResolver resolve = resolver(db, d);
    SqlCondition selection;
    QString order;
    try {
        selection = SelectionFormula::toSql(job.selectionFormula, resolve);
    } catch (const ReportError& e) {
        fail(d, QStringLiteral("valintakaavaa ei voi käyttää"), e);
    }
    try {
        order = SelectionFormula::orderBy(job.sortFields, resolve);
    } catch (const ReportError& e) {
        fail(d, QStringLiteral("lajittelua ei voi käyttää"), e);
    }

    Query q;
    q.sql = bindNamed(d.select, d, job, q.values);
    QStringList where;
    if (!d.where.trimmed().isEmpty())
        where.append(u'(' + bindNamed(d.where, d, job, q.values) + u')');
    if (!selection.sql.isEmpty()) {
        where.append(u'(' + selection.sql + u')');
        q.values.append(selection.values);
    }
    if (!where.isEmpty())
        q.sql += QStringLiteral(" WHERE ") + where.join(QStringLiteral(" AND "));
    if (!d.unionAll.trimmed().isEmpty())
        q.sql += QStringLiteral(" UNION ALL ") + bindNamed(d.unionAll, d, job, q.values);
    QStringList orderTerms;
    if (!order.isEmpty())
        orderTerms.append(order);
    if (!d.orderBy.trimmed().isEmpty())
        orderTerms.append(d.orderBy);
    if (!orderTerms.isEmpty())
        q.sql += QStringLiteral(" ORDER BY ") + orderTerms.join(QStringLiteral(", "));
    return q;
}

std::shared_ptr<ReportData> fetch(
    const QSqlDatabase& db, const ReportDefinition& d, const ReportJob& job, const Progress& progress)
{
    const QString failure = QStringLiteral("Raportin %1 tietoja ei voitu lukea.").arg(d.name);
    std::unique_ptr<RowSource> q;
    try {
        if (job.rows) {
            q = job.rows(db);
        } else {
            const Query built = query(db, d, job);
            q = std::make_unique<RowReader>(db, built.sql, built.values);
        }
    } catch (const DatabaseError& e) {
        throw ReportError(e.message(failure));
    }

    // The fields the layout shows: the columns', the cells' and the groups'.
    std::vector<ReportData::Field> fields;
    std::vector<int> source;
    const auto add = [&](const QString& name, CellFormat format) {
        for (const ReportData::Field& f : fields)
            if (f.name.compare(name, Qt::CaseInsensitive) == 0)
                return;
        const int index = q->columnIndex(name);
        if (index < 0)
            throw ReportError(
                QStringLiteral("Raportin %1 kenttää %2 ei ole sen kyselyssä.").arg(d.name, name));
        fields.push_back({ name, format });
        source.push_back(index);
    };
    struct Running {
        int field, start, plus, minus;
    };
    std::vector<const ReportColumn*> runningColumns;
    for (const ReportColumn& c : d.columns) {
        if (c.running())
            runningColumns.push_back(&c);
        else
            add(c.field, c.format);
    }
    const int columnFields = int(fields.size());
    for (auto it = d.fields.begin(); it != d.fields.end(); ++it)
        add(it.key(), it.value());
    const int cellFields = int(fields.size());
    for (const ReportGroup& g : d.groups)
        add(g.field, CellFormat::Text);
    // Running balances are summed here, after the rows they add up.
    const int readFields = int(fields.size());
    const auto known = [&](const QString& name) {
        for (int i = 0; i < readFields; ++i)
            if (fields[size_t(i)].name.compare(name, Qt::CaseInsensitive) == 0)
                return i;
        if (name.isEmpty())
            return -1;
        throw ReportError(QStringLiteral("Raportin %1 juoksevan summan kenttää %2 ei ole sen tiedoissa.")
                              .arg(d.name, name));
    };
    std::vector<Running> running;
    for (const ReportColumn* c : runningColumns) {
        running.push_back(
            { int(fields.size()), known(c->runningStart), known(c->runningPlus), known(c->runningMinus) });
        fields.push_back({ c->field, c->format });
    }
    const int groupField = d.groups.isEmpty() ? -1 : known(d.groups.first().field);
    // The cells' own fields hold one value per outermost group: read at its first row only.
    std::vector<bool> perGroup(size_t(readFields), false);
    for (int f = columnFields; f < cellFields; ++f)
        perGroup[size_t(f)] = groupField >= 0 && f != groupField;

    auto data = std::make_shared<ReportData>(fields);
    const auto read = [&](int row, int f) {
        const int column = source[size_t(f)];
        if (q->isNull(column))
            return;
        switch (fields[size_t(f)].format) {
        case CellFormat::Money:
        case CellFormat::Integer:
            data->setNumber(row, f, q->integer(column));
            break;
        case CellFormat::Date:
            data->setDate(row, f, q->bytes(column));
            break;
        case CellFormat::Percentage:
            data->setValue(row, f, q->real(column));
            break;
        case CellFormat::Text:
            data->setText(row, f, q->text(column));
            break;
        }
    };
    int row = 0;
    std::vector<qint64> sums(running.size(), 0);
    try {
        while (q->next()) {
            data->appendRow();
            if (groupField >= 0)
                read(row, groupField);
            const bool first = row == 0 || (groupField >= 0 && !data->sameValue(row, row - 1, groupField));
            for (int f = 0; f < readFields; ++f) {
                if (f == groupField)
                    continue;
                if (!first && perGroup[size_t(f)])
                    data->copyValue(row, row - 1, f);
                else
                    read(row, f);
            }
            for (size_t i = 0; i < running.size(); ++i) {
                const Running& r = running[i];
                if (first)
                    sums[i] = r.start >= 0 ? data->numberAt(row, r.start) : 0;
                sums[i] += data->numberAt(row, r.plus) - (r.minus >= 0 ? data->numberAt(row, r.minus) : 0);
                data->setNumber(row, r.field, sums[i]);
            }
            ++row;
            if (progress && row % 2000 == 0 && !progress(row))
                throw ReportCancelled();
        }
    } catch (const DatabaseError& e) {
        throw ReportError(e.message(failure));
    }
    return data;
}

LayoutOptions options(const ReportDefinition& d, const ReportJob& job)
{
    const BookkeepingSettings& settings = ProgramSettings::bookkeeping();
    LayoutOptions o;
    o.fonts = d.fonts;
    if (job.fontSet != 1 && job.fontSet != 2)
        throw ReportError(
            QStringLiteral("Raportin %1 kirjasinsarja %2 ei ole 1 eikä 2.").arg(d.name).arg(job.fontSet));
    try {
        SectionFonts::apply(
            SectionFonts::entries(job.fontSet, settings.Fontti, settings.FonttiKoko), o.fonts);
    } catch (const ReportError& e) {
        fail(d, QStringLiteral("kirjasimia ei voi asettaa"), e);
    }
    o.margins = ProgramSettings::reportMargins();
    o.landscape = d.orientation == Orientation::Landscape
        || (d.orientation == Orientation::Setting && settings.VaakaTulostus);

    const QString seurannimi = d.formulaName(QStringLiteral("Seurannimi"));
    if (!seurannimi.isEmpty())
        o.formulas.insert(seurannimi, settings.Seurannimi);
    for (const QString& text : job.formulas) {
        const std::optional<ReportFormulas::Named> f = ReportFormulas::parse(text);
        if (!f)
            throw ReportError(
                QStringLiteral("Raportin %1 kaava \"%2\" ei ole muotoa Nimi= 'teksti'.").arg(d.name, text));
        const QString name = d.formulaName(f->name);
        if (name.isEmpty())
            throw ReportError(QStringLiteral("Raportissa %1 ei ole kaavaa %2.").arg(d.name, f->name));
        o.formulas.insert(name, f->value);
    }
    if (job.printDate.isValid())
        o.printDate = job.printDate;
    if (job.periodStart.isValid() && job.periodEnd.isValid())
        o.period = Dates::format(job.periodStart) + QStringLiteral(" - ") + Dates::format(job.periodEnd);
    return o;
}

std::unique_ptr<ReportDocument> run(const QSqlDatabase& db, const ReportJob& job, const Progress& progress)
{
    ReportDefinition d = definition(job.reportFile);
    LayoutOptions o = options(d, job);
    std::shared_ptr<ReportData> data = fetch(db, d, job, progress);
    return std::make_unique<ReportDocument>(std::move(d), std::move(data), std::move(o));
}

} // namespace ReportEngine
