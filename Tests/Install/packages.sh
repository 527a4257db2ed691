#!/bin/bash
# Makes the Debian packages of a build and judges them, then installs them into an empty root, uses them there, and
# upgrades and removes them: Tests/Install/packages.sh <build folder>
# Needs the section packages of Tools/packages.txt.
set -eu
here=$(dirname "$(realpath "${BASH_SOURCE[0]}")")
build=$(realpath "$1")
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export LABSH_HOME=$scratch/data LC_ALL=C.UTF-8
root=$scratch/root

fail() {
    echo "packages.sh: $*" >&2
    exit 1
}

# Runs a command, whose output must hold a text: expect <text> <command>...
expect() {
    local text=$1 output
    shift
    output=$("$@" 2>&1) || fail "$* ends with $?: $output"
    [[ $output == *"$text"* ]] || fail "$* lacks \"$text\": $output"
}

quietly() {
    "$@" >"$scratch/log" 2>&1 || fail "$* ends with $?: $(<"$scratch/log")"
}

quietly cpack --config "$build/CPackConfig.cmake" -B "$scratch/packages"
cd "$scratch/packages"
packages=(labsh_"$version"_*.deb liblabshell-dev_"$version"_*.deb labsh-doc_"$version"_all.deb)
quietly lintian --fail-on error,warning "${packages[@]}"

# The former version is the same but for its number and a file that the new one has no more.
dpkg-deb -R "${packages[0]}" "$scratch/former"
sed -i "s/^Version: .*/Version: $version~former/" "$scratch/former/DEBIAN/control"
touch "$scratch/former/usr/share/labsh/former"
quietly dpkg-deb --root-owner-group -Zgzip -b "$scratch/former" "$scratch/former.deb"

# To dpkg the libraries that the packages ask for are there, as they are on this machine, and nothing else is.
mkdir -p "$root"/var/lib/dpkg/{info,updates}
dpkg-deb -f "${packages[0]}" Depends | tr , '\n' | while read -r name _; do
    dpkg-query -s "$name"
    echo
    touch "$root/var/lib/dpkg/info/$name"{,:"$(dpkg --print-architecture)"}.list
done >"$root/var/lib/dpkg/status"
inRoot() {
    quietly fakeroot dpkg --root="$root" --force-not-root --force-unsafe-io --log="$scratch/dpkg.log" "$@"
}

inRoot -i "$scratch/former.deb"
inRoot -i "${packages[@]}"
[[ ! -e $root/usr/share/labsh/former ]] || fail "A file of the former version is left"
expect "labsh $version" "$root/usr/bin/labsh" --version
expect 42 "$root/usr/bin/labsh" 'Calc 6*7'
expect "bench shell of a laboratory instrument" man -P cat -M "$root/usr/share/man" labsh
quietly "$here/completion.sh" "$root/usr/share/bash-completion/completions/labsh" \
    "$root/usr/share/zsh/vendor-completions/_labsh" "$root/usr/share/fish/vendor_completions.d/labsh.fish"

inRoot --purge labsh liblabshell-dev labsh-doc
left=$(find "$root" -path "$root/var" -prune -o ! -type d -print)
[[ ! $left ]] || fail "Left after the removal: $left"
