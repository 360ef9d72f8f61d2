# What the scripts share that try the project in a clean Debian root. Source it after lib.sh. All this takes root,
# debootstrap and a mirror of Debian; the mirror, the proxy and the other settings are those of apt on this machine.
# shellcheck shell=bash

clean_root_packages=(debootstrap)

# need_root REASON: ends the script, unless it runs as root.
need_root() {
    [[ $(id -u) -eq 0 ]] || fail "$1 takes root. Run $script as root."
}

# timed STEP: ends the step before, and begins the next one; an empty STEP only ends the one before.
times=()
timed() {
    [[ -z ${timed_step-} ]] || times+=("$(printf '%6d s  %s' $((SECONDS - timed_since)) "$timed_step")")
    timed_step=$1
    timed_since=$SECONDS
    [[ -z $1 ]] || begin "$1"
}

# apart COMMAND...: runs a command whose processes and mounts end with it, and with this script.
apart_process=""
apart() {
    local status=0
    # A shell has what runs in the background ignore Ctrl-C.
    env --default-signal=INT,QUIT setpriv --pdeathsig KILL \
        unshare --mount --pid --fork --kill-child --mount-proc -- "$@" </dev/null &
    apart_process=$!
    wait "$apart_process" || status=$?
    apart_process=""
    return "$status"
}

# end_apart: ends what apart runs, for a script that ends before it. It waits until all of it is gone.
end_apart() {
    local first
    [[ -n $apart_process ]] || return 0
    first=$(cat "/proc/$apart_process/task/$apart_process/children") || first=""
    # The other processes of a namespace end with its first one. unshare ends when they are gone.
    kill -KILL "${first:-$apart_process}" || true
    wait "$apart_process" || true
} 2>/dev/null

# apt_mirror RELEASE: where apt gets the main part of that release of Debian.
apt_mirror() {
    apt-get indextargets --format '$(CODENAME) $(COMPONENT) $(REPO_URI)' 'Identifier: Packages' |
        sed -n "s/^$1 main //p" | head -n 1
}

# apt_settings: how apt reaches its mirror on this machine, and what it asks of the mirror's dates.
apt_settings() {
    apt-config dump |
        grep -E '^Acquire::((http|https)(::|::.*::)(Proxy|CaInfo|Verify-[A-Za-z]*)|Check-[A-Za-z-]*|Retries) ' || true
}

# make_clean_root FOLDER [RELEASE]: makes a minimal Debian there, of this machine's release unless told otherwise. What
# was there before is removed.
make_clean_root() {
    local folder=$1 release=${2-} mirror proxy authorities file
    [[ -n $release ]] || release=$(. /etc/os-release && echo "${VERSION_CODENAME-}")
    mirror=$(apt_mirror "$release")
    [[ -n $mirror ]] || fail "apt knows no mirror of ${release:-this system}. Run apt-get update, or see apt's sources."
    proxy=$(apt-config shell proxy Acquire::http::Proxy | sed "s/^proxy='\(.*\)'$/\1/")
    remove_clean_root "$folder"
    mkdir -p -- "$folder"
    logged apart env ${proxy:+http_proxy="$proxy"} debootstrap --variant=minbase "$release" "$folder" "$mirror"

    apt_settings >"$folder/etc/apt/apt.conf.d/90machine"
    for file in /etc/resolv.conf /etc/hosts; do
        [[ ! -e $file ]] || cp -L -- "$file" "$folder$file"
    done
    authorities=/etc/ssl/certs/ca-certificates.crt
    if [[ $mirror == https:* && -e $authorities ]]; then
        install -D --mode=644 -- "$authorities" "$folder$authorities"
    fi
}

# remove_clean_root FOLDER. Nothing is mounted below it: only what runs apart sees mounts there.
remove_clean_root() {
    rm -rf --one-file-system -- "$1"
}

# in_clean_root FOLDER COMMAND...: runs a command apart, in the root made there, as its root, with the file systems that
# every machine has. The root is not entered by chroot, because a process in a chroot may make no user namespaces.
in_clean_root() {
    apart sh -euc '
        mount --bind "$1" "$1"
        cd "$1"
        mount -t proc proc proc
        mount -t sysfs -o ro sysfs sys
        mount -t devpts -o newinstance,ptmxmode=666,mode=620,gid=5 devpts dev/pts
        mount -t tmpfs -o mode=1777 tmpfs dev/shm
        pivot_root . mnt
        cd /
        umount -l mnt
        shift
        exec env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root DEBIAN_FRONTEND=noninteractive "$@"' sh "$@"
}
