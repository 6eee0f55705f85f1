# SPDX-License-Identifier: MIT
"""Print what the build needs to know of this interpreter, separated by semicolons: the folder of
PyQt6's .sip files, the ABI of its sip module, its version, and the folder of packages relative to
an installation prefix. Ends with status 1 and one line on stderr when something is missing."""

import os
import re
import sys
import sysconfig


def fail(what):
    print(f"{what} (for {sys.executable})", file=sys.stderr)
    sys.exit(1)


if sys.version_info < (3, 9):
    fail("Python 3.9")
try:
    import PyQt6
    from PyQt6.QtCore import PYQT_VERSION_STR
    from PyQt6 import QtWidgets  # noqa: F401
except ImportError as error:
    fail(f"PyQt6: {error}")
try:
    import sipbuild.tools.build  # noqa: F401
except ImportError as error:
    fail(f"the code generator of SIP: {error}")
bindings = os.path.join(os.path.dirname(PyQt6.__file__), "bindings")
if not os.path.isfile(os.path.join(bindings, "QtWidgets", "QtWidgetsmod.sip")):
    fail("the .sip files of PyQt6")

# Debian has folders of its own below /usr, whatever the version.
if "deb_system" in sysconfig.get_scheme_names():
    packages = "lib/python3/dist-packages"
else:
    packages = sysconfig.get_path("platlib", vars={"base": "", "platbase": ""}).lstrip("/")
abi = "13"
try:
    with open(os.path.join(bindings, "QtCore", "QtCore.toml"), encoding="utf-8") as config:
        abi = re.search(r'^sip-abi-version = "([0-9.]+)"', config.read(), re.M).group(1)
except (OSError, AttributeError):
    pass  # any of PyQt6's
print(bindings.replace("\\", "/"), abi, PYQT_VERSION_STR, packages, sep=";")
