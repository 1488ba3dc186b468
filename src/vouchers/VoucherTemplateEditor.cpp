#include "vouchers/VoucherTemplateEditor.h"

#include "core/DatabaseError.h"
#include "core/Dialogs.h"
#include "core/Transaction.h"
#include "vouchers/AmountInput.h"

namespace {

QString tyyppi(VoucherEditor::Puoli puoli)
{
    return puoli == VoucherEditor::Puoli::Debet ? QStringLiteral("D") : QStringLiteral("K");
}

// A blank row that was never stored is no change.
bool muuttunutRivi(const cVientiPohja& v) { return v.Dirty() && !(v.vipID() == 0 && v.tyhja()); }

QString naytettava(const QString& teksti) { return teksti == u" " ? QString() : teksti; }

} // namespace

VoucherTemplateEditor::VoucherTemplateEditor(const QSqlDatabase& db)
    : m_db(db)
    , m_pohja(std::make_unique<cTositePohja>(db))
{
}

VoucherTemplateEditor::~VoucherTemplateEditor()
{
    if (!muuttunut())
        return;
    // Released without sulje(): what was typed is kept, as a record keeps it on release.
    const bool saved = tallennaKaikki();
    if (!saved) {
        m_pohja->setIsEmpty(true);
        for (auto* side : { &m_debet, &m_kredit })
            for (auto& v : *side)
                v->setIsEmpty(true);
    }
}

bool VoucherTemplateEditor::avaa()
{
    return tellIfFails(QStringLiteral("Tositepohjia ei voitu lukea."), [this] {
        m_tilit.load(m_db);
        lueLuettelo();
        auto pohja = std::make_unique<cTositePohja>(m_db);
        if (!m_luettelo.empty())
            pohja->Load(m_luettelo.front().tpId);
        nayta(std::move(pohja));
    });
}

void VoucherTemplateEditor::lueLuettelo() { m_luettelo = cTositePohjat::Kaikki(m_db); }

void VoucherTemplateEditor::nayta(std::unique_ptr<cTositePohja> pohja)
{
    cTositePohja::Viennit debet = pohja->GetViennit(QStringLiteral("D"));
    cTositePohja::Viennit kredit = pohja->GetViennit(QStringLiteral("K"));
    m_pohja = std::move(pohja);
    m_debet = std::move(debet);
    m_kredit = std::move(kredit);
    taydenna();
    emit pohjaVaihtui();
}

void VoucherTemplateEditor::taydenna()
{
    const size_t rivit = std::max({ m_debet.size(), m_kredit.size(), size_t(VoucherEditor::VahimmaisRivit) });
    for (Puoli puoli : { Puoli::Debet, Puoli::Kredit }) {
        auto& side = puoli_(puoli);
        while (side.size() < rivit) {
            auto v = std::make_unique<cVientiPohja>(m_db);
            v->setvipTyyppi(tyyppi(puoli));
            side.push_back(std::move(v));
        }
    }
}

bool VoucherTemplateEditor::muuttunut() const
{
    if (m_pohja->IsEmpty())
        return false;
    if (m_pohja->Dirty())
        return true;
    for (const auto* side : { &m_debet, &m_kredit })
        for (const auto& v : *side)
            if (muuttunutRivi(*v))
                return true;
    return false;
}

void VoucherTemplateEditor::setNimi(const QString& nimi) { m_pohja->setNimi(nimi); }

void VoucherTemplateEditor::setSelite(const QString& selite) { m_pohja->setSelite(selite); }

bool VoucherTemplateEditor::setPikavalinta(int numero)
{
    if (numero >= 1 && numero <= 4) {
        bool varattu = false;
        if (!tellIfFails(QStringLiteral("Tositepohjia ei voitu lukea."),
                [&] { varattu = cTositePohjat::Varattu(m_db, m_pohja->tpID(), numero); }))
            return false;
        if (varattu) {
            showInformation(QStringLiteral("Pikavalinta %1 on jo käytössä.").arg(numero));
            return false;
        }
    }
    m_pohja->setPikavalinta(numero);
    return true;
}

QString VoucherTemplateEditor::tiliTeksti(Puoli puoli, int rivi) const
{
    return m_tilit.text(puoli_(puoli)[size_t(rivi)]->viptlID());
}

QString VoucherTemplateEditor::arvoTeksti(Puoli puoli, int rivi) const
{
    const Money arvo = puoli_(puoli)[size_t(rivi)]->vipArvo();
    return arvo.isZero() ? QString() : arvo.toString();
}

bool VoucherTemplateEditor::setTiliTeksti(Puoli puoli, int rivi, const QString& teksti)
{
    if (teksti.trimmed() == tiliTeksti(puoli, rivi))
        return false;
    const qint32 id = m_tilit.resolve(teksti);
    if (id == 0 && !teksti.trimmed().isEmpty())
        showInformation(QStringLiteral("Valitse tili, jolle vienti tehdään."));
    puoli_(puoli)[size_t(rivi)]->setviptlID(id);
    return true;
}

