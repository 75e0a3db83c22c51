#include "vml_accuracy.h"

#include <fstream>
#include <sstream>

namespace tablegen {
namespace {

std::string amount(const std::string &bound)
{
    return bound == "half" ? "half of the digits" : bound + " ULP";
}

std::string bounds(const std::string &high, const std::string &low, const std::string &enhanced)
{
    if (high != low || low != enhanced)
        return "at most " + amount(high) + " (HA), " + amount(low) + " (LA), " + amount(enhanced) + " (EP)";
    return high == "0" ? "none" : "at most " + amount(high) + " in all modes";
}

} // namespace

vml_accuracy read_vml_accuracy(const std::string &file)
{
    std::ifstream in(file);
    if (!in)
        throw table_error(file + ": can't be opened");
    vml_accuracy all;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        std::istringstream words(line);
        std::string function, types, high, low, enhanced;
        if (!(words >> function) || function.starts_with("#"))
            continue;
        if (!(words >> types >> high >> low >> enhanced))
            throw table_error(file + ":" + std::to_string(number) +
                              ": a row starts with function, types and the errors in three modes");
        for (const char type : types)
            if (type != ',')
                all[type + function] = bounds(high, low, enhanced);
    }
    return all;
}

std::string vml_error_lines(const vml_accuracy &accuracy, const std::vector<vml_function> &functions,
                            const std::string &place)
{
    std::vector<std::pair<std::string, std::string>> groups; // types and their errors
    for (const vml_function &each : functions) {
        if (each.place != place || each.kind == vml_class::pack)
            continue;
        const auto found = accuracy.find(vml_form{&each}.name());
        if (found == accuracy.end())
            throw table_error(place + ": nothing is said about the errors of " + vml_form{&each}.name());
        if (groups.empty() || groups.back().second != found->second)
            groups.emplace_back(std::string(1, each.element), found->second);
        else
            groups.back().first += std::string(", ") + each.element;
    }
    std::string lines;
    for (const auto &[types, error] : groups)
        lines += (lines.empty() ? "Error" : "\nError") + (groups.size() > 1 ? " of " + types : "") + ": " +
                 error + ".";
    return lines;
}

} // namespace tablegen
