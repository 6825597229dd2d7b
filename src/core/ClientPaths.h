// Where the client's own files lie, as the system's absolute paths. Pure values, formed once.
#pragma once

#include <QString>

namespace sonorel {

struct ClientPaths {
  ClientPaths(const QString &homePath, const QString &bundlePath);

  QString bundle;
  QString machineParent;      // "/Library/Application Support"
  QString machineFolder;      // machineParent + "/Sonorel"
  QString machinePreferences; // the machine-wide "LastPreferences.plist"
  // What a damaged one is called before it is set aside: beside its folder, which is emptied while the first launch
  // lasts.
  QString machinePreferencesAside;
  QString supportParent; // home + "/Library/Application Support"
  QString supportFolder; // supportParent + "/Sonorel"
  QString preferences;   // the per-user "LastPreferences.plist"
  QString mainDictPath;
  QString productsDetailsDictFilePath;
  QString tempFileLocation; // the support folder, ending in "/"
  QString resourceFilePath; // also `LFPath`; ending in "/"
  QString appDataFolder;    // "App Data" beside the bundle, ending in "/"
  QString PFPath;           // the client property file
  QString dropperPropertyFilePath;
  QString agentExecutable;
  QString artworkHandOver; // what the artwork exporter may read about the track
};

} // namespace sonorel
