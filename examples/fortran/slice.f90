! Calling mivorgsse2 from Fortran through bind(C) interfaces.
!
! Fortran passes arguments by reference, which is exactly this library's
! convention, so no VALUE attributes are needed: the interfaces below only
! give the exports' names and kinds.  REAL(8) results that the library
! leaves in x87 extended precision (g_dsqrt) are declared c_long_double.
program slice
  use, intrinsic :: iso_c_binding, only: c_float, c_double, c_long_double, c_int32_t, c_int64_t
  implicit none

  interface
    real(c_double) function g_adxi(x, n) bind(C, name='g_adxi')
      import :: c_double, c_int32_t
      real(c_double), intent(in) :: x
      integer(c_int32_t), intent(in) :: n
    end function
    real(c_double) function g_adxj(x, n) bind(C, name='g_adxj')
      import :: c_double, c_int64_t
      real(c_double), intent(in) :: x
      integer(c_int64_t), intent(in) :: n
    end function
    real(c_float) function g_arxi(x, n) bind(C, name='g_arxi')
      import :: c_float, c_int32_t
      real(c_float), intent(in) :: x
      integer(c_int32_t), intent(in) :: n
    end function
    real(c_long_double) function g_dsqrt(x) bind(C, name='g_dsqrt')
      import :: c_double, c_long_double
      real(c_double), intent(in) :: x
    end function
    real(c_float) function g_sqrt(x) bind(C, name='g_sqrt')
      import :: c_float
      real(c_float), intent(in) :: x
    end function
    real(c_float) function g_neare(x, s) bind(C, name='g_neare')
      import :: c_float
      real(c_float), intent(in) :: x, s
    end function
    real(c_double) function g_neared(x, s) bind(C, name='g_neared')
      import :: c_double
      real(c_double), intent(in) :: x, s
    end function
  end interface

  real(c_double) :: d
  real(c_float) :: f

  print '(a, es24.16e3)', '1.5**10           = ', g_adxi(1.5_c_double, 10_c_int32_t)
  print '(a, es24.16e3)', '10**-22 (int*4)   = ', g_adxi(10.0_c_double, -22_c_int32_t)
  print '(a, es24.16e3)', '10**-22 (int*8)   = ', g_adxj(10.0_c_double, -22_c_int64_t)
  print '(a, es15.7e3)',  '3.0**-5 (real*4)  = ', g_arxi(3.0_c_float, -5_c_int32_t)
  print '(a, es24.16e3)', 'sqrt(2) as REAL(8)= ', real(g_dsqrt(2.0_c_double), c_double)
  print '(a, es15.7e3)',  'sqrt(0.25)        = ', g_sqrt(0.25_c_float)
  f = g_neare(1.0_c_float, -2.0_c_float)
  print '(a, z8.8)',      'nearest(1.0, -2.0)= ', transfer(f, 0_c_int32_t)
  d = g_neared(0.0_c_double, -1.0_c_double)
  print '(a, z16.16)',    'nearest(0.0, -1.0)= ', transfer(d, 0_c_int64_t)
  ! Zero to a negative power is reported by the run-time (one line on
  ! stderr from the default handler) and gives +Inf.
  print '(a, es24.16e3)', '0.0**-1           = ', g_adxj(0.0_c_double, -1_c_int64_t)
end program slice
