# Sourced by the commands at the root of the project: installs what is missing, and builds.
#
#   need SECTION…        installs the packages of these sections of packaging/debian-packages.txt
#   build PRESET TARGET… configures once and builds; quiet unless something fails

packages_of() {
  local section
  for section in "$@"; do
    sed -n "s/^$section: *//p" packaging/debian-packages.txt
  done | tr ' ' '\n' | sed '/^$/d' | sort -u
}

need() {
  local missing=() package
  for package in $(packages_of "$@"); do
    dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2>/dev/null | grep -q '^ii' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  local root=()
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
      echo "Ostrelon needs these Debian packages: ${missing[*]}. Install them, or run this as root." >&2
      return 1
    fi
    root=(sudo)
  fi
  echo "Installing ${#missing[@]} missing Debian packages: ${missing[*]}" >&2
  "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq >&2 &&
    "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
      "${missing[@]}" >&2
}

build() {
  local preset=$1 log
  shift
  log=$(mktemp)
  if ! { cmake --preset "$preset" && cmake --build --preset "$preset" ${1:+--target "$@"}; } >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    return 1
  fi
  rm -f "$log"
}
