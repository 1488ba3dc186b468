#pragma once

#include "TestEnv.h"
#include "core/DBC.h"
#include "core/Money.h"
#include "core/ProgramSettings.h"
#include "core/Schema.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QTest>
#include <QVariant>

inline Money euros(const char* text) { return *Money::parse(QString::fromLatin1(text)); }

// An empty association database of the current layout, opened as the program's database.
struct AccountsFixture {
    TestEnv env;
    QString file = env.path(QStringLiteral("tilit.mdb"));

    AccountsFixture()
    {
        bool ok = false;
        withDatabase(file, [&](QSqlDatabase& db) {
            Schema::createCoreTables(db);
            ok = Schema::UpdateDatabase(db).ok;
        });
        if (!ok)
            qFatal("cannot create the test database");
        ProgramSettings::installation().Database = file;
    }

    QSqlDatabase db() const { return DBC::instance().AvaaDB(); }

    // Runs a statement with bound values; fails the program on an error so a broken fixture
    // never passes as a result.
    QSqlQuery exec(const QString& sql, const QVariantList& values = {}) const
    {
        QSqlQuery q(db());
        q.prepare(sql);
        for (const QVariant& v : values)
            q.addBindValue(v);
        if (!q.exec())
            qFatal("%s: %s", qPrintable(sql), qPrintable(q.lastError().text()));
        return q;
    }

    // Adds an account and gives its tlID; a null name is stored as NULL.
    qint32 tili(qint32 numero, const QVariant& nimi, const QString& kuvaus = QStringLiteral(" ")) const
    {
        return exec(QStringLiteral("INSERT INTO tl (tlNumero, tlNimi, tlKuvaus) VALUES (?, ?, ?)"),
            { numero, nimi, kuvaus })
            .lastInsertId()
            .toInt();
    }

    // Adds an entry of this (`edellinen` false) or the previous fiscal year.
    void vienti(qint32 tlID, const QString& tyyppi, Money arvo, bool avaus, bool edellinen = false) const
    {
        const QString sql = edellinen
            ? QStringLiteral(
                "INSERT INTO viE (viEtoID, viEtlID, viETyyppi, viEArvo, viESelite, viEAvausvienti) "
                "VALUES (1, ?, ?, ?, 'x', ?)")
            : QStringLiteral("INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viSelite, viAvausvienti) "
                             "VALUES (1, ?, ?, ?, 'x', ?)");
        exec(sql, { tlID, tyyppi, arvo.raw(), avaus ? 1 : 0 });
    }

    // Adds a voucher of this fiscal year and gives its toID; `pvm` as 2011-01-31.
    qint32 tosite(qint32 numero, const QString& pvm, const QString& selite = QStringLiteral("Tosite"),
        bool avaus = false) const
    {
        return exec(QStringLiteral(
                        "INSERT INTO \"to\" (toNumero, toPvm, toSelite, toAvaustosite) VALUES (?, ?, ?, ?)"),
            { numero, pvm, selite, avaus ? 1 : 0 })
            .lastInsertId()
            .toInt();
    }

    // Adds an entry to the voucher `toID`: an opening entry on an opening voucher.
    void kirjaus(
        qint32 toID, qint32 tlID, const char* tyyppi, const char* arvo, bool automaatti = false) const
    {
        exec(QStringLiteral("INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viAutomaatti, viAvausvienti) "
                            "VALUES (?, ?, ?, ?, ?, (SELECT toAvaustosite FROM \"to\" WHERE toID = ?))"),
            { toID, tlID, QString::fromLatin1(tyyppi), euros(arvo).raw(), automaatti ? 1 : 0, toID });
    }

    QVariant value(const QString& sql, const QVariantList& values = {}) const
    {
        QSqlQuery q = exec(sql, values);
        return q.next() ? q.value(0) : QVariant();
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
