#include "accounts/frmTilitNew.h"
#include "ui_frmTilitNew.h"

#include "accounts/AccountReports.h"
#include "accounts/ChartOfAccounts.h"
#include "accounts/PrintChoices.h"
#include "accounts/frmLisaaTili.h"
#include "accounts/frmTilikartta.h"
#include "core/DatabaseError.h"
#include "core/DatabaseFile.h"
#include "core/Dialogs.h"
#include "printing/ReportRunner.h"
#include "ui/CommandWiring.h"
#include "ui/EnterAsTab.h"
#include "ui/WaitCursor.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QKeyEvent>

namespace {

constexpr int AvainRole = Qt::UserRole;
constexpr int NumeroRole = Qt::UserRole + 1;

const QString LukuEpaonnistui = QStringLiteral("Tilin tietoja ei voitu lukea tietokannasta.");
const QString TallennusEpaonnistui = QStringLiteral("Tilin tallentaminen ei onnistunut.");

// Sets a flag for the lifetime of the guard and restores its earlier value.
class Guard final {
public:
    explicit Guard(bool& flag)
        : m_flag(flag)
        , m_old(flag)
    {
        m_flag = true;
    }
    ~Guard() { m_flag = m_old; }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

private:
    bool& m_flag;
    bool m_old;
};

} // namespace

frmTilitNew::frmTilitNew(const QSqlDatabase& db, QWidget* parent)
    : QMainWindow(parent)
    , ui(std::make_unique<Ui::frmTilitNew>())
    , m_db(db)
    , m_tili(std::make_unique<cTili>(db))
{
    ui->setupUi(this);
    EnterAsTab::install(this);
    ui->tvTilit->installEventFilter(this);
    connect(ui->cTulosta, &QPushButton::clicked, this, &frmTilitNew::tulostaTililuettelo);
    connect(ui->mTulostaTilikartta, &QAction::triggered, this, &frmTilitNew::tulostaTilikartta);

    connectCommand(ui->cUusi, ui->mUusi, this, &frmTilitNew::uusi);
    connectCommand(ui->cTallenna, ui->mTallenna, this, &frmTilitNew::tallenna);
    connectCommand(ui->cPeru, ui->mPeru, this, &frmTilitNew::peru);
    connectCommand(ui->cPoista, ui->mPoista, this, &frmTilitNew::poista);
    connectCommand(ui->cSelaa, ui->mSelaa, this, &frmTilitNew::selaa);
    connectCommand(ui->cSulje, ui->mSulje, this, [this] { close(); });
    connect(ui->cAvaaKaikki, &QPushButton::clicked, ui->tvTilit, &QTreeWidget::expandAll);
    const std::pair<QPushButton*, QAction*> siirrot[]
        = { { ui->cEnsimm_inen, ui->mEnsimm_inen }, { ui->cEdellinen, ui->mEdellinen },
              { ui->cSeuraava, ui->mSeuraava }, { ui->cViimeinen, ui->mViimeinen } };
    for (int i = 0; i < 4; ++i) {
        const auto suunta = static_cast<Suunta>(i);
        connectCommand(siirrot[i].first, siirrot[i].second, this, [this, suunta] { siirry(suunta); });
    }

    connect(ui->tNimi, &QLineEdit::textChanged, this, [this](const QString& text) {
        if (!m_paivittaa)
            m_tili->setNimi(text);
    });
    connect(ui->tKuvaus, &QLineEdit::textChanged, this, [this](const QString& text) {
        if (!m_paivittaa)
            m_tili->setKuvaus(text);
    });
    connect(ui->tTilinumero, &QLineEdit::textChanged, this, [this](const QString& text) {
        if (!m_paivittaa)
            m_tili->setNumero(ChartOfAccounts::numeroTekstista(text).value_or(0));
    });
    connect(ui->chkTulostetaan, &QCheckBox::toggled, this, [this](bool checked) {
        if (!m_paivittaa)
            m_tili->setTulostetaan(checked);
    });
    connect(ui->tvTilit, &QTreeWidget::currentItemChanged, this, &frmTilitNew::solmuValittu);

    // Books open for reading only: the chart is shown, never changed.
    if (DatabaseFile::isReadOnly(db)) {
        for (QWidget* w :
            std::initializer_list<QWidget*> { ui->cUusi, ui->cTallenna, ui->cPeru, ui->cPoista })
            w->setEnabled(false);
        for (QAction* a : { ui->mUusi, ui->mTallenna, ui->mPeru, ui->mPoista })
            a->setEnabled(false);
        for (QLineEdit* field : { ui->tTilinumero, ui->tNimi, ui->tKuvaus })
            field->setReadOnly(true);
        ui->chkTulostetaan->setEnabled(false);
    }

    rakennaPuu();
    std::unique_ptr<cTili> ensimmainen;
    if (tellIfFails(LukuEpaonnistui, [&] { ensimmainen = m_tili->GetFirst(); }))
        vaihdaTili(std::move(ensimmainen));
    else
        m_tili->setIsEmpty(true);
}

