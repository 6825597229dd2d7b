#include "core/ClientPaths.h"

#include "platform/ApplicationPaths.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

ClientPaths::ClientPaths(const QString &homePath, const QString &bundlePath)
    : bundle(bundlePath), machineParent(u"/Library/Application Support"_s),
      machineFolder(machineParent + u"/Sonorel"_s), machinePreferences(machineFolder + u"/LastPreferences.plist"_s),
      machinePreferencesAside(machineParent + u"/Sonorel LastPreferences.plist"_s),
      supportParent(homePath + u"/Library/Application Support"_s), supportFolder(supportParent + u"/Sonorel"_s),
      preferences(supportFolder + u"/LastPreferences.plist"_s), mainDictPath(supportFolder + u"/mainDict.xml"_s),
      productsDetailsDictFilePath(supportFolder + u"/DevicesDetails.xml"_s), tempFileLocation(supportFolder + u'/'),
      resourceFilePath(bundlePath + u"/Contents/Resources/"_s),
      appDataFolder(bundlePath.left(bundlePath.indexOf(u"/Sonorel.app"_s)) + u"/App Data/"_s),
      PFPath(appDataFolder + kClientPropertyFile.toString()),
      dropperPropertyFilePath(appDataFolder + kAgentPropertyFile.toString()),
      agentExecutable(resourceFilePath + kAgentProgram.toString()),
      artworkHandOver(machineFolder + u"/ArtworkData.txt"_s) {}

} // namespace sonorel
