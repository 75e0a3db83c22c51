// Streams saved to files and memory go on where they were; what is no saved stream gives none.
#include "vsl_library.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace {

INSTANTIATE_TEST_SUITE_P(Saved, EachGenerator, testing::ValuesIn(generators), EachGenerator::name);

/// A file that is gone after the test
struct scratch_file {
    std::string name = (std::filesystem::temp_directory_path() /
                        ("xkl_stream_" + std::to_string(getpid()) + "_" + std::to_string(count++)))
                           .string();
    static inline int count = 0;
    ~scratch_file() { std::remove(name.c_str()); }
    void write(const std::vector<char> &bytes) const
    {
        std::ofstream(name, std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
};

std::vector<char> saved(VSLStreamStatePtr s)
{
    const int32_t size = vsl().size(s);
    EXPECT_GT(size, 0);
    std::vector<char> bytes(static_cast<size_t>(std::max(size, 0)));
    EXPECT_EQ(vsl().save(s, bytes.data()), VSL_STATUS_OK);
    return bytes;
}

random_stream loaded(const scratch_file &file)
{
    VSLStreamStatePtr made = nullptr;
    EXPECT_EQ(vsl().load_file(&made, file.name.c_str(), -1), VSL_STATUS_OK);
    return random_stream(made);
}

TEST_P(EachGenerator, GoesOnFromFileAndMemory)
{
    const random_stream s(GetParam().brng, {3});
    s.doubles(777);
    const std::vector<char> bytes = saved(s);
    const scratch_file file;
    EXPECT_EQ(vsl().save_file(s, file.name.c_str(), -1), VSL_STATUS_OK);
    EXPECT_EQ(std::filesystem::file_size(file.name), bytes.size());
    VSLStreamStatePtr made = nullptr;
    EXPECT_EQ(vsl().load(&made, bytes.data()), VSL_STATUS_OK);
    const random_stream from_memory(made), from_file = loaded(file);
    EXPECT_EQ(vsl().brng(from_file), GetParam().brng);
    const auto expected = s.doubles(2000), first = from_file.doubles(2000),
               second = from_memory.doubles(2000);
    if (GetParam().repeats) {
        EXPECT_EQ(first, expected);
        EXPECT_EQ(second, expected);
    }
}

TEST_P(EachGenerator, DamagedFilesGiveNoStream)
{
    const std::vector<char> bytes = saved(random_stream(GetParam().brng, {3}));
    const scratch_file file;
    VSLStreamStatePtr made = nullptr;
    const auto load = [&](const std::vector<char> &content) {
        file.write(content);
        return vsl().load_file(&made, file.name.c_str(), -1);
    };
    for (size_t length = 0; length < bytes.size(); length += length < 48 ? 1 : 397)
        EXPECT_EQ(load({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)}),
                  VSL_RNG_ERROR_BAD_FILE_FORMAT)
            << length << " bytes";
    std::vector<char> changed = bytes;
    for (size_t at = 0; at < bytes.size(); at += at < 48 ? 1 : 389) {
        changed[at] = static_cast<char>(changed[at] ^ 16);
        EXPECT_EQ(load(changed), VSL_RNG_ERROR_BAD_FILE_FORMAT) << "byte " << at;
        EXPECT_EQ(vsl().load(&made, changed.data()), VSL_RNG_ERROR_BAD_MEM_FORMAT) << "byte " << at;
        changed[at] = bytes[at];
    }
    changed.push_back(0);
    EXPECT_EQ(load(changed), VSL_RNG_ERROR_BAD_FILE_FORMAT) << "a byte too many";
    EXPECT_EQ(made, nullptr);
}

// As a newer version, or a hostile hand, would write it: the sums are right.
uint64_t sum_of(const char *bytes, size_t count)
{
    uint64_t sum = 0xcbf29ce484222325;
    for (size_t i = 0; i < count; ++i)
        sum = (sum ^ static_cast<unsigned char>(bytes[i])) * 0x100000001b3;
    return sum;
}
constexpr size_t version_at = 8, brng_at = 12, state_sum_at = 24, header_sum_at = 32, header_bytes = 40;

template <class T>
void put(std::vector<char> &bytes, size_t at, T value)
{
    std::copy_n(reinterpret_cast<const char *>(&value), sizeof value, &bytes[at]);
    const uint64_t state = sum_of(bytes.data() + header_bytes, bytes.size() - header_bytes);
    std::copy_n(reinterpret_cast<const char *>(&state), sizeof state, &bytes[state_sum_at]);
    const uint64_t header = sum_of(bytes.data(), header_sum_at);
    std::copy_n(reinterpret_cast<const char *>(&header), sizeof header, &bytes[header_sum_at]);
}

TEST(SavedStreams, WhatOnlyLooksRight)
{
    const std::vector<char> mt = saved(random_stream(VSL_BRNG_MT19937));
    VSLStreamStatePtr made = nullptr;
    const auto load_with = [&](std::vector<char> bytes, size_t at, auto value) {
        put(bytes, at, value);
        return vsl().load(&made, bytes.data());
    };
    EXPECT_EQ(load_with(mt, version_at, uint32_t{2}), VSL_RNG_ERROR_UNSUPPORTED_FILE_VER);
    EXPECT_EQ(load_with(mt, brng_at, int32_t{0x7ff00000}), VSL_RNG_ERROR_INVALID_BRNG_INDEX);
    EXPECT_EQ(load_with(mt, brng_at, int32_t{VSL_BRNG_WH}), VSL_RNG_ERROR_BRNG_NOT_SUPPORTED);
    EXPECT_EQ(load_with(mt, brng_at, int32_t{VSL_BRNG_MCG31}), VSL_RNG_ERROR_BAD_MEM_FORMAT)
        << "wrong size";
    EXPECT_EQ(load_with(mt, header_bytes, int32_t{625}), VSL_RNG_ERROR_BAD_MEM_FORMAT) << "words given out";
    EXPECT_EQ(load_with(mt, header_bytes, int32_t{-1}), VSL_RNG_ERROR_BAD_MEM_FORMAT);
    const std::vector<char> sobol = saved(random_stream(VSL_BRNG_SOBOL, {3}));
    EXPECT_EQ(load_with(sobol, header_bytes + 8, uint32_t{4}), VSL_RNG_ERROR_BAD_MEM_FORMAT) << "dimension";
    EXPECT_EQ(load_with(sobol, header_bytes + 12, uint32_t{3}), VSL_RNG_ERROR_BAD_MEM_FORMAT)
        << "coordinate";
    EXPECT_EQ(load_with(sobol, header_bytes, uint64_t{0}), VSL_RNG_ERROR_BAD_MEM_FORMAT) << "point";
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(load_with(mt, version_at, uint32_t{1}), VSL_STATUS_OK) << "nothing changed";
    const random_stream same(made);
    EXPECT_EQ(same.elements(100), random_stream(VSL_BRNG_MT19937).elements(100));
}

TEST(SavedStreams, FilesThatCanNotBeOpenedReadOrWritten)
{
    const random_stream s(VSL_BRNG_MT19937);
    VSLStreamStatePtr made = nullptr;
    EXPECT_EQ(vsl().load_file(&made, "/nowhere/stream", -1), VSL_RNG_ERROR_FILE_OPEN);
    EXPECT_EQ(vsl().save_file(s, "/nowhere/stream", -1), VSL_RNG_ERROR_FILE_OPEN);
    EXPECT_EQ(vsl().load_file(&made, "/", -1), VSL_RNG_ERROR_FILE_READ) << "a folder";
    EXPECT_EQ(vsl().save_file(s, "/dev/full", -1), VSL_RNG_ERROR_FILE_WRITE);
    EXPECT_EQ(vsl().save_file(s, nullptr, -1), VSL_ERROR_BADARGS);
    EXPECT_EQ(vsl().load_file(&made, nullptr, -1), VSL_ERROR_BADARGS);
    EXPECT_EQ(vsl().load_file(nullptr, "/", -1), VSL_ERROR_NULL_PTR);
    EXPECT_EQ(vsl().load(nullptr, ""), VSL_ERROR_NULL_PTR);
    EXPECT_EQ(vsl().load(&made, nullptr), VSL_ERROR_BADARGS);
    EXPECT_EQ(vsl().save(s, nullptr), VSL_ERROR_BADARGS);
    EXPECT_EQ(made, nullptr);
}

TEST(SavedStreams, NamesMayHaveALengthInsteadOfAnEnd)
{
    const random_stream s(VSL_BRNG_MCG31);
    const scratch_file file;
    const std::string longer = file.name + "and more";
    EXPECT_EQ(vsl().save_file(s, longer.c_str(), static_cast<int32_t>(file.name.size())), VSL_STATUS_OK);
    EXPECT_EQ(loaded(file).elements(10), s.elements(10));
}

} // namespace
