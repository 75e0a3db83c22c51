C     A Fortran 77 program as FFTW's users write them: routines without
C     an interface, plans in integer*8, arrays in Fortran's order.
      program user
      include 'fftw3.f'
      integer n0, n1
      parameter (n0 = 6, n1 = 10)
      double complex box(n0, n1), lines(n1, n0)
      double precision x(n0, n1), copy(n0, n1), pi2, angle, error
      double complex half(n0/2 + 1, n1)
      integer*8 plan, back
      integer i, j, n(2), bad
      parameter (pi2 = 6.283185307179586476925286766559d0)
      bad = 0
C     A wave has one peak, in its own place.
      call dfftw_plan_dft_2d(plan, n0, n1, box, box, FFTW_FORWARD,
     &                       FFTW_ESTIMATE)
      do j = 1, n1
        do i = 1, n0
          angle = pi2 * (2d0*(i - 1)/n0 + 3d0*(j - 1)/n1)
          box(i, j) = dcmplx(cos(angle), sin(angle))
        end do
      end do
      call dfftw_execute_dft(plan, box, box)
      call dfftw_destroy_plan(plan)
      box(3, 4) = box(3, 4) - n0*n1
      error = maxval(abs(box))
      if (.not. error .lt. 1d-11) then
        print *, '2-D: wrong by', error
        bad = bad + 1
      end if
C     Real data: the first dimension is halved.
      n(1) = n0
      n(2) = n1
      call dfftw_plan_dft_r2c(plan, 2, n, x, half, FFTW_ESTIMATE)
      call dfftw_plan_dft_c2r(back, 2, n, half, x, FFTW_ESTIMATE)
      do j = 1, n1
        do i = 1, n0
          x(i, j) = cos(i + 0.5d0*j*j)
          copy(i, j) = x(i, j)
        end do
      end do
      call dfftw_execute(plan)
      error = abs(half(1, 1) - sum(copy))
      call dfftw_execute(back)
      error = max(error, maxval(abs(x - n0*n1*copy)))
      if (.not. error .lt. 1d-11) then
        print *, 'r2c and c2r: wrong by', error
        bad = bad + 1
      end if
      call dfftw_destroy_plan(plan)
      call dfftw_destroy_plan(back)
C     Columns of an array, each a constant.
      do j = 1, n0
        do i = 1, n1
          lines(i, j) = j
        end do
      end do
      call dfftw_plan_many_dft(plan, 1, n(2), n0, lines, n(2), 1, n1,
     &  lines, n(2), 1, n1, FFTW_BACKWARD, FFTW_ESTIMATE)
      call dfftw_execute(plan)
      call dfftw_destroy_plan(plan)
      error = 0
      do j = 1, n0
        lines(1, j) = lines(1, j) - n1*j
      end do
      error = maxval(abs(lines))
      if (.not. error .lt. 1d-11) then
        print *, 'many: wrong by', error
        bad = bad + 1
      end if
C     Different kinds in different dimensions.
      x = copy
      call dfftw_plan_r2r_2d(plan, n0, n1, x, x, FFTW_REDFT10,
     &                       FFTW_RODFT11, FFTW_ESTIMATE)
      call dfftw_plan_r2r_2d(back, n0, n1, x, x, FFTW_REDFT01,
     &                       FFTW_RODFT11, FFTW_ESTIMATE)
      call dfftw_execute_r2r(plan, x, x)
      call dfftw_execute_r2r(back, x, x)
      error = maxval(abs(x - 4*n0*n1*copy))
      if (.not. error .lt. 1d-11) then
        print *, 'r2r: wrong by', error
        bad = bad + 1
      end if
      call dfftw_destroy_plan(plan)
      call dfftw_destroy_plan(back)
      call dfftw_cleanup()
      if (bad .ne. 0) stop 1
      end
