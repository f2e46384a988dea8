! The checks of REAL(4) and COMPLEX(4): kind_checks.inc.
module checks_r4
  use, intrinsic :: iso_fortran_env, only: int32, int64, output_unit
  use client_support
  use mivor_api
  implicit none
  private
  integer, parameter :: wp = 4, nw = 1, fshift = 23, fbits = 8, fmax = 255, bias = 127
  integer, parameter :: ek = 10, rk = 8
  character(*), parameter :: kn = 'REAL(4)', ck = 'COMPLEX(4)'
  include 'kind_checks.inc'
end module checks_r4
