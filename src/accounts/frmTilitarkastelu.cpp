#include "accounts/frmTilitarkastelu.h"
#include "ui_frmTilitarkastelu.h"

#include "accounts/AccountReports.h"
#include "accounts/TextTableModel.h"
#include "core/DatabaseError.h"
#include "core/DatabaseFile.h"
#include "core/Dates.h"
#include "core/Dialogs.h"
#include "printing/ReportRunner.h"
#include "ui/CommandWiring.h"
#include "ui/WaitCursor.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>

frmTilitarkastelu::frmTilitarkastelu(const QSqlDatabase& db, qint32 tili, QWidget* parent)
    : QMainWindow(parent)
    , ui(std::make_unique<Ui::frmTilitarkastelu>())
    , m_db(db)
{
    ui->setupUi(this);
    m_model
        = new TextTableModel({ QStringLiteral("Tosite"), QStringLiteral("Päivä"), QStringLiteral("Selite"),
                                 QStringLiteral("Debet"), QStringLiteral("Kredit"), QStringLiteral("Saldo") },
            3, this);
    QTableView* grid = ui->grdTarkastelut;
    grid->setModel(m_model);
    grid->verticalScrollBar()->setObjectName(QStringLiteral("scrlBar"));
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    grid->setWordWrap(false);
    grid->verticalHeader()->hide();
    grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    grid->horizontalHeader()->setSectionResizeMode(2, QHeaderView::Stretch);
    grid->setColumnWidth(0, 70);
    grid->setColumnWidth(1, 90);
    for (int c = 3; c < 6; ++c)
        grid->setColumnWidth(c, 120);
    grid->setMinimumWidth(820);
    // Nineteen rows are visible; the scroll bar reaches the rest.
    grid->setFixedHeight(grid->horizontalHeader()->sizeHint().height()
        + NakyvatRivit * grid->verticalHeader()->defaultSectionSize() + 2 * grid->frameWidth());
    connect(grid, &QAbstractItemView::activated, this, &frmTilitarkastelu::avaaRivi);
    connect(grid, &QAbstractItemView::doubleClicked, this, &frmTilitarkastelu::avaaRivi);

    connectCommand(ui->cPaivita, ui->mPaivita, this, &frmTilitarkastelu::Paivita);
    connectCommand(ui->cTulosta, ui->mTulosta, this, &frmTilitarkastelu::Tulosta);
    connectCommand(ui->cSulje, ui->mSulje, this, [this] { close(); });
    // Choosing an account in the list computes it: the keyboard needs no further step.
    connect(ui->cmbTili, &QComboBox::activated, this, [this] { Paivita(); });

    if (tellIfFails(QStringLiteral("Tilejä ei voitu lukea."), [&] { m_tilit.load(m_db); }))
        for (const AccountLookup::Account& a : m_tilit.accounts())
            ui->cmbTili->addItem(m_tilit.text(a.id), a.id);
    ui->cmbTili->setCurrentIndex(-1);
    const Money nolla;
    ui->lblDebetSumma->setText(nolla.toCurrencyString());
    ui->lblKreditSumma->setText(nolla.toCurrencyString());
    ui->lblErotusSumma->setText(nolla.toCurrencyString());
    if (tili != 0) {
        valitseTili(tili);
        if (this->tili() != 0)
            Paivita();
    }
    ui->cmbTili->setFocus();
}

frmTilitarkastelu::~frmTilitarkastelu() = default;

qint32 frmTilitarkastelu::tili() const
{
    return ui->cmbTili->currentIndex() < 0 ? 0 : ui->cmbTili->currentData().toInt();
}

void frmTilitarkastelu::valitseTili(qint32 tili)
{
    ui->cmbTili->setCurrentIndex(ui->cmbTili->findData(tili));
}

void frmTilitarkastelu::Paivita()
{
    const qint32 valittu = tili();
    if (valittu == 0) {
        Dialogs::instance().information(QStringLiteral("Valitse tili, jonka viennit haluat tarkastella."));
        ui->cmbTili->setFocus();
        return;
    }
    WaitCursor wait;
    cTiliTarkastelut tarkastelu(m_db);
    if (!tellIfFails(QStringLiteral("Tilitarkastelua ei voitu laskea."), [&] { tarkastelu.Laske(valittu); }))
        return;
    // The rows are formatted as the view shows them: the busiest account has tens of thousands.
    m_rivit = tarkastelu.rivit();
    m_model->setRows(int(m_rivit.size()), [this](int i) {
        const auto summa = [](Money m) { return m.isZero() ? QString() : m.toCurrencyString(); };
        const cTiliTarkastelut::Rivi& r = m_rivit[size_t(i)];
        const QString numero = r.numero == cTiliTarkastelut::Laskettu ? QString() : QString::number(r.numero);
        return TextTableModel::Row { { numero, Dates::format(r.paiva), r.selite.trimmed(), summa(r.debet),
                                         summa(r.kredit), r.erotus.toCurrencyString() },
            r.toId };
    });
    ui->lblDebetSumma->setText(tarkastelu.debetSumma().toCurrencyString());
    ui->lblKreditSumma->setText(tarkastelu.kreditSumma().toCurrencyString());
    ui->lblErotusSumma->setText(tarkastelu.erotusSumma().toCurrencyString());
    ui->grdTarkastelut->scrollToTop();
    m_laskettu = ui->cmbTili->currentText();
    m_loppusaldo = tarkastelu.erotusSumma();
}

void frmTilitarkastelu::Tulosta()
{
    if (m_laskettu.isEmpty()) {
        Dialogs::instance().information(QStringLiteral("Valitse ensin tili ja päivitä tilitarkastelu."));
        return;
    }
    ReportRunner::print(this, m_db, AccountReports::tiliTarkastelu(m_laskettu, m_loppusaldo));
}

void frmTilitarkastelu::avaaRivi(const QModelIndex& index)
{
    const qint32 toId = m_model->key(index.row());
    if (toId != 0)
        emit tositeValittu(toId);
}
