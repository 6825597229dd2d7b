#include "platform/linux/PathMap.h"

#include <gtest/gtest.h>

#include "support/Printers.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

PathMap standardMap() {
  Roots roots;
  roots.data = u"/home/anna/.local/share/sonorel"_s;
  roots.runtime = u"/run/user/1000/sonorel/"_s;
  roots.home = u"/home/anna"_s;
  roots.resources = u"/usr/share/sonorel/resources"_s;
  roots.scripts = u"/usr/share/sonorel/scripts"_s;
  roots.embedded = u"/home/anna/.local/share/sonorel/Embedded/VB-SHARE$"_s;
  roots.agent = u"/usr/bin/trackchute"_s;
  return PathMap(roots);
}

QString host(const QString &path) {
  return standardMap().host(path).value_or(u"(none)"_s);
}

} // namespace

TEST(PathMap, LeadsEachRowToItsHostFolder) {
  EXPECT_EQ(host(u"/Volumes/VB-SHARE$/Music/Mac/a.mp3"_s),
            u"/run/user/1000/sonorel/Volumes/VB-SHARE$/Music/Mac/a.mp3"_s);
  EXPECT_EQ(host(u"/Library/Application Support/Sonorel/LastPreferences.plist"_s),
            u"/home/anna/.local/share/sonorel/Library/Application Support/Sonorel/LastPreferences.plist"_s);
  EXPECT_EQ(host(u"/home/anna/Library/Application Support/Sonorel/mainDict.xml"_s),
            u"/home/anna/.local/share/sonorel/Home/Library/Application Support/Sonorel/mainDict.xml"_s);
  EXPECT_EQ(host(u"/Applications/Sonorel/Sonorel.app/Contents/Resources/StringsEnglish"_s),
            u"/usr/share/sonorel/resources/StringsEnglish"_s);
  EXPECT_EQ(host(u"/Applications/Sonorel/App Data/MacClientProperty"_s),
            u"/home/anna/.local/share/sonorel/App Data/MacClientProperty"_s);
  EXPECT_EQ(host(u"/Applications/Sonorel/App Data/DropperPropertyListFile"_s),
            u"/home/anna/.local/share/sonorel/App Data/DropperPropertyListFile"_s);
  EXPECT_EQ(host(u"/Applications/Sonorel/App Data/Embed Artwork.scpt"_s),
            u"/usr/share/sonorel/scripts/Embed Artwork.scpt"_s);
  EXPECT_EQ(host(u"/private/tmp/x"_s), u"/home/anna/.local/share/sonorel/Temporary/x"_s);
  EXPECT_EQ(host(u"/Applications/Sonorel/Sonorel.app/Contents/Resources/TrackChute.app/Contents/MacOS/TrackChute"_s),
            u"/usr/bin/trackchute"_s);
  EXPECT_EQ(host(u"/home/anna/Music/a.mp3"_s), u"/home/anna/Music/a.mp3"_s);
}

TEST(PathMap, LeadsTheFoldersOfTheRowsThemselves) {
  EXPECT_EQ(host(u"/Volumes/"_s), u"/run/user/1000/sonorel/Volumes"_s);
  EXPECT_EQ(host(u"/Library"_s), u"/home/anna/.local/share/sonorel/Library"_s);
  EXPECT_EQ(host(u"/private/tmp"_s), u"/home/anna/.local/share/sonorel/Temporary"_s);
}

TEST(PathMap, DataFolderBelowARowIsItself) {
  for (const QString &data : {u"/home/anna/Library/Data/sonorel"_s, u"/private/tmp/sonorel"_s}) {
    Roots roots;
    roots.home = u"/home/anna"_s;
    roots.data = data;
    const PathMap map(roots);
    EXPECT_EQ(map.host(data + u"/client.lock"_s), data + u"/client.lock"_s);
    EXPECT_EQ(map.host(u"/home/anna/Library/a"_s), data + u"/Home/Library/a"_s);
    EXPECT_EQ(map.host(u"/private/tmp/a"_s), data + u"/Temporary/a"_s);
    EXPECT_EQ(map.fromOutside(data + u"/Home/Library/a"_s), std::nullopt);
  }
  EXPECT_TRUE(standardMap().fromOutside(u"/home/anna/.local/share/sonorel/a.mp3"_s));
}

