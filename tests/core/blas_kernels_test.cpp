// Packed operands, kernels made for one shape, and direct calls: all compute what the plain product does.
#include "blas_reference.h"

#include "service/service_entries.h"

namespace {
using namespace blas_test;

BLAS_ENTRY(, gemm);
BLAS_ENTRY(, syrk);
BLAS_ENTRY(, trsm);
BLAS_ENTRY(, axpy);
BLAS_ENTRY(, gemm_direct);
BLAS_ENTRY(, syrk_direct);
BLAS_ENTRY(, trsm_direct);
BLAS_ENTRY(, axpy_direct);
BLAS_ENTRY(xkl_, gemm_jit);
BLAS_ENTRY(xkl_, gemm_direct_jit);
BLAS_ENTRY(xkl_jit_create_, gemm);
BLAS_ENTRY(xkl_jit_get_, gemm_ptr);

// Written by the handler below: the last argument that a routine refused.
std::string refused_name;
int64_t refused_position;
void remember_refusal(const char *name, const int64_t *position, int64_t length)
{
    refused_name.assign(name, length);
    refused_position = *position;
}

constexpr int64_t m = 37, n = 21, k = 70;

/// A product, plain, with the reference's C
template <class T>
struct kernels_for : ::testing::Test {
    const T alpha = scalar<T>(1.25, -.5), beta = scalar<T>(-.5, .75);
    const matrix<T> a{k, m}, b{k, n}, old{m, n};
    matrix<T> c = old, expected = old;

    void SetUp() override
    {
        xkl_serv_set_xerbla_interface(remember_refusal);
        refused_name.clear();
    }
    void TearDown() override { xkl_serv_set_xerbla_interface(nullptr); }

    void expect_product(const char *what)
    {
        expected = old;
        gemm<T>("T", "N", &m, &n, &k, &alpha, a.data(), &a.ld, b.data(), &b.ld, &beta, expected.data(),
                &c.ld, 1, 1);
        expect_same(what);
    }
    void expect_same(const char *what)
    {
        expect_update(c, T(1), op(expected, 'N'), T(0), old, k, what);
        c = old;
    }
};

template <class T>
struct packing : kernels_for<T> {
    static constexpr auto size = pick<T>(xkl_blas_sgemm_pack_get_size, xkl_blas_dgemm_pack_get_size, 0, 0);
    static constexpr auto pack = pick<T>(xkl_blas_sgemm_pack, xkl_blas_dgemm_pack, 0, 0);
    static constexpr auto compute = pick<T>(xkl_blas_sgemm_compute, xkl_blas_dgemm_compute, 0, 0);

