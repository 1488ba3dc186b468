#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "accounts/frmLisaaTili.h"
#include "accounts/frmPaivaSaldot.h"
#include "accounts/frmTilienSaldot.h"
#include "accounts/frmTilikartta.h"
#include "accounts/frmTilitNew.h"
#include "accounts/frmTilitarkastelu.h"
#include "app/frmMain.h"
#include "backup/frmBackup.h"
#include "backup/frmBackupManagement.h"
#include "backup/frmBackupRestore.h"
#include "core/DBC.h"
#include "printing/ReportEngine.h"
#include "printing/frmDates.h"
#include "printing/frmDates2.h"
#include "printing/frmEsikatselu.h"
#include "printing/frmTulostus.h"
#include "service/frmService.h"
#include "settings/frmAsetukset.h"
#include "statements/frmNewTulosJaTase.h"
#include "statements/frmTarkistusVirheet.h"
#include "ui/frmAbout.h"
#include "vouchers/frmNewTositteet.h"
#include "vouchers/frmTositeHaku.h"
#include "vouchers/frmTositeTarkistusVirheet.h"
#include "vouchers/frmTositepohja.h"
#include "yearchange/frmKaudenVaihto.h"

#include "core/Paths.h"

#include <QAbstractButton>
#include <QFile>
#include <QGroupBox>
#include <QKeySequence>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QSqlDatabase>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>

#include <map>

namespace {

// A text of a keyboard scope, and whether it needs a letter of its own.
using Texts = QList<std::pair<QString, bool>>;

// The faults of one keyboard scope: a command without a letter, or two on one letter.
void check(const QString& scope, const Texts& texts, QStringList& faults)
{
    std::map<int, QString> used;
    for (const auto& [text, needed] : texts) {
        const QString shown = QString(text).remove(u'&');
        const QKeySequence key = QKeySequence::mnemonic(text);
        if (shown.trimmed().isEmpty() || (key.isEmpty() && !needed))
            continue;
        if (key.isEmpty())
            faults << QStringLiteral("%1: \"%2\" has no mnemonic").arg(scope, shown);
        else if (const auto [it, fresh] = used.emplace(key[0].toCombined(), shown); !fresh)
            faults << QStringLiteral("%1: \"%2\" and \"%3\" share %4")
                          .arg(scope, it->second, shown, key.toString());
    }
}

// The menu's items as one scope, then each submenu on its own.
void walkMenu(const QString& path, QMenu* menu, QStringList& faults)
{
    Texts texts;
    for (QAction* a : menu->actions()) {
        if (a->isSeparator() || !a->isVisible())
            continue;
        texts.append({ a->text(), true });
        if (a->menu())
            walkMenu(path + u'/' + a->text().remove(u'&'), a->menu(), faults);
    }
    check(path, texts, faults);
}

// A window's Alt letters: its menu bar's titles, buttons, tabs, group boxes and labels that lead
// to a field; then every menu on its own.
QStringList walk(QWidget& window)
{
    QStringList faults;
    const QString name = window.objectName();
    Texts texts;
    for (QMenuBar* bar : window.findChildren<QMenuBar*>()) {
        for (QAction* a : bar->actions()) {
            texts.append({ a->text(), true });
            if (a->menu())
                walkMenu(name + u'/' + a->text().remove(u'&'), a->menu(), faults);
        }
    }
    const auto visible = [&window](QWidget* w) { return w->isVisibleTo(&window); };
    // A button is reached by its letter, by a key of its own, or through the menu item it pairs.
    for (QAbstractButton* b : window.findChildren<QAbstractButton*>())
        if (visible(b) && !qobject_cast<QTabBar*>(b->parentWidget()))
            texts.append({ b->text(), b->shortcut().isEmpty() && !b->property("komento").value<QObject*>() });
    for (QTabWidget* tabs : window.findChildren<QTabWidget*>())
        for (int i = 0; i < tabs->count(); ++i)
            texts.append({ tabs->tabText(i), true });
    for (QGroupBox* box : window.findChildren<QGroupBox*>())
        if (visible(box))
            texts.append({ box->title(), box->isCheckable() });
    for (QLabel* label : window.findChildren<QLabel*>())
        if (visible(label) && label->buddy())
            texts.append({ label->text(), false });
    check(name, texts, faults);
    return faults;
}

} // namespace

class tst_Mnemonics : public QObject {
    Q_OBJECT

private slots:
    void everyCommandHasItsOwnLetter()
    {
        TestEnv env;
        ScriptedDialogs dialogs;
        const QString books = env.path(QStringLiteral("demo1.mdb"));
        QVERIFY(QFile::copy(QStringLiteral(VORKAM_BIN_DIR "/demo1.mdb"), books));
        QFile::setPermissions(books, QFile::ReadOwner | QFile::WriteOwner);
        env.writeIni("[VORKAM]\nDatabase=" + books.toUtf8() + "\n");
        frmMain main;
        main.startUp();
        Paths::setProgramDir(QStringLiteral(VORKAM_BIN_DIR));
        const QSqlDatabase db = DBC::instance().AvaaDB();
        QVERIFY2(db.isOpen(), qPrintable(dialogs.transcript().join(u'\n')));

        ReportJob job;
        job.reportFile = QStringLiteral("tilikart.rpt");
        job.parameters = { { QStringLiteral("tuloslaskelmaID"), 0 }, { QStringLiteral("taseID"), 0 } };
        std::unique_ptr<ReportDocument> page = ReportEngine::run(db, job);
        QStringList faults = walk(main);
        const auto walkNew = [&faults](QWidget&& window) { faults << walk(window); };
        walkNew(frmAbout());
        walkNew(frmAsetukset(db));
        walkNew(frmBackup(books));
        walkNew(frmBackupManagement());
        walkNew(frmBackupRestore());
        walkNew(frmDates());
        walkNew(frmDates2());
        walkNew(frmEsikatselu(std::move(page)));
        walkNew(frmKaudenVaihto(db));
        walkNew(frmLisaaTili(db));
        walkNew(frmNewTositteet(db, frmNewTositteet::Laji::Tavallinen));
        walkNew(frmNewTulosJaTase(db));
        walkNew(frmPaivaSaldot(db));
        walkNew(frmService(db));
        walkNew(frmTarkistusVirheet(db, 0, 0));
        walkNew(frmTilienSaldot(db));
        walkNew(frmTilikartta(db));
        walkNew(frmTilitNew(db));
        walkNew(frmTilitarkastelu(db));
        walkNew(frmTositeHaku(db));
        walkNew(frmTositeTarkistusVirheet(db, false));
        walkNew(frmTositepohja(db));
        walkNew(frmTulostus());
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join(u'\n')));
    }
};

QTEST_MAIN(tst_Mnemonics)
#include "tst_Mnemonics.moc"
