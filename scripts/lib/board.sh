# shellcheck shell=bash
# What scripts/board and others that build for the board share. Sourced after setup.sh, from the repository's root.

BOARD_TRIPLET=arm-linux-gnueabihf
export LUMIVANT_SYSROOT="${LUMIVANT_SYSROOT:-$PWD/build/sysroot-armhf}"

# apt_for_board STATE ARGUMENT…: apt-get as the board's would be, with this machine's sources and keys and with lists,
# cache and package database of its own in the folder STATE. Nothing is installed by it, so nobody has to be root.
apt_for_board() {
    local state="$1"
    shift
    apt-get -q -o APT::Architecture=armhf -o APT::Architectures::=armhf -o APT::Install-Recommends=false \
        -o Dir::State="$state/state" -o Dir::State::status="$state/status" -o Dir::Cache="$state/cache" \
        -o Dir::Etc::preferencesparts=/dev/null -o APT::Sandbox::User="$(id -un)" -o Acquire::Languages=none \
        -o Debug::NoLocking=true "$@"
}

fetch_board_packages() {
    local state="$1"
    shift
    mkdir -p "$state/state/lists/partial" "$state/cache/archives/partial"
    : >"$state/status"
    # One list that a mirror has not finished must not stop the others; what is really missing fails below.
    apt_for_board "$state" update || say "Not every list of packages could be fetched; going on with those that could."
    apt_for_board "$state" install -y --download-only "$@"
}

# Only unpacked: no program of the board runs for it. Documents would be a third of the files.
unpack_board_packages() {
    local archives="$1" root="$2" folder package
    for folder in bin sbin lib; do
        mkdir -p "$root/usr/$folder"
        ln -s "usr/$folder" "$root/$folder"
    done
    for package in "$archives"/*.deb; do
        dpkg-deb --fsys-tarfile "$package" |
            tar -x -C "$root" --keep-directory-symlink --no-same-owner --no-same-permissions \
                --exclude './usr/share/doc/*' --exclude './usr/share/man/*' --exclude './usr/share/locale/*' \
                --exclude './dev/*' || return 1
    done
}

# Links that the packages' scripts would have made or that point out of the sysroot.
mend_board_links() {
    local root="$1" link target up library
    while IFS= read -r link; do
        target="$(readlink "$root/$link")"
        up="$(dirname "$link" | sed 's|[^/][^/]*|..|g')"
        [[ ! -e "$root$target" ]] || ln -sfn "$up$target" "$root/$link"
    done < <(cd "$root" && find usr/lib -type l -lname '/*')
    for library in blas/libblas.so.3 lapack/liblapack.so.3; do
        [[ ! -e "$root/usr/lib/$BOARD_TRIPLET/$library" ]] ||
            ln -sfn "$library" "$root/usr/lib/$BOARD_TRIPLET/${library#*/}"
    done
}

make_sysroot() {
    local state="$1" root="$2"
    shift 2
    fetch_board_packages "$state" "$@" || return 1
    unpack_board_packages "$state/cache/archives" "$root" || return 1
    mend_board_links "$root"
}

# Makes the sysroot, or leaves it alone when it holds the packages that are listed now.
need_sysroot() {
    local wanted work
    wanted="$(printf '%s\n' "${BOARD_SYSROOT_PACKAGES[@]}" "$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)")"
    [[ "$(cat "$LUMIVANT_SYSROOT/.lumivant-packages" 2>/dev/null)" != "$wanted" ]] || return 0
    # A folder of the user's, such as a board's own file system, is not ours to replace.
    [[ ! -e "$LUMIVANT_SYSROOT" || -e "$LUMIVANT_SYSROOT/.lumivant-packages" ]] ||
        die "The folder LUMIVANT_SYSROOT names was not made by this script: move it away, or name another."
    say "Making the board's sysroot (armhf); this takes a minute."
    work="$LUMIVANT_SYSROOT.new"
    rm -rf "$work"
    mkdir -p "$work/root" "$work/apt"
    run_logged build/sysroot.log "Making the sysroot" make_sysroot "$work/apt" "$work/root" "${BOARD_SYSROOT_PACKAGES[@]}"
    printf '%s\n' "$wanted" >"$work/root/.lumivant-packages"
    rm -rf "$LUMIVANT_SYSROOT"
    mv "$work/root" "$LUMIVANT_SYSROOT"
    rm -rf "$work"
}
