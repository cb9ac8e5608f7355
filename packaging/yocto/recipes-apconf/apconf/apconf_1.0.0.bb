SUMMARY = "Configuration commands of a wireless access point"
DESCRIPTION = "The library that every process links which takes part in the configuration of an access point, the \
configuration server, its command-line tool and the default vocabulary."
SECTION = "net"
LICENSE = "MIT & BSD-3-Clause"
LICENSE:lib${BPN} = "MIT"
LIC_FILES_CHKSUM = "file://LICENSE;md5=fcc5259562bdc1c400ed1674c3ca8234"

# cli11 is a recipe of meta-oe; the programs hold code of it.
DEPENDS = "json-c libxml2 libevent libedit cli11"

# The tree that this layer lies in.
inherit externalsrc cmake pkgconfig systemd
EXTERNALSRC = "${@os.path.realpath(d.getVar('THISDIR') + '/../../../..')}"

EXTRA_OECMAKE = "\
    -DAPCONF_BUILD_TESTS=OFF \
    -DAPCONF_BUILD_BENCH=OFF \
    -DAPCONF_BUILD_EXAMPLES=OFF \
    -DAPCONF_UNIT_DIR=${systemd_system_unitdir} \
"

SYSTEMD_PACKAGES = "${PN}"
SYSTEMD_SERVICE:${PN} = "apconfd.service"

PACKAGES =+ "lib${BPN}"
FILES:lib${BPN} = "${libdir}/libapconf.so.*"
FILES:${PN} += "${datadir}/apconf ${datadir}/bash-completion ${datadir}/zsh ${systemd_system_unitdir}"
CONFFILES:${PN} = "${sysconfdir}/config_cmd_tree.xml ${sysconfdir}/cmd_tree_help.txt ${sysconfdir}/config/start_config.json"
