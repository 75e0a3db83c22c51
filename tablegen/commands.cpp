#include "commands.h"

#include "fftw_printers.h"
#include "names.h"
#include "print_lapacke.h"
#include "printers.h"
#include "vml_printers.h"
#include "vsl_printers.h"

#include <algorithm>
#include <iterator>
#include <ostream>

namespace tablegen {

const char usage[] =
    R"(usage: tablegen COMMAND [-o FILE] [--tables FILE...] [--shapes FILE] [--providers FILE...] [--lapacke FILE...]
                        [--vml FILE] [--settings FILE] [--vsl FILE...] [--fftw FILE]
                        [--template FILE] [--option TEXT]
commands:
  frames         bodies and checkers under every spelling   (--option: header of the family's checks)
  frame-header   bodies and checkers, declared
  forwarders     service forwarders
  shapes         the C interface's bodies                   (--shapes)
  helpers        LAPACKE's NaN checks and layout copies
  lapacke, lapacke-64  LAPACKE's bodies, and their twins    (--lapacke)
  companion, companion-exports  complex functions as values, for gfortran
  c-header       public C prototypes                        (--option: name of the header)
  cblas-header   public prototypes of the C interface       (--shapes)
  helper-header  public prototypes of LAPACKE's helpers     (--option: name of the header)
  lapacke-header public prototypes of LAPACKE               (--lapacke)
  fortran        a Fortran module of explicit interfaces    (--option: C header of its constants, if any)
  dfti-fortran   the Fortran module of the Fourier transforms (--template)
  core-header    prototypes of the core's entries
  core-forwards  the default core's forwards and stand-ins  (--providers)
  core-own       the default core's own entries             (--providers; --option: their header)
  core-calls     the core's entries by name and type, for its own code
  core-manifest  who serves each core entry                 (--providers)
  null-core, recording-core   cores for measurements and tests
  exports, version-script     exported names                (--shapes, --lapacke, --vml, --settings, --vsl, --fftw, if any)
  test-rows, cblas-test-rows, lapacke-test-rows  what table-driven tests walk
  vml-core-header  prototypes of the vector math threaders   (--vml, as the rest of this group)
  vml-threaders    the default core's threaders
  vml-frames       entry points                              (--option: the types they are for)
  vml-settings     operations on mode, status and callback   (--settings)
  vml-header       public C prototypes                       (--settings; --option: the table of errors)
  vml-fortran      a Fortran module                          (--settings; --option: header of its constants)
  vml-test-rows, vml-recording-core, vml-recording-kernels, vml-null-core  for tests and measurements
  vml-kernels      kernels of one header, for all instruction sets (--providers; --option: the header)
  vml-kernel-tables  the tables of the kernel library         (--providers)
  vml-kernel-rows  what tests of the kernels walk            (--providers)
  vsl-frames       generators and stream routines            (--vsl, as the rest of this group)
  vsl-tasks        convolution and correlation
  vsl-header       public C prototypes
  vsl-fortran      a Fortran module                          (--option: the header of its constants)
  vsl-test-rows, vsl-recording-kernels  for tests
  fftw-frames      the FFTW3 interface's routines            (--fftw, as the rest of this group)
  fftw-header, fftw-constants, fftw-fortran  what C and Fortran programs compile against
  show           one routine as it is printed               (--option: its name)
)";

namespace {

/// All that the named tables hold
struct inputs {
    explicit inputs(const request &request);

