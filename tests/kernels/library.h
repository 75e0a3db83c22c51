// The kernel library as its users see it: opened by name, entries looked up.
#pragma once

#include "xkl_vml_types.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <dlfcn.h>
#include <stdexcept>
#include <string>

inline void *kernel_library()
{
    static void *const library = dlopen(KERNEL_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (!library)
        throw std::runtime_error(dlerror());
    return library;
}

/// The library's symbol xkl_vml_kernel_<name>, as the type that it is asked for
template <class T>
T kernel_entry(const std::string &name)
{
    void *const symbol = dlsym(kernel_library(), ("xkl_vml_kernel_" + name).c_str());
    EXPECT_NE(symbol, nullptr) << name;
    return reinterpret_cast<T>(symbol);
}

inline const void *kernel_code(const std::string &function, int set)
{
    return kernel_entry<const void *const *>(function + "_ttab")[set];
}

/// A kernel with the types of its arguments behind the count
template <class... Arguments>
auto kernel(const std::string &function, int set)
{
    return reinterpret_cast<void (*)(int32_t, Arguments...)>(
        const_cast<void *>(kernel_code(function, set)));
}

inline uint32_t set_mode(uint32_t mode)
{
    return kernel_entry<uint32_t (*)(uint32_t)>("SetMode")(mode);
}
inline int32_t set_status(int32_t status)
{
    return kernel_entry<int32_t (*)(int32_t)>("SetErrStatus")(status);
}
inline int32_t status()
{
    return kernel_entry<int32_t (*)()>("GetErrStatus")();
}
inline auto set_callback(xkl_vml_error_callback callback)
{
    return kernel_entry<xkl_vml_error_callback (*)(xkl_vml_error_callback)>("SetErrorCallBack")(callback);
}

/// The best index of this processor; the sets of the tables are 0 to this one
inline int best_set()
{
    const auto index = kernel_entry<int32_t (*)(int32_t)>("GetTTableIndex");
    return std::max({index(0), index(3), index(5)});
}

inline constexpr uint32_t accuracies[] = {VML_HA, VML_LA, VML_EP};
