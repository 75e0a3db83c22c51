! Functions of real, integer and complex value, a product, and vector math with its modes and errors; stops with
! an error when one is wrong.
module errors_seen
  use xkl_vml
  implicit none
  integer :: poles = 0
contains
  integer(c_int) function note(error) bind(C)
    type(xkl_vml_error), intent(inout) :: error
    if (error%status == VML_STATUS_SING .and. error%index == 1) poles = poles + 1
    error%r1(1) = -1
    note = 0
  end function note
end module errors_seen

program fortran_user
  use xkl_blas
  use errors_seen
  implicit none
  complex(8), parameter :: x(2) = [(1d0, 2d0), (0d0, 1d0)], y(2) = [(3d0, 0d0), (1d0, 1d0)]
  real(8) :: a(2, 2), c(2, 2)
  complex(8) :: dot
  real(8) :: r(2)
  type(c_funptr) :: callback_before
  dot = zdotc(2, x, 1, y, 1)
  a = reshape([1d0, 3d0, 2d0, 4d0], [2, 2])
  call dgemm('N', 'N', 2, 2, 2, 1d0, a, 2, a, 2, 0d0, c, 2)
  print '(a,4f6.1,2f6.1)', 'Fortran:', c, dot
  if (any(c /= matmul(a, a))) error stop 'dgemm'
  if (dot /= (4d0, -7d0)) error stop 'zdotc'
  if (izamax(2, x, 1) /= 1) error stop 'izamax'
  if (ddot(2, a, 1, a(1, 2), 1) /= 14) error stop 'ddot'
  if (vmlSetMode(VML_LA + VML_ERRMODE_CALLBACK) /= VML_HA + VML_ERRMODE_DEFAULT) error stop 'vmlSetMode'
  callback_before = vmlSetErrorCallBack(c_funloc(note))
  call vmdln(2, [1d0, 0d0], r, VML_HA)
  if (any(r /= [0d0, -1d0]) .or. poles /= 1) error stop 'vmdln'
  if (vmlGetErrStatus() /= VML_STATUS_SING .or. vmlGetMode() /= VML_LA + VML_ERRMODE_CALLBACK) error stop 'modes'
end program fortran_user
