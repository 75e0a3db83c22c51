// The public header of LAPACKE, its exported names, and the rows that tests walk.
#include "kinds.h"
#include "print_lapacke.h"
#include "printers.h"

#include <ostream>

namespace tablegen {
namespace {

const char header_text[] =
    "the C interface of LAPACK. Sizes are 64-bit values, matrices lie by rows\n"
    "   (LAPACK_ROW_MAJOR) or by columns (LAPACK_COL_MAJOR), and the result is info: 0 done, -i argument "
    "i\n"
    "   was bad or held a NaN, above 0 as LAPACK tells, LAPACK_WORK_MEMORY_ERROR or\n"
    "   LAPACK_TRANSPOSE_MEMORY_ERROR when there was no memory. LAPACKE_* looks for NaN (see\n"
    "   LAPACKE_set_nancheck) and obtains the workspaces; LAPACKE_*_work takes them from the caller. The "
    "names\n"
    "   ending in _64 are the same functions";

std::string result_type(const lapacke_routine &row)
{
    return row.base->has_result() ? c_result(*row.base) : "lapack_int";
}

} // namespace

void print_lapacke_header(std::ostream &out, const std::vector<lapacke_routine> &rows)
{
    print_prologue(out, "xkl_lapacke.h", header_text, {"xkl_lapacke_types.h", "xkl_lapacke_helpers.h"});
    std::string about;
    for (const lapacke_routine &row : rows) {
        if (row.base->about != about && !row.base->about.empty())
            out << "\n/** " << row.base->about << " */\n";
        about = row.base->about;
        for (const std::string suffix : {"", "_64"}) {
            if (!suffix.empty() && !row.has_twin)
                continue;
            out << result_type(row) << " " << row.name() << suffix << "("
                << c_parameter_list(row, row.parameters) << ");\n"
                << result_type(row) << " " << row.name() << "_work" << suffix << "("
                << c_parameter_list(row, row.work_parameters) << ");\n";
        }
    }
    print_epilogue(out);
}

void print_lapacke_test_rows(std::ostream &out, const std::vector<lapacke_routine> &rows)
{
    out << "#include \"test_rows.h\"\n\nconst lapacke_row lapacke_rows[] = {\n";
    const auto yes = [](bool value) { return value ? "true" : "false"; };
    for (const lapacke_routine &row : rows) {
        const char element = row.base->element ? row.base->element : '-';
        out << "    {\"" << row.name() << "\", \"" << row.base->lower() << "\", '" << element << "', \""
            << result_type(row) << "\", " << yes(row.has_layout) << ", " << yes(row.has_info()) << ", "
            << yes(row.has_twin);
        for (const auto *list : {&row.parameters, &row.work_parameters}) {
            std::string names, types;
            for (const c_parameter &each : *list) {
                names += (names.empty() ? "" : ",") + each.name;
                types += (types.empty() ? "" : ",") + each.type;
            }
            out << ",\n     \"" << names << "\", \"" << types << "\"";
        }
        out << "},\n";
    }
    out << "};\nconst int lapacke_row_count = " << rows.size() << ";\n";
}

std::set<std::string> lapacke_names(const std::vector<lapacke_routine> &rows)
{
    std::set<std::string> names;
    for (const lapacke_routine &row : rows)
        for (const std::string suffix : {"", "_64"})
            if (suffix.empty() || row.has_twin)
                names.insert({row.name() + suffix, row.name() + "_work" + suffix});
    return names;
}

} // namespace tablegen
