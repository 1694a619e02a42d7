#!/bin/sh
# SPDX-License-Identifier: MIT
set -eu

usage() {
    cat <<'TEXT'
Usage: build.sh --output DIR [--version VERSION]

Builds tailnet, tailscale and tailscaled into DIR, unless they are there and up
to date. VERSION is that of tailscale and tailscaled, by default the one in
go.mod. The sources, about 80 MB, come from the Go module proxy and stay in Go's
caches.
TEXT
}

fail() {
    echo "build.sh: $*" >&2
    exit "${status:-1}"
}

here=$(cd "$(dirname "$0")" && pwd)
output='' version=''
while [ $# -gt 0 ]; do
    case $1 in
    -h | --help) usage; exit 0 ;;
    --output | --version)
        [ $# -ge 2 ] || status=2 fail "$1 needs a value"
        if [ "$1" = --output ]; then output=$2; else version=$2; fi
        shift 2 ;;
    *) status=2 fail "unknown option $1; see --help" ;;
    esac
done
[ -n "$output" ] || status=2 fail "--output is missing; see --help"
pinned=$(sed -n 's/^[[:space:]]*tailscale\.com v//p' "$here/go.mod")
version=${version:-$pinned}

mkdir -p "$output"
output=$(cd "$output" && pwd)
command -v go >/dev/null || fail "Go is missing; $(sed -n 's/^go /version /p' "$here/go.mod") or newer is needed"

# Parts of Tailscale that sharing on loopback does not use: a quarter of its packages.
omitted_features() {
    for feature in appconnectors aws bird capture clientupdate cloud completion completion_scripts conn25 \
        debugportmapper desktop_sessions drive flashappliance identityfederation kube linuxdnsfight \
        networkmanager oauthkey portmapper posture qrcodes relayserver resolved ssh synology systray \
        taildrop tap tpm wakeonlan webclient; do
        printf 'ts_omit_%s,' "$feature"
    done
}

build_tailscale() {
    stamp=tailscale.com/version
    set -- -trimpath -ldflags "-s -w -X $stamp.shortStamp=$version -X $stamp.longStamp=$version"
    # Other versions have other features, so nothing is omitted from them.
    [ "$version" != "$pinned" ] || set -- "$@" -tags "$(omitted_features)"
    # Before 1.62 Tailscale requires a module under a path that is gone; its owner publishes it under another.
    case $version in
    1.[0-9].* | 1.[0-5][0-9].* | 1.6[01].*) build_with_peercred_replaced "$@" ;;
    *) GOBIN=$output go install "$@" "tailscale.com/cmd/tailscale@v$version" "tailscale.com/cmd/tailscaled@v$version" ;;
    esac
}

build_with_peercred_replaced() {
    source=$(mktemp -d)
    trap 'rm -rf "$source"' EXIT
    module=$(cd "$source" && go mod download -json "tailscale.com@v$version" | sed -n 's/^[[:space:]]*"Dir": "\(.*\)",\{0,1\}$/\1/p')
    cp -R "$module/." "$source"
    chmod -R u+w "$source"
    (
        cd "$source"
        go mod edit -replace=inet.af/peercred=github.com/tailscale/peercred@v0.0.0-20240214030740-b535050b2aa4
        go build -mod=mod "$@" -o "$output/" ./cmd/tailscale ./cmd/tailscaled
    )
}

built=$output/tailscale.version
if [ "$(cat "$built" 2>/dev/null)" != "$version" ] || [ ! -x "$output/tailscale" ] || [ ! -x "$output/tailscaled" ]; then
    echo "Building tailscale and tailscaled $version (about two minutes the first time) ..." >&2
    rm -f "$built"
    build_tailscale
    echo "$version" >"$built"
fi

if [ ! -x "$output/tailnet" ] || [ -n "$(find "$here" -newer "$output/tailnet" ! -name '*_test.go' -type f)" ]; then
    echo "Building tailnet (about one minute the first time) ..." >&2
    # Go does not rewrite an unchanged program, so its time is updated here.
    (cd "$here" && go build -trimpath -ldflags '-s -w' -o "$output/tailnet" .)
    touch "$output/tailnet"
fi