frmTilitNew::~frmTilitNew() = default;

void frmTilitNew::closeEvent(QCloseEvent* event)
{
    if (tallennaMuutokset())
        event->accept();
    else
        event->ignore();
}

void frmTilitNew::rakennaPuu()
{
    Guard guard(m_paivittaa);
    ui->tvTilit->clear();
    m_solmut.clear();
    for (int i = 0; i < ChartOfAccounts::RyhmaCount; ++i) {
        auto* ryhma = new QTreeWidgetItem(ui->tvTilit, { ChartOfAccounts::ryhmaTeksti(i) });
        ryhma->setData(0, AvainRole, ChartOfAccounts::ryhmaAvain(i));
        m_ryhmat[size_t(i)] = ryhma;
    }
    const ChartOfAccounts::Puu puu = ChartOfAccounts::lueTilikartta(m_db);
    for (const ChartOfAccounts::Rivi& rivi : puu.rivit) {
        auto* solmu = new QTreeWidgetItem(
            m_ryhmat[size_t(rivi.ryhma)], { ChartOfAccounts::tiliTeksti(rivi.numero, rivi.nimi) });
        solmu->setData(0, AvainRole, ChartOfAccounts::tiliAvain(rivi.id));
        solmu->setData(0, NumeroRole, rivi.numero);
        m_solmut.insert(rivi.id, solmu);
    }
    if (!puu.virhe.isEmpty())
        showInformation(puu.virhe);
}

QTreeWidgetItem* frmTilitNew::lisaaSolmu(int ryhma, qint32 numero, const QString& teksti)
{
    QTreeWidgetItem* parent = m_ryhmat[size_t(ryhma)];
    auto* solmu = new QTreeWidgetItem({ teksti });
    solmu->setData(0, NumeroRole, numero);
    int paikka = 0;
    while (paikka < parent->childCount() && parent->child(paikka)->data(0, NumeroRole).toInt() <= numero)
        ++paikka;
    parent->insertChild(paikka, solmu);
    return solmu;
}

void frmTilitNew::valitseSolmu(qint32 id)
{
    Guard guard(m_paivittaa);
    QTreeWidgetItem* solmu = m_solmut.value(id);
    if (!solmu)
        return;
    if (solmu->parent())
        solmu->parent()->setExpanded(true);
    ui->tvTilit->setCurrentItem(solmu);
    ui->tvTilit->scrollToItem(solmu);
}

void frmTilitNew::vaihdaTili(std::unique_ptr<cTili> tili)
{
    m_tili = std::move(tili);
    connect(m_tili.get(), &cTili::NameChanged, this, &frmTilitNew::tiliaMuutettu);
    naytaTili();
    valitseSolmu(m_tili->id());
}

void frmTilitNew::lueTili(qint32 id)
{
    auto tili = std::make_unique<cTili>(m_db);
    if (tellIfFails(LukuEpaonnistui, [&] { tili->Read(id); }))
        vaihdaTili(std::move(tili));
}

void frmTilitNew::naytaTili()
{
    Guard guard(m_paivittaa);
    QLabel* const arvot[]
        = { ui->lblKuluvaDebet, ui->lblKuluvaKredit, ui->lblEdellinenDebet, ui->lblEdellinenKredit };
    for (QLabel* label : arvot)
        label->clear();
    if (m_tili->IsEmpty()) {
        for (QLineEdit* field : { ui->tTilinumero, ui->tNimi, ui->tKuvaus })
            field->clear();
        ui->chkTulostetaan->setChecked(false);
        return;
    }
    ui->chkTulostetaan->setChecked(m_tili->Tulostetaan());
    ui->tTilinumero->setText(QString::number(m_tili->Numero()));
    ui->tNimi->setText(m_tili->Nimi());
    ui->tKuvaus->setText(m_tili->Kuvaus());
    // The sums of the opening entries only, not running balances. When they cannot be read the
    // labels stay empty rather than show a zero that is not true.
    tellIfFails(QStringLiteral("Tilin avaussaldoja ei voitu lukea."), [&] {
        const cAlkusaldot saldot = m_tili->Alkusaldot();
        const Money summat[] = { saldot.AlkusaldoDebet(), saldot.AlkusaldoKredit(), saldot.EdAlkusaldoDebet(),
            saldot.EdAlkusaldoKredit() };
        for (int i = 0; i < 4; ++i)
            arvot[i]->setText(summat[i].toCurrencyString());
    });
}

