#pragma once

#include <QString>

// One finding of the template checks: a row of the tk work table.
struct cMalliVirhe {
    // tkTyyppi: which check found it.
    enum Tyyppi : qint16 {
        KaavaJarjestys = 1,
        SamaTili = 2,
        TiliKayttamatta = 3,
        KaavaKayttamatta = 4,
        VoittoRivit = 5,
        TiletPaaryhmassa = 6,
        TiletJaKaava = 7,
        Saldopuoli = 8,
        EiStandardi = 9,
        EiTarkistettu = 10,
    };
    qint16 tyyppi = 0;
    // tkTeksti: the message of the check.
    QString teksti;
    // tkParam: where to look, its parts joined by " / " (the template's name and the captions
    // from the main group down to the row), an account as "1910 Pankkitili", or " ".
    QString param;

    bool operator==(const cMalliVirhe&) const = default;
};