TEST(PathMap, MatchesWholeComponentsOnly) {
  EXPECT_EQ(host(u"/VolumesX/a"_s), u"/VolumesX/a"_s);
  EXPECT_EQ(host(u"/Library2"_s), u"/Library2"_s);
  EXPECT_EQ(host(u"/home/anna/Library Music/a.mp3"_s), u"/home/anna/Library Music/a.mp3"_s);
  EXPECT_EQ(host(u"/home/annabel/Library/a"_s), u"/home/annabel/Library/a"_s);
  EXPECT_EQ(host(u"/volumes/a"_s), u"/volumes/a"_s);
  EXPECT_EQ(host(u"/Applications/Sonorel/App Data/MacClientPropertyX"_s),
            u"/usr/share/sonorel/scripts/MacClientPropertyX"_s);
}

TEST(PathMap, CleansBeforeItMatches) {
  EXPECT_EQ(host(u"//Library//a/./b/"_s), u"/home/anna/.local/share/sonorel/Library/a/b"_s);
  EXPECT_EQ(host(u"/home/../Library/a"_s), u"/home/anna/.local/share/sonorel/Library/a"_s);
  EXPECT_EQ(host(u"/Volumes/../etc/passwd"_s), u"/etc/passwd"_s);
  EXPECT_EQ(host(u"/../../Volumes/X"_s), u"/run/user/1000/sonorel/Volumes/X"_s);
  EXPECT_EQ(host(u"/"_s), u"/"_s);
}

TEST(PathMap, KeepsWhatIsSetAsideBesideItsFile) {
  EXPECT_EQ(host(u"/Applications/Sonorel/App Data/MacClientProperty.damaged-2"_s),
            u"/home/anna/.local/share/sonorel/App Data/MacClientProperty.damaged-2"_s);
}

TEST(PathMap, HasNoHostPathForWhatIsNoPath) {
  EXPECT_EQ(standardMap().host(QString()), std::nullopt);
  EXPECT_EQ(standardMap().host(u"relative/path"_s), std::nullopt);
  EXPECT_EQ(standardMap().host(u"/a\0b"_s), std::nullopt);
  EXPECT_EQ(standardMap().host(u"/half a pair \xD83C"_s), std::nullopt);
}

TEST(PathMap, NamesTheVolumeOfAPath) {
  EXPECT_EQ(PathMap::volumeName(u"/Volumes/VB-SHARE$/System/x"_s), u"VB-SHARE$"_s);
  EXPECT_EQ(PathMap::belowVolume(u"/Volumes/VB-SHARE$/System/x"_s), u"System/x"_s);
  EXPECT_EQ(PathMap::volumeName(u"/Volumes/VB-SHARE$"_s), u"VB-SHARE$"_s);
  EXPECT_EQ(PathMap::belowVolume(u"/Volumes/VB-SHARE$"_s), QString());
  EXPECT_EQ(PathMap::volumeName(u"/Volumes"_s), QString());
  EXPECT_EQ(PathMap::volumeName(u"/Music/Volumes/x"_s), QString());
}

TEST(PathMap, TakesPlainPathsFromOutside) {
  EXPECT_EQ(standardMap().fromOutside(u"/home/anna/Music/../Music/a.mp3"_s), u"/home/anna/Music/a.mp3"_s);
  EXPECT_EQ(standardMap().fromOutside(u"/media/usb/Volumes/a.mp3"_s), u"/media/usb/Volumes/a.mp3"_s);
}

TEST(PathMap, TurnsAPathBelowAVolumeIntoItsOwnName) {
  EXPECT_EQ(standardMap().fromOutside(u"/run/user/1000/sonorel/Volumes/VB-SHARE$/Music/Mac/a.mp3"_s),
            u"/Volumes/VB-SHARE$/Music/Mac/a.mp3"_s);
}

TEST(PathMap, RefusesOutsidePathsThatTheTableWouldLeadElsewhere) {
  for (const QString &path : {u"/Volumes/VB-SHARE$/a"_s, u"/Library/a.mp3"_s, u"/home/anna/Library/Music/a.mp3"_s,
                              u"/home/anna/Music/../Library/a.mp3"_s, u"/private/tmp/a"_s,
                              u"/Applications/Sonorel/App Data/MacClientProperty"_s, u"a.mp3"_s, QString()}) {
    QString reason;
    EXPECT_EQ(standardMap().fromOutside(path, &reason), std::nullopt) << path.toStdString();
    EXPECT_FALSE(reason.isEmpty());
  }
  QString reason;
  static_cast<void>(standardMap().fromOutside(u"/home/anna/Library/a.mp3"_s, &reason));
  EXPECT_EQ(reason, u"the names below /home/anna/Library are the program's own: /home/anna/Library/a.mp3"_s);
}

} // namespace sonorel::test
