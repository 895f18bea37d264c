// Histogram summary figures of the companion object.

#include <vistrane/companion/helper.h>

#include <cmath>

void C_Helper::ComputeStatistics(int nBins, const LONG* counts, LONG* median, double* mean,
                                 double* standardDeviation) const {
    // Counts are signed 32-bit per bin; the totals of a 4096 x 3072 image already pass 2^31 in
    // the weighted sums, so they are kept in 64 bits and doubles.
    long long total = 0;
    double sum = 0.0;
    for (int i = 0; i < nBins; ++i) {
        total += counts[i];
        sum += static_cast<double>(counts[i]) * i;
    }
    *median = 0;
    *mean = 0.0;
    *standardDeviation = 0.0;
    if (total <= 0) {
        return;
    }
    const double m = sum / static_cast<double>(total);
    double squares = 0.0;
    for (int i = 0; i < nBins; ++i) {
        const double d = i - m;
        squares += static_cast<double>(counts[i]) * d * d;
    }
    const long long half = (total + 1) / 2;
    long long running = 0;
    for (int i = 0; i < nBins; ++i) {
        running += counts[i];
        if (running >= half) {
            *median = i;
            break;
        }
    }
    *mean = m;
    *standardDeviation = std::sqrt(squares / static_cast<double>(total));
}
