Who is at a link, and what it allows.

  $ . $SETUP
  $ chip_on ZV32F403A_1024K --spim 0 --log log --verbose
  $ line -p --eepp 0-3 >/dev/null
  $ chip_off; rm log; chip_on ZV32F403A_1024K --spim 0 --log log --verbose
  $ zv32-look chip "${port_words[@]}" --crc 08000000-08000FFF
  name               ZV32F403A
  flash              1024 KB
  pid                70050347
  bid                1234
  bootloader         2.1
  unique identifier  59a1bed7a33c9c89dbbf1bf2
  access protection  off
  protected sectors  0-3 (4 sectors)
  slib               none
  spim               can be enabled
  commands           GET, GET_VER_ROPS, GET_ID, READ, GO, WRITE, ERASE_EXT, ERASEPROGRAM_PROTECT, ERASEPROGRAM_PERM_UNPROTECT, ACCESS_PROTECT, ACCESS_PERM_UNPROTECT, FIRMWARE_CRC, ENABLE_BANK3, ZV32_ISP, ENABLE_SLIB, DISABLE_SLIB, GET_SLIB_STATUS, REMAP_ENABLE, RESET_MCU
  crc-32
       first      last       crc
    08000000  08000FFF  F154670A

A range that is no whole sectors, and a word that is none of the link.

  $ zv32-look chip "${port_words[@]}" --crc 08000001-08000FFF
  zv32-look: --crc 08000001-08000FFF: no whole sectors of the flash, of 2048 bytes each from 08000000 to 080FFFFF
  [1]
  $ zv32-look chip "${port_words[@]}" --foo
  zv32-look: "--foo" is no word of -com
  [1]

What travelled: nothing that erases, writes, protects or runs.

  $ sed -n 's/^command: //p' log | cut -d' ' -f1 | sort -u
  FIRMWARE_CRC
  GET
  GET_ID
  GET_SLIB_STATUS
  GET_VER_ROPS
  READ
  TOOL_EXCHANGE
  USER_DATA_READ

Its option bytes, and in what they differ from those of a file.

  $ line -usd --get --fn ./before.bin >/dev/null
  $ zv32-look options "${port_words[@]}" --diff ./before.bin
  access protection                   off (A5)
  protected sectors                   0-3 (4 sectors)
  watchdog is started by the program  yes
  no reset at deep sleep              yes
  no reset at standby                 yes
  start from bank 1                   yes
  watchdog runs in deep sleep         no
  watchdog runs in standby            no
  RAM parity off                      no
  bytes in all                        24
  bytes that are not FF
    byte  name  value
       0  FAP      A5
       1  SSB      FF
       4  EPP0     FC
  differs                             no, from ./before.bin
  $ line -p --depp >/dev/null
  $ zv32-look options "${port_words[@]}" --diff ./before.bin | tail -n 4
  differs                             yes, from ./before.bin
  bytes that differ
    byte  chip  file
       4    FF    FC

And in what they are not as a job leaves them. More sectors than it protects are no difference.

  $ printf abcd >fw.bin
  $ job() {
  >     printf 'format = 1\nname = "a"\nquantity = 1\n[chip]\nname = "ZV32F403A_1024K"\n' >job.toml
  >     printf '[image]\nfile = "fw.bin"\nverify = "crc"\n' >>job.toml
  >     printf '%s\n' "$@" >>job.toml
  > }
  $ differences() { zv32-look options "${port_words[@]}" --diff job.toml | sed '1,/^differs/{/^differs/!d}'; return ${PIPESTATUS[0]}; }
  $ job '[options]' 'ssb = 0xF7' 'data = { 0 = 0x12, 1 = 0xFF }' 'protect = "1-3"' '[finish]' 'access = "on"'
  $ differences
  differs                             yes, from job.toml
  not as the job leaves them
    name     chip  job
    data0      FF   12
    ssb        FF   F7
    protect  none  1-3
    access   off   on
  [9]
  $ line -p --eepp 0-3 >/dev/null
  $ job '[options]' 'ssb = 0xFF' 'protect = "1-2"'
  $ differences
  differs                             no, from job.toml
  $ job '[options]' 'data = { 9 = 1 }'
  $ differences
  zv32-look: job.toml:10: options.data.9: this chip has no such option byte
  [2]
  $ line -p --depp >/dev/null

A chip under access protection tells who it is, and no more.

  $ line -p --efap1 >/dev/null
  $ zv32-look chip "${port_words[@]}" | sed '/^commands/d'
  name               ZV32F403A
  flash              1024 KB
  pid                70050347
  bid                1234
  bootloader         2.1
  unique identifier  the chip refuses to tell
  access protection  on
  protected sectors  the chip refuses to tell
  slib               none
  spim               can be enabled

  $ zv32-look options "${port_words[@]}"
  zv32-look: the chip refuses to tell: it is under access protection
  [2]

Nobody answers.

  $ chip_new ZV32F403A_1024K --fault silence@1
  $ zv32-look chip "${port_words[@]}" --to 1
  zv32-look: no chip answers: "zv32-look doctor" tells why
  [5]
