# Debian systems in folders of their own, to build and try things in. Sourced by tools/debian13 and tools/check_packages,
# from the project's root folder and after tools/packages.sh. Needs root or sudo, and debootstrap.
#
# The folders are kept in the user's cache folder, outside the clone: making one takes half a minute, filling it with
# a compiler longer. For each release there is
#   debian-13-base      as debootstrap makes it; never changed, only copied
#   debian-13           where packages come in as they are needed, and where things are built
#   debian-13-archives  the packages that were downloaded, shared by all roots of the release

ROOTS="${XDG_CACHE_HOME:-$HOME/.cache}/tagwell"

release_name()
{
    case "$1" in
        12) echo bookworm ;;
        13) echo trixie ;;
        *) echo "no such release: $1" >&2; return 1 ;;
    esac
}

# base_root RELEASE: makes sure of the minimal system.
base_root()
{
    local root="$ROOTS/debian-$1-base" mirror setting
    [ -e "$root/.complete" ] && return 0
    mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' | grep '/debian/$' | head -n 1)
    as_root rm -rf "$root"
    mkdir -p "$ROOTS"
    as_root debootstrap --variant=minbase --include=ca-certificates "$(release_name "$1")" "$root" "$mirror" \
        >"$ROOTS/debootstrap.log"
    for setting in /etc/apt/apt.conf.d/*; do
        grep -qs '^Acquire::Check' "$setting" && as_root cp "$setting" "$root/etc/apt/apt.conf.d/"
    done
    as_root rm -f "$root"/var/cache/apt/archives/*.deb
    as_root touch "$root/.complete"
}

# fresh_root RELEASE FOLDER: makes the folder a copy of the minimal system.
fresh_root()
{
    base_root "$1"
    as_root rm -rf "$2"
    as_root cp -a "$ROOTS/debian-$1-base" "$2"
}

# work_root RELEASE: makes sure of the system that things are built in, at $ROOTS/debian-RELEASE. Until the script that
# called it ends, any other one waits here for the same system.
work_root()
{
    mkdir -p "$ROOTS"
    exec 9>"$ROOTS/debian-$1.lock"
    flock 9
    [ -e "$ROOTS/debian-$1/.complete" ] || fresh_root "$1" "$ROOTS/debian-$1"
}

# put_sources FOLDER: replaces what the folder holds by the tree's files as they are. Its folder `build` is kept.
put_sources()
{
    as_root mkdir -p "$1"
    as_root find "$1" -mindepth 1 -maxdepth 1 ! -name build -exec rm -rf {} +
    git ls-files -z | as_root tar --create --null --files-from=- | as_root tar --extract --directory "$1"
}

# with_mounts RELEASE ROOT COMMAND...: runs the command, outside the root, while the root has what a running system has.
# The mounts live in a namespace of their own and go with it, whatever happens. The root has an empty /tmp of its own, or
# this system's where ROOTS_SHARE_TMP is set.
with_mounts()
{
    local archives="$ROOTS/debian-$1-archives"
    shift
    mkdir -p "$archives/partial"
    as_root unshare --mount --propagation private bash -euc '
        root=$1; archives=$2; recordings=$3; share_tmp=$4; shift 4
        mount -t proc proc "$root/proc"
        mount --rbind /dev "$root/dev"
        if [ -n "$share_tmp" ]; then mount --bind /tmp "$root/tmp"; else mount -t tmpfs tmpfs "$root/tmp"; fi
        mount --bind "$archives" "$root/var/cache/apt/archives"
        if [ -d "$recordings" ]; then
            mkdir -p "$root/recordings"
            mount --bind -o ro "$recordings" "$root/recordings"
        fi
        "$@"
    ' bash "$1" "$archives" "${TAGWELL_RECORDINGS:-}" "${ROOTS_SHARE_TMP:-}" "${@:2}"
}

# in_root RELEASE ROOT COMMAND...: runs the command inside, with a plain environment. Words such as NAME=value in front
# of the command set variables.
in_root()
{
    with_mounts "$1" "$2" env -i HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
        PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
        ${TAGWELL_RECORDINGS:+TAGWELL_RECORDINGS=/recordings} chroot "$2" env "${@:3}"
}
