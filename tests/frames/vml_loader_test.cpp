// The loader of the kernel library. It decides once in a process, so every case has a process of its own.
#include "vml_recorder.h"

#include "vml/loader.h"
#include "xkl_service.h"
#include "xkl_vml.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <unistd.h>

namespace {

double one = 1;

template <class Check>
void in_child(const Check &check)
{
    EXPECT_EXIT(
        {
            check();
            std::exit(testing::Test::HasFailure() ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
}

TEST(loader, appends_a_slash_to_the_working_directory_at_load)
{
    char directory[PATH_MAX];
    ASSERT_NE(getcwd(directory, sizeof directory), nullptr);
    EXPECT_EQ(vml_recorded.directory, std::string(directory) + "/");
    EXPECT_EQ(vml_recorded.loads, 0) << "nothing is opened before it is needed";
}

TEST(loader, opens_the_kernel_library_at_the_first_use_only)
{
    in_child([] {
        EXPECT_EQ(xkl_vml_serv_get_dll_handle(), nullptr);
        vdExp(0, nullptr, nullptr);
        EXPECT_EQ(vml_recorded.loads, 0);
        EXPECT_EQ(vmlGetMode(), vml_recorded.mode);
        EXPECT_EQ(vml_recorded.loads, 1);
        EXPECT_NE(xkl_vml_serv_get_dll_handle(), nullptr);
        vdExp(1, &one, &one);
        EXPECT_EQ(vml_recorded.loads, 1);
    });
}

TEST(loader, ends_the_process_without_a_kernel_library)
{
    EXPECT_EXIT(
        {
            vml_recorded.kernel_library = "none";
            vdExp(1, &one, &one);
        },
        testing::ExitedWithCode(2), "^message 771\n$");
    EXPECT_EXIT(
        {
            vml_recorded.kernel_library = "none";
            vmlSetMode(VML_HA);
        },
        testing::ExitedWithCode(2), "^message 771\n$");
    EXPECT_EXIT(xkl_vml_serv_load_vml_func("anything"), testing::ExitedWithCode(2), "^message 771\n$");
}

TEST(loader, ends_the_process_without_a_symbol)
{
    const auto without_symbols = [] { vml_recorded.kernel_library = "libc.so.6"; };
    EXPECT_EXIT(
        {
            without_symbols();
            vdCdfNormInvI(1, &one, 1, &one, 1);
        },
        testing::ExitedWithCode(2), R"(^message 772 \[xkl_vml_kernel_dCdfNormInvI_ttab\])");
    EXPECT_EXIT(
        {
            without_symbols();
            vdExp(-1, &one, &one);
        },
        testing::ExitedWithCode(2), R"(^message 772 \[xkl_vml_kernel_SetErrStatus\])");
}

TEST(loader, asks_the_exit_handler_first_and_ends_even_if_that_returns)
{
    EXPECT_EXIT(
        {
            XKL_Set_Exit_Handler([](int code) { std::fprintf(stderr, "handler %d\n", code); });
            vml_recorded.kernel_library = "none";
            vdExp(1, &one, &one);
        },
        testing::ExitedWithCode(2), "^message 771\nhandler 2\n$");
}

TEST(loader, is_not_misled_by_an_older_error_of_the_dynamic_loader)
{
    in_child([] {
        EXPECT_EQ(dlsym(RTLD_DEFAULT, "no such symbol"), nullptr);
        vdExp(1, &one, &one);
        EXPECT_TRUE(vml_recorded.messages.empty());
    });
}

TEST(loader, ends_the_process_where_the_working_directory_cannot_be_read)
{
    EXPECT_EXIT(
        {
            char folder[] = "/tmp/xkl-gone-XXXXXX";
            if (!mkdtemp(folder) || chdir(folder) != 0 || rmdir(folder) != 0)
                std::exit(99);
            execl("/proc/self/exe", "vml_loader_test", "--gtest_list_tests", nullptr);
        },
        testing::ExitedWithCode(2), R"(^message 1 \[.*libxkl_quorl_ilp64\.so\])");
}

struct class_case {
    const char *variable; // null: not set
    int code;             // of the core
    int expected, legacy;
};

class processor_class : public testing::TestWithParam<class_case> {};

TEST_P(processor_class, follows_the_variable_or_the_core)
{
    in_child([] {
        const class_case &each = GetParam();
        if (each.variable)
            setenv("XKL_VML_DEBUG_CPU_TYPE", each.variable, 1);
        vml_recorded.processor_code = each.code;
        EXPECT_EQ(xkl_vml_serv_cpu_detect(), each.expected);
        EXPECT_EQ(xkl_vml_serv_cpu_detect_legacy(), each.legacy);
        vml_recorded.processor_code = 0;
        unsetenv("XKL_VML_DEBUG_CPU_TYPE");
        EXPECT_EQ(xkl_vml_serv_cpu_detect(), each.expected) << "decided once";
        EXPECT_EQ(xkl_vml_serv_cpu_detect_legacy(), each.legacy);
    });
}

INSTANTIATE_TEST_SUITE_P(codes, processor_class,
                         testing::Values(class_case{nullptr, 0, 0, 0}, class_case{nullptr, 1, 1, 1},
                                         class_case{nullptr, 2, 0, 2}, class_case{nullptr, 3, 0, 3},
                                         class_case{nullptr, 4, 0, 4}, class_case{nullptr, 5, 2, 5},
                                         class_case{nullptr, 6, 2, 6}, class_case{nullptr, 7, 3, 7},
                                         class_case{nullptr, 8, 4, 8}, class_case{nullptr, 9, 5, 9},
                                         class_case{nullptr, 10, 10, 10}, class_case{nullptr, 77, 77, 77}));

INSTANTIATE_TEST_SUITE_P(variable, processor_class,
                         testing::Values(class_case{"0", 7, 0, 0}, class_case{"3", 9, 3, 3},
                                         class_case{"9", 0, 9, 9}, class_case{"8", 7, 3, 7},
                                         class_case{"12", 7, 3, 7}, class_case{"35", 7, 3, 7},
                                         class_case{"x", 7, 3, 7}, class_case{"-1", 7, 3, 7},
                                         class_case{" 3", 7, 3, 7}, class_case{"", 7, 3, 7},
                                         class_case{"3x", 7, 3, 7}, class_case{"05", 7, 5, 5},
                                         class_case{"08", 7, 3, 7}, class_case{"357", 7, 3, 3},
                                         class_case{"3xx", 8, 3, 3}, class_case{"800", 7, 3, 7},
                                         class_case{"1234567890123456789012345678901234567890", 7, 1, 1}));

} // namespace
