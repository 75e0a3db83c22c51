// Loading: by dlopen with everything bound at once, and without a core.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

using dgemm_type = void(const char *, const char *, const int64_t *, const int64_t *, const int64_t *,
                        const double *, const double *, const int64_t *, const double *, const int64_t *,
                        const double *, double *, const int64_t *);

// First, while this process has no core loaded that would serve instead.
TEST(loading, missing_core_is_named_in_one_line)
{
    namespace files = std::filesystem;
    const files::path folder = files::path(testing::TempDir()) / ("alone-" + std::to_string(getpid()));
    files::create_directories(folder);
    const files::path alone = folder / "libxkl_quorl_ilp64.so";
    files::copy_file(INTERFACE_LIBRARY, alone, files::copy_options::overwrite_existing);
    void *library = dlopen(alone.c_str(), RTLD_NOW);
    EXPECT_EQ(library, nullptr);
    const std::string said = library ? "" : dlerror();
    EXPECT_NE(said.find("libxkl_core.so"), std::string::npos) << said;
    files::remove_all(folder);
}

TEST(loading, everything_bound_at_once_computes)
{
    void *library = dlopen(INTERFACE_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    auto *dgemm = reinterpret_cast<dgemm_type *>(dlsym(library, "dgemm_"));
    ASSERT_NE(dgemm, nullptr) << dlerror();
    const int64_t n = 2;
    const double a[] = {1, 2, 3, 4}, one = 1, zero = 0;
    double c[4];
    dgemm("N", "N", &n, &n, &n, &one, a, &n, a, &n, &zero, c, &n);
    EXPECT_EQ(c[0], 7);
    EXPECT_EQ(c[3], 22);
    EXPECT_EQ(dlclose(library), 0);
}

// In a process of its own, which has no core yet.
TEST(loading, libraries_beside_the_core_are_found_from_another_working_directory)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto opens_kernels = [] {
        std::filesystem::current_path(std::filesystem::path(INTERFACE_LIBRARY).parent_path());
        void *core = dlopen("./libxkl_core.so", RTLD_NOW);
        std::filesystem::current_path("/");
        auto *load = core ? reinterpret_cast<void *(*)()>(dlsym(core, "xkl_serv_load_vml")) : nullptr;
        return load && load();
    };
    EXPECT_EXIT(_exit(opens_kernels() ? 0 : 1), testing::ExitedWithCode(0), "");
}

} // namespace
