! A Fortran client of mivorgsse2: the numeric-model intrinsics, MODULO,
! MERGE, the integer powers and complex multiplication and division of
! every kind, called through bind(C) interfaces (mivor_api.f90) and
! compared with what gfortran itself computes for the same expressions.
!
! Where the library's behaviour is the standard one the results must be
! the same bits.  The library deliberately differs where the run-time it
! stands in for always has; each such difference is tallied under its
! reason, and any other difference fails the run:
!   EXPONENT, FRACTION, RRSPACING, SPACING, SCALE, SET_EXPONENT, NEAREST
!     work on the exponent field as it stands: subnormal X is not
!     normalised; infinities and NaNs are worked as numbers (gfortran
!     gives HUGE(0) or NaN); SCALE and SET_EXPONENT wrap out of range
!     instead of overflowing or underflowing; SCALE(-0.0) is +0;
!     SET_EXPONENT(-0.0) of REAL(4) is -(2**(I-1)); RRSPACING of a zero
!     keeps its sign; SPACING below the normal range is the subnormal
!     2**(e-p), not TINY; the 64-bit EXPONENT has a zero high word for
!     negative exponents;
!   MODULO is A - FLOOR(A / P) * P with a rounded quotient (gfortran forms
!     the exact remainder); zero results are +0; an infinite P gives NaN;
!   REAL(4) and REAL(8) results come back by value through the x87 stack
!     on the library's target, so a signalling NaN from NEAREST or MERGE
!     comes back quiet.
! The integer powers and complex products and quotients use other methods
! than gfortran's: their differences are tallied in units of the last
! place, and the largest errors of both against a wider kind are printed
! (and the library's held to its bounds).
!
!   gfortran_client [cases]      (default 20000 per kind and function)
program gfortran_client
  use, intrinsic :: iso_fortran_env, only: output_unit
  use client_support, only: failures, print_tallies
  use checks_r4, only: run_r4 => run_checks
  use checks_r8, only: run_r8 => run_checks
  use checks_r16, only: run_r16 => run_checks
  implicit none
  integer :: cases, status
  character(len=32) :: arg

  cases = 20000
  if (command_argument_count() >= 1) then
    call get_command_argument(1, arg)
    read (arg, *, iostat=status) cases
    if (status /= 0) cases = 20000
  end if
  call run_r4(cases)
  call run_r8(cases)
  call run_r16(cases)
  call print_tallies()
  if (failures > 0) then
    write (output_unit, '(i0, a)') failures, ' checks failed'
    error stop 1
  end if
  write (output_unit, '(a)') 'gfortran client: every difference from gfortran is one of the listed ones'
end program gfortran_client
