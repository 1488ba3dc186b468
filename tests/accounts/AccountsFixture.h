#pragma once

#include "TestEnv.h"
#include "core/DBC.h"
#include "core/DatabaseError.h"
#include "core/Money.h"
#include "core/ProgramSettings.h"
#include "core/Schema.h"

#include <QSqlQuery>

inline Money euros(const char* text) { return *Money::parse(QString::fromLatin1(text)); }

// An empty association database of the current layout, opened as the program's database. A
// statement that fails throws DatabaseError, so a broken set-up never passes as a result.
struct AccountsFixture {
    TestEnv env;

    AccountsFixture()
    {
        const QString file = env.path(QStringLiteral("tilit.mdb"));
        withDatabase(file, [](QSqlDatabase& db) {
            Schema::createCoreTables(db);
            if (!Schema::UpdateDatabase(db).ok)
                qFatal("cannot create the test database");
        });
        ProgramSettings::installation().Database = file;
    }

    QSqlDatabase db() const { return DBC::instance().AvaaDB(); }
    QSqlQuery exec(const QString& sql, const QVariantList& v = {}) const { return Sql::run(db(), sql, v); }
    QVariant value(const QString& sql, const QVariantList& v = {}) const { return Sql::scalar(db(), sql, v); }

    // Adds an account and gives its tlID; a null name is stored as NULL.
    qint32 tili(qint32 numero, const QVariant& nimi, const QString& kuvaus = QStringLiteral(" ")) const
    {
        const QString sql = QStringLiteral("INSERT INTO tl (tlNumero, tlNimi, tlKuvaus) VALUES (?, ?, ?)");
        return exec(sql, { numero, nimi, kuvaus }).lastInsertId().toInt();
    }

    // Adds a voucher of this fiscal year and gives its toID; `pvm` as 2011-01-31.
    qint32 tosite(qint32 numero, const QString& pvm, const QString& selite, bool avaus = false) const
    {
        const QString sql = QStringLiteral(
            "INSERT INTO \"to\" (toNumero, toPvm, toSelite, toAvaustosite) VALUES (?, ?, ?, ?)");
        return exec(sql, { numero, pvm, selite, avaus ? 1 : 0 }).lastInsertId().toInt();
    }

    // Adds an entry to the voucher `toID` (which need not exist) of this or the previous year.
    void vienti(qint32 toID, qint32 tlID, const char* tyyppi, const char* arvo, bool automaatti = false,
        bool avaus = false, bool edellinen = false) const
    {
        exec(QStringLiteral("INSERT INTO vi%1 (vi%1toID, vi%1tlID, vi%1Tyyppi, vi%1Arvo, vi%1Avausvienti, "
                            "vi%1Automaatti) VALUES (?, ?, ?, ?, ?, ?)")
                 .arg(edellinen ? QStringLiteral("E") : QString()),
            { toID, tlID, QString::fromLatin1(tyyppi), euros(arvo).raw(), avaus ? 1 : 0,
                automaatti ? 1 : 0 });
    }

    int tileja() const { return value(QStringLiteral("SELECT COUNT(*) FROM tl")).toInt(); }
    QVariant kentta(qint32 tlID, const char* column) const
    {
        return value(QStringLiteral("SELECT %1 FROM tl WHERE tlID = ?").arg(QLatin1String(column)), { tlID });
    }
    QString nimi(qint32 tlID) const { return kentta(tlID, "tlNimi").toString(); }
};

// Messages that more than one test expects.
inline const QString FourDigits = QStringLiteral("Tilinumeron tulee olla neljä numeroa pitkä.");
inline const QString NoName = QStringLiteral("Tilillä tulee olla nimi.");
inline const QString TreeError = QStringLiteral("Virhe luotaessa hakemistopuuta tileistä.\n");
inline const QString HasEntries
    = QStringLiteral("Tilillä on vientejä kuluvalla tai edellisellä tilikaudella eikä sitä voida poistaa.");
