# Reads the log of `ctest --verbose`: each line of test program N starts with "N: ", and a line
# " 3/12 Test  #N: NAME ....   Passed  0.1 sec" or "...***Failed" ends it. Inside, GoogleTest's marks and
# unittest's last lines are known; any other program counts as one test.
# Prints at most 40 lines a failure and 200 in all to `printTo`; at the end "passed failed skipped".
#
# Variables: casesOnly (yes: programs without marks don't count), printTo (a file name).

function show(text) { if (++shown <= 200) print substr(text, 1, 300) > printTo }
function showLines(program,   first, i) {
    first = kept[program] > 40 ? kept[program] - 39 : 1
    for (i = first; i <= kept[program]; ++i) show(lines[program, i])
}
match($0, /^[0-9]+: /) {
    program = substr($0, 1, RLENGTH - 2)
    text = substr($0, RLENGTH + 1)
    if (text ~ /^\[ RUN      \] /) { kept[program] = 0; open[program] = 1 }
    lines[program, ++kept[program]] = text
    if (text ~ /^\[==========\] Running /) cases[program] = 1
    else if (text ~ /^\[       OK \] .*\([0-9]+ ms\)$/) { ++good[program]; open[program] = 0 }
    else if (text ~ /^\[  SKIPPED \] .*\([0-9]+ ms\)$/) { ++left[program]; open[program] = 0 }
    else if (text ~ /^\[  FAILED  \] .*\([0-9]+ ms\)$/) {
        if (open[program]) { showLines(program); ++bad[program] }
        open[program] = 0
    }
    else if (text ~ /^Ran [0-9]+ tests? in /) { split(text, word, " "); unit[program] = word[2] }
    else if (text ~ /^(OK|FAILED)( \(.*\))?$/ && unit[program] != "") {
        wrong = 0
        away = 0
        count = split(text, word, /[ (),]+/)
        for (i = 1; i <= count; ++i) {
            split(word[i], pair, "=")
            if (pair[1] == "failures" || pair[1] == "errors") wrong += pair[2]
            if (pair[1] == "skipped") away += pair[2]
        }
        if (text ~ /^FAILED/) showLines(program)
        bad[program] = wrong
        left[program] = away
        good[program] = unit[program] - wrong - away
    }
    next
}
match($0, /^ *[0-9]+\/[0-9]+ Test +#[0-9]+: /) {
    program = substr($0, 1, RLENGTH - 2)
    sub(/.*#/, "", program)
    if ($0 ~ /\*\*\*(Skipped|Not Run \(Disabled\))/) { if (!casesWanted()) ++skipped; next }
    fine = $0 ~ /   Passed /
    # A failure that no mark told of: a crash, a time-out, a program that is missing.
    if (!fine && !bad[program]) { show($0); showLines(program); bad[program] = 1 }
    if (fine && !cases[program] && unit[program] == "" && !casesWanted()) good[program] = 1
    passed += good[program]
    failed += bad[program]
    skipped += left[program]
    # The log may go on with another run of ctest, which counts from 1 again.
    good[program] = bad[program] = left[program] = kept[program] = open[program] = 0
    delete cases[program]
    delete unit[program]
}
function casesWanted() { return casesOnly == "yes" }
END {
    if (shown > 200) print "... and " shown - 200 " lines more" > printTo
    printf "%d %d %d\n", passed, failed, skipped
}
