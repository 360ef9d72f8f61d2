# Reads the annotated sources that `llvm-cov show -show-branches=count` writes, and reports for each group of folders
# what the tests reached and what they did not. A branch is one outcome of one condition. A branch of a template counts
# once for all its instantiations. Exits with status 1 if a group misses its share, or if an exclusion fits no place.

BEGIN {
    defineGroup("library", "^library/", 100)
    defineGroup("hostlibs", "^(hostlibs|hostapi)/", 100)
    defineGroup("standin", "^(contract|standin)/", 95)
    defineGroup("runner", "^runner/", 0)
}

/^ *[0-9]+\|/ {
    if (count == "") next
    ++lines[groupOf(file)]
    if (count != "0") next
    addPlace(file ":" line, file, line, 1)
    isLine[file ":" line] = 1
    next
}

/Branch \([0-9]+:[0-9]+\): \[True: / {
    sub(/.*Branch \(/, "")
    split($0, part, /[^0-9.kMGTPEZY]+/)  # line, column, and the two counts, with letters of "True" and "False" gone
    place = file ":" part[1] ":" part[2]
    if (!(place in fileOf)) branches[groupOf(file)] += 2
    addPlace(place, file, part[1], part[2])
    match($0, /True: [^,]*/)
    addOutcome(place, "never true", substr($0, RSTART + 6, RLENGTH - 6))
    match($0, /False: [^]]*/)
    addOutcome(place, "never false", substr($0, RSTART + 7, RLENGTH - 7))
}

END {
    readExclusions()
    for (i = 1; i <= places; ++i) {
        place = order[i]
        group = groupOf(fileOf[place])
        if (place in isLine) {
            ++missedLines[group]
            excludedLines[group] += miss(place, "never run")
            continue
        }
        for (side = 0; side < 2; ++side) {
            outcome = side == 0 ? "never true" : "never false"
            if ((place, outcome) in reached) continue
            ++missedBranches[group]
            excludedBranches[group] += miss(place, outcome)
        }
    }
    for (i = 1; i <= groupCount; ++i) {
        group = groups[i]
        if (group == unmeasured) continue
        if (!lines[group] || !branches[group]) {
            print group ": nothing was measured"
            failed = 1
            continue
        }
        bar = barOf[group]
        reachedLines = lines[group] - missedLines[group]
        askedLines = lines[group] - excludedLines[group]
        reachedBranches = branches[group] - missedBranches[group]
        askedBranches = branches[group] - excludedBranches[group]
        printf "%-12s lines %s, branches %s, excluded %d lines, %d branches\n", group,
            percent(reachedLines, askedLines), percent(reachedBranches, askedBranches),
            excludedLines[group], excludedBranches[group]
        for (j = 1; j <= missingCount[group]; ++j) print "  " missing[group, j]
        if (100 * reachedLines < bar * askedLines) complain("These are too few lines: " bar " % are asked for.")
        if (100 * reachedBranches < bar * askedBranches)
            complain("These are too few branches: " bar " % are asked for.")
        if (100 * excludedBranches[group] > 2 * branches[group]) complain("More than 2 % of the branches are excluded.")
    }
    complainOfExclusions()
    exit failed
}
