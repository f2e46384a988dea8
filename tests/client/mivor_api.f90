! The exports of mivorgsse2 that the client calls, through bind(C)
! interfaces, under generic names over the kinds (lib_exponent, lib_power,
! ...) for the checks that are written once for every kind.
!
! Fortran passes every argument by reference, the library's convention, so
! the interfaces only give names and kinds.  REAL(4) and REAL(8) results
! come back by value (in st(0) on 32-bit x86).  REAL(16) and complex results
! go through a first result argument whose address the export also returns;
! those exports are declared as subroutines (the address is not needed) and
! reached through small functions.
module mivor_api
  use, intrinsic :: iso_c_binding, only: c_int32_t, c_int64_t, c_float, c_double, c_float128, &
                                         c_float_complex, c_double_complex, c_float128_complex
  implicit none
  private
  public :: lib_divide
  public :: lib_exponent
  public :: lib_fraction
  public :: lib_jexponent
  public :: lib_merge
  public :: lib_modulo
  public :: lib_multiply
  public :: lib_nearest
  public :: lib_power
  public :: lib_rrspacing
  public :: lib_scale
  public :: lib_set_exponent
  public :: lib_spacing

  interface
    subroutine g_acdc(r, x, y) bind(C, name='g_acdc')
      import; complex(c_float_complex), intent(out) :: r
      complex(c_float_complex), intent(in) :: x
      complex(c_float_complex), intent(in) :: y
    end subroutine
    subroutine g_axdx(r, x, y) bind(C, name='g_axdx')
      import; complex(c_double_complex), intent(out) :: r
      complex(c_double_complex), intent(in) :: x
      complex(c_double_complex), intent(in) :: y
    end subroutine
    subroutine g_azdz(r, x, y) bind(C, name='g_azdz')
      import; complex(c_float128_complex), intent(out) :: r
      complex(c_float128_complex), intent(in) :: x
      complex(c_float128_complex), intent(in) :: y
    end subroutine
    subroutine g_fractq(r, x) bind(C, name='g_fractq')
      import; real(c_float128), intent(out) :: r
      real(c_float128), intent(in) :: x
    end subroutine
    subroutine g_mrgq(r, ts, fs, mask) bind(C, name='g_mrgq')
      import; real(c_float128), intent(out) :: r
      real(c_float128), intent(in) :: ts
      real(c_float128), intent(in) :: fs
      integer(c_int32_t), intent(in) :: mask
    end subroutine
    subroutine g_cmrg(r, ts, fs, mask) bind(C, name='g_cmrg')
      import; complex(c_float_complex), intent(out) :: r
      complex(c_float_complex), intent(in) :: ts
      complex(c_float_complex), intent(in) :: fs
      integer(c_int32_t), intent(in) :: mask
    end subroutine
    subroutine g_dmrg(r, ts, fs, mask) bind(C, name='g_dmrg')
      import; complex(c_double_complex), intent(out) :: r
      complex(c_double_complex), intent(in) :: ts
      complex(c_double_complex), intent(in) :: fs
      integer(c_int32_t), intent(in) :: mask
    end subroutine
    subroutine g_qmrg(r, ts, fs, mask) bind(C, name='g_qmrg')
      import; complex(c_float128_complex), intent(out) :: r
      complex(c_float128_complex), intent(in) :: ts
      complex(c_float128_complex), intent(in) :: fs
      integer(c_int32_t), intent(in) :: mask
    end subroutine
    subroutine g_modlq(r, a, p) bind(C, name='g_modlq')
      import; real(c_float128), intent(out) :: r
      real(c_float128), intent(in) :: a
      real(c_float128), intent(in) :: p
    end subroutine
    subroutine g_acmc(r, x, y) bind(C, name='g_acmc')
      import; complex(c_float_complex), intent(out) :: r
      complex(c_float_complex), intent(in) :: x
      complex(c_float_complex), intent(in) :: y
    end subroutine
    subroutine g_axmx(r, x, y) bind(C, name='g_axmx')
      import; complex(c_double_complex), intent(out) :: r
      complex(c_double_complex), intent(in) :: x
      complex(c_double_complex), intent(in) :: y
    end subroutine
    subroutine g_azmz(r, x, y) bind(C, name='g_azmz')
      import; complex(c_float128_complex), intent(out) :: r
      complex(c_float128_complex), intent(in) :: x
      complex(c_float128_complex), intent(in) :: y
    end subroutine
    subroutine g_neareq(r, x, s) bind(C, name='g_neareq')
      import; real(c_float128), intent(out) :: r
      real(c_float128), intent(in) :: x
      real(c_float128), intent(in) :: s
    end subroutine
    subroutine g_acxi(r, x, n) bind(C, name='g_acxi')
      import; complex(c_float_complex), intent(out) :: r
      complex(c_float_complex), intent(in) :: x
      integer(c_int32_t), intent(in) :: n
    end subroutine
    subroutine g_acxj(r, x, n) bind(C, name='g_acxj')
      import; complex(c_float_complex), intent(out) :: r
      complex(c_float_complex), intent(in) :: x
      integer(c_int64_t), intent(in) :: n
    end subroutine
    subroutine g_axxi(r, x, n) bind(C, name='g_axxi')
      import; complex(c_double_complex), intent(out) :: r
      complex(c_double_complex), intent(in) :: x
      integer(c_int32_t), intent(in) :: n
    end subroutine
    subroutine g_axxj(r, x, n) bind(C, name='g_axxj')
      import; complex(c_double_complex), intent(out) :: r
      complex(c_double_complex), intent(in) :: x
      integer(c_int64_t), intent(in) :: n
    end subroutine
    subroutine g_azxi(r, x, n) bind(C, name='g_azxi')
      import; complex(c_float128_complex), intent(out) :: r
      complex(c_float128_complex), intent(in) :: x
      integer(c_int32_t), intent(in) :: n
    end subroutine
    subroutine g_azxj(r, x, n) bind(C, name='g_azxj')
      import; complex(c_float128_complex), intent(out) :: r
      complex(c_float128_complex), intent(in) :: x
      integer(c_int64_t), intent(in) :: n
    end subroutine
    subroutine g_aqxi(r, x, n) bind(C, name='g_aqxi')
      import; real(c_float128), intent(out) :: r
      real(c_float128), intent(in) :: x
      integer(c_int32_t), intent(in) :: n
    end subroutine
    subroutine g_aqxj(r, x, n) bind(C, name='g_aqxj')
      import; real(c_float128), intent(out) :: r
      real(c_float128), intent(in) :: x
      integer(c_int64_t), intent(in) :: n
    end subroutine
    subroutine g_rrspaq(r, x) bind(C, name='g_rrspaq')
      import; real(c_float128), intent(out) :: r
      real(c_float128), intent(in) :: x
    end subroutine
    subroutine g_scaleq(r, x, i) bind(C, name='g_scaleq')
      import; real(c_float128), intent(out) :: r
      real(c_float128), intent(in) :: x
      integer(c_int32_t), intent(in) :: i
    end subroutine
    subroutine g_stexpq(r, x, i) bind(C, name='g_stexpq')
      import; real(c_float128), intent(out) :: r
      real(c_float128), intent(in) :: x
      integer(c_int32_t), intent(in) :: i
    end subroutine
    subroutine g_spaciq(r, x) bind(C, name='g_spaciq')
      import; real(c_float128), intent(out) :: r
      real(c_float128), intent(in) :: x
    end subroutine
  end interface

  interface lib_divide
    module procedure via_g_acdc, via_g_axdx, via_g_azdz
  end interface

  interface lib_exponent
    integer(c_int32_t) function g_expon(x) bind(C, name='g_expon')
      import
      real(c_float), intent(in) :: x
    end function
    integer(c_int32_t) function g_expond(x) bind(C, name='g_expond')
      import
      real(c_double), intent(in) :: x
    end function
    integer(c_int32_t) function g_exponq(x) bind(C, name='g_exponq')
      import
      real(c_float128), intent(in) :: x
    end function
  end interface

  interface lib_fraction
    module procedure via_g_fractq
    real(c_float) function g_fract(x) bind(C, name='g_fract')
      import
      real(c_float), intent(in) :: x
    end function
    real(c_double) function g_fractd(x) bind(C, name='g_fractd')
      import
      real(c_double), intent(in) :: x
    end function
  end interface

  interface lib_jexponent
    integer(c_int64_t) function g_jexpon(x) bind(C, name='g_jexpon')
      import
      real(c_float), intent(in) :: x
    end function
    integer(c_int64_t) function g_jexpnd(x) bind(C, name='g_jexpnd')
      import
      real(c_double), intent(in) :: x
    end function
    integer(c_int64_t) function g_jexpnq(x) bind(C, name='g_jexpnq')
      import
      real(c_float128), intent(in) :: x
    end function
  end interface

  interface lib_merge
    module procedure via_g_mrgq, via_g_cmrg, via_g_dmrg, via_g_qmrg
    real(c_float) function g_mrgr(ts, fs, mask) bind(C, name='g_mrgr')
      import
      real(c_float), intent(in) :: ts
      real(c_float), intent(in) :: fs
      integer(c_int32_t), intent(in) :: mask
    end function
    real(c_double) function g_mrgd(ts, fs, mask) bind(C, name='g_mrgd')
      import
      real(c_double), intent(in) :: ts
      real(c_double), intent(in) :: fs
      integer(c_int32_t), intent(in) :: mask
    end function
  end interface

  interface lib_modulo
    module procedure via_g_modlq
    real(c_float) function g_modlr(a, p) bind(C, name='g_modlr')
      import
      real(c_float), intent(in) :: a
      real(c_float), intent(in) :: p
    end function
    real(c_double) function g_modld(a, p) bind(C, name='g_modld')
      import
      real(c_double), intent(in) :: a
      real(c_double), intent(in) :: p
    end function
  end interface

  interface lib_multiply
    module procedure via_g_acmc, via_g_axmx, via_g_azmz
  end interface

  interface lib_nearest
    module procedure via_g_neareq
    real(c_float) function g_neare(x, s) bind(C, name='g_neare')
      import
      real(c_float), intent(in) :: x
      real(c_float), intent(in) :: s
    end function
    real(c_double) function g_neared(x, s) bind(C, name='g_neared')
      import
      real(c_double), intent(in) :: x
      real(c_double), intent(in) :: s
    end function
  end interface

  interface lib_power
    module procedure via_g_acxi, via_g_acxj, via_g_axxi, via_g_axxj, via_g_azxi, via_g_azxj, via_g_aqxi, via_g_aqxj
    real(c_float) function g_arxi(x, n) bind(C, name='g_arxi')
      import
      real(c_float), intent(in) :: x
      integer(c_int32_t), intent(in) :: n
    end function
    real(c_float) function g_arxj(x, n) bind(C, name='g_arxj')
      import
      real(c_float), intent(in) :: x
      integer(c_int64_t), intent(in) :: n
    end function
    real(c_double) function g_adxi(x, n) bind(C, name='g_adxi')
      import
      real(c_double), intent(in) :: x
      integer(c_int32_t), intent(in) :: n
    end function
    real(c_double) function g_adxj(x, n) bind(C, name='g_adxj')
      import
      real(c_double), intent(in) :: x
      integer(c_int64_t), intent(in) :: n
    end function
  end interface

  interface lib_rrspacing
    module procedure via_g_rrspaq
    real(c_float) function g_rrspa(x) bind(C, name='g_rrspa')
      import
      real(c_float), intent(in) :: x
    end function
    real(c_double) function g_rrspad(x) bind(C, name='g_rrspad')
      import
      real(c_double), intent(in) :: x
    end function
  end interface

  interface lib_scale
    module procedure via_g_scaleq
    real(c_float) function g_scale(x, i) bind(C, name='g_scale')
      import
      real(c_float), intent(in) :: x
      integer(c_int32_t), intent(in) :: i
    end function
    real(c_double) function g_scaled(x, i) bind(C, name='g_scaled')
      import
      real(c_double), intent(in) :: x
      integer(c_int32_t), intent(in) :: i
    end function
  end interface

  interface lib_set_exponent
    module procedure via_g_stexpq
    real(c_float) function g_stexp(x, i) bind(C, name='g_stexp')
      import
      real(c_float), intent(in) :: x
      integer(c_int32_t), intent(in) :: i
    end function
    real(c_double) function g_stexpd(x, i) bind(C, name='g_stexpd')
      import
      real(c_double), intent(in) :: x
      integer(c_int32_t), intent(in) :: i
    end function
  end interface

  interface lib_spacing
    module procedure via_g_spaciq
    real(c_float) function g_spaci(x) bind(C, name='g_spaci')
      import
      real(c_float), intent(in) :: x
    end function
    real(c_double) function g_spacid(x) bind(C, name='g_spacid')
      import
      real(c_double), intent(in) :: x
    end function
  end interface

