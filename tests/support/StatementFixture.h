#pragma once

#include "ReportCommand.h"
#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "core/DBC.h"
#include "core/ProgramSettings.h"
#include "core/Schema.h"

#include <QDate>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>
#include <QTest>
#include <QVariant>
#include <functional>
#include <limits>
#include <memory>
#include <tuple>
#include <utility>

// An empty association database for 2012 (previous 2011) with scripted dialogs, writers and
// work-table readers.
class StatementFixture final {
public:
    StatementFixture()
    {
        const QString file = env.path(QStringLiteral("data/tilinpaatos.mdb"));
        withDatabase(file, [this](QSqlDatabase& db) {
            Schema::createCoreTables(db);
            ok = Schema::UpdateDatabase(db).ok;
        });
        ProgramSettings::installation().Database = file;
        ok = ok && DBC::instance().AvaaDB().isOpen();
        BookkeepingSettings& s = ProgramSettings::bookkeeping();
        s.TilikausiAlku = QDate(2012, 1, 1);
        s.TilikausiLoppu = QDate(2012, 12, 31);
        s.EdTilikausiAlku = QDate(2011, 1, 1);
        s.EdTilikausiLoppu = QDate(2011, 12, 31);
        s.VoittoTaseella = 0;
    }
    ~StatementFixture() { DBC::instance().SuljeDB(); }

    // A test class's fixture made afresh in its init, with `setUp` run on the open books; false
    // when the books did not open.
    static bool start(std::unique_ptr<StatementFixture>& f, const std::function<void()>& setUp = {})
    {
        f.reset();
        f = std::make_unique<StatementFixture>();
        if (f->ok && setUp)
            setUp();
        return f->ok;
    }

    // Checks in a test class's cleanup that the scripted dialogs went as scripted (with
    // `allAnswered` also that every scripted answer was used), then drops the fixture.
    static void finish(std::unique_ptr<StatementFixture>& f, bool allAnswered = false)
    {
        const std::unique_ptr<StatementFixture> done = std::move(f);
        QVERIFY2(done->dialogs.failures().isEmpty(), qPrintable(done->dialogs.failures().join(u'\n')));
        if (allAnswered)
            QCOMPARE(done->dialogs.remainingAnswers(), 0);
    }

    static QSqlDatabase db() { return DBC::instance().AvaaDB(); }

    static bool exec(const QString& sql, const QVariantList& values = {})
    {
        QSqlQuery q(db());
        bool done = q.prepare(sql);
        for (const QVariant& v : values)
            q.addBindValue(v);
        done = done && q.exec();
        if (!done)
            qWarning("%s: %s", qPrintable(sql), qPrintable(q.lastError().text()));
        return done;
    }

    static QVariant value(const QString& sql, const QVariantList& values = {})
    {
        QSqlQuery q(db());
        q.prepare(sql);
        for (const QVariant& v : values)
            q.addBindValue(v);
        return q.exec() && q.next() ? q.value(0) : QVariant();
    }

