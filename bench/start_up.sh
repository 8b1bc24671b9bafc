#!/usr/bin/env bash
# start_up.sh PROGRAM [FILE]: measures the time from the start of the desktop program until its window
# answers a command, and the processor time of the idle program. The program runs ten times on a
# virtual display, with temporary user folders; the first run only warms the disk cache. With FILE,
# the window must show the file's name. Needs Xvfb, openbox and xdotool.
set -euo pipefail

program=$(realpath -- "$1")
file=${2:+$(realpath -- "$2")}
title=Untitled
[[ -z $file ]] || title=$(basename -- "$file" .zorvel)
runs=${ZORVEL_RUNS:-10}
idle_seconds=10

home=$(mktemp -d)
export HOME=$home XDG_CONFIG_HOME=$home XDG_DATA_HOME=$home XDG_CACHE_HOME=$home
export XDG_RUNTIME_DIR=$home QT_QPA_PLATFORM=xcb
unset DBUS_SESSION_BUS_ADDRESS
children=()
trap 'kill "${children[@]}" 2>/dev/null || true; wait; rm -rf -- "$home"' EXIT

exec 3<>"$home/display"
Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp 2>/dev/null &
children+=($!)
until [[ -s $home/display ]]; do sleep 0.05; done
DISPLAY=:$(tr -d '[:space:]' <"$home/display")
export DISPLAY
openbox >/dev/null 2>&1 &
children+=($!)
sleep 1

milliseconds() { echo $(($(date +%s%N) / 1000000)); }

# await NAME: until a window of that title is on the screen; fails after a minute.
await() {
  local end=$((SECONDS + 60))
  until xdotool search --onlyvisible --name "$1" >"$home/found" 2>/dev/null; do
    ((SECONDS < end)) || { echo "No window named $1." >&2; return 1; }
  done
}

# In clock ticks of the system.
processor_time() { awk '{ print $14 + $15 }' "/proc/$1/stat"; }

for ((run = 0; run < runs; ++run)); do
  began=$(milliseconds)
  "$program" ${file:+"$file"} 2>/dev/null &
  process=$!
  children+=("$process")
  await "$title"
  shown=$(milliseconds)
  # The key of the preferences, until it is answered.
  window=$(tail -n 1 "$home/found")
  xdotool windowactivate --sync "$window" key ctrl+comma
  await Preferences
  answered=$(milliseconds)
  echo "shown after $((shown - began)) ms, answered a key after $((answered - began)) ms," \
    "$(($(processor_time "$process") * 1000 / $(getconf CLK_TCK))) ms of them on the processor"
  if ((run == runs - 1)); then
    # Without the preferences, in whose field a text cursor blinks.
    xdotool key Escape
    sleep 3
    before=$(processor_time "$process")
    sleep "$idle_seconds"
    ticks=$(($(processor_time "$process") - before))
    echo "idle: $ticks ticks of 1/$(getconf CLK_TCK) s of processor in $idle_seconds s"
  fi
  kill "$process"
  wait "$process" 2>/dev/null || true
done
