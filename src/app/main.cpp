#include "ComputedEntries.h"
#include "DBC.h"
#include "Dialogs.h"
#include "ProfitEntries.h"
#include "ProgramInfo.h"
#include "QtDialogs.h"
#include "frmMain.h"

#include <QApplication>
#include <QIcon>
#include <QLocale>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Vorkam"));
    QApplication::setApplicationDisplayName(QStringLiteral("Vorkam"));
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
