#!/usr/bin/env bash
# try_package.sh FOLDER PACKAGE [PREVIOUS]: installs, starts, upgrades and removes the package on a bare Debian 12 that is
# made in FOLDER. There is a network only while that is made and what the package needs is fetched.
set -euo pipefail

folder=$1 package=$2 previous=${3:-}
# What is mounted from here on is gone with the process, so that nothing outside is ever removed through it.
if [ $# -lt 4 ]; then
  exec unshare --mount "$0" "$folder" "$package" "$previous" apart
fi
base=$folder/base trial=$folder/trial log=$folder/log

fail() {
  printf 'kelm: %s\n' "$*" >&2
  exit 1
}
tell() { printf '  %s\n' "$*"; }

# ---- The system -----------------------------------------------------------------------------------------------------

enter() {
  chroot "$1" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "${@:2}"
}
offline() { unshare --net "$0" "$folder" "$package" "$previous" run "$@"; }
person() { offline su --login --shell /bin/sh --command "export LC_ALL=C.UTF-8; $1" someone; }
apt_offline() {
  offline apt-get "$1" -q -y --no-install-recommends "${@:2}" >>"$log" 2>&1 ||
    fail "apt-get $* has failed; see $log"
}

make_base() {
  if [ ! -e "$base/made" ]; then
    rm -rf --one-file-system "$base"
    debootstrap --variant=minbase bookworm "$base" >>"$log" 2>&1 || fail "debootstrap has failed; see $log"
    mkdir "$base/debs"
    touch "$base/made"
  fi
  cp "$package" "$base/debs/new.deb"
  [ -z "$previous" ] || cp "$previous" "$base/debs/previous.deb"
  cp /etc/resolv.conf "$base/etc/resolv.conf"
  local proxies=(http_proxy="${http_proxy:-}" https_proxy="${https_proxy:-}") each
  enter "$base" env "${proxies[@]}" apt-get update -q >>"$log" 2>&1 || fail "there is no list of packages; see $log"
  for each in /debs/new.deb ${previous:+/debs/previous.deb}; do
    enter "$base" env "${proxies[@]}" apt-get install -q -y --download-only --no-install-recommends "$each" \
      >>"$log" 2>&1 || fail "what $each needs could not be fetched; see $log"
  done
}

# What the package needs is there before it, and stays; so does a person's home.
make_trial() {
  local needed
  rm -rf --one-file-system "$trial"
  cp -a "$base" "$trial"
  mapfile -t needed < <(for each in "$package" ${previous:+"$previous"}; do
    dpkg-deb --field "$each" Depends
  done | tr ',' '\n' | sed -E 's/^ *([^ ]+).*/\1/' | sort -u)
  apt_offline install "${needed[@]}"
  offline useradd --create-home someone
  person 'mkdir -p .config .local/share/KelmPane/Themes && echo "print(1)" >a.py &&
    echo "{}" >.local/share/KelmPane/Themes/mine.json &&
    printf "[General]\nselectedTheme=Dracula\n" >.config/com.kelm.KelmPane.conf'
}

# ---- What is looked at ----------------------------------------------------------------------------------------------

# All files but a person's and what the system notes of packages.
files() {
  local noted=(home debs tmp proc sys dev var/lib/dpkg var/lib/apt var/cache var/log) name skipped=()
  for name in "${noted[@]}"; do
    skipped+=(-path "./$name" -o)
  done
  (cd "$trial" && find . -xdev \( "${skipped[@]}" -false \) -prune -o -print | sort)
}
files_of_person() { (cd "$trial/home/someone" && find . -type f -exec sha256sum {} + | sort); }

# is_there PACKAGE: it is installed as it is, and its program starts.
is_there() {
  local version told
  version=$(dpkg-deb --field "$1" Version)
  told=$(offline dpkg-query --list kelmwright | tail -n 1 | tr -s ' ' | cut -d' ' -f1-3)
  [ "$told" = "ii kelmwright $version" ] || fail "the system tells of \"$told\" and not of $version"
  told=$(person 'kelmwright --version')
  [ "$told" = "KelmWright $version" ] || fail "the program tells of \"$told\" and not of $version"
  told=$(offline dpkg --verify kelmwright)
  [ -z "$told" ] || fail "these files are not those of the package: $told"
  rm -f "$trial/tmp/picture.png"
  person 'QT_QPA_PLATFORM=offscreen KELMWRIGHT_PICTURE=/tmp/picture.png kelmwright a.py' >>"$log" 2>&1 ||
    fail "the program does not start; see $log"
  [ -s "$trial/tmp/picture.png" ] || fail "the program has drawn nothing"
  tell "$version is installed as it was packed, and its program draws its window"
}

# goes remove | goes purge: the package goes without a trace, and what is a person's stays.
goes() {
  apt_offline "$1" kelmwright
  offline dpkg-query --list kelmwright >>"$log" 2>&1 && fail "the system still knows the package"
  files >"$folder/after"
  diff "$folder/before" "$folder/after" >"$folder/left" || fail "these files are left or gone: $(cat "$folder/left")"
  files_of_person | diff "$folder/person" - >"$folder/left" || fail "a person's files are others: $(cat "$folder/left")"
  tell "$1: the system has the $(wc -l <"$folder/before") files of before, the person all $(wc -l <"$folder/person")"
}

# ---- The trial ------------------------------------------------------------------------------------------------------

if [ "$4" = run ]; then
  enter "$trial" "${@:5}"
  exit
fi
: >"$log"
make_base
make_trial
files >"$folder/before"
if [ -n "$previous" ]; then
  apt_offline install /debs/previous.deb
  is_there "$previous"
fi
apt_offline install /debs/new.deb
is_there "$package"
files_of_person >"$folder/person"
goes remove
apt_offline install /debs/new.deb
goes purge
