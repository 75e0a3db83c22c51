// What an argument kind becomes in each language: the one place that knows.
#pragma once

#include "table.h"

namespace tablegen {

bool kind_exists(const std::string &kind);
bool kind_fits(const std::string &kind, char element);
bool kind_has_value(const std::string &kind); // valued frames know what it is by value
bool result_exists(const std::string &result);
bool spelling_rule_exists(const std::string &rule);

/// `const double *` for a:T of a D routine: every argument by address.
std::string c_type(const argument &arg, char element);

/// `double` for alpha:t of cblas_d...: integers and real scalars by value, complex data as `const void *`.
std::string cblas_type(const argument &arg, char element);

/// The type behind the address (`double`, `XKL_Complex16`, `int64_t`), as C writes it.
std::string c_element(const std::string &kind, char element);

/// `double ` for alpha:t of xkl_sparse_d_mv: what the C name of a reading frame takes.
std::string handle_type(const argument &arg, char element);
/// Whether the Fortran name reads it through an address.
bool is_read_value(const argument &arg, char element);

/// The type that a function returns; `void` for `-` and `first`.
std::string c_result(const routine &row);
/// The same of its core entry.
std::string core_result(const routine &row);
/// Whether Fortran has it as a function.
bool is_fortran_function(const routine &row);
/// Whether Fortran's compilers pass it by themselves: the length of a text.
bool is_hidden(const argument &arg);

/// How a trace line prints the argument: c character, i 64-bit integer, e 32-bit integer, p address.
char trace_kind(const argument &arg, bool group);

/// Whether the C spelling of a valued frame takes what the Fortran spellings read through an address.
bool goes_by_value(const argument &arg, char element);
/// `double ` for alpha:t of such a spelling in a D routine, `const double *` for a:T.
std::string valued_type(const argument &arg, char element);
/// How a line about a valued call prints the argument; sizes differ between the two bodies.
std::string valued_conversion(const argument &arg, char element, bool by_value);

/// `%c`, `%lli` or `%p`.
std::string trace_conversion(char trace_kind);

/// `character, intent(in) :: ` and the like; the text to put behind the name goes to `shape`.
std::string fortran_declaration(const argument &arg, char element, std::string &shape);
std::string fortran_result(const routine &row);

bool is_character(const argument &arg); // has a hidden length
bool is_array(const argument &arg);

/// Kinds j, q, v: values that the Fortran spellings of a service routine read through their address.
bool is_service_value(const argument &arg);
/// The type of such a value: `int32_t `, `size_t ` or `void *`.
std::string value_type(const argument &arg);

} // namespace tablegen
