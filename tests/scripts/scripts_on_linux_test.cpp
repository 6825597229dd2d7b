// The built scripts, run by the client's own calls on the embedded product.
#include "platform/linux/LinuxClock.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxProcesses.h"
#include "platform/linux/LinuxScripts.h"

#include "support/Printers.h"
#include "support/TemporaryRoots.h"

#include <QFileInfo>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QString kAppData = u"/Applications/Sonorel/App Data/"_s;
const QString kMusic = u"/Volumes/VB-SHARE$/Music/Mac/"_s;
const QString kConverter = u"/Applications/Sonorel/Sonorel.app/Contents/Resources/ConvertWeblocToURL.sh"_s;

// The smallest head of a JPEG, which is all that is looked at.
const std::string kJpeg("\xFF\xD8\xFF\xC0\x00\x0B\x08\x00\x01\x00\x01\x01\x01\x11\x00\xFF\xDA\x00\x08\x01\x01\x00\x00"
                        "\x3F\x00",
                        25);

const QString kOwn = u".sonorel-0123abcd-artwork"_s; // temporary name of this client

class ScriptsOnLinux : public testing::Test {
protected:
  ScriptsOnLinux() {
    temporary.roots.scripts = QStringLiteral(SONOREL_BUILT_SCRIPTS);
    temporary.roots.resources = QFileInfo(QStringLiteral(SONOREL_BUILT_CONVERTER)).path();
    processes.emplace(temporary.roots, ProcessOptions{.artworkTemporaryName = kOwn});
    files.emplace(temporary.roots);
    files->createFolder(u"/Volumes/VB-SHARE$"_s, 0777);
    EXPECT_TRUE(succeeded(
        run(u"/sbin/mount"_s, {u"-t"_s, u"smbfs"_s, u"//v:p@embedded/VB-SHARE$"_s, u"/Volumes/VB-SHARE$/"_s})));
    files->createFolder(u"/Volumes/VB-SHARE$/Music/Mac"_s, 0777);
    files->createFolder(kMusic + u"Gold"_s, 0777);
  }
  ToolResult run(const QString &program, const QStringList &arguments) {
    return processes->run({program, arguments, {}, std::chrono::seconds(60)}, {});
  }

  TemporaryRoots temporary;
  std::optional<LinuxProcesses> processes;
  std::optional<LinuxFileSystem> files;
  LinuxClock clock;
};

} // namespace

TEST_F(ScriptsOnLinux, TheExporterSavesOntoTheShare) {
  temporary.put("outside/a.mp3", "no tags");
  temporary.put("outside/folder.jpg", kJpeg);
  const ToolResult result =
      run(u"/usr/bin/osascript"_s, {kAppData + u"SaveToFolder_jpegonly.scpt"_s, temporary.below("outside/a.mp3"),
                                    u"/Library/title"_s, u"ABBA-Gold-Waterloo"_s, u"Gold:"_s});
  EXPECT_EQ(result.status, 0) << result.output.toStdString();
  EXPECT_EQ(files->read(kMusic + u"Gold/ABBA-Gold-Waterloo.jpg"_s), QByteArray::fromStdString(kJpeg));
  EXPECT_EQ(files->list(kMusic + u"Gold"_s), QStringList{u"ABBA-Gold-Waterloo.jpg"_s});
}

TEST_F(ScriptsOnLinux, TheExporterRemovesWhatThisClientLeft) {
  temporary.put("outside/a.mp3", "no tags");
  files->write(kMusic + u"Gold/"_s + kOwn, "half");
  files->write(kMusic + u"Gold/.sonorel-ffff0000-artwork"_s, "another client's");
  EXPECT_EQ(run(u"/usr/bin/osascript"_s, {kAppData + u"SaveToFolder_jpegonly.scpt"_s,
                                          temporary.below("outside/a.mp3"), u"title"_s, u"x"_s, u"Gold:"_s})
                .status,
            1);
  EXPECT_EQ(files->list(kMusic + u"Gold"_s), QStringList{u".sonorel-ffff0000-artwork"_s});
}

TEST_F(ScriptsOnLinux, TheEmbedderSucceeds) {
  temporary.put("outside/a.mp3", "no tags");
  EXPECT_TRUE(succeeded(run(u"/usr/bin/osascript"_s,
                            {kAppData + u"Embed Artwork.scpt"_s, temporary.below("outside/a.mp3"), u"title"_s})));
  EXPECT_EQ(temporary.bytes("outside/a.mp3"), "no tags");
}

TEST_F(ScriptsOnLinux, TheConverterWritesBesideTheBookmark) {
  LinuxScripts scripts(
      *files, *processes, clock, [] { return std::stop_token(); }, kConverter);
  temporary.put("outside/\"Home\" $(x).webloc",
                "<plist version=\"1.0\"><dict><key>URL</key><string>http://a/</string></dict></plist>");
  EXPECT_EQ(scripts.convertBookmark(temporary.below("outside/\"Home\" $(x).webloc"), {}), std::nullopt);
  EXPECT_EQ(temporary.bytes("outside/\"Home\" $(x).url"), "[InternetShortcut]\nURL=http://a/");
  temporary.put("outside/bad.webloc", "none");
  EXPECT_TRUE(scripts.convertBookmark(temporary.below("outside/bad.webloc"), {})
                  .value_or(QString())
                  .contains(u"property list"_s));
}

} // namespace sonorel::test
