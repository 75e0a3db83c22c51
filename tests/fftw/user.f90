! A Fortran 2003 program as FFTW's users write them: explicit interfaces, memory from fftw_alloc_complex.
module fftw3
  use, intrinsic :: iso_c_binding
  include 'fftw3.f03'
end module fftw3

program user
  use fftw3
  implicit none
  integer, parameter :: n = 12, m = 8
  real(C_DOUBLE), parameter :: pi2 = 6.283185307179586476925286766559_C_DOUBLE
  type(C_PTR) :: plan, memory
  complex(C_DOUBLE_COMPLEX), pointer :: box(:, :)
  real(C_FLOAT) :: x(n), y(n)
  type(fftw_iodim) :: dims(1), howmany(1)
  complex(C_DOUBLE_COMPLEX) :: lines(n, m)
  integer :: i, j
  real(C_DOUBLE) :: error

  ! Fortran's first dimension is the last one of the interface.
  memory = fftw_alloc_complex(int(n*m, C_SIZE_T))
  call c_f_pointer(memory, box, [n, m])
  plan = fftw_plan_dft_2d(m, n, box, box, FFTW_FORWARD, FFTW_ESTIMATE)
  if (.not. c_associated(plan)) stop 2
  do j = 1, m
    do i = 1, n
      box(i, j) = exp(cmplx(0, pi2*(5.0_C_DOUBLE*(i - 1)/n + 2.0_C_DOUBLE*(j - 1)/m), C_DOUBLE_COMPLEX))
    end do
  end do
  call fftw_execute_dft(plan, box, box)
  box(6, 3) = box(6, 3) - n*m
  error = maxval(abs(box))
  call fftw_destroy_plan(plan)
  call fftw_free(memory)

  ! Guru: every line of an array, along its second dimension.
  dims(1) = fftw_iodim(m, n, n)
  howmany(1) = fftw_iodim(n, 1, 1)
  plan = fftw_plan_guru_dft(1, dims, 1, howmany, lines, lines, FFTW_BACKWARD, FFTW_ESTIMATE)
  lines = 1
  call fftw_execute_dft(plan, lines, lines)
  lines(:, 1) = lines(:, 1) - m
  error = max(error, maxval(abs(lines)))
  call fftw_destroy_plan(plan)

  ! Single precision, real to real.
  plan = fftwf_plan_r2r_1d(n, x, y, FFTW_DHT, FFTW_ESTIMATE)
  x = 1
  call fftwf_execute_r2r(plan, x, y)
  y(1) = y(1) - n
  error = max(error, 1d-6*maxval(abs(y)))
  call fftwf_destroy_plan(plan)

  if (.not. error < 1d-11) then
    print *, 'wrong by', error
    stop 1
  end if
end program user
