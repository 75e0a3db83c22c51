! xkl_fftw3.f90: the FFTW3 interface as a module, for programs that do not include fftw3.f03 themselves.
! Compile it with the program, with this folder in the search path.
module xkl_fftw3
  use, intrinsic :: iso_c_binding
  implicit none
  include 'fftw3.f03'
end module xkl_fftw3
