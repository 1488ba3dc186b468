#include "vouchers/frmNewTositteet.h"
#include "ui_frmNewTositteet.h"

#include "accounts/frmPaivaSaldot.h"
#include "accounts/frmTilienSaldot.h"
#include "accounts/frmTilitarkastelu.h"
#include "core/DatabaseError.h"
#include "core/DatabaseFile.h"
#include "core/Dates.h"
#include "core/ProgramSettings.h"
#include "printing/PrintOptions.h"
#include "printing/ReportRunner.h"
#include "printing/frmDates2.h"
#include "ui/CommandWiring.h"
#include "ui/EnterAsTab.h"
#include "ui/WaitCursor.h"
#include "vouchers/EntryDelegate.h"
#include "vouchers/EntryModel.h"
#include "vouchers/JournalPrinting.h"
#include "vouchers/VoucherListModel.h"
#include "vouchers/VoucherTemplateEditor.h"
#include "vouchers/cTositeTarkistus.h"
#include "vouchers/frmTositeHaku.h"
#include "vouchers/frmTositeTarkistusVirheet.h"
#include "vouchers/frmTositepohja.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHeaderView>
#include <QIntValidator>
#include <QKeyEvent>
#include <QMenu>
#include <QPointer>
#include <QScrollBar>
#include <QTimer>

namespace {

constexpr int VisibleRows = 6;

} // namespace

