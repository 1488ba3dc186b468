#include "settings/frmAsetukset.h"
#include "ui_frmAsetukset.h"

#include "core/DatabaseError.h"
#include "core/DatabaseFile.h"
#include "core/Dialogs.h"
#include "core/MailServerQuery.h"
#include "ui/EnterAsTab.h"

#include <QDir>
#include <QFileInfo>
#include <QFontDatabase>
#include <QShortcut>

namespace {

const int FontSizes[] = { 6, 7, 8, 9, 10, 11, 12, 14, 16, 18, 20, 22, 24, 28, 36, 48, 72 };

void selectAccount(QComboBox* list, qint32 id)
{
    const int index = list->findData(id);
    list->setCurrentIndex(index < 0 ? 0 : index);
}

qint32 accountOf(const QComboBox* list) { return list->currentData().toInt(); }

// The stored value of the field a control shows, for the fields that can be refused.
void takeStored(SettingsForm& shown, const SettingsForm& stored, const QString& control)
{
    const std::pair<const char*, QString SettingsForm::*> fields[] = {
        { "tTilikausiAlku", &SettingsForm::TilikausiAlku },
        { "tEdTilikausiAlku", &SettingsForm::EdTilikausiAlku },
        { "tTilikausiLoppu", &SettingsForm::TilikausiLoppu },
        { "tEdTilikausiLoppu", &SettingsForm::EdTilikausiLoppu },
        { "cmbFonttiKoko", &SettingsForm::FonttiKoko },
        { "tMargYla", &SettingsForm::MargYla },
        { "tMargAla", &SettingsForm::MargAla },
        { "tMargVas", &SettingsForm::MargVas },
        { "tMargOik", &SettingsForm::MargOik },
        { "tDatabase", &SettingsForm::Database },
    };
    for (const auto& [name, field] : fields)
        if (control == QLatin1String(name))
            shown.*field = stored.*field;
}

} // namespace

frmAsetukset::frmAsetukset(const QSqlDatabase& db, QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::frmAsetukset>())
    , m_db(db)
{
    ui->setupUi(this);
    connect(ui->cTallenna, &QPushButton::clicked, this, &frmAsetukset::tallenna);
    connect(ui->cSulje, &QPushButton::clicked, this, &frmAsetukset::reject);
    connect(ui->cTietokantavalita, &QPushButton::clicked, this, &frmAsetukset::valitseTietokanta);
    connect(ui->cHaePalvelin, &QPushButton::clicked, this, &frmAsetukset::haePalvelin);
    auto* save = new QShortcut(QKeySequence::Save, this);
    connect(save, &QShortcut::activated, this, &frmAsetukset::tallenna);

    // The bookkeeping settings live in the books: without books open for writing they are
    // shown but cannot be changed.
    const bool open = m_db.isOpen();
    const bool writable = open && !DatabaseFile::isReadOnly(m_db);
    if (!writable) {
        for (QWidget* page : { ui->tabTilikausi, ui->tabTulostus, ui->tabSahkoposti })
            page->setEnabled(false);
        for (QWidget* box : { ui->chkVanhatTositteet, ui->chkVanhatMallit })
            box->setEnabled(false);
        ui->lblKirjanpito->setText(open
                ? QStringLiteral("Tietokanta on avattu vain luettavaksi, joten kirjanpidon "
                                 "asetuksia ei voi muuttaa.")
                : QStringLiteral("Tietokantaa ei ole avattu, joten kirjanpidon asetuksia ei "
                                 "voi muuttaa. Korjaa tietokannan nimi ja tallenna."));
        ui->lblKirjanpito->setVisible(true);
        ui->tabAsetukset->setCurrentWidget(ui->tabTietokanta);
    }
    if (open)
        fillAccounts();
    const SettingsForm current = SettingsForm::current();
    fillFonts(current.Fontti, current.FonttiKoko);
    fill(current, {});
    m_stored = collect();
    EnterAsTab::install(this);
    // A change after a save clears the word "tallennettu".
    for (QLineEdit* field : findChildren<QLineEdit*>())
        connect(field, &QLineEdit::textEdited, ui->lblTallennettu, &QLabel::clear);
    (writable ? static_cast<QWidget*>(ui->tSeurannimi) : ui->tDatabase)->setFocus();
}

// What the name service answered, handed from the asking thread to the window's.
struct MailServerAnswer {
    MailServerQuery::Result result;
};

