#include "accounts/frmTilienSaldot.h"
#include "ui_frmTilienSaldot.h"

#include "accounts/AccountBalancesModel.h"
#include "accounts/AccountReports.h"
#include "accounts/cTilienSaldot.h"
#include "core/DatabaseError.h"
#include "printing/ReportRunner.h"
#include "ui/CommandWiring.h"
#include "ui/WaitCursor.h"

#include <QHeaderView>
#include <QScrollBar>

frmTilienSaldot::frmTilienSaldot(const QSqlDatabase& db, QWidget* parent)
    : QMainWindow(parent)
    , ui(std::make_unique<Ui::frmTilienSaldot>())
    , m_db(db)
{
    ui->setupUi(this);
    m_model = new AccountBalancesModel(this);
    QTableView* grid = ui->grdSaldot;
    grid->setModel(m_model);
    grid->verticalScrollBar()->setObjectName(QStringLiteral("scrlBar"));
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    grid->verticalHeader()->hide();
    grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    grid->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    for (int c = 1; c < 4; ++c)
        grid->setColumnWidth(c, 130);
    grid->setMinimumWidth(700);
    // Nineteen rows are visible; the scroll bar reaches the rest.
    grid->setFixedHeight(grid->horizontalHeader()->sizeHint().height()
        + NakyvatRivit * grid->verticalHeader()->defaultSectionSize() + 2 * grid->frameWidth());

    connectCommand(ui->cPaivitaSaldot, ui->mPaivitaSaldot, this, &frmTilienSaldot::PaivitaSaldot);
    connectCommand(ui->cTulosta, ui->mTulosta, this, &frmTilienSaldot::Tulosta);
    connectCommand(ui->cSulje, ui->mSulje, this, [this] { close(); });
    PaivitaSaldot();
}

frmTilienSaldot::~frmTilienSaldot() = default;

void frmTilienSaldot::PaivitaSaldot()
{
    WaitCursor wait;
    cTilienSaldot saldot(m_db);
    if (!tellIfFails(QStringLiteral("Tilien saldoja ei voitu laskea."), [&] { saldot.Laske(); }))
        return;
    m_model->setRivit(saldot.rivit());
    ui->lblDebetSumma->setText(saldot.debetSumma().toCurrencyString());
    ui->lblKreditSumma->setText(saldot.kreditSumma().toCurrencyString());
    ui->lblErotusSumma->setText(saldot.erotusSumma().toCurrencyString());
    ui->grdSaldot->scrollToTop();
}

void frmTilienSaldot::Tulosta() { ReportRunner::print(this, m_db, AccountReports::tilienSaldot()); }
