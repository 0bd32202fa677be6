  $ . "$SETUP"
  $ chip_on ZV32F421_64K
  $ head -c 1024 /dev/urandom > page.bin
  $ ZVBL_TRACE=$PWD/trace isp -com --pn $PWD/port -d --fn ./page.bin >/dev/null

A write packet of 256 bytes costs 268 bytes on the line, both ways together: the command, the address,
the data, and three answers.

  $ awk '/> 31 CE/ { packet++ } packet == 1 { bytes += NF - 3; waits += $3 == "<" } END { print bytes, waits }' trace
  268 3

A verify of a whole sector asks how large a sector is, and for its checksum, and reads nothing back,
unless that is wished. The figures are the questions, and the packets that are read after the last one
that is written.

  $ count='/> 31 CE/ { read = 0 } /> 11 EE/ { read++ } /> AC 53/ { asked++ } END { print asked + 0, read + 0 }'
  $ ZVBL_TRACE=$PWD/by-crc isp -com --pn $PWD/port -d --fn ./page.bin --v | tail -1
  Download successfully!
  $ awk "$count" by-crc
  2 0
  $ ZVBL_TRACE=$PWD/by-reading ZVBL_VERIFY_BY=read isp -com --pn $PWD/port -d --fn ./page.bin --v | tail -1
  Download successfully!
  $ awk "$count" by-reading
  0 4
