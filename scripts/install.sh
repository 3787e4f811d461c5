#!/bin/sh
# Installs what this archive holds: programs, manual pages, completions, documentation and the
# harnesses' ready files, in which the programs are named where they then are.
#
#   ./install.sh                      below /usr/local
#   ./install.sh --prefix DIR         below DIR
#   ./install.sh --uninstall [--prefix DIR]
#                                     takes away what an installation there put, and nothing else
set -eu

prefix=/usr/local
uninstall=no
while [ $# -gt 0 ]; do
  case "$1" in
    --prefix)
      [ $# -ge 2 ] || { echo "--prefix needs a folder" >&2; exit 2; }
      prefix=$2
      shift
      ;;
    --prefix=*) prefix=${1#*=} ;;
    --uninstall) uninstall=yes ;;
    *) echo "usage: install.sh [--prefix DIR] [--uninstall]" >&2; exit 2 ;;
  esac
  shift
done
case "$prefix" in
  /) prefix='' ;;
  /*) prefix=${prefix%/} ;;
  *) echo "--prefix needs a whole path, one that begins with /" >&2; exit 2 ;;
esac
# The ready files hold the path in JSON, in TOML, in shell and in sed's words below.
case "$prefix" in
  *[!A-Za-z0-9_./+-]*) echo "--prefix may have letters, digits and _ . / + - only" >&2; exit 2 ;;
esac

list=$prefix/share/quillpost-teamwork/installed-files

# Takes away the files and folders that a list names on standard input, folders from the inmost one,
# and those only that are empty. What was changed to lie elsewhere is left alone.
take_away() {
  sort -r | while IFS= read -r name; do
    case "$name" in
      '' | /* | ../* | */../* | */..) ;;
      */) rmdir "$prefix/$name" 2>/dev/null || true ;;
      *) rm -f "$prefix/$name" ;;
    esac
  done
}

if [ "$uninstall" = yes ]; then
  [ -f "$list" ] || { echo "Nothing of this is installed below ${prefix:-/}." >&2; exit 1; }
  names=$(cat "$list")
  rm -f "$list"
  echo "$names" | take_away
  echo "Taken away from ${prefix:-/}."
  exit 0
fi

# Makes a folder below the prefix with those above it, and notes each that was not there.
make_folder() {
  if [ -d "$prefix/$1" ]; then return; fi
  make_folder "$(dirname "$1")"
  mkdir "$prefix/$1"
  noted=$noted$1/'
'
}

cd -- "$(dirname -- "$0")"
[ -x bin/quillpost-teamwork ] || { echo "This is to be run from the unpacked archive." >&2; exit 1; }
# The folders that an earlier installation made are still this one's.
noted=''
before=''
if [ -f "$list" ]; then
  before=$(cat "$list")
  noted=$(echo "$before" | grep '/$' || true)'
'
fi
mkdir -p "$prefix/"
files=$(find bin share -type f)
while IFS= read -r file; do
  make_folder "$(dirname "$file")"
  # Another file in its place, so that a program that runs goes on.
  new=$prefix/$file.new.$$
  case "$file" in
    share/quillpost-teamwork/*)
      sed "s|/usr/local/|$prefix/|g; s|/usr/bin/quillpost-|$prefix/bin/quillpost-|g" "$file" >"$new"
      ;;
    *) cp "$file" "$new" ;;
  esac
  if [ -x "$file" ]; then chmod 755 "$new"; else chmod 644 "$new"; fi
  mv -f "$new" "$prefix/$file"
done <<EOF
$files
EOF
printf '%s%s\n' "$noted" "$files" >"$list"
# What an earlier version had and this one has not.
echo "$before" | grep -vxF -f "$list" | take_away
echo "Installed below ${prefix:-/}. quillpost-board serve begins a board, qp --help lists the verbs."