frmNewTositteet::frmNewTositteet(const QSqlDatabase& db, Laji laji, QWidget* parent)
    : QMainWindow(parent)
    , ui(std::make_unique<Ui::frmNewTositteet>())
    , m_muokkaus(std::make_unique<VoucherEditor>(db, laji))
{
    ui->setupUi(this);
    ui->cEnsimmainen->setObjectName(QStringLiteral("cEnsimmäinen"));
    setWindowTitle(laji == Laji::Avaus ? QStringLiteral("Tositteet - Avausviennit")
            : laji == Laji::Paatos     ? QStringLiteral("Tositteet - Tilinpäätösviennit")
                                       : QStringLiteral("Tositteet"));

    ui->tTositenumero->setValidator(new QIntValidator(0, 999999999, ui->tTositenumero));
    ui->tTositepvm->installEventFilter(this);
    // The typing order: header fields, then the entry rows, then the commands.
    setTabOrder(ui->tTositenumero, ui->tTositepvm);
    setTabOrder(ui->tTositepvm, ui->tTositeSelite);
    setTabOrder(ui->tTositeSelite, ui->grdViennit);
    setTabOrder(ui->grdViennit, ui->cUusi);

    m_list = new VoucherListModel(this);
    ui->lstTositteet->setModel(m_list);
    ui->lstTositteet->setUniformItemSizes(true);
    ui->lstTositteet->setEditTriggers(QAbstractItemView::NoEditTriggers);
    // A long description is cut short in the list rather than given a scroll bar that would
    // hide the newest voucher at the bottom.
    ui->lstTositteet->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    ui->lstTositteet->setTextElideMode(Qt::ElideRight);

    auto* grid = ui->grdViennit;
    m_model = new EntryModel(*m_muokkaus, this);
    grid->setModel(m_model);
    grid->verticalScrollBar()->setObjectName(QStringLiteral("scrlViennit"));
    grid->setEditTriggers(QAbstractItemView::AllEditTriggers);
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->setSelectionBehavior(QAbstractItemView::SelectItems);
    grid->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    grid->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    grid->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // A long account name is cut short in its cell, never wrapped over two lines.
    grid->setWordWrap(false);
    grid->setTextElideMode(Qt::ElideRight);
    // Six rows are visible; more are reached by scrolling.
    const int rowHeight = grid->verticalHeader()->defaultSectionSize();
    grid->setFixedHeight(
        grid->horizontalHeader()->sizeHint().height() + VisibleRows * rowHeight + 2 * grid->frameWidth());

    connect(m_model, &EntryModel::entryChanged, this, &frmNewTositteet::riviMuuttui);
    connect(m_muokkaus.get(), &VoucherEditor::tositeVaihtui, this, &frmNewTositteet::naytaTosite);
    connect(m_muokkaus.get(), &VoucherEditor::luetteloRivi, m_list, &VoucherListModel::setLine);
    connect(m_muokkaus.get(), &VoucherEditor::luetteloPoisto, m_list, &VoucherListModel::removeLine);
    connect(ui->tTositenumero, &QLineEdit::textEdited, this, [this](const QString& text) {
        bool ok = false;
        const int numero = text.toInt(&ok);
        if (ok)
            m_muokkaus->setNumero(numero);
    });
    connect(ui->tTositepvm, &QLineEdit::editingFinished, this, &frmNewTositteet::pvmValmis);
    // A valid date is taken as it is typed, so that a save by shortcut sees it; the fiscal year
    // is checked when the field is left.
    connect(ui->tTositepvm, &QLineEdit::textEdited, this, [this](const QString& text) {
        const QDate d = pvm(text);
        if (d.isValid())
            m_muokkaus->setPaiva(d, false);
    });
    connect(ui->tTositeSelite, &QLineEdit::textEdited, m_muokkaus.get(), &VoucherEditor::setSelite);
    connect(ui->lstTositteet, &QAbstractItemView::activated, this, &frmNewTositteet::lataaLuettelosta);
    connect(ui->lstTositteet, &QAbstractItemView::clicked, this, &frmNewTositteet::lataaLuettelosta);

    connectCommand(ui->cUusi, ui->mUusi, this, &frmNewTositteet::Uusi);
    connectCommand(ui->cTallenna, ui->mTallenna, this, &frmNewTositteet::Tallenna);
    connectCommand(ui->cPoista, ui->mPoista, this, &frmNewTositteet::Poista);
    connectCommand(ui->cPeru, ui->mPeru, this, &frmNewTositteet::Peru);
    connectCommand(ui->cEnsimmainen, ui->mEnsimmaiseen, this, &frmNewTositteet::Ensimmainen);
    connectCommand(ui->cEdellinen, ui->mEdelliseen, this, &frmNewTositteet::Edellinen);
    connectCommand(ui->cSeuraava, ui->mSeuraavaan, this, &frmNewTositteet::Seuraava);
    connectCommand(ui->cViimeinen, ui->mViimeiseen, this, &frmNewTositteet::Viimeinen);
    connectCommand(ui->cLisaaVienteja, nullptr, this, &frmNewTositteet::LisaaVienteja);
    connectCommand(ui->cSelaa, ui->mSelaa, this, &frmNewTositteet::Selaa);
    connectCommand(ui->cSulje, ui->mSulje, this, [this] {
        m_kayttajaSulkee = true;
        close();
        m_kayttajaSulkee = false;
    });
    connectCommand(ui->cHaku, ui->mHaku, this, &frmNewTositteet::Haku);
    connectCommand(nullptr, ui->mTositteidenTarkistus, this, &frmNewTositteet::TositteidenTarkistus);
    connectCommand(nullptr, ui->mMuokkaaTositepohjia, this, &frmNewTositteet::Tositepohjat);
    connectCommand(ui->cTositePohja, nullptr, this, &frmNewTositteet::valitsePohja);
    connect(ui->mTilienSaldot, &QAction::triggered, this, [this] {
        auto* saldot = new frmTilienSaldot(m_muokkaus->database(), this);
        saldot->setWindowFlag(Qt::Window);
        saldot->setAttribute(Qt::WA_DeleteOnClose);
        saldot->show();
    });
    connect(ui->mTilitarkastelu, &QAction::triggered, this, &frmNewTositteet::avaaTilitarkastelu);
    connect(ui->mTilinPaivasaldot, &QAction::triggered, this, &frmNewTositteet::avaaPaivaSaldot);
    connect(ui->mPaivakirja, &QAction::triggered, this, &frmNewTositteet::Paivakirja);
    connect(ui->mPaakirja, &QAction::triggered, this, &frmNewTositteet::Paakirja);

    if (m_muokkaus->avaa())
        grid->setItemDelegate(new EntryDelegate(m_muokkaus->tilit().texts(), grid));
    taytaLuettelo();
    rakennaPikavalinnat();
    naytaTosite();
    EnterAsTab::install(ui->frameTosite);
}

frmNewTositteet::~frmNewTositteet()
{
    // Fields that lose the focus while the window is torn down must not call back into it.
    for (QObject* child : findChildren<QObject*>())
        QObject::disconnect(child, nullptr, this, nullptr);
    disconnect(m_muokkaus.get(), nullptr, this, nullptr);
    // The grid's model reads the editing object, which goes before the widgets do.
    ui->grdViennit->setModel(nullptr);
    delete m_model;
}

