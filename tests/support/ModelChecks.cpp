#include "ModelChecks.h"

#include "core/DatabaseError.h"
#include "core/Dates.h"
#include "statements/TemplateChecks.h"

#include <QDate>
#include <QHash>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

namespace ModelChecks {

namespace {

using Rows = QList<QVariantList>;

// A failing query is a finding too: a book without a table must not pass by reading nothing.
Rows select(const QSqlDatabase& db, const QString& sql, QStringList& f)
{
    Rows rows;
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(sql)) {
        f << QStringLiteral("Kysely epäonnistui: %1 (%2)").arg(q.lastError().text(), sql);
        return rows;
    }
    while (q.next()) {
        QVariantList row;
        for (int i = 0; i < q.record().count(); ++i)
            row << q.value(i);
        rows << row;
    }
    return rows;
}

QVariant scalar(const QSqlDatabase& db, const QString& sql, QStringList& f)
{
    const Rows rows = select(db, sql, f);
    return rows.isEmpty() || rows.first().isEmpty() ? QVariant() : rows.first().first();
}

// Reports first, filled by the program as it runs; a shipped book starts with them empty.
void checkWorkTables(const QSqlDatabase& db, QStringList& f)
{
    for (const char* table : { "tula", "tase", "tk", "tlSaldot", "tlTarkastelut" }) {
        const qint64 n
            = scalar(db, QStringLiteral("SELECT COUNT(*) FROM %1").arg(QLatin1String(table)), f).toLongLong();
        if (n != 0)
            f << QStringLiteral("Työtaulussa %1 on %2 riviä").arg(QLatin1String(table)).arg(n);
    }
}

void checkChart(const QSqlDatabase& db, QHash<qint32, qint64>& numberOf, QStringList& f)
{
    QHash<qint64, int> used;
    for (const QVariantList& r : select(db, QStringLiteral("SELECT tlID, tlNumero, tlNimi FROM tl"), f)) {
        const qint64 number = r[1].toLongLong();
        const QString name = r[2].toString();
        numberOf.insert(r[0].toInt(), number);
        if (number < 1000 || number > 9999)
            f << QStringLiteral("Tilin %1 numero ei ole nelinumeroinen").arg(number);
        if (++used[number] == 2)
            f << QStringLiteral("Tilinumero %1 on kahdella tilillä").arg(number);
        // The account tree drops accounts whose name does not begin with a letter.
        if (name.trimmed().isEmpty() || !name.front().isLetter() || name.size() > 50)
            f << QStringLiteral("Tilin %1 nimi \"%2\" on tyhjä, ei ala kirjaimella tai on yli 50 merkkiä")
                     .arg(number)
                     .arg(name);
    }
    if (numberOf.size() < 40)
        f << QStringLiteral("Tilikartassa on vain %1 tiliä").arg(numberOf.size());
}

// The pair of one income statement and the balance sheet that takes its profit.
TemplateChecks::Pair checkTemplates(const QSqlDatabase& db, QStringList& f)
{
    const Rows kinds = select(db,
        QStringLiteral(
            "SELECT SUM(maTyyppi = 1), SUM(maTyyppi = 2), MIN(CASE WHEN maTyyppi = 2 THEN maID END) "
            "FROM ma"),
        f);
    if (kinds.isEmpty() || kinds[0][0].toInt() != 1 || kinds[0][1].toInt() != 1) {
        f << QStringLiteral("Tuloslaskelma- ja tasemalleja pitää olla yksi kumpaakin");
        return {};
    }
    const TemplateChecks::Pair pair = TemplateChecks::pairFor(db, kinds[0][2].toInt());
    if (!pair.complete())
        f << QStringLiteral("Tasemallin maTulosMaID ei ole tuloslaskelmamallin tunnus");
    return pair;
}

// Rows name accounts that exist, income statement rows only accounts from 3000 up and balance
// sheet rows only accounts below 3000.
void checkRowAccounts(const QSqlDatabase& db, const QHash<qint32, qint64>& numberOf, QStringList& f)
{
    static const QRegularExpression list(QStringLiteral("^(?:[0-9]+,)*$"));
    for (const QVariantList& r : select(db,
             QStringLiteral(
                 "SELECT mrTeksti, mrTilit, maTyyppi FROM mr JOIN ma ON maID = mrmaID ORDER BY mrID"),
             f)) {
        const QString caption = r[0].toString();
        const QString accounts = r[1].toString();
        if (!list.match(accounts).hasMatch()) {
            f << QStringLiteral("Rivin %1 tililuettelo \"%2\" ei ole muotoa \"id,id,\"")
                     .arg(caption, accounts);
            continue;
        }
        const bool income = r[2].toInt() == 1;
        for (const QString& id : accounts.split(u',', Qt::SkipEmptyParts)) {
            const auto number = numberOf.constFind(id.toInt());
            if (number == numberOf.constEnd())
                f << QStringLiteral("Rivin %1 tililuettelossa on tili %2, jota ei ole").arg(caption, id);
            else if ((*number >= 3000) != income)
                f << QStringLiteral("Tili %1 kuuluu %2, mutta se on rivillä %3")
                         .arg(*number)
                         .arg(income ? QStringLiteral("taseeseen") : QStringLiteral("tuloslaskelmaan"),
                             caption);
        }
    }
}

void checkSettings(const QSqlDatabase& db, const QHash<qint32, qint64>& numberOf, int year, QStringList& f)
{
    QHash<QString, QStringList> values;
    for (const QVariantList& r :
        select(db, QStringLiteral("SELECT setKey, setString FROM Settings WHERE setSection = 'VORKAM'"), f))
        values[r[0].toString()] << r[1].toString();
    const auto value = [&values](const char* key) { return values.value(QLatin1String(key)).value(0); };
    const QList<std::pair<const char*, QString>> wanted = {
        { "TilikausiAlku", Dates::format(QDate(year, 1, 1)) },
        { "TilikausiLoppu", Dates::format(QDate(year, 12, 31)) },
        { "EdTilikausiAlku", Dates::format(QDate(year - 1, 1, 1)) },
        { "EdTilikausiLoppu", Dates::format(QDate(year - 1, 12, 31)) },
        { "Seurannimi", QString() },
        { "LaskettavaTili", QString() },
        { "VoittoTaseella", QString() },
    };
    for (const auto& [key, expected] : wanted) {
        const qsizetype n = values.value(QLatin1String(key)).size();
        if (n != 1)
            f << QStringLiteral("Asetus %1 on %2 kertaa, pitää olla kerran").arg(QLatin1String(key)).arg(n);
        else if (!expected.isEmpty() && value(key) != expected)
            f << QStringLiteral("%1 on \"%2\", pitää olla %3").arg(QLatin1String(key), value(key), expected);
    }
    if (value("Seurannimi").trimmed().isEmpty())
        f << QStringLiteral("Seurannimi on tyhjä");
    const qint64 bank = numberOf.value(value("LaskettavaTili").toInt());
    if (bank < 1910 || bank > 1919)
        f << QStringLiteral("LaskettavaTili (%1) ei ole pankkitili 1910–1919").arg(value("LaskettavaTili"));
    // The year's result goes to this balance sheet account, never to the income statement's own.
    const QString profit = value("VoittoTaseella");
    QStringList income;
    QStringList balance;
    for (const QVariantList& r : select(db,
             QStringLiteral(
                 "SELECT mrTilit, maTyyppi FROM mr JOIN ma ON maID = mrmaID WHERE (maTyyppi = 1 AND "
                 "mrIsVoitto <> 0) OR (maTyyppi = 2 AND mrTeksti = 'Tilikauden ylijäämä (alijäämä)')"),
             f))
        (r[1].toInt() == 1 ? income : balance) << r[0].toString();
    if (income.size() != 1 || balance != QStringList { profit + u',' } || income.first() == balance.first())
        f << QStringLiteral("VoittoTaseella (%1): taseen voittorivi %2, tuloslaskelman voittorivit %3")
                 .arg(profit, balance.join(u' '), income.join(u' '));
}

void checkMainRows(const QSqlDatabase& db, const ShippedBook& book, QStringList& f)
{
    QStringList mains;
    for (const QVariantList& r : select(db,
             QStringLiteral("SELECT mrTeksti FROM mr JOIN ma ON maID = mrmaID "
                            "WHERE maTyyppi = 1 AND mrBelongsToGroup = 0 ORDER BY mrGroupOrder, mrID"),
             f))
        mains << r[0].toString();
    if (mains != book.incomeStatementMainRows)
        f << QStringLiteral("Tuloslaskelman päärivit ovat %1").arg(mains.join(QStringLiteral(", ")));
}

void checkNoVouchers(const QSqlDatabase& db, QStringList& f)
{
    const qint64 n = scalar(db,
        QStringLiteral("SELECT (SELECT COUNT(*) FROM \"to\") + (SELECT COUNT(*) FROM vi) "
                       "+ (SELECT COUNT(*) FROM toE) + (SELECT COUNT(*) FROM viE)"),
        f)
                         .toLongLong();
    if (n != 0)
        f << QStringLiteral("Mallissa on %1 tositetta tai vientiä").arg(n);
}

// A year of vouchers: balanced, on existing accounts, numbered 0.. in the year, with one
// opening voucher 0 on the first day and closing vouchers on the last; each entry positive, of
// a side, and marked opening or closing as its voucher is.
void checkVouchers(const QSqlDatabase& db, int year, QStringList& f)
{
    const QString first = Dates::toSql(QDate(year, 1, 1));
    const QString last = Dates::toSql(QDate(year, 12, 31));
    const qint64 previous
        = scalar(db, QStringLiteral("SELECT (SELECT COUNT(*) FROM toE) + (SELECT COUNT(*) FROM viE)"), f)
              .toLongLong();
    if (previous != 0)
        f << QStringLiteral("Edellisen vuoden tauluissa on %1 riviä").arg(previous);
    qint64 count = 0;
    qint64 openings = 0;
    qint64 closings = 0;
    for (const QVariantList& r : select(db,
             QStringLiteral("SELECT t.toNumero, t.toPvm, t.toAvaustosite, t.toPaatostosite, "
                            "SUM(CASE WHEN v.viTyyppi = 'D' THEN v.viArvo ELSE 0 END), "
                            "SUM(CASE WHEN v.viTyyppi = 'K' THEN v.viArvo ELSE 0 END), COUNT(v.viID), "
                            "SUM(v.viArvo <= 0 OR v.viTyyppi NOT IN ('D', 'K') OR (v.viAvausvienti <> 0) <> "
                            "(t.toAvaustosite <> 0) OR (v.viPaatosvienti <> 0) <> (t.toPaatostosite <> 0)) "
                            "FROM \"to\" t LEFT JOIN vi v ON v.vitoID = t.toID "
                            "GROUP BY t.toID ORDER BY t.toNumero"),
             f)) {
        const QString number = r[0].toString();
        const QString date = r[1].toString();
        if (r[0].toLongLong() != count++)
            f << QStringLiteral("Tositenumerot eivät ole 0..%1 peräkkäin: %2").arg(count - 1).arg(number);
        if (date < first || date > last || !Dates::fromSql(date).isValid())
            f << QStringLiteral("Tositteen %1 päivämäärä \"%2\" ei ole tilikaudella").arg(number, date);
        if (r[4].toLongLong() != r[5].toLongLong() || r[6].toLongLong() < 2 || r[7].toLongLong() != 0)
            f << QStringLiteral("Tosite %1 ei täsmää: debet %2, kredit %3, vientejä %4")
                     .arg(number, r[4].toString(), r[5].toString(), r[6].toString());
        if (r[2].toLongLong() != 0) {
            ++openings;
            if (r[0].toLongLong() != 0 || date != first)
                f << QStringLiteral("Avaustosite %1 ei ole numero 0 tilikauden alussa").arg(number);
        }
        if (r[3].toLongLong() != 0) {
            ++closings;
            if (date != last)
                f << QStringLiteral("Tilinpäätöstosite %1 ei ole tilikauden lopussa").arg(number);
        }
    }
    if (count == 0)
        f << QStringLiteral("Esimerkissä ei ole tositteita");
    if (openings != 1)
        f << QStringLiteral("Avaustositteita on %1, pitää olla yksi").arg(openings);
    if (closings == 0)
        f << QStringLiteral("Tilinpäätöstositteita ei ole");
    for (const QVariantList& r : select(db,
             QStringLiteral("SELECT viID, vitlID FROM vi WHERE vitlID NOT IN (SELECT tlID FROM tl) "
                            "OR vitoID NOT IN (SELECT toID FROM \"to\")"),
             f))
        f << QStringLiteral("Viennin (viID %1) tiliä %2 tai tositetta ei ole")
                 .arg(r[0].toString(), r[1].toString());
}

} // namespace

