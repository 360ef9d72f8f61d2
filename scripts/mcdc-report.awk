# Reads the annotated sources that `llvm-cov show -show-mcdc` writes, and reports which conditions the tests show to
# decide alone: in two evaluations only this condition differs, and the outcome differs, too. It ignores a condition
# that is not combined with another; its branches are measured. Exits with status 1 if a group misses its share, or if
# an exclusion fits no place.

BEGIN {
    areDecisions = 1
    defineGroup("parsers", "^(library/(macro|processor)|hostapi)/|^hostlibs/(Scanner|toolbox/Set)\\.cpp", 95)
    defineGroup("state", "^(contract|standin/src)/", 95)
}

/Condition C[0-9]+ --> \([0-9]+:[0-9]+\)/ {
    split($0, part, /[^0-9]+/)  # nothing, the condition, line, column
    place = file ":" part[3] ":" part[4]
    placeOf[part[2]] = place
    if (!(place in fileOf)) ++conditions[groupOf(file)]
    addPlace(place, file, part[3], part[4])
}

# Ignores a condition whose outcome the compiler knows, because it cannot decide.
/C[0-9]+-Pair: / {
    match($0, /C[0-9]+-Pair/)
    place = placeOf[substr($0, RSTART + 1, RLENGTH - 6)]
    if (/: covered/) reached[place] = 1
    if (/: constant folded/) isFolded[place] = 1
}

END {
    readExclusions()
    for (i = 1; i <= places; ++i) {
        place = order[i]
        group = groupOf(fileOf[place])
        if (place in isFolded) --conditions[group]
        if (place in isFolded || place in reached) continue
        ++missed[group]
        excluded[group] += miss(place, "never decides alone")
    }
    for (i = 1; i <= groupCount; ++i) {
        group = groups[i]
        if (!conditions[group]) {
            complain(group ": nothing was measured")
            continue
        }
        deciding = conditions[group] - missed[group]
        asked = conditions[group] - excluded[group]
        printf "%-12s conditions that were seen to decide alone %s, excluded %d\n", group, percent(deciding, asked),
            excluded[group]
        for (j = 1; j <= missingCount[group]; ++j) print "  " missing[group, j]
        if (100 * deciding < barOf[group] * asked) complain("These are too few: " barOf[group] " % are asked for.")
    }
    complainOfExclusions()
    exit failed
}