void frmNewTositteet::taytaLuettelo()
{
    std::vector<VoucherListModel::Line> lines;
    try {
        for (const cTosite::Rivi& r : m_muokkaus->luettelo())
            lines.push_back({ r.toId, VoucherEditor::luetteloTeksti(r.numero, r.selite) });
    } catch (const DatabaseError& e) {
        Dialogs::instance().error(e.message(QStringLiteral("Tositeluetteloa ei voitu lukea.")));
    }
    m_list->setLines(std::move(lines));
}

void frmNewTositteet::naytaTosite()
{
    m_model->refill();
    naytaOtsake();
    const bool editable = m_muokkaus->muokattavissa();
    for (QWidget* w : std::initializer_list<QWidget*> { ui->tTositenumero, ui->tTositepvm, ui->tTositeSelite,
             ui->cTallenna, ui->cPoista, ui->cPeru, ui->cLisaaVienteja })
        w->setEnabled(editable);
    for (QAction* a : { ui->mTallenna, ui->mPoista, ui->mPeru })
        a->setEnabled(editable);
    ui->cUusi->setEnabled(!m_muokkaus->vainLuku());
    ui->mUusi->setEnabled(!m_muokkaus->vainLuku());
    ui->cTositePohja->setEnabled(!m_muokkaus->vainLuku());
    ui->mTositepohjat->menuAction()->setEnabled(!m_muokkaus->vainLuku());
    paivitaSummat();
}

void frmNewTositteet::naytaOtsake()
{
    const cTosite& tosite = m_muokkaus->tosite();
    ui->tTositenumero->setText(tosite.IsEmpty() ? QString() : QString::number(tosite.Numero()));
    ui->tTositepvm->setText(Dates::format(tosite.Paiva()));
    ui->tTositeSelite->setText(tosite.Selite() == u" " ? QString() : tosite.Selite());
    const int row = tosite.IsEmpty() ? -1 : m_list->rowOf(tosite.ToId());
    if (row >= 0) {
        ui->lstTositteet->setCurrentIndex(m_list->index(row));
        ui->lstTositteet->scrollTo(m_list->index(row));
    }
}

void frmNewTositteet::paivitaSummat()
{
    ui->lblDebetSumma->setText(m_muokkaus->debet().toCurrencyString());
    ui->lblKreditSumma->setText(m_muokkaus->kredit().toCurrencyString());
    const Money erotus = m_muokkaus->erotus();
    ui->lblErotus->setText(erotus.toCurrencyString());
    QPalette palette = ui->lblErotus->palette();
    palette.setColor(QPalette::WindowText,
        erotus.isZero() ? ui->cTallenna->palette().color(QPalette::ButtonText) : QColor(255, 0, 0));
    ui->lblErotus->setPalette(palette);
    const std::optional<Money> saldo = m_muokkaus->laskettavanSaldo();
    ui->lblHalutunTilinSaldo->setText(saldo ? saldo->toCurrencyString() : QStringLiteral("- -"));
}

void frmNewTositteet::sulkeEditori(bool tallenna)
{
    auto* grid = ui->grdViennit;
    QWidget* editor = grid->indexWidget(grid->currentIndex());
    if (!editor)
        return;
    if (tallenna)
        QMetaObject::invokeMethod(grid, "commitData", Q_ARG(QWidget*, editor));
    QMetaObject::invokeMethod(grid, "closeEditor", Q_ARG(QWidget*, editor),
        Q_ARG(QAbstractItemDelegate::EndEditHint,
            tallenna ? QAbstractItemDelegate::NoHint : QAbstractItemDelegate::RevertModelCache));
}

QDate frmNewTositteet::pvm(const QString& text)
{
    const BookkeepingSettings& s = ProgramSettings::bookkeeping();
    return Dates::parse(text, s.TilikausiAlku, s.TilikausiLoppu);
}

void frmNewTositteet::naytaVirhePaikka()
{
    if (m_muokkaus->pvmPuuttuu()) {
        ui->tTositepvm->setFocus();
        ui->tTositepvm->selectAll();
        return;
    }
    const auto& paikka = m_muokkaus->virhePaikka();
    if (!paikka)
        return;
    ui->grdViennit->setFocus();
    ui->grdViennit->setCurrentIndex(m_model->index(paikka->rivi, EntryModel::accountColumn(paikka->puoli)));
}