void frmTilitNew::tiliaMuutettu(const QString& nimi, qint32 numero, qint32 id)
{
    QTreeWidgetItem* solmu = m_solmut.value(id);
    if (!solmu)
        return;
    Guard guard(m_paivittaa);
    solmu->setText(0, ChartOfAccounts::tiliTeksti(numero, nimi));
    solmu->setData(0, NumeroRole, numero);
    // A number without a group keeps its node where it is until it is corrected.
    const std::optional<int> ryhma = ChartOfAccounts::ryhma(numero);
    if (!ryhma || solmu->parent() == m_ryhmat[size_t(*ryhma)])
        return;
    const bool valittu = ui->tvTilit->currentItem() == solmu;
    const QString avain = solmu->data(0, AvainRole).toString();
    const QString teksti = solmu->text(0);
    delete solmu;
    solmu = lisaaSolmu(*ryhma, numero, teksti);
    solmu->setData(0, AvainRole, avain);
    m_solmut.insert(id, solmu);
    m_ryhmat[size_t(*ryhma)]->setExpanded(true);
    if (valittu)
        ui->tvTilit->setCurrentItem(solmu);
}

bool frmTilitNew::tarkistaMuutokset(bool poistuttaessa)
{
    ChartOfAccounts::Tarkistus tarkistus;
    if (!tellIfFails(TallennusEpaonnistui, [&] {
            tarkistus = ChartOfAccounts::tarkistaMuutos(
                m_db, m_tili->id(), ui->tTilinumero->text(), ui->tNimi->text());
        }))
        return false;
    if (tarkistus.ok())
        return true;
    // Leaving is refused until the change is mended or undone: say how to undo.
    showInformation(poistuttaessa
            ? tarkistus.viesti + QStringLiteral("\nKorjaa tieto tai peru muutokset (Alt+P).")
            : tarkistus.viesti);
    QLineEdit* field = tarkistus.numerossa ? ui->tTilinumero : ui->tNimi;
    field->setFocus();
    field->selectAll();
    return false;
}

bool frmTilitNew::tallennaMuutokset()
{
    if (m_tili->IsEmpty() || !m_tili->isChanged())
        return true;
    return tarkistaMuutokset(true) && tellIfFails(TallennusEpaonnistui, [&] { m_tili->Save(false); });
}

void frmTilitNew::solmuValittu(QTreeWidgetItem* current, QTreeWidgetItem* previous)
{
    if (m_paivittaa || !current)
        return;
    const std::optional<qint32> id = ChartOfAccounts::tiliAvaimesta(current->data(0, AvainRole).toString());
    if (!id || *id == m_tili->id())
        return;
    if (!tallennaMuutokset()) {
        Guard guard(m_paivittaa);
        ui->tvTilit->setCurrentItem(previous);
        return;
    }
    lueTili(*id);
}

bool frmTilitNew::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == ui->tvTilit && event->type() == QEvent::KeyPress) {
        const QString text = static_cast<QKeyEvent*>(event)->text();
        if (text.size() == 1 && text.at(0).isDigit())
            return hyppaaNumeroon(text);
    }
    return QMainWindow::eventFilter(watched, event);
}

bool frmTilitNew::hyppaaNumeroon(const QString& text)
{
    // Digits typed in quick succession make one number, as in any list.
    if (!m_hakuAika.isValid() || m_hakuAika.elapsed() > QApplication::keyboardInputInterval())
        m_haku.clear();
    m_hakuAika.start();
    m_haku += text;
    for (QTreeWidgetItem* ryhma : m_ryhmat) {
        for (int i = 0; i < ryhma->childCount(); ++i) {
            QTreeWidgetItem* solmu = ryhma->child(i);
            if (solmu->text(0).startsWith(m_haku)) {
                ryhma->setExpanded(true);
                ui->tvTilit->setCurrentItem(solmu);
                ui->tvTilit->scrollToItem(solmu);
                return true;
            }
        }
    }
    Dialogs::instance().beep();
    return true;
}

void frmTilitNew::uusi()
{
    if (!tallennaMuutokset())
        return;
    frmLisaaTili lisays(m_db, this);
    if (lisays.exec() != QDialog::Accepted || lisays.uusiId() == 0)
        return;
    WaitCursor wait;
    rakennaPuu();
    lueTili(lisays.uusiId());
    kerroSijoitus(lisays.uusiId());
    ui->tTilinumero->setFocus();
}

