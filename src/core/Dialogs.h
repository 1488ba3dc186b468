#pragma once

#include <QString>
#include <QUrl>
#include <optional>

// Every message box, question, input box, file dialog, beep and opened page of Vorkam goes
// through this seam. Boxes are always titled "Vorkam". The program installs the real
// implementation; tests install a scripted one.
class Dialogs {
public:
    virtual ~Dialogs() = default;

    // Information icon and OK.
    virtual void information(const QString& text) = 0;
    // OK only, no icon.
    virtual void plain(const QString& text) = 0;
    // Critical icon and OK.
    virtual void error(const QString& text) = 0;
    // Yes/No with a question icon; true is Yes.
    virtual bool question(const QString& text) = 0;
    // An input box; nullopt when cancelled.
    virtual std::optional<QString> input(const QString& prompt, const QString& defaultText) = 0;
    // File dialogs; `filter` is in Qt form ("Tietokanta (*.mdb)"). An empty result is a cancel.
    virtual QString openFileName(const QString& title, const QString& filter, const QString& start) = 0;
    virtual QString saveFileName(const QString& title, const QString& filter, const QString& start) = 0;
    virtual void beep() = 0;
    // Opens a web page or a file in the desktop's own program.
    virtual void openUrl(const QUrl& url) = 0;

    static Dialogs& instance();
    // Does not take ownership; nullptr restores the silent default.
    static void install(Dialogs* dialogs);
};

// The information-message routine.
inline void showInformation(const QString& text) { Dialogs::instance().information(text); }
