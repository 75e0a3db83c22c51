! Longley's regression: employment on six economic series that nearly depend on each other. A classic trial
! of least-squares programs, whose result the U.S. National Institute of Standards and Technology certifies.
! The fit goes through LAPACK's QR factorization; a singular value decomposition tells what it may cost.
!
!     gfortran -fdefault-integer-8 xkl_blas.f90 xkl_lapack.f90 least_squares.f90 \
!         -lxkl_quorl_gf_ilp64 -lxkl_quorl_ilp64

! Argument errors of the library come here, because this program has an xerbla of its own.
subroutine xerbla(name, position)
  character(*), intent(in) :: name
  integer, intent(in) :: position
  print '(2x,3a,i0)', 'this program''s xerbla: ', trim(name), ', argument number ', position
end subroutine xerbla

program least_squares
  use, intrinsic :: iso_fortran_env, only: output_unit
  use xkl_blas
  use xkl_lapack
  implicit none
  integer, parameter :: years = 16, terms = 7, lwork = 1000
  integer, parameter :: digits_wanted = 9 ! of 15 certified; the scaled condition number costs 4 or 5 of 16
  integer(4), external :: xkl_verbose ! service routines take and return 32-bit integers
  character(*), parameter :: term(terms) = [character(12) :: 'constant', 'deflator', 'GNP', 'unemployed', &
                                            'armed forces', 'population', 'year']
  real(8), parameter :: certified_value(terms) = [-3482258.63459582d0, 15.0618722713733d0, &
      -0.358191792925910d-1, -2.02022980381683d0, -1.03322686717359d0, -0.511041056535807d-1, &
      1829.15146461355d0]
  real(8), parameter :: certified_deviation(terms) = [890420.383607373d0, 84.9149257747669d0, &
      0.334910077722432d-1, 0.488399681651699d0, 0.214274163161675d0, 0.226073200069370d0, 455.478499142212d0]
  real(8), parameter :: certified_residual = 304.854073561965d0
  real(8), parameter :: published_index(terms) = [1d0, 9.1d0, 12.3d0, 25.3d0, 230.4d0, 1048.1d0, 43275d0]

  real(8) :: x(years, terms), employment(years), r(years, terms), fitted(years), normal(terms)
  real(8) :: deviation(terms), residual, work(lwork)
  logical :: agree
  integer :: i, info

  call read_data(x, employment)
  r = x
  fitted = employment
  call dgels('No transpose', years, terms, 1, r, years, fitted, years, work, lwork, info)
  if (info /= 0) error stop 'the fit failed'
  residual = dnrm2(years - terms, fitted(terms + 1:), 1) / sqrt(real(years - terms, 8))

  print '(a)', 'The inverse of the triangle that DGELS left gives the deviations. With tracing on:'
  flush (output_unit)
  if (xkl_verbose(1_4) < 0) error stop 'tracing cannot be switched on'
  call dtrtri('Upper', 'Non-unit', terms, r, years, info)
  if (xkl_verbose(0_4) < 0) error stop 'tracing cannot be switched off'
  do i = 1, terms
    deviation(i) = residual * dnrm2(terms - i + 1, r(i, i:terms), 1)
  end do
  call solve_normal_equations(x, employment, normal)

  print '(/,a)', 'Longley''s regression, 16 years, 7 terms, and how many digits agree'
  print '(2x,12x,2a22,3(2x,a))', 'DGELS', 'certified', 'digits', 'deviation''s', 'normal equations'''
  agree = report_fit('residual', residual, certified_residual)
  do i = 1, terms
    agree = report_fit(term(i), fitted(i), certified_value(i), &
        agreeing(deviation(i), certified_deviation(i)), agreeing(normal(i), certified_value(i))) .and. agree
  end do

  call decompose(x, agree)

  print '(/,a)', 'A bad argument: the triangle is called ''Above'' (place 1):'
  flush (output_unit)
  call dtrtri('Above', 'Non-unit', terms, r, years, info)
  print '(2x,a,i0)', 'info = ', info
  if (info /= -1) error stop 'the error is not in info'
  if (.not. agree) error stop 'the numbers do not agree with the certified and published ones'

