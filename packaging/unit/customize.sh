#!/bin/bash
# Makes a unit of a Debian root: customize.sh ROOT PANEL-PACKAGE KERNEL CACHE. Called by the program that makes the root, whose
# package manager MMDEBSTRAP_APT_CONFIG names.
set -euo pipefail
root=$1 panel=$2 kernel=$3 cache=$4
here=$(dirname "$0")
tree=$here/../..

# The kernel and the first program's shell are not installed, only fetched.
fetch() { # PACKAGE
    (cd "$cache" && APT_CONFIG=$MMDEBSTRAP_APT_CONFIG apt-get download -q "$1" >/dev/null)
}
image=$(APT_CONFIG=$MMDEBSTRAP_APT_CONFIG apt-cache depends "$kernel" | sed -n 's/.*Depends: \(linux-image[^ ]*\).*/\1/p' | head -1)
ls "$cache/${image}"_*.deb >/dev/null 2>&1 || fetch "$image"
ls "$cache"/busybox-static_*.deb >/dev/null 2>&1 || fetch busybox-static
cp "$cache/${image}"_*.deb "$cache/linux-image.deb"

cp -r "$here/root/." "$root/"
ln -sf /run/resolv.conf "$root/etc/resolv.conf"
: >"$root/etc/machine-id"
echo hall-amplifier >"$root/etc/hostname"
echo '127.0.0.1 localhost hall-amplifier' >"$root/etc/hosts"
echo '/dev/vda / ext4 noatime 0 0' >"$root/etc/fstab"

# The panel and what is beside it on this unit.
mkdir -p "$root/opt/orvane/conf" "$root/srv"
cp "$panel" "$root/vireo.deb"
chroot "$root" dpkg -i /vireo.deb >/dev/null
rm "$root/vireo.deb"
cp "$tree"/tools/demo-unit/root/opt/orvane/conf/*.xml "$root/opt/orvane/conf/"
chroot "$root" chown -R vireo:vireo /opt/orvane/conf
cp -r "$tree/tools/demo-unit/music" "$root/srv/music"
rm -rf "$root/srv/music/art" "$root/srv/music/make-music.sh"

# The right to restart the network.
rights=$tree/packaging/network-restart
install -D -m 755 "$rights/vireo-ask-network-restart" "$root/usr/local/libexec/vireo-ask-network-restart"
install -D -m 644 -t "$root/etc/systemd/system" "$rights"/vireo-network-restart.{path,service}
install -D -m 644 "$rights/vireo.service.d.conf" "$root/etc/systemd/system/vireo.service.d/network-restart.conf"

# What was only needed to lay the system out.
installed() { # NAME...
    chroot "$root" dpkg-query -W -f '${Package} ${Version}\n' "$@" 2>/dev/null | awk 'NF == 2 {print $1}'
}
mapfile -t unneeded < <(installed usrmerge 'lib*-perl' perl 'perl-modules-*' 'libperl5*')
chroot "$root" dpkg --purge "${unneeded[@]}" >/dev/null

# Nobody logs in. What is mounted for tuning and debugging the kernel makes each sandbox longer to lay out: it goes through all mounts.
for unit in getty@.service serial-getty@.service getty.target systemd-logind.service systemd-update-utmp.service \
    systemd-update-utmp-runlevel.service dpkg-db-backup.timer \
    dev-hugepages.mount dev-mqueue.mount sys-kernel-debug.mount sys-kernel-tracing.mount; do
    ln -sf /dev/null "$root/etc/systemd/system/$unit"
done
systemctl --root="$root" --quiet enable unit-network.service desk-link.service vireo-network-restart.path
systemctl --root="$root" --quiet set-default multi-user.target
# The list of fonts holds as long as their folders keep their time, which an archive has in whole seconds.
mkdir -p "$root/usr/local/share/fonts"
find "$root/usr/share/fonts" "$root/usr/local/share/fonts" -type d -exec touch -d @1700000000 {} +
chroot "$root" fc-cache -s
rm -rf "${root:?}"/var/lib/apt/lists/* "$root"/var/cache/apt/* "$root"/var/log/* "${root:?}"/boot/*
