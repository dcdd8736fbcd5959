# The Debian package: `cpack -G DEB` in a build made with the preset `package`. The folder's README says how a release is
# made of it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tagwell)
set(CPACK_PACKAGE_VENDOR "Brindle Audio")
set(CPACK_PACKAGE_CONTACT "${maintainer}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
# Each line goes into the package as it stands.
set(CPACK_PACKAGE_DESCRIPTION
"Tagwell puts right what was typed in a hurry on set: scene, take, tape,
project, notes, circled and wild-track flags, track names and start timecode
of Broadcast WAV files, one file at a time or a whole selection.

It writes into the bext and iXML blocks of the file that is there. The audio
is never touched, the file never gets longer, and no copies are made.

It plays files of up to 64 tracks through a mixer with faders, mute, solo and
meters, and writes the sound report of the day as PDF, CSV or ALE.

A second program, tagwell-cli, shows, checks and corrects the files of a whole
card from a script, and proves by checksums that the sound is untouched.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_SOURCE_DIR}/BeforePacking.cmake")
set(CPACK_OBJCOPY "${CMAKE_OBJCOPY}")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${maintainer}")
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "${PROJECT_HOMEPAGE_URL}")
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The metric twin of the reports' font, and the window under Wayland.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-crosextra-carlito, qt6-wayland")
include(CPack)
