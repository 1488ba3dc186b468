#include "vouchers/VoucherEditor.h"

#include "core/DatabaseFile.h"
#include "core/Dates.h"
#include "core/Dialogs.h"
#include "core/ProgramSettings.h"
#include "core/Transaction.h"

#include <algorithm>

namespace {

const QString TallennusEpaonnistui = QStringLiteral(
    "Tositteen tallentaminen ei onnistunut. Kirjaukset ovat yhä näytöllä, eikä niistä tallentunut mitään.");

void kerro(const QString& lause, const DatabaseError& e) { Dialogs::instance().error(e.message(lause)); }

} // namespace

VoucherEditor::VoucherEditor(const QSqlDatabase& db, Laji laji)
    : m_db(db)
    , m_laji(laji)
    , m_vainLuku(DatabaseFile::isReadOnly(db))
    , m_tosite(std::make_unique<cTosite>(db))
{
    m_tosite->setIsEmpty(true);
}

VoucherEditor::~VoucherEditor()
{
    // Released without leaving first: what is on screen is kept, all or nothing.
    if (!m_tosite->IsEmpty()) {
        try {
            tallennaKaikki();
        } catch (const DatabaseError& e) {
            kerro(TallennusEpaonnistui, e);
        }
    }
    unohda();
}

QString VoucherEditor::tyyppi(Puoli puoli)
{
    return puoli == Puoli::Debet ? QStringLiteral("D") : QStringLiteral("K");
}

QString VoucherEditor::luetteloTeksti(qint32 numero, const QString& selite)
{
    return QString::number(numero) + u' ' + selite;
}

bool VoucherEditor::avaa()
{
    try {
        m_maxLkm = cTosite::MaxLkmViennitPerTosite(m_db);
        m_tilit.load(m_db);
        paivitaSaldot();
        nayta(m_tosite->GetLastFromZero(avaus(), paatos()));
        return true;
    } catch (const DatabaseError& e) {
        kerro(QStringLiteral("Tositteita ei voitu lukea tietokannasta."), e);
        nayta(nullptr);
        return false;
    }
}

void VoucherEditor::unohda()
{
    // Objects whose voucher is gone, or whose changes the user chose to drop, write nothing.
    for (auto* side : { &m_debet, &m_kredit })
        for (auto& v : *side)
            v->setIsEmpty(true);
    m_debet.clear();
    m_kredit.clear();
    m_tosite->setIsEmpty(true);
}

void VoucherEditor::nayta(std::unique_ptr<cTosite> tosite)
{
    m_debet.clear();
    m_kredit.clear();
    if (!tosite) {
        tosite = std::make_unique<cTosite>(m_db);
        tosite->setIsEmpty(true);
    }
    m_tosite = std::move(tosite);
    connect(m_tosite.get(), &cTosite::NameChanged, this, &VoucherEditor::nimiMuuttui);
    m_debet = m_tosite->GetViennit(tyyppi(Puoli::Debet));
    m_kredit = m_tosite->GetViennit(tyyppi(Puoli::Kredit));
    const size_t rows
        = std::max({ size_t(std::max<int>(m_maxLkm, VahimmaisRivit)), m_debet.size(), m_kredit.size() });
    for (Puoli puoli : { Puoli::Debet, Puoli::Kredit })
        while (puoli_(puoli).size() < rows)
            puoli_(puoli).push_back(m_tosite->AddNewVienti(tyyppi(puoli)));
    lueLaskettava();
    emit tositeVaihtui();
}

void VoucherEditor::lueLaskettava()
{
    const qint32 laskettava = ProgramSettings::bookkeeping().LaskettavaTili;
    m_omat = laskettava != 0 && m_tosite->ToId() != 0
        ? AccountLookup::voucherSums(m_db, laskettava, m_tosite->ToId())
        : AccountLookup::Sums();
}

void VoucherEditor::taydennaRivit()
{
    for (Puoli puoli : { Puoli::Debet, Puoli::Kredit })
        for (auto& v : puoli_(puoli))
            if (v->ViId() == 0 && v->ToId() != m_tosite->ToId())
                v = m_tosite->AddNewVienti(tyyppi(puoli));
}

void VoucherEditor::nimiMuuttui(const QString& selite, qint32 toId)
{
    if (toId == m_tosite->ToId())
        emit luetteloRivi(toId, luetteloTeksti(m_tosite->Numero(), selite));
}

void VoucherEditor::setNumero(qint32 numero)
{
    if (muokattavissa())
        m_tosite->setNumero(numero);
}

