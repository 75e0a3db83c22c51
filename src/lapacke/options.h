// Layouts and letters as the helpers take them: by value. They are read inline; a bad one is no error here,
// it only leaves the helper nothing to do, because the routine behind it reports bad arguments itself.
#pragma once

#include "frame/letters.h"
#include "xkl_types.h"

namespace xkl::lapacke {

inline bool is(char given, char letter)
{
    return inline_letters::is(&given, letter);
}

inline bool is_layout(int layout)
{
    return layout == CblasRowMajor || layout == CblasColMajor;
}

inline int other_layout(int layout)
{
    return layout == CblasColMajor ? CblasRowMajor : CblasColMajor;
}

inline bool is_uplo(char uplo)
{
    return is(uplo, 'U') || is(uplo, 'L');
}

inline bool is_diag(char diag)
{
    return is(diag, 'U') || is(diag, 'N');
}

inline bool is_transr(char transr)
{
    return is(transr, 'N') || is(transr, 'T') || is(transr, 'C');
}

/// Where the triangle of a trapezoid lies: from the first corner on, or up to the last
inline bool is_direct(char direct)
{
    return is(direct, 'F') || is(direct, 'B');
}

} // namespace xkl::lapacke
