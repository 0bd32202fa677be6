What keeps a port from working, of real ports and processes. A name depends on who runs this.

  $ . $SETUP
  $ doctor() { zv32-look doctor "$@" | sed -E -e "s#$PWD/##" -e '/^ *permission  /d'; return ${PIPESTATUS[0]}; }

A healthy port.

  $ chip_on ZV32F403A_1024K
  $ doctor ./port
  ./port
    held by        nobody
    bootloader     answers 79 to 7F
    control lines  none: --auto moves nothing
    chip           PID 70050347, bootloader 2.1
  first  nothing is to be done: no cause was found

Again, as its bootloader is in its command state now.

  $ doctor ./port | grep -E 'answers|first'
    bootloader     answers 1F to 7F
  first  nothing is to be done: no cause was found

By the name of its nest, at the rate of the station.

  $ cat >station.toml <<EOF
  > format = 1
  > station = "one"
  > [link]
  > kind = "usart"
  > rate = 57600
  > [[nest]]
  > name = "A1"
  > port = "$PWD/port"
  > EOF
  $ doctor A1 --station station.toml | grep -E 'nest|answers'
  port, nest A1 at 57600
    bootloader     answers 1F to 7F
  $ doctor A1 --station station.toml --br 9600 | head -n 1
  port, nest A1 at 9600
  $ doctor A2 --station station.toml | head -n 1
  /dev/A2
  $ doctor A1 --station nowhere.toml
  zv32-look: nowhere.toml: No such file or directory
  [2]

A process that has it; nothing is sent then.

  $ sleep 60 <>port & holder=$!
  $ until [ "$(cat /proc/$holder/comm)" = sleep ]; do command sleep 0.01; done
  $ doctor ./port | sed "s/$holder/PID/"
  ./port
    held by     sleep, pid PID -- close it
  first  ./port, held by: close it
  $ doctor ./port >/dev/null
  [9]
  $ kill $holder; wait $holder 2>/dev/null
  [143]

A chip that is not in its bootloader, a port that is none, and one that is gone.

  $ chip_new ZV32F403A_1024K --fault silence@1
  $ isp -com --pn "$PWD/port" >/dev/null
  [2]
  $ doctor ./port
  ./port
    held by        nobody
    bootloader     no byte came back to 7F -- reset the chip with BOOT set; look at the wires
    control lines  no DTR, no RTS -- press reset by hand, with BOOT set: --auto moves nothing here
  first  ./port, control lines: press reset by hand, with BOOT set: --auto moves nothing here
  [9]
  $ touch file
  $ doctor ./file nosuchport
  ./file
    node  ./file is no device -- take a name of "zv32-look doctor"
  /dev/nosuchport
    node  /dev/nosuchport: No such file or directory -- plug it in, or take a name of "zv32-look doctor"
  first  /dev/nosuchport, node: plug it in, or take a name of "zv32-look doctor"
  [9]

The same as JSON.

  $ zv32-look doctor --json ./file
  {
    "verb": "doctor",
    "status": 9,
    "ports": [
      {
        "title": "./file",
        "checks": [
          {
            "name": "node",
            "mark": "error",
            "text": "./file is no device",
            "cure": "take a name of \"zv32-look doctor\""
          }
        ]
      }
    ],
    "first": "./file, node: take a name of \"zv32-look doctor\""
  }
  [9]
  $ zv32-look doctor --pr mark ./file 2>&1 | head -n 1
  --pr: mark not in {none,odd,even}

Nothing acts on the chip: what is sent is the opening, what announces a tool with its version (5A), and questions.

  $ chip_new ZV32F403A_1024K
  $ ZVBL_TRACE=$PWD/trace zv32-look doctor ./port >/dev/null
  $ grep -oE '> [0-9A-F]{2}( [0-9A-F]{2})*' trace | sort -u | sed 's/> //'
  00 02 00 01 03
  00 FF
  01 FE
  02 FD
  5A A5
  7F
