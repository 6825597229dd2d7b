// What the real file system does beyond the contract: modes, links, names of the host, leftovers at a mount point.
#include "platform/linux/EmbeddedProduct.h"
#include "platform/linux/LinuxFileSystem.h"

#include <gtest/gtest.h>

#include "ContractRegistration.h"
#include "support/Printers.h"
#include "support/TemporaryRoots.h"

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

class LinuxFiles : public testing::Test {
protected:
  TemporaryRoots temporary;
  QStringList lines;
  LinuxFileSystem files{temporary.roots, u"0a1b2c3d"_s, [this](const QString &line) { lines.append(line); }};
  const QString folder = temporary.below("outside");

  [[nodiscard]] QStringList hostNames(const std::string &path) const {
    QStringList names;
    for (const auto &entry : std::filesystem::directory_iterator(temporary.base() / path)) {
      names.append(QString::fromStdString(entry.path().filename().string()));
    }
    names.sort();
    return names;
  }
};

} // namespace

TEST_F(LinuxFiles, MapsTheSystemsPaths) {
  files.createFolder(u"/Library/Application Support"_s, 0777);
  files.write(u"/Library/Application Support/x"_s, "machine");
  files.write(u"/home/anna/Library/y"_s, "user");
  files.writeAtomically(u"/Applications/Sonorel/App Data/MacClientProperty"_s, "settings", 0600);
  temporary.put("resources/StringsEnglish", "texts");
  EXPECT_EQ(temporary.bytes("data/Library/Application Support/x"), "machine");
  EXPECT_EQ(temporary.bytes("data/Home/Library/y"), "user");
  EXPECT_EQ(temporary.bytes("data/App Data/MacClientProperty"), "settings");
  EXPECT_EQ(files.read(u"/Applications/Sonorel/Sonorel.app/Contents/Resources/StringsEnglish"_s),
            QByteArray("texts"));
}

