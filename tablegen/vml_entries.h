// The entry points of a vector math function: their names, and their argument lists in C and in Fortran.
#pragma once

#include "vml_table.h"

namespace tablegen {

/// One of the twelve spellings of a form.
struct vml_entry {
    std::string name;     // vmdExp_64, VMDEXP_64_
    std::string body;     // the spelling whose body this one shares; its own name if it has one
    bool fortran = false; // everything by address
    bool in_mode = false; // with a mode behind the list
    bool wide = false;    // a _64 spelling
};

/// The twelve spellings, each behind the one whose body it shares.
std::vector<vml_entry> vml_entries(const vml_form &form);

/// n and what follows it, in C's order, without the mode.
std::vector<vml_argument> vml_public_arguments(const vml_form &form);

/// The list of an entry point, with its mode if it has one; in Fortran values become addresses.
std::vector<vml_argument> vml_entry_arguments(const vml_form &form, const vml_entry &entry);

/// vdExp: what is reported
std::string vml_reported_name(const vml_form &form);

/// The rule of a form, a template of src/vml/classes.h:
/// `one_in_one_out_strided<xkl_vml_serv_threader_d_1iI_1oI>`.
std::string vml_frame_class(const vml_form &form);

/// `1i_1o`, as rows of the table name classes.
std::string vml_class_name(vml_class kind);

/// An operation on mode, status or callback.
struct vml_setting {
    std::string name;             // SetErrStatus
    std::string argument, result; // status, mode, callback; the argument may be empty
    std::string about;
};

std::vector<vml_setting> read_vml_settings(const std::string &file);

/// The six spellings; `wide` and `fortran` tell the body.
std::vector<vml_entry> vml_setting_entries(const vml_setting &setting);

/// The kernel library's own signature: `int32_t (int32_t )`
std::string vml_setting_operation(const vml_setting &setting);
/// `int64_t status`, or `void`
std::string vml_setting_parameter(const vml_setting &setting, const vml_entry &entry);
/// `uint32_t `
std::string vml_setting_result(const vml_setting &setting, const vml_entry &entry);

} // namespace tablegen
