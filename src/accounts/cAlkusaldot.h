#pragma once

#include "core/Money.h"

// Opening balances of one account: the sums of its opening entries, split by side and by
// fiscal year. A plain value; every amount starts at zero.
class cAlkusaldot final {
public:
    Money AlkusaldoDebet() const { return m_alkusaldoDebet; }
    void setAlkusaldoDebet(Money value) { m_alkusaldoDebet = value; }
    Money AlkusaldoKredit() const { return m_alkusaldoKredit; }
    void setAlkusaldoKredit(Money value) { m_alkusaldoKredit = value; }
    Money EdAlkusaldoDebet() const { return m_edAlkusaldoDebet; }
    void setEdAlkusaldoDebet(Money value) { m_edAlkusaldoDebet = value; }
    Money EdAlkusaldoKredit() const { return m_edAlkusaldoKredit; }
    void setEdAlkusaldoKredit(Money value) { m_edAlkusaldoKredit = value; }

private:
    Money m_alkusaldoDebet;
    Money m_alkusaldoKredit;
    Money m_edAlkusaldoDebet;
    Money m_edAlkusaldoKredit;
};
