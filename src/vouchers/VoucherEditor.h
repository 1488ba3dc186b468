#pragma once

#include "accounts/AccountLookup.h"
#include "vouchers/AmountInput.h"
#include "vouchers/cTosite.h"

#include <QObject>
#include <QSqlDatabase>
#include <memory>
#include <optional>
#include <vector>

// The editing of the vouchers of one kind, one voucher at a time: the voucher on screen, the
// entry rows of both sides, their sums, the balance of the account chosen in the settings,
// and the rules of typing, saving, browsing and deleting. The voucher window maps its
// widgets to this class; voucher templates, the automatic profit entries and the year change
// make and save vouchers through it without a window.
//
// Commands report what goes wrong through Dialogs and leave what the user typed on screen:
// a save that fails is rolled back whole and can be tried again.
class VoucherEditor final : public QObject {
    Q_OBJECT

public:
    enum class Laji { Tavallinen, Avaus, Paatos };
    enum class Puoli { Debet, Kredit };
    enum class Siirto { Ensimmainen, Edellinen, Seuraava, Viimeinen };
    struct Paikka {
        Puoli puoli;
        int rivi;
    };
    // One entry of a pattern from which a voucher is made.
    struct Malli {
        Puoli puoli;
        qint32 tlId = 0;
        Money arvo;
    };
    // Entry rows per side are at least this many.
    static constexpr int VahimmaisRivit = 6;

    VoucherEditor(const QSqlDatabase& db, Laji laji);
    // The voucher on screen is saved as it stands (the owner runs the leave check first).
    ~VoucherEditor() override;

    // Reads what editing needs (the row count of the longest voucher, the accounts, the sums of
    // the chosen account) and shows the last voucher of the kind. False, with the message
    // shown, when the books cannot be read.
    bool avaa();

    Laji laji() const { return m_laji; }
    bool avaus() const { return m_laji == Laji::Avaus; }
    bool paatos() const { return m_laji == Laji::Paatos; }
    const QSqlDatabase& database() const { return m_db; }
    const AccountLookup& tilit() const { return m_tilit; }
    // The greatest number of debit or credit entries in one voucher, read when opening.
    qint16 MaxLkmViennitPerTosite() const { return m_maxLkm; }

    // The voucher on screen; IsEmpty when the kind has no voucher yet.
    const cTosite& tosite() const { return *m_tosite; }
    // The books are open for reading only: vouchers are shown, never changed.
    bool vainLuku() const { return m_vainLuku; }
    bool muokattavissa() const { return !m_tosite->IsEmpty() && !m_vainLuku; }
    int riviMaara() const { return int(m_debet.size()); }
    const cVienti& vienti(Puoli puoli, int rivi) const { return *puoli_(puoli)[size_t(rivi)]; }

    // The header. A new description is given to every entry as well.
    void setNumero(qint32 numero);
    void setSelite(const QString& selite);
    // An invalid date is the zero date. A date outside the fiscal year is kept, and the user
    // is told unless `varoita` is off; false then.
    bool setPaiva(const QDate& paiva, bool varoita = true);

    // An entry row as it is shown and as the user types it. Setting a text equal to the one
    // shown changes nothing. An account is a number, "number name" or the start of a name;
    // an amount is read the Finnish way, and a refused one is told to the user.
    QString tiliTeksti(Puoli puoli, int rivi) const;
    QString arvoTeksti(Puoli puoli, int rivi) const;
    // True when the row changed.
    bool setTiliTeksti(Puoli puoli, int rivi, const QString& teksti);
    bool setArvoTeksti(Puoli puoli, int rivi, const QString& teksti);
    void setTili(Puoli puoli, int rivi, qint32 tlId);
    void setArvo(Puoli puoli, int rivi, Money arvo);
    // One more row on each side.
    void lisaaRivi();

