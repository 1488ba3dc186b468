#include "Dates.h"
#include "Paths.h"
#include "ScriptedDialogs.h"
#include "StatementFixture.h"
#include "Statements.h"
#include "TilikaudenVaihto.h"
#include "cTosite.h"
#include "frmKaudenVaihto.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <map>

namespace {

using F = StatementFixture;

template <typename T> T* child(const QWidget& w, const char* name)
{
    T* found = w.findChild<T*>(QString::fromLatin1(name));
    if (!found)
        qFatal("no control %s", name);
    return found;
}

QString label(const QWidget& w, const char* name) { return child<QLabel>(w, name)->text(); }

// The balance sheet with the per-account breakdown, as the change computes it: each line's
// caption with its closing balance, opening balance and previous-year column, in cents.
struct Line {
    QString teksti;
    qint32 tlId = 0;
    bool groupRow = false;
    qint64 alku = 0;
    qint64 loppu = 0;
    qint64 edellinen = 0;
};

std::vector<Line> balanceSheet(qint32 malli)
{
    const TilikaudenVaihto::Kaudet k = TilikaudenVaihto::nykyiset();
    StatementOptions o = StatementOptions::forPeriod(malli, k.alku, k.loppu);
    o.perAccount = true;
    if (!Statements::compute(F::db(), o))
        return {};
    std::vector<Line> lines;
    QSqlQuery q(F::db());
    q.exec(QStringLiteral("SELECT taseteksti, tasetlID, taseIsGroupRow, taseAlkusaldo, taseLoppusaldo, "
                          "taseLoppusaldoEdellinen FROM tase ORDER BY taseID"));
    while (q.next())
        lines.push_back({ q.value(0).toString(), q.value(1).toInt(), q.value(2).toBool(),
            q.value(3).toLongLong() / 100, q.value(4).toLongLong() / 100, q.value(5).toLongLong() / 100 });
    return lines;
}

// Records every value the progress bar shows.
struct BarWatch {
    explicit BarWatch(QProgressBar* bar)
    {
        QObject::connect(bar, &QProgressBar::valueChanged, bar, [this](int v) {
            if (values.isEmpty() || values.last() != v)
                values << v;
        });
    }
    QList<int> values;
};

} // namespace

class tst_frmKaudenVaihto : public QObject {
    Q_OBJECT

private slots:
    void opens();
    void nothingChosen();
    void demoYearChange();
};

// The dates now and after the change, the blank item and the balance-sheet templates by name.
void tst_frmKaudenVaihto::opens()
{
    F f;
    QVERIFY(f.ok);
    BookkeepingSettings& s = ProgramSettings::bookkeeping();
    s.TilikausiAlku = QDate(2011, 3, 1);
    s.TilikausiLoppu = QDate(2012, 2, 29);
    F::malli(1, QStringLiteral("Tuloslaskelma"), 1);
    F::malli(2, QStringLiteral("Yhdistyksen tase"), 2, 1);
    F::malli(3, QStringLiteral("Aatteellinen tase"), 2, 1);
    ScriptedDialogs dialogs;
    frmKaudenVaihto w(F::db());
    QCOMPARE(label(w, "lblTilikausiAlku"), QStringLiteral("1.3.2011"));
    QCOMPARE(label(w, "lblTilikausiLoppu"), QStringLiteral("29.2.2012"));
    QCOMPARE(label(w, "lblTilikausiUusiAlku"), QStringLiteral("1.3.2012"));
    QCOMPARE(label(w, "lblTilikausiUusiLoppu"), QStringLiteral("28.2.2013"));
    const QComboBox* cmb = child<QComboBox>(w, "cmbTasemalli");
    QCOMPARE(cmb->count(), 3);
    QCOMPARE(cmb->itemText(0), QStringLiteral(" "));
    QCOMPARE(cmb->itemText(1), QStringLiteral("Aatteellinen tase"));
    QCOMPARE(cmb->itemData(1).toInt(), 3);
    QCOMPARE(cmb->itemText(2), QStringLiteral("Yhdistyksen tase"));
    QCOMPARE(cmb->currentIndex(), -1);
    QVERIFY(child<QCheckBox>(w, "chkTeeAvausviennit")->isChecked());
    const QProgressBar* bar = child<QProgressBar>(w, "pBar");
    QCOMPARE(bar->maximum(), 6);
    QCOMPARE(dialogs.transcript(), QStringList());
}

// Nothing chosen: the message, and the window stays for a choice; Peru closes it.
void tst_frmKaudenVaihto::nothingChosen()
{
    F f;
    QVERIFY(f.ok);
    ScriptedDialogs dialogs;
    frmKaudenVaihto w(F::db());
    w.show();
    QTest::mouseClick(child<QPushButton>(w, "cTilikaudenvaihto"), Qt::LeftButton);
    QCOMPARE(dialogs.transcript(),
        QStringList {
            QStringLiteral("information: Valitse tasemalli, jonka mukaan kirjataan avausviennit!") });
    QVERIFY(w.isVisible());
    QVERIFY(!w.vaihdettu());
    QCOMPARE(QDir(Paths::defaultBackupDir()).entryList(QDir::Files), QStringList());
    QTest::mouseClick(child<QPushButton>(w, "cPeru"), Qt::LeftButton);
    QVERIFY(!w.isVisible());
    QCOMPARE(w.result(), int(QDialog::Rejected));
}

