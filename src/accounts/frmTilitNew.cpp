#include "frmTilitNew.h"
#include "ui_frmTilitNew.h"

#include "DBC.h"
#include "Dialogs.h"
#include "EnterAsTab.h"
#include "Tilikartta.h"
#include "frmLisaaTili.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QSqlQuery>
#include <QVariant>

namespace {

constexpr int AvainRole = Qt::UserRole;
constexpr int NumeroRole = Qt::UserRole + 1;

class Hourglass final {
public:
    Hourglass() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~Hourglass() { QApplication::restoreOverrideCursor(); }
    Hourglass(const Hourglass&) = delete;
    Hourglass& operator=(const Hourglass&) = delete;
};

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

frmTilitNew::frmTilitNew(QWidget* parent)
    : QMainWindow(parent)
    , ui(std::make_unique<Ui::frmTilitNew>())
    , m_tili(std::make_unique<cTili>())
{
    ui->setupUi(this);
    EnterAsTab::install(this);
    ui->tvTilit->installEventFilter(this);
    // The printout of the chart arrives with the report engine.
    ui->cTulosta->setEnabled(false);
    ui->mTulostaTilikartta->setEnabled(false);

    const auto both = [this](QPushButton* button, QAction* action, void (frmTilitNew::*slot)()) {
        connect(button, &QPushButton::clicked, this, slot);
        if (action)
            connect(action, &QAction::triggered, this, slot);
    };
    both(ui->cUusi, ui->mUusi, &frmTilitNew::uusi);
    both(ui->cTallenna, ui->mTallenna, &frmTilitNew::tallenna);
    both(ui->cPeru, ui->mPeru, &frmTilitNew::peru);
    both(ui->cPoista, ui->mPoista, &frmTilitNew::poista);
    both(ui->cSelaa, ui->mSelaa, &frmTilitNew::selaa);
    connect(ui->cSulje, &QPushButton::clicked, this, &QWidget::close);
    connect(ui->mSulje, &QAction::triggered, this, &QWidget::close);
    connect(ui->cAvaaKaikki, &QPushButton::clicked, ui->tvTilit, &QTreeWidget::expandAll);
    const std::pair<QPushButton*, QAction*> siirrot[]
        = { { ui->cEnsimm_inen, ui->mEnsimm_inen }, { ui->cEdellinen, ui->mEdellinen },
              { ui->cSeuraava, ui->mSeuraava }, { ui->cViimeinen, ui->mViimeinen } };
    for (int i = 0; i < 4; ++i) {
        const auto suunta = static_cast<Suunta>(i);
        connect(siirrot[i].first, &QPushButton::clicked, this, [this, suunta] { siirry(suunta); });
        connect(siirrot[i].second, &QAction::triggered, this, [this, suunta] { siirry(suunta); });
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
            m_tili->setNumero(Tilikartta::numeroTekstista(text).value_or(0));
    });
    connect(ui->tvTilit, &QTreeWidget::currentItemChanged, this, &frmTilitNew::solmuValittu);

