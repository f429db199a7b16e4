# To be sourced: Debian systems with nothing but the base, in folders. $as_root is (sudo) or empty.

as_root=()
if ((EUID != 0)); then
    as_root=(sudo)
fi

# make_bare_debian SUITE FOLDER: from this machine's package sources, made those of SUITE.
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

# run_in FOLDER OUT SCRIPT: in the system in FOLDER, where the folder OUT is /out. Not by chroot, as there the kernel
# refuses the user namespaces that the tests need.
run_in() {
    "${as_root[@]}" bwrap --die-with-parent --cap-add ALL --unshare-pid --bind "$1" / --bind "$2" /out \
        --dev /dev --proc /proc --ro-bind /sys /sys --chdir /out --clearenv \
        --setenv PATH /usr/sbin:/usr/bin:/sbin:/bin --setenv HOME /root --setenv LC_ALL C.UTF-8 \
        --setenv DEBIAN_FRONTEND noninteractive bash -euc "$3"
}
