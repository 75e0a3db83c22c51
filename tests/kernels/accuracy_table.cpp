// Prints how far each function's results are off, as a Markdown table.
// usage: kernels_accuracy_table [SAMPLES [SEED]]
#include "accuracy.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <map>

namespace {

std::string text_of(double error)
{
    char text[32];
    std::snprintf(text, sizeof text, std::isinf(error) ? "none" : error < 1000 ? "%.2f" : "%.1e", error);
    return text;
}

/// Cells of one function: the three modes of the wide type, then those of the narrow one
using row = std::map<char, measurement>;

void print(const std::string &title, const std::vector<promise> &promises, const effort &wanted, char wide,
           char narrow)
{
    std::map<std::string, row> rows;
    std::vector<std::string> order;
    for (const promise &p : promises) {
        if (p.type != wide && p.type != narrow)
            continue;
        if (std::find(order.begin(), order.end(), p.function) == order.end())
            order.push_back(p.function);
        if (const std::optional<measurement> measured = measure(p, wanted))
            rows[p.function][p.type] = *measured;
    }
    std::printf("| %s | `%c` HA | `%c` LA | `%c` EP | `%c` HA | `%c` LA | `%c` EP "
                "|\n|---|--:|--:|--:|--:|--:|--:|\n",
                title.c_str(), wide, wide, wide, narrow, narrow, narrow);
    for (const std::string &function : order) {
        std::printf("| %s |", function.c_str());
        for (const char type : {wide, narrow})
            for (int mode = 0; mode < 3; ++mode)
                std::printf(" %s |", rows[function].contains(type)
                                         ? text_of(rows[function].at(type).modes[mode].error).c_str()
                                         : "");
        std::puts("");
    }
}

} // namespace

int main(int argc, char **argv)
try {
    effort wanted = wanted_effort();
    if (argc > 1)
        wanted.samples = std::max(64, std::atoi(argv[1]));
    if (argc > 2)
        wanted.seed = static_cast<unsigned>(std::atoi(argv[2]));
    const std::vector<promise> promises = read_promises(ACCURACY_TABLE);
    print("Real", promises, wanted, 'd', 's');
    std::puts("");
    print("Complex", promises, wanted, 'z', 'c');
    return 0;
} catch (const std::exception &error) {
    std::fprintf(stderr, "kernels_accuracy_table: %s\n", error.what());
    return 1;
}
