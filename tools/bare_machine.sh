# Sourced by the scripts that try something where nothing is installed. They run as root.

# Makes a minimal Debian 12 (debootstrap), once, in FOLDER/base, and a copy of it in a folder that $machine then names
# and that is gone when the script ends.
make_bare_machine() {
    local folder=$1
    command -v debootstrap >/dev/null || { echo "Install debootstrap first." >&2; exit 1; }
    if [ ! -d "$folder/base" ]; then
        mkdir -p "$folder"
        debootstrap --variant=minbase --include=git,ca-certificates bookworm "$folder/base.new" \
            >"$folder/debootstrap.log"
        mv "$folder/base.new" "$folder/base"
    fi
    machine=$(mktemp -d "$folder/machine.XXXXXX")
    trap remove_bare_machine EXIT
    cp -a "$folder/base/." "$machine"
    cp /etc/resolv.conf "$machine/etc/resolv.conf"
    mount -t proc proc "$machine/proc"
    mount -t sysfs -o ro sysfs "$machine/sys"
    mount -t devpts -o newinstance,ptmxmode=0666 devpts "$machine/dev/pts"
}

remove_bare_machine() {
    umount "$machine/proc" "$machine/sys" "$machine/dev/pts" || true
    rm -rf --one-file-system "$machine"
}

# Runs a command on it.
on_machine() {
    chroot "$machine" env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin CI="${CI:-}" \
        DEBIAN_FRONTEND=noninteractive "$@"
}
