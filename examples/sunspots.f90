! The sunspot cycle from 309 yearly counts: Fourier coefficients as complex dot products.
!
! ZDOTC is a function of complex value, which gfortran and this library return in different ways. The
! companion library turns the one into the other: it stands first on the link line.
!
!     gfortran -fdefault-integer-8 xkl_blas.f90 sunspots.f90 -lxkl_quorl_gf_ilp64 -lxkl_quorl_ilp64
program sunspots
  use xkl_blas
  implicit none
  integer, parameter :: years = 309
  real(8), parameter :: pi = acos(-1d0)
  ! Between the minima of February 1755 and December 2008 the Sun went through 23 cycles.
  real(8), parameter :: published_cycle = (2008 + 11.5d0/12 - (1755 + 1.5d0/12)) / 23
  complex(8) :: counts(years), wave(years), spectrum(0:years - 1), energy
  real(8) :: count, cycle, ratio
  character(256) :: path
  character(8) :: ours, theirs
  integer :: unit, year, i, k

  call get_command_argument(1, path)
  open (newunit=unit, file=path, status='old', action='read')
  read (unit, *)
  do i = 1, years
    read (unit, *) year, count
    counts(i) = count
  end do
  close (unit)
  counts = counts - sum(counts) / years

  do k = 0, years - 1
    wave = [(exp(cmplx(0, 2 * pi * mod(k * i, years) / years, 8)), i = 0, years - 1)]
    spectrum(k) = zdotc(years, wave, 1, counts, 1)
  end do
  k = izamax((years - 1) / 2, spectrum(1), 1)
  cycle = real(years, 8) / k
  energy = zdotc(years, spectrum, 1, spectrum, 1)
  ratio = real(energy) / (years * dznrm2(years, counts, 1)**2)

  write (ours, '(f8.1)') cycle
  write (theirs, '(f8.1)') published_cycle
  print '(a,/,2x,a28,2a11)', 'The sunspot cycle, 1700 to 2008', '', 'computed', 'published'
  print '(2x,a28,3x,a8,3x,a8,2x,a)', 'length in years', ours, theirs, &
      trim(merge('agrees ', 'DIFFERS', ours == theirs))
  print '(2x,a28,f11.8)', 'energy kept by the transform', ratio
  if (ours /= theirs) error stop 'the length does not agree with the published one'
  if (abs(ratio - 1) > 1d-12) error stop 'the transform lost or won energy'
end program sunspots
