#pragma once

#include <QElapsedTimer>

#include <algorithm>
#include <functional>
#include <vector>

// The median wall-clock time of `runs` runs of `work`, in milliseconds.
inline double medianMs(int runs, const std::function<void()>& work)
{
    std::vector<double> ms;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer t;
        t.start();
        work();
        ms.push_back(double(t.nsecsElapsed()) / 1e6);
    }
    std::sort(ms.begin(), ms.end());
    return ms[ms.size() / 2];
}
