// tablegen: reads routine tables and prints one file. Errors are `file:line: message`, exit code 1.
#include "commands.h"
#include "table.h"

#include <fstream>
#include <iostream>
#include <map>
#include <sstream>

using namespace tablegen;

namespace {

request parse(int argc, char **argv)
{
    static const std::map<std::string, std::string request::*> single = {
        {"-o", &request::output},      {"--shapes", &request::shapes},
        {"--vml", &request::vml},      {"--settings", &request::settings},
        {"--fftw", &request::fftw},    {"--template", &request::template_file},
        {"--option", &request::option}};
    static const std::map<std::string, std::vector<std::string> request::*> several = {
        {"--tables", &request::tables},
        {"--providers", &request::providers},
        {"--lapacke", &request::lapacke},
        {"--vsl", &request::vsl}};
    request asked;
    if (argc < 2)
        throw table_error(usage);
    asked.command = argv[1];
    std::string option;
    for (int i = 2; i < argc; ++i) {
        const std::string word = argv[i];
        if (word.starts_with("-"))
            option = word;
        else if (const auto one = single.find(option); one != single.end())
            asked.*one->second = word;
        else if (const auto list = several.find(option); list != several.end())
            (asked.*list->second).push_back(word);
        else
            throw table_error("unknown option `" + option + "`\n" + usage);
    }
    return asked;
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
