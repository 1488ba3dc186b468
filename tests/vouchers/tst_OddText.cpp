#include "ScriptedDialogs.h"
#include "VoucherFixture.h"
#include "accounts/cTili.h"
#include "core/DatabaseMaintenance.h"
#include "core/Paths.h"
#include "core/RecordText.h"
#include "core/SettingsStore.h"
#include "printing/CsvWriter.h"
#include "printing/PageText.h"
#include "printing/PdfWriter.h"
#include "printing/ReportEngine.h"
#include "printing/ReportError.h"
#include "statements/cMalli.h"
#include "statements/cMalliRivi.h"
#include "vouchers/JournalPrinting.h"
#include "vouchers/VoucherSearch.h"
#include "vouchers/cTosite.h"
#include "vouchers/cTositePohja.h"
#include "vouchers/cVienti.h"

#include <QFile>
#include <functional>

namespace {

// A text field: written through its record class, read back fresh; cut at `length` (0: never).
struct TextField {
    const char* name;
    int length;
    std::function<qint32(const QString&)> write;
    std::function<QString(qint32)> read;
};

template <typename R> QString reread(qint32 id, QString (R::*get)() const)
{
    R r(VoucherFixture::db());
    return r.Load(id) ? (r.*get)() : QStringLiteral("<ei riviä>");
}

QString rereadTili(qint32 id, QString (cTili::*get)() const)
{
    cTili r(VoucherFixture::db());
    return r.Read(id) ? (r.*get)() : QStringLiteral("<ei riviä>");
}

qint32 newTili(const QString& nimi, const QString& kuvaus)
{
    static qint32 numero = 5000;
    cTili t(VoucherFixture::db());
    t.setNumero(++numero);
    t.setNimi(nimi);
    t.setKuvaus(kuvaus);
    t.Save();
    return t.id();
}

qint32 newTosite(const QString& selite)
{
    static qint32 numero = 100;
    cTosite t(VoucherFixture::db());
    t.setNumero(++numero);
    t.setPaiva(QDate(2011, 3, 1));
    t.setSelite(selite);
    t.Save();
    return t.ToId();
}

QList<TextField> fields()
{
    const auto db = [] { return VoucherFixture::db(); };
    QList<TextField> list {
        { "tili nimi", RecordText::NameLength,
            [](const QString& t) { return newTili(t, QStringLiteral("k")); },
            [](qint32 id) { return rereadTili(id, &cTili::Nimi); } },
        { "tili kuvaus", RecordText::DescriptionLength,
            [](const QString& t) { return newTili(QStringLiteral("n"), t); },
            [](qint32 id) { return rereadTili(id, &cTili::Kuvaus); } },
        { "tosite selite", RecordText::DescriptionLength, newTosite,
            [](qint32 id) { return reread<cTosite>(id, &cTosite::Selite); } },
        { "vienti selite", RecordText::DescriptionLength,
            [db](const QString& t) {
                cVienti v(db());
                v.setToId(newTosite(QStringLiteral("vienteineen")));
                v.settlID(newTili(QStringLiteral("vientitili"), QStringLiteral("k")));
                v.setTyyppi(QStringLiteral("D"));
                v.setArvo(Money::fromCents(1250));
                v.setSelite(t);
                v.Save();
                return v.ViId();
            },
            [](qint32 id) { return reread<cVienti>(id, &cVienti::Selite); } },
        { "tositepohja nimi", RecordText::NameLength,
            [db](const QString& t) {
                cTositePohja p(db());
                p.setNimi(t);
                p.setSelite(QStringLiteral("s"));
                p.Save();
                return p.tpID();
            },
            [](qint32 id) { return reread(id, &cTositePohja::Nimi); } },
        { "tositepohja selite", RecordText::DescriptionLength,
            [db](const QString& t) {
                cTositePohja p(db());
                p.setNimi(QStringLiteral("n"));
                p.setSelite(t);
                p.Save();
                return p.tpID();
            },
            [](qint32 id) { return reread(id, &cTositePohja::Selite); } },
        { "malli nimi", RecordText::NameLength,
            [db](const QString& t) {
                cMalli m(db());
                m.setTyyppi(cMalli::Tuloslaskelma);
                m.setNimi(t);
                m.Save();
                return m.id();
            },
            [](qint32 id) { return reread(id, &cMalli::Nimi); } },
    };
    // The three texts of a template row.
    using Set = void (cMalliRivi::*)(const QString&);
    using Get = QString (cMalliRivi::*)() const;
    for (const auto& [name, length, set, get] :
        { std::tuple<const char*, int, Set, Get> {
              "mallirivi teksti", RecordText::NameLength, &cMalliRivi::setTeksti, &cMalliRivi::Teksti },
            std::tuple<const char*, int, Set, Get> {
                "mallirivi tilit", RecordText::DescriptionLength, &cMalliRivi::setTilit, &cMalliRivi::Tilit },
            std::tuple<const char*, int, Set, Get> { "mallirivi kaava", RecordText::DescriptionLength,
                &cMalliRivi::setKaava, &cMalliRivi::Kaava } })
        list.append({ name, length,
            [db, set](const QString& t) {
                cMalliRivi r(db());
                r.setMalliId(1);
                (r.*set)(t);
                r.Save();
                return r.id();
            },
            [get](qint32 id) { return reread(id, get); } });
    // The settings of the books all go through one store.
    list.append({ "Seurannimi", 0,
        [](const QString& t) {
            return qint32(DbSettingsStore(VoucherFixture::db()).write(QStringLiteral("Seurannimi"), t));
        },
        [](qint32) {
            ProgramSettings::loadBookkeeping(VoucherFixture::db(), QStringLiteral("kirjat.mdb"));
            return ProgramSettings::bookkeeping().Seurannimi;
        } });
    // The installation's ini file.
    list.append({ "ini DatabaseBackup", 0,
        [](const QString& t) {
            ProgramSettings::installation().DatabaseBackup = t;
            return qint32(ProgramSettings::saveInstallation());
        },
        [](qint32) {
            ProgramSettings::installation().DatabaseBackup.clear();
            ProgramSettings::loadInstallation();
            return ProgramSettings::installation().DatabaseBackup;
        } });
    return list;
}

} // namespace

