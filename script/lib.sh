# shellcheck shell=bash
# Functions that the commands of script/ share. Sourced by each, never run.

set -euo pipefail

script_name=script/$(basename "$0")
[[ $0 == *.ci/* ]] && script_name=.ci/$(basename "$0")
project_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$project_root"

# Scripts that run on a Mac must work with macOS's bash 3.2; script/old-bash checks that.
on_a_mac() { [[ $(uname -s) == Darwin ]]; }
# Only login shells have Homebrew's folder on their PATH.
if on_a_mac; then PATH=$PATH:/opt/homebrew/bin; fi

# Qt and Python need a UTF-8 locale; a new machine may have none set.
if [[ $(locale charmap 2>/dev/null) != UTF-8 ]]; then
    if on_a_mac; then export LC_ALL=en_US.UTF-8; else export LC_ALL=C.UTF-8; fi
fi

# Bash itself continues after Ctrl-C if the running command handles it and succeeds, as apt-get does.
trap 'trap - INT; kill -INT $$' INT

# git refuses a checkout that belongs to someone else, as in a container with its own root. Whoever runs
# its scripts trusts it.
export GIT_CONFIG_COUNT=1 GIT_CONFIG_KEY_0=safe.directory GIT_CONFIG_VALUE_0=$project_root

# Nothing is kept outside the project's folder.
export PIP_NO_CACHE_DIR=1

# say WORDS: prints a progress message on standard error.
say() { printf '%s %s\n' '==>' "$*" >&2; }

# fail WORDS: prints an error message and exits with 1.
fail() {
    printf '%s: %s\n' "$script_name" "$*" >&2
    exit 1
}

# show_help: prints the comment at the head of the running script.
show_help() { awk 'NR > 1 && !/^#/ { exit } NR > 1 { sub(/^# ?/, ""); print }' "$project_root/$script_name"; }

# handle_help ARGUMENTS: prints the help and exits if --help or -h is among the arguments.
handle_help() {
    local argument
    for argument in "$@"; do
        case $argument in -h | --help) show_help && exit 0 ;; esac
    done
}

# unknown_argument WORD: fails because of an argument that the command does not know.
unknown_argument() { fail "unknown argument '$1'; see $script_name --help"; }

# bootstrap NEED...: runs script/bootstrap, with --yes if that was given to the command.
bootstrap() { "$project_root/script/bootstrap" ${agreed:+--yes} "$@"; }

# only_on_linux: fails on a Mac, which lacks the command's tools.
only_on_linux() { if on_a_mac; then fail "this runs on Debian 12 or later only"; fi; }

# required_go: prints the minimum version of Go for the tailnet.
required_go() { awk '$1 == "go" { print $2 }' "$project_root/tools/tailnet/go.mod"; }

# use_go: puts a Go that is new enough on the PATH, and keeps it from downloading another one.
use_go() {
    local own=$project_root/build/tools/go
    export GOTOOLCHAIN=local GOFLAGS="-buildvcs=false -modcacherw ${GOFLAGS:-}"
    # For Go's counters, which otherwise stay in the home folder.
    export TEST_TELEMETRY_DIR=$project_root/build/go/telemetry
    go_is_new_enough go && return
    go_is_new_enough "$own/bin/go" || return 1
    # The project's own Go keeps its downloads and caches in the project's folder too.
    export PATH=$own/bin:$PATH GOROOT=$own GOPATH=$project_root/build/go GOCACHE=$project_root/build/go/cache
}

# go_is_new_enough GO: whether this executable exists and is at least version required_go.
go_is_new_enough() {
    local version
    version=$(GOTOOLCHAIN=local "$1" env GOVERSION 2>/dev/null) || return 1
    printf '%s\n%s\n' "$(required_go)" "${version#go}" | sort --version-sort --check=quiet
}

# configure PRESET [ARGUMENT...]: configures a preset, with further arguments for cmake.
configure() {
    local log=build/configure.log
    mkdir -p build
    cmake --preset "$@" >"$log" 2>&1 || {
        cat "$log" >&2
        fail "configuring the preset '$1' failed, see above"
    }
}

# build_in FOLDER [ARGUMENT...]: builds in a configured folder, with further arguments for cmake --build.
build_in() {
    local quiet=
    [[ -t 2 ]] || quiet=yes
    cmake --build "$@" ${quiet:+-- --quiet} >&2 || fail "building in $1 failed, see above"
}

# build PRESET [ARGUMENT...]: configures and builds a preset, with further arguments for cmake --build.
build() {
    local preset=$1
    shift
    configure "$preset"
    build_in "build/$preset" "$@"
}

# configured FOLDER NAME: prints the value of a CMake cache variable in a configured folder.
configured() { sed -n "s/^$2:[A-Z]*=//p" "$1/CMakeCache.txt"; }

# program_in FOLDER: prints the path of the program that is built there.
program_in() { if on_a_mac; then echo "$1/bin/Brevane.app/Contents/MacOS/Brevane"; else echo "$1/bin/brevane"; fi; }

# Programs of the loopback tailnet: tailnet, tailscale and tailscaled.
tailnet_programs=$project_root/build/tailnet

# build_tailnet: builds them if they are missing or older than their sources.
build_tailnet() {
    use_go || fail "there is no Go that is new enough"
    tools/tailnet/build.sh --output "$tailnet_programs" || fail "building the loopback tailnet failed, see above"
}

# tailnet_folder NAME: prints the folder of a loopback tailnet of this project. The program is built for
# the command in it, whose path a shell must not split or interpret: a temporary folder if ours would be.
tailnet_folder() {
    local folder=$project_root/build/tailnet-$1
    if [[ $folder == *[^A-Za-z0-9_./+,:@%-]* ]]; then
        folder=${TMPDIR:-/tmp}/brevane-$UID-$(cksum <<<"$project_root" | cut -d ' ' -f 1)-$1
        [[ -d $folder ]] || mkdir -m 700 "$folder"
        [[ -O $folder ]] || fail "$folder belongs to someone else"
    fi
    echo "$folder"
}

# project_files PATTERN...: prints the project's files whose names match, one per line, sorted.
project_files() {
    local -a names
    local pattern
    names=(-false)
    for pattern in "$@"; do names+=(-o -name "$pattern"); done
    find . \( -path ./build -o -path ./.git -o -path ./.cache \) -prune -o -type f \( "${names[@]}" \) -print | sort
}

# is_known NAME: whether this release has the package. Some releases of apt-cache print nothing, and
# succeed, for a name that other packages refer to.
is_known() { [[ -n $(apt-cache show "$1" 2>/dev/null) ]]; }
