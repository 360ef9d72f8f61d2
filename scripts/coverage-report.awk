# Reads the annotated sources that `llvm-cov show -show-branches=count` writes, and reports by group of folders what was
# reached, and what was not. A branch is one outcome of one condition; branches of a template count once, for all that
# it was made for. Ends with status 1 when a group misses its bar, or an exclusion does not fit.
#
#   root         the project's folder, as the paths begin
#   exclusions   the file of what cannot be reached
#   unmeasured   a group that is left out

function defineGroup(name, pattern, bar) {
    groups[++groupCount] = name
    patternOf[name] = pattern
    barOf[name] = bar
}

function groupOf(file,   i) {
    for (i = 1; i <= groupCount; ++i) {
        if (file ~ patternOf[groups[i]]) return groups[i]
    }
    return ""
}

function trimmed(text) {
    gsub(/^[ \t]+|[ \t]+$/, "", text)
    return text
}

function percent(part, all) { return sprintf("%.2f %% (%d of %d)", int(10000 * part / all) / 100, part, all) }

function complain(message) {
    print "  " message
    failed = 1
}

# Blocks of lines: the file, the line's text, what of it is excluded, and the reason.
function readExclusions(   line, part) {
    while ((getline line < exclusions) > 0) {
        if (line ~ /^#/) continue
        if (line == "") part = 0
        else if (++part == 1) excludedFile[++exclusionCount] = line
        else if (part == 2) excludedText[exclusionCount] = trimmed(line)
        else if (part == 3) excludedWhat[exclusionCount] = trimmed(line)
        else excludedReason[exclusionCount] = line
    }
}

# Whether exclusion `i` is about this outcome at `place`: "never run", or a condition and its outcome.
function excludes(i, place, outcome,   condition, length_) {
    if (used[i] || excludedFile[i] != fileOf[place] || excludedText[i] != trimmed(textOf[place])) return 0
    if (outcome == "never run") return excludedWhat[i] == outcome
    length_ = length(excludedWhat[i]) - length(": " outcome)
    condition = substr(excludedWhat[i], 1, length_)
    if (length_ < 1 || substr(excludedWhat[i], length_ + 1) != ": " outcome) return 0
    return substr(textOf[place], columnOf[place], length_) == condition
}

# Takes what was not reached. Returns whether it is excluded.
function miss(place, outcome,   i, group) {
    for (i = 1; i <= exclusionCount; ++i) {
        if (!excludes(i, place, outcome)) continue
        used[i] = 1
        return 1
    }
    group = groupOf(fileOf[place])
    missing[group, ++missingCount[group]] = place ": " outcome ": " trimmed(substr(textOf[place], columnOf[place]))
    return 0
}

function addPlace(place, file, line, column) {
    if (place in fileOf) return
    order[++places] = place
    fileOf[place] = file
    textOf[place] = source[file, line]
    columnOf[place] = column
}

function addOutcome(place, outcome, count) {
    if (count != "0") reached[place, outcome] = 1
}

BEGIN {
    defineGroup("library", "^(macro|processor|host|text|textfile|filesystem|include)/", 100)
    defineGroup("hostlibs", "^(hostlibs|hostapi)/", 100)
    defineGroup("standin/src", "^standin/(src|include)/", 95)
    defineGroup("standin/app", "^standin/app/", 0)
}

/^\/.*:$/ {
    file = substr($0, length(root) + 2, length($0) - length(root) - 2)
    next
}

/^ *[0-9]+\|/ {
    rest = substr($0, index($0, "|") + 1)
    count = trimmed(substr(rest, 1, index(rest, "|") - 1))
    line = $0 + 0
    source[file, line] = substr(rest, index(rest, "|") + 1)
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
    for (i = 1; i <= exclusionCount; ++i) {
        if (unmeasured != "" && groupOf(excludedFile[i]) == unmeasured) continue
        if (excludedReason[i] == "") complain(exclusions ": without a reason: " excludedText[i])
        if (!used[i])
            complain(exclusions ": reached, or gone: " excludedFile[i] ": " excludedText[i] ": " excludedWhat[i])
    }
    exit failed
}
