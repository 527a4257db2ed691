#!/bin/bash
# Makes build/arm-sysroot: the development packages of the sections shell and tests for the 32-bit target. Nothing is
# installed: foreign development packages would replace those of the desk. apt gets a state of its own, which asks the
# sources of this machine for the foreign architecture; the packages are unpacked, no more. The C and the C++ library
# come with the cross compiler. Does nothing where the sysroot is made of the same packages.
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

# To apt the libraries of the compiler are installed.
for package in libc6 libc6-dev libgcc-s1 libstdc++6; do
    printf '%s\n' "Package: $package" "Status: install ok installed" "Architecture: armhf" "Multi-Arch: same" \
        "Version: 999" "Provides: libc-dev" "Maintainer: none" "Description: with the cross compiler" ""
done >"$work/apt/status"

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
for archive in "$work"/apt/cache/archives/*.deb; do
    dpkg -x "$archive" "$work"
done
rm -r "$work/apt"

# An absolute link leads out of the sysroot, to a file of the desk or to none.
find "$work" -type l -lname '/*' -printf '%P\n' | while read -r link; do
    ln -sfnr "$work$(readlink "$work/$link")" "$work/$link"
done

# For the emulator, which looks for the loader and what it loads here.
ln -s /usr/arm-linux-gnueabihf/lib/*.so.* "$work/lib/arm-linux-gnueabihf/"
ln -s /usr/arm-linux-gnueabihf/lib/ld-linux-armhf.so.3 "$work/lib/"

echo "$madeOf" >"$work/stamp"
rm -rf "$sysroot"
mv "$work" "$sysroot"
