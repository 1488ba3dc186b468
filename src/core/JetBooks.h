#pragma once

#include <QDataStream>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantList>

// What the reader takes out of an old Jet file: the tables Vorkam knows, with every row, and
// the names of the tables it does not know. Values are already in Vorkam's storage form (see
// JetColumn::Kind), so the conversion only writes them.
struct JetColumn {
    enum class Kind : qint8 {
        Integer, // qint64
        Money, // qint64 ten-thousandths, read from the Currency bytes
        YesNo, // 0 or 1
        Date, // "YYYY-MM-DD"
        Text, // QString
        Real, // double
        Decimal, // exact decimal text ("-12.3400") of a Jet Decimal column
        Binary, // QByteArray
    };
    QString name;
    Kind kind = Kind::Text;
    bool counter = false; // the table's automatic number
};

struct JetTable {
    QString name;
    QList<JetColumn> columns;
    QList<QVariantList> rows; // one value per column; a null QVariant is NULL
    qint64 declaredRows = 0; // what the table's definition says it holds
    qint64 lastCounter = 0; // the last automatic number given, 0 when none

    int column(const QString& field) const;
};

struct JetBooks {
    int jetVersion = 0; // 3 or 4
    int codePage = 0; // of Jet 3 texts
    QList<JetTable> tables;
    QStringList unknownTables; // user tables Vorkam does not know: reported, never copied
    int timesDropped = 0; // date/time values whose time of day Vorkam's dates cannot hold

    const JetTable* table(const QString& name) const;
};

QDataStream& operator<<(QDataStream& out, const JetBooks& books);
QDataStream& operator>>(QDataStream& in, JetBooks& books);
