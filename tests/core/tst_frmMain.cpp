#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "frmMain.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>

namespace {

QStringList menuItems(QMenu* menu)
{
    QStringList items;
    for (QAction* a : menu->actions()) {
        if (a->isSeparator())
            items.append(QStringLiteral("-"));
        else if (a->menu())
            items.append(a->menu()->objectName() + u'=' + a->text());
        else
            items.append(a->objectName() + u'=' + a->text());
    }
    return items;
}

} // namespace

class tst_frmMain : public QObject {
    Q_OBJECT

private slots:
    void buttons_data();
    void buttons();
    void menusInOrder();
    void laterFeaturesAreDisabled();
    void startUpSetsCaption();
    void withoutDatabaseBackupIsDisabled();
    void workingWindowsOpenOnce_data();
    void workingWindowsOpenOnce();
    void supportOpensManual();
    void closeEndsProgram();
    void restoreEndsProgram();
    void aboutWindowOpens();
};

void tst_frmMain::buttons_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("tooltip");
    QTest::newRow("cTositteet") << "cTositteet"
                                << "Tositteet"
                                << "Avaa Tositteet";
    QTest::newRow("cTilit") << "cTilit"
                            << "Tilit"
                            << "Avaa Tilit";
    QTest::newRow("cTulosJaTase") << "cTulosJaTase"
                                  << "Tulos ja tase"
                                  << "Avaa Tulos ja tase";
    QTest::newRow("cKayttotuki") << "cKayttotuki" << QString::fromUtf8("Käyttötuki")
                                 << QString::fromUtf8("Avaa käyttötukisivu selainohjelmaan");
    QTest::newRow("cSulje") << "cSulje"
                            << "Sulje"
                            << "Sulje Vorkam [Alt+F4]";
}

void tst_frmMain::buttons()
{
    QFETCH(QString, name);
    QFETCH(QString, caption);
    QFETCH(QString, tooltip);
    TestEnv env;
    frmMain w;
    auto* button = w.findChild<QPushButton*>(name);
    QVERIFY(button);
    QCOMPARE(button->text(), caption);
    QCOMPARE(button->toolTip(), tooltip);
    QVERIFY(w.findChild<QToolButton*>(QStringLiteral("cAboutLumetra")));
}

void tst_frmMain::menusInOrder()
{
    TestEnv env;
    frmMain w;
    const QList<QMenu*> top = { w.findChild<QMenu*>(QStringLiteral("mTiedosto")),
        w.findChild<QMenu*>(QStringLiteral("mTietokanta")) };
    QVERIFY(top.at(0) && top.at(1));
    QCOMPARE(w.menuBar()->actions().size(), 2);
    QCOMPARE(top.at(0)->title(), QStringLiteral("&Tiedosto"));
    QCOMPARE(top.at(1)->title(), QStringLiteral("T&ietokanta"));
    QStringList file = menuItems(top.at(0));
    file.removeAll(QStringLiteral("-"));
    QCOMPARE(file,
        (QStringList { "mTositteet=&Tositteet", "mTulosJaTase=T&ulos ja tase", "mTilit=T&ilit",
            "mAsetukset=&Asetukset", "mAvausviennit=Avausviennit",
            QString::fromUtf8("mTilinpaatosviennit=Tilinpäätösviennit"), "mKopioTikku=Varmistus Kopiotikulle",
            "mVarmistusKansioon=Varmistus kansioon", "mVarmistus=Tietokannan &varmuuskopio",
            "mPalautus=Tietokannan palautus", "mSulje=&Sulje" }));
    QCOMPARE(menuItems(w.findChild<QMenu*>(QStringLiteral("mKopioTikku"))),
        (QStringList { "mKopiotikkuVarmistus=Varmuuskopio", "mKopiotikkuPalautus=Palautus",
            "mKopioTikkuHallinta=Hallinta" }));
    QStringList db = menuItems(top.at(1));
    db.removeAll(QStringLiteral("-"));
    QCOMPARE(db,
        (QStringList { "mMuokkaaTietokantaa=Muokkaa tietokantaa",
            "mLuoTietokantaMallista=Luo tietokanta mallista",
            QString::fromUtf8("mLuoTietokantaNykyisesta=Kopio nykyisestä"),
            QString::fromUtf8("mService=Huoltotiedoston lähetys"), "mTietoja=Tietoja" }));
    QCOMPARE(menuItems(w.findChild<QMenu*>(QStringLiteral("mLuoTietokantaMallista"))),
        (QStringList { "mLuoTietokantaMallistaYhdistys=Yhdistyksen malli",
            "mLuoTietokantaMallistaAOY=Asunto OY:n malli", "mLuoTietokantaMallistaLions=Lions",
            "mLuoTietokantaMallistaMetalli=Metalliliitto" }));
    // The development commands are not part of the program.
    QVERIFY(!w.findChild<QObject*>(QStringLiteral("mTesti")));
    QVERIFY(!w.findChild<QObject*>(QStringLiteral("mTestiTosite")));
}

