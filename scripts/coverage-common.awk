# Shared by the reports of scripts/coverage: groups of folders, each with its required share; the counts of each place;
# and the list of exclusions. Load it before the file of the report, which sets `areDecisions` if it reports conditions
# that decide alone.
#
#   root         the project's folder, with which the paths start
#   exclusions   the file that lists the places that no test can reach
#   unmeasured   a group to omit

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

# Reads blocks of lines: the file, the text of the line, the excluded outcomes, and the reason.
function readExclusions(   line, part) {
    while ((getline line < exclusions) > 0) {
        if (line ~ /^#/) continue
        if (line == "") part = 0
        else if (++part == 1) excludedFile[++exclusionCount] = line
        else if (part == 2) excludedText[exclusionCount] = trimmed(line)
        else if (part == 3) {
            excludedWhat[exclusionCount] = trimmed(line)
            ofAnotherReport[exclusionCount] = (line ~ /: never decides alone$/) != areDecisions
        }
        else excludedReason[exclusionCount] = line
    }
}

# Returns true if exclusion `i` covers this outcome at `place`: "never run", or a condition and its outcome.
function excludes(i, place, outcome,   condition, length_) {
    if (used[i] || ofAnotherReport[i]) return 0
    if (excludedFile[i] != fileOf[place] || excludedText[i] != trimmed(textOf[place])) return 0
    if (outcome == "never run") return excludedWhat[i] == outcome
    length_ = length(excludedWhat[i]) - length(": " outcome)
    condition = substr(excludedWhat[i], 1, length_)
    if (length_ < 1 || substr(excludedWhat[i], length_ + 1) != ": " outcome) return 0
    return substr(textOf[place], columnOf[place], length_) == condition
}

# Handles a place that no test reached. Returns true if it is excluded.
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

function complainOfExclusions(   i) {
    for (i = 1; i <= exclusionCount; ++i) {
        if (ofAnotherReport[i] || (unmeasured != "" && groupOf(excludedFile[i]) == unmeasured)) continue
        if (excludedReason[i] == "") complain(exclusions ": without a reason: " excludedText[i])
        if (!used[i])
            complain(exclusions ": reached, or gone: " excludedFile[i] ": " excludedText[i] ": " excludedWhat[i])
    }
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
}
