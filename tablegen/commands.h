// The commands of tablegen: what each reads, and which printer it runs.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace tablegen {

/// What the command line asks for
struct request {
    std::string command, output, shapes, vml, settings, fftw, template_file, option;
    std::vector<std::string> tables, providers, lapacke, vsl;
};

extern const char usage[];

/// Reads the tables and prints; throws a table_error for anything that is wrong with them or with the
/// request.
void run(const request &asked, std::ostream &out);

} // namespace tablegen
