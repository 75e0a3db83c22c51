// Everything about core entries: prototypes, the default core's forwards, own entries, stand-ins and
// manifest, and the two small cores that stand in its place: one that records what reaches it (tests) and
// one that does nothing (measurements).
#include "kinds.h"
#include "names.h"
#include "printers.h"

#include <algorithm>
#include <ostream>
#include <set>

namespace tablegen {
namespace {

const provider *provider_of(const routine &row, const std::vector<provider> &providers)
{
    for (const provider &each : providers)
        if (each.name == row.name)
            return &each;
    return nullptr;
}

/// The rows that stand for a core entry, each entry once: several forwarders may share one.
routines with_entries(const routines &rows)
{
    routines chosen;
    std::set<std::string> seen;
    for (const routine &row : rows)
        if (row.frame.kind != "own" && !row.is_here() && seen.insert(core_entry(row)).second)
            chosen.push_back(row);
    return chosen;
}

std::string entry_parameters(const routine &row)
{
    if (row.family != "service")
        return core_parameter_list(row);
    std::string text;
    for (const argument &each : row.arguments)
        text += (text.empty() ? "" : ", ") +
                (is_service_value(each) ? value_type(each) : c_type(each, row.element)) + each.name;
    return text.empty() ? "void" : text;
}

/// The arguments of an entry, hidden lengths included.
std::vector<argument> core_arguments(const routine &row)
{
    std::vector<argument> arguments = all_arguments(row);
    for (const argument &each : row.arguments)
        if (is_character(each))
            arguments.push_back({"length_" + each.name, "=int64_t", false});
    return arguments;
}

int entry_words(const routine &row)
{
    return static_cast<int>(all_arguments(row).size()) + (row.frame.group ? 1 : 0) +
           (row.appends_one() ? 1 : 0) + hidden_lengths(row);
}

} // namespace

void print_core_header(std::ostream &out, const routines &rows)
{
    const auto takes_descriptor = [](const routine &row) {
        return std::any_of(row.arguments.begin(), row.arguments.end(),
                           [](const argument &each) { return each.kind == "*descriptor"; });
    };
    out << "// Generated from " << rows.front().family
        << "'s tables: what the interface library imports from its core.\n"
        << "#pragma once\n";
    for (const std::string &header : type_headers(rows.front().family))
        out << "#include \"" << header << "\"\n";
    out << "#pragma GCC visibility push(default)\nextern \"C\" {\n";
    if (std::any_of(rows.begin(), rows.end(), takes_descriptor))
        out << "struct DFTI_DESCRIPTOR; // xkl_dfti.h\n";
    for (const routine &row : with_entries(rows))
        out << core_result(row) << " " << core_entry(row) << "(" << entry_parameters(row) << ");\n";
    out << "}\n#pragma GCC visibility pop\n";
}

void print_core_forwards(std::ostream &out, const routines &rows, const std::vector<provider> &providers)
{
    out << "#include \"core_" << rows.front().family << ".h\"\n#include \"openblas/forward.h\"\n"
        << "#include \"service/missing_entry.h\"\n";
    for (const routine &row : with_entries(rows)) {
        const provider *by = provider_of(row, providers);
        if (by && by->by == "own")
            continue;
        const std::string result = core_result(row);
        out << "\n// " << row.name << ": " << row.place << "\n";
        if (!by) {
            out << "extern \"C\" " << result << " " << core_entry(row) << "("
                << core_parameter_list(row, false) << ")\n{\n    xkl_core_missing_entry(\""
                << core_entry(row) << "\");\n}\n";
            continue;
        }
        const std::string kernel = by->callee + "_";
        out << "extern \"C\" " << result << " " << kernel << "(" << core_parameter_list(row) << ");\n"
            << "extern \"C\" " << result << " " << core_entry(row) << "(" << core_parameter_list(row)
            << ")\n{\n"
            << "    return xkl::core::on_openblas<" << kernel << ">(" << argument_names(core_arguments(row))
            << ");\n}\n";
    }
}

void print_core_own(std::ostream &out, const routines &rows, const std::vector<provider> &providers,
                    const std::string &header)
{
    const auto first = std::find_if(providers.begin(), providers.end(),
                                    [&](const provider &each) { return each.header == header; });
    if (first == providers.end())
        throw table_error("no provider is `own:" + header + "`");
    // The element types come first: the templates have the core's, and so must the prototypes.
    out << "#include \"blas/elements.h\"\n#include \"core_" << rows.front().family << ".h\"\n#include \""
        << first->folder << "/" << header << ".h\" // named by the core's providers.tbl\n";
    for (const routine &row : rows) {
        const provider *by = provider_of(row, providers);
        if (!by || by->header != header)
            continue;
        const std::string type = row.element ? "<" + c_element("t", row.element) + ">" : "";
        out << "\n// " << row.name << ": " << row.place << "\nextern \"C\" " << core_result(row) << " "
            << core_entry(row) << "(" << visible_parameter_list(row)
            << ")\n{\n    return xkl::core::" << by->callee << type << "("
            << argument_names(all_arguments(row)) << ");\n}\n";
    }
}

void print_core_calls(std::ostream &out, const routines &rows)
{
    out << "// An entry by its routine's name without the type: gemm<float> is xkl_blas_sgemm.\n"
        << "#pragma once\nnamespace xkl::core::entries {\n";
    // Types of two letters come last, where no type of one letter has the name: nrm2<XKL_Complex8> is SCNRM2.
    routines entries = with_entries(rows);
    std::stable_partition(entries.begin(), entries.end(),
                          [](const routine &row) { return row.name.size() == row.untyped.size() + 1; });
    std::set<std::string> names;
    std::set<std::pair<std::string, char>> types;
    for (const routine &row : entries) {
        if (row.untyped.empty() || !types.emplace(row.untyped, row.element).second)
            continue;
        if (names.insert(row.untyped).second)
            out << "template <class T>\ninline constexpr decltype(nullptr) " << row.untyped << "{};\n";
        out << "template <>\ninline constexpr auto *" << row.untyped << "<" << c_element("t", row.element)
            << "> = " << core_entry(row) << ";\n";
    }
    out << "}\n";
}

void print_core_manifest(std::ostream &out, const routines &rows, const std::vector<provider> &providers)
{
    out << "#include \"manifest.h\"\n\nnamespace xkl::core {\nnamespace {\nconst manifest_entry "
           "entries[] "
           "= {\n";
    const routines entries = with_entries(rows);
    for (const routine &row : entries) {
        const provider *by = provider_of(row, providers);
        const bool service = row.family == "service"; // all written in core/service
        out << "    {\"" << row.family << "\", \"" << core_entry(row) << "\", provider::"
            << (service ? "own"
                : by    ? by->by
                        : "none")
            << "},\n";
    }
    out << "};\n}\nconst manifest_part " << rows.front().family << "_manifest = {entries, "
        << entries.size() << "};\n}\n";
}

void print_null_core(std::ostream &out, const routines &rows)
{
    for (const routine &row : with_entries(rows))
        out << "__attribute__((weak)) void " << core_entry(row) << "(void) {}\n";
}

/// The parameters of a recording entry, a word each but for values that a caller passes otherwise, and the
/// words that it records.
struct recorded_list {
    std::string parameters, words;
};

/// An argument of a reading frame. A descriptor is three words.
void record_value(const routine &row, const argument &arg, const std::string &name, std::string &type,
                  std::string &word)
{
    const std::string value = handle_type(arg, row.element);
    if (value == "float " || value == "double ") {
        type = value;
        word = "recorded_bits(" + name + ")";
    } else if (arg.kind == "&matrix_descr" && !arg.written) {
        type = "recorded_descriptor ";
        word = name + ".type, " + name + ".mode, " + name + ".diag";
    } else if (is_read_value(arg, row.element) && arg.kind != "i" && arg.kind != "&sparse_matrix_t") {
        type = "int32_t ";
    }
}

recorded_list recorded_list_of(const routine &row)
{
    recorded_list list;
    for (int i = 0; i < entry_words(row); ++i) {
        std::string type = "int64_t ", name = "a" + std::to_string(i), word = name;
        if (row.is_valued()) {
            const argument &each = row.arguments[static_cast<std::size_t>(i)];
            const std::string value = valued_type(each, row.element);
            const bool real = value == "float " || value == "double ";
            type = real || value == "char " ? value : type;
            word = real ? "recorded_bits(" + name + ")" : name;
        }
        if (row.is_reading())
            record_value(row, row.arguments[static_cast<std::size_t>(i)], name, type, word);
        if (row.appends_one() && i + 1 == entry_words(row))
            type = "int32_t ";
        list.parameters += (i ? ", " : "") + type + name;
        list.words += (i ? ", " : "") + word;
    }
    return list;
}

void print_recording_core(std::ostream &out, const routines &rows)
{
    out << "#include \"recorder.h\"\n#include \"xkl_types.h\"\n\nextern \"C\" {\n";
    for (const routine &row : with_entries(rows)) {
        const recorded_list list = recorded_list_of(row);
        // Addresses come back as the integers that they are.
        const bool address = row.result.starts_with("=") || row.result == "pointer";
        const std::string result = address ? "int64_t" : core_result(row);
        // Weak, so that the entries that the tests' core implements itself win.
        out << "[[gnu::weak]] " << result << " " << core_entry(row) << "(" << list.parameters
            << ")\n{\n    record(\"" << core_entry(row) << "\", {" << list.words << "});\n";
        if (result == "float" || result == "double")
            out << "    return static_cast<" << result << ">(recorded_real());\n";
        else if (row.result == "complex")
            out << "    return recorded_complex<" << result << ">();\n";
        else if (result != "void")
            out << "    return recorded_integer();\n";
        out << "}\n";
    }
    out << "}\n";
}

} // namespace tablegen
