// Handles in files: pardiso_handle_store and its kin.
#pragma once

#include "solvers/handle.h"

namespace xkl::core {

void pardiso_handle_store(void *const *pt, const char *dirname, int64_t *error);
void pardiso_handle_restore(void **pt, const char *dirname, int64_t *error);
void pardiso_handle_delete(const char *dirname, int64_t *error);

inline constexpr auto pardiso_handle_store_64 = pardiso_handle_store;
inline constexpr auto pardiso_handle_restore_64 = pardiso_handle_restore;
inline constexpr auto pardiso_handle_delete_64 = pardiso_handle_delete;

} // namespace xkl::core