QList<ShippedBook> shippedBooks()
{
    const QString profit = QStringLiteral("Tilikauden ylijäämä (alijäämä)");
    const QStringList association
        = { QStringLiteral("Varsinainen toiminta"), QStringLiteral("Varainhankinta"),
              QStringLiteral("Sijoitus- ja rahoitustoiminta"), QStringLiteral("Yleisavustukset"),
              QStringLiteral("Tilikauden tulos"), QStringLiteral("Tilinpäätössiirrot"), profit };
    QStringList lions = association;
    lions[5] = QStringLiteral("Aktiviteettirahaston muutos");
    const QStringList housing = { QStringLiteral("Kiinteistön tuotot"),
        QStringLiteral("Kiinteistön hoitokulut"), QStringLiteral("Hoitokate"),
        QStringLiteral("Poistot ja arvonalentumiset"), QStringLiteral("Rahoitustuotot ja -kulut"), profit };
    return {
        { QStringLiteral("perusmalli"), QStringLiteral("mallit/perusmalli.mdb"), false, association },
        { QStringLiteral("aoymalli"), QStringLiteral("mallit/aoymalli.mdb"), false, housing },
        { QStringLiteral("metalli"), QStringLiteral("mallit/metalli.mdb"), false, association },
        { QStringLiteral("lions"), QStringLiteral("mallit/lions.mdb"), false, lions },
        { QStringLiteral("demo1"), QStringLiteral("demo1.mdb"), true, association },
    };
}

QStringList checkShippedBook(const QSqlDatabase& db, const ShippedBook& book, int year)
{
    QStringList f;
    checkWorkTables(db, f);
    QHash<qint32, qint64> numberOf;
    checkChart(db, numberOf, f);
    checkRowAccounts(db, numberOf, f);
    checkSettings(db, numberOf, year, f);
    checkMainRows(db, book, f);
    if (book.demo)
        checkVouchers(db, year, f);
    else
        checkNoVouchers(db, f);
    const TemplateChecks::Pair pair = checkTemplates(db, f);
    if (pair.complete()) {
        try {
            f += TemplateChecks::listLines(TemplateChecks::run(db, pair));
        } catch (const DatabaseError& e) {
            f << QStringLiteral("Mallien tarkistus epäonnistui: %1").arg(QString::fromUtf8(e.what()));
        }
    }
    return f;
}

} // namespace ModelChecks
