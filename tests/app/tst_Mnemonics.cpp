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

#include <functional>
#include <map>

namespace {

// Collects the faults of one keyboard scope: a command without a letter, or two on one letter.
class Scope {
public:
    Scope(QString name, QStringList& faults)
        : m_name(std::move(name))
        , m_faults(faults)
    {
    }
    void add(const QString& text, bool needed = true)
    {
        const QString shown = QString(text).remove(u'&');
        if (shown.trimmed().isEmpty())
            return;
        const QKeySequence key = QKeySequence::mnemonic(text);
        if (key.isEmpty()) {
            if (needed)
                m_faults << QStringLiteral("%1: \"%2\" has no mnemonic").arg(m_name, shown);
            return;
        }
        const auto [it, fresh] = m_used.emplace(key[0].toCombined(), shown);
        if (!fresh)
            m_faults << QStringLiteral("%1: \"%2\" and \"%3\" share %4")
                            .arg(m_name, it->second, shown, key.toString());
    }

private:
    QString m_name;
    QStringList& m_faults;
    std::map<int, QString> m_used;
};

void walkMenu(const QString& path, QMenu* menu, QStringList& faults)
{
    Scope scope(path, faults);
    for (QAction* a : menu->actions()) {
        if (a->isSeparator() || !a->isVisible())
            continue;
        scope.add(a->text());
        if (a->menu())
            walkMenu(path + u'/' + a->text().remove(u'&'), a->menu(), faults);
    }
}

// A window's Alt letters: its menu bar's titles, buttons, tabs, group boxes and labels that lead
// to a field; then every menu on its own.
QStringList walk(QWidget& window)
{
    QStringList faults;
    const QString name = window.objectName();
    Scope scope(name, faults);
    for (QMenuBar* bar : window.findChildren<QMenuBar*>()) {
        for (QAction* a : bar->actions()) {
            scope.add(a->text());
            if (a->menu())
                walkMenu(name + u'/' + a->text().remove(u'&'), a->menu(), faults);
        }
    }
    const auto visible = [&window](QWidget* w) { return w->isVisibleTo(&window); };
    // A button is reached by its letter, by a key of its own, or through the menu item it pairs.
    for (QAbstractButton* b : window.findChildren<QAbstractButton*>())
        if (visible(b) && !qobject_cast<QTabBar*>(b->parentWidget()))
            scope.add(b->text(), b->shortcut().isEmpty() && !b->property("komento").value<QObject*>());
    for (QTabWidget* tabs : window.findChildren<QTabWidget*>())
        for (int i = 0; i < tabs->count(); ++i)
            scope.add(tabs->tabText(i));
    for (QGroupBox* box : window.findChildren<QGroupBox*>())
        if (visible(box))
            scope.add(box->title(), box->isCheckable());
    for (QLabel* label : window.findChildren<QLabel*>())
        if (visible(label) && label->buddy())
            scope.add(label->text(), false);
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
        const std::vector<std::function<std::unique_ptr<QWidget>()>> windows = {
            [&] { return std::make_unique<frmAbout>(); },
            [&] { return std::make_unique<frmAsetukset>(db); },
            [&] { return std::make_unique<frmBackup>(books); },
            [&] { return std::make_unique<frmBackupManagement>(); },
            [&] { return std::make_unique<frmBackupRestore>(); },
            [&] { return std::make_unique<frmDates>(); },
            [&] { return std::make_unique<frmDates2>(); },
            [&] { return std::make_unique<frmEsikatselu>(std::move(page)); },
            [&] { return std::make_unique<frmKaudenVaihto>(db); },
            [&] { return std::make_unique<frmLisaaTili>(db); },
            [&] { return std::make_unique<frmNewTositteet>(db, frmNewTositteet::Laji::Tavallinen); },
            [&] { return std::make_unique<frmNewTulosJaTase>(db); },
            [&] { return std::make_unique<frmPaivaSaldot>(db); },
            [&] { return std::make_unique<frmService>(db); },
            [&] { return std::make_unique<frmTarkistusVirheet>(db, 0, 0); },
            [&] { return std::make_unique<frmTilienSaldot>(db); },
            [&] { return std::make_unique<frmTilikartta>(db); },
            [&] { return std::make_unique<frmTilitNew>(db); },
            [&] { return std::make_unique<frmTilitarkastelu>(db); },
            [&] { return std::make_unique<frmTositeHaku>(db); },
            [&] { return std::make_unique<frmTositeTarkistusVirheet>(db, false); },
            [&] { return std::make_unique<frmTositepohja>(db); },
            [&] { return std::make_unique<frmTulostus>(); },
        };
        QStringList faults = walk(main);
        for (const auto& make : windows) {
            const std::unique_ptr<QWidget> window = make();
            faults << walk(*window);
        }
        for (const QString& fault : std::as_const(faults))
            qWarning().noquote() << fault;
        QVERIFY(faults.isEmpty());
    }
};

QTEST_MAIN(tst_Mnemonics)
#include "tst_Mnemonics.moc"
