################################################################################
#
# vireo
#
################################################################################

VIREO_SITE = $(BR2_EXTERNAL_VIREO_PATH)/../..
VIREO_SITE_METHOD = local
VIREO_DEPENDENCIES = qt6base qt6scxml qt65compat jpeg libpng
VIREO_CONF_OPTS = -DVIREO_TESTS=OFF

# The panel alone: the stand-in supervisor and the tour stay on the desk.
VIREO_BUILD_OPTS = --target vireo
define VIREO_INSTALL_TARGET_CMDS
	DESTDIR=$(TARGET_DIR) $(HOST_DIR)/bin/cmake --install $(@D) --component panel
endef

define VIREO_USERS
	vireo -1 vireo -1 * - - video Front panel
endef

$(eval $(cmake-package))