// The demo association's year closed from the window: the new year opens with the old year's
// closing balances to the cent, and the new balance sheet compares with the old one.
void tst_frmKaudenVaihto::demoYearChange()
{
    TestEnv env;
    struct Close {
        ~Close() { DBC::instance().SuljeDB(); }
    } close;
    QVERIFY(F::openShipped(env, QStringLiteral("demo1.mdb")));
    const qint32 malli
        = F::value(QStringLiteral("SELECT maID FROM ma WHERE maTyyppi = 2 AND maTulosMaID <> 0 "
                                  "ORDER BY maID LIMIT 1"))
              .toInt();
    QVERIFY(malli != 0);
    const QString nimi
        = F::value(QStringLiteral("SELECT maNimi FROM ma WHERE maID = ?"), { malli }).toString();
    const TilikaudenVaihto::Kaudet vanhat = TilikaudenVaihto::nykyiset();
    ScriptedDialogs dialogs;
    const std::vector<Line> before = balanceSheet(malli);
    QVERIFY(!before.empty());
    dialogs.clear();
    const int entriesBefore = F::count(QStringLiteral("vi"), QStringLiteral("viAutomaatti = 0"));

    frmKaudenVaihto w(F::db());
    w.show();
    QComboBox* cmb = child<QComboBox>(w, "cmbTasemalli");
    cmb->setCurrentIndex(cmb->findText(nimi));
    QCOMPARE(cmb->currentData().toInt(), malli);
    BarWatch watch(child<QProgressBar>(w, "pBar"));
    dialogs.answerYes();
    QTest::mouseClick(child<QPushButton>(w, "cTilikaudenvaihto"), Qt::LeftButton);
    QCOMPARE(dialogs.transcript(),
        (QStringList {
            QStringLiteral("question: Vaihdetaanko tilikausi? Uusi tilikausi on %1 - %2.\n\n"
                           "Kirjanpidosta otetaan ensin varmuuskopio, ja vaihdon jälkeen sen nimi "
                           "näkyy tässä ikkunassa.")
                .arg(Dates::format(vanhat.alku.addYears(1)), Dates::format(vanhat.loppu.addYears(1))),
            QStringLiteral("information: Tilikauden vaihto tehty.") }));
    // The status says what was done, not the last stage.
    QVERIFY(child<QLabel>(w, "lblStatus")->text().startsWith(QStringLiteral("Tilikauden vaihto tehty.")));
    QVERIFY(w.vaihdettu());
    QCOMPARE(w.result(), int(QDialog::Accepted));
    QVERIFY(!w.isVisible());
    QCOMPARE(watch.values, (QList<int> { 1, 2, 3, 4, 5, 6 }));
    QCOMPARE(TilikaudenVaihto::nykyiset(), TilikaudenVaihto::seuraavat(vanhat));

    // The safety copy holds the old year.
    const QStringList copies = QDir(Paths::defaultBackupDir()).entryList({ QStringLiteral("*.mdb") });
    QCOMPARE(copies.size(), 1);
    QVERIFY(copies.first().startsWith(QStringLiteral("demo1-ennen-tilikaudenvaihtoa-")));
    int copied = 0;
    withDatabase(Paths::defaultBackupDir() + copies.first(), [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        q.exec(QStringLiteral("SELECT COUNT(*) FROM vi WHERE viAutomaatti = 0"));
        copied = q.next() ? q.value(0).toInt() : -1;
    });
    QCOMPARE(copied, entriesBefore);

    // The opening voucher, as the opening-entries window opens on it, balances.
    cTosite haku(F::db());
    const std::unique_ptr<cTosite> avaus = haku.GetLastFromZero(true, false);
    QVERIFY(!avaus->IsEmpty());
    QCOMPARE(avaus->Numero(), 0);
    QCOMPARE(avaus->Paiva(), vanhat.alku.addYears(1));
    QCOMPARE(avaus->Selite(), QStringLiteral("Tilinavausviennit"));
    Money debet, kredit;
    for (const auto& v : avaus->GetViennit(QStringLiteral("D")))
        debet += v->Arvo();
    for (const auto& v : avaus->GetViennit(QStringLiteral("K")))
        kredit += v->Arvo();
    QVERIFY(debet > Money());
    QCOMPARE(debet.raw(), kredit.raw());

    // Every account's opening balance is its closing balance, and the previous-year column
    // is the old current one, line by line.
    const std::vector<Line> after = balanceSheet(malli);
    QCOMPARE(after.size(), before.size());
    int accounts = 0;
    for (size_t i = 0; i < after.size(); ++i) {
        QCOMPARE(after[i].teksti, before[i].teksti);
        QCOMPARE(after[i].edellinen, before[i].loppu);
        if (before[i].tlId > 0 && !before[i].groupRow) {
            QCOMPARE(after[i].alku, before[i].loppu);
            ++accounts;
        }
    }
    QVERIFY(accounts > 5);
}

QTEST_MAIN(tst_frmKaudenVaihto)
#include "tst_frmKaudenVaihto.moc"
