# Sourced: minimal Debian systems in folders. The array as_root is (sudo), or empty for root. The folder $work is
# removed at the end.

as_root=()
if ((EUID != 0)); then
    as_root=(sudo)
fi
work=$(mktemp -d)
trap '"${as_root[@]}" rm -rf --one-file-system -- "$work"' EXIT
trap 'exit 130' INT  # bash ignores a SIGINT that the running command survives.

# make_bare_debian SUITE FOLDER: uses this machine's package sources, with the suite replaced by SUITE.
make_bare_debian() {
    local file sources
    # shellcheck source=/dev/null
    source /etc/os-release
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/debian.sources; do
        if [[ -s $file ]]; then
            sources=$file
        fi
    done
    sed "s/\<$VERSION_CODENAME\>/$1/g" "$sources" |
        "${as_root[@]}" mmdebstrap --mode=root --variant=minbase --format=directory --dpkgopt=force-unsafe-io \
            --aptopt='Acquire::Retries "3"' "$1" "$2" -
}

# run_in FOLDER OUT SCRIPT: runs SCRIPT in the system in FOLDER, with the folder OUT as /out. Not by chroot, as the
# tests need user namespaces, which the kernel refuses in a chroot.
run_in() {
    "${as_root[@]}" bwrap --die-with-parent --cap-add ALL --unshare-pid --bind "$1" / --bind "$2" /out \
        --dev /dev --proc /proc --ro-bind /sys /sys --chdir /out --clearenv \
        --setenv PATH /usr/sbin:/usr/bin:/sbin:/bin --setenv HOME /root --setenv LC_ALL C.UTF-8 \
        --setenv DEBIAN_FRONTEND noninteractive bash -euc "$3"
}
