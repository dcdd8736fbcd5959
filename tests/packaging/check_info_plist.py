"""Reads the bundle's property list as the system would and the icon container's directory."""

import plistlib
import struct
import sys

with open(sys.argv[1], "rb") as file:
    plist = plistlib.load(file)

assert plist["CFBundleIdentifier"] == "com.brindleaudio.tagwell", plist["CFBundleIdentifier"]
assert plist["CFBundleExecutable"] == "tagwell"
assert plist["CFBundlePackageType"] == "APPL"
assert plist["CFBundleShortVersionString"] == "1.0.15", plist["CFBundleShortVersionString"]
assert plist["NSHighResolutionCapable"] is True
assert plist["CFBundleIconFile"] == "tagwell.icns"
[document] = plist["CFBundleDocumentTypes"]
assert document["LSItemContentTypes"] == ["com.microsoft.waveform-audio"]
assert document["CFBundleTypeName"]
assert document["CFBundleTypeRole"] == "Editor"
assert document["LSHandlerRank"] == "Alternate"

with open(sys.argv[2], "rb") as file:
    icon = file.read()
assert icon[:4] == b"icns" and struct.unpack(">I", icon[4:8])[0] == len(icon)
position, edges = 8, []
while position < len(icon):
    size = struct.unpack(">I", icon[position + 4:position + 8])[0]
    picture = icon[position + 8:position + size]
    assert picture[:8] == b"\x89PNG\r\n\x1a\n"
    edges.append(struct.unpack(">I", picture[16:20])[0])
    position += size
assert position == len(icon) and edges == [16, 32, 128, 256, 512, 1024], edges
print("property list and icon are right")
