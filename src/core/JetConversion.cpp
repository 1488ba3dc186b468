#include "core/JetConversion.h"
#include "core/ErrorText.h"

#include "core/DatabaseError.h"
#include "core/DatabaseFile.h"
#include "core/Dialogs.h"
#include "core/FileOps.h"
#include "core/JetReader.h"
#include "core/Schema.h"
#include "core/ScopedConnection.h"
#include "core/Transaction.h"

#include <QCursor>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QSaveFile>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStorageInfo>
#include <QTemporaryFile>
#include <QUuid>

#include <cmath>
#include <utility>

namespace {

// The tables that must be there for the file to be an association's books at all.
const QStringList RequiredTables { QStringLiteral("tl"), QStringLiteral("to"), QStringLiteral("toE"),
    QStringLiteral("vi"), QStringLiteral("viE"), QStringLiteral("ma"), QStringLiteral("mr") };

// Fields that hold money in Vorkam's layout: ten-thousandths whatever the old file used.
bool isMoneyField(const QString& field)
{
    static const QSet<QString> fields { QStringLiteral("tlalkusaldo"), QStringLiteral("tlloppusaldo"),
        QStringLiteral("viarvo"), QStringLiteral("viearvo"), QStringLiteral("tulatoteutunutkuluva"),
        QStringLiteral("tulatoteutunutkuluvaalusta"), QStringLiteral("tulatoteutunutedellinen"),
        QStringLiteral("tulatoteutunutedellinenalusta"), QStringLiteral("tulamuutosalusta"),
        QStringLiteral("tasealkusaldo"), QStringLiteral("taseloppusaldo"),
        QStringLiteral("taseloppusaldoedellinen"), QStringLiteral("tasemuutos"),
        QStringLiteral("tasemuutosedelliseen"), QStringLiteral("debet"), QStringLiteral("kredit"),
        QStringLiteral("erotus"), QStringLiteral("viparvo") };
    return fields.contains(field.toLower());
}

QString quoted(const QString& name)
{
    return u'"' + QString(name).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

// The column type a field the layout does not have gets.
QString columnType(JetColumn::Kind kind)
{
    switch (kind) {
    case JetColumn::Kind::YesNo:
        return QStringLiteral("INTEGER NOT NULL DEFAULT 0");
    case JetColumn::Kind::Integer:
    case JetColumn::Kind::Money:
        return QStringLiteral("INTEGER");
    case JetColumn::Kind::Real:
    case JetColumn::Kind::Decimal:
        return QStringLiteral("REAL");
    case JetColumn::Kind::Binary:
        return QStringLiteral("BLOB");
    case JetColumn::Kind::Date:
    case JetColumn::Kind::Text:
        break;
    }
    return QStringLiteral("TEXT");
}

// An exact decimal text ("-12.3456", "7") in ten-thousandths, the fifth decimal rounding half
// away from zero; nullopt when it is no number or too large.
std::optional<qint64> decimalToRaw(const QString& text)
{
    QString s = text.trimmed();
    const bool negative = s.startsWith(u'-');
    if (negative || s.startsWith(u'+'))
        s.remove(0, 1);
    const QStringList parts = s.split(u'.');
    if (parts.size() > 2 || parts.first().isEmpty() || parts.first().size() > 14)
        return std::nullopt;
    bool ok = false;
    qint64 raw = parts.first().toLongLong(&ok) * Money::Scale;
    if (!ok)
        return std::nullopt;
    if (parts.size() == 2) {
        const QString decimals = parts.at(1);
        for (QChar c : decimals)
            if (!c.isDigit())
                return std::nullopt;
        raw += decimals.left(4).leftJustified(4, u'0').toLongLong();
        if (decimals.size() > 4 && decimals.at(4) >= u'5')
            raw += 1;
    }
    return negative ? -raw : raw;
}

// A Jet value in the form Vorkam stores for `field`.
QVariant storedValue(const QVariant& value, JetColumn::Kind kind, bool money)
{
    if (value.isNull())
        return value;
    switch (kind) {
    case JetColumn::Kind::Money:
        return money ? value : QVariant(double(value.toLongLong()) / Money::Scale);
    case JetColumn::Kind::Integer:
        return money ? QVariant(value.toLongLong() * Money::Scale) : value;
    case JetColumn::Kind::Real: {
        const double d = value.toDouble();
        if (!money)
            return value;
        if (std::fabs(d) > 9e14)
            throw DatabaseError(QStringLiteral("Rahamäärä %1 on liian suuri.").arg(d));
        return qint64(std::llround(d * Money::Scale));
    }
    case JetColumn::Kind::Decimal: {
        const std::optional<qint64> raw = decimalToRaw(value.toString());
        if (!raw)
            throw DatabaseError(QStringLiteral("Luku %1 ei kelpaa.").arg(value.toString()));
        if (money)
            return *raw;
        return *raw % Money::Scale == 0 ? QVariant(*raw / Money::Scale)
                                        : QVariant(value.toString().toDouble());
    }
    case JetColumn::Kind::YesNo:
    case JetColumn::Kind::Date:
    case JetColumn::Kind::Text:
    case JetColumn::Kind::Binary:
        break;
    }
    return value;
}

void addToSums(JetConversion::Sums& sums, const QString& type, Money amount)
{
    if (type == u"D")
        sums.debit += amount;
    else if (type == u"K")
        sums.credit += amount;
    else
        sums.other += amount;
}

// The sums by side of one entry table as the old file has them.
JetConversion::Sums sumsBefore(
    const JetBooks& books, const QString& table, const QString& typeField, const QString& amountField)
{
    JetConversion::Sums sums;
    const JetTable* t = books.table(table);
    if (!t)
        return sums;
    const int type = t->column(typeField);
    const int amount = t->column(amountField);
    if (type < 0 || amount < 0)
        return sums;
    for (const QVariantList& row : t->rows)
        addToSums(sums, row.at(type).toString(),
            Money::fromRaw(storedValue(row.at(amount), t->columns.at(amount).kind, true).toLongLong()));
    return sums;
}

JetConversion::Sums sumsAfter(
    const QSqlDatabase& db, const QString& table, const QString& typeField, const QString& amountField)
{
    JetConversion::Sums sums;
    QSqlQuery q = Sql::run(db,
        QStringLiteral("SELECT %1, SUM(%2) FROM %3 GROUP BY %1").arg(typeField, amountField, quoted(table)));
    while (q.next())
        addToSums(sums, q.value(0).toString(), Money::fromRaw(q.value(1).toLongLong()));
    return sums;
}

QSet<QString> fieldsOf(const QSqlDatabase& db, const QString& table)
{
    QSet<QString> fields;
    const QSqlRecord record = db.record(table);
    for (int i = 0; i < record.count(); ++i)
        fields.insert(record.fieldName(i).toLower());
    return fields;
}

// Vorkam's current layout, table by table: the fields an upgraded new book has.
QHash<QString, QSet<QString>> currentLayout()
{
    QHash<QString, QSet<QString>> layout;
    ScopedConnection memory(QStringLiteral(":memory:"));
    QSqlDatabase& db = memory.db();
    if (!memory.isOpen())
        return layout;
    try {
        Schema::createCoreTables(db);
    } catch (const DatabaseError&) {
        return layout; // then every field of the old file is listed as one Vorkam lacks
    }
    if (Schema::UpdateDatabase(db).ok)
        for (const QString& table : Schema::tableNames())
            layout.insert(table.toLower(), fieldsOf(db, table));
    return layout;
}

QString numbered(const QString& path, const QString& suffix, const QString& extension)
{
    const QFileInfo info(path);
    const QString stem = info.absolutePath() + u'/' + info.completeBaseName() + suffix;
    QString candidate = stem + extension;
    for (int n = 2; QFileInfo::exists(candidate) || QFileInfo(candidate).isSymLink(); ++n)
        candidate = stem + QStringLiteral("-%1").arg(n) + extension;
    return candidate;
}

QString megabytes(qint64 bytes) { return QString::number((bytes + 1024 * 1024 - 1) / (1024 * 1024)); }

QString sumsLine(const QString& caption, Money before, Money after)
{
    return QStringLiteral("  %1: ennen %2, jälkeen %3").arg(caption, before.toString(), after.toString());
}

// Removes the half-made book and its journal unless it has taken the old file's place.
struct TemporaryBook {
    QString path;
    bool kept = false;
    ~TemporaryBook()
    {
        if (kept || path.isEmpty())
            return;
        QFile::remove(path);
        QFile::remove(path + QStringLiteral("-journal"));
    }
};

} // namespace

JetConversion::JetConversion()
    : freeSpace([](const QString& folder) {
        const QStorageInfo storage(folder);
        return storage.isValid() ? storage.bytesAvailable() : qint64(-1);
    })
{
}

QString JetConversion::keptName(const QString& path)
{
    return numbered(path, QStringLiteral("-jet"), QStringLiteral(".mdb"));
}

QString JetConversion::reportName(const QString& path)
{
    return numbered(path, QStringLiteral("-muunnos"), QStringLiteral(".txt"));
}

QString JetConversion::Result::report() const
{
    QStringList lines { QStringLiteral("Vanhan tietokannan muunnos Vorkamin muotoon") };
    lines << QStringLiteral("Kirjanpito: %1").arg(QDir::toNativeSeparators(books))
          << QStringLiteral("Alkuperäinen (Jet %1) säilytetty nimellä: %2")
                 .arg(jetVersion)
                 .arg(QDir::toNativeSeparators(original))
          << QStringLiteral("Muunnettu: %1").arg(when.toString(QStringLiteral("d.M.yyyy 'klo' H.mm")))
          << QString() << QStringLiteral("Taulu: rivejä luettu / kirjoitettu");
    for (const TableCount& t : tables)
        lines << QStringLiteral("  %1: %2 / %3").arg(t.table).arg(t.read).arg(t.written);
    lines << QString() << QStringLiteral("Viennit (vi.viArvo) puolittain:")
          << sumsLine(QStringLiteral("debet (D)"), entriesBefore.debit, entriesAfter.debit)
          << sumsLine(QStringLiteral("kredit (K)"), entriesBefore.credit, entriesAfter.credit);
    if (!entriesBefore.other.isZero() || !entriesAfter.other.isZero())
        lines << sumsLine(QStringLiteral("muu laji"), entriesBefore.other, entriesAfter.other);
    lines << QStringLiteral("Edellisen tilikauden viennit (viE.viEArvo) puolittain:")
          << sumsLine(QStringLiteral("debet (D)"), previousBefore.debit, previousAfter.debit)
          << sumsLine(QStringLiteral("kredit (K)"), previousBefore.credit, previousAfter.credit);
    if (!previousBefore.other.isZero() || !previousAfter.other.isZero())
        lines << sumsLine(QStringLiteral("muu laji"), previousBefore.other, previousAfter.other);
    lines << QString();
    lines << (skippedTables.isEmpty()
            ? QStringLiteral("Ohitettuja tauluja ei ollut.")
            : QStringLiteral("Ohitetut taulut (Vorkam ei tunne niitä, joten niitä ei kopioitu): %1")
                  .arg(skippedTables.join(QStringLiteral(", "))));
    if (!extraFields.isEmpty())
        lines << QStringLiteral("Kopioitiin myös kentät, joita Vorkam ei käytä: %1")
                     .arg(extraFields.join(QStringLiteral(", ")));
    if (timesDropped > 0)
        lines << QStringLiteral("Kellonaika jätettiin pois %1 päivämäärästä: Vorkam tallentaa vain päivät.")
                     .arg(timesDropped);
    QStringList steps;
    for (int step : upgradeSteps)
        steps << QString::number(step);
    lines << (steps.isEmpty() ? QStringLiteral("Rakenne oli jo ajan tasalla.")
                              : QStringLiteral("Rakenne päivitettiin nykyiseen muotoon (päivitysvaiheet %1).")
                                    .arg(steps.join(QStringLiteral(", "))));
    return lines.join(u'\n');
}

JetConversion::Result JetConversion::convert(const QString& path) const
{
    Result r;
    r.when = QDateTime::currentDateTime();
    const QFileInfo info(path);
    r.books = info.absoluteFilePath();
    const QString folder = info.absolutePath();
    const QFileDevice::Permissions permissions = info.permissions();
    const auto refuse = [&r](const QString& message) {
        r.message = message;
        return r;
    };

    if (!info.exists() || info.isDir())
        return refuse(QStringLiteral("Tiedostoa %1 ei löydy.").arg(path));
    if (!info.isReadable())
        return refuse(QStringLiteral("Tiedostoa %1 ei voi lukea: käyttöoikeus puuttuu.").arg(path));
    if (!DatabaseFile::isJetFile(path))
        return refuse(QStringLiteral("Tiedosto %1 ei ole vanhan muodon (Jet) tietokanta.").arg(path));
    if (DatabaseFile::folderReadOnly(path))
        return refuse(
            QStringLiteral("Kansioon %1 ei voi kirjoittaa, joten muunnettua kirjanpitoa ei voi tallentaa "
                           "sinne. Siirrä tiedosto kansioon, johon sinulla on kirjoitusoikeus, ja yritä "
                           "uudelleen.")
                .arg(QDir::toNativeSeparators(folder)));
    // The converted book is smaller than the old file; a megabyte more covers the journal
    // and the report.
    const qint64 needed = info.size() + 1024 * 1024;
    const qint64 available = freeSpace(folder);
    if (available >= 0 && available < needed)
        return refuse(
            QStringLiteral("Levyllä ei ole tarpeeksi tilaa muunnokselle: tarvitaan noin %1 Mt, vapaana "
                           "on %2 Mt. Vapauta levytilaa ja yritä uudelleen.")
                .arg(megabytes(needed), megabytes(available)));

    const JetReader::Result read = JetReader::read(path, Schema::tableNames());
    switch (read.problem) {
    case JetReader::Problem::None:
        break;
    case JetReader::Problem::Unreadable:
        return refuse(QStringLiteral("Tiedostoa %1 ei voi lukea: %2.").arg(path, read.detail));
    case JetReader::Problem::NotJet:
        return refuse(QStringLiteral("Tiedosto %1 ei ole vanhan muodon (Jet) tietokanta.").arg(path));
    case JetReader::Problem::Unsupported:
        return refuse(QStringLiteral("Tietokanta %1 on muodossa, jota Vorkam ei osaa muuntaa: %2.")
                          .arg(path, read.detail));
    case JetReader::Problem::Truncated:
        return refuse(QStringLiteral("Tietokanta %1 on vajaa (%2), joten se on ehkä katkennut kopioitaessa. "
                                     "Muunna ehjä kopio, esimerkiksi varmuuskopiosta.")
                          .arg(path, read.detail));
    case JetReader::Problem::Password:
        return refuse(
            QStringLiteral("Tietokanta %1 on suojattu salasanalla, eikä Vorkam voi muuntaa sitä. Poista "
                           "salasana ohjelmassa, jolla tietokantaa on käytetty, ja yritä uudelleen.")
                .arg(path));
    case JetReader::Problem::Damaged:
        return refuse(QStringLiteral("Tietokanta %1 on vioittunut, eikä sitä voi muuntaa luotettavasti (%2). "
                                     "Muunna ehjä kopio, esimerkiksi varmuuskopiosta.")
                          .arg(path, read.detail));
    }
    const JetBooks& jet = read.books;
    r.jetVersion = jet.jetVersion;
    r.skippedTables = jet.unknownTables;
    r.timesDropped = jet.timesDropped;
    QStringList missing;
    for (const QString& table : RequiredTables)
        if (!jet.table(table))
            missing << table;
    if (missing.contains(QStringLiteral("tl")))
        return refuse(
            QStringLiteral("Tiedosto %1 ei ole yhdistyksen kirjanpito: siinä ei ole tilien taulua (tl). "
                           "Se on ehkä jonkin toisen ohjelman tietokanta.")
                .arg(path));
    if (!missing.isEmpty())
        return refuse(QStringLiteral("Tiedosto %1 ei ole kokonainen kirjanpito: siitä puuttuu %2 %3.")
                          .arg(path, missing.size() == 1 ? QStringLiteral("taulu") : QStringLiteral("taulut"),
                              missing.join(QStringLiteral(", "))));

    // The new book is written beside the old file under a name of its own.
    TemporaryBook temp;
    {
        QTemporaryFile reserve(
            folder + QStringLiteral("/.") + info.fileName() + QStringLiteral(".muunnos-XXXXXX"));
        reserve.setAutoRemove(false);
        if (!reserve.open())
            return refuse(QStringLiteral("Kansioon %1 ei voi kirjoittaa: %2")
                              .arg(QDir::toNativeSeparators(folder), reserve.errorString()));
        temp.path = reserve.fileName();
    }
    r.entriesBefore
        = sumsBefore(jet, QStringLiteral("vi"), QStringLiteral("viTyyppi"), QStringLiteral("viArvo"));
    r.previousBefore
        = sumsBefore(jet, QStringLiteral("viE"), QStringLiteral("viETyyppi"), QStringLiteral("viEArvo"));

    const QHash<QString, QSet<QString>> layout = currentLayout();
    QString failure;
    {
        ScopedConnection connection(temp.path);
        QSqlDatabase& db = connection.db();
        try {
            if (!connection.isOpen())
                throw DatabaseError(ErrorText::technical(db.lastError().text()));
            if (const QString refusal = DatabaseFile::durableWrites(db); !refusal.isEmpty())
                throw DatabaseError(refusal);
            {
                Transaction transaction(db);
                Schema::createCoreTables(db);
                for (const JetTable& table : jet.tables) {
                    if (Schema::tableMissing(db, table.name))
                        Schema::createUpgradeTable(db, table.name);
                    // Fields of the old file that the new table lacks are added, so nothing is left
                    // behind; a later upgrade step finds them there.
                    const QSet<QString> present = fieldsOf(db, table.name);
                    QStringList names, marks;
                    for (const JetColumn& c : table.columns) {
                        if (!present.contains(c.name.toLower()))
                            Sql::run(db,
                                QStringLiteral("ALTER TABLE %1 ADD COLUMN %2 %3")
                                    .arg(quoted(table.name), quoted(c.name), columnType(c.kind)))
                                .finish();
                        if (!layout.value(table.name.toLower()).contains(c.name.toLower()))
                            r.extraFields << table.name + u'.' + c.name;
                        names << quoted(c.name);
                        marks << QStringLiteral("?");
                    }
                    QList<bool> money;
                    for (const JetColumn& c : table.columns)
                        money << isMoneyField(c.name);
                    QSqlQuery insert = Sql::prepare(db,
                        QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                            .arg(quoted(table.name), names.join(QStringLiteral(", ")),
                                marks.join(QStringLiteral(", "))));
                    for (const QVariantList& row : table.rows) {
                        for (int i = 0; i < row.size(); ++i)
                            insert.bindValue(
                                i, storedValue(row.at(i), table.columns.at(i).kind, money.at(i)));
                        Sql::exec(insert);
                    }
                    insert.finish();
                    if (table.lastCounter > 0)
                        Schema::reserveIds(db, table.name, table.lastCounter);
                    const qint64 written
                        = Sql::scalar(db, QStringLiteral("SELECT COUNT(*) FROM %1").arg(quoted(table.name)))
                              .toLongLong();
                    r.tables.append({ table.name, table.rows.size(), written });
                }
                transaction.commitOrThrow();
            }
            const Schema::UpgradeResult upgrade = Schema::UpdateDatabase(db);
            if (!upgrade.ok)
                throw DatabaseError(QStringLiteral("Rakenteen päivitys ei onnistunut (vaihe %1): %2")
                                        .arg(upgrade.failedStep)
                                        .arg(upgrade.error));
            r.upgradeSteps = upgrade.appliedSteps;
            r.entriesAfter
                = sumsAfter(db, QStringLiteral("vi"), QStringLiteral("viTyyppi"), QStringLiteral("viArvo"));
            r.previousAfter = sumsAfter(
                db, QStringLiteral("viE"), QStringLiteral("viETyyppi"), QStringLiteral("viEArvo"));
        } catch (const DatabaseError& e) {
            failure = e.text();
        }
    }
    if (!failure.isEmpty())
        return refuse(QStringLiteral("Muunnettua kirjanpitoa ei voitu kirjoittaa kansioon %1: %2")
                          .arg(QDir::toNativeSeparators(folder), failure));

    for (const TableCount& t : std::as_const(r.tables))
        if (t.read != t.written)
            return refuse(
                QStringLiteral("Taulusta %1 luettiin %2 riviä, mutta muunnettuun kirjanpitoon tuli %3.")
                    .arg(t.table)
                    .arg(t.read)
                    .arg(t.written));
    if (!(r.entriesBefore == r.entriesAfter) || !(r.previousBefore == r.previousAfter))
        return refuse(QStringLiteral("Vientien summat eivät täsmää muunnoksen jälkeen."));

    // The whole new file is checked as every opening checks it.
    const QString check = QStringLiteral("vorkam_jet_check_") + QUuid::createUuid().toString(QUuid::Id128);
    const OpenResult checked = DatabaseFile::open(temp.path, check, true);
    DatabaseFile::close(check);
    if (!checked)
        return refuse(
            QStringLiteral("Muunnettu kirjanpito ei läpäissyt tarkistusta: %1").arg(checked.message));

    // The old file is kept as a copy under its kept name, and the new book replaces it in one
    // rename: whenever the program is stopped, the books' name holds the old file or the new one.
    FileOps& ops = FileOps::instance();
    r.original = keptName(path);
    if (!ops.copy(r.books, r.original))
        return refuse(QStringLiteral("Alkuperäistä tiedostoa ei voitu tallentaa nimelle %1.")
                          .arg(QDir::toNativeSeparators(r.original)));
    // The new book may be read and written as the old file could, and by its owner at least.
    QFile::setPermissions(temp.path, permissions | QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    if (!ops.replace(temp.path, r.books)) {
        ops.remove(r.original);
        return refuse(QStringLiteral("Muunnettua kirjanpitoa ei voitu tallentaa nimelle %1.")
                          .arg(QDir::toNativeSeparators(r.books)));
    }
    temp.kept = true;
    r.ok = true;

    const QString report = reportName(path);
    QSaveFile file(report);
    if (file.open(QIODevice::WriteOnly) && file.write((r.report() + u'\n').toUtf8()) >= 0 && file.commit())
        r.reportFile = report;
    return r;
}

JetConversion::Outcome JetConversion::offer(const QString& path)
{
    Dialogs& dialogs = Dialogs::instance();
    if (!dialogs.question(
            QStringLiteral("Tietokanta %1 on vanhassa muodossa. Muunnetaanko se Vorkamin muotoon? "
                           "Alkuperäinen tiedosto säilytetään nimellä %2.")
                .arg(path, QFileInfo(keptName(path)).fileName())))
        return Outcome::Declined;
    // A large book takes a few seconds: the pointer tells that Vorkam is working.
    const bool gui = qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
    if (gui)
        QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
    const Result r = JetConversion().convert(path);
    if (gui)
        QGuiApplication::restoreOverrideCursor();
    if (!r.ok) {
        dialogs.error(QStringLiteral(
            "Tietokannan muuntaminen ei onnistunut.\n%1\nAlkuperäistä tiedostoa ei ole muutettu.")
                          .arg(r.message));
        return Outcome::Failed;
    }
    dialogs.information(r.report() + QStringLiteral("\n\n")
        + (r.reportFile.isEmpty() ? QStringLiteral("Raporttia ei voitu tallentaa kirjanpidon viereen.")
                                  : QStringLiteral("Raportti on tallessa tiedostossa %1.")
                                        .arg(QDir::toNativeSeparators(r.reportFile))));
    return Outcome::Converted;
}
