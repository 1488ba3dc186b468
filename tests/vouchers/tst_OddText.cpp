#include "VoucherFixture.h"
#include "accounts/cTili.h"
#include "core/DatabaseMaintenance.h"
#include "core/Paths.h"
#include "core/RecordText.h"
#include "core/SettingsStore.h"
#include "printing/CsvWriter.h"
#include "printing/PageText.h"
#include "printing/ReportEngine.h"
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

// A field of record R: set on a new record that `prepare` has made ready to be stored.
template <typename R>
TextField field(
    const char* name, int length, void (R::*set)(const QString&), QString (R::*get)() const,
    std::function<void(R&)> prepare = [](R&) {})
{
    return { name, length,
        [=](const QString& t) {
            R r(VoucherFixture::db());
            prepare(r);
            (r.*set)(t);
            r.Save();
            return r.key();
        },
        [get](qint32 id) {
            R r(VoucherFixture::db());
            return r.Read(id) ? (r.*get)() : QStringLiteral("<ei riviä>");
        } };
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
    const int name = RecordText::NameLength;
    const int description = RecordText::DescriptionLength;
    const auto numbered = [](cTili& t) {
        static qint32 numero = 5000;
        t.setNumero(++numero);
    };
    const auto ofTemplate = [](cMalliRivi& r) { r.setMalliId(1); };
    return {
        field<cTili>("tili nimi", name, &cTili::setNimi, &cTili::Nimi, numbered),
        field<cTili>("tili kuvaus", description, &cTili::setKuvaus, &cTili::Kuvaus, numbered),
        field<cTosite>("tosite selite", description, &cTosite::setSelite, &cTosite::Selite),
        field<cVienti>("vienti selite", description, &cVienti::setSelite, &cVienti::Selite,
            [](cVienti& v) {
                v.setToId(newTosite(QStringLiteral("vienteineen")));
                v.settlID(1);
                v.setTyyppi(QStringLiteral("D"));
                v.setArvo(Money::fromCents(1250));
            }),
        field<cTositePohja>("tositepohja nimi", name, &cTositePohja::setNimi, &cTositePohja::Nimi),
        field<cTositePohja>(
            "tositepohja selite", description, &cTositePohja::setSelite, &cTositePohja::Selite),
        field<cMalli>("malli nimi", name, &cMalli::setNimi, &cMalli::Nimi,
            [](cMalli& m) { m.setTyyppi(cMalli::Tuloslaskelma); }),
        field<cMalliRivi>("mallirivi teksti", name, &cMalliRivi::setTeksti, &cMalliRivi::Teksti, ofTemplate),
        field<cMalliRivi>(
            "mallirivi tilit", description, &cMalliRivi::setTilit, &cMalliRivi::Tilit, ofTemplate),
        field<cMalliRivi>(
            "mallirivi kaava", description, &cMalliRivi::setKaava, &cMalliRivi::Kaava, ofTemplate),
        // The settings of the books all go through one store.
        { "Seurannimi", 0,
            [](const QString& t) {
                return qint32(DbSettingsStore(VoucherFixture::db()).write(QStringLiteral("Seurannimi"), t));
            },
            [](qint32) {
                ProgramSettings::loadBookkeeping(VoucherFixture::db(), QStringLiteral("kirjat.mdb"));
                return ProgramSettings::bookkeeping().Seurannimi;
            } },
        // The installation's ini file.
        { "ini DatabaseBackup", 0,
            [](const QString& t) {
                ProgramSettings::installation().DatabaseBackup = t;
                return qint32(ProgramSettings::saveInstallation());
            },
            [](qint32) {
                ProgramSettings::installation().DatabaseBackup.clear();
                ProgramSettings::loadInstallation();
                return ProgramSettings::installation().DatabaseBackup;
            } },
    };
}

} // namespace

// Odd texts go through every text field, the search, the settings, the maintenance commands and a
// report, and come back as they went in (cut where the field cuts), with no database or report error.
class tst_OddText final : public QObject {
    Q_OBJECT

private slots:
    void everywhere_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("quotes and a statement")
            << QStringLiteral("O'Brienin ''tupla'' \"Lainaus\"; DROP TABLE tl; --");
        QTest::newRow("wildcards and backslashes")
            << QStringLiteral("100% _alv_ %_% C:\\vorkam\\demo1.mdb \\' \\\\");
        QTest::newRow("braces") << QStringLiteral("{Seurannimi} {to.toPvm} {Selite} }{");
        QTest::newRow("emoji at the cut") << QString(49, u'x') + QString::fromUtf8("😀 kerho 🎉").repeated(30);
        QTest::newRow("control characters") << QStringLiteral("a\tb\u0001c\u001bd\u007fe\u200Ff\u2028g");
    }

    void everywhere()
    {
        QFETCH(QString, text);
        VoucherFixture f;

        // Every field keeps the text, cut where the field cuts and never inside a character.
        for (const TextField& field : fields()) {
            const qint32 id = field.write(text);
            const QString expected = field.length ? RecordText::cut(text, field.length) : text;
            const QString back = field.read(id);
            QVERIFY2(
                back == expected, qPrintable(QStringLiteral("%1: %2").arg(QLatin1String(field.name), back)));
            // No half of a character is left at the cut.
            QVERIFY2(QString::fromUtf8(back.toUtf8()) == back, field.name);
        }
        ProgramSettings::bookkeeping().Seurannimi = text;

        // The search finds the voucher by its whole stored description.
        const QString selite = RecordText::cut(text, RecordText::DescriptionLength);
        const qint32 toId = newTosite(text);
        const VoucherSearch::Tulos haku = VoucherSearch::hae(VoucherFixture::db(), QString(), selite);
        QVERIFY2(haku.virhe.isEmpty(), qPrintable(haku.virhe));
        QVERIFY(std::any_of(
            haku.osumat.begin(), haku.osumat.end(), [&](const auto& o) { return o.toId == toId; }));

        // A text is no maintenance command, nor an account of one; the books stay as they are.
        const int entries = f.count(QStringLiteral("vi"));
        for (const QString& command : { text, QStringLiteral("POISTA VIENNIT ") + text }) {
            f.dialogs.answerInput(command);
            DatabaseMaintenance::run(VoucherFixture::db());
        }
        QCOMPARE(f.dialogs.texts(ScriptedDialogs::Kind::Information).size(), 2);
        QVERIFY(f.dialogs.texts(ScriptedDialogs::Kind::Error).isEmpty());
        QCOMPARE(f.count(QStringLiteral("vi")), entries);

        // The journal prints the association's name and the descriptions; the spreadsheet file keeps
        // them exactly, and so does the page (a character beyond 16 bits, an emoji, prints as "?").
        Paths::setProgramDir(f.env.programDir());
        QVERIFY(QFile::copy(
            QStringLiteral(VORKAM_BIN_DIR "/paikirja.rpt"), f.env.programDir() + "/paikirja.rpt"));
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
        QVERIFY(QString::fromUtf8(TestEnv::readFile(csv)).contains(QString(selite).replace(u'"', "\"\"")));
        QVERIFY(f.dialogs.failures().isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_OddText)
#include "tst_OddText.moc"
