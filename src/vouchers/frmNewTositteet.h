#pragma once

#include "VoucherAccounts.h"
#include "cTosite.h"

#include <QMainWindow>
#include <memory>

namespace Ui {
class frmNewTositteet;
}
class VientiModel;
class QModelIndex;

// The window in which vouchers of the current fiscal year are typed, browsed, corrected and
// deleted. One window shows one kind of voucher for as long as it is open.
class frmNewTositteet final : public QMainWindow {
    Q_OBJECT

public:
    enum class Kind { Ordinary, Opening, Closing };

    // Loads the accounts and the vouchers of `kind` from the open database and shows the last
    // voucher of that kind (an empty voucher when there is none).
    explicit frmNewTositteet(Kind kind, QWidget* parent = nullptr);
    ~frmNewTositteet() override;

    Kind kind() const { return m_kind; }
    // The voucher on screen; IsEmpty when the kind has no voucher yet.
    const cTosite& curTosite() const { return *m_tosite; }
    // The greatest number of debit or credit entries in one voucher, computed on opening.
    qint16 MaxLkmViennitPerTosite() const { return m_maxLkm; }
    // Entry rows per side: at least six, and as many as the longest voucher needs.
    int rowCount() const;

    // The commands of the window's buttons and menu.
    void Uusi();
    void Tallenna();
    void Poista();
    void Peru();
    void Ensimmainen();
    void Edellinen();
    void Seuraava();
    void Viimeinen();
    void LisaaVienteja();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class Step { First, Previous, Next, Last };
    void step(Step where);
    // Every row with an amount must have an account; false (with the message and the focus
    // on the offending row) when one has not.
    bool tarkistaTilit();
    // Saves the voucher on screen and its entries in one transaction; false when it failed.
    bool saveAll();
    // Makes `tosite` the voucher on screen (the old one must have been saved).
    void setCurrent(std::unique_ptr<cTosite> tosite);
    void showVoucher();
    void showHeader();
    void updateTotals();
    void fillList();
    void refreshListLine(const QString& selite, qint32 toId);
    void removeListLine(qint32 toId);
    void loadFromList(const QModelIndex& index);
    void numeroEdited(const QString& text);
    void pvmFinished();
    void seliteEdited(const QString& text);
    void entryChanged(int row, int column);
    void automaticNewVoucher();
    void setEditable(bool editable);
    void showError(const QString& text);
    void discardEntries();

    std::unique_ptr<Ui::frmNewTositteet> ui;
    Kind m_kind;
    bool m_avaus = false;
    bool m_paatos = false;
    std::unique_ptr<cTosite> m_tosite;
    cTosite::Viennit m_debet;
    cTosite::Viennit m_kredit;
    VoucherAccounts m_tilit;
    VientiModel* m_model = nullptr;
    class TositeListModel* m_list = nullptr;
    qint16 m_maxLkm = 0;
    // Sums of the LaskettavaTili account: in every stored voucher, and in every stored voucher
    // other than the one on screen.
    VoucherAccounts::Sums m_kaikki;
    VoucherAccounts::Sums m_muut;
    bool m_closing = false;
};