    /// The operand packed at an address that is as badly aligned as it may be, with a sentinel behind its
    /// end
    std::vector<T> packed(char identifier, char trans, const T &scaled_by, const matrix<T> &from)
    {
        const int64_t bytes = size(&identifier, &m, &n, &k, 1);
        std::vector<T> place((bytes + sizeof(T) - 1) / sizeof(T) + 2, T(-77));
        pack(&identifier, &trans, &m, &n, &k, &scaled_by, from.data(), &from.ld, place.data() + 1, 1, 1);
        EXPECT_EQ(place.back(), T(-77));
        return std::vector<T>(place.begin() + 1, place.end());
    }
};
TYPED_TEST_SUITE(packing, real_types);

TYPED_TEST(packing, packed_operands_compute)
{
    using T = TypeParam;
    const T one = 1;
    const matrix<T> b_transposed = [&] {
        matrix<T> turned(n, k);
        for (int64_t j = 0; j < k; ++j)
            for (int64_t i = 0; i < n; ++i)
                turned(i, j) = this->b(j, i);
        return turned;
    }();
    const auto a = this->packed('A', 'T', this->alpha, this->a);
    const auto b =
        this->packed('b', 't', this->alpha, b_transposed); // copied since: a packed operand may move
    const auto b_plain = this->packed('B', 'N', one, this->b);
    const int64_t unused = 0;
    this->compute("P", "N", &m, &n, &k, a.data(), &unused, this->b.data(), &this->b.ld, &this->beta,
                  this->c.data(), &this->c.ld, 1, 1);
    this->expect_product("A packed");
    this->compute("T", "p", &m, &n, &k, this->a.data(), &this->a.ld, b.data(), &unused, &this->beta,
                  this->c.data(), &this->c.ld, 1, 1);
    this->expect_product("B packed, transposed");
    this->compute("P", "P", &m, &n, &k, a.data(), &unused, b_plain.data(), &unused, &this->beta,
                  this->c.data(), &this->c.ld, 1, 1);
    this->expect_product("both packed");
    const auto zero = this->packed('A', 'T', 0, matrix<T>(0, 0));
    this->compute("P", "P", &m, &n, &k, zero.data(), &unused, b_plain.data(), &unused, &one, this->c.data(),
                  &this->c.ld, 1, 1);
    EXPECT_EQ(this->c, this->old);
}

TYPED_TEST(packing, an_operand_packed_for_another_product_is_refused)
{
    using T = TypeParam;
    const auto a = this->packed('A', 'T', this->alpha, this->a);
    const int64_t more = k + 1, unused = 0;
    this->compute("P", "N", &m, &n, &more, a.data(), &unused, this->b.data(), &this->b.ld, &this->beta,
                  this->c.data(), &this->c.ld, 1, 1);
    EXPECT_EQ(refused_name, pick<T>("SGEMM_COMPUTE ", "DGEMM_COMPUTE ", "", ""));
    EXPECT_EQ(refused_position, 6);
    this->compute("T", "P", &m, &n, &k, this->a.data(), &this->a.ld, a.data(), &unused, &this->beta,
                  this->c.data(), &this->c.ld, 1, 1);
    EXPECT_EQ(refused_position, 8);
    EXPECT_EQ(this->c, this->old);
}

TYPED_TEST(packing, sizes_beyond_memory_are_not_small_ones)
{
    const int64_t huge = INT64_MAX / 2, none = 0;
    EXPECT_EQ(this->size("A", &huge, &n, &huge, 1), INT64_MAX);
    EXPECT_GT(this->size("B", &none, &none, &none, 1), 0);
}

template <class T>
struct jit : kernels_for<T> {
    int64_t create(void **jitter)
    {
        return xkl_jit_create_gemm<T>(jitter, "T", "N", &m, &n, &k, &this->alpha, &this->a.ld, &this->b.ld,
                                      &this->beta, &this->c.ld, 1, 1);
    }
};
TYPED_TEST_SUITE(jit, all_types);

TYPED_TEST(jit, a_kernel_computes_until_it_is_destroyed)
{
    using T = TypeParam;
    void *jitter = nullptr;
    ASSERT_EQ(this->create(&jitter), 0);
    ASSERT_NE(jitter, nullptr);
    const auto kernel =
        reinterpret_cast<void (*)(void *, const T *, const T *, T *)>(xkl_jit_get_gemm_ptr<T>(&jitter));
    ASSERT_NE(kernel, nullptr);
    kernel(jitter, this->a.data(), this->b.data(), this->c.data());
    this->expect_product("kernel");
    EXPECT_EQ((pick<T>(xkl_blas_xkl_jit_get_dgemm_ptr, xkl_blas_xkl_jit_get_cgemm_ptr,
                       xkl_blas_xkl_jit_get_zgemm_ptr, xkl_blas_xkl_jit_get_sgemm_ptr)(&jitter)),
              nullptr)
        << "of another type";
    EXPECT_EQ(xkl_blas_xkl_jit_destroy(&jitter), 0);
    EXPECT_EQ(jitter, nullptr);
    EXPECT_EQ(xkl_blas_xkl_jit_destroy(&jitter), 2);
    EXPECT_EQ(xkl_jit_get_gemm_ptr<T>(&jitter), nullptr);
}

TYPED_TEST(jit, foreign_memory_is_no_jitter)
{
    uint64_t words[16] = {};
    void *jitter = words;
    EXPECT_EQ(xkl_blas_xkl_jit_destroy(&jitter), 2);
    EXPECT_EQ(jitter, words);
    EXPECT_EQ(xkl_jit_get_gemm_ptr<TypeParam>(&jitter), nullptr);
}

TYPED_TEST(jit, without_memory_the_handle_stays)
{
    void *jitter = this;
    ASSERT_EQ(xkl_serv_set_memory_limit(1, 1), 1);
    void *filler = xkl_serv_malloc((1 << 20) - 64, 64);
    EXPECT_EQ(this->create(&jitter), 2);
    EXPECT_EQ(jitter, this);
    xkl_serv_free(filler);
    xkl_serv_set_memory_limit(1, 0);
}

TYPED_TEST(jit, products_by_other_names)
{
    using T = TypeParam;
    for (const auto product : {gemm_direct<T>, xkl_gemm_jit<T>, xkl_gemm_direct_jit<T>}) {
        product("T", "N", &m, &n, &k, &this->alpha, this->a.data(), &this->a.ld, this->b.data(),
                &this->b.ld, &this->beta, this->c.data(), &this->c.ld, 1, 1);
        this->expect_product("product");
    }
    if constexpr (is_complex<T>) {
        pick<T>(0, 0, xkl_blas_cgemm3m_direct, xkl_blas_zgemm3m_direct)(
            "T", "N", &m, &n, &k, &this->alpha, this->a.data(), &this->a.ld, this->b.data(), &this->b.ld,
            &this->beta, this->c.data(), &this->c.ld, 1, 1);
        this->expect_product("gemm3m");
    }
}

TYPED_TEST(jit, other_routines_by_direct_names)
{
    using T = TypeParam;
    const int64_t one = 1, two = 2, back = -1;
    const auto both = [&](const char *what, const auto &call, const auto &direct, const auto &plain) {
        this->expected = this->old;
        call(direct, this->c.data());
        call(plain, this->expected.data());
        this->expect_same(what);
    };
    const auto call_syrk = [&](const auto &routine, T *c) {
        routine("U", "N", &n, &n, &this->alpha, this->old.data(), &this->old.ld, &this->beta, c,
                &this->c.ld, 1, 1);
    };
    const auto call_trsm = [&](const auto &routine, T *c) {
        routine("R", "U", "N", "U", &m, &n, &this->alpha, this->b.data(), &this->b.ld, c, &this->c.ld, 1, 1,
                1, 1);
    };
    const auto call_axpy = [&](const auto &routine, T *c) {
        routine(&m, &this->alpha, this->a.data(), &back, c, &one);
    };
    both("syrk", call_syrk, syrk_direct<T>, syrk<T>);
    both("trsm", call_trsm, trsm_direct<T>, trsm<T>);
    both("axpy", call_axpy, axpy_direct<T>, axpy<T>);
    if constexpr (!is_complex<T>) {
        const auto call_dot = [&](const auto &routine, T *c) {
            c[0] = routine(&n, this->a.data(), &two, this->b.data(), &one);
        };
        both("dot", call_dot, pick<T>(xkl_blas_sdot_direct, xkl_blas_ddot_direct, 0, 0),
             pick<T>(xkl_blas_sdot, xkl_blas_ddot, 0, 0));
    }
}

// The one routine that may need memory, without any: it works in smaller steps, and with no room for one it
// refuses.
TEST(workspace, a_solution_aside_does_without_memory)
{
    const int64_t order = 5000, columns = 2;
    const double alpha = 1, beta = 1;
    std::vector<double> a(order * order, 0), b(order * columns, 3), c(order * columns, 1);
    for (int64_t i = 0; i < order; ++i)
        a[i + i * order] = 2;
    ASSERT_EQ(xkl_serv_set_memory_limit(1, 1), 1);
    void *filler = xkl_serv_malloc((1 << 20) - 64, 64);
    xkl_serv_set_xerbla_interface(remember_refusal);
    const auto solve = [&](int64_t m) {
        xkl_blas_dtrsm_oop("L", "L", "N", "N", &m, &columns, &alpha, a.data(), &order, b.data(), &order,
                           &beta, c.data(), &order, 1, 1, 1, 1);
    };
    refused_name.clear();
    solve(order);
    EXPECT_EQ(refused_name, "DTRSM_OOP ");
    EXPECT_EQ(refused_position, 1000);
    EXPECT_EQ(c, std::vector<double>(order * columns, 1));
    solve(4000);
    EXPECT_EQ(c[3999], 2.5);
    EXPECT_EQ(c[order + 3999], 2.5);
    EXPECT_EQ(c[4000], 1);
    xkl_serv_set_xerbla_interface(nullptr);
    xkl_serv_free(filler);
    xkl_serv_set_memory_limit(1, 0);
}

} // namespace
