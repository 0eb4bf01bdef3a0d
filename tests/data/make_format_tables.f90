! Reads and writes the cases of make_format_tables.py, which compiles this program and runs it once for each table.
!
! The first line of cases.txt names the table; the results go to answers.txt. A Fortran list of items is fixed when it
! is compiled, so the maker writes one statement for every sequence of types, into the three include files.
program make_format_tables
  implicit none
  integer, parameter :: most = 64
  integer, parameter :: untouched_integer = -777777777
  integer(8), parameter :: untouched_real = int(z'FEDCBA9876543210', 8)
  integer :: status
  integer(8) :: i8(most)
  integer :: i(most), n(most)
  real(8) :: r(most)
  character(64) :: s(most)
  character(200) :: table, form, types, record, message

  open (10, file='cases.txt', action='read')
  open (20, file='answers.txt', action='write')
  read (10, '(A)') table
  do
    read (10, '(A)', iostat=status) types
    if (status /= 0) exit
    i = untouched_integer
    r = transfer(untouched_real, r(1))
    message = ''
    select case (table)
    case ('write')
      call write_case()
    case ('fixed')
      call read_fixed_case()
      call report()
    case ('list')
      call read_list_case()
      call report()
    end select
  end do

contains

  ! Format and values follow; the records go straight to the answers, with a mark behind them.
  subroutine write_case()
    integer :: k
    read (10, '(A)') form
    do k = 1, len_trim(types)
      select case (types(k:k))
      case ('i')
        read (10, *) i8(k)
      case ('r')
        read (10, '(Z16)') r(k)
      case default
        read (10, '(I4,A)') n(k), s(k)
      end select
    end do
    include 'write.inc'
    write (20, '(A,I0)') '@@@@', status
  end subroutine write_case

  ! Format and record follow. The card reader of the program reads from a buffer too.
  subroutine read_fixed_case()
    read (10, '(A)') form
    read (10, '(A)') record
    include 'fixed.inc'
  end subroutine read_fixed_case

  ! The number of records and the records follow, with _ for a blank, ^ for a tab and % for a carriage return.
  subroutine read_list_case()
    integer :: lines, line, spot, length
    read (10, *) lines
    open (30, status='scratch', form='formatted')
    do line = 1, lines
      read (10, '(A)') record
      length = len_trim(record)
      do spot = 1, length
        if (record(spot:spot) == '_') record(spot:spot) = ' '
        if (record(spot:spot) == '^') record(spot:spot) = char(9)
        if (record(spot:spot) == '%') record(spot:spot) = char(13)
      end do
      write (30, '(A)') record(1:length)
    end do
    rewind (30)
    include 'list.inc'
    close (30)
  end subroutine read_list_case

  ! All values, one a line, and how the read ended.
  subroutine report()
    integer :: k
    do k = 1, len_trim(types)
      if (types(k:k) == 'i' .and. i(k) == untouched_integer) then
        write (20, '(A)') '-'
      else if (types(k:k) == 'i') then
        write (20, '(A,I0)') 'i:', i(k)
      else if (transfer(r(k), untouched_real) == untouched_real) then
        write (20, '(A)') '-'
      else
        write (20, '(A,Z16.16)') 'r:', r(k)
      end if
    end do
    if (status == 0) message = ''
    write (20, '(I0,1X,A)') status, trim(message)
  end subroutine report

end program make_format_tables