    Money debet() const;
    Money kredit() const;
    Money erotus() const { return debet() - kredit(); }
    // The balance (debit − credit) of the account LaskettavaTili in every stored voucher, the
    // one on screen taken as it is shown; nullopt when no account is chosen.
    std::optional<Money> laskettavanSaldo() const;
    // Reads the chosen account's sums in every stored voucher again: what other windows saved
    // meanwhile counts too. A save reads back only the voucher it saved.
    void paivitaSaldot();

    // Every row with an amount has an account. When one has not, the user is told ("Tarkista
    // tilivalinta.") and the row is given.
    std::optional<Paikka> tarkistaTilit() const;
    // The voucher is complete (every row with an account has an amount and the other way
    // round, something is entered), balanced, and the highest-numbered one: the automatic new
    // voucher may follow.
    bool valmisUuteen() const;

    // Saves the voucher and all its entries in one transaction. Throws DatabaseError; the
    // objects then hold what was typed, unsaved.
    void tallennaKaikki();

    // The commands. Each reports what stops it through Dialogs and gives false. Those that
    // leave the voucher on screen run the account check and save it first; after a failed
    // check virhePaikka() gives the row to put the focus on.
    bool tallenna();
    bool uusi();
    // Makes a new voucher as uusi() does, with the description and the entries of a pattern,
    // saved in one transaction.
    bool uusiMallista(const QString& selite, const std::vector<Malli>& viennit);
    // Asks first; false when the user said no, there is nothing to delete, or it failed.
    bool poista();
    void peru();
    // False (and a beep) when there is no voucher there.
    bool siirry(Siirto siirto);
    bool lataa(qint32 toId);
    // Leaving for good (the window closes): the account check, then the save. When the save
    // fails the user is asked whether to close all the same; Yes drops what was not saved.
    bool sulje();
    // After the amount of a row has been typed: makes the next voucher when the setting
    // AutomaattisestiUusiTosite is on and valmisUuteen() holds. True when it did.
    bool automaattinenUusi();
    const std::optional<Paikka>& virhePaikka() const { return m_virhePaikka; }
    // The last command stopped because the voucher has no date.
    bool pvmPuuttuu() const { return m_pvmPuuttuu; }

    // The vouchers of the kind, for the list.
    std::vector<cTosite::Rivi> luettelo() const;
    static QString luetteloTeksti(qint32 numero, const QString& selite);

signals:
    // Another voucher (or the same one, refilled) is on screen: show everything again.
    void tositeVaihtui();
    // A voucher's list line is new or changed, or the voucher is gone.
    void luetteloRivi(qint32 toId, const QString& teksti);
    void luetteloPoisto(qint32 toId);

private:
    using Viennit = cTosite::Viennit;
    Viennit& puoli_(Puoli puoli) { return puoli == Puoli::Debet ? m_debet : m_kredit; }
    const Viennit& puoli_(Puoli puoli) const { return puoli == Puoli::Debet ? m_debet : m_kredit; }
    static QString tyyppi(Puoli puoli);
    // Makes `tosite` the voucher on screen, with its stored entries and blank rows.
    void nayta(std::unique_ptr<cTosite> tosite);
    // Rows whose entry was deleted by a save hold a fresh entry of their side again.
    void taydennaRivit();
    void lueLaskettava();
    // The account check and the save of the voucher on screen.
    bool jata();
    bool tallennaJaKerro();
    // A voucher with something in it has a date; else the user is told and false.
    bool tarkistaPvm();
    void unohda();
    void nimiMuuttui(const QString& selite, qint32 toId);

    QSqlDatabase m_db;
    bool m_pvmPuuttuu = false;
    Laji m_laji;
    bool m_vainLuku = false;
    std::unique_ptr<cTosite> m_tosite;
    Viennit m_debet;
    Viennit m_kredit;
    AccountLookup m_tilit;
    qint16 m_maxLkm = 0;
    // The chosen account's sums in every stored voucher, and in the stored voucher on screen.
    AccountLookup::Sums m_kaikki;
    AccountLookup::Sums m_omat;
    std::optional<Paikka> m_virhePaikka;
};
