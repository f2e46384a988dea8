! The checks of REAL(16) and COMPLEX(16): kind_checks.inc.
module checks_r16
  use, intrinsic :: iso_fortran_env, only: int32, int64, output_unit
  use client_support
  use mivor_api
  implicit none
  private
  integer, parameter :: wp = 16, nw = 4, fshift = 16, fbits = 15, fmax = 32767, bias = 16383
  integer, parameter :: ek = 16, rk = 16
  character(*), parameter :: kn = 'REAL(16)', ck = 'COMPLEX(16)'
  include 'kind_checks.inc'
end module checks_r16
