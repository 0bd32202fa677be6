What each word changes in the option bytes, on a chip of each layout: the number of the byte, value and complement
before and after.

  $ . "$SETUP"
  $ bytes_after() {
  >     echo "$*"
  >     line "$@" >out; line -usd --get --fn ./after.bin >out
  >     changed before.bin after.bin; mv after.bin before.bin
  > }
  $ chip() {
  >     chip_new $1; echo "== $1"
  >     line -usd --get --fn ./before.bin >out
  >     cp before.bin new.bin; printf '\x12\xed' | dd of=new.bin bs=1 seek=$((2 * $2)) conv=notrunc status=none
  >     bytes_after -usd --set --fn ./new.bin
  >     bytes_after -p --eepp 2-2
  >     bytes_after -p --eepp $3-$3
  >     bytes_after -p --depp
  >     bytes_after -p --dfap
  > }

chip NAME BYTE SECTOR: with another value in one byte, and one of the last sectors protected.

  $ chip ZV32F403A_1024K 23 511
  == ZV32F403A_1024K
  -usd --set --fn ./new.bin
  23: ff 00 -> 12 ed
  -p --eepp 2-2
  4: ff 00 -> fd 02
  -p --eepp 511-511
  7: ff 00 -> 7f 80
  -p --depp
  4: fd 02 -> ff 00
  7: 7f 80 -> ff 00
  -p --dfap
  23: 12 ed -> ff 00
  $ chip ZV32F415_256K 511 127
  == ZV32F415_256K
  -usd --set --fn ./new.bin
  511: ff 00 -> 12 ed
  -p --eepp 2-2
  4: ff 00 -> fd 02
  -p --eepp 127-127
  7: ff 00 -> 7f 80
  -p --depp
  4: fd 02 -> ff 00
  7: 7f 80 -> ff 00
  -p --dfap
  511: 12 ed -> ff 00
  $ chip ZV32L021_64K 255 63
  == ZV32L021_64K
  -usd --set --fn ./new.bin
  255: ff 00 -> 12 ed
  -p --eepp 2-2
  4: ff 00 -> fe 01
  -p --eepp 63-63
  5: ff 00 -> 7f 80
  -p --depp
  4: fe 01 -> ff 00
  5: 7f 80 -> ff 00
  -p --dfap
  255: 12 ed -> ff 00
  $ chip ZV32F457_1024K 29 511
  == ZV32F457_1024K
  -usd --set --fn ./new.bin
  29: ff 00 -> 12 ed
  -p --eepp 2-2
  4: ff 00 -> fd 02
  -p --eepp 511-511
  7: ff 00 -> 7f 80
  -p --depp
  4: fd 02 -> ff 00
  7: 7f 80 -> ff 00
  -p --dfap
  29: 12 ed -> ff 00
  $ chip ZV32F437_4032K 33 1007
  == ZV32F437_4032K
  -usd --set --fn ./new.bin
  33: ff 00 -> 12 ed
  -p --eepp 2-2
  4: ff 00 -> fb 04
  -p --eepp 1007-1007
  13: ff 00 -> bf 40
  -p --depp
  4: fb 04 -> ff 00
  13: bf 40 -> ff 00
  -p --dfap
  33: 12 ed -> ff 00
  $ chip ZV32F422_64K 2 63
  == ZV32F422_64K
  -usd --set --fn ./new.bin
  2: ff 00 -> 12 ed
  -p --eepp 2-2
  4: ff 00 -> fe 01
  -p --eepp 63-63
  5: ff 00 -> 7f 80
  -p --depp
  4: fe 01 -> ff 00
  5: 7f 80 -> ff 00
  -p --dfap
  2: 12 ed -> ff 00
