#include "routine_call.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <map>
#include <sstream>

std::vector<std::string> split(const char *text)
{
    std::istringstream in(text);
    std::vector<std::string> parts;
    for (std::string part; in >> part;)
        parts.push_back(part);
    return parts;
}

namespace {

/// A good value by the argument's name: letters that every routine takes, sizes of 3, room everywhere.
int64_t good_value(const std::string &name, const std::string &kind)
{
    static const std::map<std::string, char> letters = {
        {"uplo", 'U'}, {"side", 'L'}, {"diag", 'N'}, {"identifier", 'A'}, {"offsetc", 'F'}};
    if (kind == "c" || kind == "C") {
        const auto found = letters.find(name);
        return found == letters.end() ? 'N' : found->second;
    }
    if (kind == "e")
        return 101;
    if (name.starts_with("ld"))
        return 8;
    if (name.starts_with("stride"))
        return 4096;
    if (name.starts_with("inc"))
        return 2;
    if (name == "group_count" || name == "kl" || name == "ku")
        return 1;
    return 3;
}

template <class Result>
Result call(void *routine, std::vector<int64_t> a)
{
    a.resize(24); // a callee never looks beyond its own list
    using function = Result (*)(int64_t, int64_t, int64_t, int64_t, int64_t, int64_t, int64_t, int64_t,
                                int64_t, int64_t, int64_t, int64_t, int64_t, int64_t, int64_t, int64_t,
                                int64_t, int64_t, int64_t, int64_t, int64_t, int64_t, int64_t, int64_t);
    return reinterpret_cast<function>(routine)(a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9],
                                               a[10], a[11], a[12], a[13], a[14], a[15], a[16], a[17],
                                               a[18], a[19], a[20], a[21], a[22], a[23]);
}

} // namespace

arguments_of::arguments_of(const routine_row &row) : names(split(row.names)), kinds(split(row.kinds))
{
    for (std::size_t i = 0; i < names.size(); ++i) {
        storage_.push_back(std::vector<int64_t>(4, good_value(names[i], kinds[i])));
        addresses_.push_back(reinterpret_cast<int64_t>(storage_.back().data()));
    }
}

int64_t arguments_of::spoil()
{
    for (std::size_t i = 0; i < kinds.size(); ++i)
        if (kinds[i] == "c" || kinds[i] == "C") {
            set_letter(i, '?');
            return static_cast<int64_t>(i) + 1;
        }
    for (std::size_t i = 0; i < names.size(); ++i)
        if (names[i] == "m" || names[i].starts_with("stride")) {
            set_integer(i, -1);
            return static_cast<int64_t>(i) + 1;
        }
    ADD_FAILURE() << "no way to spoil this call is known";
    return 0;
}

void *exported(const std::string &name)
{
    void *address = dlsym(RTLD_DEFAULT, name.c_str());
    EXPECT_NE(address, nullptr) << name << " is not exported";
    return address;
}

int64_t call_integer(void *routine, const std::vector<int64_t> &arguments)
{
    return call<int64_t>(routine, arguments);
}
double call_real(void *routine, const std::vector<int64_t> &arguments)
{
    return call<double>(routine, arguments);
}
float call_single(void *routine, const std::vector<int64_t> &arguments)
{
    return call<float>(routine, arguments);
}
