# shellcheck shell=bash
# What the project's scripts share. Sourced, not run: it sets the shell's strict mode, moves to the
# checkout's root and defines the functions below.

set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
root=$PWD
program=scripts/$(basename "$0")
export root program

# A clone elsewhere finds the objects of this one: paths below the checkout do not count.
export CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=true

# say TEXT...: prints a line about what happens next.
say() { printf '%s\n' "$*"; }

# heading TEXT...: prints a line that starts a section of the output.
heading() { printf '\n== %s\n' "$*"; }

# fail TEXT...: says what went wrong and what to do, and ends the script with status 1.
fail() {
  printf '%s: %s\n' "$program" "$*" >&2
  exit 1
}

# usage_error TEXT...: says what is wrong with the arguments and ends the script with status 2.
usage_error() {
  printf '%s: %s\nTry "%s --help".\n' "$program" "$*" "$program" >&2
  exit 2
}

# print_help: prints the comment at the top of the running script, as --help does.
print_help() { sed -n '2,/^[^#]/{s/^# \{0,1\}//;t print;b;: print;p}' "$0"; }

# jobs: prints how many processes may work at the same time.
jobs() { nproc 2>/dev/null || echo 2; }

# need_tool TOOL: fails unless the program TOOL can be run.
need_tool() {
  command -v "$1" >/dev/null || fail "$1 is not installed; run scripts/setup, then try again"
}

# cxx_files: prints the C++ files of the project, tracked or about to be, each ended by a NUL.
cxx_files() {
  local file
  git -c safe.directory='*' ls-files -z --cached --others --exclude-standard -- '*.h' '*.cpp' |
    while IFS= read -r -d '' file; do
      if [ -f "$file" ]; then
        printf '%s\0' "$file"
      fi
    done
}

# shown COMMAND...: prints the command after a prompt, so that it can be copied, then runs it.
shown() {
  local word line='$'
  for word in "$@"; do
    if [[ $word =~ ^[A-Za-z0-9_./:=+,@%-]+$ ]]; then
      line+=" $word"
    else
      line+=" \"$word\""
    fi
  done
  printf '\n%s\n' "$line"
  "$@"
}