void frmNewTositteet::Uusi()
{
    sulkeEditori(true);
    if (!m_muokkaus->uusi()) {
        naytaVirhePaikka();
        return;
    }
    ui->tTositepvm->setFocus();
    ui->tTositepvm->selectAll();
}

void frmNewTositteet::Tallenna()
{
    // The keyboard stays where it was: typing goes on in the same field or cell.
    QPointer<QWidget> focused = QApplication::focusWidget();
    const bool inGrid = focused && (focused == ui->grdViennit || ui->grdViennit->isAncestorOf(focused));
    const QModelIndex cell = ui->grdViennit->currentIndex();
    sulkeEditori(true);
    const bool saved = m_muokkaus->tallenna();
    m_model->refill();
    if (!saved) {
        naytaVirhePaikka();
    } else if (inGrid) {
        ui->grdViennit->setFocus();
        ui->grdViennit->setCurrentIndex(m_model->index(cell.row(), cell.column()));
    } else if (focused) {
        focused->setFocus();
    }
}

void frmNewTositteet::Poista()
{
    sulkeEditori(false);
    m_muokkaus->poista();
}

void frmNewTositteet::Peru()
{
    sulkeEditori(false);
    m_muokkaus->peru();
}

void frmNewTositteet::siirry(VoucherEditor::Siirto siirto)
{
    sulkeEditori(true);
    if (!m_muokkaus->siirry(siirto))
        naytaVirhePaikka();
}

void frmNewTositteet::Ensimmainen() { siirry(VoucherEditor::Siirto::Ensimmainen); }
void frmNewTositteet::Edellinen() { siirry(VoucherEditor::Siirto::Edellinen); }
void frmNewTositteet::Seuraava() { siirry(VoucherEditor::Siirto::Seuraava); }
void frmNewTositteet::Viimeinen() { siirry(VoucherEditor::Siirto::Viimeinen); }

void frmNewTositteet::LisaaVienteja()
{
    sulkeEditori(true);
    m_muokkaus->lisaaRivi();
    m_model->refill();
}

void frmNewTositteet::Selaa()
{
    // Browsing happens in the list: the focus goes there, on the voucher on screen (or the
    // newest one), so that the arrow keys and Enter pick another.
    ui->lstTositteet->setFocus(Qt::ShortcutFocusReason);
    int row = m_list->rowOf(m_muokkaus->tosite().ToId());
    if (row < 0)
        row = m_list->rowCount() - 1;
    if (row >= 0) {
        ui->lstTositteet->setCurrentIndex(m_list->index(row));
        ui->lstTositteet->scrollTo(m_list->index(row), QAbstractItemView::PositionAtCenter);
    }
}

qint32 frmNewTositteet::valittuTili() const
{
    using Puoli = VoucherEditor::Puoli;
    const QModelIndex current = ui->grdViennit->currentIndex();
    const int rivi = current.isValid() ? current.row() : -1;
    if (rivi >= 0 && rivi < m_muokkaus->riviMaara()) {
        const Puoli puoli = EntryModel::side(current.column());
        const Puoli toinen = puoli == Puoli::Debet ? Puoli::Kredit : Puoli::Debet;
        for (const Puoli p : { puoli, toinen })
            if (m_muokkaus->vienti(p, rivi).tlID() > 0)
                return m_muokkaus->vienti(p, rivi).tlID();
    }
    for (int r = 0; r < m_muokkaus->riviMaara(); ++r)
        for (const Puoli p : { Puoli::Debet, Puoli::Kredit })
            if (m_muokkaus->vienti(p, r).tlID() > 0)
                return m_muokkaus->vienti(p, r).tlID();
    return 0;
}

void frmNewTositteet::avaaTilitarkastelu()
{
    auto* tarkastelu = new frmTilitarkastelu(m_muokkaus->database(), valittuTili(), this);
    tarkastelu->setWindowFlag(Qt::Window);
    tarkastelu->setAttribute(Qt::WA_DeleteOnClose);
    connect(tarkastelu, &frmTilitarkastelu::tositeValittu, this, &frmNewTositteet::avaaTosite);
    tarkastelu->show();
}

