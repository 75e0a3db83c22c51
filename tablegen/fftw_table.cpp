// Reads the table of the FFTW3 interface.
#include "fftw_table.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>

namespace tablegen {
namespace {

const std::map<std::string, fftw_kind> &kinds()
{
    static const std::map<std::string, fftw_kind> all = {
        {"int", {"int ", "const int64_t *", "integer(C_INT), value"}},
        {"flags", {"unsigned ", "const int64_t *", "integer(C_INT), value"}},
        {"kind", {"@r2r_kind ", "const int64_t *", "integer(C_FFTW_R2R_KIND), value"}},
        {"sizes", {"const int *", "const int64_t *", "integer(C_INT), dimension(*), intent(in)"}},
        {"kinds",
         {"const @r2r_kind *", "const int64_t *", "integer(C_FFTW_R2R_KIND), dimension(*), intent(in)"}},
        {"dims", {"const @iodim *", "const int64_t *", "type(@iodim), dimension(*), intent(in)"}},
        {"dims64", {"const @iodim64 *", "", "type(@iodim64), dimension(*), intent(in)"}},
        {"real", {"% *", "% *", "real(%), dimension(*)"}},
        {"complex", {"@complex *", "@complex *", "complex(%_COMPLEX), dimension(*)"}},
        {"plan", {"@plan ", "@plan *", "type(C_PTR), value"}},
        {"counter", {"double *", "double *", "real(C_DOUBLE)"}},
        {"seconds", {"double ", "const double *", "real(C_DOUBLE), value"}},
        {"size", {"size_t ", "", "integer(C_SIZE_T), value"}},
        {"pointer", {"void *", "void *", "type(C_PTR), value"}},
        {"reals", {"% *", "", "real(%), dimension(*)"}},
        {"text", {"const char *", "", "character(C_CHAR), dimension(*), intent(in)"}},
        {"file", {"FILE *", "", "type(C_PTR), value"}},
        {"reader", {"@read_char_func ", "void *", "type(C_FUNPTR), value"}},
        {"writer", {"@write_char_func ", "void *", "type(C_FUNPTR), value"}},
        {"spawner", {"@spawn_loop_func ", "", "type(C_FUNPTR), value"}},
        // Results alone.
        {"double", {"double ", "double *", "real(C_DOUBLE)"}},
        {"complexes", {"@complex *", "", "type(C_PTR)"}},
        {"characters", {"char *", "", "type(C_PTR)"}}};
    return all;
}

std::vector<std::string> words_of(const std::string &line)
{
    std::istringstream words(line);
    std::vector<std::string> all;
    for (std::string word; words >> word;)
        all.push_back(word);
    return all;
}

class reader {
  public:
    explicit reader(const std::string &file) : file_(file) {}

    fftw_table read()
    {
        std::ifstream in(file_);
        if (!in)
            throw table_error(file_ + ": can't be opened");
        std::string line;
        for (; std::getline(in, line); ++number_) {
            if (line.starts_with("#: "))
                about_ = line.substr(3);
            else if (line.empty())
                about_.clear();
            else if (!line.starts_with("#"))
                row(words_of(line));
        }
        return table_;
    }

  private:
    [[noreturn]] void fail(const std::string &what) const
    {
        throw table_error(file_ + ":" + std::to_string(number_) + ": " + what);
    }

    void row(const std::vector<std::string> &words)
    {
        const std::string &group = words.at(0);
        if (words.size() < 2 ||
            !names_.insert(words[group == "routine" && words.size() > 2 ? 2 : 1]).second)
            fail("a row has a name of its own behind its first word");
        if ((group == "constant" || group == "kind") && words.size() == 3)
            table_.constants.push_back({group, words[1], words[2], about_});
        else if (group == "data" && words.size() == 2)
            table_.constants.push_back({group, words[1], "", ""});
        else if (group == "routine" && words.size() > 3)
            routine(words);
        else
            fail("a row is `constant NAME VALUE`, `kind NAME VALUE`, `data NAME` or "
                 "`routine both|C NAME RESULT ARGUMENT...`");
    }

    void routine(const std::vector<std::string> &words)
    {
        fftw_routine row{words[2], words[1] == "both", words[3], {}, about_};
        if (!row.by_address && words[1] != "C")
            fail("a routine is for `both` languages or for `C`, not for `" + words[1] + "`");
        if (row.result != "-")
            check_kind(row.result, row.by_address);
        for (size_t i = 4; i < words.size() && words[i] != "-"; ++i) {
            const auto colon = words[i].find(':');
            if (colon == std::string::npos)
                fail("`" + words[i] + "` is not an argument; write name:kind");
            row.arguments.push_back({words[i].substr(0, colon), words[i].substr(colon + 1)});
            check_kind(row.arguments.back().kind, row.by_address);
        }
        table_.routines.push_back(row);
    }

    void check_kind(const std::string &kind, bool by_address) const
    {
        const auto found = kinds().find(kind);
        if (found == kinds().end())
            fail("unknown kind `" + kind + "`; tablegen/README.md lists them");
        if (by_address && found->second.by_address.empty())
            fail("an argument of kind `" + kind + "` has no form by address; the routine is for `C`");
    }

    std::string file_, about_;
    int number_ = 1;
    std::set<std::string> names_;
    fftw_table table_;
};

} // namespace

fftw_table read_fftw_table(const std::string &file)
{
    return reader(file).read();
}

const std::vector<fftw_family> &fftw_families()
{
    static const std::vector<fftw_family> both = {{"fftw_", "dfftw_", "double", "C_DOUBLE"},
                                                  {"fftwf_", "sfftw_", "float", "C_FLOAT"}};
    return both;
}

const fftw_kind &fftw_kind_named(const std::string &name)
{
    return kinds().at(name);
}

std::string fftw_spelled(std::string text, const fftw_family &family)
{
    const auto put = [&text](char place, const std::string &what) {
        for (size_t at; (at = text.find(place)) != std::string::npos;)
            text.replace(at, 1, what);
    };
    put('@', family.prefix);
    put('%', text.starts_with("real(") || text.starts_with("complex(") ? family.fortran_real : family.real);
    return text;
}

std::vector<argument> fftw_by_address(const fftw_routine &row)
{
    std::vector<argument> list;
    if (row.result == "int")
        list.push_back({"result", "int64_t *"});
    else if (row.result != "-")
        list.push_back({"result", fftw_kind_named(row.result).by_address});
    for (const argument &each : row.arguments) {
        const std::string type = fftw_kind_named(each.kind).by_address;
        if (each.kind != "dims") {
            list.push_back({each.name, type});
            continue;
        }
        const std::string start = each.name == "dims" ? "" : "howmany_";
        for (const char *part : {"n", "is", "os"})
            list.push_back({start + part, type});
    }
    return list;
}

std::set<std::string> fftw_exported_names(const fftw_table &table)
{
    std::set<std::string> names;
    for (const fftw_family &family : fftw_families()) {
        for (const fftw_constant &each : table.constants)
            if (each.group == "data")
                names.insert(family.prefix + each.name);
        for (const fftw_routine &row : table.routines) {
            names.insert(family.prefix + row.name);
            if (row.by_address)
                names.insert(family.fortran_prefix + row.name + "_");
        }
    }
    if (!names.empty())
        names.insert("fftw3_xkl"); // the settings of both families
    return names;
}

} // namespace tablegen
