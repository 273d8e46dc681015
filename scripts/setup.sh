# What the commands at the root share: missing Debian packages, configuring, building. Sourced by them.

build_packages=(cmake ninja-build g++ pkg-config qt6-base-dev qt6-svg-dev libfontconfig-dev libsystemd-dev libsqlite3-dev
                libgtest-dev librapidcheck-dev python3-polib qt6-l10n-tools)
run_packages=(dbus xvfb xauth openbox xdotool imagemagick at-spi2-core gir1.2-atspi-2.0 python3 python3-dbus
              python3-gi fonts-liberation fonts-noto-cjk gettext sqlite3 tzdata)
# For the tests: sshd and Debian's clock service for the far side of a real exchange, strace to make system calls fail.
test_packages=(openssh-server openssh-client systemd strace)
# Versions of clang-format differ in the layout of some lines; this one is in Debian 12 and in 13.
check_packages=(clang-format-19 clang-tidy-19)
fuzz_packages=(clang libclang-rt-dev)
bench_packages=(libxcb1-dev libxcb-damage0-dev libxcb-xtest0-dev)

# Installs those of the named packages that are missing.
install_packages() {
  local missing=()
  local package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  echo "Installing: ${missing[*]}"
  local root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "These packages are missing, and only root can install them: ${missing[*]}" >&2; exit 1; }
    root=(sudo)
  fi
  "${root[@]}" apt-get update -qq
  # Debian starts the servers that it installs, but the tests need only the program of this one.
  if [[ " ${missing[*]} " = *" openssh-server "* ]]; then
    "${root[@]}" install -d /etc/systemd/system
    "${root[@]}" ln -s /dev/null /etc/systemd/system/ssh.service 2>/dev/null || true
    echo "ssh.service stays masked; \"systemctl unmask ssh\" allows this machine to serve ssh."
  fi
  DEBIAN_FRONTEND=noninteractive "${root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# Configures a build folder; further arguments go to cmake.
configure_tree() {
  local folder=$1
  shift
  mkdir -p "$folder"
  cmake -S "$top" -B "$folder" -G Ninja "$@" >"$folder/configure.log" 2>&1 ||
    { cat "$folder/configure.log" >&2; exit 1; }
}

# Targets under the address and undefined-behaviour sanitizers, ready for fuzzing, in build/sanitized.
build_sanitized() {
  install_packages "${build_packages[@]}" "${fuzz_packages[@]}"
  mkdir -p "$top/build"
  (
    flock 9  # several fuzzing runs may start at the same time
    configure_tree "$top/build/sanitized" -DCMAKE_CXX_COMPILER=clang++ -DHORALINK_SANITIZE=ON \
      -DHORALINK_WARNINGS_AS_ERRORS=ON -DCMAKE_BUILD_TYPE=Debug
    cmake --build "$top/build/sanitized" --target "$@"
  ) 9>"$top/build/sanitized.lock"
}
