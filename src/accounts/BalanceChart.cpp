#include "accounts/BalanceChart.h"

#include <QCategoryAxis>
#include <QChart>
#include <QLineSeries>
#include <QLocale>
#include <algorithm>
#include <cmath>

BalanceChart::BalanceChart(QWidget* parent)
    : QChartView(parent)
{
    auto* chart = new QChart;
    chart->legend()->hide();
    chart->setTitle(QStringLiteral("Saldo päivän lopussa"));
    chart->setMargins(QMargins(4, 4, 4, 4));
    m_sarja = new QLineSeries(chart);
    chart->addSeries(m_sarja);
    m_euroAkseli = new QCategoryAxis(chart);
    m_paivaAkseli = new QCategoryAxis(chart);
    for (QCategoryAxis* a : { m_euroAkseli, m_paivaAkseli })
        a->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);
    chart->addAxis(m_euroAkseli, Qt::AlignLeft);
    chart->addAxis(m_paivaAkseli, Qt::AlignBottom);
    m_sarja->attachAxis(m_euroAkseli);
    m_sarja->attachAxis(m_paivaAkseli);
    setChart(chart);
    setRenderHint(QPainter::Antialiasing);
    setMinimumSize(420, 300);
}

double BalanceChart::pyoreaAskel(double vali, int osia)
{
    if (!(vali > 0))
        return 1;
    const double raaka = vali / std::max(1, osia);
    const double potenssi = std::pow(10.0, std::floor(std::log10(raaka)));
    for (const double kerroin : { 1.0, 2.0, 5.0, 10.0 })
        if (kerroin * potenssi >= raaka)
            return kerroin * potenssi;
    return 10 * potenssi;
}

QString BalanceChart::euroTeksti(double euroa, double askel)
{
    static const QLocale fi(QLocale::Finnish, QLocale::Finland);
    // Whole euros while the steps are whole; cents only on a scale of cents.
    const int desimaalit = askel >= 1 ? 0 : 2;
    // The minus as Vorkam writes amounts elsewhere, not the locale's own sign.
    QString teksti = fi.toString(euroa, 'f', desimaalit).replace(QChar(0x2212), u'-');
    if (teksti == u"-0" || teksti == u"-0,00")
        teksti.remove(0, 1);
    return teksti + QStringLiteral("\u00a0€");
}

void BalanceChart::nayta(const std::vector<DailyBalances::Rivi>& rivit, const QDate& alku, const QDate& loppu)
{
    // The balance holds until the next day with entries: two corners per day.
    QList<QPointF> pisteet;
    const qint64 paivia = std::max<qint64>(1, alku.daysTo(loppu) + 1);
    double saldo = 0;
    pisteet.append({ 0, 0 });
    for (const DailyBalances::Rivi& r : rivit) {
        const double x = double(alku.daysTo(r.paiva));
        pisteet.append({ x, saldo });
        saldo = r.saldo.toDouble();
        pisteet.append({ x, saldo });
    }
    pisteet.append({ double(paivia), saldo });
    m_sarja->replace(pisteet);

    double pienin = 0, suurin = 0;
    for (const QPointF& p : pisteet) {
        pienin = std::min(pienin, p.y());
        suurin = std::max(suurin, p.y());
    }
    const double askel = pyoreaAskel(std::max(suurin - pienin, 1.0), 6);
    const double ala = std::floor(pienin / askel) * askel;
    const double yla = std::max(std::ceil(suurin / askel) * askel, ala + askel);
    for (const QString& label : m_euroAkseli->categoriesLabels())
        m_euroAkseli->remove(label);
    m_euroAkseli->setStartValue(ala);
    for (double v = ala; v <= yla + askel / 2; v += askel)
        m_euroAkseli->append(euroTeksti(std::abs(v) < askel / 2 ? 0 : v, askel), v);
    m_euroAkseli->setRange(ala, yla);

    // The year's first day and every third month's first day after it: room for each label.
    for (const QString& label : m_paivaAkseli->categoriesLabels())
        m_paivaAkseli->remove(label);
    m_paivaAkseli->setStartValue(0);
    m_paivaAkseli->append(QStringLiteral("%1.%2.").arg(alku.day()).arg(alku.month()), 0);
    QDate kuu(alku.year(), alku.month(), 1);
    for (kuu = kuu.addMonths(3); kuu <= loppu; kuu = kuu.addMonths(3))
        m_paivaAkseli->append(
            QStringLiteral("%1.%2.").arg(kuu.day()).arg(kuu.month()), double(alku.daysTo(kuu)));
    m_paivaAkseli->setRange(0, double(paivia));
}

QList<QPointF> BalanceChart::pisteet() const { return m_sarja->points(); }

QStringList BalanceChart::euroTekstit() const { return m_euroAkseli->categoriesLabels(); }

QStringList BalanceChart::paivaTekstit() const { return m_paivaAkseli->categoriesLabels(); }
