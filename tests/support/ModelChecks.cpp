#include "ModelChecks.h"

#include "core/DatabaseError.h"
#include "statements/TemplateChecks.h"

#include <QSqlError>
#include <QSqlQuery>

namespace ModelChecks {

namespace {

// Each rule selects one finding per row; {year} and {previous} stand for the fiscal year and
// the one before it.
const char* const EveryBook[] = {
    "SELECT 'Tilin ' || tlNumero || ' numero ei ole nelinumeroinen' FROM tl "
    "WHERE tlNumero NOT BETWEEN 1000 AND 9999",
    "SELECT 'Tilinumero ' || tlNumero || ' on kahdella tilillä' FROM tl "
    "GROUP BY tlNumero HAVING COUNT(*) > 1",
    // The account tree drops accounts whose name does not begin with a letter.
    "SELECT 'Tilin ' || tlNumero || ' nimi \"' || COALESCE(tlNimi, '') || '\" ei ala kirjaimella tai on "
    "yli 50 merkkiä' FROM tl "
    "WHERE tlNimi IS NULL OR tlNimi NOT GLOB '[A-Za-zÅÄÖåäö]*' OR length(tlNimi) > 50",
    "SELECT 'Tilikartassa on vain ' || COUNT(*) || ' tiliä' FROM tl HAVING COUNT(*) < 40",
    "SELECT 'Tuloslaskelma- ja tasemalleja pitää olla yksi kumpaakin' FROM (SELECT TOTAL(maTyyppi = 1) AS i, "
    "TOTAL(maTyyppi = 2) AS b FROM ma) WHERE i <> 1 OR b <> 1",
    // Rows name accounts that exist, income statement rows only accounts from 3000 up and balance
    // sheet rows only accounts below 3000.
    "SELECT 'Rivin ' || mrTeksti || ' tililuettelo \"' || mrTilit || '\" ei ole muotoa \"id,id,\"' FROM mr "
    "WHERE mrTilit <> '' AND (mrTilit GLOB '*[^0-9,]*' OR mrTilit NOT GLOB '*,' OR mrTilit GLOB ',*' "
    "OR mrTilit GLOB '*,,*')",
    "WITH RECURSIVE ids (caption, income, id, rest) AS (SELECT mrTeksti, maTyyppi = 1, NULL, mrTilit FROM mr "
    "JOIN ma ON maID = mrmaID UNION ALL SELECT caption, income, substr(rest, 1, instr(rest, ',') - 1), "
    "substr(rest, instr(rest, ',') + 1) FROM ids WHERE instr(rest, ',') > 0) "
    "SELECT CASE WHEN tlID IS NULL THEN 'Rivin ' || caption || ' tililuettelossa on tili ' || id || ', jota "
    "ei ole' ELSE 'Tili ' || tlNumero || ' kuuluu ' || CASE WHEN income THEN 'taseeseen' ELSE "
    "'tuloslaskelmaan' END || ', mutta se on rivillä ' || caption END FROM ids "
    "LEFT JOIN tl ON tlID = CAST(id AS INTEGER) "
    "WHERE id <> '' AND (tlID IS NULL OR (tlNumero >= 3000) <> income)",
    // The settings a new book starts with.
    "SELECT 'Asetus ' || k || ' on ' || n || ' kertaa, pitää olla kerran' FROM (SELECT column1 AS k, "
    "(SELECT COUNT(*) FROM Settings WHERE setSection = 'VORKAM' AND setKey = column1) AS n FROM (VALUES "
    "('TilikausiAlku'), ('TilikausiLoppu'), ('EdTilikausiAlku'), ('EdTilikausiLoppu'), ('Seurannimi'), "
    "('LaskettavaTili'), ('VoittoTaseella'))) WHERE n <> 1",
    "SELECT setKey || ' on \"' || setString || '\", pitää olla ' || column2 FROM Settings JOIN (VALUES "
    "('TilikausiAlku', '1.1.{year}'), ('TilikausiLoppu', '31.12.{year}'), ('EdTilikausiAlku', "
    "'1.1.{previous}'), ('EdTilikausiLoppu', '31.12.{previous}')) ON setKey = column1 "
    "WHERE setSection = 'VORKAM' AND setString IS NOT column2",
    "SELECT 'LaskettavaTili (' || setString || ') ei ole pankkitili 1910–1919' FROM Settings "
    "LEFT JOIN tl ON tlID = CAST(setString AS INTEGER) WHERE setSection = 'VORKAM' "
    "AND setKey = 'LaskettavaTili' AND COALESCE(tlNumero, 0) NOT BETWEEN 1910 AND 1919",
    // The year's result goes to this balance sheet account, never to the income statement's own.
    "SELECT 'VoittoTaseella (' || s.setString || '): taseen voittorivi ' || COALESCE(b.t, '') || ', "
    "tuloslaskelman voittorivit ' || COALESCE(i.t, '') FROM Settings s, (SELECT group_concat(mrTilit, ' ') "
    "AS t, COUNT(*) AS n FROM mr JOIN ma ON maID = mrmaID WHERE maTyyppi = 2 AND mrTeksti = 'Tilikauden "
    "ylijäämä (alijäämä)') b, (SELECT group_concat(mrTilit, ' ') AS t, COUNT(*) AS n FROM mr JOIN ma ON "
    "maID = mrmaID WHERE maTyyppi = 1 AND mrIsVoitto <> 0) i WHERE s.setSection = 'VORKAM' AND "
    "s.setKey = 'VoittoTaseella' AND (i.n <> 1 OR b.n <> 1 OR b.t <> s.setString || ',' OR i.t = b.t)",
};

const char* const Model[] = {
    "SELECT 'Mallissa on ' || n || ' tositetta tai vientiä' FROM (SELECT (SELECT COUNT(*) FROM \"to\") + "
    "(SELECT COUNT(*) FROM vi) + (SELECT COUNT(*) FROM toE) + (SELECT COUNT(*) FROM viE) AS n) WHERE n > 0",
};

// A year of vouchers: balanced, on existing accounts, numbered 0.. in the year, with one
// opening voucher 0 on the first day and closing vouchers on the last; each entry positive, of
// a side, and marked opening or closing as its voucher is.
const char* const Demo[] = {
    "SELECT 'Edellisen vuoden tauluissa on ' || n || ' riviä' FROM (SELECT (SELECT COUNT(*) FROM toE) + "
    "(SELECT COUNT(*) FROM viE) AS n) WHERE n > 0",
    "SELECT 'Tositenumerot eivät ole 0.. peräkkäin: ' || toNumero FROM (SELECT toNumero, ROW_NUMBER() OVER "
    "(ORDER BY toNumero) - 1 AS n FROM \"to\") WHERE toNumero IS NOT n",
    // Adding no days turns a day that does not exist (30.2.) into another.
    "SELECT 'Tositteen ' || toNumero || ' päivämäärä \"' || COALESCE(toPvm, '') || '\" ei ole tilikaudella' "
    "FROM \"to\" WHERE toPvm IS NULL OR toPvm NOT BETWEEN '{year}-01-01' AND '{year}-12-31' "
    "OR date(toPvm, '+0 days') IS NOT toPvm",
    "SELECT 'Tosite ' || toNumero || ' ei täsmää: debet ' || d || ', kredit ' || k || ', vientejä ' || n "
    "FROM (SELECT t.toNumero, SUM(CASE WHEN v.viTyyppi = 'D' THEN v.viArvo ELSE 0 END) AS d, "
    "SUM(CASE WHEN v.viTyyppi = 'K' THEN v.viArvo ELSE 0 END) AS k, COUNT(v.viID) AS n, "
    "SUM(v.viArvo <= 0 OR v.viTyyppi NOT IN ('D', 'K') OR (v.viAvausvienti <> 0) <> (t.toAvaustosite <> 0) "
    "OR (v.viPaatosvienti <> 0) <> (t.toPaatostosite <> 0)) AS bad "
    "FROM \"to\" t LEFT JOIN vi v ON v.vitoID = t.toID GROUP BY t.toID) WHERE d <> k OR n < 2 OR bad <> 0",
    "SELECT 'Avaustositteita on ' || COUNT(*) || ', pitää olla yksi: numero 0 tilikauden alussa' FROM \"to\" "
    "WHERE toAvaustosite <> 0 HAVING COUNT(*) <> 1 OR MAX(toNumero) <> 0 OR MAX(toPvm) IS NOT '{year}-01-01'",
    "SELECT 'Tilinpäätöstositteet eivät ole tilikauden lopussa' FROM (SELECT COUNT(*) AS n, "
    "TOTAL(toPvm IS NOT '{year}-12-31') AS elsewhere FROM \"to\" WHERE toPaatostosite <> 0) "
    "WHERE n = 0 OR elsewhere > 0",
    "SELECT 'Viennin (viID ' || viID || ') tiliä ' || vitlID || ' tai tositetta ei ole' FROM vi "
    "WHERE vitlID NOT IN (SELECT tlID FROM tl) OR vitoID NOT IN (SELECT toID FROM \"to\")",
};

// A failing query is a finding too: a book without a table must not pass by reading nothing.
template <size_t N>
void apply(const QSqlDatabase& db, const char* const (&rules)[N], int year, QStringList& f)
{
    for (const char* rule : rules) {
        const QString sql = QString::fromUtf8(rule)
                                .replace(QLatin1String("{year}"), QString::number(year))
                                .replace(QLatin1String("{previous}"), QString::number(year - 1));
        QSqlQuery q(db);
        if (!q.exec(sql))
            f << QStringLiteral("Kysely epäonnistui: %1 (%2)").arg(q.lastError().text(), sql);
        while (q.next())
            f << q.value(0).toString();
    }
}

} // namespace

QList<ShippedBook> shippedBooks()
{
    // Each book's income statement main rows in order, parted by '|'.
    const auto rows = [](const char* text) { return QString::fromUtf8(text).split(u'|'); };
    const QStringList association = rows("Varsinainen toiminta|Varainhankinta|Sijoitus- ja rahoitustoiminta|"
                                         "Yleisavustukset|Tilikauden tulos|Tilinpäätössiirrot|"
                                         "Tilikauden ylijäämä (alijäämä)");
    QStringList lions = association;
    lions[5] = QStringLiteral("Aktiviteettirahaston muutos");
    const QStringList housing = rows("Kiinteistön tuotot|Kiinteistön hoitokulut|Hoitokate|"
                                     "Poistot ja arvonalentumiset|Rahoitustuotot ja -kulut|"
                                     "Tilikauden ylijäämä (alijäämä)");
    return {
        { QStringLiteral("perusmalli"), QStringLiteral("mallit/perusmalli.mdb"), false, association },
        { QStringLiteral("aoymalli"), QStringLiteral("mallit/aoymalli.mdb"), false, housing },
        { QStringLiteral("metalli"), QStringLiteral("mallit/metalli.mdb"), false, association },
        { QStringLiteral("lions"), QStringLiteral("mallit/lions.mdb"), false, lions },
        { QStringLiteral("demo1"), QStringLiteral("demo1.mdb"), true, association },
    };
}

ShippedBook shippedBook(const QString& name)
{
    for (const ShippedBook& book : shippedBooks())
        if (book.name == name)
            return book;
    return {};
}

QStringList checkShippedBook(const QSqlDatabase& db, const ShippedBook& book, int year)
{
    QStringList f;
    apply(db, EveryBook, year, f);
    if (book.demo)
        apply(db, Demo, year, f);
    else
        apply(db, Model, year, f);
    try {
        QSqlQuery q = Sql::run(db,
            QStringLiteral("SELECT mrTeksti FROM mr JOIN ma ON maID = mrmaID "
                           "WHERE maTyyppi = 1 AND mrBelongsToGroup = 0 ORDER BY mrGroupOrder, mrID"));
        QStringList mains;
        while (q.next())
            mains << q.value(0).toString();
        if (mains != book.incomeStatementMainRows)
            f << QStringLiteral("Tuloslaskelman päärivit ovat %1").arg(mains.join(QStringLiteral(", ")));
        // The program's own template checks, on the balance sheet and the income statement it
        // takes its profit from.
        const TemplateChecks::Pair pair = TemplateChecks::pairFor(
            db, Sql::scalar(db, QStringLiteral("SELECT MIN(maID) FROM ma WHERE maTyyppi = 2")).toInt());
        if (pair.complete())
            f += TemplateChecks::listLines(TemplateChecks::run(db, pair));
        else
            f << QStringLiteral("Tasemallin maTulosMaID ei ole tuloslaskelmamallin tunnus");
    } catch (const DatabaseError& e) {
        f << QStringLiteral("Mallien tarkistus epäonnistui: %1").arg(QString::fromUtf8(e.what()));
    }
    return f;
}

} // namespace ModelChecks
