! Reads the rows of number_forms.txt and writes them with the texts of this Fortran run time.
program number_forms
  use, intrinsic :: iso_fortran_env, only: int64, real64
  implicit none
  character(len=80) :: line
  character(len=40) :: text
  character(len=16) :: edit
  character :: form
  integer :: w, d, status
  integer(int64) :: bits

  do
    read (*, '(a)', iostat=status) line
    if (status /= 0) exit
    line = line(:index(line, '|') - 1)
    read (line(2:), *) w, d, text
    read (text, '(z16)') bits
    form = line(1:1)
    if (form == 'I') then
      write (edit, '("(i", i0, ")")') w
      write (text, edit) bits
    else
      write (edit, '("(", a, i0, ".", i0, ")")') trim(merge('1PE', form // '  ', form == 'P')), w, d
      write (text, edit) transfer(bits, 1.0_real64)
    end if
    write (*, '(a, " |", a, "|")') trim(line), text(:w)
  end do
end program
