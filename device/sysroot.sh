#!/bin/bash
# usage: sysroot.sh DIR
#
# Unpacks the arm64 packages of what packages/build.txt, test.txt and sysroot.txt name as libraries, and what they depend on,
# into DIR/root. apt works on a state of its own with the machine's own package sources, so nothing is installed, no architecture
# is added to the machine, and no root is needed. Does nothing where DIR holds what the list asks for already.
set -euo pipefail

die()
{
    printf 'sysroot.sh: error: %s\n' "$*" >&2
    exit 1
}

(($# == 1)) || die "usage: sysroot.sh DIR"
lists=$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/../packages
mapfile -t packages < <(sed 's/#.*//; s/[[:space:]]//g' "$lists"/{build,test,sysroot}.txt | grep -E '^lib|^nlohmann' | sort -u)
((${#packages[@]})) || die "the lists in $lists name no packages"
mkdir -p -- "$1"
directory=$(cd -- "$1" && pwd -P)
state=$directory/apt
stamp=$directory/unpacked

wanted=$(printf '%s\n' "${packages[@]}")
if [[ -r $stamp && $(< "$stamp") == "$wanted" ]]; then
    exit 0
fi

mkdir -p -- "$state/lists/partial" "$state/cache/archives/partial"
: > "$state/status"
cat > "$state/apt.conf" << END
APT::Architecture "arm64";
APT::Architectures { "arm64"; };
APT::Sandbox::User "root";
Acquire::Languages "none";
Dir::State "$state";
Dir::State::Lists "$state/lists";
Dir::State::status "$state/status";
Dir::Cache "$state/cache";
END
export APT_CONFIG=$state/apt.conf
# Another repository of this machine may have nothing for arm64: what counts is whether the packages are found.
apt-get -q update < /dev/null || true
apt-get -q -y install --download-only --no-install-recommends "${packages[@]}" < /dev/null ||
    die "the arm64 packages could not be fetched"

rm -rf -- "$directory/root" "$stamp"
mkdir -- "$directory/root"
for package in "$state"/cache/archives/*.deb; do
    dpkg -x "$package" "$directory/root"
done
# Links of libraries that name their target from the machine's root lead out of the folder.
find "$directory/root" -type l -lname '/*' -print0 | while IFS= read -r -d '' link; do
    target=$directory/root$(readlink -- "$link")
    [[ ! -e $target ]] || ln -sfnr -- "$target" "$link"
done
rm -rf -- "$state/cache/archives" "$state/lists"
printf '%s\n' "$wanted" > "$stamp"
