! Functions of real, integer and complex value, and a product; stops with an error when one is wrong.
program fortran_user
  use xkl_blas
  implicit none
  complex(8), parameter :: x(2) = [(1d0, 2d0), (0d0, 1d0)], y(2) = [(3d0, 0d0), (1d0, 1d0)]
  real(8) :: a(2, 2), c(2, 2)
  complex(8) :: dot
  dot = zdotc(2, x, 1, y, 1)
  a = reshape([1d0, 3d0, 2d0, 4d0], [2, 2])
  call dgemm('N', 'N', 2, 2, 2, 1d0, a, 2, a, 2, 0d0, c, 2)
  print '(a,4f6.1,2f6.1)', 'Fortran:', c, dot
  if (any(c /= matmul(a, a))) error stop 'dgemm'
  if (dot /= (4d0, -7d0)) error stop 'zdotc'
  if (izamax(2, x, 1) /= 1) error stop 'izamax'
  if (ddot(2, a, 1, a(1, 2), 1) /= 14) error stop 'ddot'
end program fortran_user
