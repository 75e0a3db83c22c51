// LAPACKE over the default core, beside the reference LAPACKE of a distribution: the same calls in two
// processes, since the names clash, and the same info and the same numbers expected of them.
//
//   lapacke_differential run LIBRARY FILE      makes all calls, and writes down what became of them
//   lapacke_differential compare FILE FILE EXCEPTIONS   how many were compared, and what differs
//
// The first file's calls in row-major are compared with those in column-major, too.
#include "lapacke_problem.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <iostream>
#include <limits>
#include <map>
#include <set>
#include <sstream>
#include <vector>

using namespace lapacke;

namespace {

/// One call's outcome as a line: its name, the result, and for each array three sums over all of its memory:
/// two weighted ones, in which misplaced and changed elements show, and one that tells how large they may be.
std::string record(const std::string &name, double result, call &made)
{
    std::ostringstream text;
    text.precision(17);
    text << name << " " << result;
    for (std::size_t a = 0; a < made.arguments.size(); ++a) {
        const argument &each = made.arguments[a];
        if (!each.is_array)
            continue;
        number sums[2];
        double size = 0;
        const auto count = static_cast<int64_t>(each.memory.size() / size_of(each.element));
        for (int64_t i = 0; i < count; ++i) {
            const number value = each.element == 'a' ? number(each.memory[static_cast<std::size_t>(i)])
                                                     : read(each.memory.data(), each.element, i);
            const auto at = static_cast<double>(place_by_columns(made, a, i));
            if (!std::isfinite(std::abs(value))) { // NaN and infinity: where, not how much
                sums[1] += at + 1;
                continue;
            }
            sums[0] += value * std::cos(at);
            sums[1] += value * std::sin(3 * at);
            size += std::abs(value);
        }
        text << " " << each.name << " " << each.element << " " << size;
        for (const number &sum : sums)
            text << " " << sum.real() << " " << sum.imag();
    }
    return text.str() + "\n";
}

/// Every call that is made of one function.
std::string records_of(const lapacke_row &row, void *library)
{
    std::string text;
    const auto take = [&](const std::string &what, call &made) {
        text += record(row.name + ("/" + what), made.make("", library), made);
    };
    for (const int layout : layouts) {
        if (layout == row_major && !row.has_layout)
            continue;
        const std::string by = layout == row_major ? "rows" : "columns";
        for (const int set : {0, 1})
            for (const unsigned seed : {1u, 2u}) {
                call made(row, false, set);
                made.layout = layout;
                pose(made, set, seed);
                take(by + "-" + std::to_string(set) + "-" + std::to_string(seed), made);
            }
        for (const argument &each : call(row, false).arguments) {
            const bool narrow = each.is_leading_dimension() && layout == row_major;
            if (!narrow && !(each.is_array && each.is_number()))
                continue;
            call made(row, false);
            made.layout = layout;
            pose(made, 0, 3);
            argument &spoiled = made.at(each.name);
            spoiled.integer = -1;
            if (each.is_array)
                for (int64_t i = 0; i < leading_dimension * leading_dimension; ++i)
                    write(spoiled.memory.data(), spoiled.element, i,
                          std::numeric_limits<double>::quiet_NaN());
            take(by + (narrow ? "-bad-" : "-nan-") + each.name, made);
        }
    }
    return text;
}

/// Each function has a process of its own: a fault of the reference ends that alone.
int run(const char *path, const char *file)
{
    std::ofstream out(file);
    for (const lapacke_row &row : rows()) {
        int ends[2];
        if (pipe(ends) != 0)
            return 2;
        const pid_t child = fork();
        if (child == 0) {
            const int silent = open("/dev/null", O_WRONLY);
            dup2(silent, STDOUT_FILENO);
            dup2(silent, STDERR_FILENO);
            void *library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
            const bool there = library && dlsym(library, row.name);
            const std::string text = !library ? "?" : there ? records_of(row, library) : "";
            for (std::size_t done = 0; done < text.size();)
                done += static_cast<std::size_t>(write(ends[1], text.data() + done, text.size() - done));
            _exit(0);
        }
        close(ends[1]);
        char part[1 << 16];
        for (ssize_t got; (got = read(ends[0], part, sizeof part)) > 0;)
            out.write(part, got);
        close(ends[0]);
        int status = 0;
        waitpid(child, &status, 0);
        if (status != 0)
            out << row.name << "/ended\n";
    }
    return out ? 0 : 2;
}

std::map<std::string, std::string> read_records(const char *file)
{
    std::map<std::string, std::string> records;
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
        const auto end = line.find(' ');
        records[line.substr(0, end)] = end == std::string::npos ? "" : line.substr(end + 1);
    }
    return records;
}

