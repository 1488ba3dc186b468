#include "app/frmMain.h"
#include "core/ComputedEntries.h"
#include "core/DBC.h"
#include "core/Dialogs.h"
#include "core/ProgramInfo.h"
#include "statements/ProfitEntries.h"
#include "ui/QtDialogs.h"
#include "ui/TitleFit.h"

#include <QApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    // No display name: the window manager would add it to every window's own title.
    QApplication::setApplicationName(QStringLiteral("Vorkam"));
    QApplication::setApplicationVersion(ProgramInfo::version());
    // The desktop entry's name lets the desktop match the window to its menu item and icon.
    QGuiApplication::setDesktopFileName(QStringLiteral("vorkam"));
    QIcon icon;
    for (int size : { 16, 32, 64, 256 })
        icon.addFile(QStringLiteral(":/vorkam/vorkam-%1.png").arg(size), QSize(size, size));
    QApplication::setWindowIcon(icon);
    // Amounts and dates are Finnish whatever the machine's own language.
    if (QLocale::system().territory() != QLocale::Finland)
        QLocale::setDefault(QLocale(QLocale::Finnish, QLocale::Finland));
    // Qt's own texts (file dialogs, context menus, standard buttons) in Finnish too.
    QTranslator qtTexts;
    if (qtTexts.load(QLocale(QLocale::Finnish, QLocale::Finland), QStringLiteral("qtbase"),
            QStringLiteral("_"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&qtTexts);

    TitleFit::install();
    QtDialogs dialogs;
    Dialogs::install(&dialogs);
    // The account inspection shows the year's result that the statements compute.
    ComputedEntries::setSource(ProfitEntries::ofFiscalYear);

    int rc = 0;
    {
        frmMain window;
        window.startUp();
        window.show();
        rc = QApplication::exec();
    }
    DBC::instance().SuljeDB();
    Dialogs::install(nullptr);
    return rc;
}