// Odd texts go through every text field, the search, the settings, the maintenance commands and a
// report, and come back as they went in (cut where the field cuts), with no database or report error.
class tst_OddText final : public QObject {
    Q_OBJECT

private slots:
    void everywhere_data();
    void everywhere();
};

void tst_OddText::everywhere_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("apostrophes") << QStringLiteral("O'Brienin 'kerho' ja Matin ''tupla''");
    QTest::newRow("quotes and a statement") << QStringLiteral("\"Lainaus\"; DROP TABLE tl; --");
    QTest::newRow("wildcards") << QStringLiteral("100% _alv_ %_%");
    QTest::newRow("braces") << QStringLiteral("{Seurannimi} {to.toPvm} {Selite} }{");
    QTest::newRow("backslashes") << QStringLiteral("C:\\vorkam\\demo1.mdb \\' \\\\");
    QTest::newRow("300 characters") << QString::fromUtf8("Äöå€").repeated(75);
    QTest::newRow("emoji at the cut") << QString(49, u'x') + QString::fromUtf8("😀 kerho 🎉").repeated(30);
    QTest::newRow("control characters") << QString::fromUtf8("a\tb\x01"
                                                             "c\x1b"
                                                             "d\x7f"
                                                             "e\u200Ff\u2028g");
}

