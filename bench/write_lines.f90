! Reads the graphics file of a run of bench/make_block_deck.py's deck, writes the same rows again under the same
! formats, and the result tables of the listing with them, and prints the seconds of processor time that either took:
! the yardstick for the writing of results. The graphics file comes out byte for byte.
!
!   write_lines GRAPHICS_FILE NODES ELEMENTS GRAPHICS_COPY LISTING_TABLES
program write_lines
  implicit none
  integer, parameter :: headLines = 10
  character(256) :: graphicsFile, copyFile, tablesFile
  character(80) :: heads(headLines, 4)
  integer :: source, copy, tables, nodes, elements, i, k, n, status, counts(4), headLengths(headLines, 4)
  integer, allocatable :: connectivity(:, :)
  real(8), allocatable :: coordinates(:, :), concentration(:), vectors(:, :, :)
  real(8) :: start, finish

  call get_command_argument(1, graphicsFile)
  nodes = argument(2)
  elements = argument(3)
  call get_command_argument(4, copyFile)
  call get_command_argument(5, tablesFile)
  allocate (coordinates(3, nodes), concentration(nodes), vectors(3, nodes, 3), connectivity(15, elements))
  call readGraphics()

  open (newunit=copy, file=copyFile, status='replace', action='write')
  call cpu_time(start)
  call writeGraphics()
  close (copy)
  call cpu_time(finish)
  print '(F12.6)', finish - start

  open (newunit=tables, file=tablesFile, status='replace', action='write')
  call cpu_time(start)
  write (tables, '(4(I8,4X,E13.5))') (i, concentration(i), i=1, nodes)
  write (tables, '(2(I8,4X,E13.5,2X,E13.5))') (i, vectors(1, i, 1), vectors(2, i, 1), i=1, nodes)
  close (tables)
  call cpu_time(finish)
  print '(F12.6)', finish - start

contains

  integer function argument(n)
    integer, intent(in) :: n
    character(32) :: text
    call get_command_argument(n, text)
    read (text, *) argument
  end function

  subroutine readGraphics()
    open (newunit=source, file=graphicsFile, status='old', action='read')
    read (source, '(/)')
    do i = 1, nodes
      read (source, *) counts, coordinates(:, i)
    end do
    read (source, '(//)')
    do i = 1, elements
      read (source, *) connectivity(:, i)
    end do
    read (source, *)
    do k = 1, 4
      do n = 1, headLines
        read (source, '(A)', advance='no', size=headLengths(n, k), iostat=status) heads(n, k)
        if (status == 0) read (source, *) ! the line's end is still ahead: it filled the text
      end do
      do i = 1, nodes
        if (k == 1) then
          read (source, *) n, concentration(i)
        else
          read (source, *) n, vectors(:, i, k - 1)
        end if
      end do
      read (source, *)
    end do
    close (source)
  end subroutine

  subroutine writeGraphics()
    write (copy, '(I6)') -1, 15
    do i = 1, nodes
      write (copy, '(4I10,3D13.5)') i, 0, 0, 8, coordinates(:, i)
    end do
    write (copy, '(I6)') -1, -1, 71
    do i = 1, elements
      write (copy, '(8I10)') connectivity(1:7, i)
      write (copy, '(8I10)') connectivity(8:, i)
    end do
    write (copy, '(I6)') -1
    do k = 1, 4
      do n = 1, headLines
        write (copy, '(A)') heads(n, k)(:headLengths(n, k))
      end do
      do i = 1, nodes
        if (k == 1) then
          write (copy, '(I10/D13.5)') i, concentration(i)
        else
          write (copy, '(I10/3D13.5)') i, vectors(:, i, k - 1)
        end if
      end do
      write (copy, '(I6)') -1
    end do
  end subroutine

end program
