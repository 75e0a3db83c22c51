! The strongest El Nino events in 61 years of sea surface temperatures: transform, keep what changes slowly,
! transform back. The months lie in a matrix, and the descriptor takes it for the vector that it is in memory.
!
!     gfortran -fdefault-integer-8 xkl_dfti.f90 spectrum_dfti.f90 -lxkl_quorl_ilp64
program spectrum_dfti
  use xkl_dfti
  implicit none
  integer, parameter :: first_year = 1950, years = 61, months = 12 * years, lines = months / 2 + 1
  ! Up to this line periods are above a year and a half: El Nino is slower, the seasons are faster.
  integer, parameter :: slow = 40
  ! The two strongest of the 20th century. They last from one year into the next.
  character(*), parameter :: published(2) = ['1997-98', '1982-83']
  type(DFTI_DESCRIPTOR), pointer :: transform
  real(8) :: temperature(12, years), anomaly(12, years), amplitude(0:lines - 1), error
  complex(8) :: spectrum(0:lines - 1)
  character(256) :: path
  character(7) :: events(2)
  integer :: unit, year, i
  logical :: agree

  call get_command_argument(1, path)
  open (newunit=unit, file=path, status='old', action='read')
  read (unit, *)
  do i = 1, years
    read (unit, *) year, temperature(:, i)
  end do
  close (unit)

  call check(DftiCreateDescriptor(transform, DFTI_DOUBLE, DFTI_REAL, 1, months))
  call check(DftiSetValue(transform, DFTI_PLACEMENT, DFTI_NOT_INPLACE))
  call check(DftiSetValue(transform, DFTI_FORWARD_SCALE, 2d0 / months)) ! so that lines are amplitudes
  call check(DftiSetValue(transform, DFTI_BACKWARD_SCALE, 0.5d0))       ! so that backward undoes forward
  call check(DftiCommitDescriptor(transform))
  call check(DftiComputeForward(transform, temperature, spectrum))
  amplitude = abs(spectrum)
  call check(DftiComputeBackward(transform, spectrum, anomaly))
  error = maxval(abs(anomaly - temperature))
  spectrum(0) = 0
  spectrum(slow + 1:) = 0
  call check(DftiComputeBackward(transform, spectrum, anomaly))
  call check(DftiFreeDescriptor(transform))

  print '(t37,2a11)', 'computed', 'published'
  agree = all([ &
      compare('strongest period, in months', months, strongest(1, lines - 1), 12, 12), &
      compare('strongest below a year, in months', months, strongest(years + 1, lines - 1), 6, 6), &
      compare('strongest above a year, in years', years, strongest(1, years - 1), 2, 7)])
  events = two_warmest()
  do i = 1, 2
    print '(2x,a,t37,2a11,2x,a)', merge('strongest El Nino ', 'the second one    ', i == 1), events(i), &
        published(i), trim(verdict(events(i) == published(i)))
  end do
  print '(2x,a,t37,es11.1)', 'error after forward and backward', error

  if (command_argument_count() > 1) call write_spectrum
  if (command_argument_count() > 2) call write_course
  if (error > 1d-13) error stop 'the transform and its inverse do not undo each other'
  if (.not. agree .or. any(events /= published)) error stop 'not all is as published'

contains

  subroutine check(status)
    integer(4), intent(in) :: status
    if (DftiErrorClass(status, DFTI_NO_ERROR)) return
    print '(a)', trim(DftiErrorMessage(status))
    error stop 'the transform failed'
  end subroutine check

  integer function strongest(first, last)
    integer, intent(in) :: first, last
    strongest = first - 1 + maxloc(amplitude(first:last), 1)
  end function strongest

  character(7) function verdict(agrees)
    logical, intent(in) :: agrees
    verdict = merge('agrees ', 'DIFFERS', agrees)
  end function verdict

  ! The period of a line in a record of that length, beside the published one or the published range.
  logical function compare(what, length, line, lowest, highest) result(agrees)
    character(*), intent(in) :: what
    integer, intent(in) :: length, line, lowest, highest
    character(11) :: published_text, period
    write (period, '(f11.2)') real(length, 8) / line
    write (published_text, '(i8,a)') lowest, '.00'
    if (lowest < highest) write (published_text, '(i6,a,i1)') lowest, ' to ', highest
    if (lowest < highest) then
      agrees = lowest * line <= length .and. length <= highest * line
    else
      agrees = period == published_text
    end if
    print '(2x,a,t37,2a11,2x,a)', what, period, published_text, trim(verdict(agrees))
  end function compare

  ! The events with the highest slow temperatures. A year that begins in July has one event at most.
  function two_warmest() result(names)
    character(7) :: names(2)
    real(8) :: course(months)
    integer :: i, peak, begins
    course = reshape(anomaly, [months])
    do i = 1, 2
      peak = maxloc(course, 1)
      begins = first_year + (peak - 7) / 12
      write (names(i), '(i4,a,i2.2)') begins, '-', mod(begins + 1, 100)
      course(max(1, peak - 12):min(months, peak + 12)) = 0
    end do
  end function two_warmest

  ! For the plot: frequency in periods a year, amplitude.
  subroutine write_spectrum
    integer :: k
    call get_command_argument(2, path)
    open (newunit=unit, file=path, action='write')
    write (unit, '(f8.6,1x,f8.6)') (real(k, 8) / years, amplitude(k), k=1, lines - 1)
    close (unit)
  end subroutine write_spectrum

  ! For the plot: year, temperature, slow part of it.
  subroutine write_course
    integer :: month, i
    call get_command_argument(3, path)
    open (newunit=unit, file=path, action='write')
    write (unit, '(f0.4,1x,f0.4,1x,f0.4)') ((first_year + i - 1 + (month - 0.5d0) / 12, &
        temperature(month, i), anomaly(month, i), month=1, 12), i=1, years)
    close (unit)
  end subroutine write_course

end program spectrum_dfti
