#pragma once

#include <QSqlQuery>
#include <QString>
#include <QVariant>

// What the rows of tula and tase begin with alike: the level, the caption, the template row, the
// total mark and the group-row flag. A separator line has no caption, row or mark.
namespace StatementRows {

template <class Line> void bindHeading(QSqlQuery& q, const Line& line)
{
    const bool separator = line.kind == Line::Kind::Separator;
    q.addBindValue(line.level);
    q.addBindValue(separator ? QVariant(QMetaType(QMetaType::QString)) : QVariant(line.teksti));
    q.addBindValue(separator ? QVariant(QMetaType(QMetaType::LongLong)) : QVariant(line.mrId));
    q.addBindValue(separator ? QVariant(QMetaType(QMetaType::QString))
                             : QVariant(line.kind == Line::Kind::Total || line.kind == Line::Kind::Subtotal
                                     ? QStringLiteral("**")
                                     : QStringLiteral("")));
    q.addBindValue(line.groupRow() ? 1 : 0);
}

} // namespace StatementRows
