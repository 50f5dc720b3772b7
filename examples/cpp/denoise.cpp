// Removes noise from a signal: its small wavelet coefficients are mostly noise, so they go.
#include <efihost/host.h>
#include <cmath>
#include <cstdio>
#include <random>

using Signal = std::vector<double>;

double decibels(const Signal& clean, const Signal& other) {  // signal-to-noise ratio
    double signal = 0, noise = 0;
    for (std::size_t i = 0; i < clean.size(); ++i) {
        signal += clean[i] * clean[i];
        noise += (other[i] - clean[i]) * (other[i] - clean[i]);
    }
    return 10 * std::log10(signal / noise);
}

int main() {
    Signal clean(1024), noisy(1024);
    std::mt19937 generator(1);
    std::normal_distribution<double> noise(0, 0.2);
    for (int i = 0; i < 1024; ++i) {
        clean[i] = std::sin(6e-5 * i * i);  // a chirp
        noisy[i] = clean[i] + noise(generator);
    }

    efihost::Pack pack;
    efihost::Host host;
    auto w = host.call(pack, "symmlet", 8);
    auto y = host.call(pack, "dwt", efihost::Value::column(noisy), 4, w).reals();
    const double threshold = 0.2 * std::sqrt(2 * std::log(1024));
    for (int i = 64; i < 1024; ++i) {  // the first 64 are the smooth part, which stays
        if (std::abs(y[i]) < threshold) y[i] = 0;
    }
    auto denoised = host.call(pack, "idwt", efihost::Value::column(y), 4, w).reals();

    std::printf("%.1f dB with noise, %.1f dB without\n", decibels(clean, noisy), decibels(clean, denoised));
}
