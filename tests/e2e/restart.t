On a ZV32F403 a download restarts the chip before it is verified. Every restart takes the line away and
back: two seconds, then a new connect.

  $ . "$SETUP"
  $ chip_on ZV32F403_1_1024K
  $ head -c 5000 /dev/urandom > part.bin
  $ start=$SECONDS; ZV32_ISP_Console -com --pn $PWD/port -d --fn ./part.bin --v | sed 's/.*\r//'
  $ [ $((SECONDS - start)) -ge 2 ] && echo 'two seconds at least'
  $ isp -com --pn $PWD/port -u --sec 0-2 --fn ./back.bin
  $ cmp -n 5000 part.bin back.bin && echo equal
