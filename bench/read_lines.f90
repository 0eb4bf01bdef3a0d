! Reads the node and element lines of a deck that bench/make_block_deck.py wrote and prints the seconds of processor
! time that either took: the yardstick for the reading of large decks.
!
!   read_lines DECK free|fixed LINES_AHEAD NODES LINES_BETWEEN ELEMENTS
program read_lines
  implicit none
  character(256) :: deck, form
  integer :: unit, i, ahead, nodes, between, elements
  integer :: number, held, step, fields(15)
  integer, allocatable :: connectivity(:, :)
  real(8) :: x(4), start, afterNodes, finish
  real(8), allocatable :: coordinates(:, :)

  call get_command_argument(1, deck)
  call get_command_argument(2, form)
  ahead = argument(3)
  nodes = argument(4)
  between = argument(5)
  elements = argument(6)
  allocate (coordinates(4, nodes), connectivity(14, elements))
  open (newunit=unit, file=deck, status='old', action='read')
  call skip(ahead)

  call cpu_time(start)
  do i = 1, nodes
    if (form == 'free') then
      read (unit, *) number, held, x, step
    else
      read (unit, '(I10,I5,5X,4D15.6,I5)') number, held, x, step
    end if
    coordinates(:, number) = x
  end do
  call cpu_time(afterNodes)
  call skip(between)
  do i = 1, elements
    if (form == 'free') then
      read (unit, *) fields
    else
      read (unit, '(9I8,6I3)') fields
    end if
    connectivity(:, fields(1)) = fields(2:)
  end do
  call cpu_time(finish)

  ! The sums keep the compiler from dropping what was read.
  print '(2F12.6,1P,E24.15,I20)', afterNodes - start, finish - afterNodes, sum(coordinates), &
    sum(int(connectivity, 8))

contains

  integer function argument(n)
    integer, intent(in) :: n
    character(32) :: text
    call get_command_argument(n, text)
    read (text, *) argument
  end function

  subroutine skip(lines)
    integer, intent(in) :: lines
    integer :: line
    do line = 1, lines
      read (unit, *)
    end do
  end subroutine

end program
