Access protection, proven by what the chip still does.

  $ . "$SETUP"
  $ chip_on ZV32F403A_1024K
  $ head -c 6000 /dev/urandom > image.bin
  $ line -d --fn ./image.bin
  Erase
  Running...100%
  Download
  ./image.bin     6000B
  Running...100%
  Download successfully!
  $ line -p --efap
  Enable access protection
  Running...
  Enable access protection successfully!
  $ line -u --sec 0-0 --fn ./back.bin
  Upload
  ./back.bin     2048B
  
  The cmd not allowed!
  [4]
  $ line -e --sec 0-0
  Erase
  
  The device is access protection!
  [51]
  $ line -d --fn ./image.bin
  
  The device is access protection!
  [3]
  $ line -r
  Your code is running... (0x08000000)
  [12]
  $ line -usd --get --fn ./usd.bin
  Get user system data to file
  running...
  Get user system data to file failed!
  [7]

Taking it off erases the flash:

  $ line -p --dfap
  Disable access protection
  Running...
  Disable access protection successfully!
  $ line -u --sec 0-2 --fn ./back.bin >/dev/null; od -Ax -tx1 back.bin
  000000 ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff
  *
  001800

The same by the other names:

  $ line -p --erp; line -u --sec 0-0 --fn ./back.bin >/dev/null
  Enable access protection
  Running...
  Enable access protection successfully!
  [4]
  $ line -p --drp; line -u --sec 0-0 --fn ./back.bin >/dev/null && echo readable
  Disable access protection
  Running...
  Disable access protection successfully!
  readable
  $ line -p --efap1
  Enable access protection
  Running...
  Enable access protection successfully!
  $ line -p --dfap
  Disable access protection
  Running...
  Disable access protection successfully!

A chip without levels has no high one:

  $ line -p --efap2
  Enable access protection
  Running...
  
  The cmd not allowed!
  [33]

Sector protection: two sectors a bit; what is protected can't be erased or written, its neighbours can.

  $ line -d --fn ./image.bin --v >/dev/null
  $ line -p --eepp 2-3
  Enable erase and program protection
  Running...
  Enable erase and program protection successfully!
  $ line -e --sec 2-2
  Erase
  
  The device is erase and program protection!
  [51]
  $ line -e --sec 3-4
  Erase
  
  The device is erase and program protection!
  [51]
  $ line -e --all
  Erase
  
  The device is erase and program protection!
  [48]
  $ line -e --sec 0-1 --sec 4-511
  Erase
  Running...100%
  Erase successfully!
  Erase
  Running...100%
  Erase successfully!
  $ line -d --fn ./image.bin
  
  The device is erase and program protection!
  [3]
  $ line -u --sec 2-2 --fn ./back.bin >/dev/null; cmp back.bin <(tail -c +4097 image.bin | head -c 2048; head -c 144 /dev/zero | tr '\0' '\377') | head -1
  $ line -p --ewp 8-8
  Enable erase and program protection
  Running...
  Enable erase and program protection successfully!
  $ line -e --sec 2-2
  Erase
  
  The device is erase and program protection!
  [51]
  $ line -e --sec 9-9
  Erase
  
  The device is erase and program protection!
  [51]
  $ line -e --sec 10-10
  Erase
  Running...100%
  Erase successfully!
  $ line -p --depp
  Disable erase and program protection
  Running...
  Disable erase and program protection successfully!
  $ line -e --all
  Erase
  Running...100%
  Erase successfully!
  $ line -p --ewp 0-0; line -p --dwp; line -e --sec 0-0
  Enable erase and program protection
  Running...
  Enable erase and program protection successfully!
  Disable erase and program protection
  Running...
  Disable erase and program protection successfully!
  Erase
  Running...100%
  Erase successfully!

Ranges that can't be:

  $ line -p --eepp 3
  bad parameter "3"
  [36]
  $ line -p --eepp 0-512
  bad parameter "0-512"
  [36]
  $ line -p --foo
  bad parameter "--foo"
  [1]
  $ line -p

The high level: it has to be confirmed, and nothing takes it off.

  $ chip_new ZV32F425_64K
  $ line -p --efap2
  ZV32F425/F423/A423/L021/F405/F402/F455/F456/F457/F490/M412/M416/G412/F422/F426 need a parameter "--y" for operation "--efap2"!
  [33]
  $ line -p --efap2 --n
  ZV32F425/F423/A423/L021/F405/F402/F455/F456/F457/F490/M412/M416/G412/F422/F426 need a parameter "--y" for operation "--efap2"!
  [33]
  $ line -e --sec 0-0
  Erase
  Running...100%
  Erase successfully!
  $ line -p --efap1
  Enable access protection
  Running...
  Enable access protection successfully!
  $ line -p --dfap
  Disable access protection
  Running...
  Disable access protection successfully!
  $ line -p --efap2 --Y
  Enable access protection
  Running...
  Enable access protection successfully!
  $ line -p --dfap
  Disable access protection
  Running...
  
  The cmd not allowed!
  [34]
  $ line -u --sec 0-0 --fn ./back.bin
  Upload
  ./back.bin     1024B
  
  The cmd not allowed!
  [4]
