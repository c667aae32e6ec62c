# A Debian package by CPack:
#   cpack -G DEB --config build/release/CPackConfig.cmake -B build/package

set(CORVO_MAINTAINER "Corvo maintainers <corvo@example.org>" CACHE STRING "Maintainer of the package")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME corvo)
set(CPACK_PACKAGE_CONTACT "${CORVO_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "line constants and line models for transient simulation")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
  "Corvo reads the description of an overhead line or a cable system, computes
its series impedance and shunt admittance over frequency, finds its modes and
writes a line model for a simulator of electromagnetic transients: PI,
Bergeron, frequency dependent in modes or in phases, or MFDTD.
.
Programs beside it check a description, compare a model with the line, show
both as a page of pictures, and run many lines on all cores or machines.")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr) # the module is found in ../lib/corvo relative to /usr/bin
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_BINARY_DIR}/package_files.cmake)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS parallel)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS slurm-client)

set(PACKAGE_VERSION ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
configure_file(packaging/changelog.in changelog.Debian @ONLY)
configure_file(packaging/package_files.cmake.in package_files.cmake @ONLY)
include(CPack)
