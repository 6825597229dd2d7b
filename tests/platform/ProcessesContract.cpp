#include "platform/ProcessesContract.h"

#include "ContractRegistration.h"
#include "support/Printers.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QString kPoint = u"/Volumes/VB-SHARE$"_s;

ToolResult tool(ProcessesSubject &subject, const QString &program, const QStringList &arguments) {
  return subject.processes().run({program, arguments, std::nullopt, std::chrono::milliseconds(20'000)}, {});
}

ToolResult mount(ProcessesSubject &subject) {
  return tool(subject, u"/sbin/mount"_s, {u"-t"_s, u"smbfs"_s, kShareUrl.toString(), kPoint + u'/'});
}

void mountPoint(ProcessesSubject &subject) {
  subject.files().createFolder(kPoint, 0777);
  ASSERT_TRUE(succeeded(mount(subject)));
}

void mountsAndUnmounts(ProcessesSubject &subject) {
  mountPoint(subject);
  const auto volume = subject.files().volume(kPoint);
  ASSERT_TRUE(volume);
  EXPECT_EQ(volume->mountRoot, kPoint);
  EXPECT_EQ(volume->typeName, u"smbfs"_s);
  EXPECT_TRUE(succeeded(tool(subject, u"/sbin/umount"_s, {u"-f"_s, kPoint})));
  EXPECT_EQ(subject.files().list(kPoint), QStringList());
  EXPECT_FALSE(succeeded(tool(subject, u"/sbin/umount"_s, {kPoint})));
  EXPECT_TRUE(succeeded(tool(subject, u"/bin/rmdir"_s, {kPoint})));
  EXPECT_EQ(subject.files().presence(kPoint), Presence::Absent);
}

void mountsOnlyOnAFreePoint(ProcessesSubject &subject) {
  const ToolResult missing = mount(subject);
  EXPECT_EQ(missing.ending, ToolEnding::Exited);
  EXPECT_NE(missing.status, 0);
  mountPoint(subject);
  const ToolResult twice = mount(subject);
  EXPECT_EQ(twice.ending, ToolEnding::Exited);
  EXPECT_NE(twice.status, 0);
  for (const ToolResult &result : {missing, twice}) {
    EXPECT_FALSE(result.output.contains("Authentication"));
    EXPECT_FALSE(result.output.contains("Permission"));
  }
}

void leavesAMountedPointInPlace(ProcessesSubject &subject) {
  mountPoint(subject);
  subject.files().write(kPoint + u"/file"_s, "x");
  EXPECT_FALSE(succeeded(tool(subject, u"/bin/rmdir"_s, {kPoint})));
  EXPECT_FALSE(succeeded(tool(subject, u"/bin/rm"_s, {kPoint})));
  EXPECT_EQ(subject.files().read(kPoint + u"/file"_s), QByteArray("x"));
}

void cleansALeftoverPoint(ProcessesSubject &subject) {
  subject.files().createFolder(kPoint, 0777);
  subject.putLeftover(kPoint + u"/.autodiskmounted"_s);
  EXPECT_FALSE(succeeded(tool(subject, u"/bin/rmdir"_s, {kPoint})));
  EXPECT_TRUE(succeeded(tool(subject, u"/bin/rm"_s, {kPoint + u"/.autodiskmounted"_s})));
  EXPECT_FALSE(succeeded(tool(subject, u"/bin/rm"_s, {kPoint + u"/.autodiskmounted"_s})));
  EXPECT_TRUE(succeeded(tool(subject, u"/bin/rmdir"_s, {kPoint})));
  EXPECT_EQ(subject.files().presence(kPoint), Presence::Absent);
}

void copiesBytesAndTime(ProcessesSubject &subject) {
  mountPoint(subject);
  FileSystem &files = subject.files();
  for (const QString &name : {u"track.mp3"_s, u"-p"_s, u"two\nlines"_s, u"\u00DCber 'uns' \"$HOME\" `x`.mp3"_s}) {
    const QString from = subject.folder() + u'/' + name;
    files.write(from, "music " + name.toUtf8());
    subject.setModified(from, 1'111'111'111);
    const ToolResult result = tool(subject, u"/bin/cp"_s, {u"-p"_s, from, kPoint + u'/' + name});
    EXPECT_TRUE(succeeded(result)) << result.output.toStdString();
    EXPECT_EQ(files.read(kPoint + u'/' + name), "music " + name.toUtf8());
    EXPECT_EQ(files.attributes(kPoint + u'/' + name, Links::Follow)->modifiedSeconds, 1'111'111'111);
  }
}

void copiesOverALongerFile(ProcessesSubject &subject) {
  mountPoint(subject);
  subject.files().write(subject.folder() + u"/a"_s, "short");
  subject.files().write(kPoint + u"/a"_s, "what was there before");
  EXPECT_TRUE(succeeded(tool(subject, u"/bin/cp"_s, {u"-p"_s, subject.folder() + u"/a"_s, kPoint + u"/a"_s})));
  EXPECT_EQ(subject.files().read(kPoint + u"/a"_s), QByteArray("short"));
}

void saysWhenACopyFails(ProcessesSubject &subject) {
  mountPoint(subject);
  FileSystem &files = subject.files();
  files.write(subject.folder() + u"/a"_s, "x");
  const ToolResult noSource = tool(subject, u"/bin/cp"_s, {u"-p"_s, subject.folder() + u"/b"_s, kPoint + u"/b"_s});
  EXPECT_EQ(noSource.ending, ToolEnding::Exited);
  EXPECT_NE(noSource.status, 0);
  EXPECT_FALSE(succeeded(tool(subject, u"/bin/cp"_s, {u"-p"_s, subject.folder(), kPoint + u"/folder"_s})));
  EXPECT_FALSE(succeeded(tool(subject, u"/bin/cp"_s, {u"-p"_s, subject.folder() + u"/a"_s, kPoint + u"/no/a"_s})));
  subject.files().createFolder(kPoint + u"/taken"_s, 0777);
  EXPECT_FALSE(succeeded(tool(subject, u"/bin/cp"_s, {u"-p"_s, subject.folder() + u"/a"_s, kPoint + u"/taken"_s})));
  EXPECT_EQ(subject.files().list(kPoint + u"/taken"_s), QStringList()) << "nothing goes inside a folder of that name";
  EXPECT_EQ(files.presence(kPoint + u"/b"_s), Presence::Absent);
  EXPECT_EQ(files.presence(kPoint + u"/folder"_s), Presence::Absent);
}

void copiesNothingBelowAPointThatIsNotMounted(ProcessesSubject &subject) {
  subject.files().createFolder(kPoint, 0777);
  subject.files().write(subject.folder() + u"/a"_s, "x");
  const ToolResult result = tool(subject, u"/bin/cp"_s, {u"-p"_s, subject.folder() + u"/a"_s, kPoint + u"/a"_s});
  EXPECT_EQ(result.ending, ToolEnding::Exited);
  EXPECT_NE(result.status, 0);
  EXPECT_EQ(subject.files().list(kPoint), QStringList());
}

void removesFilesAndEmptyFolders(ProcessesSubject &subject) {
  FileSystem &files = subject.files();
  const QString folder = subject.folder() + u"/folder"_s;
  files.createFolder(folder, 0777);
  files.write(folder + u"/-f"_s, "x");
  EXPECT_FALSE(succeeded(tool(subject, u"/bin/rmdir"_s, {folder})));
  EXPECT_FALSE(succeeded(tool(subject, u"/bin/rm"_s, {folder})));
  EXPECT_TRUE(succeeded(tool(subject, u"/bin/rm"_s, {folder + u"/-f"_s})));
  EXPECT_TRUE(succeeded(tool(subject, u"/bin/rm"_s, {u"-f"_s, folder + u"/-f"_s})));
  EXPECT_TRUE(succeeded(tool(subject, u"/bin/rmdir"_s, {folder})));
  EXPECT_EQ(files.presence(folder), Presence::Absent);
}

void startsNothingAfterAStop(ProcessesSubject &subject) {
  subject.files().write(subject.folder() + u"/a"_s, "x");
  std::stop_source stop;
  stop.request_stop();
  const QStringList arguments{u"-p"_s, subject.folder() + u"/a"_s, subject.folder() + u"/b"_s};
  const ToolResult result = subject.processes().run({u"/bin/cp"_s, arguments, {}, {}}, stop.get_token());
  EXPECT_EQ(result.ending, ToolEnding::Stopped);
  EXPECT_EQ(subject.files().presence(subject.folder() + u"/b"_s), Presence::Absent);
}

} // namespace

bool registerProcessesContract(const char *suite, std::function<std::unique_ptr<ProcessesSubject>()> make) {
  return registerCases<ProcessesSubject>(
      suite, make,
      {{"MountsAndUnmounts", mountsAndUnmounts},
       {"MountsOnlyOnAFreePoint", mountsOnlyOnAFreePoint},
       {"LeavesAMountedPointInPlace", leavesAMountedPointInPlace},
       {"CleansALeftoverPoint", cleansALeftoverPoint},
       {"CopiesBytesAndTime", copiesBytesAndTime},
       {"CopiesOverALongerFile", copiesOverALongerFile},
       {"SaysWhenACopyFails", saysWhenACopyFails},
       {"CopiesNothingBelowAPointThatIsNotMounted", copiesNothingBelowAPointThatIsNotMounted},
       {"RemovesFilesAndEmptyFolders", removesFilesAndEmptyFolders},
       {"StartsNothingAfterAStop", startsNothingAfterAStop}});
}

} // namespace sonorel::test