    const request &asked;
    routines rows;
    vml_functions functions;
    std::vector<vml_setting> settings;
    std::vector<vml_kernel> kernels;
    std::vector<vsl_routine> random;
    fftw_table fftw;
    std::vector<shaped> shapes;
    std::vector<provider> providers;
    std::vector<lapacke_routine> lapacke;
    name_set names;
};

inputs::inputs(const request &request) : asked(request), rows(read_tables(asked.tables))
{
    if (!asked.vml.empty())
        functions = read_vml_table(asked.vml);
    if (!asked.fftw.empty())
        fftw = read_fftw_table(asked.fftw);
    random = read_vsl_tables(asked.vsl);
    if (rows.empty() && functions.empty() && random.empty() && fftw.routines.empty())
        throw table_error("no rows: name at least one table behind --tables, --vml, --vsl or --fftw");
    if (!asked.settings.empty())
        settings = read_vml_settings(asked.settings);
    if (!asked.shapes.empty())
        shapes = read_shapes(asked.shapes, rows);
    if (asked.command.starts_with("vml-kernel"))
        kernels = read_vml_kernels(asked.providers.at(0), functions);
    else
        providers = read_providers(asked.providers, rows);
    lapacke = read_lapacke(asked.lapacke, rows);
    names = exported(rows, shapes);
    names.merge(lapacke_names(lapacke));
    names.merge(vml_exported_names(functions, settings));
    names.merge(vsl_exported_names(random));
    names.merge(fftw_exported_names(fftw));
}

/// The rows of one name: none, or one.
template <class Row, class Name>
std::vector<Row> called(const std::string &name, const std::vector<Row> &rows, Name name_of)
{
    std::vector<Row> found;
    std::copy_if(rows.begin(), rows.end(), std::back_inserter(found),
                 [&](const Row &row) { return name_of(row) == name; });
    return found;
}

/// Fortran programs write names as they like; LAPACKE's helpers have another name in their table.
std::string name_in_lower_case(const routine &row)
{
    return row.frame.kind == "helper" ? to_lower(body_symbol(row)) : row.lower();
}

void show_routine(std::ostream &out, const routines &found)
{
    const routine &row = found.front();
    if (row.frame.kind == "own")
        out << "// " << row.name << ": " << row.place << ", written by hand in src/" << row.family << "\n";
    else if (row.family == "service")
        print_forwarders(out, found);
    else if (row.frame.kind == "helper")
        print_helpers(out, found);
    else
        print_frames(out, found, row.has_checker() ? row.family + "/checks.h" : "");
}

void show(std::ostream &out, const inputs &in)
{
    const std::string &name = in.asked.option;
    if (const auto found = called(to_lower(name), in.rows, name_in_lower_case); !found.empty())
        return show_routine(out, found);
    if (const auto found = called(name, in.lapacke, [](auto &row) { return row.name(); }); !found.empty())
        return print_lapacke(out, found, false);
    if (const auto found = called(name, in.shapes, cblas_name); !found.empty())
        return print_shapes(out, found);
    if (const auto found =
            called(name, in.functions, [](auto &row) { return vml_reported_name({.function = &row}); });
        !found.empty())
        return print_vml_frames(out, found, {found.front().element});
    if (const auto found = called(name, in.settings, [](auto &row) { return "vml" + row.name; });
        !found.empty())
        return print_vml_settings(out, found);
    if (const auto found = called(name, in.random, [](auto &row) { return row.name; }); !found.empty())
        return found.front().is == vsl_routine::frame::task ? print_vsl_tasks(out, found)
                                                            : print_vsl_frames(out, found);
    for (const fftw_family &family : fftw_families())
        if (auto found =
                called(name, in.fftw.routines, [&](auto &row) { return family.prefix + row.name; });
            !found.empty())
            return print_fftw_frames(out, {{}, found});
    throw table_error("no table has `" + name +
                      "`; write it like DGEMM, cblas_dgemm, LAPACKE_dgetrf, vdExp, vdRngGaussian or "
                      "fftw_plan_dft");
}

/// Code begins with a line that says where it comes from; text is for readers that know no such line, or have
/// one of their own.
enum output_kind { code, text };

struct command {
    const char *name;
    output_kind kind;
    void (*print)(std::ostream &, const inputs &);
};

constexpr command commands[] = {
    {"frames", code, [](auto &out, auto &in) { print_frames(out, in.rows, in.asked.option); }},
    {"frame-header", code, [](auto &out, auto &in) { print_frame_header(out, in.rows); }},
    {"forwarders", code, [](auto &out, auto &in) { print_forwarders(out, in.rows); }},
    {"shapes", code, [](auto &out, auto &in) { print_shapes(out, in.shapes); }},
    {"helpers", code, [](auto &out, auto &in) { print_helpers(out, in.rows); }},
    {"helper-header", text,
     [](auto &out, auto &in) { print_helper_header(out, in.rows, in.asked.option); }},
    {"lapacke", code, [](auto &out, auto &in) { print_lapacke(out, in.lapacke, false); }},
    {"lapacke-64", code, [](auto &out, auto &in) { print_lapacke(out, in.lapacke, true); }},
    {"lapacke-header", text, [](auto &out, auto &in) { print_lapacke_header(out, in.lapacke); }},
    {"companion", code, [](auto &out, auto &in) { print_companion(out, in.rows); }},
    {"companion-exports", text, [](auto &out, auto &in) { print_companion_exports(out, in.rows); }},
    {"c-header", text, [](auto &out, auto &in) { print_c_header(out, in.rows, in.asked.option); }},
    {"cblas-header", text, [](auto &out, auto &in) { print_cblas_header(out, in.shapes); }},
    {"fortran", text, [](auto &out, auto &in) { print_fortran_module(out, in.rows, in.asked.option); }},
    {"dfti-fortran", text,
     [](auto &out, auto &in) { print_dfti_module(out, in.rows, in.asked.template_file); }},
    {"core-header", code, [](auto &out, auto &in) { print_core_header(out, in.rows); }},
    {"core-forwards", code, [](auto &out, auto &in) { print_core_forwards(out, in.rows, in.providers); }},
    {"core-own", code,
     [](auto &out, auto &in) { print_core_own(out, in.rows, in.providers, in.asked.option); }},
    {"core-calls", code, [](auto &out, auto &in) { print_core_calls(out, in.rows); }},
    {"core-manifest", code, [](auto &out, auto &in) { print_core_manifest(out, in.rows, in.providers); }},
    {"null-core", code, [](auto &out, auto &in) { print_null_core(out, in.rows); }},
    {"recording-core", code, [](auto &out, auto &in) { print_recording_core(out, in.rows); }},
    {"exports", text, [](auto &out, auto &in) { print_exports(out, in.names); }},
    {"version-script", text, [](auto &out, auto &in) { print_version_script(out, in.names); }},
    {"test-rows", code, [](auto &out, auto &in) { print_test_rows(out, in.rows); }},
    {"lapacke-test-rows", code, [](auto &out, auto &in) { print_lapacke_test_rows(out, in.lapacke); }},
    {"cblas-test-rows", code, [](auto &out, auto &in) { print_cblas_test_rows(out, in.shapes); }},
    {"vml-core-header", code, [](auto &out, auto &in) { print_vml_core_header(out, in.functions); }},
    {"vml-threaders", code, [](auto &out, auto &in) { print_vml_threaders(out, in.functions); }},
    {"vml-frames", code, [](auto &out, auto &in) { print_vml_frames(out, in.functions, in.asked.option); }},
    {"vml-settings", code, [](auto &out, auto &in) { print_vml_settings(out, in.settings); }},
    {"vml-header", text,
     [](auto &out, auto &in) { print_vml_header(out, in.functions, in.settings, in.asked.option); }},
    {"vml-fortran", text,
     [](auto &out, auto &in) { print_vml_fortran(out, in.functions, in.settings, in.asked.option); }},
    {"vml-test-rows", code, [](auto &out, auto &in) { print_vml_test_rows(out, in.functions); }},
    {"vml-recording-core", code, [](auto &out, auto &in) { print_vml_recording_core(out, in.functions); }},
    {"vml-recording-kernels", code,
     [](auto &out, auto &in) { print_vml_recording_kernels(out, in.functions); }},
    {"vml-null-core", code, [](auto &out, auto &in) { print_vml_null_core(out, in.functions); }},
    {"vml-kernels", code,
     [](std::ostream &out, const inputs &in) {
         print_vml_kernels(out, in.functions, in.kernels, in.asked.option);
     }},
    {"vml-kernel-rows", code,
     [](auto &out, auto &in) { print_vml_kernel_rows(out, in.functions, in.kernels); }},
    {"vml-kernel-tables", code,
     [](auto &out, auto &in) { print_vml_kernel_tables(out, in.functions, in.kernels); }},
    {"vsl-frames", code, [](auto &out, auto &in) { print_vsl_frames(out, in.random); }},
    {"vsl-tasks", code, [](auto &out, auto &in) { print_vsl_tasks(out, in.random); }},
    {"vsl-header", text, [](auto &out, auto &in) { print_vsl_header(out, in.random); }},
    {"vsl-fortran", text, [](auto &out, auto &in) { print_vsl_fortran(out, in.random, in.asked.option); }},
    {"vsl-test-rows", code, [](auto &out, auto &in) { print_vsl_test_rows(out, in.random); }},
    {"vsl-recording-kernels", code,
     [](auto &out, auto &in) { print_vsl_recording_kernels(out, in.random); }},
    {"fftw-frames", code, [](auto &out, auto &in) { print_fftw_frames(out, in.fftw); }},
    {"fftw-header", text, [](auto &out, auto &in) { print_fftw_header(out, in.fftw); }},
    {"fftw-constants", text, [](auto &out, auto &in) { print_fftw_fortran_constants(out, in.fftw); }},
    {"fftw-fortran", text, [](auto &out, auto &in) { print_fftw_fortran(out, in.fftw); }},
    {"show", text, show},
};

} // namespace

void run(const request &asked, std::ostream &out)
{
    const inputs in(asked);
    const auto found = std::find_if(std::begin(commands), std::end(commands),
                                    [&](const command &each) { return each.name == asked.command; });
    if (found == std::end(commands))
        throw table_error("unknown command `" + asked.command + "`\n" + usage);
    if (found->kind == code)
        out << "// Made by `tablegen " << asked.command << "`; change the tables instead of this file.\n";
    found->print(out, in);
}

} // namespace tablegen
