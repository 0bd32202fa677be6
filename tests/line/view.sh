#!/bin/bash
# Shows the view of zv32-line in a terminal of tmux, at two sizes, and compares its screens with those in screens/.
#
# usage: view.sh DRIVER [--renew]
set -euo pipefail
driver=$1
renew=${2:-}
screens=$(cd "$(dirname "$0")" && pwd)/screens
work=$(mktemp -d)
export TMUX_TMPDIR=$work LC_ALL=C.UTF-8
unset TMUX NO_COLOR
tmux() { command tmux -L view -f /dev/null "$@"; }
trap 'tmux kill-server 2>/dev/null || true; rm -rf "$work"' EXIT
bad=0

# Waits until a command is true; never a second where all is well.
until_true() {
    for _ in $(seq 400); do ! "$@" >/dev/null 2>&1 || return 0; sleep 0.025; done
    echo "view: never came true: $*"
    tmux capture-pane -p
    exit 1
}
shows() { tmux capture-pane -p | grep -qF -- "$1"; }
lacks() { ! shows "$1"; }

# The screen as it is, held to the file of that name.
holds() {
    tmux capture-pane -p ${2:-} >"$work/$1"
    if [ -n "$renew" ]; then cp "$work/$1" "$screens/$1"; fi
    diff -u "$screens/$1" "$work/$1" || bad=1
}

mkfifo "$work/commands"
tmux new-session -d -x 80 -y 24 "env -i TERM=\$TERM LC_ALL=C.UTF-8 PS1='done> ' sh -i"
exec 3<>"$work/commands"
until_true shows 'done>'
tmux send-keys "stty -g >$work/before" Enter

for nests in 1 16 64; do
    tmux resize-window -x 80 -y 24
    tmux send-keys "clear; $driver $nests 3<$work/commands; stty -g >$work/after; echo status \$?" Enter
    until_true shows '312 of 1000'
    until_true shows 'verify-di'
    holds $nests-80x24
    tmux resize-window -x 200 -y 50
    until_true shows 'verify-differs 1' # which the narrow screen has no room for
    echo w >&3
    until_true shows '313 of 1000'
    until_true shows 'not delivered: 1'
    holds $nests-200x50
    tmux resize-window -x 80 -y 24
    if [ $nests = 64 ]; then until_true shows 'A45  CLOSED  press I'; else until_true shows 'verify-di…'; fi
    echo w >&3
    until_true shows '314 of 1000'
    [ "$(tmux display -p '#{alternate_on} #{cursor_flag} #{wrap_flag}')" = '1 0 0' ] || { echo 'view: not a screen of its own'; bad=1; }
    if [ $nests = 16 ]; then
        holds colours-80x24 -e
        shows 'A4   CLOSED'
        tmux send-keys Up 4 # an arrow is no key of a nest
        until_true lacks 'A4   CLOSED'
        shows 'A12  CLOSED'
    fi
    echo e >&3
    until_true shows 'status 0'
    # What was last seen stays, and the terminal is as it was.
    [ "$(tmux display -p '#{alternate_on} #{cursor_flag} #{wrap_flag}')" = '0 1 1' ] || { echo 'view: the terminal is not as it was'; bad=1; }
    tmux capture-pane -p -S -40 | grep -qF '314 of 1000' || { echo 'view: nothing stays of it'; bad=1; }
    cmp "$work/before" "$work/after" || bad=1
done

# Without a terminal, and with one that can't have a screen, a line for each event.
printf 'wwe' | "$driver" 16 3<&0 </dev/null >"$work/lines"
if [ -n "$renew" ]; then cp "$work/lines" "$screens/lines"; fi
diff -u "$screens/lines" "$work/lines" || bad=1
tmux send-keys "clear; TERM=dumb $driver 1 3<$work/commands; echo status \$?" Enter
until_true shows 'A1 PASS 100042'
[ "$(tmux display -p '#{alternate_on}')" = 0 ] || { echo 'view: a dumb terminal got a screen'; bad=1; }
echo e >&3
until_true shows 'status 0'

! LC_ALL=C grep -q $'[\x01-\x09\x0b-\x1f]' "$work/lines" || { echo 'view: control characters'; bad=1; }
exit $bad