void VoucherEditor::setSelite(const QString& selite)
{
    if (!muokattavissa())
        return;
    m_tosite->setSelite(selite);
    // Entries carry their voucher's description.
    for (const auto* side : { &m_debet, &m_kredit })
        for (const auto& v : *side)
            v->setSelite(m_tosite->Selite());
}

bool VoucherEditor::setPaiva(const QDate& paiva, bool varoita)
{
    if (!muokattavissa())
        return true;
    m_tosite->setPaiva(paiva);
    const BookkeepingSettings& s = ProgramSettings::bookkeeping();
    if (!paiva.isValid() || (paiva >= s.TilikausiAlku && paiva <= s.TilikausiLoppu))
        return true;
    if (varoita)
        Dialogs::instance().information(
            QStringLiteral("Tositteen päivämäärän tulee kuulua tilikauteen!\n\nTilikausi: ")
            + Dates::format(s.TilikausiAlku) + QStringLiteral(" - ") + Dates::format(s.TilikausiLoppu));
    return false;
}

QString VoucherEditor::tiliTeksti(Puoli puoli, int rivi) const
{
    return m_tilit.text(vienti(puoli, rivi).tlID());
}

QString VoucherEditor::arvoTeksti(Puoli puoli, int rivi) const
{
    const Money arvo = vienti(puoli, rivi).Arvo();
    return arvo.isZero() ? QString() : arvo.toString();
}

bool VoucherEditor::setTiliTeksti(Puoli puoli, int rivi, const QString& teksti)
{
    if (!muokattavissa() || teksti.trimmed() == tiliTeksti(puoli, rivi))
        return false;
    const qint32 id = m_tilit.resolve(teksti);
    if (id == 0 && !teksti.trimmed().isEmpty())
        Dialogs::instance().information(QStringLiteral("Valitse tili, jolle vienti tehdään."));
    setTili(puoli, rivi, id);
    return true;
}

bool VoucherEditor::setArvoTeksti(Puoli puoli, int rivi, const QString& teksti)
{
    // Tabbing through a cell rewrites nothing: an amount of more than two decimals or a
    // negative one, stored earlier, keeps its value.
    if (!muokattavissa() || teksti.trimmed() == arvoTeksti(puoli, rivi))
        return false;
    const AmountInput in = AmountInput::parse(teksti);
    if (in.result != AmountInput::Result::Ok)
        Dialogs::instance().information(in.message());
    if (in.result != AmountInput::Result::Ok && in.result != AmountInput::Result::NotANumber)
        return false;
    setArvo(puoli, rivi, in.value);
    return true;
}

void VoucherEditor::setTili(Puoli puoli, int rivi, qint32 tlId)
{
    if (muokattavissa())
        puoli_(puoli)[size_t(rivi)]->settlID(tlId);
}

void VoucherEditor::setArvo(Puoli puoli, int rivi, Money arvo)
{
    if (muokattavissa())
        puoli_(puoli)[size_t(rivi)]->setArvo(arvo);
}

void VoucherEditor::lisaaRivi()
{
    if (!muokattavissa())
        return;
    for (Puoli puoli : { Puoli::Debet, Puoli::Kredit })
        puoli_(puoli).push_back(m_tosite->AddNewVienti(tyyppi(puoli)));
}

Money VoucherEditor::debet() const
{
    Money sum;
    for (const auto& v : m_debet)
        sum += v->Arvo();
    return sum;
}

Money VoucherEditor::kredit() const
{
    Money sum;
    for (const auto& v : m_kredit)
        sum += v->Arvo();
    return sum;
}

std::optional<Money> VoucherEditor::laskettavanSaldo() const
{
    const qint32 laskettava = ProgramSettings::bookkeeping().LaskettavaTili;
    if (laskettava == 0)
        return std::nullopt;
    AccountLookup::Sums sums = m_kaikki - m_omat;
    for (const auto& v : m_debet)
        if (v->tlID() == laskettava)
            sums.debet += v->Arvo();
    for (const auto& v : m_kredit)
        if (v->tlID() == laskettava)
            sums.kredit += v->Arvo();
    return sums.debet - sums.kredit;
}

std::optional<VoucherEditor::Paikka> VoucherEditor::tarkistaTilit() const
{
    if (m_tosite->IsEmpty())
        return std::nullopt;
    for (Puoli puoli : { Puoli::Debet, Puoli::Kredit }) {
        const Viennit& side = puoli_(puoli);
        for (size_t rivi = 0; rivi < side.size(); ++rivi) {
            const cVienti& v = *side[rivi];
            if (!v.IsEmpty() && v.tlID() < 1 && !v.Arvo().isZero()) {
                Dialogs::instance().information(QStringLiteral("Tarkista tilivalinta."));
                return Paikka { puoli, int(rivi) };
            }
        }
    }
    return std::nullopt;
}