void tst_OddText::everywhere()
{
    QFETCH(QString, text);
    VoucherFixture f;
    ScriptedDialogs& dialogs = f.dialogs;

    // Every field keeps the text, cut where the field cuts and never inside a character.
    for (const TextField& field : fields()) {
        qint32 id = 0;
        try {
            id = field.write(text);
        } catch (const DatabaseError& e) {
            QFAIL(qPrintable(QStringLiteral("%1: %2").arg(QLatin1String(field.name), e.text())));
        }
        const QString expected = field.length ? RecordText::cut(text, field.length) : text;
        QVERIFY2(id != 0, field.name);
        const QString back = field.read(id);
        QVERIFY2(back == expected, qPrintable(QStringLiteral("%1: %2").arg(QLatin1String(field.name), back)));
        // No half of a character is left at the cut.
        QVERIFY2(QString::fromUtf8(back.toUtf8()) == back, field.name);
    }
    ProgramSettings::bookkeeping().Seurannimi = text;

    // The search finds the voucher by its whole stored description, and only that one.
    const QString selite = RecordText::cut(text, RecordText::DescriptionLength);
    const qint32 toId = newTosite(text);
    const VoucherSearch::Tulos haku = VoucherSearch::hae(VoucherFixture::db(), QString(), selite);
    QVERIFY2(haku.virhe.isEmpty(), qPrintable(haku.virhe));
    QVERIFY(
        std::any_of(haku.osumat.begin(), haku.osumat.end(), [&](const auto& o) { return o.toId == toId; }));
    QVERIFY(std::all_of(
        haku.osumat.begin(), haku.osumat.end(), [&](const auto& o) { return o.selite.contains(selite); }));

    // A text is no maintenance command, nor an account of one; the books stay as they are.
    const int entries = f.count(QStringLiteral("vi"));
    for (const QString& command : { text, QStringLiteral("POISTA VIENNIT ") + text }) {
        dialogs.clear();
        dialogs.answerInput(command);
        DatabaseMaintenance::run(VoucherFixture::db());
        const DatabaseMaintenance::Parsed parsed = DatabaseMaintenance::parse(command);
        const QString expected = parsed.command == DatabaseMaintenance::Command::None
            ? QStringLiteral("Komentoa ei löydy, tarkista komento.\nAntamasi komento: ") + command
            : DatabaseMaintenance::message(parsed);
        QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Information), QStringList { expected });
        QVERIFY(dialogs.texts(ScriptedDialogs::Kind::Error).isEmpty());
    }
    QCOMPARE(f.count(QStringLiteral("vi")), entries);

    // The journal prints the association's name and the descriptions; the spreadsheet file keeps
    // them exactly, and so does the page (a character beyond 16 bits, an emoji, prints as "?").
    Paths::setProgramDir(f.env.programDir());
    QVERIFY(
        QFile::copy(QStringLiteral(VORKAM_BIN_DIR "/paikirja.rpt"), f.env.programDir() + "/paikirja.rpt"));
    ProgramSettings::bookkeeping().VaakaTulostus = false;
    try {
        const auto doc = ReportEngine::run(VoucherFixture::db(),
            JournalPrinting::paivakirja(VoucherFixture::db(), JournalPrinting::Laji::Tavallinen,
                QDate(2011, 1, 1), QDate(2011, 12, 31)));
        QCOMPARE(doc->titleLines().value(0), text);
        QString pages;
        for (int i = 0; i < doc->pageCount(); ++i)
            pages += doc->pageRunTexts(i);
        QVERIFY2(
            pages.contains(PageText::toUnicode(PageText::fromUnicode(selite.left(40)))), qPrintable(pages));
        const QString csv = f.env.path(QStringLiteral("paivakirja.csv"));
        CsvWriter::write(*doc, csv);
        PdfWriter::write(*doc, f.env.path(QStringLiteral("paivakirja.pdf")));
        QVERIFY(QString::fromUtf8(TestEnv::readFile(csv)).contains(QString(selite).replace(u'"', "\"\"")));
        QVERIFY(QFile::exists(f.env.path(QStringLiteral("paivakirja.pdf"))));
    } catch (const ReportError& e) {
        QFAIL(qPrintable(e.text()));
    }
    QVERIFY(dialogs.failures().isEmpty());
}

QTEST_GUILESS_MAIN(tst_OddText)
#include "tst_OddText.moc"
