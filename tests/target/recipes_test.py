#!/usr/bin/env python3
"""Holds the recipes of the firmware build systems against the tree, as far as that goes without those systems: their
variables and install steps are worked out by make, with stand-ins for the files that they include.

Usage: recipes_test.py openwrt|buildroot|yocto BUILD COMPILER-SETTING ...

BUILD is configured with /usr as its prefix, as all of them configure; the settings make CMake find its machine.
"""
import hashlib
import re
import subprocess
import sys
import tempfile
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[2]
PACKAGING = SOURCE / "packaging"
VERSION = re.search(r"project\(apconf VERSION (\S+)", (SOURCE / "CMakeLists.txt").read_text())[1]
# What must reach the device, whoever packs it.
RUNTIME = {"usr/lib/libapconf.so.1", "usr/sbin/apconfd", "usr/bin/apconf", "etc/config_cmd_tree.xml",
           "etc/cmd_tree_help.txt", "etc/config/start_config.json"}


def run(*command, **options):
    result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **options)
    if result.returncode != 0:
        sys.exit(f"recipes_test.py: {' '.join(map(str, command))} failed:\n{result.stdout}")
    return result.stdout


def check(condition, text):
    if not condition:
        sys.exit(f"recipes_test.py: {text}")


def make(folder, text, *goals):
    makefile = folder / "stand-in.mk"
    makefile.write_text(text)
    return run("make", "-s", "-f", makefile, *goals)


def configure(folder, settings, options):
    """The options are ones that this project knows, and with them it configures."""
    log = run("cmake", "-S", SOURCE, "-B", folder / "build", "-G", "Ninja", *settings, *options)
    check("not used by the project" not in log, f"an option has no effect:\n{log}")


def install(build, folder):
    run("cmake", "--install", build, env={"DESTDIR": str(folder), "PATH": "/usr/bin:/bin"})
    return folder


def files_below(folder):
    return {str(path.relative_to(folder)) for path in folder.rglob("*") if not path.is_dir()}


def openwrt(work, build, settings):
    recipe = PACKAGING / "openwrt/apconf"
    for name in ("rules.mk", "package.mk", "cmake.mk"):
        (work / name).write_text("")
    packages = ("libapconf", "apconf-vocabulary", "apconfd", "apconf")
    steps = "\n".join(f".PHONY: {name}\n{name}:\n\t$(call Package/{name}/install,{work}/packed)" for name in packages)
    stand_in = f"""
TOPDIR := {work}
INCLUDE_DIR := {work}
PKG_BUILD_DIR := {work}/prepared
PKG_INSTALL_DIR := {install(build, work / "installed")}
INSTALL_DIR := install -d
INSTALL_BIN := install -m 0755
INSTALL_DATA := install -m 0644
CP := cp -a
CURDIR := {recipe}
include {recipe}/Makefile
{steps}
.PHONY: prepare develop options version
prepare:
\t$(Build/Prepare)
develop:
\t$(call Build/InstallDev,{work}/staging)
options:
\t@echo $(CMAKE_OPTIONS)
version:
\t@echo $(PKG_VERSION)
"""
    (work / "apconfd.init").write_bytes((recipe / "apconfd.init").read_bytes())
    run_make = lambda *goals: make(work, stand_in, "-C", str(recipe), *goals)
    check(run_make("version").strip() == VERSION, "the OpenWrt recipe is of another version")
    run_make("prepare", "develop", *packages)
    packed = files_below(work / "packed")
    check(RUNTIME <= packed, f"the OpenWrt packages lack {sorted(RUNTIME - packed)}")
    check("etc/init.d/apconfd" in packed, "the OpenWrt server package lacks its init script")
    staged = files_below(work / "staging")
    check({"usr/include/apconf/apconf.h", "usr/lib/pkgconfig/apconf.pc"} <= staged, "the OpenWrt staging is incomplete")
    check((work / "prepared/CMakeLists.txt").exists(), "the OpenWrt preparation copied no tree")
    configure(work, settings, run_make("options").split())


