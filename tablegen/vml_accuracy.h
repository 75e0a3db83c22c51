// What vector math promises about its errors, for the comments of the public header.
#pragma once

#include "vml_table.h"

#include <map>
#include <string>
#include <vector>

namespace tablegen {

/// By kernel (dExp): "at most 1 ULP (HA), 4 ULP (LA), half of the digits (EP)"
using vml_accuracy = std::map<std::string, std::string>;

/// From the first columns of a table of `function types HA LA EP ...`; the others are for tests.
vml_accuracy read_vml_accuracy(const std::string &file);

/// A row's errors, a line for all types or for some of them; empty for functions that only move elements.
std::string vml_error_lines(const vml_accuracy &accuracy, const std::vector<vml_function> &functions,
                            const std::string &place);

} // namespace tablegen
