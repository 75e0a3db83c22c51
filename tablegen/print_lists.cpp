// Lists: exported names, the linker's version script, and the rows that table-driven tests walk.
#include "kinds.h"
#include "names.h"
#include "printers.h"

#include <ostream>

namespace tablegen {
name_set exported(const routines &rows, const std::vector<shaped> &shapes)
{
    name_set names;
    for (const routine &row : rows)
        for (const std::string &name : exported_names(row))
            names.insert(name);
    for (const shaped &row : shapes)
        names.insert({cblas_name(row), cblas_name(row) + "_64"});
    return names;
}

void print_exports(std::ostream &out, const name_set &names)
{
    for (const std::string &name : names)
        out << name << "\n";
}

void print_version_script(std::ostream &out, const name_set &names)
{
    out << "{\n  global:\n";
    for (const std::string &name : names)
        out << "    " << name << ";\n";
    out << "  local: *;\n};\n";
}

void print_test_rows(std::ostream &out, const routines &rows)
{
    out << "#include \"test_rows.h\"\n\nconst routine_row " << rows.front().family << "_rows[] = {\n";
    for (const routine &row : rows) {
        std::string names, kinds;
        for (const argument &each : all_arguments(row)) {
            names += (names.empty() ? "" : " ") + each.name;
            kinds += (kinds.empty() ? "" : " ") + each.kind + (row.is_reading() && each.written ? "!" : "");
        }
        out << "    {\"" << row.name << "\", \"" << body_symbol(row) << "\", \"" << core_entry(row)
            << "\",\n     \"" << (row.has_checker() ? checker(row) : "") << "\", \"" << row.frame.kind
            << "\", " << (row.frame.group ? "true" : "false") << ", \"" << row.result << "\", "
            << row.failed_result << ",\n     \"" << reported_name(row) << "\", \"" << trace_format(row)
            << "\", \"" << trace_kinds(row) << "\",\n     \"" << names << "\", \"" << kinds
            << "\",\n     \"";
        for (const std::string &name : other_spellings(row))
            out << (name == other_spellings(row).front() ? "" : " ") << name;
        out << "\", \"" << mixed_body(row) << "\"},\n";
    }
    out << "};\nconst int " << rows.front().family << "_row_count = " << rows.size() << ";\n";
}

void print_cblas_test_rows(std::ostream &out, const std::vector<shaped> &rows)
{
    out << "#include \"test_rows.h\"\n\nconst cblas_row cblas_rows[] = {\n";
    for (const shaped &row : rows) {
        std::string names, types;
        for (const argument &each : cblas_arguments(row)) {
            names += (names.empty() ? "" : " ") + each.name;
            types += (types.empty() ? "" : " ") + each.kind + (each.written ? "!" : "");
        }
        const char element = row.base->element ? row.base->element : '-';
        out << "    {\"" << cblas_name(row) << "\", \"" << row.shape << "\", \"" << row.base->name
            << "\", '" << element << "', \"" << row.base->result << "\", \"" << names << "\", \"" << types
            << "\"},\n";
    }
    out << "};\nconst int cblas_row_count = " << rows.size() << ";\n";
}

} // namespace tablegen
