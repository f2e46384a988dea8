! MATMUL through this library's dgemm_: built with gfortran -fexternal-blas,
! the compiler turns MATMUL of large enough REAL(8) matrices into calls of
! dgemm, and the program is linked against mivorgsse2 and no other BLAS, so
! those calls land in the library.  The product is then bit for bit what
! the library's GEMM gives: the program checks that against an explicit
! dgemm call and prints a few results' bit patterns, which are those of the
! library's summation order.
program external_blas
  implicit none
  integer, parameter :: n = 100
  real(8) :: a(n, n), b(n, n), c(n, n), d(n, n)
  integer :: i, j

  do j = 1, n
    do i = 1, n
      a(i, j) = 1.0d0 / dble(i + 2 * j)
      b(i, j) = dble(i - j) / dble(i + j + 1)
    end do
  end do

  c = matmul(a, b)
  call dgemm('N', 'N', n, n, n, 1.0d0, a, n, b, n, 0.0d0, d, n)

  print '(a, l1)', 'matmul equals dgemm bit for bit: ', all(transfer(c, 1_8, n * n) == transfer(d, 1_8, n * n))
  print '(a, z16.16)', 'c(1,1)     = ', c(1, 1)
  print '(a, z16.16)', 'c(50,17)   = ', c(50, 17)
  print '(a, z16.16)', 'c(100,100) = ', c(n, n)
  print '(a, f12.6)', 'sum(c)     = ', sum(c)
end program
