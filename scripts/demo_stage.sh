# shellcheck shell=bash
# The stage of the demonstration: a temporary folder, the programs installed in it, a home, a bus and
# a collector; and how all of it goes away again.
# shellcheck disable=SC2034,SC2154  # shared with the script that sources this file

stage=
borrowed_files=()
borrowed_folders=()
terminal_state=

wait_until() { # SECONDS COMMAND...
  local deadline=$((SECONDS + $1))
  shift
  until "$@"; do
    ((SECONDS <= deadline)) || return 1
    sleep 0.1
  done
}

# Ids of all processes that carry our mark.
marked_processes() {
  local environ
  for environ in /proc/[0-9]*/environ; do
    if grep -qzxF "VORNIX_DEMO=$stage" "$environ" 2>/dev/null; then echo "${environ//[!0-9]/}"; fi
  done
}
no_marked_process() { [[ -z $(marked_processes) ]]; }

end_marked_processes() {
  local signal pids
  for signal in TERM TERM KILL; do
    mapfile -t pids < <(marked_processes)
    ((${#pids[@]})) || return 0
    kill "-$signal" "${pids[@]}" 2>/dev/null
    wait_until 3 no_marked_process && return 0
  done
}

clean_up() {
  trap '' INT TERM HUP PIPE
  trap - EXIT ERR
  set +e
  exec 2>/dev/null
  ((${#borrowed_files[@]} == 0)) || rm -f "${borrowed_files[@]}"
  ((${#borrowed_folders[@]} == 0)) || rmdir "${borrowed_folders[@]}"
  [[ -z $on_desktop ]] || bus_call ReloadConfig >/dev/null
  end_marked_processes
  [[ -z $terminal_state ]] || stty "$terminal_state"
  rm -rf "$stage"
}

set_up_stage() {
  set -E
  trap clean_up EXIT
  trap 'fail "\"$BASH_COMMAND\" in line $LINENO of ${BASH_SOURCE[0]##*/}"' ERR
  trap 'exit 129' HUP
  trap 'exit 130' INT
  trap 'exit 141' PIPE
  trap 'exit 143' TERM
  stage=$(mktemp -d /tmp/vornix-demo.XXXXXX)
  prefix=$stage/vornix
  export VORNIX_DEMO=$stage  # marks every process that the demonstration causes
}

bus_call() { # METHOD [ARGUMENTS]
  dbus-send --session --print-reply=literal --reply-timeout=10000 --dest=org.freedesktop.DBus \
    /org/freedesktop/DBus "org.freedesktop.DBus.$1" "${@:2}"
}
name_has_owner() { bus_call NameHasOwner "string:$1" 2>/dev/null | grep -q true; }
name_can_be_started() { bus_call ListActivatableNames | grep -qE "(^|\s)$1(\s|$)"; }

displayed_reminder() {
  name_has_owner com.orvane.Vornix3.NotificationCenter || return 1
  dbus-send --session --print-reply --dest=com.orvane.Vornix3.NotificationCenter \
    /com/orvane/Vornix3/NotificationCenter com.orvane.Vornix3.NotificationCenter.ListDisplayed \
    >"$stage/displayed" 2>/dev/null
  grep -q '"title"' "$stage/displayed"
}

demo_files() { /usr/bin/python3 -B "$root/scripts/demo_files.py" "$@"; }

write_collector_configuration() { # FOLDER PORT
  cat >"$1/nginx.conf" <<CONF
daemon off; master_process off; pid $1/pid; error_log $1/error.log;
events {}
http {
  log_format hit '\$msec \$connection \$request_uri'; access_log $1/hits hit;
  client_body_temp_path $1/t1; proxy_temp_path $1/t2; fastcgi_temp_path $1/t3;
  uwsgi_temp_path $1/t4; scgi_temp_path $1/t5;
  server {
    listen 127.0.0.1:$2 ssl;
    ssl_certificate $1/certificate.pem; ssl_certificate_key $1/key.pem;
    location = /collect { return 204; }
  }
}
CONF
}

# Another program may take the free port before nginx does, hence the tries.
start_collector() {
  local folder=$stage/collector port try
  mkdir "$folder"
  : >"$folder/hits"
  openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 \
    -subj "/CN=Vornix demonstration" -addext "subjectAltName=IP:127.0.0.1" \
    -keyout "$folder/key.pem" -out "$folder/certificate.pem" >"$folder/openssl.log" 2>&1 ||
    fail "no certificate could be made: $(first_error "$folder/openssl.log")"
  for try in 1 2 3; do
    port=$(demo_files free-port)
    write_collector_configuration "$folder" "$port"
    PATH=$PATH:/usr/sbin nginx -e "$folder/error.log" -c "$folder/nginx.conf" -p "$folder" \
      2>"$folder/output" &
    collector=$!
    wait_until 10 collector_is_up_or_gone || true
    if [[ -s $folder/pid ]]; then break; fi
    ((try < 3)) || fail "the collector did not start: $(first_error "$folder/output")"
  done
  demo_files configure-analytics "$prefix/share/vornix-scheduler/Analytics.plist" \
    "127.0.0.1:$port" "$folder/certificate.pem"
}
collector_is_up_or_gone() { [[ -s $stage/collector/pid ]] || ! kill -0 "$collector" 2>/dev/null; }
hits() { wc -l <"$stage/collector/hits"; }
at_least_hits() { (($(hits) >= $1)); }

make_home() {
  export HOME=$stage/home XDG_CONFIG_HOME=$stage/home/.config XDG_CACHE_HOME=$stage/home/.cache
  export XDG_DATA_HOME=$stage/home/.local/share
  mkdir -p "$HOME/Library/Preferences" "$XDG_DATA_HOME/applications"
  demo_files write-preferences "$HOME/Library/Preferences"
  cp "$root/examples/main-application/main-application" "$stage/main-application"
  cat >"$XDG_DATA_HOME/applications/com.orvane.Vornix3.desktop" <<ENTRY
[Desktop Entry]
Type=Application
Name=Vornix (stand-in)
Exec=$stage/main-application --record $stage/request %F
X-CFBundleVersion=3.4.0
ENTRY
}
request_words() { demo_files request-words "$stage/request"; }
main_application_was_started() { [[ -s $stage/request ]]; }

start_private_bus() {
  export XDG_RUNTIME_DIR=$stage/run
  export DBUS_SESSION_BUS_ADDRESS=unix:path=$XDG_RUNTIME_DIR/bus
  mkdir -m 700 "$XDG_RUNTIME_DIR"
  cat >"$stage/bus.conf" <<CONF
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type><listen>$DBUS_SESSION_BUS_ADDRESS</listen><auth>EXTERNAL</auth>
  <servicedir>$prefix/share/dbus-1/services</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/>
  </policy>
</busconfig>
CONF
  dbus-daemon --config-file="$stage/bus.conf" --nofork >"$stage/bus.log" 2>&1 &
  wait_until 10 bus_call GetId >/dev/null 2>&1 ||
    fail "the message bus did not start: $(first_error "$stage/bus.log")"
}

start_terminal_display() {
  "$build/examples/terminal-display/vornix-terminal-display" <&0 &
  display=$!
  wait_until 10 name_has_owner org.freedesktop.Notifications ||
    fail "the terminal display did not start"
}

# What has to hold before the desktop is touched.
check_desktop() {
  bus_call GetId >/dev/null 2>&1 || fail "the session bus at $DBUS_SESSION_BUS_ADDRESS does not answer"
  name_has_owner org.freedesktop.Notifications ||
    bus_call StartServiceByName string:org.freedesktop.Notifications uint32:0 >/dev/null 2>&1 ||
    fail "this desktop has no notification server; './dev demo' shows the reminder in the terminal"
  if name_has_owner com.orvane.Vornix3; then
    fail "Vornix runs on this desktop and would answer the click itself: quit it first"
  fi
  if name_has_owner com.orvane.Vornix3.NotificationCenter; then
    fail "this desktop shows a reminder already: answer it first"
  fi
}

make_borrowed_folder() { # FOLDER
  [[ ! -d $1 ]] || return 0
  make_borrowed_folder "$(dirname "$1")"
  mkdir -m 700 "$1"
  borrowed_folders=("$1" "${borrowed_folders[@]}")
}

# A file of a demonstration that was killed does not stand in the way of the next.
check_place_is_free() { # SERVICE_FILE
  local owner
  [[ -e $1 ]] || return 0
  owner=$(grep -o 'VORNIX_DEMO=[^ ]*' "$1" || true)
  [[ $owner && ! -d ${owner#*=} ]] ||
    fail "$1 is in the way; another demonstration on this desktop may have put it there"
}

# Lets the person's own bus start our programs, with the temporary home, while we run.
borrow_desktop_bus() {
  local folder=$XDG_RUNTIME_DIR/dbus-1/services service place
  local settings="VORNIX_DEMO=$stage HOME=$HOME XDG_CONFIG_HOME=$XDG_CONFIG_HOME"
  settings+=" XDG_CACHE_HOME=$XDG_CACHE_HOME XDG_DATA_HOME=$XDG_DATA_HOME"
  make_borrowed_folder "$folder"
  for service in "$prefix"/share/dbus-1/services/*.service; do
    place=$folder/${service##*/}
    check_place_is_free "$place"
    borrowed_files+=("$place")
    sed "s|^Exec=\(/usr/bin/env \)\?|Exec=/usr/bin/env $settings |" "$service" >"$place"
  done
  bus_call ReloadConfig >/dev/null
  name_can_be_started com.orvane.Vornix3.NotificationCenter ||
    fail "the session bus does not read service files from $folder"
}
