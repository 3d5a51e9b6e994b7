# shellcheck shell=bash
# ./corvel test, which sources this file: builds, has ctest run the test programs, shows what failed, and
# counts the tests inside the programs.
#
# Uses from ./corvel: $root, $jobs, $mayInstall, say, die, takeValue, unknownArgument, tools/building.sh.

runTests()
{
    local name=release wanted="" value
    local -a packages=(build test)
    while (($#)); do
        case $1 in
            --sanitize) name=sanitize ;;
            --device) name=device packages+=(package) ;;
            --filter) takeValue "$1" "$@" && wanted=$value && shift ;;
            --no-install) mayInstall=no ;;
            *) unknownArgument test "$1" ;;
        esac
        shift
    done
    needPackages "${packages[@]}"
    lockBuild "$name"
    configure "$name"
    build "$name"
    unlockBuild
    needTool ctest cmake

    # The runtime keeps classes, selectors and constant texts for ever, so leaks are no finding here.
    export ASAN_OPTIONS=${ASAN_OPTIONS-detect_leaks=0:strict_string_checks=1:detect_stack_use_after_return=1}
    export UBSAN_OPTIONS=${UBSAN_OPTIONS-print_stacktrace=1:halt_on_error=1}

    local -a command=(ctest --test-dir "$root/build/$name" -j "$jobs" --verbose --no-tests=error --timeout 900)
    local casesOnly=no
    if [[ -n $wanted ]]; then
        local pattern=${wanted//[^[:alnum:]_*]/.}
        pattern=${pattern//\*/.*}
        if ctest --test-dir "$root/build/$name" -N -R "$pattern" 2>&1 | grep -qE '^ *Test +#[0-9]+:'; then
            command+=(-R "$pattern")
        else
            # No test program has the name, so it is that of a suite or a case; ours in Python are no suites.
            export GTEST_FILTER="*$wanted*"
            command+=(-E '^script[.]')
            casesOnly=yes
        fi
    fi

    say "running the tests"
    startLog "test-$name"
    local status=0
    "${command[@]}" < /dev/null 2>&1 | follow test || status=1
    summarizeTests "$status" "$casesOnly" "$wanted"
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