void frmNewTositteet::avaaPaivaSaldot()
{
    auto* paivaSaldot = new frmPaivaSaldot(m_muokkaus->database(), valittuTili(), this);
    paivaSaldot->setWindowFlag(Qt::Window);
    paivaSaldot->setAttribute(Qt::WA_DeleteOnClose);
    paivaSaldot->show();
}

bool frmNewTositteet::avaaTosite(qint32 toId)
{
    cTosite tosite(m_muokkaus->database());
    bool loytyi = false;
    if (!tellIfFails(QStringLiteral("Tositetta ei voitu lukea."), [&] { loytyi = tosite.Load(toId); }))
        return false;
    if (!loytyi || tosite.Numero() < 0) {
        Dialogs::instance().information(QStringLiteral("Tositetta ei enää ole."));
        return false;
    }
    const Laji laji = tosite.Avaustosite() ? Laji::Avaus
        : tosite.Paatostosite()            ? Laji::Paatos
                                           : Laji::Tavallinen;
    if (laji != m_muokkaus->laji()) {
        const QString ikkuna = laji == Laji::Avaus ? QStringLiteral("Tositteet - Avausviennit")
            : laji == Laji::Paatos                 ? QStringLiteral("Tositteet - Tilinpäätösviennit")
                                                   : QStringLiteral("Tositteet");
        Dialogs::instance().information(
            QStringLiteral("Tosite %1 näytetään ikkunassa %2.").arg(tosite.Numero()).arg(ikkuna));
        return false;
    }
    raise();
    activateWindow();
    if (toId == m_muokkaus->tosite().ToId())
        return true;
    sulkeEditori(true);
    if (!m_muokkaus->lataa(toId)) {
        naytaVirhePaikka();
        return false;
    }
    return true;
}

bool frmNewTositteet::tallennaEnnenTulostusta()
{
    sulkeEditori(true);
    if (!m_muokkaus->tallenna()) {
        naytaVirhePaikka();
        return false;
    }
    m_model->refill();
    return true;
}

void frmNewTositteet::Paivakirja()
{
    if (!tallennaEnnenTulostusta())
        return;
    frmDates2 paivat(this);
    if (paivat.exec() != QDialog::Accepted || PrintOptions::current().cancelled)
        return;
    const QDate alku = PrintOptions::current().alkupvm;
    const QDate loppu = PrintOptions::current().loppupvm;
    if (const QString virhe = JournalPrinting::jaksonVirhe(alku, loppu); !virhe.isEmpty()) {
        Dialogs::instance().information(virhe);
        return;
    }
    ReportJob job;
    if (!tellIfFails(QStringLiteral("Päiväkirjan summia ei voitu laskea."),
            [&] { job = JournalPrinting::paivakirja(m_muokkaus->database(), laji(), alku, loppu); }))
        return;
    ReportRunner::print(this, m_muokkaus->database(), job);
}

void frmNewTositteet::Paakirja()
{
    if (!tallennaEnnenTulostusta())
        return;
    frmDates2 paivat(this);
    if (paivat.exec() != QDialog::Accepted || PrintOptions::current().cancelled)
        return;
    const QDate alku = PrintOptions::current().alkupvm;
    const QDate loppu = PrintOptions::current().loppupvm;
    if (const QString virhe = JournalPrinting::jaksonVirhe(alku, loppu); !virhe.isEmpty()) {
        Dialogs::instance().information(virhe);
        return;
    }
    JournalPrinting::Paakirja valmis;
    {
        WaitCursor wait;
        if (!tellIfFails(QStringLiteral("Pääkirjan saldoja ei voitu laskea."), [&] {
                valmis = JournalPrinting::valmistelePaakirja(m_muokkaus->database(), laji(), alku, loppu);
            }))
            return;
    }
    if (!valmis.virheelliset.isEmpty())
        Dialogs::instance().information(JournalPrinting::virheellisetViennit(valmis.virheelliset));
    ReportRunner::print(this, m_muokkaus->database(), JournalPrinting::paakirja(valmis, laji(), alku, loppu));
}

void frmNewTositteet::lataaLuettelosta(const QModelIndex& index)
{
    sulkeEditori(true);
    if (!m_muokkaus->lataa(index.data(Qt::UserRole).toInt()))
        naytaVirhePaikka();
}

