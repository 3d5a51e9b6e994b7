# shellcheck shell=bash
# Configuring and building for ./corvel, which sources this file: only what changed is done again, what
# the tools print goes to build/log/, and a failure is shown by its errors.
#
# Uses from ./corvel: $root, $logs, $jobs, say, die.

g_log=""          # the log being written; the last one once a step has ended
g_diskFull=no     # whether any step since the start has met a full disk

# Starts build/log/NAME.log.
startLog()
{
    g_log=$logs/$1.log
    if ! { mkdir -p -- "$logs" && : > "$g_log"; } 2> /dev/null; then
        die "cannot write to $logs: $(whyNotWritable)"
    fi
}

whyNotWritable()
{
    local place=$root
    [[ -d $logs ]] && place=$logs
    if [[ ! -w $place ]]; then
        printf 'no permission'
    elif (($(freeMegabytes "$root") < 1)); then
        printf 'the disk is full'
    else
        printf 'is something else in its place?'
    fi
}

freeMegabytes()
{
    local kilobytes
    kilobytes=$(df --output=avail -k -- "$1" 2> /dev/null | tail -n 1) || kilobytes=
    kilobytes=${kilobytes//[[:space:]]/}
    printf '%s' "$((${kilobytes:-999999999} / 1024))"
}

# Copies standard input to the log, and tells now and then how far a step has come: on a terminal in one
# line that is written over, else a line each half minute. $1: packages, configure, build or test. It
# keeps its findings in g_ variables, so it has to be the last command of a pipeline (lastpipe is set).
follow()
{
    local kind=$1 line state="" shown="" next=$((SECONDS + 30)) settled=0
    exec 8>> "$g_log"
    while IFS= read -r line || [[ -n $line ]]; do
        { printf '%s\n' "$line" >&8; } 2> /dev/null || g_diskFull=yes
        case $line in
            *"No space left on device"* | *"Disk quota exceeded"* | *"enough free space in"*)
                g_diskFull=yes
                ;;
        esac
        case $kind in
            packages)
                [[ $line == "Setting up "* ]] && state="$((++settled)) packages set up"
                [[ $line == Get:* && $settled == 0 ]] && state="fetching ${line#* * * }"
                [[ $line == "Unpacking "* && $settled == 0 ]] && state="unpacking"
                ;;
            build)
                [[ $line =~ ^\[([0-9]+)/([0-9]+)\] ]] && state="built ${BASH_REMATCH[1]} of ${BASH_REMATCH[2]}"
                ;;
            test)
                [[ $line =~ ^\ *([0-9]+)/([0-9]+)\ Test ]] && state="ran ${BASH_REMATCH[1]} of ${BASH_REMATCH[2]}"
                ;;
        esac
        if [[ $state == "$shown" ]]; then
            continue
        elif [[ -t 2 ]]; then
            printf '\r\033[K  %s' "${state:0:70}" >&2
            shown=$state
        elif ((SECONDS >= next)); then
            printf '  %s\n' "$state" >&2
            shown=$state
            next=$((SECONDS + 30))
        fi
    done
    exec 8>&-
    [[ ! -t 2 || -z $shown ]] || printf '\r\033[K' >&2
}

# Ends the script after a failed step: its errors from the log, then one line. $1: what failed.
# The log may be long; the first errors are the ones that tell.
failStep()
{
    [[ $g_diskFull == no && $(freeMegabytes "$root") -ge 1 && $(freeMegabytes "${TMPDIR:-/tmp}") -ge 1 ]] ||
        die "$1: the disk is full"
    awk '
        shown >= 40 { exit }
        /(^|[: ])(fatal )?error( [A-Z]+[0-9]*)?:|CMake Error|internal compiler error|^ninja: error/ { rest = 4 }
        /undefined reference to|multiple definition of|cannot find -l|^Killed|Out of memory/ { rest = 4 }
        /^\[[0-9]+\/[0-9]+\]|^FAILED:/ || length($0) >= 1000 { next }
        rest > 0 { print substr($0, 1, 240); --rest; ++shown }
    ' "$g_log" >&2
    die "$1; all of its output is in $g_log"
}

