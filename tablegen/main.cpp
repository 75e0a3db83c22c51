// tablegen: reads routine tables and prints one file. Errors are `file:line: message`, exit code 1.
#include "fftw_printers.h"
#include "names.h"
#include "print_lapacke.h"
#include "printers.h"
#include "vml_printers.h"
#include "vsl_printers.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <set>
#include <sstream>

using namespace tablegen;

namespace {

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
  vml-header       public C prototypes                       (--settings)
  vml-fortran      a Fortran module of explicit interfaces
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
  show           one routine as it is printed               (--option: its name, in upper case)
  formats        the trace format of every routine
)";

struct request {
    std::string command, output, shapes, vml, settings, fftw, module, option;
    std::vector<std::string> tables, providers, lapacke, vsl;
};

request parse(int argc, char **argv)
{
    request asked;
    if (argc < 2)
        throw table_error(usage);
    asked.command = argv[1];
    std::string option;
    for (int i = 2; i < argc; ++i) {
        const std::string word = argv[i];
        if (word.starts_with("-"))
            option = word;
        else if (option == "-o")
            asked.output = word;
        else if (option == "--tables")
            asked.tables.push_back(word);
        else if (option == "--providers")
            asked.providers.push_back(word);
        else if (option == "--lapacke")
            asked.lapacke.push_back(word);
        else if (option == "--vsl")
            asked.vsl.push_back(word);
        else if (option == "--shapes")
            asked.shapes = word;
        else if (option == "--vml")
            asked.vml = word;
        else if (option == "--settings")
            asked.settings = word;
        else if (option == "--fftw")
            asked.fftw = word;
        else if (option == "--template")
            asked.module = word;
        else if (option == "--option")
            asked.option = word;
        else
            throw table_error("unknown option `" + option + "`\n" + usage);
    }
    return asked;
}

/// A LAPACKE routine, by the name of its high-level function.
void show_lapacke(std::ostream &out, const std::vector<lapacke_routine> &rows, const std::string &name)
{
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [&](const lapacke_routine &row) { return row.name() == name; });
    if (found == rows.end())
        throw table_error("no table has `" + name + "`; write it as LAPACKE_dgetrf");
    print_lapacke(out, {*found}, false);
}

void show(std::ostream &out, const routines &rows, const std::string &name)
{
    const auto found =
        std::find_if(rows.begin(), rows.end(), [&](const routine &row) { return row.name == name; });
    if (found == rows.end())
        throw table_error("no table has the routine `" + name + "`; names are in upper case");
    if (found->family == "service")
        print_forwarders(out, {*found});
    else if (found->frame.kind == "helper")
        print_helpers(out, {*found});
    else
        print_frames(out, {*found}, found->has_checker() ? found->family + "/checks.h" : "");
}

