# Functions that all scripts share. Source it first. It changes to the project's folder, and prints the failed step if
# the script fails.
#
# A script's help is the comment at its top.

set -Eeuo pipefail
shopt -s inherit_errexit

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd -P)
script_file=$(realpath -- "$0")
script=${script_file#"$root"/}
jobs=$(nproc)
step="starting"
log=""
cd -- "$root"

# The Debian packages that each purpose needs.
build_packages=(g++ cmake ninja-build libboost-dev libboost-filesystem-dev libcli11-dev libdtl-dev libdw-dev
    libelf-dev libreadline-dev libtomlplusplus-dev nlohmann-json3-dev)
test_packages=("${build_packages[@]}" libgtest-dev librapidcheck-dev clang gdb lldb patch pkgconf python3
    python3-jsonschema python3-yaml)
tidy_packages=("${test_packages[@]}" clang-tidy)
cppcheck_packages=("${test_packages[@]}" cppcheck)
instructions_packages=("${test_packages[@]}" valgrind)
bench_packages=("${build_packages[@]}" libbenchmark-dev libhwloc-dev python3 strace valgrind)
docs_packages=(doxygen doxygen-awesome-css mandoc python3)
abi_packages=("${build_packages[@]}" abigail-tools python3)
coverage_packages=("${test_packages[@]}" libclang-rt-14-dev llvm-14)
mcdc_packages=("${test_packages[@]}" clang-19 libclang-rt-19-dev llvm-19)
mutate_packages=("${build_packages[@]}" libgtest-dev librapidcheck-dev python3)
package_packages=("${build_packages[@]}" dpkg-dev file lintian)
fuzz_packages=("${build_packages[@]}" clang libclang-rt-14-dev)
ci_packages=("${tidy_packages[@]}" "${cppcheck_packages[@]}" "${abi_packages[@]}" "${instructions_packages[@]}"
    "${docs_packages[@]}" chromium clang-format fish git libclang-rt-14-dev llvm-14 neovim zsh)

usage() {
    sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$script_file"
}

# help_if_asked ARGUMENT...: prints the help and exits if the first argument is --help or -h.
help_if_asked() {
    if [[ ${1-} == --help || ${1-} == -h ]]; then
        usage
        exit 0
    fi
}

# bad_usage MESSAGE: prints the message and the help, and exits with status 2.
bad_usage() {
    printf '%s: %s\n\n' "$script" "$1" >&2
    usage >&2
    trap - EXIT
    exit 2
}

# fail MESSAGE: prints the message and ends the script; the current step has failed.
fail() {
    printf '%s\n' "$1" >&2
    exit 1
}

# begin STEP: prints the name of the next step. If the step fails, the error names it.
begin() {
    step=$1
    printf '\n==> %s\n' "$step"
}

# run COMMAND...: prints a command to the standard error output and runs it.
run() {
    printf '$ %s\n' "${*@Q}" | sed "s/'\([A-Za-z0-9_.,:=/@%+-]*\)'/\1/g" >&2
    "$@"
}

# logged COMMAND...: runs a command. Shows its output only if it fails.
logged() {
    mkdir -p build
    log=build/$(basename -- "$script").log
    run "$@" >"$log" 2>&1 || return  # so that a caller can ask for the result
    log=""
}

explain_failure() {
    local status=$?
    [[ $status -ne 0 ]] || return 0
    {
        printf '\n%s failed, exit status %d, at: %s\n' "$script" "$status" "$step"
        if [[ -n $log ]]; then
            printf 'The end of %s:\n\n' "$root/$log"
            tail -n 30 -- "$log"
        else
            printf 'The reason is above. You can run the lines that start with $ by hand, in %s.\n' "$root"
        fi
    } >&2
}
trap explain_failure EXIT

# is_installed PACKAGE: succeeds if the package is installed, for any architecture. dpkg-query also lists packages that
# are not installed, because other packages mention them.
is_installed() {
    [[ " $(dpkg-query --show --showformat '${db:Status-Status} ' "$1" 2>/dev/null)" == *" installed "* ]]
}

# need PACKAGE...: installs the Debian packages that are missing.
need() {
    local missing=() become_root=() package
    if ! command -v dpkg-query >/dev/null; then
        printf 'This is not Debian, so nothing is installed. The script needs the software of these Debian packages: '
        printf '%s\n' "$*"
        return 0
    fi
    for package in "$@"; do
        is_installed "$package" || missing+=("$package")
    done
    [[ ${#missing[@]} -gt 0 ]] || return 0

    begin "Install what is missing: ${missing[*]}"
    if [[ $(id -u) -ne 0 ]]; then
        become_root=(sudo)
        [[ -t 0 ]] || become_root+=(--non-interactive)
    fi
    if [[ ${#become_root[@]} -gt 0 ]] && ! command -v sudo >/dev/null; then
        install_by_hand "Only root can install packages, and sudo is not installed." "${missing[@]}"
    fi
    run "${become_root[@]}" apt-get update --quiet=2 ||
        echo "The package lists were not updated. The old ones may be good enough." >&2
    run "${become_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install --yes --quiet=2 \
        --no-install-recommends -o DPkg::Lock::Timeout=300 -o Dpkg::Use-Pty=0 "${missing[@]}" </dev/null ||
        install_by_hand "apt-get install failed." "${missing[@]}"
}

# install_by_hand REASON PACKAGE...: says how to install the packages by hand, and ends the script.
install_by_hand() {
    printf '\n%s: %s These Debian packages are missing. Install them as root, with a network:\n' "$script" "$1" >&2
    printf '    apt-get update && apt-get install --no-install-recommends %s\n' "${*:2}" >&2
    printf 'and run %s again.\n' "$script" >&2
    trap - EXIT
    exit 1
}

# configure_analysis BUILD OPTION...: configures the build tree BUILD for tools that read the compile commands. It uses no
# precompiled headers, because only the compiler that wrote them can read them.
configure_analysis() {
    begin "Configure $1"
    run cmake --preset debug -B "$1" -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON "${@:2}" --log-level=WARNING
}

# sources_but_tests BUILD REGEX: prints the C++ sources in the build tree BUILD whose paths match, except tests and
# samples. In a unity build these are files of the build tree, which include the sources.
sources_but_tests() {
    sed -n "s|^ *\"file\": \"$root/\(.*\)\",*\$|\1|p" "$1/compile_commands.json" | sort -u |
        grep -vP "^(docs|tests)/|^build/(?!${1#build/}/(?!docs/|tests/).*/Unity/)" | grep -E -- "$2"
}

# project_version: prints the version, for example 1.0.0.
project_version() {
    sed -nE 's/^project\(.* VERSION ([0-9.]+).*/\1/p' CMakeLists.txt
}

# sources_state: prints the differences between the sources and the last commit, except build/.
sources_state() {
    git status --porcelain --ignored 2>/dev/null | grep -v '^!! build/$' || true
}

# copy_sources FOLDER: makes FOLDER a copy of the sources. Files keep their times, so that a later build there compiles
# only what has changed. Keeps FOLDER/build.
copy_sources() {
    mkdir -p -- "$1"
    find "$1" -mindepth 1 -maxdepth 1 ! -name build -exec rm -rf -- {} +
    tar --create --exclude=./build --exclude=./.git . | tar --extract --directory="$1"
}

# source_date: prints the time of the last commit in seconds since 1970, for SOURCE_DATE_EPOCH. Without git it is the time
# of the change log.
source_date() {
    git log -1 --format=%ct 2>/dev/null || stat --format=%Y CHANGELOG.md
}

# temporary_files_in FOLDER: makes programs write temporary files to FOLDER. Every user may write there, because the
# tests that must not run as root run as nobody.
temporary_files_in() {
    export TMPDIR=$root/$1
    mkdir -p "$TMPDIR"
    chmod 1777 "$TMPDIR"
}
