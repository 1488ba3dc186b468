#pragma once

#include "vouchers/VoucherEditor.h"

#include <QMainWindow>
#include <QPointer>
#include <memory>

namespace Ui {
class frmNewTositteet;
}
class EntryModel;
class VoucherListModel;
class QModelIndex;
class frmTositeTarkistusVirheet;
class frmTositepohja;

// The window in which vouchers of the current fiscal year are typed, browsed, corrected and
// deleted. One window shows one kind of voucher for as long as it is open. The rules live in
// VoucherEditor; the window maps its widgets to it.
class frmNewTositteet final : public QMainWindow {
    Q_OBJECT

public:
    using Laji = VoucherEditor::Laji;

    // Loads the accounts and the vouchers of `laji` from `db` and shows the last voucher of
    // that kind (an empty voucher when there is none).
    frmNewTositteet(const QSqlDatabase& db, Laji laji, QWidget* parent = nullptr);
    ~frmNewTositteet() override;

    Laji laji() const { return m_muokkaus->laji(); }
    const VoucherEditor& muokkaus() const { return *m_muokkaus; }
    // The voucher on screen; IsEmpty when the kind has no voucher yet.
    const cTosite& curTosite() const { return m_muokkaus->tosite(); }

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
    void Selaa();
    // The journal and the general ledger of the window's kind: the account check and save
    // first, then the period and the printout.
    void Paivakirja();
    void Paakirja();
    // Shows the voucher `toId` as a click in the list does (the leave check first). A voucher of
    // another kind is not shown here; the user is told which window shows it.
    bool avaaTosite(qint32 toId);
    // The account of the entry row the cursor is on (the other side's, or the first one with an
    // account, when that row has none); 0 when the voucher has no account.
    qint32 valittuTili() const;
    void Haku();
    void TositteidenTarkistus();
    void Tositepohjat();
    // A new voucher from the template `tpId`.
    void UusiPohjasta(qint32 tpId);
    // Runs the voucher check; with findings asks whether to open the findings window and opens
    // it on Yes. True when it was opened.
    bool TarkistusTarjous();

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void siirry(VoucherEditor::Siirto siirto);
    // The account check and save before a printout; false when the check failed.
    bool tallennaEnnenTulostusta();
    void avaaTilitarkastelu();
    void avaaPaivaSaldot();
    // Puts the focus on the row the account check refused.
    // A typed date: in full, or a day and month of the fiscal year ("15.3").
    static QDate pvm(const QString& text);
    void naytaVirhePaikka();
    // Commits the cell being edited, so that the rules see what was typed last.
    void sulkeEditori(bool tallenna);
    void naytaTosite();
    void naytaOtsake();
    void paivitaSummat();
    void taytaLuettelo();
    void lataaLuettelosta(const QModelIndex& index);
    void pvmValmis();
    void riviMuuttui(int row, int column);

    // The quick-select items of the templates menu, and the template button's choice.
    void rakennaPikavalinnat();
    void valitsePohja();
    bool korjaaOrvot() const;

    std::unique_ptr<Ui::frmNewTositteet> ui;
    QPointer<frmTositeTarkistusVirheet> m_tarkistus;
    QPointer<frmTositepohja> m_pohjat;
    QList<QAction*> m_pikavalinnat;
    bool m_kayttajaSulkee = false;
    std::unique_ptr<VoucherEditor> m_muokkaus;
    EntryModel* m_model = nullptr;
    VoucherListModel* m_list = nullptr;
};
