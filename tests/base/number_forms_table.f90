program number_forms_table
  use, intrinsic :: iso_fortran_env, only: int64, real64
  use, intrinsic :: ieee_arithmetic, only: ieee_value, ieee_quiet_nan, ieee_positive_inf, &
                                           ieee_negative_inf
  implicit none
  integer(int64) :: state = 88172645463325252_int64
  integer, parameter :: samples = 36

  call real_rows('E', [15, 19, 20, 10, 8, 7, 6, 9, 12, 14, 22], [9, 12, 14, 4, 3, 3, 2, 3, 5, 9, 16])
  call real_rows('G', [16, 16, 24, 10, 15, 19, 12, 8, 7, 9, 6, 22, 4], [8, 7, 15, 5, 9, 12, 6, 3, 2, 1, 2, 17, 1])
  call real_rows('F', [11, 11, 6, 15, 5, 12, 4, 3, 1, 8, 10, 20], [2, 3, 2, 9, 2, 0, 3, 3, 0, 1, 6, 15])
  call real_rows('P', [15, 11, 19, 9, 8, 24, 10], [6, 4, 12, 4, 2, 16, 0])
  call integer_rows([1, 2, 3, 4, 5, 6, 12, 20])

contains

  subroutine real_rows(form, widths, digits)
    character, intent(in) :: form
    integer, intent(in) :: widths(:), digits(:)
    integer :: k, n
    do k = 1, size(widths)
      call special_values(form, widths(k), digits(k))
      if (form /= 'P') call edges_of_rounding(form, widths(k), digits(k))
      do n = 1, samples
        call real_row(form, widths(k), digits(k), random_value(n))
      end do
    end do
  end subroutine

  subroutine special_values(form, w, d)
    character, intent(in) :: form
    integer, intent(in) :: w, d
    real(real64), parameter :: plain(*) = [0.0_real64, 0.5_real64, 1.5_real64, 2.5_real64, 0.125_real64, &
      0.375_real64, 1.005_real64, 0.05_real64, 0.005_real64, 0.09999995_real64, 9.9995_real64, &
      99.995_real64, 0.9995_real64, 1.0e5_real64, 12345.678_real64, 1.0_real64 / 3.0_real64, &
      1.0e-1_real64, 1.0e-2_real64, 1.0e-5_real64, 1.0e-30_real64, 1.0e-99_real64, 1.0e-100_real64, &
      1.0e-101_real64, 9.999999999999999e-101_real64, 1.0e1_real64, 1.0e2_real64, 1.0e3_real64, &
      1.0e15_real64, 1.0e22_real64, 1.0e98_real64, 1.0e99_real64, 1.0e100_real64, &
      9.9999999999999997e98_real64, 9.9999999999999997e99_real64, 1.0e300_real64, &
      huge(1.0_real64), tiny(1.0_real64)]
    integer :: k
    do k = 1, size(plain)
      call real_row(form, w, d, plain(k))
      call real_row(form, w, d, -plain(k))
    end do
    call real_row(form, w, d, nearest(1.0e5_real64, -1.0_real64))
    call real_row(form, w, d, ieee_value(1.0_real64, ieee_quiet_nan))
    call real_row(form, w, d, ieee_value(1.0_real64, ieee_positive_inf))
    call real_row(form, w, d, ieee_value(1.0_real64, ieee_negative_inf))
  end subroutine

  subroutine edges_of_rounding(form, w, d)
    character, intent(in) :: form
    integer, intent(in) :: w, d
    real(real64) :: x
    integer :: p
    do p = -2, d + 1
      x = 10.0_real64**p - 0.5_real64 * 10.0_real64**(p - d)
      call real_row(form, w, d, x)
      call real_row(form, w, d, nearest(x, -1.0_real64))
      call real_row(form, w, d, -nearest(x, 1.0_real64))
    end do
  end subroutine

  subroutine integer_rows(widths)
    integer, intent(in) :: widths(:)
    integer(int64), parameter :: plain(*) = [0_int64, 1_int64, 7_int64, 9_int64, 10_int64, 42_int64, &
      99_int64, 100_int64, 999_int64, 1000_int64, 9999_int64, 10000_int64, 99999_int64, 100000_int64, &
      123456_int64, 999999_int64, 2147483647_int64, 99999999999_int64, 999999999999_int64, &
      9223372036854775807_int64]
    integer :: k, n
    do k = 1, size(widths)
      do n = 1, size(plain)
        call integer_row(widths(k), plain(n))
        call integer_row(widths(k), -plain(n))
      end do
    end do
  end subroutine

  function random_value(n) result(x)
    integer, intent(in) :: n
    real(real64) :: x
    real(real64) :: mantissa
    integer(int64) :: bits
    mantissa = 0.1_real64 + 0.9_real64 * random_fraction()
    select case (mod(n, 4))
    case (0)
      bits = random_bits()
      x = transfer(bits, x)
    case (1)
      x = mantissa * 10.0_real64**nint(40.0_real64 * (random_fraction() - 0.5_real64))
    case (2)
      x = mantissa * 10.0_real64**nint(12.0_real64 * random_fraction() - 4.0_real64)
    case default
      x = real(nint(1.0e5_real64 * mantissa), real64) / 2.0_real64**nint(16.0_real64 * random_fraction())
    end select
    if (random_fraction() < 0.4_real64) x = -x
  end function

  function random_fraction() result(x)
    real(real64) :: x
    x = real(ishft(random_bits(), -11), real64) / 9007199254740992.0_real64
  end function

  function random_bits() result(bits)
    integer(int64) :: bits
    state = ieor(state, ishft(state, 13))
    state = ieor(state, ishft(state, -7))
    state = ieor(state, ishft(state, 17))
    bits = state
  end function

  subroutine real_row(form, w, d, x)
    character, intent(in) :: form
    integer, intent(in) :: w, d
    real(real64), intent(in) :: x
    character(len=20) :: edit
    character(len=w) :: text
    character(len=3) :: letters
    letters = form
    if (form == 'P') letters = '1PE'
    write (edit, '("(", a, i0, ".", i0, ")")') trim(letters), w, d
    write (text, edit) x
    call row(form, w, d, transfer(x, 0_int64), text)
  end subroutine

  subroutine integer_row(w, n)
    integer, intent(in) :: w
    integer(int64), intent(in) :: n
    character(len=20) :: edit
    character(len=w) :: text
    write (edit, '("(i", i0, ")")') w
    write (text, edit) n
    call row('I', w, 0, n, text)
  end subroutine

  subroutine row(form, w, d, bits, text)
    character, intent(in) :: form
    integer, intent(in) :: w, d
    integer(int64), intent(in) :: bits
    character(len=*), intent(in) :: text
    write (*, '(a, 1x, i0, 1x, i0, 1x, z16.16, 1x, "|", a, "|")') form, w, d, bits, text
  end subroutine

end program
