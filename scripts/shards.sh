# Functions for scripts that run 1000 macro files in 20 shards and check the merged results. Source it after lib.sh.
# shellcheck shell=bash

shard_packages=("${build_packages[@]}" libgtest-dev librapidcheck-dev)
shard_count=20
macro_count=1000
# Three macro files fail, in different shards: two crash, and one hangs until its time limit.
crashing=(0137.macro 0612.macro)
hanging=0404.macro

# build_shards BUILD: builds the runner and the add-ons of the macro files. Sets `runner` and `add_ons`.
build_shards() {
    begin "Build the runner and three add-ons"
    logged cmake --preset release -B "$1"
    logged cmake --build "$1" --parallel "$jobs" \
        --target vexa-standin e2e-addon-one e2e-addon-ending e2e-addon-hanging
    runner=$(realpath -- "$1/runner/vexa-standin")
    add_ons=()
    local name
    for name in one ending hanging; do
        add_ons+=(--addon "$(realpath -- "$1/tests/e2e/addons/e2e-addon-$name.so")")
    done
}

# make_shards FOLDER: enters a new folder with macro files and their list macros.txt.
make_shards() {
    begin "Write $macro_count macro files"
    mkdir -p -- "$1"
    cd -- "$1"
    local i name
    mkdir -p macros results coverage log
    for ((i = 1; i <= macro_count; ++i)); do
        printf -v name '%04d.macro' "$i"
        printf 'ONE ECHO %s\nONE SLEEP 50\n' "$name" >"macros/$name"
    done
    for name in "${crashing[@]}"; do echo 'ENDING segv' >"macros/$name"; done
    echo 'HANGING HANG' >"macros/$hanging"
    find macros -name '*.macro' | sort >macros.txt
    echo "${#crashing[@]} of them crash, and 1 hangs."
}

# expect WHAT EXPECTED ACTUAL: ends the script if the two texts differ.
expect() {
    [[ $2 == "$3" ]] || fail "$1: expected
$2
but got
$3"
    printf 'checked: %s\n' "$1"
}

# check_shards: merges the results of the current folder and checks that nothing is lost and nothing is there twice.
check_shards() {
    local status=0 summary expected
    begin "Merge the results"
    summary=$("$runner" results results/*.jsonl coverage/*.json --list macros.txt \
        --json all.jsonl --junit results.xml --coverage all.json) || status=$?
    printf '%s\n' "$summary"

    begin "Check them"
    expect "the exit status is 5, because a macro file crashed" 5 "$status"
    expect "each macro file of the list has its result" \
        "$macro_count macro files, $macro_count results: $((macro_count - 3)) succeeded, 3 failed
0 macro files without a result, 0 with unexpected results" "$(head -n 2 <<<"$summary")"
    expected="    macros/${crashing[0]}: an add-on ended its process
    macros/$hanging: a command did not return
    macros/${crashing[1]}: an add-on ended its process"
    expect "the summary names the three that failed" "$expected" "$(sed -n 's/ (.*//; /^    /p' <<<"$summary")"
    expect "the results files, read without the runner, have each macro file once" "$(sort macros.txt)" \
        "$(sed -nE 's/^\{"macroFile":"([^"]*)".*/\1/p' results/*.jsonl | sort)"
    expect "the merged file has the same lines" "$(cat results/*.jsonl | sort | sha256sum)" \
        "$(sort all.jsonl | sha256sum)"
    expect "the JUnit report has a test case for each" "$macro_count" "$(grep -c '<testcase' results.xml)"
}