void frmNewTositteet::pvmValmis()
{
    if (!m_muokkaus->muokattavissa())
        return;
    const QString typed = ui->tTositepvm->text().trimmed();
    const QDate d = pvm(typed);
    // The field empties on a wrong date, and the user is told; the voucher is not saved undated.
    ui->tTositepvm->setText(Dates::format(d));
    if (!typed.isEmpty() && !d.isValid())
        Dialogs::instance().information(QStringLiteral("%1 ei ole päivämäärä.").arg(typed));
    if (!m_muokkaus->setPaiva(d) || !d.isValid())
        QTimer::singleShot(0, ui->tTositepvm, [this] {
            ui->tTositepvm->setFocus();
            ui->tTositepvm->selectAll();
        });
}

void frmNewTositteet::riviMuuttui(int /*row*/, int column)
{
    paivitaSummat();
    if (!EntryModel::isAccountColumn(column))
        // After the cell editor has closed, not while it is committing.
        QTimer::singleShot(0, m_muokkaus.get(), [this] { m_muokkaus->automaattinenUusi(); });
}

void frmNewTositteet::changeEvent(QEvent* event)
{
    // Back from another window, which may have saved vouchers on the chosen account.
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        tellIfFails(QStringLiteral("Tilin saldoa ei voitu lukea."), [this] { m_muokkaus->paivitaSaldot(); });
        paivitaSummat();
    }
    QMainWindow::changeEvent(event);
}

bool frmNewTositteet::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == ui->tTositepvm && event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->text() == u"+" || key->text() == u"-") {
            const QDate d = pvm(ui->tTositepvm->text());
            if (d.isValid() && m_muokkaus->muokattavissa()) {
                const QDate moved = d.addDays(key->text() == u"+" ? 1 : -1);
                ui->tTositepvm->setText(Dates::format(moved));
                m_muokkaus->setPaiva(moved, false);
            }
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void frmNewTositteet::closeEvent(QCloseEvent* event)
{
    sulkeEditori(true);
    // The user leaving the vouchers is the moment to hear of faults in them; the window stays
    // open when the user wants to see them. Closing on the program's behalf (its end, a
    // maintenance command) asks nothing.
    if (!m_muokkaus->vainLuku() && (m_kayttajaSulkee || event->spontaneous())) {
        if (!m_muokkaus->tallenna()) {
            naytaVirhePaikka();
            event->ignore();
            return;
        }
        if (TarkistusTarjous()) {
            event->ignore();
            return;
        }
    }
    if (!m_muokkaus->sulje()) {
        naytaVirhePaikka();
        event->ignore();
        return;
    }
    event->accept();
}

bool frmNewTositteet::korjaaOrvot() const { return !m_muokkaus->vainLuku(); }

void frmNewTositteet::Haku()
{
    sulkeEditori(true);
    // The voucher on screen passes the account check before another is looked for.
    if (m_muokkaus->tarkistaTilit()) {
        naytaVirhePaikka();
        return;
    }
    frmTositeHaku haku(m_muokkaus->database(), this);
    haku.exec();
    if (haku.valittuTosite() != 0 && !m_muokkaus->lataa(haku.valittuTosite()))
        naytaVirhePaikka();
}

void frmNewTositteet::TositteidenTarkistus()
{
    sulkeEditori(true);
    // The voucher on screen is checked as it is shown.
    if (!m_muokkaus->vainLuku() && !m_muokkaus->tallenna()) {
        naytaVirhePaikka();
        return;
    }
    if (m_tarkistus) {
        m_tarkistus->Tarkista();
    } else {
        m_tarkistus = new frmTositeTarkistusVirheet(m_muokkaus->database(), korjaaOrvot(), this);
        m_tarkistus->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_tarkistus, &frmTositeTarkistusVirheet::voucherChosen, this, [this](qint32 toId) {
            sulkeEditori(true);
            if (m_muokkaus->lataa(toId) || m_muokkaus->tosite().ToId() == toId) {
                activateWindow();
                ui->tTositepvm->setFocus();
            } else {
                naytaVirhePaikka();
            }
        });
    }
    m_tarkistus->show();
    m_tarkistus->raise();
    m_tarkistus->activateWindow();
}

