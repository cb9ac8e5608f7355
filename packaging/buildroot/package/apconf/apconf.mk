################################################################################
#
# apconf
#
################################################################################

APCONF_VERSION = 1.0.0
APCONF_SITE = $(BR2_EXTERNAL_APCONF_PATH)/../..
APCONF_SITE_METHOD = local
APCONF_OVERRIDE_SRCDIR_RSYNC_EXCLUSIONS = --exclude /build
APCONF_LICENSE = MIT
APCONF_LICENSE_FILES = LICENSE
APCONF_INSTALL_STAGING = YES
APCONF_DEPENDENCIES = host-pkgconf json-c libxml2
APCONF_CONF_OPTS = \
	-DAPCONF_BUILD_TESTS=OFF \
	-DAPCONF_BUILD_BENCH=OFF \
	-DAPCONF_BUILD_EXAMPLES=OFF

ifeq ($(BR2_PACKAGE_APCONF_HOST),y)
APCONF_DEPENDENCIES += cli11 libedit libevent
APCONF_CONF_OPTS += -DAPCONF_BUILD_HOST=ON
else
APCONF_CONF_OPTS += -DAPCONF_BUILD_HOST=OFF
endif

# The systemd unit comes with the installation.
ifeq ($(BR2_PACKAGE_APCONF_HOST),y)
define APCONF_INSTALL_INIT_SYSV
	$(INSTALL) -D -m 0755 $(APCONF_PKGDIR)/S30apconfd \
		$(TARGET_DIR)/etc/init.d/S30apconfd
endef
endif

$(eval $(cmake-package))
