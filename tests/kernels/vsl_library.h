// Random streams as users of the kernel library see them: entries by name, and the table of generators.
#pragma once

#include "library.h"
#include "xkl_vsl_types.h"

#include <cstdint>
#include <ostream>
#include <utility>
#include <vector>

template <class Function>
Function *vsl_entry(const char *name)
{
    void *const symbol = dlsym(kernel_library(), name);
    if (!symbol)
        throw std::runtime_error(std::string("no entry ") + name);
    return reinterpret_cast<Function *>(symbol);
}

/// The entries of streams, called as vsl().skip(...)
struct stream_entries {
    using handle = VSLStreamStatePtr;
    template <class... A>
    using entry = int32_t (*)(A...);

    entry<handle *, int32_t, int32_t, const uint32_t *> create = find("__vslNewStreamEx");
    entry<handle *> end = find("__vslDeleteStream");
    entry<handle *, handle> copy = find("__vslCopyStream");
    entry<handle, handle> copy_state = find("__vslCopyStreamState");
    entry<handle, int32_t, int32_t> leapfrog = find("__vslLeapfrogStream");
    entry<handle, int64_t> skip = find("__vslSkipAheadStream");
    entry<handle, int32_t, const uint64_t *> skip_far = find("__vslSkipAheadStreamEx");
    entry<handle> brng = find("__vslGetStreamStateBrng");
    entry<handle *, int32_t, const uint32_t *, iUpdateFuncPtr> of_integers =
        find("__vsliNewAbstractStream");
    entry<handle *, int32_t, const double *, double, double, dUpdateFuncPtr> of_doubles =
        find("__vsldNewAbstractStream");
    entry<handle *, int32_t, const float *, float, float, sUpdateFuncPtr> of_floats =
        find("__vslsNewAbstractStream");
    entry<handle, const char *, int32_t> save_file = find("__vslSaveStreamF");
    entry<handle *, const char *, int32_t> load_file = find("__vslLoadStreamF");
    entry<handle, char *> save = find("__vslSaveStreamM");
    entry<handle *, const char *> load = find("__vslLoadStreamM");
    entry<handle> size = find("__vslGetStreamSize");
    entry<> known = find("__vslGetNumRegBrngs");
    entry<const VSLBRngProperties *> add = find("__vslRegisterBrng");
    entry<int32_t, VSLBRngProperties *> properties = find("__vslGetBrngProperties");
    entry<int32_t> limit_set = find("xkl_vsl_kernel_LimitSet");

  private:
    struct find {
        const char *name;
        explicit(false) find(const char *entry_name) : name(entry_name) {}
        template <class... A>
        operator entry<A...>() const
        {
            return vsl_entry<int32_t(A...)>(name);
        }
    };
};

inline const stream_entries &vsl()
{
    static const stream_entries entries;
    return entries;
}

/// A stream that ends with its scope
class random_stream {
  public:
    explicit random_stream(int32_t brng, const std::vector<uint32_t> &seeds = {7})
    {
        const auto count = static_cast<int32_t>(seeds.size());
        EXPECT_EQ(vsl().create(&handle_, brng, count, seeds.data()), VSL_STATUS_OK) << std::hex << brng;
    }
    explicit random_stream(VSLStreamStatePtr handle) : handle_(handle) {}
    random_stream(random_stream &&other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    ~random_stream()
    {
        if (handle_) {
            EXPECT_EQ(vsl().end(&handle_), VSL_STATUS_OK);
        }
    }
    operator VSLStreamStatePtr() const { return handle_; }
    VSLStreamStatePtr *address() { return &handle_; }

    random_stream copy() const
    {
        VSLStreamStatePtr made = nullptr;
        EXPECT_EQ(vsl().copy(&made, handle_), VSL_STATUS_OK);
        return random_stream(made);
    }

    /// The functions of a basic generator draw from streams of every kind.
    static VSLBRngProperties functions(int32_t brng = VSL_BRNG_MCG31)
    {
        VSLBRngProperties p{};
        EXPECT_EQ(vsl().properties(brng, &p), VSL_STATUS_OK) << std::hex << brng;
        return p;
    }
    std::vector<double> doubles(int n, double a = 0, double b = 1) const
    {
        std::vector<double> r(static_cast<size_t>(n), -99);
        EXPECT_EQ(functions().dBRng(handle_, n, r.data(), a, b), VSL_STATUS_OK);
        return r;
    }
    std::vector<float> floats(int n, float a = 0, float b = 1) const
    {
        std::vector<float> r(static_cast<size_t>(n), -99);
        EXPECT_EQ(functions().sBRng(handle_, n, r.data(), a, b), VSL_STATUS_OK);
        return r;
    }
    /// Elements of the recurrence; `Word` has their size.
    template <class Word = uint32_t>
    std::vector<Word> elements(int n) const
    {
        std::vector<Word> r(static_cast<size_t>(n));
        EXPECT_EQ(functions().iBRng(handle_, n, reinterpret_cast<unsigned *>(r.data())), VSL_STATUS_OK);
        return r;
    }

  private:
    VSLStreamStatePtr handle_ = nullptr;
};

/// What each basic generator promises
struct generator_promise {
    const char *name;
    int32_t brng;
    bool skips, leaps; // in logarithmic time, for any step
    bool repeats;      // gives the same numbers for the same seed
};

inline constexpr generator_promise generators[] = {
    {"MCG31", VSL_BRNG_MCG31, true, true, true},
    {"R250", VSL_BRNG_R250, true, false, true},
    {"MRG32K3A", VSL_BRNG_MRG32K3A, true, true, true},
    {"MCG59", VSL_BRNG_MCG59, true, true, true},
    {"SOBOL", VSL_BRNG_SOBOL, true, false, true},
    {"NIEDERR", VSL_BRNG_NIEDERR, true, false, true},
    {"MT19937", VSL_BRNG_MT19937, true, false, true},
    {"SFMT19937", VSL_BRNG_SFMT19937, true, false, true},
    {"NONDETERM", VSL_BRNG_NONDETERM, false, false, false},
    {"ARS5", VSL_BRNG_ARS5, true, true, true},
    {"PHILOX4X32X10", VSL_BRNG_PHILOX4X32X10, true, true, true},
};

inline void PrintTo(const generator_promise &g, std::ostream *out)
{
    *out << g.name;
}

/// A test for each generator whose name is shown
struct EachGenerator : testing::TestWithParam<generator_promise> {
    static std::string name(const testing::TestParamInfo<generator_promise> &info)
    {
        return info.param.name;
    }
};