bool frmNewTositteet::TarkistusTarjous()
{
    std::vector<cTositeTarkistusVirhe> virheet;
    if (!tellIfFails(QStringLiteral("Tositteiden tarkistus ei onnistunut."),
            [&] { virheet = cTositeTarkistus(m_muokkaus->database()).Tarkista(korjaaOrvot()); }))
        return false;
    if (virheet.empty()
        || !Dialogs::instance().question(
            QStringLiteral("Tositteissa puutteita, haluatko avata tositteiden tarkistusikkunan?")))
        return false;
    TositteidenTarkistus();
    return true;
}

void frmNewTositteet::Tositepohjat()
{
    if (!m_pohjat) {
        m_pohjat = new frmTositepohja(m_muokkaus->database(), this);
        m_pohjat->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_pohjat, &frmTositepohja::pohjatMuuttuivat, this, &frmNewTositteet::rakennaPikavalinnat);
    }
    m_pohjat->show();
    m_pohjat->raise();
    m_pohjat->activateWindow();
}

void frmNewTositteet::rakennaPikavalinnat()
{
    if (m_pikavalinnat.isEmpty()) {
        for (int numero = 1; numero <= 4; ++numero) {
            auto* a = new QAction(this);
            a->setObjectName(QStringLiteral("mTositepohjaX"));
            a->setData(numero);
            ui->mTositepohjat->addAction(a);
            connect(a, &QAction::triggered, this, [this, a] { UusiPohjasta(a->property("tpID").toInt()); });
            m_pikavalinnat.append(a);
        }
    }
    // A number no template uses has no item.
    for (QAction* a : m_pikavalinnat) {
        const int numero = a->data().toInt();
        qint32 tpId = 0;
        QString nimi;
        tellIfFails(QStringLiteral("Tositepohjia ei voitu lukea."), [&] {
            tpId = cTositePohjat::Pikavalinnalla(m_muokkaus->database(), numero);
            if (tpId != 0) {
                cTositePohja pohja(m_muokkaus->database());
                pohja.Load(tpId);
                nimi = pohja.Nimi().trimmed();
            }
        });
        a->setProperty("tpID", tpId);
        a->setText(QStringLiteral("(&%1) %2").arg(numero).arg(nimi.replace(u'&', QStringLiteral("&&"))));
        a->setVisible(tpId != 0);
    }
}

void frmNewTositteet::valitsePohja()
{
    std::vector<cTositePohjat::Rivi> pohjat;
    if (!tellIfFails(QStringLiteral("Tositepohjia ei voitu lukea."),
            [&] { pohjat = cTositePohjat::Kaikki(m_muokkaus->database()); }))
        return;
    QMenu valikko(this);
    valikko.setObjectName(QStringLiteral("mTositepohjaValinta"));
    for (const cTositePohjat::Rivi& r : pohjat) {
        const QString nimi = QString(r.nimi.trimmed()).replace(u'&', QStringLiteral("&&"));
        QAction* a = valikko.addAction(
            r.pikavalinta > 0 ? QStringLiteral("(&%1) %2").arg(r.pikavalinta).arg(nimi) : nimi);
        a->setData(r.tpId);
    }
    if (!pohjat.empty())
        valikko.addSeparator();
    valikko.addAction(ui->mMuokkaaTositepohjia);
    QAction* valittu = valikko.exec(ui->cTositePohja->mapToGlobal(QPoint(0, ui->cTositePohja->height())));
    if (valittu && valittu != ui->mMuokkaaTositepohjia)
        UusiPohjasta(valittu->data().toInt());
}

void frmNewTositteet::UusiPohjasta(qint32 tpId)
{
    sulkeEditori(true);
    std::optional<VoucherTemplateEditor::Tosite> tosite;
    if (!tellIfFails(QStringLiteral("Tositepohjaa ei voitu lukea."), [&] {
            tosite = VoucherTemplateEditor::tositteeksi(m_muokkaus->database(), m_muokkaus->tilit(), tpId);
        }))
        return;
    if (!tosite) {
        Dialogs::instance().beep();
        rakennaPikavalinnat();
        return;
    }
    if (!m_muokkaus->uusiMallista(tosite->selite, tosite->viennit)) {
        naytaVirhePaikka();
        return;
    }
    if (tosite->tiliPuuttuu)
        showInformation(QStringLiteral("Valitse tili, jolle vienti tehdään."));
    ui->tTositepvm->setFocus();
    ui->tTositepvm->selectAll();
}
