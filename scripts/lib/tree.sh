# shellcheck shell=bash
# Fresh Debian 12 trees to install packages into, for this machine and, through qemu, for the board. Sourced after
# setup.sh.

TREES=build/trees
TREE_USER=tester
TREE_HOME=/home/tester

# with_architecture ARCHITECTURE COMMAND…: as root, where programs of the architecture run.
with_architecture() {
    local architecture="$1"
    shift
    if arch-test "$architecture" >/dev/null 2>&1; then
        as_root unshare --mount --pid --fork --kill-child --mount-proc "$@"
    else
        as_root scripts/lib/emulated "$@"
    fi
}

# The mirrors of Debian that this machine uses, in the release the packages are made for.
debian_sources() {
    apt-get indextargets --format 'deb $(REPO_URI) $(RELEASE) $(COMPONENT)' 'Origin: Debian' 'Created-By: Packages' |
        grep ' bookworm ' | sort -u
}

# The packed base system of an architecture, made once.
need_base() {
    local base="$TREES/base-$1.tar"
    [[ ! -s "$base" ]] || return 0
    say "Making a base system ($1); once."
    mkdir -p "$TREES"
    debian_sources >"$TREES/sources.list"
    [[ -s "$TREES/sources.list" ]] || die "the machine's apt sources name no mirror of Debian 12."
    run_logged "$TREES/base-$1.log" "Making the base system ($1)" \
        with_architecture "$1" mmdebstrap --mode=root --architectures="$1" --variant=minbase \
        --aptopt='APT::Install-Recommends "false"' --aptopt='Acquire::Check-Valid-Until "false"' \
        bookworm "$base.new" --format=tar "$TREES/sources.list"
    mv "$base.new" "$base"
}

# fresh_tree ARCHITECTURE: unpacks the base system anew into $tree, with an ordinary user.
fresh_tree() {
    tree="$PWD/$TREES/$1"
    tree_architecture="$1"
    remove_tree
    need_base "$1"
    as_root mkdir -p "$tree"
    as_root tar --extract --numeric-owner --file="$TREES/base-$1.tar" --directory="$tree" --exclude='./dev/*'
    in_tree useradd --create-home "$TREE_USER"
}

remove_tree() {
    as_root rm -rf --one-file-system "$tree"
}

# in_tree COMMAND…: as root in the tree. /tmp is that of the machine, so that programs find its screen there.
in_tree() {
    with_architecture "$tree_architecture" scripts/lib/enter "${TREE_OPTIONS[@]}" "$tree" "$@"
}
TREE_OPTIONS=()  # "--read-only FOLDER", or nothing

# as_user COMMAND…: as the tree's ordinary user, in that user's home.
as_user() {
    in_tree setpriv --reuid "$TREE_USER" --regid "$TREE_USER" --clear-groups \
        env -i HOME="$TREE_HOME" USER="$TREE_USER" LC_ALL=C.UTF-8 PATH=/usr/bin:/bin "${TREE_ENVIRONMENT[@]}" \
        sh -c 'cd && exec "$@"' sh "$@"
}
TREE_ENVIRONMENT=()

# tree_apt LOG ARGUMENT…: apt-get in the tree.
tree_apt() {
    local log="$1"
    shift
    run_logged "$log" "apt-get $* ($tree_architecture)" \
        in_tree apt-get -y -q --no-install-recommends -o Acquire::Check-Valid-Until=false "$@"
}

# install_packages LOG FOLDER NAME… [-- PACKAGE…]: packages of ours from a folder, and others, with what they need.
install_packages() {
    local log="$1" folder="$2" wanted=() file
    shift 2
    as_root mkdir -p "$tree/packages"
    while [[ $# -gt 0 && "$1" != -- ]]; do
        file="$(basename "$folder/$1"_*.deb)"
        as_root cp "$folder/$file" "$tree/packages/"
        wanted+=("/packages/$file")
        shift
    done
    tree_apt "$log" install "${wanted[@]}" "${@:2}"
}

fail_with_log() {
    tail -n 20 "$1" >&2
    die "$2: $1"
}

# run_for SECONDS LOG SETTING… -- COMMAND…: runs, as the tree's user, a command that starts tasks; asks it to end after a
# while and prints how many passes each task made. Fails when one made none.
run_for() {
    local seconds="$1" log="$2"
    shift 2
    TREE_ENVIRONMENT=(QT_FORCE_STDERR_LOGGING=1 QT_LOGGING_RULES=lumivant.run.info=true)
    while [[ "$1" != -- ]]; do
        TREE_ENVIRONMENT+=("$1")
        shift
    done
    shift
    as_user timeout --foreground --preserve-status --kill-after=120 "$seconds" "$@" >"$log" 2>&1 </dev/null ||
        fail_with_log "$log" "the program did not end tidily when it was asked to"
    TREE_ENVIRONMENT=()
    grep -oE 'task ".*": [0-9]+ passes$' "$log" || fail_with_log "$log" "no task ran"
    ! grep -qE 'task ".*": 0 passes$' "$log" || fail_with_log "$log" "a task made no pass"
}

# run_project SECONDS LOG FOLDER PROJECT: in a folder and without a screen.
run_project() {
    run_for "$1" "$2" QT_QPA_PLATFORM=offscreen -- env --chdir="$3" lumivant-kiosk "$4"
}
