# shellcheck shell=bash
# Debian packages for ./corvel, which sources this file: what a job needs is installed by name, without
# a question, and nothing at all is run where everything is there already.
#
# Uses from ./corvel: $root, $logs, $mayInstall, say, die, follow.

# The names in packages/NAME.txt of each NAME given, one a line.
packageNames()
{
    local list line
    for list in "$@"; do
        while IFS= read -r line || [[ -n $line ]]; do
            line=${line%%#*}
            line=${line//[[:space:]]/}
            [[ -z $line ]] || printf '%s\n' "$line"
        done < "$root/packages/$list.txt"
    done
}

# Those of the packages given that are not installed for this machine's own architecture, one a line.
missingPackages()
{
    local native name architecture status
    local -A installed=()
    native=$(dpkg --print-architecture 2> /dev/null)
    while IFS='|' read -r name architecture status; do
        [[ $status == installed && ($architecture == "$native" || $architecture == all) ]] && installed[$name]=1
    done < <(dpkg-query --show --showformat '${Package}|${Architecture}|${db:Status-Status}\n' "$@" 2> /dev/null)
    for name in "$@"; do
        [[ -n ${installed[$name]-} ]] || printf '%s\n' "$name"
    done
}

# Installs what is missing of the lists named (`needPackages build test`). Ends the script with one line
# when that is not possible.
needPackages()
{
    if ! { command -v dpkg-query && command -v dpkg; } > /dev/null; then
        die "there is no dpkg here: ./corvel sets itself up on Debian 12; elsewhere see packages/ and CMakePresets.json"
    fi

    local list
    local -a names missing administrator=()
    for list in "$@"; do
        [[ -r $root/packages/$list.txt ]] || die "packages/$list.txt is missing: this copy of Corvel is not complete"
    done
    mapfile -t names < <(packageNames "$@")
    mapfile -t missing < <(missingPackages "${names[@]}")
    ((${#missing[@]})) || return 0

    local byHand="apt-get install --no-install-recommends ${missing[*]}"
    [[ $mayInstall == yes ]] || die "packages are missing, and --no-install forbids to install them: $byHand"
    command -v apt-get > /dev/null || die "packages are missing, and there is no apt-get to install them: ${missing[*]}"
    if ((EUID != 0)); then
        command -v sudo > /dev/null ||
            die "packages are missing, and installing them takes root or sudo; as root: $byHand"
        # No question is asked, so a password has to have been given before.
        sudo -n true 2> /dev/null ||
            die "packages are missing, and sudo wants a password (run \"sudo -v\" first); or as root: $byHand"
        administrator=(sudo -n)
    fi
    administrator+=(env DEBIAN_FRONTEND=noninteractive NEEDRESTART_MODE=a)

    startLog packages
    say "installing the Debian packages that are missing (${#missing[@]}) and what they depend on"
    printf 'missing: %s\n' "${missing[*]}" >> "$g_log"
    # Indexes that know every name are used as they are; if they turn out to be too old, they are
    # fetched and the packages asked for once more.
    local updated=no
    if ! packagesAreKnown "${missing[@]}"; then
        updateIndexes
        updated=yes
    fi
    installPackages || {
        [[ $updated == no && $g_diskFull == no ]] && updateIndexes && installPackages
    } || die "$(whyPackagesFailed)"

    mapfile -t missing < <(missingPackages "${names[@]}")
    ((${#missing[@]} == 0)) || die "apt-get ran, but these packages are still missing: ${missing[*]} (see $g_log)"
}

packagesAreKnown()
{
    local name
    for name in "$@"; do
        apt-cache show --no-all-versions "$name" > /dev/null 2>&1 || return 1
    done
}

# $administrator and $missing come from needPackages. A failed update alone is no reason to stop: one
# repository out of several may be away that has none of our packages.
updateIndexes()
{
    "${administrator[@]}" apt-get update -q -o DPkg::Lock::Timeout=300 < /dev/null 2>&1 | follow packages || true
}

installPackages()
{
    "${administrator[@]}" apt-get install -q -y --no-install-recommends \
        -o DPkg::Lock::Timeout=300 -o Dpkg::Use-Pty=0 \
        -o Dpkg::Options::=--force-confdef -o Dpkg::Options::=--force-confold \
        "${missing[@]}" < /dev/null 2>&1 | follow packages
}

# The log's reason in a few words; its last error where it is none of the usual ones.
whyPackagesFailed()
{
    local reason
    if [[ $g_diskFull == yes ]]; then
        reason="the disk is full"
    elif reason=$(grep -m1 -oE 'Unable to locate package .*|Package .* has no installation candidate' "$g_log"); then
        reason+=" (Corvel's packages are those of Debian 12)"
    elif grep -qE 'Temporary failure resolving|Could not resolve|Could not connect|Unable to connect|Connection (failed|timed out|refused)|Network is unreachable|Failed to fetch' "$g_log"; then
        reason="the Debian mirror cannot be reached"
    elif grep -q 'dpkg was interrupted' "$g_log"; then
        reason="an earlier installation was interrupted; as root: dpkg --configure -a"
    else
        reason=$(grep -E '^(E|dpkg): ' "$g_log" | tail -n 1)
        reason=${reason:-apt-get failed}
    fi
    printf 'the packages could not be installed: %s (see %s)' "$reason" "$g_log"
}
