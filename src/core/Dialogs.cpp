#include "core/Dialogs.h"

#include <QDebug>

namespace {

// Used before the program installs its real dialogs: never blocks, answers No.
class SilentDialogs final : public Dialogs {
public:
    void information(const QString& text) override { qInfo().noquote() << text; }
    void plain(const QString& text) override { qInfo().noquote() << text; }
    void error(const QString& text) override { qWarning().noquote() << text; }
    bool question(const QString& text) override
    {
        qInfo().noquote() << text;
        return false;
    }
    std::optional<QString> input(const QString&, const QString&) override { return std::nullopt; }
    QString openFileName(const QString&, const QString&, const QString&) override { return {}; }
    QString saveFileName(const QString&, const QString&, const QString&) override { return {}; }
    void beep() override { }
    void openUrl(const QUrl&) override { }
};

SilentDialogs g_silent;
Dialogs* g_current = nullptr;

} // namespace

Dialogs& Dialogs::instance() { return g_current ? *g_current : g_silent; }

void Dialogs::install(Dialogs* dialogs) { g_current = dialogs; }