void run(const request &asked, std::ostream &out)
{
    const routines rows = read_tables(asked.tables);
    const auto functions = asked.vml.empty() ? vml_functions{} : read_vml_table(asked.vml);
    const auto random = read_vsl_tables(asked.vsl);
    const auto fftw = asked.fftw.empty() ? fftw_table{} : read_fftw_table(asked.fftw);
    if (rows.empty() && functions.empty() && random.empty() && fftw.routines.empty())
        throw table_error("no rows: name at least one table behind --tables, --vml, --vsl or --fftw");
    const auto settings =
        asked.settings.empty() ? std::vector<vml_setting>{} : read_vml_settings(asked.settings);
    const auto shapes = asked.shapes.empty() ? std::vector<shaped>{} : read_shapes(asked.shapes, rows);
    const bool of_kernels = asked.command.starts_with("vml-kernel");
    const auto kernels =
        of_kernels ? read_vml_kernels(asked.providers.at(0), functions) : std::vector<vml_kernel>{};
    const auto providers = of_kernels ? std::vector<provider>{} : read_providers(asked.providers, rows);
    const auto lapacke = read_lapacke(asked.lapacke, rows);
    name_set names = exported(rows, shapes);
    names.merge(lapacke_names(lapacke));
    names.merge(vml_exported_names(functions, settings));
    names.merge(vsl_exported_names(random));
    names.merge(fftw_exported_names(fftw));
    const std::map<std::string, std::function<void()>> commands = {
        {"frames", [&] { print_frames(out, rows, asked.option); }},
        {"frame-header", [&] { print_frame_header(out, rows); }},
        {"forwarders", [&] { print_forwarders(out, rows); }},
        {"shapes", [&] { print_shapes(out, shapes); }},
        {"helpers", [&] { print_helpers(out, rows); }},
        {"helper-header", [&] { print_helper_header(out, rows, asked.option); }},
        {"lapacke", [&] { print_lapacke(out, lapacke, false); }},
        {"lapacke-64", [&] { print_lapacke(out, lapacke, true); }},
        {"lapacke-header", [&] { print_lapacke_header(out, lapacke); }},
        {"companion", [&] { print_companion(out, rows); }},
        {"companion-exports", [&] { print_companion_exports(out, rows); }},
        {"c-header", [&] { print_c_header(out, rows, asked.option); }},
        {"cblas-header", [&] { print_cblas_header(out, shapes); }},
        {"fortran", [&] { print_fortran_module(out, rows, asked.option); }},
        {"dfti-fortran", [&] { print_dfti_module(out, rows, asked.module); }},
        {"core-header", [&] { print_core_header(out, rows); }},
        {"core-forwards", [&] { print_core_forwards(out, rows, providers); }},
        {"core-own", [&] { print_core_own(out, rows, providers, asked.option); }},
        {"core-calls", [&] { print_core_calls(out, rows); }},
        {"core-manifest", [&] { print_core_manifest(out, rows, providers); }},
        {"null-core", [&] { print_null_core(out, rows); }},
        {"recording-core", [&] { print_recording_core(out, rows); }},
        {"exports", [&] { print_exports(out, names); }},
        {"version-script", [&] { print_version_script(out, names); }},
        {"test-rows", [&] { print_test_rows(out, rows); }},
        {"lapacke-test-rows", [&] { print_lapacke_test_rows(out, lapacke); }},
        {"cblas-test-rows", [&] { print_cblas_test_rows(out, shapes); }},
        {"vml-core-header", [&] { print_vml_core_header(out, functions); }},
        {"vml-threaders", [&] { print_vml_threaders(out, functions); }},
        {"vml-frames", [&] { print_vml_frames(out, functions, asked.option); }},
        {"vml-settings", [&] { print_vml_settings(out, settings); }},
        {"vml-header", [&] { print_vml_header(out, functions, settings); }},
        {"vml-fortran", [&] { print_vml_fortran(out, functions); }},
        {"vml-test-rows", [&] { print_vml_test_rows(out, functions); }},
        {"vml-recording-core", [&] { print_vml_recording_core(out, functions); }},
        {"vml-recording-kernels", [&] { print_vml_recording_kernels(out, functions); }},
        {"vml-null-core", [&] { print_vml_null_core(out, functions); }},
        {"vml-kernels", [&] { print_vml_kernels(out, functions, kernels, asked.option); }},
        {"vml-kernel-rows", [&] { print_vml_kernel_rows(out, functions, kernels); }},
        {"vml-kernel-tables", [&] { print_vml_kernel_tables(out, functions, kernels); }},
        {"vsl-frames", [&] { print_vsl_frames(out, random); }},
        {"vsl-tasks", [&] { print_vsl_tasks(out, random); }},
        {"vsl-header", [&] { print_vsl_header(out, random); }},
        {"vsl-fortran", [&] { print_vsl_fortran(out, random, asked.option); }},
        {"vsl-test-rows", [&] { print_vsl_test_rows(out, random); }},
        {"vsl-recording-kernels", [&] { print_vsl_recording_kernels(out, random); }},
        {"fftw-frames", [&] { print_fftw_frames(out, fftw); }},
        {"fftw-header", [&] { print_fftw_header(out, fftw); }},
        {"fftw-constants", [&] { print_fftw_fortran_constants(out, fftw); }},
        {"fftw-fortran", [&] { print_fftw_fortran(out, fftw); }},
        {"show",
         [&] {
             if (asked.option.starts_with("LAPACKE_"))
                 show_lapacke(out, lapacke, asked.option);
             else
                 show(out, rows, asked.option);
         }},
        {"formats",
         [&] {
             for (const routine &row : rows)
                 out << trace_format(row) << "\n";
         }},
    };
    const auto command = commands.find(asked.command);
    if (command == commands.end())
        throw table_error("unknown command `" + asked.command + "`\n" + usage);
    static const std::set<std::string> plain_text = {
        "exports",        "version-script", "fortran",           "formats",     "show",
        "c-header",       "cblas-header",   "companion-exports", "vml-header",  "vml-fortran",
        "helper-header",  "lapacke-header", "vsl-header",        "vsl-fortran", "fftw-header",
        "fftw-constants", "fftw-fortran",   "dfti-fortran"};
    if (!plain_text.contains(asked.command))
        out << "// Made by `tablegen " << asked.command << "`; change the tables instead of this file.\n";
    command->second();
}

/// A file that would not change keeps its time, and what depends on it is not built again.
void write_if_changed(const std::string &path, const std::string &text)
{
    std::ostringstream present;
    if (std::ifstream file(path); file)
        present << file.rdbuf();
    if (!text.empty() && present.str() == text)
        return;
    std::ofstream file(path);
    file << text;
    file.close();
    if (!file)
        throw table_error(path + ": can't be written; is the folder there and the disk not full?");
}

} // namespace

int main(int argc, char **argv)
try {
    const request asked = parse(argc, argv);
    std::ostringstream text; // whole or not at all: a failed run leaves no half-written file behind
    run(asked, text);
    if (asked.output.empty()) {
        std::cout << text.str();
        return 0;
    }
    write_if_changed(asked.output, text.str());
    return 0;
} catch (const std::exception &error) {
    std::cerr << error.what() << "\n";
    return 1;
}