void tst_frmMain::laterFeaturesAreDisabled()
{
    TestEnv env;
    frmMain w;
    for (const char* name : { "mTositteet", "mTilit", "mAsetukset", "mAvausviennit", "mKopiotikkuVarmistus",
             "mMuokkaaTietokantaa", "mLuoTietokantaMallistaYhdistys", "mService" })
        QVERIFY2(!w.findChild<QAction*>(QString::fromLatin1(name))->isEnabled(), name);
    for (const char* name : { "mPalautus", "mSulje", "mTietoja" })
        QVERIFY2(w.findChild<QAction*>(QString::fromLatin1(name))->isEnabled(), name);
    QVERIFY(!w.findChild<QPushButton*>(QStringLiteral("cTositteet"))->isEnabled());
    QVERIFY(w.findChild<QPushButton*>(QStringLiteral("cKayttotuki"))->isEnabled());
}

void tst_frmMain::startUpSetsCaption()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString file = env.path(QStringLiteral("kerho.mdb"));
    QVERIFY(TestEnv::createDatabase(file));
    env.writeIni("[VORKAM]\nDatabase=" + file.toUtf8() + "\n");
    frmMain w;
    w.startUp();
    QCOMPARE(w.windowTitle(), QStringLiteral("Vorkam - kerho - kerho.mdb"));
    QVERIFY(w.findChild<QAction*>(QStringLiteral("mVarmistus"))->isEnabled());
    QCOMPARE(dialogs.transcript(), QStringList());
}

void tst_frmMain::withoutDatabaseBackupIsDisabled()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    env.writeIni("[VORKAM]\nDatabase=" + env.path(QStringLiteral("ei.mdb")).toUtf8() + "\n");
    dialogs.answerNo();
    frmMain w;
    w.startUp();
    QCOMPARE(w.windowTitle(), QStringLiteral("Vorkam"));
    QVERIFY(!w.findChild<QAction*>(QStringLiteral("mVarmistus"))->isEnabled());
}

void tst_frmMain::workingWindowsOpenOnce_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("window");
    QTest::addColumn<QString>("title");
    QTest::newRow("cTositteet") << "cTositteet"
                                << "frmNewTositteet"
                                << "Tositteet";
    QTest::newRow("mAvausviennit") << "mAvausviennit"
                                   << "frmNewTositteet"
                                   << "Avausviennit";
    QTest::newRow("mTilinpaatosviennit") << "mTilinpaatosviennit"
                                         << "frmNewTositteet" << QString::fromUtf8("Tilinpäätösviennit");
    QTest::newRow("cTilit") << "cTilit"
                            << "frmTilitNew"
                            << "Tilit";
}

void tst_frmMain::workingWindowsOpenOnce()
{
    QFETCH(QString, command);
    QFETCH(QString, window);
    QFETCH(QString, title);
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString file = env.path(QStringLiteral("kerho.mdb"));
    QVERIFY(TestEnv::createDatabase(file));
    env.writeIni("[VORKAM]\nDatabase=" + file.toUtf8() + "\n");
    frmMain w;
    w.startUp();
    const auto trigger = [&] {
        if (auto* button = w.findChild<QPushButton*>(command))
            button->click();
        else
            w.findChild<QAction*>(command)->trigger();
    };
    trigger();
    trigger();
    const QList<QWidget*> opened = w.findChildren<QWidget*>(window, Qt::FindDirectChildrenOnly);
    QCOMPARE(opened.size(), 1);
    QVERIFY(opened.first()->isWindow());
    QVERIFY2(opened.first()->windowTitle().contains(title), qPrintable(opened.first()->windowTitle()));
    QVERIFY(opened.first()->testAttribute(Qt::WA_DeleteOnClose));
}

void tst_frmMain::supportOpensManual()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    frmMain w;
    QTest::mouseClick(w.findChild<QPushButton*>(QStringLiteral("cKayttotuki")), Qt::LeftButton);
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::OpenUrl),
        QStringList {
            QUrl::fromLocalFile(env.programDir() + QStringLiteral("/kayttoohje/index.html")).toString() });
}

void tst_frmMain::closeEndsProgram()
{
    TestEnv env;
    frmMain w;
    QTest::mouseClick(w.findChild<QPushButton*>(QStringLiteral("cSulje")), Qt::LeftButton);
    QCOMPARE(env.programEnds(), 1);
    w.findChild<QAction*>(QStringLiteral("mSulje"))->trigger();
    QCOMPARE(env.programEnds(), 2);
}

void tst_frmMain::restoreEndsProgram()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString backup = env.path(QStringLiteral("varmistus.mdb"));
    const QString target = env.path(QStringLiteral("palautettu.mdb"));
    QVERIFY(TestEnv::createDatabase(backup));
    dialogs.answerOpenFile(backup).answerSaveFile(target);
    frmMain w;
    w.findChild<QAction*>(QStringLiteral("mPalautus"))->trigger();
    QCOMPARE(env.programEnds(), 1);
    QCOMPARE(TestEnv::readFile(target), TestEnv::readFile(backup));
}

void tst_frmMain::aboutWindowOpens()
{
    TestEnv env;
    frmMain w;
    bool seen = false;
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        seen = dialog && dialog->objectName() == QLatin1String("frmAbout");
        if (dialog)
            dialog->accept();
    });
    w.findChild<QAction*>(QStringLiteral("mTietoja"))->trigger();
    QVERIFY(seen);
}

QTEST_MAIN(tst_frmMain)
#include "tst_frmMain.moc"