contains

  complex(c_float_complex) function via_g_acdc(x, y) result(r)
    complex(c_float_complex), intent(in) :: x; complex(c_float_complex), intent(in) :: y
    call g_acdc(r, x, y)
  end function

  complex(c_double_complex) function via_g_axdx(x, y) result(r)
    complex(c_double_complex), intent(in) :: x; complex(c_double_complex), intent(in) :: y
    call g_axdx(r, x, y)
  end function

  complex(c_float128_complex) function via_g_azdz(x, y) result(r)
    complex(c_float128_complex), intent(in) :: x; complex(c_float128_complex), intent(in) :: y
    call g_azdz(r, x, y)
  end function

  real(c_float128) function via_g_fractq(x) result(r)
    real(c_float128), intent(in) :: x
    call g_fractq(r, x)
  end function

  real(c_float128) function via_g_mrgq(ts, fs, mask) result(r)
    real(c_float128), intent(in) :: ts; real(c_float128), intent(in) :: fs; integer(c_int32_t), intent(in) :: mask
    call g_mrgq(r, ts, fs, mask)
  end function

  complex(c_float_complex) function via_g_cmrg(ts, fs, mask) result(r)
    complex(c_float_complex), intent(in) :: ts; complex(c_float_complex), intent(in) :: fs; integer(c_int32_t), intent(in) :: mask
    call g_cmrg(r, ts, fs, mask)
  end function

  complex(c_double_complex) function via_g_dmrg(ts, fs, mask) result(r)
    complex(c_double_complex), intent(in) :: ts; complex(c_double_complex), intent(in) :: fs; integer(c_int32_t), intent(in) :: mask
    call g_dmrg(r, ts, fs, mask)
  end function

  complex(c_float128_complex) function via_g_qmrg(ts, fs, mask) result(r)
    complex(c_float128_complex), intent(in) :: ts; complex(c_float128_complex), intent(in) :: fs; integer(c_int32_t), intent(in) :: mask
    call g_qmrg(r, ts, fs, mask)
  end function

  real(c_float128) function via_g_modlq(a, p) result(r)
    real(c_float128), intent(in) :: a; real(c_float128), intent(in) :: p
    call g_modlq(r, a, p)
  end function

  complex(c_float_complex) function via_g_acmc(x, y) result(r)
    complex(c_float_complex), intent(in) :: x; complex(c_float_complex), intent(in) :: y
    call g_acmc(r, x, y)
  end function

  complex(c_double_complex) function via_g_axmx(x, y) result(r)
    complex(c_double_complex), intent(in) :: x; complex(c_double_complex), intent(in) :: y
    call g_axmx(r, x, y)
  end function

  complex(c_float128_complex) function via_g_azmz(x, y) result(r)
    complex(c_float128_complex), intent(in) :: x; complex(c_float128_complex), intent(in) :: y
    call g_azmz(r, x, y)
  end function

  real(c_float128) function via_g_neareq(x, s) result(r)
    real(c_float128), intent(in) :: x; real(c_float128), intent(in) :: s
    call g_neareq(r, x, s)
  end function

  complex(c_float_complex) function via_g_acxi(x, n) result(r)
    complex(c_float_complex), intent(in) :: x; integer(c_int32_t), intent(in) :: n
    call g_acxi(r, x, n)
  end function

  complex(c_float_complex) function via_g_acxj(x, n) result(r)
    complex(c_float_complex), intent(in) :: x; integer(c_int64_t), intent(in) :: n
    call g_acxj(r, x, n)
  end function

  complex(c_double_complex) function via_g_axxi(x, n) result(r)
    complex(c_double_complex), intent(in) :: x; integer(c_int32_t), intent(in) :: n
    call g_axxi(r, x, n)
  end function

  complex(c_double_complex) function via_g_axxj(x, n) result(r)
    complex(c_double_complex), intent(in) :: x; integer(c_int64_t), intent(in) :: n
    call g_axxj(r, x, n)
  end function

  complex(c_float128_complex) function via_g_azxi(x, n) result(r)
    complex(c_float128_complex), intent(in) :: x; integer(c_int32_t), intent(in) :: n
    call g_azxi(r, x, n)
  end function

  complex(c_float128_complex) function via_g_azxj(x, n) result(r)
    complex(c_float128_complex), intent(in) :: x; integer(c_int64_t), intent(in) :: n
    call g_azxj(r, x, n)
  end function

  real(c_float128) function via_g_aqxi(x, n) result(r)
    real(c_float128), intent(in) :: x; integer(c_int32_t), intent(in) :: n
    call g_aqxi(r, x, n)
  end function

  real(c_float128) function via_g_aqxj(x, n) result(r)
    real(c_float128), intent(in) :: x; integer(c_int64_t), intent(in) :: n
    call g_aqxj(r, x, n)
  end function

  real(c_float128) function via_g_rrspaq(x) result(r)
    real(c_float128), intent(in) :: x
    call g_rrspaq(r, x)
  end function

  real(c_float128) function via_g_scaleq(x, i) result(r)
    real(c_float128), intent(in) :: x; integer(c_int32_t), intent(in) :: i
    call g_scaleq(r, x, i)
  end function

  real(c_float128) function via_g_stexpq(x, i) result(r)
    real(c_float128), intent(in) :: x; integer(c_int32_t), intent(in) :: i
    call g_stexpq(r, x, i)
  end function

  real(c_float128) function via_g_spaciq(x) result(r)
    real(c_float128), intent(in) :: x
    call g_spaciq(r, x)
  end function

end module mivor_api
