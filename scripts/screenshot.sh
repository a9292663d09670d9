#!/usr/bin/env bash
# Under an X display: starts the player on a package, waits for its pictures, saves the window as a PNG, ends the player.
#   screenshot.sh PLAYER PACKAGE OUT.png
set -euo pipefail
"$1" "$2" &
player=$!
trap 'kill "$player" 2>/dev/null || true' EXIT
window=
for _ in $(seq 100); do
    kill -0 "$player" 2>/dev/null || { echo "The player ended early." >&2; exit 1; }
    window=$(xdotool search --onlyvisible --name '^Vellor Player - ' 2>/dev/null | head -n 1) && [[ -n $window ]] && break
    sleep 0.2
done
[[ -n $window ]] || { echo "The window did not open its package." >&2; exit 1; }
sleep 2 # the first generation and the paint after it
xwd -silent -id "$window" | convert xwd:- "png:$3"
echo "Saved $3"
