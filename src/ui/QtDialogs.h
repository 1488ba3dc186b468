#pragma once

#include "core/Dialogs.h"

// The real message boxes, input boxes and file dialogs, always titled "Vorkam".
class QtDialogs final : public Dialogs {
public:
    void information(const QString& text) override;
    void plain(const QString& text) override;
    void error(const QString& text) override;
    bool question(const QString& text) override;
    std::optional<QString> input(const QString& prompt, const QString& defaultText) override;
    QString openFileName(const QString& title, const QString& filter, const QString& start) override;
    QString saveFileName(const QString& title, const QString& filter, const QString& start) override;
    void beep() override;
    void openUrl(const QUrl& url) override;
};
