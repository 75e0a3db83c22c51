// Commit, copy, release and the meaning of statuses, over the recording core.
#include "dfti_fake.h"
#include "dfti_recorder.h"
#include "routine_call.h"

#include "xkl_dfti.h"

#include <gtest/gtest.h>

namespace {

class dfti_lifecycle : public testing::Test {
  protected:
    void SetUp() override
    {
        reset();
        operation_calls.clear();
    }

    static std::vector<std::string> operations()
    {
        std::vector<std::string> names;
        for (const operation_call &each : operation_calls)
            names.push_back(each.name);
        return names;
    }

    using names = std::vector<std::string>;
    fake_descriptor descriptor{2}, second{2};
    DFTI_DESCRIPTOR_HANDLE copy = nullptr;
};

TEST_F(dfti_lifecycle, commit_refuses_what_is_no_descriptor_then_what_cannot_be_committed)
{
    EXPECT_EQ(DftiCommitDescriptor(nullptr), 5);
    xkl_dft_operations without_commit = fake_operations();
    without_commit.commit = nullptr;
    descriptor.head.operations = &without_commit;
    descriptor.head.packed_format = DFTI_CCS_FORMAT; // inconsistent, but that is looked at later
    EXPECT_EQ(DftiCommitDescriptor(descriptor.handle()), 7);
    descriptor.head.tag = 0x54464400; // the letters in the wrong place
    EXPECT_EQ(DftiCommitDescriptor(descriptor.handle()), 5);
    EXPECT_TRUE(operation_calls.empty());
}

TEST_F(dfti_lifecycle, storage_and_packed_format_must_agree)
{
    for (int storage = 38; storage <= 42; ++storage)
        for (int format = 53; format <= 58; ++format) {
            operation_calls.clear();
            descriptor.head.conjugate_even_storage = storage;
            descriptor.head.packed_format = format;
            const bool breach = storage == 39 ? format != 57 : storage == 40 && format == 57;
            EXPECT_EQ(DftiCommitDescriptor(descriptor.handle()), breach ? 3 : 0)
                << storage << " " << format;
            EXPECT_EQ(operations(), breach ? names{} : names{"commit"});
        }
    descriptor.head.packed_format = DFTI_CCE_FORMAT;
    descriptor.commit_result = -12;
    EXPECT_EQ(DftiCommitDescriptor(descriptor.handle()), -12);
}

TEST_F(dfti_lifecycle, copy_refuses_descriptors_before_places)
{
    EXPECT_EQ(DftiCopyDescriptor(nullptr, nullptr), 5);
    descriptor.head.tag = 1;
    EXPECT_EQ(DftiCopyDescriptor(descriptor.handle(), &copy), 5);
    descriptor.head.tag = xkl_dft_tag;
    EXPECT_EQ(DftiCopyDescriptor(descriptor.handle(), nullptr), 3);
    EXPECT_TRUE(operation_calls.empty());
    descriptor.to_copy = &second;
    descriptor.result = 1;
    EXPECT_EQ(DftiCopyDescriptor(descriptor.handle(), &copy), 1);
    EXPECT_EQ(operations(), names{"copy"});
    EXPECT_EQ(copy, nullptr);
}

TEST_F(dfti_lifecycle, a_copy_is_committed_if_its_source_is)
{
    descriptor.to_copy = &second;
    EXPECT_EQ(DftiCopyDescriptor(descriptor.handle(), &copy), 0);
    EXPECT_EQ(operations(), names{"copy"});
    EXPECT_EQ(copy, second.handle());

    make_committed(descriptor);
    copy = nullptr;
    operation_calls.clear();
    EXPECT_EQ(DftiCopyDescriptor(descriptor.handle(), &copy), 0);
    EXPECT_EQ(operations(), (names{"copy", "commit"}));
    EXPECT_EQ(operation_calls[1].handle, second.handle());
    EXPECT_EQ(copy, second.handle());
}

TEST_F(dfti_lifecycle, a_copy_that_cannot_be_committed_is_released)
{
    make_committed(descriptor);
    descriptor.to_copy = &second;
    second.commit_result = 6;
    copy = descriptor.handle();
    EXPECT_EQ(DftiCopyDescriptor(descriptor.handle(), &copy), 6);
    EXPECT_EQ(operations(), (names{"copy", "commit", "free"}));
    EXPECT_EQ(operation_calls[2].handle, second.handle());
    EXPECT_EQ(copy, descriptor.handle()) << "left as it was";
}

TEST_F(dfti_lifecycle, release_and_error_class_belong_to_the_core)
{
    recorded.integer_result = -5;
    EXPECT_EQ(DftiFreeDescriptor(&copy), -5);
    EXPECT_EQ(DftiFreeDescriptor(nullptr), -5);
    ASSERT_EQ(recorded.calls.size(), 2u);
    EXPECT_EQ(recorded.calls[0].entry, "xkl_dft_dfti_free_descriptor_external");
    EXPECT_EQ(recorded.calls[0].arguments, words{reinterpret_cast<int64_t>(&copy)});
    EXPECT_EQ(recorded.calls[1].arguments, words{0});

    words seen;
    recorded.on_call = [&](const core_call &call) {
        for (const int64_t each : call.arguments)
            seen.push_back(*reinterpret_cast<const int32_t *>(each));
    };
    recorded.integer_result = 1;
    EXPECT_EQ(DftiErrorClass(3, 60), 1);
    EXPECT_EQ(recorded.calls.back().entry, "xkl_dft_dfti_error_class_external");
    EXPECT_EQ(seen, (words{3, 60}));
}

TEST_F(dfti_lifecycle, messages_by_status)
{
    const int numbers[] = {774, 775, 776, 777, 784, 779, 780, 781, 782, 783};
    const auto number_of = [](long status) {
        EXPECT_STREQ(DftiErrorMessage(status), "a message");
        EXPECT_EQ(recorded.calls.back().entry, "xkl_serv_get_msg");
        EXPECT_EQ(recorded.calls.back().arguments[1], 0);
        return recorded.calls.back().arguments[0];
    };
    for (long status = 0; status < 10; ++status)
        EXPECT_EQ(number_of(status), numbers[status]) << status;
    for (const long status : {-1L, 10L, 60L, 1L << 32})
        EXPECT_EQ(number_of(status), 784) << status;
}

/// A pointer that is no null, for calls that only look at that.
int64_t some_place[4];

TEST_F(dfti_lifecycle, distributed_forms_refuse_nulls_and_go_to_the_core)
{
    recorded.integer_result = 17;
    EXPECT_EQ(DftiCommitDescriptorDM(nullptr), 3);
    EXPECT_TRUE(recorded.calls.empty());
    EXPECT_EQ(DftiCommitDescriptorDM(reinterpret_cast<DFTI_DESCRIPTOR_DM_HANDLE>(some_place)), 17);
    EXPECT_EQ(recorded.calls.back().entry, "xkl_dft_dfti_commit_descriptor_dm");

    const std::pair<const char *, const char *> setters[] = {
        {"DFTISETVALUEDMI_INTERNAL", "xkl_dft_dfti_set_value_dmi"},
        {"DFTISETVALUEDMP_INTERNAL", "xkl_dft_dfti_set_value_dmp"}};
    const int64_t place = reinterpret_cast<int64_t>(some_place);
    for (const auto &[name, entry] : setters) {
        recorded.calls.clear();
        for (std::size_t null = 0; null < 3; ++null) {
            words arguments(3, place);
            arguments[null] = 0;
            EXPECT_EQ(call_integer(exported(name), arguments), 3) << name;
        }
        EXPECT_TRUE(recorded.calls.empty());
        EXPECT_EQ(call_integer(exported(name), words(3, place)), 17);
        EXPECT_EQ(recorded.calls.back().entry, entry);
        EXPECT_EQ(recorded.calls.back().arguments, words(3, place));
    }
}

TEST_F(dfti_lifecycle, fortran_communicators_become_those_of_c)
{
    void *const create = exported("DFTICREATEDESCRIPTORDM1_INTERNAL");
    const int64_t place = reinterpret_cast<int64_t>(some_place);
    int32_t communicator = 44;
    words arguments(6, place);
    arguments[0] = reinterpret_cast<int64_t>(&communicator);
    EXPECT_EQ(call_integer(create, arguments), 6) << "no message passing library";

    const xkl_mpi_wrappers wrappers = {
        [](int32_t fortran) { return static_cast<void *>(some_place + fortran - 42); }};
    recorded_wrappers = &wrappers;
    recorded.integer_result = 23;
    for (std::size_t null = 0; null < 6; ++null) {
        words spoiled = arguments;
        spoiled[null] = 0;
        EXPECT_EQ(call_integer(create, spoiled), 3);
    }
    EXPECT_TRUE(recorded.calls.empty());
    EXPECT_EQ(call_integer(create, arguments), 23);
    recorded_wrappers = nullptr;
    ASSERT_EQ(recorded.calls.size(), 1u);
    EXPECT_EQ(recorded.calls[0].entry, "xkl_dft_dfti_create_descriptor_dm1");
    arguments[0] = reinterpret_cast<int64_t>(some_place + 2);
    EXPECT_EQ(recorded.calls[0].arguments, arguments);
}

} // namespace