    rakennaPuu();
    vaihdaTili(m_tili->GetFirst());
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
    for (int i = 0; i < Tilikartta::RyhmaCount; ++i) {
        auto* ryhma = new QTreeWidgetItem(ui->tvTilit, { Tilikartta::ryhmaTeksti(i) });
        ryhma->setData(0, AvainRole, Tilikartta::ryhmaAvain(i));
        m_ryhmat[size_t(i)] = ryhma;
    }
    const Tilikartta::Puu puu = Tilikartta::lueTilikartta(DBC::instance().AvaaDB());
    for (const Tilikartta::Rivi& rivi : puu.rivit) {
        auto* solmu = new QTreeWidgetItem(
            m_ryhmat[size_t(rivi.ryhma)], { Tilikartta::tiliTeksti(rivi.numero, rivi.nimi) });
        solmu->setData(0, AvainRole, Tilikartta::tiliAvain(rivi.id));
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

void frmTilitNew::naytaTili()
{
    Guard guard(m_paivittaa);
    QLabel* const arvot[]
        = { ui->lblKuluvaDebet, ui->lblKuluvaKredit, ui->lblEdellinenDebet, ui->lblEdellinenKredit };
    if (m_tili->IsEmpty()) {
        for (QLineEdit* field : { ui->tTilinumero, ui->tNimi, ui->tKuvaus })
            field->clear();
        for (QLabel* label : arvot)
            label->clear();
        return;
    }
    ui->tTilinumero->setText(QString::number(m_tili->Numero()));
    ui->tNimi->setText(m_tili->Nimi());
    ui->tKuvaus->setText(m_tili->Kuvaus());
    // The sums of the opening entries only, not running balances.
    const cAlkusaldot saldot = m_tili->Alkusaldot();
    const Money summat[] = { saldot.AlkusaldoDebet(), saldot.AlkusaldoKredit(), saldot.EdAlkusaldoDebet(),
        saldot.EdAlkusaldoKredit() };
    for (int i = 0; i < 4; ++i)
        arvot[i]->setText(summat[i].toCurrencyString());
}

void frmTilitNew::tiliaMuutettu(const QString& nimi, qint32 numero, qint32 id)
{
    QTreeWidgetItem* solmu = m_solmut.value(id);
    if (!solmu)
        return;
    Guard guard(m_paivittaa);
    solmu->setText(0, Tilikartta::tiliTeksti(numero, nimi));
    solmu->setData(0, NumeroRole, numero);
    // A number without a group keeps its node where it is until it is corrected.
    const std::optional<int> ryhma = Tilikartta::ryhma(numero);
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

bool frmTilitNew::tarkistaMuutokset()
{
    const QSqlDatabase db = DBC::instance().AvaaDB();
    // An account kept from earlier with an unusual number can still be renamed: the number is
    // checked only when it has been changed.
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT tlNumero FROM tl WHERE tlID = ?"));
    q.addBindValue(m_tili->id());
    const bool numeroSama = q.exec() && q.next()
        && Tilikartta::numeroTekstista(ui->tTilinumero->text()) == std::optional<qint32>(q.value(0).toInt());
    q.finish();
    Tilikartta::Tarkistus tarkistus;
    if (!numeroSama)
        tarkistus = Tilikartta::tarkistaTili(db, ui->tTilinumero->text(), ui->tNimi->text(), m_tili->id());
    else if (ui->tNimi->text().trimmed().isEmpty())
        tarkistus = { QStringLiteral("Tilillä tulee olla nimi."), false };
    if (tarkistus.ok())
        return true;
    showInformation(tarkistus.viesti);
    QLineEdit* field = tarkistus.numerossa ? ui->tTilinumero : ui->tNimi;
    field->setFocus();
    field->selectAll();
    return false;
}

bool frmTilitNew::tallennaMuutokset()
{
    if (m_tili->IsEmpty() || !m_tili->isChanged())
        return true;
    if (!tarkistaMuutokset())
        return false;
    if (!m_tili->Save(false)) {
        Dialogs::instance().error(
            QStringLiteral("Tilin tallentaminen ei onnistunut.\n") + m_tili->lastError());
        return false;
    }
    return true;
}

void frmTilitNew::solmuValittu(QTreeWidgetItem* current, QTreeWidgetItem* previous)
{
    if (m_paivittaa || !current)
        return;
    const std::optional<qint32> id = Tilikartta::tiliAvaimesta(current->data(0, AvainRole).toString());
    if (!id || *id == m_tili->id())
        return;
    if (!tallennaMuutokset()) {
        Guard guard(m_paivittaa);
        ui->tvTilit->setCurrentItem(previous);
        return;
    }
    auto tili = std::make_unique<cTili>();
    tili->Read(*id);
    vaihdaTili(std::move(tili));
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
    frmLisaaTili lisays(this);
    if (lisays.exec() != QDialog::Accepted || lisays.uusiId() == 0)
        return;
    Hourglass hourglass;
    rakennaPuu();
    auto tili = std::make_unique<cTili>();
    tili->Read(lisays.uusiId());
    vaihdaTili(std::move(tili));
    ui->tTilinumero->setFocus();
}

void frmTilitNew::tallenna()
{
    if (m_tili->IsEmpty())
        return;
    if (!tarkistaMuutokset())
        return;
    if (!m_tili->Save(false)) {
        Dialogs::instance().error(
            QStringLiteral("Tilin tallentaminen ei onnistunut.\n") + m_tili->lastError());
        return;
    }
    // Reading the saved row back makes it what Peru returns to: Peru undoes unsaved edits only.
    m_tili->Read(m_tili->id());
}

void frmTilitNew::peru()
{
    Hourglass hourglass;
    m_tili->Undo();
    naytaTili();
    if (!m_tili->IsEmpty())
        tiliaMuutettu(m_tili->Nimi(), m_tili->Numero(), m_tili->id());
}

void frmTilitNew::poista()
{
    if (m_tili->IsEmpty() || m_tili->id() == 0)
        return;
    const QString este = Tilikartta::poistonEste(DBC::instance().AvaaDB(), m_tili->id());
    if (!este.isEmpty()) {
        showInformation(este);
        return;
    }
    if (!Dialogs::instance().question(QStringLiteral("Haluatko varmasti poistaa valitun tilin?")))
        return;
    Hourglass hourglass;
    if (!m_tili->Delete()) {
        Dialogs::instance().error(QStringLiteral("Tilin poistaminen ei onnistunut.\n") + m_tili->lastError());
        return;
    }
    {
        Guard guard(m_paivittaa);
        delete m_solmut.take(m_tili->id());
    }
    // The deleted account gives way to its neighbour; its own edits have nowhere to go.
    m_tili->Undo();
    std::unique_ptr<cTili> seuraava = m_tili->GetNext();
    if (seuraava->IsEmpty())
        seuraava = m_tili->GetPrevious();
    m_tili->setIsEmpty(true);
    vaihdaTili(std::move(seuraava));
}

void frmTilitNew::siirry(Suunta suunta)
{
    if (!tallennaMuutokset())
        return;
    Hourglass hourglass;
    std::unique_ptr<cTili> tili;
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
    // At either end of the chart the current account stays.
    if (!tili->IsEmpty())
        vaihdaTili(std::move(tili));
}

void frmTilitNew::selaa()
{
    ui->tvTilit->setFocus();
    if (!ui->tvTilit->currentItem())
        ui->tvTilit->setCurrentItem(ui->tvTilit->topLevelItem(0));
}
