/* cblas.h for programs that name the usual header: with this folder in the search path, and the folder of
 * the library's own headers, they compile unchanged. */
#include "xkl_cblas.h"
