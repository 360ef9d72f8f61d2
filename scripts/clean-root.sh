# Functions for scripts that test the project in a clean Debian root. Source it after lib.sh. The functions need root
# rights, debootstrap and a Debian mirror. They use the mirror, the proxy and the other settings of apt on this machine.
# shellcheck shell=bash

clean_root_packages=(debootstrap)

# need_root REASON: ends the script with an error unless it runs as root.
need_root() {
    [[ $(id -u) -eq 0 ]] || fail "$1 takes root. Run $script as root."
}

# timed STEP: ends the previous step and starts the next one. An empty STEP only ends the previous one.
times=()
timed() {
    [[ -z ${timed_step-} ]] || times+=("$(printf '%6d s  %s' $((SECONDS - timed_since)) "$timed_step")")
    timed_step=$1
    timed_since=$SECONDS
    [[ -z $1 ]] || begin "$1"
}

# apart COMMAND...: runs a command. Its processes and mounts end when the command or this script ends.
apart_process=""
apart() {
    local status=0
    # A shell makes background processes ignore Ctrl-C.
    env --default-signal=INT,QUIT setpriv --pdeathsig KILL \
        unshare --mount --pid --fork --kill-child --mount-proc -- "$@" </dev/null &
    apart_process=$!
    wait "$apart_process" || status=$?
    apart_process=""
    return "$status"
}

# end_apart: ends the command of apart if the script ends earlier. Waits until all its processes have ended.
end_apart() {
    local first
    [[ -n $apart_process ]] || return 0
    first=$(cat "/proc/$apart_process/task/$apart_process/children") || first=""
    # When the first process of a namespace ends, the others end, too. Then unshare ends.
    kill -KILL "${first:-$apart_process}" || true
    wait "$apart_process" || true
} 2>/dev/null

# apt_mirror RELEASE: prints the mirror from which apt gets the main part of that Debian release.
apt_mirror() {
    apt-get indextargets --format '$(CODENAME) $(COMPONENT) $(REPO_URI)' 'Identifier: Packages' |
        awk -v release="$1" '$1 == release && $2 == "main" && !found++ { print $3 }'
}

# apt_settings: prints this machine's apt settings for the proxy and for the dates of the mirror's lists.
apt_settings() {
    apt-config dump |
        grep -E '^Acquire::((http|https)(::|::.*::)(Proxy|CaInfo|Verify-[A-Za-z]*)|Check-[A-Za-z-]*|Retries) ' || true
}

# make_clean_root FOLDER [RELEASE]: creates a minimal Debian in FOLDER, by default of this machine's release. Removes
# the previous contents of FOLDER.
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

# remove_clean_root FOLDER: removes it. No mount is below it, because only the commands of apart have mounts there.
remove_clean_root() {
    rm -rf --one-file-system -- "$1"
}

# in_clean_root FOLDER COMMAND...: runs a command by apart, as root of the Debian in FOLDER, with the file systems that
# every machine has. It does not use chroot, because a process in a chroot cannot create user namespaces.
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
