// A C++ program as FFTW's users write them: plans in a class, std::complex and std::vector. Convolves two
// polynomials with real transforms and compares the coefficients.
#include <cmath>
#include <complex>
#include <cstdio>
#include <fftw3.h>
#include <memory>
#include <stdexcept>
#include <vector>

namespace {

struct plan_deleter {
    void operator()(fftw_plan plan) const { fftw_destroy_plan(plan); }
};
using plan = std::unique_ptr<std::remove_pointer_t<fftw_plan>, plan_deleter>;

class convolver {
  public:
    explicit convolver(int n) : data(n), spectrum(n / 2 + 1)
    {
        auto *z = reinterpret_cast<fftw_complex *>(spectrum.data());
        there.reset(fftw_plan_dft_r2c_1d(n, data.data(), z, FFTW_ESTIMATE));
        back.reset(fftw_plan_dft_c2r_1d(n, z, data.data(), FFTW_ESTIMATE | FFTW_DESTROY_INPUT));
        if (!there || !back)
            throw std::runtime_error("no plan");
    }

    std::vector<std::complex<double>> transform(const std::vector<double> &coefficients)
    {
        std::copy(coefficients.begin(), coefficients.end(), data.begin());
        std::fill(data.begin() + static_cast<std::ptrdiff_t>(coefficients.size()), data.end(), 0.0);
        fftw_execute(there.get());
        return spectrum;
    }

    std::vector<double> product(const std::vector<double> &a, const std::vector<double> &b)
    {
        const auto first = transform(a);
        transform(b);
        for (std::size_t i = 0; i < first.size(); ++i)
            spectrum[i] *= first[i] / static_cast<double>(data.size());
        fftw_execute(back.get());
        return data;
    }

  private:
    std::vector<double> data;
    std::vector<std::complex<double>> spectrum;
    plan there, back;
};

} // namespace

int main()
{
    std::vector<double> a, b;
    for (int i = 0; i < 90; ++i) {
        a.push_back(i % 7 - 3);
        b.push_back(i % 5 + 1);
    }
    convolver by_transform(180);
    const std::vector<double> result = by_transform.product(a, b);
    double error = 0;
    for (int k = 0; k < 180; ++k) {
        double sum = 0;
        for (int i = 0; i < 90; ++i)
            if (k - i >= 0 && k - i < 90)
                sum += a[static_cast<std::size_t>(i)] * b[static_cast<std::size_t>(k - i)];
        error = std::max(error, std::abs(sum - result[static_cast<std::size_t>(k)]));
    }
    std::printf("product of polynomials: wrong by %g\n", error);
    return error < 1e-10 ? 0 : 1;
}
