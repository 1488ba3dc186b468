#include "core/PageCache.h"

#include <QSqlQuery>

PageCache::PageCache(const QSqlDatabase& db, int mebibytes)
    : m_db(db)
{
    QSqlQuery q(m_db);
    if (q.exec(QStringLiteral("PRAGMA cache_size")) && q.next())
        m_before = q.value(0);
    // A negative size is in KiB; the cache grows only as far as the write needs.
    q.exec(QStringLiteral("PRAGMA cache_size = %1").arg(-qint64(mebibytes) * 1024));
}

PageCache::~PageCache()
{
    if (m_before.isValid() && m_db.isOpen())
        QSqlQuery(m_db).exec(QStringLiteral("PRAGMA cache_size = %1").arg(m_before.toLongLong()));
}