contains

  ! Columns: ones and the six series.
  subroutine read_data(x, employment)
    real(8), intent(out) :: x(years, terms), employment(years)
    character(256) :: path
    integer :: unit, i
    call get_command_argument(1, path)
    open (newunit=unit, file=path, status='old', action='read')
    read (unit, *)
    do i = 1, years
      read (unit, *) employment(i), x(i, 2:terms)
      x(i, 1) = 1
    end do
    close (unit)
  end subroutine read_data

  ! The way that textbooks start with: (x'x) b = x'y. It squares the condition number.
  subroutine solve_normal_equations(x, y, b)
    real(8), intent(in) :: x(years, terms), y(years)
    real(8), intent(out) :: b(terms)
    real(8) :: product(terms, terms)
    integer :: info
    call dsyrk('Upper', 'Transpose', terms, years, 1d0, x, years, 0d0, product, terms)
    call dgemv('Transpose', years, terms, 1d0, x, years, y, 1, 0d0, b, 1)
    call dposv('Upper', terms, 1, product, terms, b, terms, info)
    if (info /= 0) b = 0
  end subroutine solve_normal_equations

  ! Singular values of the columns, scaled to length one: the largest over each is a condition index.
  subroutine decompose(x, agree)
    real(8), intent(in) :: x(years, terms)
    logical, intent(inout) :: agree
    real(8) :: scaled(years, terms), left(years, terms), right(terms, terms), s(terms), error
    integer :: i, info, iwork(8 * terms)
    character(10) :: ours, theirs
    do i = 1, terms
      scaled(:, i) = x(:, i) / dnrm2(years, x(1, i), 1)
    end do
    r = scaled
    call dgesdd('Some', years, terms, r, years, s, left, years, right, terms, work, lwork, iwork, info)
    if (info /= 0) error stop 'the singular values were not found'

    print '(/,a,/,2x,a14,a16,a20,a12)', &
        'Why not all digits? Condition indexes of the scaled series, by DGESDD', '', 'singular value', &
        'largest over it', 'published'
    do i = 1, terms
      write (ours, '(f10.1)') s(1) / s(i)
      write (theirs, '(f10.1)') published_index(i)
      print '(2x,i14,es16.6,10x,a10,2x,a10,2x,a)', i, s(i), ours, theirs, &
          trim(merge('agrees ', 'DIFFERS', ours == theirs))
      agree = agree .and. ours == theirs
    end do
    do i = 1, terms
      left(:, i) = left(:, i) * s(i)
    end do
    call dgemm('N', 'N', years, terms, terms, -1d0, left, years, right, terms, 1d0, scaled, years)
    error = dlange('Frobenius', years, terms, scaled, years, work) / s(1)
    print '(2x,a,es8.1)', 'what U*S*V'' leaves of the series, over the largest:', error
    agree = agree .and. error < 1d-13
  end subroutine decompose

  ! How many digits agree, of the 15 that are certified
  integer function agreeing(computed, certified)
    real(8), intent(in) :: computed, certified
    real(8) :: error
    agreeing = 0
    error = abs(computed - certified) / abs(certified)
    if (error < 1) agreeing = min(15, int(-log10(max(error, 1d-16))))
  end function agreeing

  ! A line of the table; the other two counts are those of the deviation and of the normal equations.
  logical function report_fit(name, computed, certified, of_deviation, of_normal)
    character(*), intent(in) :: name
    real(8), intent(in) :: computed, certified
    integer, intent(in), optional :: of_deviation, of_normal
    integer :: digits_found
    digits_found = agreeing(computed, certified)
    write (*, '(2x,a12,2es22.14,i8)', advance='no') name, computed, certified, digits_found
    report_fit = digits_found >= digits_wanted
    if (present(of_deviation)) then
      write (*, '(i13,i19)', advance='no') of_deviation, of_normal
      report_fit = report_fit .and. of_deviation >= digits_wanted
    end if
    print '()'
  end function report_fit
end program least_squares
