#include "StatementExport.h"

#include "Dates.h"
#include "ReportDocument.h"
#include "ReportEngine.h"

namespace {

std::unique_ptr<ReportDocument> document(
    const QSqlDatabase& db, const QByteArray& json, const QString& name, const QString& heading)
{
    ReportDefinition d = ReportDefinition::parse(json, name);
    ReportJob job;
    job.reportFile = name;
    job.formulas << QStringLiteral("Otsake= '%1'").arg(heading);
    LayoutOptions o = ReportEngine::options(d, job);
    std::shared_ptr<ReportData> data = ReportEngine::fetch(db, d, job);
    return std::make_unique<ReportDocument>(std::move(d), std::move(data), std::move(o));
}

} // namespace

namespace StatementExport {

QString incomeHeading(const QDate& start, const QDate& end, const QDate& fiscalStart, const QDate& fiscalEnd)
{
    return QStringLiteral("Kirjanpidon tuloslaskelma : Ajalle : %1 - %2 Tilikaudella : %3 - %4")
        .arg(Dates::format(start), Dates::format(end), Dates::format(fiscalStart), Dates::format(fiscalEnd));
}

QString balanceHeading(const QDate& end)
{
    return QStringLiteral("Kirjanpidon tase : ") + Dates::format(end);
}

std::unique_ptr<ReportDocument> incomeStatement(const QSqlDatabase& db, const QString& heading)
{
    static const QByteArray json = R"({
      "query": {
        "select": "SELECT tulaTyyppi AS Taso, tulaMerkki AS Merkki, tulaTeksti AS Rivi, tulaToteutunutKuluva AS Kausi, tulaProsLvastaKuluva AS KausiLv, tulaToteutunutEdellinen AS EdKausi, tulaProsMuutos AS KausiMuutos, tulaToteutunutKuluvaAlusta AS Alusta, tulaProsLvastaKuluvaAlusta AS AlustaLv, tulaToteutunutEdellinenAlusta AS EdAlusta, tulaMuutosAlusta AS Muutos, tulaProsMuutosAlusta AS MuutosPros FROM tula",
        "orderBy": "tula.tulaID",
        "tables": ["tula"]
      },
      "formulas": { "Seurannimi": "", "Otsake": "Tuloslaskelma" },
      "title": ["{Seurannimi}", "{Otsake}"],
      "columns": [
        { "field": "Taso", "caption": "Taso", "width": 0.6, "format": "integer" },
        { "field": "Merkki", "caption": "Merkki", "width": 0.6, "format": "text" },
        { "field": "Rivi", "caption": "Rivi", "width": 5, "format": "text" },
        { "field": "Kausi", "caption": "Kausi", "width": 1.6, "format": "money" },
        { "field": "KausiLv", "caption": "% liikevaihdosta", "width": 1, "format": "percentage" },
        { "field": "EdKausi", "caption": "Edellinen kausi", "width": 1.6, "format": "money" },
        { "field": "KausiMuutos", "caption": "Muutos %", "width": 1, "format": "percentage" },
        { "field": "Alusta", "caption": "Tilikauden alusta", "width": 1.6, "format": "money" },
        { "field": "AlustaLv", "caption": "% liikevaihdosta alusta", "width": 1, "format": "percentage" },
        { "field": "EdAlusta", "caption": "Edellisen tilikauden alusta", "width": 1.6, "format": "money" },
        { "field": "Muutos", "caption": "Muutos alusta", "width": 1.6, "format": "money" },
        { "field": "MuutosPros", "caption": "Muutos % alusta", "width": 1, "format": "percentage" }
      ]
    })";
    return document(db, json, QStringLiteral("tuloslaskelma"), heading);
}

std::unique_ptr<ReportDocument> balanceSheet(const QSqlDatabase& db, const QString& heading)
{
    static const QByteArray json = R"({
      "query": {
        "select": "SELECT taseTyyppi AS Taso, taseMerkki AS Merkki, taseteksti AS Rivi, tasetlID AS Tili, taseAlkusaldo AS Alkusaldo, taseMuutos AS Muutos, taseLoppusaldo AS Loppusaldo, taseLoppusaldoEdellinen AS EdLoppusaldo, taseMuutosEdelliseen AS MuutosEd, taseMuutosProsEdelliseen AS MuutosPros FROM tase",
        "orderBy": "tase.taseID",
        "tables": ["tase"]
      },
      "formulas": { "Seurannimi": "", "Otsake": "Tase" },
      "title": ["{Seurannimi}", "{Otsake}"],
      "columns": [
        { "field": "Taso", "caption": "Taso", "width": 0.6, "format": "integer" },
        { "field": "Merkki", "caption": "Merkki", "width": 0.6, "format": "text" },
        { "field": "Rivi", "caption": "Rivi", "width": 5, "format": "text" },
        { "field": "Tili", "caption": "Tilin tunniste", "width": 0.8, "format": "integer" },
        { "field": "Alkusaldo", "caption": "Alkusaldo", "width": 1.6, "format": "money" },
        { "field": "Muutos", "caption": "Muutos", "width": 1.6, "format": "money" },
        { "field": "Loppusaldo", "caption": "Loppusaldo", "width": 1.6, "format": "money" },
        { "field": "EdLoppusaldo", "caption": "Edellinen loppusaldo", "width": 1.6, "format": "money" },
        { "field": "MuutosEd", "caption": "Muutos edelliseen", "width": 1.6, "format": "money" },
        { "field": "MuutosPros", "caption": "Muutos %", "width": 1, "format": "percentage" }
      ]
    })";
    return document(db, json, QStringLiteral("tase"), heading);
}

} // namespace StatementExport