std::string function_of(const std::string &record_name)
{
    return record_name.substr(0, record_name.find('/'));
}

/// Names what differs: `result`, or arrays.
std::vector<std::string> differences(const std::string &ours, const std::string &theirs)
{
    std::istringstream a(ours), b(theirs);
    double result_a = 0, result_b = 0;
    a >> result_a;
    b >> result_b;
    if (std::abs(result_a - result_b) > 1e-5 * std::abs(result_a))
        return {"result"};
    std::vector<std::string> names;
    std::string name;
    char element = 0;
    while (a >> name >> element && b >> name >> element) {
        double size_a = 0, size_b = 0, sum_a = 0, sum_b = 0;
        a >> size_a;
        b >> size_b;
        const bool single = element == 's' || element == 'c';
        const double allowed = (single ? 1e-4 : 1e-10) * (size_a + size_b);
        bool differs = std::abs(size_a - size_b) > allowed;
        for (int i = 0; i < 4; ++i) {
            a >> sum_a;
            b >> sum_b;
            differs = differs || std::abs(sum_a - sum_b) > allowed;
        }
        if (differs)
            names.push_back(name);
    }
    return names;
}

/// A line of the list of exceptions: routine, the start of the case's name or *, what may differ, and why.
struct exception {
    std::string stem, cases, subject;
    bool used = false;

    bool covers(const std::string &record_name, const std::string &what) const
    {
        const std::string function = function_of(record_name);
        const std::string stem_here = function.substr(std::strlen("LAPACKE_x"));
        const std::string case_here = record_name.substr(function.size() + 1);
        return stem == stem_here && (cases == "*" || case_here.starts_with(cases)) && subject == what;
    }
};

std::vector<exception> read_exceptions(const char *file)
{
    std::vector<exception> exceptions;
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
        std::istringstream columns(line);
        exception each;
        if (!line.starts_with("#") && columns >> each.stem >> each.cases >> each.subject)
            exceptions.push_back(each);
    }
    return exceptions;
}

bool is_excepted(std::vector<exception> &exceptions, const std::string &record_name,
                 const std::string &what)
{
    bool found = false;
    for (exception &each : exceptions)
        if (each.covers(record_name, what))
            found = each.used = true;
    return found;
}

int compare(const char *our_file, const char *their_file, const char *exception_file)
{
    const auto ours = read_records(our_file), theirs = read_records(their_file);
    auto exceptions = read_exceptions(exception_file);
    std::set<std::string> compared, failed;
    for (const auto &[name, outcome] : theirs) {
        const auto our = ours.find(name);
        const auto fails = [&, record_name = name](const std::string &what) {
            if (is_excepted(exceptions, record_name, what))
                return;
            std::cout << record_name << ": " << what << "\n";
            failed.insert(function_of(record_name));
        };
        if (name.ends_with("/ended")) // a fault, but its own
            continue;
        if (our == ours.end()) {
            fails("ended");
            continue;
        }
        compared.insert(function_of(name));
        for (const std::string &what : differences(our->second, outcome))
            fails(what);
    }
    for (const auto &[name, outcome] : ours) {
        const auto rows = name.find("/rows-0-"), second = name.find("/rows-1-");
        const auto at = rows != std::string::npos ? rows : second;
        if (at == std::string::npos)
            continue;
        const std::string function = name.substr(0, at), which = name.substr(at + 5);
        for (const std::string &what : differences(outcome, ours.at(function + "/columns" + which))) {
            const std::string both = function + "/rows=columns" + which;
            if (is_excepted(exceptions, both, what))
                continue;
            std::cout << both << ": " << what << "\n";
            failed.insert(function);
        }
    }
    for (const exception &each : exceptions)
        if (!each.used)
            std::cout << "unneeded: " << each.stem << " " << each.cases << " " << each.subject << "\n";
    std::cout << compared.size() << " functions compared, " << failed.size() << " differ\n";
    return compared.size() < 1000 || !failed.empty();
}

} // namespace

int main(int argc, char **argv)
{
    const std::string command = argc > 1 ? argv[1] : "";
    if (command == "run" && argc == 4)
        return run(argv[2], argv[3]);
    if (command == "compare" && argc == 5)
        return compare(argv[2], argv[3], argv[4]);
    std::cerr << "usage: lapacke_differential run LIBRARY FILE | compare FILE FILE EXCEPTIONS\n";
    return 2;
}
