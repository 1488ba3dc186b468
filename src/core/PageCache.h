#pragma once

#include <QSqlDatabase>
#include <QVariant>

// A larger page cache on one connection while a long write runs in one transaction: the
// engine then keeps the changed pages in memory until the commit instead of spilling them to
// the file (and syncing the journal) half-way. The earlier size comes back when it ends.
class PageCache final {
public:
    PageCache(const QSqlDatabase& db, int mebibytes);
    ~PageCache();
    PageCache(const PageCache&) = delete;
    PageCache& operator=(const PageCache&) = delete;

private:
    QSqlDatabase m_db;
    QVariant m_before;
};
