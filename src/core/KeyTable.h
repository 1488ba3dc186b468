#pragma once

#include <QHash>
#include <vector>

// A value per row key (an automatic ID) for the loops that read a year's hundred thousand
// vouchers and look each entry's voucher up: keys as indexes of a table while they stay small,
// others in a hash. Keys without a value give `T {}`.
template <typename T> class KeyTable final {
public:
    void set(qint64 key, T value)
    {
        if (key >= 0 && key < Dense) {
            if (size_t(key) >= m_table.size())
                m_table.resize(std::max(size_t(key) + 1, m_table.size() * 2), T {});
            m_table[size_t(key)] = value;
        } else {
            m_far.insert(key, value);
        }
    }
    T value(qint64 key) const
    {
        if (key >= 0 && size_t(key) < m_table.size())
            return m_table[size_t(key)];
        return key >= 0 && key < Dense ? T {} : m_far.value(key, T {});
    }

private:
    static constexpr qint64 Dense = 64 * 1024 * 1024;
    std::vector<T> m_table;
    QHash<qint64, T> m_far;
};
