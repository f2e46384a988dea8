! The checks of REAL(8) and COMPLEX(8): kind_checks.inc.
module checks_r8
  use, intrinsic :: iso_fortran_env, only: int32, int64, output_unit
  use client_support
  use mivor_api
  implicit none
  private
  integer, parameter :: wp = 8, nw = 2, fshift = 20, fbits = 11, fmax = 2047, bias = 1023
  integer, parameter :: ek = 10, rk = 16
  character(*), parameter :: kn = 'REAL(8)', ck = 'COMPLEX(8)'
  include 'kind_checks.inc'
end module checks_r8
