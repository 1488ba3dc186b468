#include "accounts/frmPaivaSaldot.h"
#include "ui_frmPaivaSaldot.h"

#include "accounts/BalanceChart.h"
#include "accounts/TextTableModel.h"
#include "core/DatabaseError.h"
#include "core/Dates.h"
#include "core/Dialogs.h"
#include "core/ProgramSettings.h"
#include "ui/CommandWiring.h"
#include "ui/WaitCursor.h"

#include <QHeaderView>
#include <QScrollBar>

frmPaivaSaldot::frmPaivaSaldot(const QSqlDatabase& db, qint32 tili, QWidget* parent)
    : QMainWindow(parent)
    , ui(std::make_unique<Ui::frmPaivaSaldot>())
    , m_db(db)
{
    ui->setupUi(this);
    m_model = new TextTableModel({ QStringLiteral("Päivä"), QStringLiteral("Debet"), QStringLiteral("Kredit"),
                                     QStringLiteral("Erotus"), QStringLiteral("Saldo") },
        1, this);
    QTableView* grid = ui->grdPaivaSaldot;
    grid->setModel(m_model);
    grid->verticalScrollBar()->setObjectName(QStringLiteral("scrlBar"));
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    grid->setWordWrap(false);
    grid->verticalHeader()->hide();
    grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    grid->setColumnWidth(0, 90);
    for (int c = 1; c < 5; ++c)
        grid->setColumnWidth(c, 110);
    grid->setFixedWidth(
        90 + 4 * 110 + grid->verticalScrollBar()->sizeHint().width() + 2 * grid->frameWidth() + 2);
    // Nineteen rows are visible; the scroll bar reaches the rest.
    grid->setFixedHeight(grid->horizontalHeader()->sizeHint().height()
        + NakyvatRivit * grid->verticalHeader()->defaultSectionSize() + 2 * grid->frameWidth());

    connectCommand(ui->cPaivita, ui->mPaivita, this, &frmPaivaSaldot::Paivita);
    connectCommand(ui->cSulje, ui->mSulje, this, [this] { close(); });
    connect(ui->cmbTili, &QComboBox::activated, this, [this] { Paivita(); });

    if (tellIfFails(QStringLiteral("Tilejä ei voitu lukea."), [&] { m_tilit.load(m_db); }))
        for (const AccountLookup::Account& a : m_tilit.accounts())
            ui->cmbTili->addItem(m_tilit.text(a.id), a.id);
    ui->cmbTili->setCurrentIndex(-1);
    const BookkeepingSettings& s = ProgramSettings::bookkeeping();
    ui->chrtSaldo->nayta({}, s.TilikausiAlku, s.TilikausiLoppu);
    if (tili != 0) {
        valitseTili(tili);
        if (this->tili() != 0)
            Paivita();
    }
    ui->cmbTili->setFocus();
}

frmPaivaSaldot::~frmPaivaSaldot() = default;

qint32 frmPaivaSaldot::tili() const
{
    return ui->cmbTili->currentIndex() < 0 ? 0 : ui->cmbTili->currentData().toInt();
}

void frmPaivaSaldot::valitseTili(qint32 tili) { ui->cmbTili->setCurrentIndex(ui->cmbTili->findData(tili)); }

void frmPaivaSaldot::Paivita()
{
    const qint32 valittu = tili();
    if (valittu == 0) {
        Dialogs::instance().information(QStringLiteral("Valitse tili, jonka päiväsaldot haluat nähdä."));
        ui->cmbTili->setFocus();
        return;
    }
    WaitCursor wait;
    const BookkeepingSettings& s = ProgramSettings::bookkeeping();
    std::vector<DailyBalances::Rivi> rivit;
    if (!tellIfFails(QStringLiteral("Päiväsaldoja ei voitu laskea."),
            [&] { rivit = DailyBalances::laske(m_db, valittu, s.TilikausiAlku, s.TilikausiLoppu); }))
        return;
    std::vector<TextTableModel::Row> rows;
    Money debet, kredit;
    ui->grdPaivaSaldot->clearSpans();
    if (rivit.empty()) {
        rows.push_back({ { QStringLiteral("Ei tapahtumia.") }, 0 });
    } else {
        rows.reserve(rivit.size());
        for (const DailyBalances::Rivi& r : rivit) {
            rows.push_back(
                { { Dates::format(r.paiva), r.debet.toCurrencyString(), r.kredit.toCurrencyString(),
                      r.erotus.toCurrencyString(), r.saldo.toCurrencyString() },
                    0 });
            debet += r.debet;
            kredit += r.kredit;
        }
    }
    m_model->setRows(std::move(rows));
    // Without entries the one row says so and nothing else is shown.
    if (rivit.empty())
        ui->grdPaivaSaldot->setSpan(0, 0, 1, m_model->columnCount());
    ui->lblDebetSumma->setText(rivit.empty() ? QString() : debet.toCurrencyString());
    ui->lblKreditSumma->setText(rivit.empty() ? QString() : kredit.toCurrencyString());
    ui->lblErotusSumma->setText(rivit.empty() ? QString() : (debet - kredit).toCurrencyString());
    ui->grdPaivaSaldot->scrollToTop();
    ui->chrtSaldo->nayta(rivit, s.TilikausiAlku, s.TilikausiLoppu);
    m_rivit = std::move(rivit);
}
