The words that all looks have.

  $ zv32-look --version
  zv32-look 3.0.14
  $ zv32-look image --version
  zv32-look 3.0.14
  $ zv32-look --help | head -n 2
  Looks at ZV32 chips, at what goes into them and at the ports they hang on, and changes nothing.
  Usage: zv32-look [OPTIONS] SUBCOMMAND
  $ zv32-look image --help | head -n 2
  what is in image files, and their sums
  Usage: zv32-look image [OPTIONS] FILE...

A word that is none, and no word.

  $ zv32-look imag
  A subcommand is required
  Run with --help for more information.
  [1]
  $ zv32-look
  A subcommand is required
  Run with --help for more information.
  [1]

One set of facts, as text and as JSON.

  $ printf 'abcd' >a.bin
  $ zv32-look image a.bin
  a.bin
    format   binary
    size     4 bytes
    sha-256  88d4266fd4e6338d13b845fcf289579d209c897823b9217da3e161936f031589
    data     4 bytes
    ranges
         first      last  bytes  gap in front    crc-32  where
      08000000  08000003      4             0  ED82CD11  flash
  $ zv32-look image --json a.bin | tr -d ' \n'
  {"verb":"image","status":0,"files":[{"title":"a.bin","format":"binary","size":4,"sha256":"88d4266fd4e6338d13b845fcf289579d209c897823b9217da3e161936f031589","data":4,"ranges":[{"first":134217728,"last":134217731,"bytes":4,"gapInFront":0,"crc32":3984772369,"where":"flash"}]}]} (no-eol)

Colours are for a terminal alone, and for nobody who does not want them.

  $ on_terminal() { script -qec "$*" /dev/null </dev/null | head -n 1 | cat -v; }
  $ on_terminal TERM=xterm zv32-look image a.bin
  ^[[1ma.bin^[[0m^M
  $ on_terminal TERM=xterm NO_COLOR=1 zv32-look image a.bin
  a.bin^M
  $ on_terminal TERM=dumb zv32-look image a.bin
  a.bin^M

A file that can't be read, and a report that can't be written.

  $ zv32-look image missing.bin
  zv32-look: missing.bin: No such file or directory
  [2]
  $ mkfifo pipe.bin
  $ zv32-look image pipe.bin
  zv32-look: pipe.bin: not a regular file
  [2]
  $ zv32-look image a.bin >/dev/full
  zv32-look: the report can't be written
  [2]

A line of the console: nothing behind "--" is a word of ours, and no port is touched.

  $ ln -s "$MAPS" Map
  $ zv32-look line --chip ZV32F403A_1024K -- -com --pn nowhere -e --all --json
  -com --pn nowhere
    connect
      port        nowhere
      rate        115200 baud
      data bits   8
      parity      even
      time limit  5 s
  -e --all
    erase everything
      bytes  1048576
    error  "--json" is no word of it: the line ends with status 1
    note   nothing behind it is looked at
  console status  1, if the chip takes everything
  [9]
  $ zv32-look line -- -com --pn nowhere -e --all | tail -n 2
  note            the chip is not known: whether all fits and what is erased takes --chip NAME
  console status  0, if the chip takes everything
  $ zv32-look line
  zv32-look: line: the words of a console line have to stand behind --
  [1]
  $ zv32-look line --chip ZV32X -- -dfu
  zv32-look: ZV32X: no map file ./Map/ZV32X.ZVmap that describes a chip
  [2]

A port that is none; tests/e2e/doctor.t has the others.

  $ zv32-look doctor nosuchport | tail -n 1
  first  /dev/nosuchport, node: plug it in, or take a name of "zv32-look doctor"

No link, and no chip; tests/e2e/chip.t has one.

  $ zv32-look chip --crc all
  zv32-look: the words of a link are missing, as in: -com --pn ttyUSB0
  [1]
  $ zv32-look chip -com --pn nosuchport
  zv32-look: the port can't be opened: "zv32-look doctor" tells why
  [5]

Option bytes of a file.

  $ zv32-look options a.bin
  zv32-look: options takes the words of a link, or one FILE and --chip NAME
  [1]
  $ zv32-look options a.bin --chip ZV32F403A_1024K
  zv32-look: a.bin: 4 bytes are too few: 48 are needed
  [2]

An image that is one and does not fit, files of OTP data that are none.

  $ srec_cat -generate 0x08040000 0x08040010 -constant 1 -o far.hex -intel
  $ zv32-look image far.hex --chip ZV32M412_256K | tail -n 1
    error    08040000-0804000F is not inside of ZV32M412_256K
  $ zv32-look image far.hex --chip ZV32M412_256K >/dev/null
  [9]
  $ zv32-look otp
  zv32-look: otp: give either FILE, or --pack TABLE and -o FILE
  [1]
  $ zv32-look otp --pack a.bin -o a.zvtp
  zv32-look: a.bin: line 1: a line begins with the number of a block, not with "abcd"
  [2]
