#!/bin/bash
# Makes build/arm-sysroot: the development packages of the sections shell and tests for the 32-bit target, and what those
# need to run. Nothing is installed: foreign development packages would replace those of the desk. apt gets a state of
# its own, which asks the sources of this machine for the foreign architecture; the packages are unpacked, and what they
# tell about their libraries is kept for dpkg-shlibdeps. The headers of C and of C++ come with the cross compiler.
# Does nothing where the sysroot is made of the same packages.
set -eu
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
exec </dev/null >&2
Tools/bootstrap.sh arm

sysroot=$PWD/build/arm-sysroot
work=$sysroot.new
mapfile -t packages < <(Tools/bootstrap.sh --list shell tests | grep -e '-dev$')
madeOf=$(cksum <Tools/sysroot.sh)$'\n'${packages[*]}
[[ "$(cat "$sysroot/stamp" 2>/dev/null)" != "$madeOf" ]] || exit 0

echo "Making ${sysroot#"$PWD/"} ..."
rm -rf "$work"
mkdir -p "$work"/apt/{state/lists,cache/archives}/partial

# To apt what the compiler has for development is installed.
printf '%s\n' "Package: libc6-dev" "Status: install ok installed" "Architecture: armhf" "Multi-Arch: same" \
    "Version: 999" "Provides: libc-dev" "Maintainer: none" "Description: with the cross compiler" "" >"$work/apt/status"

aptGet() {
    apt-get -q -o APT::Architecture=armhf -o APT::Architectures=armhf -o Dir::State="$work/apt/state" \
        -o Dir::State::status="$work/apt/status" -o Dir::Cache="$work/apt/cache" -o Acquire::Languages=none "$@" 2>&1
}
# Where a source has no good index for the foreign architecture, the others may do: the packages decide.
indexes=$(aptGet update) || true
if ! output=$(aptGet install -y --no-install-recommends --download-only "${packages[@]}"); then
    tail -n 20 <<<"$indexes"$'\n'"$output"
    echo "The packages of the 32-bit target could not be downloaded: ${packages[*]}"
    exit 1
fi

# dpkg-shlibdeps reads the folder DEBIAN above a library that no package has installed: which version of which package
# has a symbol. What the packages are is for whoever tries the ones made here.
mkdir -p "$work"/{DEBIAN,var/lib/dpkg}
for archive in "$work"/apt/cache/archives/*.deb; do
    dpkg -x "$archive" "$work"
    for file in symbols shlibs; do
        dpkg-deb -I "$archive" $file >>"$work/DEBIAN/$file" 2>/dev/null || true
    done
    { dpkg-deb -f "$archive" && printf '%s\n' "Status: install ok installed" ""; } >>"$work/var/lib/dpkg/status"
done
rm -r "$work/apt"

# An absolute link leads out of the sysroot, to a file of the desk or to none.
find "$work" -type l -lname '/*' -printf '%P\n' | while read -r link; do
    ln -sfnr "$work$(readlink "$work/$link")" "$work/$link"
done

echo "$madeOf" >"$work/stamp"
rm -rf "$sysroot"
mv "$work" "$sysroot"
