# shellcheck shell=bash
# The checks of ./corvel lint, which sources this file. Each prints what it found; all are run, and the
# last line tells how many had something to say.
#
# Uses from ./corvel: $root, $jobs, $given, $files (relative to the root), say, and tools/building.sh.

lint()
{
    local failed=0 check
    for check in lintLayout lintRepository lintScripts lintCppcheck lintClangTidy; do
        "$check" || ((++failed))
    done
    if ((failed)); then
        die "$failed of 5 checks found something"
    fi
    say "nothing found in ${#files[@]} files"
}

lintLayout()
{
    say "layout"
    needTool clang-format clang-format
    checkLayout "${files[@]}"
}

lintRepository()
{
    say "the repository's rules"
    needTool python3 python3
    python3 "$root/tools/check_repository.py" "$root"
}

lintScripts()
{
    say "shell scripts"
    needTool shellcheck shellcheck
    (cd -- "$root" && shellcheck --external-sources --check-sourced corvel .ci/run)
}

lintCppcheck()
{
    say "cppcheck"
    needTool cppcheck cppcheck
    startLog lint-cppcheck
    local file sources=()
    for file in "${files[@]}"; do
        [[ $file != *.cpp ]] || sources+=("$file")
    done
    ((${#sources[@]})) || return 0
    # Headers of packages are not looked for: cppcheck is made to do without. What it calls style is
    # clang-tidy's business here.
    (cd -- "$root" && cppcheck --quiet --std=c++20 --language=c++ --library=googletest --enable=warning,performance,portability \
        --inline-suppr --suppressions-list=tools/cppcheck_suppressions.txt --error-exitcode=1 \
        -j "$jobs" -I . "${sources[@]}") < /dev/null 2>&1 | follow lint || {
        cat -- "$g_log"
        return 1
    }
}

# Clang's own warnings are among the findings, so this shows too whether the sources are clean with it.
lintClangTidy()
{
    say "clang-tidy"
    needTool clang-tidy clang-tidy
    needTool clang++ clang
    needTool run-clang-tidy clang-tidy
    lockBuild lint
    configure lint window bench
    unlockBuild
    startLog lint-clang-tidy
    local file line patterns=()
    for file in "${given[@]+"${files[@]}"}"; do
        [[ $file != *.cpp ]] || patterns+=("/${file//[^[:alnum:]\/_]/.}\$")
    done
    ((${#given[@]} == 0 || ${#patterns[@]})) || return 0
    run-clang-tidy -quiet -p "$root/build/lint" -j "$jobs" "${patterns[@]}" < /dev/null 2>&1 | follow lint && return 0
    # A finding in a header comes back with each file that includes it; colours come on a pipe too.
    sed 's/\x1b\[[0-9;]*m//g' "$g_log" | grep -E '(warning|error): ' | while IFS= read -r line; do
        printf '%s\n' "${line#"$root"/}"
    done | LC_ALL=C sort -u | head -n 200
    say "clang-tidy's output is in $g_log"
    return 1
}