frmAsetukset::~frmAsetukset()
{
    // The name service answers within seconds; the window waits for it rather than leave a
    // thread behind that writes into a closed window.
    if (m_mailServerQuery) {
        m_mailServerQuery->disconnect(this);
        m_mailServerQuery->wait();
        delete m_mailServerQuery;
    }
}

void frmAsetukset::fillAccounts()
{
    QList<SettingsForm::Account> accounts;
    tellIfFails(QStringLiteral("Tilejä ei voitu lukea."), [&] { accounts = SettingsForm::accounts(m_db); });
    for (QComboBox* list : { ui->cmbLaskettavaTili, ui->cmbVoittoTaseella, ui->cmbSelvittelytili }) {
        list->clear();
        // The empty item is "no account".
        list->addItem(QString(), 0);
        for (const SettingsForm::Account& account : accounts)
            list->addItem(account.text, account.id);
    }
}

void frmAsetukset::fillFonts(const QString& current, const QString& size)
{
    QStringList families = QFontDatabase::families();
    if (!current.isEmpty() && !families.contains(current))
        families.append(current);
    families.sort(Qt::CaseInsensitive);
    ui->cmbFonts->addItems(families);
    QList<int> sizes(std::begin(FontSizes), std::end(FontSizes));
    if (const int stored = size.toInt(); stored > 0 && !sizes.contains(stored)) {
        sizes.append(stored);
        std::sort(sizes.begin(), sizes.end());
    }
    for (int s : sizes)
        ui->cmbFonttiKoko->addItem(QString::number(s));
}

void frmAsetukset::fill(const SettingsForm& f, const QStringList& keep)
{
    const auto text = [&keep](QLineEdit* field, const QString& value) {
        if (!keep.contains(field->objectName()))
            field->setText(value);
    };
    text(ui->tDatabase, f.Database);
    text(ui->tDatabaseBackup, f.DatabaseBackup);
    ui->chkMultiDb->setChecked(f.MultiDb);
    text(ui->tSeurannimi, f.Seurannimi);
    text(ui->tTilikausiAlku, f.TilikausiAlku);
    text(ui->tTilikausiLoppu, f.TilikausiLoppu);
    text(ui->tEdTilikausiAlku, f.EdTilikausiAlku);
    text(ui->tEdTilikausiLoppu, f.EdTilikausiLoppu);
    selectAccount(ui->cmbLaskettavaTili, f.LaskettavaTili);
    selectAccount(ui->cmbVoittoTaseella, f.VoittoTaseella);
    selectAccount(ui->cmbSelvittelytili, f.Selvittelytili);
    ui->chkAutomaattisestiUusiTosite->setChecked(f.AutomaattisestiUusiTosite);
    ui->chkVaakatulostus->setChecked(f.VaakaTulostus);
    ui->cmbFonts->setCurrentText(f.Fontti);
    if (!keep.contains(ui->cmbFonttiKoko->objectName()))
        ui->cmbFonttiKoko->setCurrentText(f.FonttiKoko);
    text(ui->tMargYla, f.MargYla);
    text(ui->tMargAla, f.MargAla);
    text(ui->tMargVas, f.MargVas);
    text(ui->tMargOik, f.MargOik);
    ui->chkVanhatTositteet->setChecked(f.VanhatTositteet);
    ui->chkVanhatMallit->setChecked(f.VanhatMallit);
    text(ui->tEmail, f.Email);
    text(ui->tSMTP, f.SMTP);
}

SettingsForm frmAsetukset::collect() const
{
    SettingsForm f;
    f.Database = ui->tDatabase->text();
    f.DatabaseBackup = ui->tDatabaseBackup->text();
    f.MultiDb = ui->chkMultiDb->isChecked();
    f.Seurannimi = ui->tSeurannimi->text();
    f.TilikausiAlku = ui->tTilikausiAlku->text();
    f.EdTilikausiAlku = ui->tEdTilikausiAlku->text();
    f.TilikausiLoppu = ui->tTilikausiLoppu->text();
    f.EdTilikausiLoppu = ui->tEdTilikausiLoppu->text();
    f.LaskettavaTili = accountOf(ui->cmbLaskettavaTili);
    f.VoittoTaseella = accountOf(ui->cmbVoittoTaseella);
    f.Selvittelytili = accountOf(ui->cmbSelvittelytili);
    f.Email = ui->tEmail->text();
    f.SMTP = ui->tSMTP->text();
    f.VaakaTulostus = ui->chkVaakatulostus->isChecked();
    f.VanhatMallit = ui->chkVanhatMallit->isChecked();
    f.VanhatTositteet = ui->chkVanhatTositteet->isChecked();
    f.AutomaattisestiUusiTosite = ui->chkAutomaattisestiUusiTosite->isChecked();
    f.Fontti = ui->cmbFonts->currentText();
    f.FonttiKoko = ui->cmbFonttiKoko->currentText();
    f.MargYla = ui->tMargYla->text();
    f.MargAla = ui->tMargAla->text();
    f.MargVas = ui->tMargVas->text();
    f.MargOik = ui->tMargOik->text();
    return f;
}

