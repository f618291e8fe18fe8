# ensure_packages PACKAGE...: installs the Debian packages that are missing, quietly.
ensure_packages() {
  local missing=() package sudo=""
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" || missing+=("$package")
  done
  ((${#missing[@]})) || return 0
  echo "Installing: ${missing[*]}"
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${missing[@]}" >/dev/null
}