bool VoucherEditor::valmisUuteen() const
{
    if (m_tosite->IsEmpty())
        return false;
    bool any = false;
    for (const auto* side : { &m_debet, &m_kredit }) {
        for (const auto& v : *side) {
            const bool hasAccount = v->tlID() > 0;
            const bool hasAmount = !v->Arvo().isZero();
            if (hasAccount != hasAmount)
                return false;
            any = any || hasAmount;
        }
    }
    if (!any || !erotus().isZero())
        return false;
    try {
        return cTosite::SuurinNumero(m_db) == m_tosite->Numero();
    } catch (const DatabaseError&) {
        // Only decides whether a new voucher follows by itself: the user can always make one.
        return false;
    }
}

void VoucherEditor::tallennaKaikki()
{
    if (m_tosite->IsEmpty())
        return;
    // A new blank row is changed but writes nothing.
    bool kirjoittaa = m_tosite->Dirty();
    for (const auto* side : { &m_debet, &m_kredit })
        for (const auto& v : *side)
            kirjoittaa
                = kirjoittaa || (v->Dirty() && (v->ViId() != 0 || v->tlID() != 0 || !v->Arvo().isZero()));
    if (!kirjoittaa)
        return;
    {
        Transaction t(m_db);
        m_tosite->Save(false);
        for (const auto* side : { &m_debet, &m_kredit })
            for (const auto& v : *side)
                v->Save(false);
        t.commitOrThrow();
    }
    taydennaRivit();
    // The chosen account's sums are read back from the books, not worked out from the screen:
    // what this voucher now holds there replaces what it held before.
    const AccountLookup::Sums ennen = m_omat;
    lueLaskettava();
    m_kaikki = m_kaikki - ennen + m_omat;
}

void VoucherEditor::paivitaSaldot()
{
    const qint32 laskettava = ProgramSettings::bookkeeping().LaskettavaTili;
    m_kaikki = laskettava != 0 ? AccountLookup::storedSums(m_db, laskettava) : AccountLookup::Sums();
    lueLaskettava();
}

bool VoucherEditor::tallennaJaKerro()
{
    try {
        tallennaKaikki();
        return true;
    } catch (const DatabaseError& e) {
        kerro(TallennusEpaonnistui, e);
        return false;
    }
}

bool VoucherEditor::tarkistaPvm()
{
    m_pvmPuuttuu = muokattavissa() && !m_tosite->Paiva().isValid();
    if (m_pvmPuuttuu)
        Dialogs::instance().information(QStringLiteral(
            "Tositteelta puuttuu päivämäärä. Kirjoita päivämäärä (p.k.vvvv) ennen kuin jatkat."));
    return !m_pvmPuuttuu;
}

bool VoucherEditor::jata()
{
    m_virhePaikka = tarkistaTilit();
    return !m_virhePaikka && tarkistaPvm() && tallennaJaKerro();
}

bool VoucherEditor::tallenna()
{
    if (!jata())
        return false;
    if (m_tosite->ToId() != 0)
        emit luetteloRivi(m_tosite->ToId(), luetteloTeksti(m_tosite->Numero(), m_tosite->Selite()));
    return true;
}

bool VoucherEditor::uusi() { return uusiMallista(QString(), {}); }

bool VoucherEditor::uusiMallista(const QString& selite, const std::vector<Malli>& viennit)
{
    if (m_vainLuku) {
        Dialogs::instance().beep();
        return false;
    }
    if (!jata())
        return false;
    auto tosite = std::make_unique<cTosite>(m_db);
    Viennit tehdyt;
    try {
        Transaction t(m_db);
        tosite->SetTositeNumeroJaPaiva(ProgramSettings::bookkeeping().TilikausiAlku, avaus());
        tosite->setAvaustosite(avaus());
        tosite->setPaatostosite(paatos());
        if (!selite.isEmpty())
            tosite->setSelite(selite);
        // The voucher is stored at once: it has its number and key from now on.
        tosite->Save(true);
        for (const Malli& malli : viennit) {
            auto v = tosite->AddNewVienti(tyyppi(malli.puoli));
            v->settlID(malli.tlId);
            v->setArvo(malli.arvo);
            v->Save(false);
            tehdyt.push_back(std::move(v));
        }
        t.commitOrThrow();
    } catch (const DatabaseError& e) {
        // Nothing was stored: none of these objects may write on release.
        for (auto& v : tehdyt)
            v->setIsEmpty(true);
        tosite->setIsEmpty(true);
        kerro(QStringLiteral("Uutta tositetta ei voitu tehdä."), e);
        return false;
    }
    tehdyt.clear();
    emit luetteloRivi(tosite->ToId(), luetteloTeksti(tosite->Numero(), tosite->Selite()));
    try {
        nayta(std::move(tosite));
        // The pattern's entries are in the books now: the chosen account's sums take them in.
        m_kaikki = m_kaikki + m_omat;
    } catch (const DatabaseError& e) {
        kerro(QStringLiteral("Tositteen vientejä ei voitu lukea."), e);
        nayta(nullptr);
    }
    return true;
}