    static int count(const QString& table, const QString& where = QStringLiteral("1 = 1"))
    {
        return value(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE %2").arg(table, where)).toInt();
    }

    static void account(int id, int numero, const QString& nimi = QString())
    {
        exec(QStringLiteral("INSERT INTO tl (tlID, tlNumero, tlNimi, tlKuvaus) VALUES (?, ?, ?, ' ')"),
            { id, numero, nimi.isEmpty() ? QStringLiteral("Tili %1").arg(numero) : nimi });
    }

    // A balanced voucher of the current year, or of the previous one: `cents` on the debit of one
    // account and the credit of another; gives its key.
    static int post(
        const QString& pvm, int debit, int credit, qint64 cents, bool previous = false, bool opening = false)
    {
        const std::pair<int, QString> sides[]
            = { { debit, QStringLiteral("D") }, { credit, QStringLiteral("K") } };
        if (previous) {
            const int id = value(QStringLiteral("SELECT COALESCE(MAX(toEID), 0) + 1 FROM toE")).toInt();
            exec(QStringLiteral("INSERT INTO toE (toEID, toENumero, toEPvm, toESelite, toEAvaustosite) "
                                "VALUES (?, 1, ?, 'Tosite', ?)"),
                { id, pvm, int(opening) });
            for (const auto& [tl, side] : sides)
                exec(
                    QStringLiteral("INSERT INTO viE (viEID, viEtoID, viEtlID, viETyyppi, viEArvo, viESelite) "
                                   "SELECT COALESCE(MAX(viEID), 0) + 1, ?, ?, ?, ?, 'x' FROM viE"),
                    { id, tl, side, cents * 100 });
            return id;
        }
        exec(QStringLiteral(
                 "INSERT INTO \"to\" (toNumero, toPvm, toSelite, toAvaustosite) VALUES (1, ?, 'Tosite', ?)"),
            { pvm, int(opening) });
        const int id = value(QStringLiteral("SELECT MAX(toID) FROM \"to\"")).toInt();
        for (const auto& [tl, side] : sides)
            exec(QStringLiteral("INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti) "
                                "VALUES (?, ?, ?, ?, 'x', ?)"),
                { id, tl, side, cents * 100, int(opening) });
        return id;
    }

    static void malli(int id, const QString& nimi, int tyyppi, int tulosMaId = 0)
    {
        exec(QStringLiteral(
                 "INSERT INTO ma (maID, maNimi, maTyyppi, maSuojattu, maTulosMaID) VALUES (?, ?, ?, 0, ?)"),
            { id, nimi, tyyppi, tulosMaId });
    }

    struct Row {
        int id = 0;
        int ma = 1;
        QString teksti {};
        int parent = 0;
        int order = 0;
        QString tilit {};
        QString side = QStringLiteral("K");
        QString kaava {};
        bool equation = false;
        bool turnover = false;
        bool profit = false;
    };
    static void row(const Row& r)
    {
        exec(QStringLiteral(
                 "INSERT INTO mr (mrID, mrmaID, mrTeksti, mrTilit, mrKaava, mrSaldoPuoli, mrIsEquation, "
                 "mrIsLiikevaihto, mrIsVoitto, mrBelongsToGroup, mrGroupOrder) "
                 "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
            { r.id, r.ma, r.teksti, r.tilit, r.kaava, r.side, r.equation ? 1 : 0, r.turnover ? 1 : 0,
                r.profit ? 1 : 0, r.parent, r.order == 0 ? r.id : r.order });
    }

    // A small association: 1 bank, 4 receivables, 8 equity, 9 payables, 3 sales, 5 expenses; 7 the
    // income statement's profit account and 2 the balance sheet's (VoittoTaseella). Income
    // statement 1: Tuotot > Myynti (the turnover), Kulut, the formula Tulos and the profit row
    // Ylijäämä; balance sheet 2 takes its profit.
    static void smallAssociation()
    {
        const std::tuple<int, int, const char*> accounts[]
            = { { 1, 1910, "Pankkitili" }, { 4, 1700, "Siirtosaamiset" },
                  { 2, 2290, "Tilikauden yli-/alijäämä (tase)" }, { 3, 3000, "Myynti" }, { 5, 4000, "Kulut" },
                  { 7, 9990, "Tilikauden yli-/alijäämä (tuloslaskelma)" }, { 8, 2000, "Oma pääoma" },
                  { 9, 2500, "Ostovelat" } };
        for (const auto& [id, numero, nimi] : accounts)
            account(id, numero, QString::fromUtf8(nimi));
        ProgramSettings::bookkeeping().VoittoTaseella = 2;
        malli(1, QStringLiteral("Tuloslaskelma"), 1);
        row({ .id = 1, .teksti = "Tuotot" });
        row({ .id = 11, .teksti = "Myynti", .parent = 1, .tilit = "3,", .turnover = true });
        row({ .id = 2, .teksti = "Kulut", .tilit = "5," });
        row({ .id = 3, .teksti = "Tulos", .kaava = "+1,+2,", .equation = true });
        row({ .id = 4, .teksti = "Ylijäämä", .tilit = "7,", .profit = true });
        malli(2, QStringLiteral("Tase"), 2, 1);
        row({ .id = 10, .ma = 2, .teksti = "Vastaavaa", .side = "D" });
        row({ .id = 12, .ma = 2, .teksti = "Rahat ja saamiset", .parent = 10, .tilit = "1,4,", .side = "D" });
        row({ .id = 20, .ma = 2, .teksti = "Vastattavaa" });
        row({ .id = 21, .ma = 2, .teksti = "Pääoma ja velat", .parent = 20, .tilit = "8,9," });
        row({ .id = 22, .ma = 2, .teksti = "Tilikauden ylijäämä", .parent = 20, .tilit = "2," });
    }

    // Accounts 1–4; income statement 1 "Tulos" over 3 and 4 whose profit row is the formula
    // Tuotot − Kulut, and balance sheet 2 "Tase" over 1 and 2 that takes its profit; the pair
    // passes every template check.
    static void cleanPair()
    {
        for (int i = 1; i <= 4; ++i)
            account(i, 1000 * i);
        malli(1, QStringLiteral("Tulos"), 1);
        malli(2, QStringLiteral("Tase"), 2, 1);
        for (const Row& r : { Row { .id = 10, .teksti = "Tuotot", .tilit = "3," },
                 Row { .id = 11, .teksti = "Kulut", .tilit = "4," },
                 Row { .id = 12, .teksti = "Tulos", .kaava = "+10,-11,", .equation = true, .profit = true },
                 Row { .id = 20, .ma = 2, .teksti = "Vastaavaa", .side = "D" },
                 Row { .id = 21, .ma = 2, .teksti = "Rahat", .parent = 20, .tilit = "1,", .side = "D" },
                 Row { .id = 22, .ma = 2, .teksti = "Vastattavaa" },
                 Row { .id = 23, .ma = 2, .teksti = "Pääoma", .parent = 22, .tilit = "2," },
                 Row { .id = 24, .ma = 2, .teksti = "Velat", .parent = 22 } })
            row(r);
    }

    // A copy of a book from the program folder ("demo1.mdb", "mallit/lions.mdb") opened as the
    // program's database, with its own settings; the built file stays as the build made it.
    static bool openShipped(const TestEnv& env, const QString& relative)
    {
        const QString copy = env.path(QStringLiteral("data/") + QFileInfo(relative).fileName());
        if (!ReportCommand::copyBuilt(relative, copy))
            return false;
        ProgramSettings::installation().Database = copy;
        if (!db().isOpen())
            return false;
        ProgramSettings::loadBookkeeping(db(), copy);
        return true;
    }

    // The work table's rows in print order, one line each; null values print as "-", money in
    // euros with two decimals and percentages with two.
    static QStringList rows(const QString& table)
    {
        const bool tula = table == QLatin1String("tula");
        const QString columns = tula
            ? QStringLiteral(
                "tulaTyyppi, tulaMerkki, tulaIsGroupRow, tulaTeksti, tulaToteutunutKuluva, "
                "tulaProsLvastaKuluva, tulaToteutunutEdellinen, tulaProsMuutos, "
                "tulaToteutunutKuluvaAlusta, tulaProsLvastaKuluvaAlusta, tulaToteutunutEdellinenAlusta, "
                "tulaMuutosAlusta, tulaProsMuutosAlusta")
            : QStringLiteral("taseTyyppi, taseMerkki, taseIsGroupRow, taseteksti, tasePrintGroup, tasetlID, "
                             "taseAlkusaldo, taseMuutos, taseLoppusaldo, taseLoppusaldoEdellinen, "
                             "taseMuutosEdelliseen, taseMuutosProsEdelliseen");
        QSqlQuery q(db());
        q.exec(QStringLiteral("SELECT %1 FROM %2 ORDER BY %2ID").arg(columns, table));
        QStringList lines;
        while (q.next()) {
            QStringList cells;
            for (int i = 0; i < q.record().count(); ++i) {
                const QVariant v = q.value(i);
                const QString name = q.record().fieldName(i);
                if (v.isNull())
                    cells << QStringLiteral("-");
                else if (name.contains(QLatin1String("Pros")))
                    cells << QString::number(v.toDouble(), 'f', 2);
                else if (i >= 4 && name != QLatin1String("tasePrintGroup")
                    && name != QLatin1String("tasetlID"))
                    cells << QString::number(double(v.toLongLong()) / 10000.0, 'f', 2);
                else
                    cells << v.toString();
            }
            lines << cells.join(u'|');
        }
        return lines;
    }

    static constexpr qint64 Missing = std::numeric_limits<qint64>::min();
    // One money column of the first line with the given caption and the marker "**", in cents;
    // Missing when there is no such line. The engine reads names in any case: taseteksti too.
    static qint64 amount(const QString& table, const QString& column, const QString& caption)
    {
        const QVariant v
            = value(QStringLiteral("SELECT %1 FROM %2 WHERE %2Teksti = ? AND %2Merkki = '**' ORDER BY %2ID")
                        .arg(column, table),
                { caption });
        return v.isValid() ? v.toLongLong() / 100 : Missing;
    }

    TestEnv env;
    ScriptedDialogs dialogs;
    bool ok = false;
};
