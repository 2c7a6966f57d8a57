# Sourced by the scripts: installs the packages of packages.txt that are missing.

heading() {
  printf '\n== %s\n' "$*" >&2
}

fail() {
  printf '%s: %s\n' "${0##*/}" "$*" >&2
  exit 1
}

# The packages for the given uses.
packagesFor() {
  local package uses use
  while read -r package uses _; do
    if [[ $package == '#'* ]]; then continue; fi
    for use in ${uses//,/ }; do
      if [[ " $* " == *" $use "* ]]; then
        echo "$package"
        break
      fi
    done
  done <"$(dirname "${BASH_SOURCE[0]}")/../packages.txt"
}

isInstalled() {
  dpkg-query -W -f '${db:Status-Status}\n' "$1" 2>/dev/null | grep -qx installed
}

asRoot() {
  if ((EUID == 0)); then "$@"; else sudo -n "$@"; fi
}

# Installs the missing packages for the given uses, such as: installFor build tests
installFor() {
  local package missing=()
  if ! command -v dpkg-query >/dev/null; then
    heading "No Debian: these packages are taken to be here under whatever name:" $(packagesFor "$@")
    return
  fi
  for package in $(packagesFor "$@"); do
    isInstalled "$package" || missing+=("$package")
  done
  if ((${#missing[@]} == 0)); then return; fi

  if ((EUID != 0)) && ! command -v sudo >/dev/null; then
    fail "only root can install: ${missing[*]} (and there is no sudo)"
  fi
  if ((EUID != 0)) && ! sudo -n true 2>/dev/null; then
    fail "sudo asks for a password; install as root: apt-get install ${missing[*]}"
  fi
  heading "Installing ${missing[*]} (takes a minute or two)"
  for package in "${missing[@]}"; do
    if [[ $package == *:* ]]; then asRoot dpkg --add-architecture "${package#*:}"; fi
  done
  asRoot apt-get -qq update
  asRoot env DEBIAN_FRONTEND=noninteractive \
    apt-get -qq install --yes --no-install-recommends -o Dpkg::Use-Pty=0 "${missing[@]}" >/dev/null
}
