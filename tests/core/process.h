// What the tests of the core share: a kernel to call, and checks that run in a process of their own.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <unistd.h>
#include <vector>

extern "C" void xkl_blas_dgemm(const char *transa, const char *transb, const int64_t *m, const int64_t *n,
                               const int64_t *k, const double *alpha, const double *a, const int64_t *lda,
                               const double *b, const int64_t *ldb, const double *beta, double *c,
                               const int64_t *ldc, int64_t, int64_t);

// Sets a variable for the processes that are started while it lives.
class variable {
  public:
    variable(const char *name, const std::string &value) : name_(name) { setenv(name, value.c_str(), 1); }
    ~variable() { unsetenv(name_); }

  private:
    const char *name_;
};

// The product of two n by n matrices of ones: every element is n.
inline bool product_is_right(int64_t n)
{
    const double one = 1, zero = 0;
    const auto size = static_cast<size_t>(n * n);
    const std::vector<double> a(size, 1), b(size, 1);
    std::vector<double> c(size, -1);
    xkl_blas_dgemm("N", "N", &n, &n, &n, &one, a.data(), &n, b.data(), &n, &zero, c.data(), &n, 1, 1);
    return std::ranges::all_of(c, [n](double each) { return each == static_cast<double>(n); });
}

// Runs a check in a new process. What it prints is shown when it fails.
template <class Check>
void in_new_process(const Check &check)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            alarm(60);
            check();
            std::exit(testing::Test::HasFailure() ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
}
