#pragma once

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <vector>

// Finds vouchers of the current year by the amount of one of their entries and by a word of
// their description. Carriers numbered below 0 are never found.
class VoucherSearch final {
public:
    struct Osuma {
        qint32 toId = 0;
        qint32 numero = 0;
        QDate paiva;
        QString selite;
        // "12 - 5.3.2011 - Toimiston vuokra"
        QString rivi() const;
    };
    struct Tulos {
        // The message that stopped the search; empty when it ran.
        QString virhe;
        std::vector<Osuma> osumat;
        // "Ei löytynyt.", "Löytyi 1 tosite.", "Löytyi 3 tositetta."
        QString yhteenveto() const;
    };

    // Both criteria may be given: the vouchers with an entry of the amount are listed first,
    // once per such entry, then those whose description holds the text anywhere (case aside,
    // the Finnish letters too; % and _ are letters like any other). Throws DatabaseError.
    static Tulos hae(const QSqlDatabase& db, const QString& arvo, const QString& selite);

private:
    static void arvolla(const QSqlDatabase& db, qint64 raw, std::vector<Osuma>& osumat);
    static void selitteella(const QSqlDatabase& db, const QString& teksti, std::vector<Osuma>& osumat);
};
