# shellcheck shell=bash
# ./corvel test, which sources this file: builds, has ctest run the test programs, shows what failed, and
# counts the tests inside the programs.
#
# Uses from ./corvel: $root, $jobs, $mayInstall, say, die, dieUsage, takeValue, unknownArgument, tools/building.sh.

readonly kTestSeconds=3600   # for a test program that hangs; one whose tests run on an emulated processor takes minutes

runTests()
{
    local name=release wanted="" clients=no value
    local -a packages=(build test) folders
    while (($#)); do
        case $1 in
            --sanitize) name=sanitize ;;
            --device) name=device packages+=(package device_test) ;;
            --clients) clients=yes packages+=(clients) ;;
            --filter) takeValue "$1" "$@" && wanted=$value && shift ;;
            --every)
                takeValue "$1" "$@" && shift
                [[ $value =~ ^[1-9][0-9]{0,5}$ ]] || dieUsage "--every takes a number, as in --every 20"
                export CORVEL_TEST_EVERY=$value
                ;;
            --no-install) mayInstall=no ;;
            *) unknownArgument test "$1" ;;
        esac
        shift
    done
    needPackages "${packages[@]}"
    folders=("$name")
    if [[ $name == device ]]; then
        buildDevice
        folders+=(device-phone)
    else
        lockBuild "$name"
        configure "$name"
        build "$name"
        unlockBuild
    fi
    needTool ctest cmake
    [[ $clients == no ]] || installClients

    # The runtime keeps classes, selectors and constant texts for ever, so leaks are no finding here.
    export ASAN_OPTIONS=${ASAN_OPTIONS-detect_leaks=0:strict_string_checks=1:detect_stack_use_after_return=1}
    export UBSAN_OPTIONS=${UBSAN_OPTIONS-print_stacktrace=1:halt_on_error=1}

    local -a options=(-j "$jobs" --verbose --no-tests=error --timeout "$kTestSeconds")
    local casesOnly=no folder
    [[ $clients == no ]] || options+=(-C clients -R '^clients[.]')
    if [[ -n $wanted ]]; then
        local pattern=${wanted//[^[:alnum:]_*]/.}
        pattern=${pattern//\*/.*}
        # Those folders that have a test of the name. In none: it is that of a suite or a case; ours in Python are no suites.
        local -a having=()
        for folder in "${folders[@]}"; do
            if ctest --test-dir "$root/build/$folder" -N -R "$pattern" 2>&1 | grep -qE '^ *Test +#[0-9]+:'; then
                having+=("$folder")
            fi
        done
        if ((${#having[@]})); then
            folders=("${having[@]}")
            options+=(-R "$pattern")
        else
            export GTEST_FILTER="*$wanted*"
            options+=(-E '^(script|device|clients|console)[.]')
            folders=("${folders[-1]}")
            casesOnly=yes
        fi
    fi

    say "running the tests"
    startLog "test-$name"
    local status=0
    {
        for folder in "${folders[@]}"; do
            ctest --test-dir "$root/build/$folder" "${options[@]}" < /dev/null 2>&1 || status=1
        done
        ((status == 0))
    } | follow test || status=1
    summarizeTests "$status" "$casesOnly" "$wanted"
}

# The iPhone's package, and the phone that runs its library: the same programs as the desktop's, which are built beside them.
# The phone's libraries for arm64 are Debian's, unpacked in build/sysroot.
buildDevice()
{
    local place
    lockBuild device
    configure device
    build device
    unlockBuild

    lockBuild sysroot
    startLog sysroot
    say "unpacking libraries for arm64, where they are missing"
    "$root/device/sysroot.sh" "$root/build/sysroot" < /dev/null 2>&1 | follow packages ||
        failStep "unpacking libraries for arm64 failed"
    unlockBuild

    for place in release device-phone; do
        lockBuild "$place"
        configure "$place"
        if [[ $place == release ]]; then
            build release stories
        else
            build device-phone stories apple_library_test macho_test
        fi
        unlockBuild
    done
    # What an earlier run left is no result of this one.
    rm -rf -- "$root/build/device-phone/stories"
}

# The clients of npm, in build/clients, where the tests look for them.
installClients()
{
    local folder=$root/build/clients
    if ! { command -v node && command -v npm; } > /dev/null; then
        die "the clients need Node 20.19 or later and npm, which are not among Debian 12's packages"
    fi
    if ! node -e 'const [a, b] = process.versions.node.split("."); process.exit(a > 20 || (a == 20 && b >= 19) ? 0 : 1)'; then
        die "the clients need Node 20.19 or later, and this is $(node --version)"
    fi
    startLog clients
    mkdir -p -- "$folder" || die "cannot write to $folder"
    cp -- "$root"/tests/clients/npm/* "$folder/" || die "cannot write to $folder"
    say "installing the clients"
    (cd -- "$folder" && npm install --no-audit --no-fund --ignore-scripts --no-package-lock) < /dev/null >> "$g_log" 2>&1 ||
        die "npm could not install the clients (see $g_log)"
}

# Prints failures and the line "N passed, N failed" from ctest's log. $1: ctest's status; $2: whether
# programs without GoogleTest's marks are left out of the count; $3: the filter, for the message.
summarizeTests()
{
    local passed failed skipped line
    read -r passed failed skipped < <(awk -v casesOnly="$2" -v printTo=/dev/stderr \
        -f "$root/tools/read_test_log.awk" "$g_log")
    if (($1 == 0 && passed + failed + skipped == 0)); then
        die "no test has a name like \"$3\""
    elif ((passed + failed + skipped == 0)); then
        line=$(grep -m1 -iE 'no tests were found|error' "$g_log")
        die "no test was run: ${line:-ctest failed} (see $g_log)"
    fi
    (($1 == 0)) || say "all that the tests printed is in $g_log"
    line="$passed passed, $failed failed"
    ((skipped == 0)) || line+=", $skipped skipped"
    printf '%s\n' "$line"
    (($1 == 0 && failed == 0))
}
