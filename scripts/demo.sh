#!/usr/bin/env bash
# Shows one reminder from the decision to the click: real preference files, a real message bus, a
# collector behind TLS, and a stand-in for the main application, all in a temporary folder.
set -euo pipefail
# shellcheck source=scripts/common.sh
source "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/common.sh"
subcommand=demo
readonly build=$root/build/release

on_desktop=
case $#:${1:-} in
  0:) ;;
  1:--desktop) on_desktop=yes ;;
  *) fail "demo does not know '$*'; it takes --desktop, or nothing" ;;
esac
if [[ $on_desktop ]]; then
  [[ -d ${XDG_RUNTIME_DIR:-} && (${DBUS_SESSION_BUS_ADDRESS:-} || -S $XDG_RUNTIME_DIR/bus) ]] ||
    fail "there is no desktop session here; './dev demo' shows the reminder in the terminal"
  export DBUS_SESSION_BUS_ADDRESS=${DBUS_SESSION_BUS_ADDRESS:-unix:path=$XDG_RUNTIME_DIR/bus}
fi

tell() { printf '%s\n' "$*"; }
fact() { printf '%s\t%s\n' "$1" "$2" >>"$stage/facts"; }

show_progress() {
  local line
  while IFS= read -r line; do
    if [[ -t 1 && $line == \[* ]]; then printf '\r  %s]' "${line%%]*}"; fi
  done
  if [[ -t 1 ]]; then printf '\r\033[K'; fi
}

build_and_install() {
  configure_preset release && step "build release" cmake --build --preset release &&
    step "install for the demonstration" cmake --install "$build" --prefix "$prefix" --component runtime
}

# One demonstration at a time, since each installs from the same build folder.
prepare_programs() {
  local lock log=$stage/build.log
  mkdir -p "$root/build"
  exec {lock}>"$root/build/demo.lock"
  flock "$lock"
  [[ -x $build/agent/program/vornix-scheduler ]] || tell "Building, which takes a few minutes once ..."
  if ! (build_and_install) 2>&1 | tee "$log" | show_progress; then
    grep -av '^dev demo: FAILED: ' "$log" || true
    fail "$(tail -n 1 "$log" | sed 's/^dev [a-z]*: FAILED: //')"
  fi
  exec {lock}>&-
}

explain() { "${later[@]}" "$build/examples/explain-decision/vornix-explain-decision"; }

# On a machine that has just started the agent waits for 20 minutes; the demonstration gives it a
# later clock instead.
decide() {
  local rights
  later=()
  decision=$(explain)
  if [[ $decision != "Remind in"* ]]; then return; fi
  tell "This machine has just started, so the agent is made to believe that it has been up for longer."
  for rights in "" "--user --map-current-user"; do
    # shellcheck disable=SC2206  # words
    later=(unshare $rights --time --monotonic 1200 --fork)
    if decision=$(explain 2>"$stage/explain.log"); then return; fi
  done
  fail "the agent would wait for 20 minutes, and it could not be helped: $(cat "$stage/explain.log")"
}

# Keys can be read only by those who have the terminal.
has_keyboard() {
  local fields
  [[ -t 0 ]] || return 1
  read -r fields </proc/self/stat
  read -ra fields <<<"${fields##*) }"
  ((fields[2] == fields[5]))
}

start_scene() {
  if [[ $on_desktop ]]; then
    make_home
    borrow_desktop_bus
    return
  fi
  make_home
  start_private_bus
  if has_keyboard; then
    keyboard=yes
    terminal_state=$(stty -g)
    start_terminal_display
  else
    start_terminal_display </dev/null
  fi
}

run_agent() {
  local status=0
  fact decision "$decision"
  fact started "$EPOCHREALTIME"
  "${later[@]}" "$prefix/libexec/vornix/vornix-scheduler" 2>"$stage/agent.log" &
  local agent=$!
  wait_until 10 displayed_reminder || fail "no reminder was shown$(agent_words)"
  fact shown "$EPOCHREALTIME"
  cp "$stage/displayed" "$stage/reminder"
  tell ""
  [[ -z $on_desktop ]] || tell "The reminder is on your desktop."
  tell "The agent stays for ten seconds. Answer now, or see first that the reminder outlives it."
  wait "$agent" || status=$?
  fact gone "$EPOCHREALTIME"
  ((status == 0)) || fail "the agent ended with status $status$(agent_words)"
  at_least_hits 3 || fail "only $(hits) of 3 hits reached the collector$(agent_words)"
}
agent_words() { [[ ! -s $stage/agent.log ]] || printf ': %s' "$(tail -n 1 "$stage/agent.log")"; }

relaunched_agent() {
  local program
  for program in /proc/[0-9]*/exe; do
    if [[ $program -ef $prefix/libexec/vornix/vornix-scheduler ]]; then echo "${program//[!0-9]/}"; fi
  done
}
answered() { main_application_was_started || [[ $(relaunched_agent) ]] || ! displayed_reminder; }

wait_for_answer() {
  fact outlived "$EPOCHREALTIME"
  tell "The agent is gone, the reminder is not."
  if [[ $on_desktop ]]; then
    tell "Click it. (This waits for five minutes.)"
  elif [[ $keyboard ]]; then
    tell "Press one of the keys. (This waits for five minutes.)"
  else
    tell "There is no keyboard here, so its first button is pressed for you."
    kill -USR1 "$display"
  fi
  wait_until 300 answered || fail "nobody answered the reminder"
}

follow_answer() {
  local agent answer_time
  answered || wait_for_answer
  answer_time=$EPOCHREALTIME
  agent=$(relaunched_agent)
  if [[ ! $agent ]] && ! wait_until 3 main_application_was_started; then
    fact closed "$answer_time"
    return
  fi
  if [[ $agent ]]; then
    fact clicked "$answer_time"
    fact relaunched "$agent"
  fi
  wait_until 30 main_application_was_started || fail "the click did not start the main application"
  wait_until 30 at_least_hits 6 || fail "only $(hits) of 6 hits reached the collector"
  tell "The main application was started, and asked: $(request_words)"
}

keyboard=
# shellcheck source=scripts/demo_stage.sh
source "$root/scripts/demo_stage.sh"
set_up_stage
ensure_packages build demo
[[ -z $on_desktop ]] || check_desktop
prepare_programs
tell "A small agent runs once a day, decides whether a reminder is due, and quits ten seconds later."
tell "The person chose a reminder every week, and the last one was ten days ago. The agent starts."
start_collector
start_scene
decide
run_agent
follow_answer
/usr/bin/python3 -B "$root/scripts/demo_report.py" "$stage" "$prefix"
