// The file of a handle: a mark, the version of the form, the length and a check sum of the rest, and the
// systems. It is written under another name and renamed, so that the old one stays whole when the disk is
// full.
#include "solvers/handle_file.h"

#include "solvers/stored.h"

#include <cstring>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace xkl::core {
namespace {

using namespace solvers;

struct file_head {
    char mark[8] = {'X', 'K', 'L', 'P', 'D', 'S', '\n', 0};
    int64_t version = 1;
    int64_t length = 0;
    uint64_t check_sum = 0;
};

struct file_closer {
    void operator()(std::FILE *file) const { std::fclose(file); }
};
using open_file = std::unique_ptr<std::FILE, file_closer>;

std::string path_in(const char *folder)
{
    return std::string(folder) + "/xkl_pardiso_handle.bin";
}

// The check sum of all that follows the head; leaves the file there.
bool sum_up(std::FILE *file, file_head &head)
{
    uint64_t sum = 0xcbf29ce484222325;
    int64_t length = 0;
    std::vector<uint64_t> words(8192);
    if (std::fseek(file, sizeof head, SEEK_SET) != 0)
        return false;
    while (const size_t got = std::fread(words.data(), 1, words.size() * sizeof words[0], file)) {
        std::memset(reinterpret_cast<char *>(words.data()) + got, 0, words.size() * sizeof words[0] - got);
        for (size_t i = 0; i * sizeof words[0] < got; ++i)
            sum = (sum ^ words[i]) * 0x100000001b3 + (sum >> 29);
        length += static_cast<int64_t>(got);
    }
    head.length = length;
    head.check_sum = sum;
    return !std::ferror(file) && std::fseek(file, sizeof head, SEEK_SET) == 0;
}

int64_t write_systems(std::FILE *file, const handle &from)
{
    const int64_t count = static_cast<int64_t>(from.systems.size());
    if (!write(file, file_head{}) || !write(file, count))
        return XKL_PARDISO_OUT_OF_CORE_IO;
    for (const auto &system : from.systems) {
        const bool present = system && system->analysed;
        const int64_t what[] = {present, present ? system->form.mtype : 0, present && system->form.single};
        if (!write(file, what))
            return XKL_PARDISO_OUT_OF_CORE_IO;
        if (present)
            if (const int64_t error = system->store(file))
                return error;
    }
    file_head head;
    const bool complete = std::fflush(file) == 0 && sum_up(file, head) &&
                          std::fseek(file, 0, SEEK_SET) == 0 && write(file, head) && std::fflush(file) == 0;
    return complete ? XKL_PARDISO_SUCCESS : XKL_PARDISO_OUT_OF_CORE_IO;
}

int64_t read_systems(std::FILE *file, handle &to)
{
    int64_t count;
    if (!read(file, count) || count < 0 || count > bytes_left(file))
        return XKL_PARDISO_OUT_OF_CORE_IO;
    to.systems.resize(count);
    for (auto &system : to.systems) {
        int64_t what[3];
        if (!read(file, what))
            return XKL_PARDISO_OUT_OF_CORE_IO;
        const auto kind = kind_of(what[1]);
        if (what[0] == 0)
            continue;
        if (!kind)
            return XKL_PARDISO_OUT_OF_CORE_IO;
        system = make_system(*kind, what[2] != 0);
        if (const int64_t error = system->restore(file))
            return error;
    }
    return XKL_PARDISO_SUCCESS;
}

int64_t store(void *const *pt, const char *folder)
{
    const auto found = pt ? handles().find(pt[0]) : nullptr;
    if (!found || !folder)
        return XKL_PARDISO_INPUT_ERROR;
    const turn_at turn(found->calls);
    if (!turn.taken())
        return XKL_PARDISO_INPUT_ERROR;
    const std::string path = path_in(folder), unfinished = path + "." + std::to_string(getpid());
    int64_t error = XKL_PARDISO_OUT_OF_CORE_OPEN;
    if (const open_file file{std::fopen(unfinished.c_str(), "w+b")})
        error = write_systems(file.get(), *found);
    else
        return error;
    if (error == XKL_PARDISO_SUCCESS && std::rename(unfinished.c_str(), path.c_str()) != 0)
        error = XKL_PARDISO_OUT_OF_CORE_IO;
    if (error != XKL_PARDISO_SUCCESS)
        std::remove(unfinished.c_str());
    return error;
}

// A live handle in pt would be lost.
int64_t restore(void **pt, const char *folder)
{
    if (!pt || !folder || (pt[0] && handles().find(pt[0])))
        return XKL_PARDISO_INPUT_ERROR;
    const open_file file{std::fopen(path_in(folder).c_str(), "rb")};
    if (!file)
        return XKL_PARDISO_OUT_OF_CORE_OPEN;
    file_head expected, head;
    if (!read(file.get(), head) || !sum_up(file.get(), expected) ||
        std::memcmp(&head, &expected, sizeof head) != 0)
        return XKL_PARDISO_OUT_OF_CORE_IO;
    auto restored = std::make_shared<handle>();
    if (const int64_t error = read_systems(file.get(), *restored))
        return error;
    std::fill_n(pt, 64, nullptr);
    pt[0] = handles().add(std::move(restored));
    return XKL_PARDISO_SUCCESS;
}

void answer(int64_t *error, int64_t result)
{
    if (error)
        *error = result;
}

} // namespace

void pardiso_handle_store(void *const *pt, const char *dirname, int64_t *error)
{
    answer(error, within_memory([&] { return store(pt, dirname); }));
}

void pardiso_handle_restore(void **pt, const char *dirname, int64_t *error)
{
    answer(error, within_memory([&] { return restore(pt, dirname); }));
}

void pardiso_handle_delete(const char *dirname, int64_t *error)
{
    answer(error, within_memory([&]() -> int64_t {
               if (!dirname)
                   return XKL_PARDISO_INPUT_ERROR;
               return std::remove(path_in(dirname).c_str()) == 0 ? XKL_PARDISO_SUCCESS
                                                                 : XKL_PARDISO_OUT_OF_CORE_OPEN;
           }));
}

} // namespace xkl::core
