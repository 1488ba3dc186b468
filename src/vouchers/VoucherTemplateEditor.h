#pragma once

#include "accounts/AccountLookup.h"
#include "vouchers/VoucherEditor.h"
#include "vouchers/cTositePohja.h"
#include "vouchers/cTositePohjat.h"

#include <QObject>
#include <QSqlDatabase>
#include <memory>
#include <optional>
#include <vector>

// The editing of voucher templates, one at a time: name, description, quick-select number and
// the debit and credit patterns, typed as the entry rows of the voucher window are. The
// template window maps its widgets to this class. Also makes the entry list of a voucher
// from a template.
class VoucherTemplateEditor final : public QObject {
    Q_OBJECT

public:
    using Puoli = VoucherEditor::Puoli;

    explicit VoucherTemplateEditor(const QSqlDatabase& db);
    // A changed template is saved as it stands.
    ~VoucherTemplateEditor() override;

    // Reads the accounts and the templates and shows the first one (a new one when there is
    // none). False, with the message shown, when the books cannot be read.
    bool avaa();

    const AccountLookup& tilit() const { return m_tilit; }
    const std::vector<cTositePohjat::Rivi>& luettelo() const { return m_luettelo; }
    const cTositePohja& pohja() const { return *m_pohja; }
    int riviMaara() const { return int(m_debet.size()); }

    void setNimi(const QString& nimi);
    void setSelite(const QString& selite);
    // Refused, with "Pikavalinta N on jo käytössä.", when another template has the number; the
    // template keeps the number it had.
    bool setPikavalinta(int numero);

    QString tiliTeksti(Puoli puoli, int rivi) const;
    QString arvoTeksti(Puoli puoli, int rivi) const;
    bool setTiliTeksti(Puoli puoli, int rivi, const QString& teksti);
    bool setArvoTeksti(Puoli puoli, int rivi, const QString& teksti);
    void lisaaRivi();

    // The commands; each tells what stops it and gives false. Those that leave the template on
    // screen save it first, refusing a row with an amount and no account.
    bool tallenna();
    bool uusi();
    bool lataa(qint32 tpId);
    // Asks first; the template and all its patterns go in one transaction.
    bool poista();
    bool sulje();
    // The row the last refused save stopped on.
    const std::optional<VoucherEditor::Paikka>& virhePaikka() const { return m_virhePaikka; }

    // The entries of a voucher made from the template `tpId`: debit patterns first, then
    // credit ones. A pattern whose account has since been deleted keeps its amount without an
    // account, and `tiliPuuttuu` is set. Throws DatabaseError; nullopt when there is no such
    // template.
    struct Tosite {
        QString selite;
        std::vector<VoucherEditor::Malli> viennit;
        bool tiliPuuttuu = false;
    };
    static std::optional<Tosite> tositteeksi(const QSqlDatabase& db, const AccountLookup& tilit, qint32 tpId);

signals:
    // Another template (or the same one, refilled) is on screen.
    void pohjaVaihtui();
    // Templates were saved or deleted: the list and the quick-select menus are out of date.
    void pohjatMuuttuivat();

private:
    cTositePohja::Viennit& puoli_(Puoli puoli) { return puoli == Puoli::Debet ? m_debet : m_kredit; }
    const cTositePohja::Viennit& puoli_(Puoli puoli) const
    {
        return puoli == Puoli::Debet ? m_debet : m_kredit;
    }
    void nayta(std::unique_ptr<cTositePohja> pohja);
    void taydenna();
    bool muuttunut() const;
    void lueLuettelo();
    // Saves the template on screen when it changed; false, told, when it could not be.
    bool jata();
    // Writes the template and its patterns in one transaction; false (and told) when it failed.
    bool tallennaKaikki();

    QSqlDatabase m_db;
    AccountLookup m_tilit;
    std::vector<cTositePohjat::Rivi> m_luettelo;
    std::unique_ptr<cTositePohja> m_pohja;
    cTositePohja::Viennit m_debet;
    cTositePohja::Viennit m_kredit;
    std::optional<VoucherEditor::Paikka> m_virhePaikka;
};
