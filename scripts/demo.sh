#!/usr/bin/env bash
# Shows one reminder from the decision to the click: real preference files, a real message bus, a
# collector behind TLS, and a stand-in for the main application, all in a temporary folder.
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/common.sh"
subcommand=demo

on_desktop=
case ${1:-} in
  '') ;;
  --desktop) on_desktop=yes ;;
  *) fail "there is no option '$1'; --desktop shows the reminder on your own desktop" ;;
esac
if [[ $on_desktop && -z ${DBUS_SESSION_BUS_ADDRESS:-} && ! -S ${XDG_RUNTIME_DIR:-/nonexistent}/bus ]]; then
  fail "no desktop session here: start without --desktop to see the reminder in the terminal"
fi

build=$root/build/dev
stage=$(mktemp -d /tmp/vornix-demo.XXXXXX)
export VORNIX_DEMO=$stage  # marks every process that the demonstration causes
service_files=()

# Ids of all processes that carry our mark, this shell apart.
marked_processes() {
  local environ pid
  for environ in /proc/[0-9]*/environ; do
    pid=${environ#/proc/} pid=${pid%/environ}
    [[ $pid != "$$" && $pid != "$BASHPID" ]] || continue
    if grep -qzxF "VORNIX_DEMO=$stage" "$environ" 2>/dev/null; then echo "$pid"; fi
  done
}

end_marked_processes() {
  local round pids
  for round in TERM TERM KILL; do
    mapfile -t pids < <(marked_processes)
    ((${#pids[@]})) || return 0
    kill "-$round" "${pids[@]}" 2>/dev/null || true
    wait_until 3 no_marked_process || true
  done
}
no_marked_process() { [[ -z $(marked_processes) ]]; }

clean_up() {
  trap - EXIT INT TERM HUP
  ((${#service_files[@]} == 0)) || rm -f "${service_files[@]}"
  [[ -z $on_desktop ]] || bus_call org.freedesktop.DBus /org/freedesktop/DBus \
    org.freedesktop.DBus.ReloadConfig >/dev/null 2>&1 || true
  end_marked_processes
  rm -rf "$stage"
}
trap clean_up EXIT
trap 'exit 130' INT TERM HUP

wait_until() { # SECONDS COMMAND...
  local deadline=$((SECONDS + $1))
  shift
  until "$@"; do
    ((SECONDS < deadline)) || return 1
    sleep 0.05
  done
}

bus_call() { # DESTINATION PATH METHOD [ARGUMENTS]
  gdbus call --session --dest "$1" --object-path "$2" --method "$3" "${@:4}"
}
name_has_owner() { # NAME
  bus_call org.freedesktop.DBus /org/freedesktop/DBus org.freedesktop.DBus.NameHasOwner "$1" \
    2>/dev/null | grep -q true
}

install_programs() {
  prefix=$stage/vornix
  cmake --install "$build" --prefix "$prefix" >"$stage/install.log"
  port=$(/usr/bin/python3 "$root/scripts/demo_files.py" free-port)
  /usr/bin/python3 "$root/scripts/demo_files.py" configure-analytics \
    "$prefix/share/vornix-scheduler/Analytics.plist" "127.0.0.1:$port" "$stage/collector/ca.pem"
}

start_collector() {
  local folder=$stage/collector
  mkdir -p "$folder"
  openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj "/CN=Vornix demonstration" \
    -addext "subjectAltName=IP:127.0.0.1" -keyout "$folder/key.pem" -out "$folder/ca.pem" \
    >"$folder/openssl.log" 2>&1 || fail "$(tail -n 1 "$folder/openssl.log")"
  cat >"$folder/nginx.conf" <<CONF
daemon off; master_process off; pid $folder/pid; error_log $folder/error.log;
events {}
http {
  log_format hit '\$request_uri'; access_log $folder/hits.log hit;
  client_body_temp_path $folder/t1; proxy_temp_path $folder/t2; fastcgi_temp_path $folder/t3;
  uwsgi_temp_path $folder/t4; scgi_temp_path $folder/t5;
  server {
    listen 127.0.0.1:$port ssl;
    ssl_certificate $folder/ca.pem; ssl_certificate_key $folder/key.pem;
    location = /collect { return 204; }
  }
}
CONF
  : >"$folder/hits.log"
  PATH=$PATH:/usr/sbin nginx -c "$folder/nginx.conf" -p "$folder" >"$folder/nginx.log" 2>&1 &
  wait_until 10 test -s "$folder/pid" || fail "the collector did not start: $(cat "$folder"/*.log)"
}
hits() { wc -l <"$stage/collector/hits.log"; }
at_least_hits() { (($(hits) >= $1)); }

make_home() {
  export HOME=$stage/home XDG_CONFIG_HOME=$stage/home/.config XDG_CACHE_HOME=$stage/home/.cache
  export XDG_DATA_HOME=$stage/home/.local/share
  mkdir -p "$HOME/Library/Preferences" "$XDG_DATA_HOME/applications"
  /usr/bin/python3 "$root/scripts/demo_files.py" write-preferences "$HOME/Library/Preferences"
  cat >"$stage/main-application" <<APP
#!/bin/sh
printf '%s\n' "\$*" >>"$stage/main-application.log"
APP
  chmod +x "$stage/main-application"
  cat >"$XDG_DATA_HOME/applications/com.orvane.Vornix3.desktop" <<ENTRY
[Desktop Entry]
Type=Application
Name=Vornix (stand-in)
Exec=$stage/main-application %F
X-CFBundleVersion=3.4.0
ENTRY
}

start_private_bus() {
  export XDG_RUNTIME_DIR=$stage/run
  mkdir -m 700 "$XDG_RUNTIME_DIR"
  cat >"$stage/bus.conf" <<CONF
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type><listen>unix:path=$XDG_RUNTIME_DIR/bus</listen><auth>EXTERNAL</auth>
  <servicedir>$prefix/share/dbus-1/services</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/>
  </policy>
</busconfig>
CONF
  export DBUS_SESSION_BUS_ADDRESS=unix:path=$XDG_RUNTIME_DIR/bus
  dbus-daemon --config-file="$stage/bus.conf" --nofork >"$stage/bus.log" 2>&1 &
  wait_until 10 test -S "$XDG_RUNTIME_DIR/bus" || fail "the bus did not start: $(cat "$stage/bus.log")"
}

# Lets the person's own bus start our programs, with the temporary home, while we run.
borrow_desktop_bus() {
  local folder=${XDG_RUNTIME_DIR:?}/dbus-1/services service
  if name_has_owner com.orvane.Vornix3.NotificationCenter; then
    fail "Vornix Scheduler already has a reminder on this desktop: answer it first"
  fi
  mkdir -p "$folder"
  for service in "$prefix"/share/dbus-1/services/*.service; do
    [[ ! -e $folder/${service##*/} ]] || fail "$folder/${service##*/} is in the way"
    service_files+=("$folder/${service##*/}")
    sed "s|^Exec=\(/usr/bin/env \)\?|Exec=/usr/bin/env VORNIX_DEMO=$stage HOME=$HOME XDG_DATA_HOME=$XDG_DATA_HOME |" \
      "$service" >"$folder/${service##*/}"
  done
  bus_call org.freedesktop.DBus /org/freedesktop/DBus org.freedesktop.DBus.ReloadConfig >/dev/null
}

start_terminal_display() {
  "$build/examples/terminal-display/vornix-terminal-display" &
  display=$!
  wait_until 10 name_has_owner org.freedesktop.Notifications || fail "the terminal display did not start"
}

heading() { printf '\n== %s\n' "$*"; }

clicked_while_alive=
run_agent() {
  heading "The agent starts"
  agent_started=$(date +%s)
  "$prefix/libexec/vornix/vornix-scheduler" &
  agent=$!
  wait_until 10 at_least_hits 1 || true
  say "the agent stays for ten seconds after its decision"
  local status=0
  wait "$agent" || status=$?
  [[ ! -s $stage/main-application.log ]] || clicked_while_alive=yes
  agent_lived=$(($(date +%s) - agent_started))
  ((status == 0)) || fail "the agent ended with status $status"
}

answered() { [[ -s $stage/main-application.log ]] || { [[ ${display:-} ]] && ! kill -0 "$display" 2>/dev/null; }; }

take_click() {
  if answered; then return; fi
  if [[ -z $on_desktop && ! -t 0 ]]; then
    heading "No terminal to press a key in: the display clicks by itself, now that the agent is gone"
    kill -USR1 "$display"
  elif [[ $on_desktop ]]; then
    heading "Click the reminder on your desktop (this waits for five minutes)"
  fi
  wait_until 300 answered || fail "nobody answered the reminder"
}

report() {
  heading "What happened, in order"
  printf ' 1. The decision: %s\n' "$decision"
  printf ' 2. The notification was posted; it stayed on screen when the agent had gone.\n'
  /usr/bin/python3 "$root/scripts/demo_files.py" report-hits "$stage/collector/hits.log" \
    "$prefix/share/vornix-scheduler/Analytics.plist" 'Notification Shown' ' 3. '
  printf ' 4. The agent was gone after %s seconds, with status 0.\n' "$agent_lived"
  if [[ ! -s $stage/main-application.log ]]; then
    printf ' 5. The reminder was closed without a click: nothing is launched, and nothing is reported.\n'
    return
  fi
  if [[ $clicked_while_alive ]]; then
    printf ' 5. The click came while the agent was still there, and reached it directly.\n'
  else
    printf ' 5. The click on "Launch" had the bus start the agent again.\n'
  fi
  printf ' 6. The main application was started with: %s\n' "$(cat "$stage/main-application.log")"
  /usr/bin/python3 "$root/scripts/demo_files.py" report-hits "$stage/collector/hits.log" \
    "$prefix/share/vornix-scheduler/Analytics.plist" 'Notification Clicked' ' 7. '
}

install_programs
start_collector
make_home
if [[ $on_desktop ]]; then borrow_desktop_bus; else start_private_bus; start_terminal_display; fi
decision=$("$build/examples/explain-decision/vornix-explain-decision")
run_agent
take_click
if [[ -s $stage/main-application.log ]]; then
  wait_until 15 at_least_hits 6 || say "the collector did not get all hits: $(hits) of 6"
fi
report
