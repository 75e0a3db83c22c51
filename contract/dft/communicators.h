// What the core tells of the program's message passing library, for transforms over several processes.
#pragma once

#include <cstdint>

/// Null entries are not offered.
struct xkl_mpi_wrappers {
    /// The communicator of the library's C interface that stands for one of its Fortran interface.
    void *(*communicator_of_fortran)(int32_t communicator);
};

/// Null where the core knows no such library.
extern "C" [[gnu::visibility("default")]] const xkl_mpi_wrappers *xkl_serv_get_mpi_wrappers(void);
