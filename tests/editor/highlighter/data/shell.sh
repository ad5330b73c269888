#!/usr/bin/env bash
# Copies the recordings of a day to the archive, and keeps "the last" seven days.
set -euo pipefail

source "$HOME/.config/archive.env"
readonly ARCHIVE=${ARCHIVE_ROOT:-/srv/archive}
export LANG='C.UTF-8'
days=7
name="it is \"$USER\" at `hostname`"
plain='no $expansion \here'

usage() {
    echo "usage: ${0##*/} [-n] FOLDER" >&2
    exit 2
}

function keep_recent() {
    local folder=$1 count=0
    while read -r file; do
        count=$((count + 1))
        if [ "$count" -gt "$days" ]; then
            rm -f -- "${folder}/$file"
            continue
        elif [[ -z $file ]]; then
            break
        else
            printf '%s\n' "$file"
        fi
    done < <(ls -1t "$folder" | grep -v '^#' | sed 's/ /_/g' | awk '{ print $1 }')
    return 0
}

case "${1:-}" in
    -h | --help) usage ;;
    -n) alias cp='echo cp' ;;
    *) for part in "$@"; do
           mkdir -p "$ARCHIVE/$part" && cp -a "$part" "$ARCHIVE/$part/"
           cd "$ARCHIVE" && pwd
           mv a b; touch c; cat d; rmdir e
       done ;;
esac

until find . -name '*.wav' -print0 | xargs -0 ls; do
    keep_recent "${ARCHIVE}"
    unalias cp 2>/dev/null
done
echo "끝났습니다 ✅ ${#name} ${}"
unclosed='open
