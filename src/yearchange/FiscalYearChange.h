#pragma once

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

// The fiscal year change: the closing balance sheet is computed, the previous-year history is
// replaced by the current year, the current year is emptied, the four fiscal-year dates move
// one calendar year forward and, when asked, the closing balances of the balance-sheet
// accounts become the new year's opening voucher "Tilinavausviennit".
//
// A safety copy of the books is written first; then everything runs in one transaction, so a
// failure, a full disk or a killed program leaves the books exactly as they were. The window
// frmKaudenVaihto shows the stages; the work itself needs no window.
class FiscalYearChange final {
public:
    // The fiscal-year dates of the bookkeeping settings.
    struct Kaudet {
        QDate alku;
        QDate loppu;
        QDate edAlku;
        QDate edLoppu;
        bool operator==(const Kaudet&) const = default;
    };
    // The dates in force.
    static Kaudet nykyiset();
    // Each date one calendar year later, by itself: a gap or overlap between the years stays,
    // and 29 February becomes 28 February.
    static Kaudet seuraavat(const Kaudet& kaudet);

    // The balance-sheet templates by name, as cmbTasemalli lists them after its blank item.
    struct Tasemalli {
        qint32 id = 0;
        QString nimi;
    };
    static std::vector<Tasemalli> tasemallit(const QSqlDatabase& db);

    // The stages, each with its text for lblStatus; the progress bar counts them.
    static constexpr int Vaiheet = 6;
    static QString vaiheTeksti(int vaihe); // 1 … Vaiheet

    static QString valitseMalliViesti();
    static QString valmisViesti();

    // Called when a stage begins (its text and the stages done before it) and when it ends
    // (the same text, the stages done with it); first with the safety copy's name and 0. The
    // window shows the text, moves its bar and lets events run. Throwing from it stops the
    // change: everything it did is rolled back.
    using Edistyminen = std::function<void(const QString& teksti, int valmiina)>;

    explicit FiscalYearChange(const QSqlDatabase& db);

    void setEdistyminen(Edistyminen edistyminen) { m_edistyminen = std::move(edistyminen); }
    // Asked once the books have passed their checks and before anything is done, with the new
    // years; false stops the change with nothing done.
    using Vahvistus = std::function<bool(const Kaudet& uudet)>;
    void setVahvistus(Vahvistus vahvistus) { m_vahvistus = std::move(vahvistus); }

    // What stops the change, each on a line: every finding of the voucher check (an unbalanced
    // or undated voucher, an entry without an account) and, with a balance sheet chosen, every
    // account with entries that stands on no row of it or of its income statement. Throws
    // DatabaseError.
    QStringList esteet(qint32 tasemalli) const;
    static QString esteetViesti(const QStringList& esteet);

    // Performs the change. `tasemalli` is the chosen template (0 for the blank item, nullopt
    // when nothing is chosen). Every refusal and failure is told through Dialogs and gives
    // false with the books unchanged; the closing message is left to the caller, so that the
    // window can show it when its work is done.
    bool suorita(std::optional<qint32> tasemalli, bool avausviennit);

    // The safety copy written by the last run; empty when none was.
    const QString& varmuuskopio() const { return m_varmuuskopio; }

private:
    void vaihe(int vaihe, const std::function<void()>& tyo);
    void laskeTase(qint32 tasemalli);
    void siirraHistoriaan();
    void kirjaaAvausviennit(const QDate& paiva);

    QSqlDatabase m_db;
    Edistyminen m_edistyminen;
    Vahvistus m_vahvistus;
    QString m_varmuuskopio;
};
