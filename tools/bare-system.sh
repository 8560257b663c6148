# Functions that create and enter bare Debian systems, for tools/try-systems and
# packaging/check-package. They need root. Source this file.
# shellcheck shell=bash

# Prints the address of the Debian mirror that this system's apt uses.
bareSystemMirror()
{
    # shellcheck disable=SC2016 # filled in by apt-get
    apt-get indextargets --format '$(ORIGIN)|$(LABEL)|$(REPO_URI)' 'Created-By: Packages' |
        sed -n '/^Debian|Debian|/ { s///p; q }'
}

# makeBareSystem SUITE FOLDER [PACKAGE,PACKAGE...]: installs the essential packages of a Debian
# release, and the given ones, into FOLDER. The new system's apt downloads with this system's settings.
makeBareSystem()
{
    local suite=$1 root=$2 script='' mirror
    mirror=$(bareSystemMirror)
    if [[ -z $mirror ]]; then
        echo "this system's apt has no Debian mirror (run apt-get update?)" >&2
        return 1
    fi
    # A release that this system's debootstrap has no script for is created with the script for sid.
    [[ -e /usr/share/debootstrap/scripts/$suite ]] || script=sid
    debootstrap --variant=minbase ${3:+"--include=$3"} "$suite" "$root" "$mirror" $script || return
    cp /etc/resolv.conf "$root/etc/resolv.conf" || return
    printf '127.0.0.1 localhost %s\n' "$(hostname)" >"$root/etc/hosts" || return
    apt-config dump --no-empty | grep -E '^Acquire::(Check-|https?::|ftp::)' \
        >"$root/etc/apt/apt.conf.d/90as-outside"
    return 0
}

# enterBareSystem FOLDER COMMAND [ARGUMENT...]: executes COMMAND with FOLDER as its root. Call it
# in separate mount and PID namespaces. A chroot is not enough: processes in it may not create the user
# namespaces in which the tests run.
enterBareSystem()
{
    local root=$1
    shift
    mount --bind "$root" "$root" &&
        mount -t proc proc "$root/proc" &&
        mount --rbind /sys "$root/sys" &&
        mount --rbind /dev "$root/dev" &&
        mount -t tmpfs -o mode=1777 tmpfs "$root/dev/shm" &&
        mkdir -p "$root/outside" &&
        cd "$root" &&
        pivot_root . outside &&
        cd / &&
        umount --lazy /outside &&
        rmdir /outside || return
    exec "$@"
}
