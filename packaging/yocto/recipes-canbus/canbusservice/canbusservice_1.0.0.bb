SUMMARY = "CAN-bus service library of a car head unit"
DESCRIPTION = "Talks to the interface box of a car over a serial line: what the box reports becomes Qt signals, what \
the driver presses becomes commands. With it come a QML module, a simulated box, a monitor and a demo head unit."
SECTION = "libs"
LICENSE = "CLOSED"

# The tree that this layer lies in, as it is.
inherit externalsrc
EXTERNALSRC = "${@os.path.realpath(os.path.join(d.getVar('THISDIR'), '../../../..'))}"

inherit cmake_qt5 pkgconfig

DEPENDS = "qtbase qtserialport"

# demo   the QML module and the head unit
# tools  the simulated box and the monitor
PACKAGECONFIG ??= "demo tools"
PACKAGECONFIG[demo] = "-DCANBUS_BUILD_DEMO=ON,-DCANBUS_BUILD_DEMO=OFF,qtdeclarative rapidjson"
PACKAGECONFIG[tools] = "-DCANBUS_BUILD_TOOLS=ON,-DCANBUS_BUILD_TOOLS=OFF,rapidjson"

# A head unit with an SDK of its own takes -DCANBUS_HOST_SDK=external, and what provides that SDK among its DEPENDS.
EXTRA_OECMAKE = " \
    -DCANBUS_BUILD_TESTS=OFF \
    -DCANBUS_INSTALL_QMLDIR=${@os.path.relpath(d.getVar('OE_QMAKE_PATH_QML'), d.getVar('prefix'))} \
"

# The packages are those of Debian, except that manual pages are in a package of their own, as everywhere in this
# build system. The libraries' names get the number of their interface when they are packaged.
PACKAGES =+ "libcanbusservice libcanbushost-reference qml-module-canbus canbus-tools canbus-headunit"

FILES:libcanbusservice = "${libdir}/libcanbusservice.so.*"
FILES:libcanbushost-reference = "${libdir}/libcanbushost-reference.so.*"
FILES:qml-module-canbus = "${OE_QMAKE_PATH_QML}/CanBus"
FILES:canbus-tools = " \
    ${bindir}/canbus-boxsim \
    ${bindir}/canbus-monitor \
    ${datadir}/bash-completion/completions/canbus-boxsim \
    ${datadir}/bash-completion/completions/canbus-monitor \
    ${datadir}/canbusservice/scenarios \
    ${datadir}/canbusservice/wireshark \
    ${datadir}/zsh/site-functions/_canbus-boxsim \
    ${datadir}/zsh/site-functions/_canbus-monitor \
"
FILES:canbus-headunit = " \
    ${bindir}/canbus-headunit \
    ${datadir}/applications/canbus-headunit.desktop \
    ${datadir}/bash-completion/completions/canbus-headunit \
    ${datadir}/icons/hicolor/scalable/apps/canbus-headunit.svg \
    ${datadir}/zsh/site-functions/_canbus-headunit \
"
FILES:${PN}-dev = " \
    ${includedir}/canbusservice \
    ${libdir}/cmake/CanbusService \
    ${libdir}/libcanbushost-reference.so \
    ${libdir}/libcanbusservice.so \
    ${libdir}/pkgconfig/canbusservice.pc \
"
FILES:${PN}-doc = "${mandir}/man1"

# Plugins that are loaded by name, which no library's dependencies tell.
RDEPENDS:qml-module-canbus = "qtdeclarative-qmlplugins"
RDEPENDS:canbus-headunit = "qml-module-canbus qtdeclarative-qmlplugins"
RDEPENDS:${PN}-dev = "libcanbusservice libcanbushost-reference"
