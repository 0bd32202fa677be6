Where no thread can be made, an action fails at once, and the port is free for the next line. (A transcript of its
own: the thread sanitizer needs a thread too.)

  $ . "$SETUP"
  $ chip_on ZV32F403A_1024K
  $ head -c 3000 /dev/urandom > part.bin
  $ ulimit_line() { (ulimit -s 200000000000; line "$@" 2>/dev/null); }
  $ ulimit_line -e --sec 0-0
  
  Unknown error!
  [51]
  $ ulimit_line -d --fn ./part.bin
  
  Unknown error!
  [3]
  $ line -e --sec 0-0
  Erase
  Running...100%
  Erase successfully!