TEST_F(LinuxFiles, ClosesTheDataFolderToOthers) {
  struct stat facts = {};
  ASSERT_EQ(::stat(temporary.roots.data.toUtf8().constData(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 07777U, 0700U);
  ::chmod(temporary.roots.data.toUtf8().constData(), 0755);
  prepareDataFolders(temporary.roots);
  ASSERT_EQ(::stat(temporary.roots.data.toUtf8().constData(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 07777U, 0700U);
}

TEST_F(LinuxFiles, SetsAsideBesideTheFileItself) {
  const QString path = u"/Applications/Sonorel/App Data/MacClientProperty"_s;
  files.write(path, "damaged");
  EXPECT_EQ(files.setAside(path), u"/Applications/Sonorel/App Data/MacClientProperty.damaged"_s);
  EXPECT_EQ(temporary.bytes("data/App Data/MacClientProperty.damaged"), "damaged");
  EXPECT_EQ(files.read(u"/Applications/Sonorel/App Data/MacClientProperty.damaged"_s), QByteArray("damaged"));
}

TEST_F(LinuxFiles, HidesALeftoverBelowAPointThatIsNotMounted) {
  temporary.put("runtime/Volumes/VB-SHARE$/System/NetMusicFavorites.orv", "old");
  EXPECT_EQ(files.presence(u"/Volumes/VB-SHARE$"_s), Presence::Present);
  EXPECT_EQ(files.presence(u"/Volumes/VB-SHARE$/System"_s), Presence::Absent);
  EXPECT_EQ(failureOf([&] { files.write(u"/Volumes/VB-SHARE$/System/new"_s, "x"); }), FailureKind::Unknown);
  EXPECT_EQ(failureOf([&] { files.removeTree(u"/Volumes/VB-SHARE$"_s); }), FailureKind::Unknown);
  EXPECT_EQ(hostNames("runtime/Volumes/VB-SHARE$/System"), QStringList{u"NetMusicFavorites.orv"_s});
}

TEST_F(LinuxFiles, TakesALinkToElsewhereForNoVolume) {
  std::filesystem::create_directory_symlink(temporary.base() / "outside",
                                            temporary.base() / "runtime/Volumes/VB-SHARE$");
  EXPECT_EQ(failureOf([&] { files.write(u"/Volumes/VB-SHARE$/a"_s, "x"); }), FailureKind::Unknown);
  EXPECT_EQ(hostNames("outside"), QStringList());
}

TEST_F(LinuxFiles, GivesNewFilesTheModeOfTheUmask) {
  const mode_t old = ::umask(027);
  files.write(folder + u"/plain"_s, "x");
  files.writeAtomically(folder + u"/atomic"_s, "x");
  files.createFolder(folder + u"/folder"_s, 0777);
  ::umask(old);
  EXPECT_EQ(files.attributes(folder + u"/plain"_s, Links::Follow)->mode, 0640U);
  EXPECT_EQ(files.attributes(folder + u"/atomic"_s, Links::Follow)->mode, 0640U);
  EXPECT_EQ(files.attributes(folder + u"/folder"_s, Links::Follow)->mode, 0777U);
}

TEST_F(LinuxFiles, SaysThatATooLongNameIsNotThere) {
  const QString path = folder + u'/' + QString(300, u'x');
  EXPECT_EQ(files.presence(path), Presence::Absent);
  EXPECT_EQ(failureOf([&] { files.write(path, "x"); }), FailureKind::Other);
}

TEST_F(LinuxFiles, FindsNothingBehindWhatIsNoPath) {
  EXPECT_EQ(files.presence(QString()), Presence::Absent);
  EXPECT_EQ(files.presence(u"outside"_s), Presence::Absent);
  EXPECT_EQ(failureOf([&] { files.write(u"outside"_s, "x"); }), FailureKind::Other);
}

TEST_F(LinuxFiles, PassesOverNamesThatAreNotUtf8) {
  temporary.put("outside/good", "");
  temporary.put("outside/bad-\xFF", "");
  EXPECT_EQ(files.list(folder), QStringList{u"good"_s});
  ASSERT_EQ(lines.size(), 1);
  EXPECT_EQ(lines.first(), u"A name that is not UTF-8 is passed over in "_s + folder);
}

TEST_F(LinuxFiles, RefusesToCopyAFileOntoItself) {
  files.write(folder + u"/a"_s, "the only copy");
  std::filesystem::create_symlink(temporary.base() / "outside/a", temporary.base() / "outside/link");
  EXPECT_EQ(failureOf([&] { files.copy(folder + u"/a"_s, folder + u"/link"_s); }), FailureKind::Other);
  EXPECT_EQ(files.read(folder + u"/a"_s), QByteArray("the only copy"));
}

TEST_F(LinuxFiles, CopiesMoreThanOneBlock) {
  QByteArray bytes(3'000'001, '\0');
  for (qsizetype i = 0; i < bytes.size(); ++i) {
    bytes[i] = static_cast<char>(i * 31 % 251);
  }
  files.write(folder + u"/a"_s, bytes);
  files.copy(folder + u"/a"_s, folder + u"/b"_s);
  EXPECT_TRUE(files.read(folder + u"/b"_s) == bytes);
}

TEST_F(LinuxFiles, LocksAgainstOtherProcesses) {
  const auto lock = files.lock(folder + u"/lock"_s);
  ASSERT_TRUE(lock);
  const std::string command = "flock --nonblock '" + (temporary.base() / "outside/lock").string() + "' true";
  EXPECT_NE(std::system(command.c_str()), 0);
}

TEST_F(LinuxFiles, ReadsTheTimeToTheNanosecond) {
  files.write(folder + u"/a"_s, "x");
  const timespec times[2] = {{1, 0}, {1'600'000'000, 123'456'789}};
  ASSERT_EQ(::utimensat(AT_FDCWD, (temporary.base() / "outside/a").c_str(), times, 0), 0);
  const auto found = files.attributes(folder + u"/a"_s, Links::Follow);
  EXPECT_EQ(found->modifiedSeconds, 1'600'000'000);
  EXPECT_EQ(found->modifiedNanoseconds, 123'456'789);
}

TEST_F(LinuxFiles, FindsNoRoomOnAVolumeThatDoesNotAnswer) {
  files.createFolder(u"/Volumes/VB-SHARE$"_s, 0777);
  const EmbeddedProduct product(temporary.roots.embedded, u"Auracore 5"_s);
  product.mount(temporary.below("runtime/Volumes/VB-SHARE$").toUtf8());
  const auto volume = files.volume(u"/Volumes/VB-SHARE$/System"_s);
  ASSERT_TRUE(volume);
  EXPECT_EQ(volume->typeName, u"smbfs"_s);
  EXPECT_EQ(volume->freeBytes, 0U);
  EXPECT_EQ(files.presence(u"/Volumes/VB-SHARE$/System"_s), Presence::Unknown);
  EXPECT_EQ(failureOf([&] { static_cast<void>(files.read(u"/Volumes/VB-SHARE$/System/a"_s)); }),
            FailureKind::Unknown);
}

TEST_F(LinuxFiles, TellsTheHostsVolumeOfAnyOtherPath) {
  const auto volume = files.volume(folder);
  ASSERT_TRUE(volume);
  EXPECT_GT(volume->freeBytes, 0U);
  EXPECT_NE(volume->typeName, u"smbfs"_s);
  EXPECT_EQ(files.volume(folder + u"/not there"_s)->mountId, volume->mountId);
  EXPECT_FALSE(files.volume(u"relative"_s));
}

TEST_F(LinuxFiles, ReplacesNoLinkAtomically) {
  std::filesystem::create_symlink(temporary.base() / "elsewhere", temporary.base() / "outside/link");
  EXPECT_EQ(failureOf([&] { files.writeAtomically(folder + u"/link"_s, "x"); }), FailureKind::Other);
  EXPECT_EQ(hostNames("outside"), QStringList{u"link"_s});
}

} // namespace sonorel::test
