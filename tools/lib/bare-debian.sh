# Sourced: minimal Debian systems in folders. The array as_root is (sudo), or empty for root. The folder $work is
# removed at the end.

as_root=()
if ((EUID != 0)); then
    as_root=(sudo)
fi
work=$(mktemp -d)
trap '"${as_root[@]}" rm -rf --one-file-system -- "$work"' EXIT
trap 'exit 130' INT  # bash ignores a SIGINT that the running command survives.

# make_bare_debian SUITE FOLDER [ARCHITECTURE]: uses this machine's package sources, with the suite replaced by SUITE.
make_bare_debian() {
    local file sources
    # shellcheck source=/dev/null
    source /etc/os-release
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/debian.sources; do
        [[ ! -s $file ]] || sources=$file
    done
    sed "s/\<$VERSION_CODENAME\>/$1/g" "$sources" |
        "${as_root[@]}" mmdebstrap --mode=root --variant=minbase --format=directory --dpkgopt=force-unsafe-io \
            ${3:+--architectures="$3"} --aptopt='Acquire::Retries "3"' "$1" "$2" -
}

# run_in FOLDER OUT SCRIPT: runs SCRIPT as root in the system in FOLDER, with the folder OUT as /out. Not by chroot, as the
# tests need user namespaces, which the kernel refuses in a chroot; nor by bwrap, which disables sudo.
run_in() {
    "${as_root[@]}" setpriv --pdeathsig KILL -- unshare --mount --pid --fork --kill-child --propagation private \
        bash -euc "$enter_system" enter "$1" "$2" "$3"
}
# shellcheck disable=SC2016  # expanded by the inner shell
enter_system='
    mkdir -p "$1/out"
    mount --bind "$1" "$1"
    mount --bind "$2" "$1/out"
    mount -t proc proc "$1/proc"
    mount --rbind /sys "$1/sys"
    mount -o remount,bind,ro "$1/sys"
    mount -t devpts -o newinstance,ptmxmode=0666 devpts "$1/dev/pts"
    mount --bind "$1/dev/pts/ptmx" "$1/dev/ptmx"
    mount -t tmpfs -o mode=1777 tmpfs "$1/dev/shm"
    cd "$1"
    pivot_root . mnt
    exec env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
        bash -euc "umount -l /mnt; cd /out; $3" </dev/null'
