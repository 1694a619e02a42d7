# shellcheck shell=bash
# What the commands of script/ have in common. Sourced by each, never run.

set -euo pipefail

script_name=script/$(basename "$0")
[[ $0 == *.ci/* ]] && script_name=.ci/$(basename "$0")
project_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$project_root"

# What runs on a Mac keeps to the bash 3.2 of macOS; script/old-bash knows what that lacks.
on_a_mac() { [[ $(uname -s) == Darwin ]]; }
# Homebrew's folder is on the PATH of login shells alone.
if on_a_mac; then PATH=$PATH:/opt/homebrew/bin; fi

# Qt and Python want to know that text is UTF-8; a fresh machine has no locale set.
if [[ $(locale charmap 2>/dev/null) != UTF-8 ]]; then
    if on_a_mac; then export LC_ALL=en_US.UTF-8; else export LC_ALL=C.UTF-8; fi
fi

# say WORDS: one line about what happens now, on standard error.
say() { printf '%s %s\n' '==>' "$*" >&2; }

# fail WORDS: tells why the command cannot go on, and ends it.
fail() {
    printf '%s: %s\n' "$script_name" "$*" >&2
    exit 1
}

# show_help: prints the comment at the head of the running script.
show_help() { awk 'NR > 1 && !/^#/ { exit } NR > 1 { sub(/^# ?/, ""); print }' "$project_root/$script_name"; }

# handle_help ARGUMENTS: answers --help and -h wherever they stand.
handle_help() {
    local argument
    for argument in "$@"; do
        case $argument in -h | --help) show_help && exit 0 ;; esac
    done
}

# unknown_argument WORD: what every command says of an argument that it does not know.
unknown_argument() { fail "unknown argument '$1'; $script_name --help tells what there is"; }

# bootstrap NEED...: installs what is missing for these needs.
bootstrap() { "$project_root/script/bootstrap" ${agreed:+--yes} "$@"; }

# only_on_linux: for commands whose tools a Mac does not have.
only_on_linux() { if on_a_mac; then fail "this runs on Debian 12 or later only"; fi; }

# required_go: the least version of Go that the tailnet builds with.
required_go() { awk '$1 == "go" { print $2 }' "$project_root/tools/tailnet/go.mod"; }

# use_go: puts a Go that is new enough on the PATH, without letting it fetch another one.
use_go() {
    local own=$project_root/build/tools/go
    export GOTOOLCHAIN=local GOFLAGS="-buildvcs=false -modcacherw ${GOFLAGS:-}"
    go_is_new_enough go && return
    go_is_new_enough "$own/bin/go" || return 1
    # What the project's own Go fetches and compiles stays in the project's folder as well.
    export PATH=$own/bin:$PATH GOROOT=$own GOPATH=$project_root/build/go GOCACHE=$project_root/build/go/cache
}

# go_is_new_enough GO: whether this executable is there and at least required_go.
go_is_new_enough() {
    local version
    version=$(GOTOOLCHAIN=local "$1" env GOVERSION 2>/dev/null) || return 1
    printf '%s\n%s\n' "$(required_go)" "${version#go}" | sort --version-sort --check=quiet
}

# configure PRESET [ARGUMENT...]: configures a preset, with more arguments for cmake if need be.
configure() {
    local log=build/configure.log
    mkdir -p build
    cmake --preset "$@" >"$log" 2>&1 || {
        cat "$log" >&2
        fail "configuring the preset '$1' failed, see above"
    }
}

# build_in FOLDER [ARGUMENT...]: builds what has been configured there; takes no time where nothing changed.
build_in() {
    local quiet=
    [[ -t 2 ]] || quiet=yes
    cmake --build "$@" ${quiet:+-- --quiet} >&2 || fail "building in $1 failed, see above"
}

# build PRESET [ARGUMENT...]: configures a preset and builds it, with more arguments for cmake --build.
build() {
    local preset=$1
    shift
    configure "$preset"
    build_in "build/$preset" "$@"
}

# configured FOLDER NAME: the value of a CMake cache variable in a configured folder.
configured() { sed -n "s/^$2:[A-Z]*=//p" "$1/CMakeCache.txt"; }

# program_in FOLDER: the path of the program that is built there.
program_in() { if on_a_mac; then echo "$1/bin/Brevane.app/Contents/MacOS/Brevane"; else echo "$1/bin/brevane"; fi; }

# Programs of the loopback tailnet: tailnet, tailscale and tailscaled.
tailnet_programs=$project_root/build/tailnet

# build_tailnet: builds them where they are missing or older than their sources.
build_tailnet() {
    use_go || fail "there is no Go that is new enough"
    tools/tailnet/build.sh --output "$tailnet_programs" || fail "building the loopback tailnet failed, see above"
}

# tailnet_folder NAME: where a loopback tailnet of this project lives. The program is built for the
# command in it, whose path must be plain words for a shell: the temporary folder where ours is not.
tailnet_folder() {
    local folder=$project_root/build/tailnet-$1
    if [[ $folder == *[^A-Za-z0-9_./+,:@%-]* ]]; then
        folder=${TMPDIR:-/tmp}/brevane-$UID-$(cksum <<<"$project_root" | cut -d ' ' -f 1)-$1
        [[ -d $folder ]] || mkdir -m 700 "$folder"
        [[ -O $folder ]] || fail "$folder belongs to someone else"
    fi
    echo "$folder"
}

# project_files PATTERN...: the files of these kinds that are ours, one a line, sorted.
project_files() {
    local -a names
    local pattern
    names=(-false)
    for pattern in "$@"; do names+=(-o -name "$pattern"); done
    find . \( -path ./build -o -path ./.git -o -path ./.cache \) -prune -o -type f \( "${names[@]}" \) -print | sort
}
