// The same program as C++, whose complex numbers are a class of the standard library.
#define LAPACK_COMPLEX_CPP
#include "usual_user.c"