# A tool that a package in packages/ brings. $1: the command, $2: the package.
needTool()
{
    command -v "$1" > /dev/null || die "$1 is not found in PATH, though Debian's package $2 is installed"
}

# The path of ccache, or nothing: it saves time where it is there and has a place to keep what it saves.
usableCcache()
{
    local place
    command -v ccache > /dev/null && place=$(ccache --get-config cache_dir 2> /dev/null) || return 0
    if mkdir -p -- "$place/tmp" 2> /dev/null && [[ -w $place && -w $place/tmp ]]; then
        command -v ccache
    fi
}

# Configures build/NAME from the preset of that name, if that was not done yet in the same way.
# Further arguments: features (window) to switch on as CORVEL_WINDOW; features once on stay on.
configure()
{
    local name=$1
    shift
    local directory=$root/build/$name stamp=$root/build/$name/corvel.stamp
    needTool cmake cmake
    needTool ninja ninja-build
    needTool g++ g++

    local feature launcher place="" basis="" features="" wanted options=()
    launcher=$(usableCcache)
    wanted=$( (
        printf '%s\n' "$launcher"
        g++ -dumpfullversion
        cat -- "$root/CMakePresets.json" "$root"/packages/*.txt
    ) 2>&1 | cksum)
    if [[ -r $stamp ]]; then
        { IFS= read -r place && IFS= read -r basis && IFS= read -r features; } < "$stamp"
    elif [[ -e $directory/CMakeCache.txt ]]; then
        # Configured by hand: every path in it is checked by CMake itself.
        place=$root
    fi

    local sufficient=yes
    for feature in "$@"; do
        [[ " $features " == *" $feature "* ]] || { sufficient=no; features+=" $feature"; }
        options+=("-DCORVEL_${feature^^}=ON")
    done
    if [[ $sufficient == yes && $place == "$root" && $basis == "$wanted" && -e $directory/build.ninja ]]; then
        return 0
    fi

    # A folder that was moved or copied holds paths of its old place throughout.
    [[ -z $place || $place == "$root" ]] || rm -rf -- "$directory"
    if [[ ! -e $directory/build.ninja ]]; then
        local free
        free=$(freeMegabytes "$root")
        ((free >= kMegabytesNeeded)) ||
            die "$free MB are free on the disk of $root; building takes about $kMegabytesNeeded MB"
    fi

    say "configuring build/$name"
    startLog "configure-$name"
    local -a command=(cmake -S "$root" -B "$directory" --preset "$name"
        "-DCMAKE_CXX_COMPILER_LAUNCHER=$launcher" "${options[@]}")
    # What CMake remembers of an earlier run may be what is in its way: once more without.
    local cached=no
    [[ -e $directory/CMakeCache.txt ]] && cached=yes
    if ! "${command[@]}" < /dev/null 2>&1 | follow configure; then
        [[ $cached == yes && $g_diskFull == no ]] || failStep "configuring build/$name failed"
        startLog "configure-$name"
        "${command[@]}" --fresh < /dev/null 2>&1 | follow configure || failStep "configuring build/$name failed"
    fi
    { printf '%s\n' "$root" "$wanted" "$features" > "$stamp"; } 2> /dev/null ||
        die "cannot write $stamp: $(whyNotWritable)"
}

# Builds the targets given (none: all) in build/NAME.
build()
{
    local name=$1 began=$SECONDS
    shift
    startLog "build-$name"
    say "building build/$name"
    ninja -C "$root/build/$name" -j "$jobs" "$@" < /dev/null 2>&1 | follow build || failStep "building failed"
    ((SECONDS - began < 10)) || say "built in $((SECONDS - began)) s"
}

# Held while build/NAME is configured and built: two builds in one folder destroy each other's work.
lockBuild()
{
    if ! { mkdir -p -- "$root/build" && : >> "$root/build/$1.lock"; } 2> /dev/null; then
        die "cannot write to $root/build: $(whyNotWritable)"
    fi
    exec 9>> "$root/build/$1.lock"
    flock -n 9 && return
    say "waiting for another ./corvel that is building build/$1"
    flock 9
}
unlockBuild() { exec 9>&-; }
