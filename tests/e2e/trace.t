  $ . "$SETUP"
  $ chip_on ZV32F421_64K
  $ head -c 1024 /dev/urandom > page.bin
  $ ZVBL_TRACE=$PWD/trace isp -com --pn $PWD/port -d --fn ./page.bin >/dev/null

A write packet of 256 bytes costs 268 bytes on the line, both ways together: the command, the address,
the data, and three answers.

  $ awk '/> 31 CE/ { packet++ } packet == 1 { bytes += NF - 3; waits += $3 == "<" } END { print bytes, waits }' trace
  268 3