void frmTilitNew::kerroSijoitus(qint32 id)
{
    // A new account is on no statement row: its balance would be missing from the statements.
    ChartOfAccounts::Sijoitus sijoitus;
    if (!tellIfFails(LukuEpaonnistui, [&] { sijoitus = ChartOfAccounts::sijoitus(m_db, id); }))
        return;
    const QString tili = ChartOfAccounts::tiliTeksti(m_tili->Numero(), m_tili->Nimi());
    const QString puuttuu = QStringLiteral("Uusi tili %1 ei ole tuloslaskelman eikä taseen millään rivillä, "
                                           "joten sen saldo puuttuisi tilinpäätöksestä.")
                                .arg(tili);
    if (sijoitus.rivit.empty()) {
        Dialogs::instance().information(
            puuttuu + QStringLiteral("\nLisää tili oikealle riville Tulos ja tase -ikkunassa."));
        return;
    }
    QString rivit;
    for (const ChartOfAccounts::MalliRivi& r : sijoitus.rivit)
        rivit += QStringLiteral("\n    %1: %2").arg(r.malli, r.rivi);
    if (Dialogs::instance().question(puuttuu
            + QStringLiteral("\nLähin tili %1 on rivillä:%2\n\nLisätäänkö uusi tili samalle riville?")
                  .arg(sijoitus.naapuri, rivit)))
        tellIfFails(TallennusEpaonnistui, [&] { ChartOfAccounts::lisaaRiveille(m_db, id, sijoitus.rivit); });
}

void frmTilitNew::tallenna()
{
    if (m_tili->IsEmpty() || !tarkistaMuutokset(false))
        return;
    // Reading the saved row back makes it what Peru returns to: Peru undoes unsaved edits only.
    tellIfFails(TallennusEpaonnistui, [&] {
        m_tili->Save(false);
        m_tili->Read(m_tili->id());
    });
}

void frmTilitNew::peru()
{
    WaitCursor wait;
    m_tili->Undo();
    naytaTili();
    if (!m_tili->IsEmpty())
        tiliaMuutettu(m_tili->Nimi(), m_tili->Numero(), m_tili->id());
}

void frmTilitNew::poista()
{
    if (m_tili->IsEmpty() || m_tili->id() == 0)
        return;
    QString este;
    if (!tellIfFails(LukuEpaonnistui, [&] { este = ChartOfAccounts::poistonEste(m_db, m_tili->id()); }))
        return;
    if (!este.isEmpty()) {
        showInformation(este);
        return;
    }
    if (!Dialogs::instance().question(QStringLiteral("Haluatko varmasti poistaa valitun tilin?")))
        return;
    WaitCursor wait;
    const qint32 id = m_tili->id();
    // The deleted account gives way to its neighbour; its own edits have nowhere to go.
    std::unique_ptr<cTili> naapuri;
    const bool ok = tellIfFails(QStringLiteral("Tilin poistaminen ei onnistunut."), [&] {
        m_tili->Undo();
        m_tili->Delete();
        naapuri = m_tili->GetNext();
        if (naapuri->IsEmpty())
            naapuri = m_tili->GetPrevious();
    });
    if (!ok)
        return;
    {
        Guard guard(m_paivittaa);
        delete m_solmut.take(id);
    }
    m_tili->setIsEmpty(true);
    vaihdaTili(std::move(naapuri));
}

void frmTilitNew::siirry(Suunta suunta)
{
    if (!tallennaMuutokset())
        return;
    WaitCursor wait;
    std::unique_ptr<cTili> tili;
    const bool ok = tellIfFails(LukuEpaonnistui, [&] {
        switch (suunta) {
        case Suunta::Ensimmainen:
            tili = m_tili->GetFirst();
            break;
        case Suunta::Edellinen:
            tili = m_tili->GetPrevious();
            break;
        case Suunta::Seuraava:
            tili = m_tili->GetNext();
            break;
        case Suunta::Viimeinen:
            tili = m_tili->GetLast();
            break;
        }
    });
    // At either end of the chart the current account stays.
    if (ok && !tili->IsEmpty())
        vaihdaTili(std::move(tili));
}

void frmTilitNew::selaa()
{
    ui->tvTilit->setFocus();
    if (!ui->tvTilit->currentItem())
        ui->tvTilit->setCurrentItem(ui->tvTilit->topLevelItem(0));
}

void frmTilitNew::tulostaTililuettelo()
{
    // The printout shows what is stored: the account on screen is saved first.
    if (tallennaMuutokset())
        ReportRunner::print(this, m_db, AccountReports::tililuettelo());
}

void frmTilitNew::tulostaTilikartta()
{
    if (!tallennaMuutokset())
        return;
    frmTilikartta valinta(m_db, this);
    if (valinta.exec() != QDialog::Accepted || PrintChoices::dialogCancelled())
        return;
    const PrintChoices::TilikarttaMallit mallit = PrintChoices::tilikarttaMallit();
    ReportJob job;
    if (tellIfFails(QStringLiteral("Tilinpäätösmalleja ei voitu lukea."),
            [&] { job = AccountReports::tilikartta(m_db, mallit.tuloslaskelmaID, mallit.taseID); }))
        ReportRunner::print(this, m_db, job);
}
