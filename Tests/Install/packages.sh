#!/bin/bash
# Makes the Debian packages of a build and judges them, then installs them into an empty root, uses them there, and
# upgrades and removes them: Tests/Install/packages.sh <build folder>
# Needs the section packages of Tools/packages.txt besides those that the build and its tests need.
set -eu
here=$(dirname "$(realpath "${BASH_SOURCE[0]}")")
build=$(realpath "$1")
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

cached() {
    sed -n "s/^$1:[A-Z]*=//p" "$build/CMakeCache.txt"
}
version=$(cached CMAKE_PROJECT_VERSION)

quietly cpack --config "$build/CPackConfig.cmake" -B "$scratch/packages"
cd "$scratch/packages"
desk=$(dpkg --print-architecture)
architecture=$(dpkg-deb -f labsh_*.deb Architecture)
packages=(labsh_"$version"_"$architecture".deb liblabshell-dev_"$version"_"$architecture".deb labsh-doc_"$version"_all.deb)
if [[ $architecture == "$desk" ]]; then
    packages+=(python3-labshell_"$version"_"$architecture".deb)
    compiler=$(cached CMAKE_CXX_COMPILER)
    database=/var/lib/dpkg
    emulator=()
else
    sysroot=$(realpath "$build/../arm-sysroot")
    compiler="arm-linux-gnueabihf-g++ --sysroot=$sysroot"
    database=$sysroot/var/lib/dpkg
    emulator=(qemu-arm -L "$sysroot")
fi
[[ $(printf '%s\n' *.deb | sort) == "$(printf '%s\n' "${packages[@]}" | sort)" ]] || fail "Other packages are made:" *.deb
quietly lintian --fail-on error,warning "${packages[@]}"

# The former version is the same but for its number and a file that the new one has no more.
dpkg-deb -R "${packages[0]}" "$scratch/former"
sed -i "s/^Version: .*/Version: $version~former/" "$scratch/former/DEBIAN/control"
touch "$scratch/former/usr/share/labsh/former"
quietly dpkg-deb --root-owner-group -Zgzip -b "$scratch/former" "$scratch/former.deb"

# To dpkg the libraries that the packages ask for are there, as this machine or the sysroot has them, and nothing else is.
mkdir -p "$root"/var/lib/dpkg/{info,updates}
printf '%s\n' "$desk" "$architecture" | uniq >"$root/var/lib/dpkg/arch"
for package in "${packages[@]}"; do
    dpkg-deb -f "$package" Depends
done | tr , '\n' | awk 'NF && $1 != "labsh" && !asked[$1]++ { print $1 }' | while read -r name; do
    dpkg-query --admindir="$database" -s "$name:$architecture"
    echo
    touch "$root/var/lib/dpkg/info/$name"{,:"$architecture"}.list
done >"$root/var/lib/dpkg/status"
inRoot() {
    quietly fakeroot dpkg --root="$root" --force-not-root --force-script-chrootless --force-unsafe-io \
        --log="$scratch/dpkg.log" "$@"
}

inRoot -i "$scratch/former.deb"
inRoot -i "${packages[@]}"
[[ ! -e $root/usr/share/labsh/former ]] || fail "A file of the former version is left"
"$here/use.sh" "$root/usr" "$version" "$compiler" "${emulator[@]}"
expect "bench shell of a laboratory instrument" man -P cat -M "$root/usr/share/man" labsh
quietly "$here/completion.sh" "$root/usr/share/bash-completion/completions/labsh" \
    "$root/usr/share/zsh/vendor-completions/_labsh" "$root/usr/share/fish/vendor_completions.d/labsh.fish"

# The module of Python, as it is packed and as it is built with the packages alone. Root has left compiled files beside
# it; its tests leave none.
if ((!${#emulator[@]})); then
    modules=$root/usr/lib/python3/dist-packages
    [[ -d $modules/labshell/__pycache__ ]] || fail "Python has left nothing that is to be removed"
    quietly cmake -G Ninja -S "$here/../../Python" -B "$scratch/module" -D CMAKE_PREFIX_PATH="$root/usr" -D CMAKE_CXX_COMPILER="$compiler"
    quietly cmake --build "$scratch/module"
    for modules in "$modules" "$scratch/module/python"; do
        PYTHONPATH=$modules quietly /usr/bin/python3 -B -m pytest -q -p no:cacheprovider "$here/../Python"
    done
fi

inRoot --purge "${packages[@]%%_*}"
left=$(find "$root" -mindepth 1 -path "$root/var" -prune -o -print)
[[ ! $left ]] || fail "Left after the removal: $left"
