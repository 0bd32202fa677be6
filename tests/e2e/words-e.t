Every option word and sub-option word, on a chip of each layout of the option bytes; the other layouts
stand in words.t and words-d-and-f.t.

  $ . "$SETUP"; . "${SETUP%/*}/words.sh"

Layout E, bits for 128 KB behind the first 32, the short block and the long one:

  $ chip_new ZV32F437_1024K
  $ all_words 2048 511
  -e --all -> Erase successfully! [0]
  -e --sec 0-2 -> Erase successfully! [0]
  -e --all -d --fn ./image.bin --addr 08000000 --v --o -> Download successfully! [0]
  -u --sec 0-2 --fn ./back.bin -> Upload successfully! [0]
  same
  -u --fn ./back.hex -> Upload successfully! [0]
  -usd --get --fn ./usd.bin -> Get user system data to file succeed! [0]
  -usd --set --fn ./usd.bin -> Set user system data to device successfully! [0]
  -o --get --fn ./usd.hex -> Get user system data to file succeed! [0]
  -o --set --fn ./usd.hex -> Set user system data to device successfully! [0]
  -usd --get --fn ./again.bin -> Get user system data to file succeed! [0]
  same
  -p --eepp 0-0 -> Enable erase and program protection successfully! [0]
  -p --ewp 511-511 -> Enable erase and program protection successfully! [0]
  sector 0 protected
  sector 511 protected
  -p --depp -> Disable erase and program protection successfully! [0]
  sector 0 erasable
  sector 511 erasable
  -p --eepp 0-0 -> Enable erase and program protection successfully! [0]
  -p --dwp -> Disable erase and program protection successfully! [0]
  -p --efap -> Enable access protection successfully! [0]
  -u --sec 0-0 --fn ./back.bin -> The cmd not allowed! [4]
  -p --dfap -> Disable access protection successfully! [0]
  -p --erp -> Enable access protection successfully! [0]
  -p --drp -> Disable access protection successfully! [0]
  -p --efap1 -> Enable access protection successfully! [0]
  -p --dfap -> Disable access protection successfully! [0]
  -p --efap2 -> The cmd not allowed! [33]
  -otp --fn ./data.zvtp -> Write OTP data failed! [64]
  -enspim --ft 1 --fs 1 -> Operation finished successfully! [0]
  -enspim --ft 2 --fs 1 --remap 1 --fda 1000 -> Operation finished successfully! [0]
  -r --addr 08000000 -> Your code is running... (0x08000000) [0]
  -r ->  [2]
  $ chip_new ZV32F435_4032K
  $ all_words 4096 1007
  -e --all -> Erase successfully! [0]
  -e --sec 0-2 -> Erase successfully! [0]
  -e --all -d --fn ./image.bin --addr 08000000 --v --o -> Download successfully! [0]
  -u --sec 0-2 --fn ./back.bin -> Upload successfully! [0]
  same
  -u --fn ./back.hex -> Upload successfully! [0]
  -usd --get --fn ./usd.bin -> Get user system data to file succeed! [0]
  -usd --set --fn ./usd.bin -> Set user system data to device successfully! [0]
  -o --get --fn ./usd.hex -> Get user system data to file succeed! [0]
  -o --set --fn ./usd.hex -> Set user system data to device successfully! [0]
  -usd --get --fn ./again.bin -> Get user system data to file succeed! [0]
  same
  -p --eepp 0-0 -> Enable erase and program protection successfully! [0]
  -p --ewp 1007-1007 -> Enable erase and program protection successfully! [0]
  sector 0 protected
  sector 1007 protected
  -p --depp -> Disable erase and program protection successfully! [0]
  sector 0 erasable
  sector 1007 erasable
  -p --eepp 0-0 -> Enable erase and program protection successfully! [0]
  -p --dwp -> Disable erase and program protection successfully! [0]
  -p --efap -> Enable access protection successfully! [0]
  -u --sec 0-0 --fn ./back.bin -> The cmd not allowed! [4]
  -p --dfap -> Disable access protection successfully! [0]
  -p --erp -> Enable access protection successfully! [0]
  -p --drp -> Disable access protection successfully! [0]
  -p --efap1 -> Enable access protection successfully! [0]
  -p --dfap -> Disable access protection successfully! [0]
  -p --efap2 -> The cmd not allowed! [33]
  -otp --fn ./data.zvtp -> Write OTP data failed! [64]
  -enspim --ft 1 --fs 1 -> Operation finished successfully! [0]
  -enspim --ft 2 --fs 1 --remap 1 --fda 1000 -> Operation finished successfully! [0]
  -r --addr 08000000 -> Your code is running... (0x08000000) [0]
  -r ->  [2]