bool VoucherEditor::poista()
{
    if (!muokattavissa() || m_tosite->ToId() == 0) {
        Dialogs::instance().beep();
        return false;
    }
    if (!Dialogs::instance().question(QStringLiteral("Haluatko varmasti poistaa valitun tositteen?")))
        return false;
    try {
        // The neighbour to show next: the previous voucher of the kind, else the next one.
        auto naapuri = m_tosite->GetPrevious(avaus(), paatos());
        if (naapuri->IsEmpty())
            naapuri = m_tosite->GetNext(avaus(), paatos());
        const qint32 id = m_tosite->ToId();
        m_tosite->Delete();
        // The entries went with their voucher, typed changes included.
        unohda();
        m_kaikki = m_kaikki - m_omat;
        m_omat = {};
        emit luetteloPoisto(id);
        nayta(naapuri->IsEmpty() ? nullptr : std::move(naapuri));
        return true;
    } catch (const DatabaseError& e) {
        kerro(QStringLiteral("Tositetta ei voitu poistaa."), e);
        return false;
    }
}

void VoucherEditor::peru()
{
    if (!muokattavissa())
        return;
    m_tosite->Undo();
    for (const auto* side : { &m_debet, &m_kredit })
        for (const auto& v : *side)
            v->Undo();
    emit tositeVaihtui();
    if (m_tosite->ToId() != 0)
        emit luetteloRivi(m_tosite->ToId(), luetteloTeksti(m_tosite->Numero(), m_tosite->Selite()));
}

bool VoucherEditor::siirry(Siirto siirto)
{
    m_virhePaikka = tarkistaTilit();
    if (m_virhePaikka)
        return false;
    try {
        std::unique_ptr<cTosite> found;
        switch (siirto) {
        case Siirto::Ensimmainen:
            found = m_tosite->GetFirst(avaus(), paatos());
            break;
        case Siirto::Edellinen:
            found = m_tosite->GetPrevious(avaus(), paatos());
            break;
        case Siirto::Seuraava:
            found = m_tosite->GetNext(avaus(), paatos());
            break;
        case Siirto::Viimeinen:
            found = m_tosite->GetLast(avaus(), paatos());
            break;
        }
        // Vouchers numbered below 0 carry the ledger's balance rows: browsing never shows them.
        if (found->IsEmpty() || found->Numero() < 0) {
            Dialogs::instance().beep();
            return false;
        }
        if (!tallennaJaKerro())
            return false;
        nayta(std::move(found));
        return true;
    } catch (const DatabaseError& e) {
        kerro(QStringLiteral("Tositetta ei voitu lukea."), e);
        return false;
    }
}

bool VoucherEditor::lataa(qint32 toId)
{
    if (toId == 0 || toId == m_tosite->ToId() || !jata())
        return false;
    try {
        auto tosite = std::make_unique<cTosite>(m_db);
        if (!tosite->Load(toId) || tosite->Numero() < 0) {
            Dialogs::instance().beep();
            return false;
        }
        nayta(std::move(tosite));
        return true;
    } catch (const DatabaseError& e) {
        kerro(QStringLiteral("Tositetta ei voitu lukea."), e);
        return false;
    }
}

bool VoucherEditor::sulje()
{
    m_virhePaikka = tarkistaTilit();
    if (m_virhePaikka || !tarkistaPvm())
        return false;
    if (!tallennaJaKerro()
        && !Dialogs::instance().question(QStringLiteral("Tositetta ei voitu tallentaa. Suljetaanko ikkuna "
                                                        "silti? Tallentamattomat muutokset menetetään.")))
        return false;
    // Saved, or dropped on purpose: nothing is written when the objects are released.
    unohda();
    return true;
}

bool VoucherEditor::automaattinenUusi()
{
    if (!ProgramSettings::bookkeeping().AutomaattisestiUusiTosite || !valmisUuteen())
        return false;
    return uusi();
}

std::vector<cTosite::Rivi> VoucherEditor::luettelo() const
{
    return cTosite::Luettelo(m_db, avaus(), paatos());
}
