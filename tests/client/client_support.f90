! What the checks of the gfortran client share: a random stream that every
! target draws alike (xorshift64: shifts and exclusive ors only), the tally
! of outcomes printed at the end, and the failure count that decides the
! exit status.
module client_support
  use, intrinsic :: iso_fortran_env, only: int32, int64, output_unit
  implicit none
  private
  public :: next_random, below, tally, fail, failures, print_tallies, ulp_bucket

  integer(int64) :: state = 88172645463325252_int64
  integer :: failures = 0
  integer, parameter :: max_rows = 600
  character(len=120) :: labels(max_rows)
  integer :: counts(max_rows) = 0
  integer :: rows = 0

contains

  integer(int64) function next_random()
    state = ieor(state, shiftl(state, 13))
    state = ieor(state, shiftr(state, 7))
    state = ieor(state, shiftl(state, 17))
    next_random = state
  end function

  ! Nearly uniform in [0, n).
  integer function below(n)
    integer, intent(in) :: n
    below = int(modulo(shiftr(next_random(), 1), int(n, int64)))
  end function

  ! Counts one outcome under its label; labels are printed in the order
  ! they first occur.
  subroutine tally(label)
    character(*), intent(in) :: label
    integer :: i
    do i = 1, rows
      if (labels(i) == label) then
        counts(i) = counts(i) + 1
        return
      end if
    end do
    if (rows == max_rows) then
      call fail('too many tally rows at ' // label)
      return
    end if
    rows = rows + 1
    labels(rows) = label
    counts(rows) = 1
  end subroutine

  subroutine fail(message)
    character(*), intent(in) :: message
    failures = failures + 1
    if (failures <= 40) write (output_unit, '(a, a)') 'FAILED: ', message
  end subroutine

  ! In the order of the labels, so that a function's outcomes and a
  ! histogram's bins stand together.
  subroutine print_tallies()
    integer :: order(max_rows), i, j, t
    order(1:rows) = [(i, i = 1, rows)]
    do i = 2, rows
      t = order(i)
      j = i - 1
      do while (j >= 1)
        if (llt(labels(t), labels(order(j)))) then
          order(j + 1) = order(j)
          j = j - 1
        else
          exit
        end if
      end do
      order(j + 1) = t
    end do
    do i = 1, rows
      write (output_unit, '(a, ": ", i0)') trim(labels(order(i))), counts(order(i))
    end do
  end subroutine

  ! The histogram bin of a distance in units of the last place.
  character(len=8) function ulp_bucket(u)
    real(kind(1d0)), intent(in) :: u
    if (u == 0) then
      ulp_bucket = '0'
    else if (u <= 1) then
      ulp_bucket = '(0,1]'
    else if (u <= 2) then
      ulp_bucket = '(1,2]'
    else if (u <= 4) then
      ulp_bucket = '(2,4]'
    else if (u <= 16) then
      ulp_bucket = '(4,16]'
    else
      ulp_bucket = '>16'
    end if
  end function

end module client_support
