SUMMARY = "Front-panel display of a public-address amplifier"
LICENSE = "CLOSED"

# The tree that this layer lies in.
inherit externalsrc
EXTERNALSRC = "${@os.path.realpath(d.getVar('THISDIR') + '/../../../..')}"
EXTERNALSRC_BUILD = "${WORKDIR}/build"

DEPENDS = "qtbase qtbase-native qtscxml qt5compat jpeg libpng"
RDEPENDS:${PN} = "net-tools fontconfig"

inherit qt6-cmake systemd useradd

EXTRA_OECMAKE = "-DVIREO_TESTS=OFF"
OECMAKE_TARGET_COMPILE = "vireo"

do_install() {
    DESTDIR="${D}" cmake --install ${B} --component panel
}

SYSTEMD_SERVICE:${PN} = "vireo.service"

USERADD_PACKAGES = "${PN}"
USERADD_PARAM:${PN} = "--system --user-group --no-create-home --shell /sbin/nologin --groups video vireo"

FILES:${PN} += "${systemd_system_unitdir} ${nonarch_libdir}/sysusers.d ${nonarch_libdir}/tmpfiles.d"
