! gfortran's MATMUL as the peer of g_matmld, g_matmlr and g_matmlx: the
! library routine of libgfortran on explicit-shape arrays (built with
! -finline-matmul-limit=0, so the compiler never expands it inline).
subroutine gf_matmul_d(m, k, n, a, b, c) bind(C, name='gf_matmul_d')
  use iso_c_binding
  integer(c_int), value :: m, k, n
  real(c_double), intent(in) :: a(m, k), b(k, n)
  real(c_double), intent(out) :: c(m, n)
  c = matmul(a, b)
end subroutine

subroutine gf_matmul_r(m, k, n, a, b, c) bind(C, name='gf_matmul_r')
  use iso_c_binding
  integer(c_int), value :: m, k, n
  real(c_float), intent(in) :: a(m, k), b(k, n)
  real(c_float), intent(out) :: c(m, n)
  c = matmul(a, b)
end subroutine

subroutine gf_matmul_x(m, k, n, a, b, c) bind(C, name='gf_matmul_x')
  use iso_c_binding
  integer(c_int), value :: m, k, n
  complex(c_double_complex), intent(in) :: a(m, k), b(k, n)
  complex(c_double_complex), intent(out) :: c(m, n)
  c = matmul(a, b)
end subroutine
