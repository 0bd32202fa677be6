Every exit status, on the simulated chip.

  $ . "$SETUP"; . "${SETUP%/*}/words.sh"
  $ chip_new ZV32F413_256K
  $ head -c 2048 /dev/urandom > a.bin

0, 1 and 2:

  $ said -e --sec 0-0
  -e --sec 0-0 -> Erase successfully! [0]
  $ said -e nonsense
  -e nonsense -> bad parameter "nonsense" [1]
  $ isp -com --pn $PWD/nothing >/dev/null
  [2]

3 and 4, download and upload:

  $ said -d --fn ./none.bin
  -d --fn ./none.bin -> Error:  Please select download file! File Name is ./none.bin [3]
  $ said -u --fn ./no/such/directory.bin
  -u --fn ./no/such/directory.bin -> Cannot open temporary file! [4]

6 and 7, user system data set and get:

  $ said -usd --set --fn ./none.bin
  -usd --set --fn ./none.bin -> Set user system data to device failed! [6]
  $ said -usd --get --fn ./no/such/directory.bin
  -usd --get --fn ./no/such/directory.bin -> Get user system data to file failed! [7]

8, SPIM:

  $ said -enspim --fs 64
  -enspim --fs 64 -> Unknown error! [8]

12, run, at an address where nothing is:

  $ said -r --addr 40000000
  -r --addr 40000000 -> Your code is running... (0x40000000) [12]

32 to 36, protection, each refused once by the chip:

  $ for refused in "82 --efap" "92 --dfap" "63 --eepp 0-0" "73 --depp"; do
  >     set -- $refused
  >     chip_new ZV32F413_256K --fault nack@1:$1
  >     said -p "${@:2}"
  > done
  -p --efap -> The cmd not allowed! [32]
  -p --dfap -> The cmd not allowed! [34]
  -p --eepp 0-0 -> The cmd not allowed! [36]
  -p --depp -> The cmd not allowed! [35]
  $ said -p --efap2
  -p --efap2 -> The cmd not allowed! [33]
  $ chip_new ZV32F425_64K --fault nack@1:84
  $ said -p --efap2 --y
  -p --efap2 --y -> The cmd not allowed! [33]
  $ said -p --efap2
  -p --efap2 -> ZV32F425/F423/A423/L021/F405/F402/F455/F456/F457/F490/M412/M416/G412/F422/F426 need a parameter "--y" for operation "--efap2"! [33]

48, 49 and 51, erase of all, with SPIM, and of sectors:

  $ chip_new ZV32F413_256K --fault nack@1:44
  $ said -e --all
  -e --all -> The cmd not allowed! [48]
  $ chip_new ZV32F413_256K --fault nack@2:44
  $ said -enspim --fs 1 -e --all
  -enspim --fs 1 -e --all -> The cmd not allowed! [49]
  $ said -e --sec 0-128
  -e --sec 0-128 -> bad parameter 0-128 [51]

64, OTP:

  $ { printf '\0\0\0\0'; head -c 32 /dev/zero; printf '\0\0..'; } > data.zvtp
  $ said -otp --fn ./data.zvtp
  -otp --fn ./data.zvtp -> Write OTP data failed! [64]
