#pragma once

#include <QDate>
#include <QString>

// One finding of the voucher check: the voucher it concerns and what is wrong with it.
struct cTositeTarkistusVirhe {
    qint32 ToId = 0;
    qint32 Numero = 0;
    bool Avaustosite = false;
    bool Paatostosite = false;
    QDate Paiva;
    QString Selite;
    QString Teksti;

    // The line the findings list shows: the text, after a note of the voucher's kind.
    QString rivi() const
    {
        if (Avaustosite)
            return QStringLiteral("Tarkista avaustosite: ") + Teksti;
        if (Paatostosite)
            return QStringLiteral("Tarkista päätöstosite: ") + Teksti;
        return Teksti;
    }
};