bool VoucherTemplateEditor::setArvoTeksti(Puoli puoli, int rivi, const QString& teksti)
{
    if (teksti.trimmed() == arvoTeksti(puoli, rivi))
        return false;
    const AmountInput in = AmountInput::parse(teksti);
    if (in.result != AmountInput::Result::Ok) {
        showInformation(in.message());
        return false;
    }
    puoli_(puoli)[size_t(rivi)]->setvipArvo(in.value);
    return true;
}

void VoucherTemplateEditor::lisaaRivi()
{
    for (Puoli puoli : { Puoli::Debet, Puoli::Kredit }) {
        auto v = std::make_unique<cVientiPohja>(m_db);
        v->setvipTyyppi(tyyppi(puoli));
        puoli_(puoli).push_back(std::move(v));
    }
}

bool VoucherTemplateEditor::tallenna()
{
    m_virhePaikka.reset();
    for (Puoli puoli : { Puoli::Debet, Puoli::Kredit }) {
        const auto& side = puoli_(puoli);
        for (size_t rivi = 0; rivi < side.size(); ++rivi)
            if (side[rivi]->viptlID() < 1 && !side[rivi]->vipArvo().isZero()) {
                showInformation(QStringLiteral("Valitse tili, jolle vienti tehdään."));
                m_virhePaikka = VoucherEditor::Paikka { puoli, int(rivi) };
                return false;
            }
    }
    if (!muuttunut())
        return true;
    if (!tallennaKaikki())
        return false;
    tellIfFails(QStringLiteral("Tositepohjia ei voitu lukea."), [this] { lueLuettelo(); });
    emit pohjatMuuttuivat();
    return true;
}

bool VoucherTemplateEditor::tallennaKaikki()
{
    // The template and its patterns are stored together or not at all.
    return tellIfFails(QStringLiteral("Tositepohjan tallentaminen ei onnistunut."), [this] {
        Transaction t(m_db);
        m_pohja->Save(m_pohja->tpID() == 0);
        for (auto* side : { &m_debet, &m_kredit })
            for (auto& v : *side) {
                v->setviptpID(m_pohja->tpID());
                v->Save(false);
            }
        t.commitOrThrow();
    });
}

bool VoucherTemplateEditor::jata() { return tallenna(); }

bool VoucherTemplateEditor::uusi()
{
    if (!jata())
        return false;
    nayta(std::make_unique<cTositePohja>(m_db));
    return true;
}

bool VoucherTemplateEditor::lataa(qint32 tpId)
{
    if (tpId == m_pohja->tpID() || !jata())
        return false;
    return tellIfFails(QStringLiteral("Tositepohjaa ei voitu lukea."), [&] {
        auto pohja = std::make_unique<cTositePohja>(m_db);
        if (!pohja->Load(tpId))
            pohja = std::make_unique<cTositePohja>(m_db);
        nayta(std::move(pohja));
    });
}

bool VoucherTemplateEditor::poista()
{
    if (!Dialogs::instance().question(QStringLiteral("Haluatko varmasti poistaa valitun tositepohjan?")))
        return false;
    const bool ok = tellIfFails(QStringLiteral("Tositepohjan poistaminen ei onnistunut."), [this] {
        m_pohja->Delete();
        // Nothing of the deleted template is written on release.
        for (auto* side : { &m_debet, &m_kredit })
            for (auto& v : *side)
                v->setIsEmpty(true);
        lueLuettelo();
        auto pohja = std::make_unique<cTositePohja>(m_db);
        if (!m_luettelo.empty())
            pohja->Load(m_luettelo.front().tpId);
        nayta(std::move(pohja));
    });
    emit pohjatMuuttuivat();
    return ok;
}

bool VoucherTemplateEditor::sulje()
{
    if (tallenna())
        return true;
    if (m_virhePaikka)
        return false;
    if (!Dialogs::instance().question(QStringLiteral("Tositepohjaa ei voitu tallentaa. Suljetaanko ikkuna "
                                                     "silti? Tallentamattomat muutokset menetetään.")))
        return false;
    m_pohja->setIsEmpty(true);
    for (auto* side : { &m_debet, &m_kredit })
        for (auto& v : *side)
            v->setIsEmpty(true);
    return true;
}

std::optional<VoucherTemplateEditor::Tosite> VoucherTemplateEditor::tositteeksi(
    const QSqlDatabase& db, const AccountLookup& tilit, qint32 tpId)
{
    cTositePohja pohja(db);
    if (!pohja.Load(tpId))
        return std::nullopt;
    Tosite tosite;
    tosite.selite = naytettava(pohja.Selite());
    for (Puoli puoli : { Puoli::Debet, Puoli::Kredit })
        for (const auto& v : pohja.GetViennit(tyyppi(puoli))) {
            if (v->tyhja())
                continue;
            // An account deleted since leaves the amount without an account, for the user to choose.
            const qint32 tlId = tilit.text(v->viptlID()).isEmpty() ? 0 : v->viptlID();
            if (tlId == 0)
                tosite.tiliPuuttuu = true;
            tosite.viennit.push_back({ puoli, tlId, v->vipArvo() });
        }
    return tosite;
}
