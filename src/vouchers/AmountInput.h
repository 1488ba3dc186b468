#pragma once

#include "core/Money.h"

#include <QString>

// What the user typed in an amount cell, read the Finnish way ("12,50", "1 234,50").
struct AmountInput {
    enum class Result { Ok, NotANumber, Negative, TooManyDecimals, TooLarge };
    Result result = Result::Ok;
    Money value;
    // The message shown for a refused amount; "" when accepted.
    QString message() const;

    // An empty text is 0. The largest amount accepted is 999 999 999,99.
    static AmountInput parse(const QString& text);
};