def buildroot(work, build, settings):
    tree = PACKAGING / "buildroot"
    for host in ("y", ""):
        output = make(work, f"""
BR2_EXTERNAL_APCONF_PATH := {tree}
BR2_PACKAGE_APCONF_HOST := {host}
include {tree}/external.mk
.PHONY: all
all:
\t@echo $(APCONF_VERSION)
\t@echo $(realpath $(APCONF_SITE))
\t@echo $(APCONF_CONF_OPTS)
""").splitlines()
        check(output[0] == VERSION, "the Buildroot recipe is of another version")
        check(output[1] == str(SOURCE), "the Buildroot recipe builds another tree")
        configure(work / f"host{host}", settings, output[2].split())
    installed = files_below(install(build, work / "installed"))
    check(RUNTIME <= installed, f"an installation lacks {sorted(RUNTIME - installed)}")

    import kconfiglib
    symbols = set(re.findall(r"BR2_(?!PACKAGE_APCONF|EXTERNAL)\w+", (tree / "package/apconf/Config.in").read_text()))
    (work / "Kconfig").write_text("".join(f"config {name}\n\tbool '{name}'\n" for name in sorted(symbols)) +
                                  f'source "{tree}/package/apconf/Config.in"\n')
    kconfig = kconfiglib.Kconfig(work / "Kconfig", warn_to_stderr=False)
    check(not kconfig.warnings, f"Config.in: {kconfig.warnings}")
    for name in symbols - {"BR2_STATIC_LIBS"}:
        kconfig.syms[name].set_value("y")
    kconfig.syms["BR2_PACKAGE_APCONF"].set_value("y")
    check(kconfig.syms["BR2_PACKAGE_APCONF_HOST"].str_value == "y", "Config.in: the server cannot be chosen")


def yocto(work, build, settings):
    recipe = next((PACKAGING / "yocto").rglob("*.bb"))
    text = recipe.read_text().replace("\\\n", " ")
    values = {name: value for name, value in re.findall(r'^([\w:${}]+) *[+?]?= *"([^"]*)"$', text, re.M)}
    check(recipe.name == f"apconf_{VERSION}.bb", "the Yocto recipe is of another version")
    licence = hashlib.md5((SOURCE / "LICENSE").read_bytes()).hexdigest()
    check(values["LIC_FILES_CHKSUM"] == f"file://LICENSE;md5={licence}", "the Yocto recipe knows another LICENSE")
    directories = {"${systemd_system_unitdir}": "/usr/lib/systemd/system", "${libdir}": "/usr/lib",
                   "${sysconfdir}": "/etc", "${datadir}": "/usr/share"}
    for name, path in directories.items():
        values = {key: value.replace(name, path) for key, value in values.items()}
    check("${" not in values["EXTRA_OECMAKE"], f"unknown variable in {values['EXTRA_OECMAKE']}")
    configure(work, settings, values["EXTRA_OECMAKE"].split())

    installed = {"/" + name for name in files_below(install(build, work / "installed"))}
    configuration = set(values["CONFFILES:${PN}"].split())
    check(configuration <= installed, f"the Yocto recipe names {configuration - installed}, which is not installed")
    # What bitbake packs without being told, and what the recipe adds.
    standard = ["/usr/bin/", "/usr/sbin/", "/etc/", "/usr/lib/lib", "/usr/include/", "/usr/lib/pkgconfig", "/usr/lib/cmake",
                "/usr/share/doc/", "/usr/share/man/"]
    added = values["FILES:${PN}"].split()
    unpacked = [name for name in installed if not name.startswith((*standard, *added))]
    check(not unpacked, f"the Yocto recipe packs nowhere: {unpacked}")


def main():
    recipes = {recipe.__name__: recipe for recipe in (openwrt, buildroot, yocto)}
    if len(sys.argv) < 3 or sys.argv[1] not in recipes:
        sys.exit(__doc__)
    with tempfile.TemporaryDirectory() as work:
        recipes[sys.argv[1]](Path(work), sys.argv[2], sys.argv[3:])


if __name__ == "__main__":
    main()
