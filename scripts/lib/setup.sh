# shellcheck shell=bash
# Set-up that the scripts share: packages and builds. Source it from the repository's root with "set -euo pipefail".
# Quiet about what is there; what fails is said in one line, followed by the end of its log.
source scripts/lib/packages.sh

SETUP_LOG_LINES=40

die() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

say() {
    printf '%s\n' "$*"
}

# run_logged LOG WHAT COMMAND…: runs a command with its output in a file; says what failed and shows the file's end.
run_logged() {
    local log="$1" what="$2"
    shift 2
    mkdir -p "$(dirname "$log")"
    "$@" >"$log" 2>&1 </dev/null && return 0
    tail -n "$SETUP_LOG_LINES" "$log" >&2
    die "$what failed. The whole log: $log"
}

# As the superuser, with sudo where we are not.
as_root() {
    if [[ $EUID -eq 0 ]]; then
        env DEBIAN_FRONTEND=noninteractive "$@"
    else
        sudo env DEBIAN_FRONTEND=noninteractive "$@"
    fi
}

is_installed() {
    [[ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" == installed ]]
}

# need_packages PACKAGE…: installs those of the packages that are missing.
need_packages() {
    if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
        say "This system has no apt-get; make sure that it has what these Debian packages bring: $*"
        return 0
    fi
    local missing=() package
    for package in "$@"; do
        is_installed "$package" || missing+=("$package")
    done
    [[ ${#missing[@]} -gt 0 ]] || return 0

    if [[ $EUID -ne 0 ]]; then
        command -v sudo >/dev/null ||
            die "these packages are missing, and without root or sudo they cannot be installed: ${missing[*]}"
        sudo -v || die "sudo refused; these packages are missing: ${missing[*]}"
    fi
    say "Installing: ${missing[*]}"
    local apt=(as_root apt-get -o DPkg::Lock::Timeout=300 -qq)
    if [[ -z "${SETUP_LISTS_UPDATED:-}" ]]; then
        # Old lists may do, too; whether they did is seen when installing.
        "${apt[@]}" update >build/apt-update.log 2>&1 </dev/null ||
            say "apt-get update failed (see build/apt-update.log); trying with the lists that are there."
        SETUP_LISTS_UPDATED=1
    fi
    run_logged build/apt-install.log "Installing ${missing[*]}" "${apt[@]}" install -y --no-install-recommends \
        "${missing[@]}"
}

# configure_and_build PRESET [TARGET…]: brings build/PRESET up to date; all targets when none is named.
configure_and_build() {
    local preset="$1"
    shift
    local build=(cmake --build --preset "$preset")
    [[ $# -eq 0 ]] || build+=(--target "$@")
    [[ -d "build/$preset" ]] || say "Building ($preset); the first time takes some minutes."
    # The build itself configures anew when a CMake file changed; the presets it does not look at.
    [[ "build/$preset/build.ninja" -nt CMakePresets.json ]] ||
        run_logged "build/$preset-configure.log" "Configuring ($preset)" cmake --preset "$preset"
    run_logged "build/$preset-build.log" "Building ($preset)" "${build[@]}"
}

# run_tests PRESET [ARGUMENT…]: every test of a build, three at a time for each processor, for many wait for a time-out,
# the disk or a thread more than they compute; arguments go to ctest.
run_tests() {
    local preset="$1"
    shift
    ctest --test-dir "build/$preset" --parallel "$(($(nproc) * 3))" --output-on-failure --no-tests=error "$@"
}

mkdir -p build