bool frmAsetukset::changed() const { return collect() != m_stored; }

bool frmAsetukset::tallenna()
{
    ui->lblTallennettu->clear();
    const SettingsForm::Saved saved = collect().save(m_db, m_beforeDatabaseChange);
    if (saved.databaseChanged) {
        m_databaseChanged = true;
        accept();
        return saved.refused.isEmpty() && !saved.stopped;
    }
    // What was stored is shown as stored (dates in full); a refused field keeps what was typed
    // and still counts as a change.
    const SettingsForm stored = SettingsForm::current();
    if (!saved.stopped)
        fill(stored, saved.refused);
    SettingsForm shown = collect();
    for (const QString& control : saved.refused)
        takeStored(shown, stored, control);
    if (!saved.stopped)
        m_stored = shown;
    if (!saved.refused.isEmpty()) {
        if (auto* field = findChild<QWidget*>(saved.refused.first())) {
            for (QWidget* w = field->parentWidget(); w; w = w->parentWidget())
                if (ui->tabAsetukset->indexOf(w) >= 0)
                    ui->tabAsetukset->setCurrentWidget(w);
            field->setFocus();
            if (auto* line = qobject_cast<QLineEdit*>(field))
                line->selectAll();
        }
        return false;
    }
    if (saved.stopped)
        return false;
    ui->lblTallennettu->setText(QStringLiteral("Asetukset tallennettu."));
    return true;
}

void frmAsetukset::reject()
{
    if (changed() && Dialogs::instance().question(QStringLiteral("Asetuksia on muutettu, tallennetaanko?"))) {
        const bool stored = tallenna();
        // A change of database has closed the window already; a value that could not be stored
        // keeps it open, so that nothing typed is lost.
        if (m_databaseChanged || !stored)
            return;
    }
    QDialog::reject();
}

void frmAsetukset::valitseTietokanta()
{
    const QString text = ui->tDatabase->text().trimmed();
    QString start = QDir::homePath();
    if (text.contains(QLatin1String("mdb")))
        start = text;
    else if (!text.isEmpty() && QFileInfo(text).isDir())
        start = text;
    const QString chosen = Dialogs::instance().openFileName(
        QStringLiteral("Valitse tietokanta"), QStringLiteral("Tietokanta (*.mdb)"), start);
    if (chosen.isEmpty())
        return;
    ui->tDatabase->setText(chosen);
    ui->lblTallennettu->clear();
}

void frmAsetukset::haePalvelin()
{
    if (m_mailServerQuery)
        return;
    // The window stays usable while the name service is asked; the button waits for the answer.
    const QString address = ui->tEmail->text();
    m_mailServerAnswer = std::make_shared<MailServerAnswer>();
    m_mailServerQuery = QThread::create(
        [answer = m_mailServerAnswer, address] { answer->result = MailServerQuery::find(address); });
    connect(m_mailServerQuery, &QThread::finished, this, [this, address] { mailServerFound(address); });
    ui->cHaePalvelin->setEnabled(false);
    ui->cHaePalvelin->setCursor(Qt::BusyCursor);
    m_mailServerQuery->start();
}

void frmAsetukset::mailServerFound(const QString& address)
{
    m_mailServerQuery->wait();
    delete m_mailServerQuery;
    m_mailServerQuery = nullptr;
    ui->cHaePalvelin->setEnabled(true);
    ui->cHaePalvelin->unsetCursor();
    // An address changed meanwhile is asked again, not answered for the old one.
    if (ui->tEmail->text() != address)
        return;
    const std::optional<QString> server = MailServerQuery::offer(m_mailServerAnswer->result);
    if (!server)
        return;
    ui->tSMTP->setText(*server);
    ui->lblTallennettu->clear();
}
