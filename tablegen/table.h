// The data model of a routine table: what one row says, and the routines it stands for. tablegen/README.md
// is the grammar for people; this file and table.cpp are the grammar for the build.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace tablegen {

/// A mistake in a table. The message starts with the file and line of the row, so that editors can jump to
/// it.
struct table_error : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// One `name:kind` of a row. Kinds are listed in tablegen/README.md.
struct argument {
    std::string name;
    std::string kind;
    bool written = false; // the routine stores through this address (`!` in the row)
};

/// What follows the name and the types in a row: `checked-group:gemm_batch/bare`.
struct frame_spec {
    std::string kind;   // checked, guarded, registered, traced, through, appending, solver, cluster,
                        // valued, reading, forward, own, entry
    bool group = false; // group batch: one value a group, and a trailing 0 to checker and core
    std::string rule;   // the checker's rule, or the step that a forwarder takes first
    std::string option; // `bare`: reported without trailing blank; `addresses`: the trace prints every
        // argument's address; forwarders: the mixed-case name; `here`: the frame's entry is in this library
};

/// One routine in one type: what the generator prints from.
struct routine {
    std::string
        name; // upper case as the Fortran standard writes it: DGEMM; service rows keep their own case
    char element = 0;    // S, D, C, Z, or 0 for a routine without type
    std::string untyped; // lower case, without its type: gemm; empty for a routine without type
    frame_spec frame;
    std::string result;    // `-`, int, real, first...
    int failed_result = 0; // what a function returns after a failed check
    std::vector<argument> arguments;
    std::string family;    // blas
    std::string entries;   // what core entries start with, behind xkl_: the family unless a table says
    std::string spellings; // blas, extension, direct, service...
    std::string about;     // one sentence for the public header
    std::string place;     // file:line of the row

    std::string lower() const;
    /// Two bodies, by address and by value; checker and core take values.
    bool is_valued() const { return frame.kind == "valued"; }
    /// Two bodies: one jumps to the core, the other one reads values through addresses first.
    bool is_reading() const { return frame.kind == "reading"; }
    /// A 32-bit 1 follows the arguments on their way to the core.
    bool appends_one() const { return frame.kind == "appending"; }
    bool has_checker() const { return frame.kind == "checked" || frame.kind == "guarded" || is_valued(); }
    bool has_trace() const
    {
        return frame.kind == "checked" || frame.kind == "registered" || frame.kind == "traced";
    }
    /// The entry that the frame calls is this library's own, and exported.
    bool is_here() const { return frame.kind == "through" && frame.option == "here"; }
    bool has_result() const { return result != "-" && result != "first"; }
};

/// All routines of the given tables, in the order of the rows and of their types.
std::vector<routine> read_tables(const std::vector<std::string> &files);

/// A row of the C interface: a shape over a routine of another table.
struct shaped {
    std::string shape;
    const routine *base;
    std::string place;
};

/// Rows `name types shape` of a C interface table, resolved against the routines they stand on.
std::vector<shaped> read_shapes(const std::string &file, const std::vector<routine> &base);

/// Who serves a core entry in the default core. Entries that no row names are stand-ins.
struct provider {
    std::string name;   // upper-case routine name
    std::string by;     // openblas: forwarded to a Fortran routine there; own: written in core/
    std::string callee; // that Fortran routine, lower case; or the core's own template or function
    std::string header; // own: the header that has it
    std::string folder; // of core/, where the table of providers is, and the header
};
std::vector<provider> read_providers(const std::vector<std::string> &files,
                                     const std::vector<routine> &base);

std::string to_lower(std::string text);

} // namespace tablegen
