// The C headers. A routine's public spellings share one function type, so that its arguments are written
// once.
#include "kinds.h"
#include "names.h"
#include "printers.h"

#include <algorithm>
#include <map>
#include <ostream>

namespace tablegen {
namespace {

/// The declaration of a function; a star of its result stands at its name.
std::string declaration(const routine &row, const std::string &name, const std::string &parameters)
{
    const std::string result = c_result(row);
    return result + (result.ends_with('*') ? "" : " ") + name + "(" + parameters + ");\n";
}

/// A single spelling needs no type. It may not have one: some names differ in case only and would define
/// the same type twice, which C before 2011 refuses.
void print_spellings(std::ostream &out, const routine &row, const std::vector<std::string> &names)
{
    if (names.size() == 1) {
        out << declaration(row, names.front(), parameter_list(row));
        return;
    }
    const std::string type = "xkl_type_" + row.lower();
    out << "typedef " << declaration(row, type, parameter_list(row)) << "extern " << type;
    for (const std::string &name : names)
        out << (name == names.front() ? " " : ", ") << name;
    out << ";\n";
}

std::string value_parameters(const routine &row)
{
    std::string text;
    for (const argument &each : row.arguments) {
        const std::string type = is_service_value(each) ? value_type(each) : c_type(each, row.element);
        text += (text.empty() ? "" : ", ") + type + each.name;
    }
    return text.empty() ? "void" : text;
}

/// The mixed-case spelling first where it is the same function: it is the one that C programs use.
std::vector<std::string> service_spellings(const routine &row)
{
    std::vector<std::string> names = {body_symbol(row)};
    for (const std::string &name : other_spellings(row))
        names.push_back(name);
    std::stable_partition(names.begin(), names.end(), [&](const std::string &name) {
        return name != to_lower(name) && name != row.name && name.starts_with("XKL_");
    });
    return names;
}

void print_service(std::ostream &out, const routine &row)
{
    if (!mixed_body(row).empty())
        out << declaration(row, mixed_body(row), value_parameters(row));
    if (row.frame.kind != "forward-mixed")
        print_spellings(out, row, service_spellings(row));
}

std::string guard_of(std::string header)
{
    std::replace(header.begin(), header.end(), '.', '_');
    std::transform(header.begin(), header.end(), header.begin(),
                   [](unsigned char c) { return std::toupper(c); });
    return header;
}

const char blas_text[] =
    "the Fortran interface of BLAS and its extensions, as C sees it.\n"
    "   Every argument goes by address; characters are read as one letter in either case and\n"
    "   their hidden lengths may be left out. Integers are 64-bit. Matrices are column-major:\n"
    "   element (i,j) of a, from 0, is a[i + j*lda]. A negative increment walks its vector from\n"
    "   the end. A bad argument is reported to xerbla with the routine's name and the argument's\n"
    "   place in the list, from 1; nothing is then written. The complex dot products put their\n"
    "   result at the address that leads their list";
const char lapack_text[] =
    "the Fortran interface of LAPACK, as C sees it. Arguments, integers and matrices are\n"
    "   as in xkl_blas.h; logicals are as wide as integers. Each list is that of the reference LAPACK.\n"
    "   info tells how it went: 0 done, -i argument i was bad (and reported to xerbla), above 0 the\n"
    "   computation did not succeed, as the routine's own documentation tells. A workspace size of -1\n"
    "   asks for the best sizes, which come back in the first elements of the workspaces. Complex\n"
    "   functions return their values";
const char matcopy_text[] =
    "copies, transposes and adds matrices that are stored by columns or by rows.\n"
    "   ordering is C for matrices stored by columns, element (i,j) from 0 at a[i + j*lda], and R for\n"
    "   those stored by rows, at a[i*lda + j]. op, the letter trans in either case, is N (the matrix as\n"
    "   it is), T (transposed), C (transposed and conjugated) or R (conjugated). rows and cols are the\n"
    "   source's, for the sums those of the result. Sizes, leading dimensions and strides are unsigned\n"
    "   and count elements. A bad argument is reported to xerbla with the routine's lower-case name and\n"
    "   the argument's place in the list, from 1, and nothing is written, but for the cases that stand\n"
    "   below; a leading dimension of 0 is bad even for an empty matrix. The mixed-case spellings are\n"
    "   for C and take values, complex scalars by address. The others are for Fortran and read every\n"
    "   argument through its address";
const char service_text[] =
    "the library's own controls: version, threads, memory, tracing, reproducible\n"
    "   results, callbacks. Upper- and lower-case spellings are for Fortran and read values through\n"
    "   addresses; mixed-case spellings are for C and take values";
const char spblas_text[] =
    "products and solves with sparse matrices.\n"
    "   The routines named by storage (xkl_dcsrmv...) take every argument by address and the matrix as\n"
    "   arrays; their lists are the classic ones. matdescra is a string: G general, S symmetric,\n"
    "   H Hermitian, T triangular, A antisymmetric, D diagonal; then L or U for the triangle; N or U for\n"
    "   a diagonal as stored or of ones; F for indices from 1, C for indices from 0. A bad argument is\n"
    "   reported to xerbla with the argument's place in the list, from 1, nothing is written, and 1 is\n"
    "   returned; otherwise 0. The routines on handles (xkl_sparse_...) take values, complex scalars by\n"
    "   address, report nothing, and return a status. Integers are 64-bit, enumerations 32-bit";
const char solvers_text[] =
    "direct and iterative solvers of sparse systems, nonlinear least squares, and\n"
    "   eigenvalues in an interval. Every argument goes by address; integers are 64-bit. Bad input is\n"
    "   answered by error codes and statuses, see xkl_solver_types.h. The control arrays are explained\n"
    "   in docs/sparse.md";
const std::map<std::string, const char *> family_texts = {
    {"blas", blas_text},       {"lapack", lapack_text}, {"matcopy", matcopy_text},
    {"service", service_text}, {"spblas", spblas_text}, {"solvers", solvers_text}};

} // namespace

std::string public_header(const std::string &family)
{
    return family == "inspector" ? "xkl_spblas.h"
           : family == "rci"     ? "xkl_solvers.h"
                                 : "xkl_" + family + ".h";
}

std::vector<std::string> type_headers(const std::string &family)
{
    if (family == "spblas" || family == "inspector")
        return {"xkl_types.h", "xkl_sparse_types.h"};
    if (family == "solvers" || family == "rci")
        return {"xkl_types.h", "xkl_solver_types.h"};
    return {"xkl_types.h"};
}

void print_prologue(std::ostream &out, const std::string &header, const std::string &text,
                    const std::vector<std::string> &includes)
{
    out << "/* " << header << ": " << text << ". */\n#ifndef " << guard_of(header) << "\n#define "
        << guard_of(header) << "\n\n";
    for (const std::string &each : includes)
        out << "#include \"" << each << "\"\n";
    out << "\n#ifdef __cplusplus\nextern \"C\" {\n#endif\n";
}

void print_epilogue(std::ostream &out)
{
    out << "\n#ifdef __cplusplus\n}\n#endif\n\n#endif\n";
}

void print_c_header(std::ostream &out, const routines &rows, const std::string &header)
{
    const bool service = rows.front().family == "service";
    print_prologue(out, header, family_texts.at(rows.front().family), type_headers(rows.front().family));
    std::string about;
    for (const routine &row : rows) {
        if (row.about != about)
            out << "\n/** " << row.about << " */\n";
        about = row.about;
        if (service)
            print_service(out, row);
        else {
            if (row.is_valued())
                out << declaration(row, mixed_body(row), valued_parameter_list(row));
            print_spellings(out, row, public_spellings(row));
        }
    }
    print_epilogue(out);
}

void print_cblas_header(std::ostream &out, const std::vector<shaped> &rows)
{
    print_prologue(out, "xkl_cblas.h",
                   R"(the C interface of BLAS. Sizes, increments and leading dimensions are 64-bit
   values, real scalars values, complex scalars addresses. With CblasRowMajor, element (i,j) of a,
   from 0, is a[i*lda + j], so lda is at least the number of columns. A bad argument is reported to
   cblas_xerbla with the routine's name and the argument's place in the C list, from 1. The names
   ending in _64 are the same routines)");
    std::string about;
    for (const shaped &row : rows) {
        if (row.base->about != about)
            out << "\n/** " << row.base->about << " */\n";
        about = row.base->about;
        for (const std::string suffix : {"", "_64"})
            out << declaration(*row.base, cblas_name(row) + suffix, cblas_parameter_list(row));
    }
    print_epilogue(out);
}

} // namespace tablegen
