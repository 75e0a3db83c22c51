! Longley's regression: employment on six economic series that nearly depend on each other. A classic trial
! of least-squares programs, whose result the U.S. National Institute of Standards and Technology certifies.
!
!     gfortran -fdefault-integer-8 xkl_blas.f90 least_squares.f90 -lxkl_quorl_gf_ilp64 -lxkl_quorl_ilp64

! Argument errors of the library come here, because this program has an xerbla of its own.
subroutine xerbla(name, position)
  character(*), intent(in) :: name
  integer, intent(in) :: position
  print '(2x,3a,i0)', 'this program''s xerbla: ', trim(name), ', argument number ', position
end subroutine xerbla

program least_squares
  use, intrinsic :: iso_fortran_env, only: output_unit
  use xkl_blas
  implicit none
  integer, parameter :: years = 16, terms = 7
  integer(4), external :: xkl_verbose ! service routines take and return 32-bit integers
  character(*), parameter :: term(terms) = [character(12) :: 'constant', 'deflator', 'GNP', 'unemployed', &
                                            'armed forces', 'population', 'year']
  real(8), parameter :: certified_value(terms) = [-3482258.63459582d0, 15.0618722713733d0, &
      -0.358191792925910d-1, -2.02022980381683d0, -1.03322686717359d0, -0.511041056535807d-1, &
      1829.15146461355d0]
  real(8), parameter :: certified_deviation(terms) = [890420.383607373d0, 84.9149257747669d0, &
      0.334910077722432d-1, 0.488399681651699d0, 0.214274163161675d0, 0.226073200069370d0, 455.478499142212d0]
  real(8), parameter :: certified_residual = 304.854073561965d0

  real(8) :: a(years, terms + 1), r(terms, terms + 1), inverse(terms, terms)
  real(8) :: coefficient(terms), deviation(terms), residual
  logical :: agree, row_agrees
  integer :: i

  call read_data(a)
  call factorize(a, r)
  coefficient = r(:, terms + 1)
  call dtrsv('Upper', 'No transpose', 'Non-unit', terms, r, terms, coefficient, 1)

  ! The last column of a is now what the fit could not explain. Deviations come from the rows of r's inverse.
  residual = dnrm2(years, a(1, terms + 1), 1) / sqrt(real(years - terms, 8))
  inverse = 0
  do i = 1, terms
    inverse(i, i) = 1
  end do
  call dtrsm('Left', 'Upper', 'No transpose', 'Non-unit', terms, terms, 1d0, r, terms, inverse, terms)
  do i = 1, terms
    deviation(i) = residual * dnrm2(terms, inverse(i, 1), terms)
  end do

  print '(a)', 'Longley''s regression, 16 years, 7 terms'
  print '(2x,a14,4a20)', '', 'estimate', 'certified', 'deviation', 'certified'
  agree = same(residual, certified_residual)
  do i = 1, terms
    row_agrees = same(coefficient(i), certified_value(i)) .and. same(deviation(i), certified_deviation(i))
    print '(2x,a14,4es20.7,2x,a)', term(i), coefficient(i), certified_value(i), deviation(i), &
        certified_deviation(i), verdict(row_agrees)
    agree = agree .and. row_agrees
  end do
  print '(2x,a14,2es20.7,2x,a)', 'residual', residual, certified_residual, &
      verdict(same(residual, certified_residual))

  print '(/,a)', 'Residuals and fit once more, with tracing on: are they at right angles?'
  flush (output_unit)
  if (xkl_verbose(1_4) < 0) error stop 'tracing cannot be switched on'
  residual = ddot(years, a(1, terms), 1, a(1, terms + 1), 1)
  if (xkl_verbose(0_4) < 0) error stop 'tracing cannot be switched off'
  print '(2x,a,es9.1)', 'cosine times length', residual

  print '(/,a)', 'A bad argument: the triangle is called ''Above'' (place 1):'
  flush (output_unit)
  call dtrsv('Above', 'No transpose', 'Non-unit', terms, r, terms, coefficient, 1)
  if (.not. agree) error stop 'the estimates do not agree with the certified values'

contains

  ! Columns: ones, the six series, employment.
  subroutine read_data(a)
    real(8), intent(out) :: a(years, terms + 1)
    character(256) :: path
    integer :: unit, i
    call get_command_argument(1, path)
    open (newunit=unit, file=path, status='old', action='read')
    read (unit, *)
    do i = 1, years
      read (unit, *) a(i, terms + 1), a(i, 2:terms)
      a(i, 1) = 1
    end do
    close (unit)
  end subroutine read_data

  ! Modified Gram-Schmidt: a := q, its columns orthonormal, with a = q r; the last column is only projected.
  subroutine factorize(a, r)
    real(8), intent(inout) :: a(years, terms + 1)
    real(8), intent(out) :: r(terms, terms + 1)
    integer :: k, rest
    r = 0
    do k = 1, terms
      rest = terms + 1 - k
      r(k, k) = dnrm2(years, a(1, k), 1)
      call dscal(years, 1 / r(k, k), a(1, k), 1)
      call dgemv('Transpose', years, rest, 1d0, a(1, k + 1), years, a(1, k), 1, 0d0, r(k, k + 1), terms)
      call dger(years, rest, -1d0, a(1, k), 1, r(k, k + 1), terms, a(1, k + 1), years)
    end do
  end subroutine factorize

  ! Alike in the eight digits that are printed.
  logical function same(computed, certified)
    real(8), intent(in) :: computed, certified
    character(20) :: ours, theirs
    write (ours, '(es20.7)') computed
    write (theirs, '(es20.7)') certified
    same = ours == theirs
  end function same

  function verdict(agrees)
    logical, intent(in) :: agrees
    character(:), allocatable :: verdict
    verdict = trim(merge('agrees ', 'DIFFERS', agrees))
  end function verdict
end program least_squares
