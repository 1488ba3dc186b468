#pragma once

#include "accounts/DailyBalances.h"

#include <QChartView>
#include <QDate>
#include <vector>

class QLineSeries;
class QCategoryAxis;

// The balance of an account at the end of each day of the fiscal year as a step line: level
// from one day with entries to the next, euros in the Finnish way on the left, the year's
// quarters along the bottom.
class BalanceChart final : public QChartView {
    Q_OBJECT

public:
    explicit BalanceChart(QWidget* parent = nullptr);

    void nayta(const std::vector<DailyBalances::Rivi>& rivit, const QDate& alku, const QDate& loppu);

    // The line's corner points: (days from the year's start, euros).
    QList<QPointF> pisteet() const;
    // The labels of the axes, in order: for tests and for reading without the picture.
    QStringList euroTekstit() const;
    QStringList paivaTekstit() const;

    // "1 000 €", "-250 €", "12,50 €": the axis label of an amount in euros, steps of `askel`.
    static QString euroTeksti(double euroa, double askel);
    // A round step (1, 2 or 5 times a power of ten) that splits `vali` into about `osia` parts.
    static double pyoreaAskel(double vali, int osia);

private:
    QLineSeries* m_sarja = nullptr;
    QCategoryAxis* m_euroAkseli = nullptr;
    QCategoryAxis* m_paivaAkseli = nullptr;
};
