# shellcheck shell=bash
# What the developer commands share: how they speak, fail, run a step and install packages.

export LC_ALL=C.UTF-8  # errors are searched for by their English words
export CCACHE_SLOPPINESS=pch_defines,time_macros
root=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")
subcommand=
# End-to-end tests mostly wait, so more of them run at once than there are processors.
# shellcheck disable=SC2034  # read by the scripts that source this file
parallel_tests=$((4 * $(nproc)))

say() { printf 'dev %s: %s\n' "$subcommand" "$*"; }
say_what() { say "$*"; }

# The first error always stands on the last line that a failing command prints.
fail() {
  printf 'dev %s: FAILED: %s\n' "$subcommand" "$*" >&2
  exit 1
}

readonly error_patterns=(
  '\*\*\*(Failed|Timeout|Exception|Not Run)'
  '(: |^)(fatal )?error: '
  '^CMake Error'
  '^E: '
  '^FAILED: '
  'SC[0-9]{4} \((error|warning|info|style)\)'
  'undefined reference to|[Ee]rror|cannot |No such file'
)

first_error() { # LOG
  local pattern line
  for pattern in "${error_patterns[@]}"; do
    if line=$(grep -m1 -aE -- "$pattern" "$1"); then
      printf '%s' "$line"
      return
    fi
  done
  grep -a . "$1" | tail -n 1
}

step() { # TITLE COMMAND [ARGUMENTS]
  local title=$1 log status=0 started=$SECONDS
  shift
  mkdir -p "$root/build/logs"
  log=$root/build/logs/${title// /-}.log
  say "$title"
  "$@" 2>&1 | tee "$log" || status=${PIPESTATUS[0]}
  if ((status != 0)); then
    fail "$title: $(first_error "$log")"
  fi
  printf '%6d s  %s\n' $((SECONDS - started)) "$title" >>"$root/build/logs/times"
}

configure_preset() { # PRESET
  local options=()
  if command -v ccache >/dev/null; then options+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache); fi
  step "configure $1" cmake --preset "$1" "${options[@]}"
}

build_preset() { # PRESET
  configure_preset "$1"
  step "build $1" cmake --build --preset "$1"
}

as_root() {
  if ((EUID == 0)); then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    fail "installing packages needs root or sudo: $*"
  fi
}

# Runs the command as root only where the person may not write the folder.
with_rights_for() { # FOLDER COMMAND...
  local folder=$1
  shift
  while [[ ! -e $folder ]]; do folder=$(dirname "$folder"); done
  if [[ -w $folder ]]; then "$@"; else as_root "$@"; fi
}

packages_for() { # GROUP
  case $1 in
    build)
      echo g++ cmake ninja-build pkg-config libplist-dev libsystemd-dev libcurl4-openssl-dev \
        libicu-dev libmd-dev libglib2.0-dev libxcb1-dev libxcb-randr0-dev libplist-utils
      ;;
    dev-build) packages_for build; echo libgtest-dev libgmock-dev mold ;;
    test)
      echo python3 python3-gi gir1.2-glib-2.0 dbus xvfb xfce4-notifyd xfconf \
        mate-notification-daemon dunst xdotool imagemagick fonts-dejavu-core nginx-light openssl \
        util-linux mount e2fsprogs valgrind adwaita-icon-theme
      ;;
    lint) echo clang-format clang-tidy shellcheck python3 ;;
    sanitizers) echo clang libclang-rt-dev llvm ;;
    bench) echo python3 valgrind time binutils libssl-dev strace bfs fd-find ;;
    demo) echo python3 dbus nginx-light openssl util-linux ;;
  esac
}

lacking_packages() { # PACKAGE...
  local package
  for package in "$@"; do
    [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) == installed ]] ||
      printf '%s\n' "$package"
  done
}

run_apt() { # ARGUMENTS
  as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq -o Dpkg::Use-Pty=0 -o DPkg::Lock::Timeout=600 "$@"
}

apt_install() { # PACKAGE...
  run_apt install -y --no-install-recommends "$@" || {
    run_apt update && run_apt install -y --no-install-recommends "$@"
  }
}

# A web server of its own accord is not what somebody wants who only wanted to run our tests.
stop_system_nginx() {
  if [[ -d /run/systemd/system ]]; then
    as_root systemctl disable --now nginx.service
  elif [[ -s /run/nginx.pid ]]; then
    as_root /etc/init.d/nginx stop
  fi
}

ensure_packages() { # GROUP...
  local group names=() lacking log
  for group in "$@"; do
    read -ra names <<<"${names[*]} $(packages_for "$group" | tr '\n' ' ')"
  done
  mapfile -t lacking < <(lacking_packages "${names[@]}" | sort -u)
  ((${#lacking[@]})) || return 0
  command -v apt-get >/dev/null || fail "please install: ${lacking[*]}"
  say "installing ${lacking[*]}"
  mkdir -p "$root/build/logs"
  log=$root/build/logs/packages.log
  if ! apt_install "${lacking[@]}" >"$log" 2>&1; then
    cat "$log" >&2
    fail "install packages: $(first_error "$log")"
  fi
  if [[ " ${lacking[*]} " == *" nginx-light "* ]]; then
    stop_system_nginx >>"$log" 2>&1 || say "the system's own nginx could not be stopped, see $log"
  fi
}
