// Where this application stands in the system's own absolute paths, and what its parts are called there. They are the
// same on every machine; PathMap knows the host's. What stands below the user's home: core/ClientPaths.h.
#pragma once

#include <QStringView>

namespace sonorel {

inline constexpr QStringView kBundlePath = u"/Applications/Sonorel/Sonorel.app";
inline constexpr QStringView kBundleResourcesPath = u"/Applications/Sonorel/Sonorel.app/Contents/Resources";
inline constexpr QStringView kAgentBundlePath =
    u"/Applications/Sonorel/Sonorel.app/Contents/Resources/TrackChute.app";
inline constexpr QStringView kAppDataPath = u"/Applications/Sonorel/App Data"; // beside the bundle

// In the bundle's resources.
inline constexpr QStringView kAgentProgram = u"TrackChute.app/Contents/MacOS/TrackChute";
inline constexpr QStringView kConverterScript = u"ConvertWeblocToURL.sh";

// In "App Data". The scripts are built under these names in src/scripts/CMakeLists.txt.
inline constexpr QStringView kExporterScript = u"SaveToFolder_jpegonly.scpt";
inline constexpr QStringView kEmbedderScript = u"Embed Artwork.scpt";
inline constexpr QStringView kClientPropertyFile = u"MacClientProperty";
inline constexpr QStringView kAgentPropertyFile = u"DropperPropertyListFile";

} // namespace sonorel
