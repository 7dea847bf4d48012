# SPDX-FileCopyrightText: The parkomat-plugin authors
# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# What the tests written for the shell have in common. To be sourced by one whose first argument is the build folder; it has
# set -euo pipefail. All that it starts ends with it.

# shellcheck disable=SC2034 # the tests use it
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
build=$1
# The titles of windows are in Russian.
export LC_ALL=C.UTF-8
scratch=$(mktemp -d)

stop_all()
{
    jobs -p | xargs -r kill 2>/dev/null || true
    wait
}
trap 'stop_all; rm -rf "$scratch"' EXIT

# bound COMMAND...: one that ends with this script even where that is killed and can stop nothing. To be put in the
# background.
bound()
{
    exec setpriv --pdeathsig TERM -- "$@"
}

fail()
{
    echo "$*" >&2
    exit 1
}

# first_line FILE PID: waits for the first line that a program writes.
first_line()
{
    timeout 60 tail -n +1 -f --pid="$2" "$1" | head -n 1 || true
}

# start_service: a cash service; its port is left in $port.
start_service()
{
    # It is there before the program that writes it.
    : >"$scratch/service.log"
    bound "$build/bin/cash-service" --listen 127.0.0.1:0 >"$scratch/service.log" 2>&1 &
    port=$(first_line "$scratch/service.log" $! | sed -nE 's|.*127\.0\.0\.1:([0-9]+).*|\1|p')
    [[ $port ]] || fail "the cash service does not start: $(cat "$scratch/service.log")"
}

# await_kiosk PID LOG: until the kiosk of $TERMINAL_WORK_DIR waits for a customer. PID is its own or its script's.
await_kiosk()
{
    local limit=$((SECONDS + 120))
    until "$build/bin/kioskctl" expect '{screen: idle}' 2>/dev/null; do
        ((SECONDS < limit)) || fail "the kiosk waits for no customer: $(cat "$2")"
        kill -0 "$1" 2>/dev/null || fail "the kiosk has ended: $(cat "$2")"
    done
}

# start_screen WIDTHxHEIGHT: an X server without hardware or window manager, which the programs started from now on have
# their windows on.
start_screen()
{
    : >"$scratch/display"
    bound Xvfb -displayfd 3 -screen 0 "${1}x24" -nolisten tcp -noreset 3>"$scratch/display" 2>"$scratch/screen.log" &
    DISPLAY=:$(first_line "$scratch/display" $!)
    [[ $DISPLAY != : ]] || fail "the X server does not start: $(cat "$scratch/screen.log")"
    export DISPLAY QT_QPA_PLATFORM=xcb
    # What a desktop may have set.
    unset WAYLAND_DISPLAY XAUTHORITY QT_SCALE_FACTOR QT_FONT_DPI QT_AUTO_SCREEN_SCALE_FACTOR
    # Nor the desktop's session bus: Qt's platform would have one started for this screen, which nobody would end.
    export DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent
    # libxkbcommon-x11 copies a part of a buffer that has no end of string, as strndup lets it; the strict checks do not.
    export ASAN_OPTIONS=${ASAN_OPTIONS:+$ASAN_OPTIONS:}intercept_strndup=0
}

# places_of TITLE: where the windows of that title are on the screen, each "LEFT TOP RIGHT BOTTOM", the last two behind it.
places_of()
{
    local id
    xwininfo -root -tree | sed -n "s/^ *\(0x[0-9a-f]*\) \"$1\":.*/\1/p" | while read -r id; do
        xwininfo -id "$id" | awk '
            /Absolute upper-left X:/ { left = $NF }
            /Absolute upper-left Y:/ { top = $NF }
            /Width:/ { width = $NF }
            /Height:/ { height = $NF }
            /Map State: IsViewable/ { isSeen = 1 }
            END { if (isSeen) print left, top, left + width, top + height }'
    done
}

# place_of TITLE: the same of the one window that there is sooner or later.
place_of()
{
    local places limit=$((SECONDS + 60))
    until
        places=$(places_of "$1") || places=
        (($(wc -w <<<"$places") == 4))
    do
        ((SECONDS < limit)) || fail "there is not one window \"$1\" on the screen, but: ${places:-none}"
    done
    echo "$places"
}

# expect_both_windows WIDTHxHEIGHT: the kiosk's and the bench panel's, beside each other on a screen of that size.
expect_both_windows()
{
    local place left top right bottom panel_left panel_top panel_right panel_bottom
    place=$(place_of 'Оплата парковки')
    read -r left top right bottom <<<"$place"
    place=$(place_of 'Стенд')
    read -r panel_left panel_top panel_right panel_bottom <<<"$place"
    echo "the kiosk's window: $left,$top to $right,$bottom; the panel: $panel_left,$panel_top to $panel_right,$panel_bottom"
    ((right - left == 1024 && bottom - top == 768)) || fail "the kiosk's window has another size"
    ((panel_left >= right)) || fail "they overlap"
    ((panel_top < bottom && panel_bottom > top)) || fail "they are not beside each other"
    ((left >= 0 && top >= 0 && panel_top >= 0 && panel_right <= ${1%x*})) || fail "they are not on the screen"
    ((bottom <= ${1#*x} && panel_bottom <= ${1#*x})) || fail "they are not on the screen"
}
