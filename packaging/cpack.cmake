# cpack.cmake - the Debian package; packaging/make-deb.sh builds it

# One version, told in three places.
file(STRINGS packaging/deb/changelog changelog LIMIT_COUNT 1)
if(NOT changelog MATCHES "^velmor \\(${PROJECT_VERSION}\\) ")
	message(FATAL_ERROR "packaging/deb/changelog does not begin with ${PROJECT_VERSION}")
endif()
file(STRINGS packaging/velmor.metainfo.xml release REGEX "<release " LIMIT_COUNT 1)
if(NOT release MATCHES "version=\"${PROJECT_VERSION}\"")
	message(FATAL_ERROR "packaging/velmor.metainfo.xml does not begin with ${PROJECT_VERSION}")
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME velmor)
set(CPACK_PACKAGE_VENDOR "The VELMOR developers")
set(CPACK_PACKAGE_CONTACT "The VELMOR developers <developers@velmor.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "manager for AKAI hardware samplers")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
	OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/compress.cmake)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Lists what an AKAI hardware sampler holds, over MIDI, a TCP bridge or
USB: fetches its samples as WAV files, sends, renames and deletes them,
converts any sound file into what the machine takes, edits programs,
works the front panel from the screen and plays MIDI files.
.
It knows the S900, S950, S1000, S1100, S2000, S2800, S3000, S3000XL,
S3200, S5000, S6000, Z4, Z8 and MPC 4000. The whole program can be tried
with virtual samplers, with nothing connected: velmor-demo.
.
An independent program; AKAI is a trademark of its owner.")
# Of the module that plays samples as well: Qt Multimedia. Without it the program runs and says why
# it cannot play.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# What mounts the drive of the samplers' disks for a user, and windows on Wayland.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fuse3, qt6-wayland")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/deb/postinst)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
