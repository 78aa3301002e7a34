# The Debian package. script/package builds it with the preset of that name.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME directfax)
set(CPACK_PACKAGE_VENDOR "DirectFax")
set(CPACK_PACKAGE_CONTACT "DirectFax maintainers <directfax@example.org>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/package)
# The filter of CUPS lies outside the prefix.
set(CPACK_SET_DESTDIR ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SECTION comm)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "print dialog that faxes through a multifunction printer")
# Lines of up to 80 characters, as they are shown.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "faxprint shows a print dialog with a panel of fax settings for any document
that can be printed, asks who gets the fax, with which password and when,
and hands all of it to CUPS as one job, where the printer's driver finds it.

The package holds the dialog, its fax extension, an editor and the tool gad
for address books (vCard and CSV), and a sample driver: a PPD file, and a
CUPS filter that writes a ticket of every fax. All of it speaks English,
Japanese, German, French, Spanish, Italian, Dutch, Brazilian Portuguese,
Simplified Chinese and Korean.")

# Libraries by dpkg-shlibdeps; the toolkit loads what draws its windows at run time.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR})
set(CPACK_DEBIAN_PACKAGE_DEPENDS "gnustep-back0.29-cairo")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "cups, cups-filters, avahi-daemon, ca-certificates, fonts-dejavu-core, \
fonts-ipafont-gothic | fonts-noto-cjk, fonts-droid-fallback | fonts-noto-cjk, fonts-nanum | fonts-noto-cjk")

set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/packaging/debian/postinst
    ${PROJECT_SOURCE_DIR}/packaging/debian/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
