// The kinds of arguments of random streams and tasks: what each is in C, in a frame, in a trace line, for
// the kernel and in Fortran.
#include "vsl_table.h"

#include <map>

namespace tablegen {
namespace {

/// `T` stands for the routine's elements, `R` for its reals: its elements, or double beside integers.
struct kind_names {
    std::string c;       // with the blank that C wants ahead of a name
    std::string frame;   // class of src/vsl/arguments.h; empty for arguments of tasks
    std::string trace;   // conversion; of a real that of doubles
    std::string kernel;  // what the kernel receives, if it is not the same; `,` between two
    std::string fortran; // type, for interfaces by bind(C)
    std::string shape;   // behind the type there: `value`, `in`, `inout`
    bool array = false;
};

const std::map<std::string, kind_names> kinds = {
    {"int", {"int64_t ", "integer", "%d", "int32_t ", "integer(c_int64_t)", "value"}},
    {"long", {"int64_t ", "long_integer", "%lli", "int32_t ", "integer(c_int64_t)", "value"}},
    {"count", {"int64_t ", "count", "%lli", "", "integer(c_int64_t)", "value"}},
    {"brng", {"int64_t ", "engine", "%s", "int32_t ", "integer(c_int64_t)", "value"}},
    {"index", {"int64_t ", "engine_index", "%d", "int32_t ", "integer(c_int64_t)", "value"}},
    {"seed", {"int64_t ", "seed", "%lli", "int32_t ,const uint32_t *", "integer(c_int64_t)", "value"}},
    {"real", {"R ", "real", "%lf", "", "R", "value"}},
    {"reals", {"const R *", "address", "%p", "", "R", "in", true}},
    {"along", {"const R *", "along", "%p", "", "R", "in", true}},
    {"elements", {"T *", "address", "%p", "", "T", "inout", true}}, // r
    {"words", {"const uint32_t *", "address", "%p", "", "integer(c_int32_t)", "in", true}},
    {"words64", {"const uint64_t *", "address", "%p", "", "integer(c_int64_t)", "in", true}},
    {"update", {"?UpdateFuncPtr ", "address", "%p", "", "type(c_funptr)", "value"}},
    {"properties", {"const VSLBRngProperties *", "address", "%p", "", "type(c_ptr)", "value"}},
    {"properties_out", {"VSLBRngProperties *", "address", "%p", "", "type(c_ptr)", "value"}},
    {"stream", {"VSLStreamStatePtr ", "stream", "%p", "", "type(c_ptr)", "value"}},
    {"out", {"VSLStreamStatePtr *", "address", "%p", "", "type(c_ptr)", "inout"}},
    {"new", {"VSLStreamStatePtr *", "new_stream", "%p", "", "type(c_ptr)", "inout"}},
    {"held", {"VSLStreamStatePtr *", "held_stream", "%p", "", "type(c_ptr)", "inout"}},
    {"text",
     {"const char *", "file_name", "%s,%d", "const char *,int32_t ", "character(c_char)", "in", true}},
    {"bytes", {"const char *", "address", "%p", "", "character(c_char)", "in", true}},
    {"bytes_out", {"char *", "address", "%p", "", "character(c_char)", "inout", true}},
    {"task", {"VSLConvTaskPtr ", "", "", "", "type(c_ptr)", "inout"}},
    {"task_at", {"VSLConvTaskPtr *", "", "", "", "type(c_ptr)", "inout"}},
    {"ints", {"const int64_t *", "", "", "", "integer(c_int64_t)", "in", true}},
    {"in", {"const T *", "", "", "", "T", "in", true}},
    {"result", {"T *", "", "", "", "T", "inout", true}},
};

std::string c_element(char element)
{
    static const std::map<char, std::string> types = {
        {'s', "float"},   {'d', "double"},   {'c', "XKL_Complex8"}, {'z', "XKL_Complex16"},
        {'i', "int32_t"}, {'u', "uint32_t"}, {'l', "uint64_t"}};
    return types.at(element);
}

std::string fortran_element(char element)
{
    static const std::map<char, std::string> types = {{'s', "real(c_float)"},
                                                      {'d', "real(c_double)"},
                                                      {'c', "complex(c_float_complex)"},
                                                      {'z', "complex(c_double_complex)"},
                                                      {'i', "integer(c_int32_t)"},
                                                      {'u', "integer(c_int32_t)"},
                                                      {'l', "integer(c_int64_t)"}};
    return types.at(element);
}

/// A routine's reals: single precision in s routines alone.
char real_of(char element)
{
    return element == 's' ? 's' : 'd';
}

/// Puts a routine's types in the places of T, R and `?`. No name of a kind has capitals T or R elsewhere
/// ahead of its blank.
std::string typed(std::string text, char element)
{
    for (const auto &[mark, type] :
         {std::pair{std::string("T "), element}, {std::string("R "), real_of(element)}})
        if (const auto at = text.find(mark); at == 0 || text.ends_with("const " + mark + "*"))
            return text.replace(at, 1, c_element(type));
    if (text.starts_with("?"))
        return text.replace(0, 1, element == 'u' ? "i" : std::string(1, element));
    return text;
}

} // namespace

bool vsl_kind_exists(const std::string &kind)
{
    return kinds.contains(kind);
}

std::string vsl_c_type(const vsl_argument &argument, char element)
{
    return typed(kinds.at(argument.kind).c, element);
}

bool vsl_is_value(const vsl_argument &argument)
{
    return !kinds.at(argument.kind).c.ends_with('*');
}

std::string vsl_address_type(const vsl_argument &argument, char element)
{
    const std::string type = vsl_c_type(argument, element);
    if (!vsl_is_value(argument))
        return type;
    return argument.kind == "task" ? type + "*" : "const " + type + "*";
}

std::vector<std::string> vsl_kernel_types(const vsl_argument &argument, char element)
{
    const std::string &given = kinds.at(argument.kind).kernel;
    if (given.empty())
        return {vsl_c_type(argument, element)};
    const auto comma = given.find(',');
    if (comma == std::string::npos)
        return {given};
    return {given.substr(0, comma), given.substr(comma + 1)};
}

std::string vsl_argument_class(const vsl_argument &argument)
{
    return "argument<" + kinds.at(argument.kind).frame +
           (argument.check.empty() ? "" : ", " + argument.check) + ">";
}

std::string vsl_trace_format(const vsl_routine &row)
{
    std::string text;
    for (const vsl_argument &each : row.list()) {
        const bool single = each.kind == "real" && row.element == 's';
        text += (text.empty() ? "" : ",") + (single ? std::string("%f") : kinds.at(each.kind).trace);
    }
    return "%s(" + text + ")";
}

std::string vsl_fortran_declaration(const vsl_argument &argument, char element, bool bound)
{
    const kind_names &kind = kinds.at(argument.kind);
    const std::string type = kind.fortran == "T"   ? fortran_element(element)
                             : kind.fortran == "R" ? fortran_element(real_of(element))
                                                   : kind.fortran;
    const bool value = kind.shape == "value";
    const std::string passed = value && bound ? "value"
                               : value        ? "intent(in)"
                                              : "intent(" + kind.shape + ")";
    return type + ", " + passed + " :: " + argument.name + (kind.array ? "(*)" : "");
}

} // namespace tablegen
