! The peers of bench/operators compiled by gfortran -O2: each routine runs
! one intrinsic or operator over n elements, as compiled Fortran code does
! when it does not call the run-time (gfortran expands these inline or
! calls its own run-time and libm).  bind(C) so that the C++ harness can
! call them.
module gfortran_peers
  use, intrinsic :: iso_c_binding
  implicit none
contains

  subroutine gf_exponent_r4(n, x, y) bind(C, name='gf_exponent_r4')
    integer(c_int), value :: n
    real(c_float), intent(in) :: x(n)
    integer(c_int32_t), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = exponent(x(i))
    end do
  end subroutine

  subroutine gf_fraction_r4(n, x, y) bind(C, name='gf_fraction_r4')
    integer(c_int), value :: n
    real(c_float), intent(in) :: x(n)
    real(c_float), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = fraction(x(i))
    end do
  end subroutine

  subroutine gf_rrspacing_r4(n, x, y) bind(C, name='gf_rrspacing_r4')
    integer(c_int), value :: n
    real(c_float), intent(in) :: x(n)
    real(c_float), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = rrspacing(x(i))
    end do
  end subroutine

  subroutine gf_spacing_r4(n, x, y) bind(C, name='gf_spacing_r4')
    integer(c_int), value :: n
    real(c_float), intent(in) :: x(n)
    real(c_float), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = spacing(x(i))
    end do
  end subroutine

  subroutine gf_scale_r4(n, x, e, y) bind(C, name='gf_scale_r4')
    integer(c_int), value :: n
    real(c_float), intent(in) :: x(n)
    integer(c_int32_t), intent(in) :: e(n)
    real(c_float), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = scale(x(i), e(i))
    end do
  end subroutine

  subroutine gf_set_exponent_r4(n, x, e, y) bind(C, name='gf_set_exponent_r4')
    integer(c_int), value :: n
    real(c_float), intent(in) :: x(n)
    integer(c_int32_t), intent(in) :: e(n)
    real(c_float), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = set_exponent(x(i), e(i))
    end do
  end subroutine

  subroutine gf_nearest_r4(n, x, s, y) bind(C, name='gf_nearest_r4')
    integer(c_int), value :: n
    real(c_float), intent(in) :: x(n)
    real(c_float), intent(in) :: s(n)
    real(c_float), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = nearest(x(i), s(i))
    end do
  end subroutine

  subroutine gf_modulo_r4(n, a, p, y) bind(C, name='gf_modulo_r4')
    integer(c_int), value :: n
    real(c_float), intent(in) :: a(n)
    real(c_float), intent(in) :: p(n)
    real(c_float), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = modulo(a(i), p(i))
    end do
  end subroutine

  subroutine gf_merge_r4(n, t, f, m, y) bind(C, name='gf_merge_r4')
    integer(c_int), value :: n
    real(c_float), intent(in) :: t(n)
    real(c_float), intent(in) :: f(n)
    integer(c_int32_t), intent(in) :: m(n)
    real(c_float), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = merge(t(i), f(i), m(i) /= 0)
    end do
  end subroutine

  subroutine gf_power_r4_i4(n, x, e, y) bind(C, name='gf_power_r4_i4')
    integer(c_int), value :: n
    real(c_float), intent(in) :: x(n)
    integer(c_int32_t), intent(in) :: e(n)
    real(c_float), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = x(i)**e(i)
    end do
  end subroutine

  subroutine gf_power_r4_i8(n, x, e, y) bind(C, name='gf_power_r4_i8')
    integer(c_int), value :: n
    real(c_float), intent(in) :: x(n)
    integer(c_int64_t), intent(in) :: e(n)
    real(c_float), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = x(i)**e(i)
    end do
  end subroutine

  subroutine gf_multiply_c4(n, x, z, y) bind(C, name='gf_multiply_c4')
    integer(c_int), value :: n
    complex(c_float_complex), intent(in) :: x(n)
    complex(c_float_complex), intent(in) :: z(n)
    complex(c_float_complex), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = x(i) * z(i)
    end do
  end subroutine

  subroutine gf_divide_c4(n, x, z, y) bind(C, name='gf_divide_c4')
    integer(c_int), value :: n
    complex(c_float_complex), intent(in) :: x(n)
    complex(c_float_complex), intent(in) :: z(n)
    complex(c_float_complex), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = x(i) / z(i)
    end do
  end subroutine

  subroutine gf_power_c4_i4(n, x, e, y) bind(C, name='gf_power_c4_i4')
    integer(c_int), value :: n
    complex(c_float_complex), intent(in) :: x(n)
    integer(c_int32_t), intent(in) :: e(n)
    complex(c_float_complex), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = x(i)**e(i)
    end do
  end subroutine

  subroutine gf_exponent_r8(n, x, y) bind(C, name='gf_exponent_r8')
    integer(c_int), value :: n
    real(c_double), intent(in) :: x(n)
    integer(c_int32_t), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = exponent(x(i))
    end do
  end subroutine

  subroutine gf_fraction_r8(n, x, y) bind(C, name='gf_fraction_r8')
    integer(c_int), value :: n
    real(c_double), intent(in) :: x(n)
    real(c_double), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = fraction(x(i))
    end do
  end subroutine

  subroutine gf_rrspacing_r8(n, x, y) bind(C, name='gf_rrspacing_r8')
    integer(c_int), value :: n
    real(c_double), intent(in) :: x(n)
    real(c_double), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = rrspacing(x(i))
    end do
  end subroutine

  subroutine gf_spacing_r8(n, x, y) bind(C, name='gf_spacing_r8')
    integer(c_int), value :: n
    real(c_double), intent(in) :: x(n)
    real(c_double), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = spacing(x(i))
    end do
  end subroutine

  subroutine gf_scale_r8(n, x, e, y) bind(C, name='gf_scale_r8')
    integer(c_int), value :: n
    real(c_double), intent(in) :: x(n)
    integer(c_int32_t), intent(in) :: e(n)
    real(c_double), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = scale(x(i), e(i))
    end do
  end subroutine

  subroutine gf_set_exponent_r8(n, x, e, y) bind(C, name='gf_set_exponent_r8')
    integer(c_int), value :: n
    real(c_double), intent(in) :: x(n)
    integer(c_int32_t), intent(in) :: e(n)
    real(c_double), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = set_exponent(x(i), e(i))
    end do
  end subroutine

  subroutine gf_nearest_r8(n, x, s, y) bind(C, name='gf_nearest_r8')
    integer(c_int), value :: n
    real(c_double), intent(in) :: x(n)
    real(c_double), intent(in) :: s(n)
    real(c_double), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = nearest(x(i), s(i))
    end do
  end subroutine

  subroutine gf_modulo_r8(n, a, p, y) bind(C, name='gf_modulo_r8')
    integer(c_int), value :: n
    real(c_double), intent(in) :: a(n)
    real(c_double), intent(in) :: p(n)
    real(c_double), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = modulo(a(i), p(i))
    end do
  end subroutine

  subroutine gf_merge_r8(n, t, f, m, y) bind(C, name='gf_merge_r8')
    integer(c_int), value :: n
    real(c_double), intent(in) :: t(n)
    real(c_double), intent(in) :: f(n)
    integer(c_int32_t), intent(in) :: m(n)
    real(c_double), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = merge(t(i), f(i), m(i) /= 0)
    end do
  end subroutine

  subroutine gf_power_r8_i4(n, x, e, y) bind(C, name='gf_power_r8_i4')
    integer(c_int), value :: n
    real(c_double), intent(in) :: x(n)
    integer(c_int32_t), intent(in) :: e(n)
    real(c_double), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = x(i)**e(i)
    end do
  end subroutine

  subroutine gf_power_r8_i8(n, x, e, y) bind(C, name='gf_power_r8_i8')
    integer(c_int), value :: n
    real(c_double), intent(in) :: x(n)
    integer(c_int64_t), intent(in) :: e(n)
    real(c_double), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = x(i)**e(i)
    end do
  end subroutine

  subroutine gf_multiply_c8(n, x, z, y) bind(C, name='gf_multiply_c8')
    integer(c_int), value :: n
    complex(c_double_complex), intent(in) :: x(n)
    complex(c_double_complex), intent(in) :: z(n)
    complex(c_double_complex), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = x(i) * z(i)
    end do
  end subroutine

  subroutine gf_divide_c8(n, x, z, y) bind(C, name='gf_divide_c8')
    integer(c_int), value :: n
    complex(c_double_complex), intent(in) :: x(n)
    complex(c_double_complex), intent(in) :: z(n)
    complex(c_double_complex), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = x(i) / z(i)
    end do
  end subroutine

  subroutine gf_power_c8_i4(n, x, e, y) bind(C, name='gf_power_c8_i4')
    integer(c_int), value :: n
    complex(c_double_complex), intent(in) :: x(n)
    integer(c_int32_t), intent(in) :: e(n)
    complex(c_double_complex), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = x(i)**e(i)
    end do
  end subroutine

  subroutine gf_exponent_r16(n, x, y) bind(C, name='gf_exponent_r16')
    integer(c_int), value :: n
    real(c_float128), intent(in) :: x(n)
    integer(c_int32_t), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = exponent(x(i))
    end do
  end subroutine

  subroutine gf_fraction_r16(n, x, y) bind(C, name='gf_fraction_r16')
    integer(c_int), value :: n
    real(c_float128), intent(in) :: x(n)
    real(c_float128), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = fraction(x(i))
    end do
  end subroutine

  subroutine gf_rrspacing_r16(n, x, y) bind(C, name='gf_rrspacing_r16')
    integer(c_int), value :: n
    real(c_float128), intent(in) :: x(n)
    real(c_float128), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = rrspacing(x(i))
    end do
  end subroutine

  subroutine gf_spacing_r16(n, x, y) bind(C, name='gf_spacing_r16')
    integer(c_int), value :: n
    real(c_float128), intent(in) :: x(n)
    real(c_float128), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = spacing(x(i))
    end do
  end subroutine

  subroutine gf_scale_r16(n, x, e, y) bind(C, name='gf_scale_r16')
    integer(c_int), value :: n
    real(c_float128), intent(in) :: x(n)
    integer(c_int32_t), intent(in) :: e(n)
    real(c_float128), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = scale(x(i), e(i))
    end do
  end subroutine

  subroutine gf_set_exponent_r16(n, x, e, y) bind(C, name='gf_set_exponent_r16')
    integer(c_int), value :: n
    real(c_float128), intent(in) :: x(n)
    integer(c_int32_t), intent(in) :: e(n)
    real(c_float128), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = set_exponent(x(i), e(i))
    end do
  end subroutine

  subroutine gf_nearest_r16(n, x, s, y) bind(C, name='gf_nearest_r16')
    integer(c_int), value :: n
    real(c_float128), intent(in) :: x(n)
    real(c_float128), intent(in) :: s(n)
    real(c_float128), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = nearest(x(i), s(i))
    end do
  end subroutine

  subroutine gf_modulo_r16(n, a, p, y) bind(C, name='gf_modulo_r16')
    integer(c_int), value :: n
    real(c_float128), intent(in) :: a(n)
    real(c_float128), intent(in) :: p(n)
    real(c_float128), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = modulo(a(i), p(i))
    end do
  end subroutine

  subroutine gf_merge_r16(n, t, f, m, y) bind(C, name='gf_merge_r16')
    integer(c_int), value :: n
    real(c_float128), intent(in) :: t(n)
    real(c_float128), intent(in) :: f(n)
    integer(c_int32_t), intent(in) :: m(n)
    real(c_float128), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = merge(t(i), f(i), m(i) /= 0)
    end do
  end subroutine

  subroutine gf_power_r16_i4(n, x, e, y) bind(C, name='gf_power_r16_i4')
    integer(c_int), value :: n
    real(c_float128), intent(in) :: x(n)
    integer(c_int32_t), intent(in) :: e(n)
    real(c_float128), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = x(i)**e(i)
    end do
  end subroutine

  subroutine gf_power_r16_i8(n, x, e, y) bind(C, name='gf_power_r16_i8')
    integer(c_int), value :: n
    real(c_float128), intent(in) :: x(n)
    integer(c_int64_t), intent(in) :: e(n)
    real(c_float128), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = x(i)**e(i)
    end do
  end subroutine

  subroutine gf_multiply_c16(n, x, z, y) bind(C, name='gf_multiply_c16')
    integer(c_int), value :: n
    complex(c_float128_complex), intent(in) :: x(n)
    complex(c_float128_complex), intent(in) :: z(n)
    complex(c_float128_complex), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = x(i) * z(i)
    end do
  end subroutine

  subroutine gf_divide_c16(n, x, z, y) bind(C, name='gf_divide_c16')
    integer(c_int), value :: n
    complex(c_float128_complex), intent(in) :: x(n)
    complex(c_float128_complex), intent(in) :: z(n)
    complex(c_float128_complex), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = x(i) / z(i)
    end do
  end subroutine

  subroutine gf_power_c16_i4(n, x, e, y) bind(C, name='gf_power_c16_i4')
    integer(c_int), value :: n
    complex(c_float128_complex), intent(in) :: x(n)
    integer(c_int32_t), intent(in) :: e(n)
    complex(c_float128_complex), intent(out) :: y(n)
    integer :: i
    do i = 1, n
      y(i) = x(i)**e(i)
    end do
  end subroutine

end module gfortran_peers
