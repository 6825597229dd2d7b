#include "mount/share/ShareFixture.h"

#include <QFile>
#include <QSaveFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

namespace sonorel::test {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

class SharedFiles : public ShareFixture {
protected:
  void SetUp() override {
    ShareFixture::SetUp();
    if (!HasFatalFailure() && !IsSkipped()) {
      mounted();
    }
  }
  [[nodiscard]] fs::path music(const std::string &name) const { return point() / "Music" / name; }
  [[nodiscard]] fs::path serverMusic(const std::string &name) const { return tree() / "Music" / name; }
  static timespec timeAt(time_t seconds, long microseconds = 0) { return {seconds, microseconds * 1000}; }
  static struct stat factsOf(const fs::path &path) {
    struct stat facts = {};
    EXPECT_EQ(::stat(path.c_str(), &facts), 0) << path;
    return facts;
  }
};

} // namespace

TEST_F(SharedFiles, AreCopiedWithTheirTimes) {
  for (const time_t time : {978'307'200L, 1'400'000'001L, 1'700'000'003L}) {
    const fs::path source = folder() / "song.mp3";
    put(source, noise(1'500'000));
    const timespec times[2] = {timeAt(time), timeAt(time, 123'456)};
    ASSERT_EQ(::utimensat(AT_FDCWD, source.c_str(), times, 0), 0);
    const Ended result = copy(source, music("song.mp3"));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(bytes(serverMusic("song.mp3")), noise(1'500'000));
    for (const fs::path &path : {music("song.mp3"), serverMusic("song.mp3")}) {
      EXPECT_EQ(factsOf(path).st_mtim.tv_sec, time) << path;
      EXPECT_EQ(factsOf(path).st_mtim.tv_nsec / 1000, 123'456) << path;
    }
    EXPECT_EQ(factsOf(music("song.mp3")).st_size, 1'500'000);
  }
}

TEST_F(SharedFiles, AreCopiedWhateverTheirModeAndOwner) {
  put(folder() / "song.mp3", "music");
  fs::permissions(folder() / "song.mp3", fs::perms::owner_read);
  EXPECT_EQ(::geteuid() == 0 ? ::chown((folder() / "song.mp3").c_str(), 1234, 1234) : 0, 0);
  EXPECT_EQ(copy(folder() / "song.mp3", music("song.mp3")).status, 0);
  EXPECT_EQ(copy(folder() / "song.mp3", music("song.mp3")).status, 0) << "over the first one";
  EXPECT_TRUE(fs::remove(music("song.mp3")));
  EXPECT_FALSE(fs::exists(serverMusic("song.mp3")));
}

TEST_F(SharedFiles, AreReadBack) {
  put(serverMusic("big"), noise(3'000'001));
  EXPECT_EQ(bytes(music("big")), noise(3'000'001));
  EXPECT_EQ(copy(music("big"), folder() / "big").status, 0);
  EXPECT_EQ(bytes(folder() / "big"), noise(3'000'001));
  EXPECT_EQ(factsOf(folder() / "big").st_mtim.tv_sec, factsOf(serverMusic("big")).st_mtim.tv_sec);
}

TEST_F(SharedFiles, AreRenamedOverOthers) {
  put(music("old"), "the old one");
  put(music("new"), "the new one");
  EXPECT_EQ(::rename(music("new").c_str(), music("old").c_str()), 0);
  EXPECT_EQ(bytes(serverMusic("old")), "the new one");
  EXPECT_FALSE(fs::exists(serverMusic("new")));
  EXPECT_FALSE(fs::exists(music("new")));
  put(music("third"), "3");
  EXPECT_EQ(::renameat2(AT_FDCWD, music("third").c_str(), AT_FDCWD, music("old").c_str(), RENAME_NOREPLACE), -1);
  EXPECT_EQ(errno, EEXIST);
  EXPECT_EQ(bytes(music("old")), "the new one");
}

TEST_F(SharedFiles, AreRenamedWhileOpen) {
  const FileDescriptor file(::open(music("a").c_str(), O_RDWR | O_CREAT, 0666));
  ASSERT_EQ(::write(file.get(), "first", 5), 5);
  ASSERT_EQ(::rename(music("a").c_str(), music("b").c_str()), 0);
  ASSERT_EQ(::write(file.get(), " second", 7), 7);
  ASSERT_EQ(::fsync(file.get()), 0);
  EXPECT_EQ(bytes(serverMusic("b")), "first second");
  EXPECT_FALSE(fs::exists(serverMusic("a")));
}

TEST_F(SharedFiles, AreReplacedByQSaveFile) {
  put(music("list"), "old");
  QSaveFile file(QString::fromStdString(music("list").string()));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  ASSERT_EQ(file.write(QByteArray(200'000, 'n')), 200'000);
  EXPECT_EQ(bytes(serverMusic("list")), "old") << "until it is committed";
  ASSERT_TRUE(file.commit()) << file.errorString().toStdString();
  EXPECT_EQ(bytes(serverMusic("list")), std::string(200'000, 'n'));
  EXPECT_EQ(std::distance(fs::directory_iterator(tree() / "Music"), fs::directory_iterator()), 1);
}

TEST_F(SharedFiles, AreCutAndAppendedTo) {
  put(music("a"), "0123456789");
  EXPECT_EQ(::truncate(music("a").c_str(), 4), 0);
  EXPECT_EQ(bytes(serverMusic("a")), "0123");
  const FileDescriptor file(::open(music("a").c_str(), O_WRONLY | O_APPEND));
  ASSERT_EQ(::write(file.get(), "xy", 2), 2);
  ASSERT_EQ(::write(file.get(), "z", 1), 1);
  ASSERT_EQ(::ftruncate(file.get(), 6), 0);
  EXPECT_EQ(factsOf(music("a")).st_size, 6);
  ASSERT_EQ(::fsync(file.get()), 0);
  EXPECT_EQ(bytes(serverMusic("a")), "0123xy");
  ASSERT_EQ(::truncate(music("a").c_str(), 8), 0);
  EXPECT_EQ(bytes(serverMusic("a")), std::string("0123xy\0\0", 8));
  put(music("a"), "new");
  EXPECT_EQ(bytes(serverMusic("a")), "new");
}

TEST_F(SharedFiles, TellTheirSizeWhileTheyAreWritten) {
  const FileDescriptor file(::open(music("a").c_str(), O_WRONLY | O_CREAT | O_EXCL, 0666));
  ASSERT_EQ(::write(file.get(), "0123456789", 10), 10);
  struct stat facts = {};
  ASSERT_EQ(::fstat(file.get(), &facts), 0);
  EXPECT_EQ(facts.st_size, 10);
  EXPECT_EQ(factsOf(music("a")).st_size, 10);
  EXPECT_EQ(::open(music("a").c_str(), O_WRONLY | O_CREAT | O_EXCL, 0666), -1);
  EXPECT_EQ(errno, EEXIST);
}

TEST_F(SharedFiles, AreWrittenInManyBlocks) {
  constexpr size_t kBlock = 1 << 20;
  std::string content = noise(5 * kBlock);
  const FileDescriptor file(::open(music("a").c_str(), O_RDWR | O_CREAT | O_TRUNC, 0666));
  for (size_t at = 0; at < content.size(); at += kBlock) {
    ASSERT_EQ(::write(file.get(), content.data() + at, kBlock), static_cast<ssize_t>(kBlock));
  }
  ASSERT_EQ(::pwrite(file.get(), "late", 4, 2 * kBlock - 2), 4);
  content.replace(2 * kBlock - 2, 4, "late");
  std::string part(kBlock, '\0');
  ASSERT_EQ(::pread(file.get(), part.data(), kBlock, 4 * kBlock - 500), static_cast<ssize_t>(kBlock));
  EXPECT_EQ(part, content.substr(4 * kBlock - 500, kBlock));
  ASSERT_EQ(::ftruncate(file.get(), 4 * kBlock + 77), 0);
  ASSERT_EQ(::fsync(file.get()), 0);
  EXPECT_EQ(bytes(serverMusic("a")), content.substr(0, 4 * kBlock + 77));
}

TEST_F(SharedFiles, AreSeenAsSoonAsTheyAreThere) {
  const auto isThere = [this](const char *name) { return ::access(music(name).c_str(), F_OK) == 0; };
  EXPECT_FALSE(isThere("a"));
  put(music("a"), "x");
  EXPECT_TRUE(isThere("a"));
  EXPECT_FALSE(isThere("folder"));
  ASSERT_EQ(::mkdir(music("folder").c_str(), 0777), 0);
  EXPECT_TRUE(isThere("folder"));
  EXPECT_FALSE(isThere("b"));
  ASSERT_EQ(::rename(music("a").c_str(), music("b").c_str()), 0);
  EXPECT_TRUE(isThere("b"));
  EXPECT_FALSE(isThere("a"));
  put(serverMusic("a"), "made by somebody else");
  EXPECT_EQ(::open(music("a").c_str(), O_WRONLY | O_CREAT | O_EXCL, 0666), -1);
  EXPECT_EQ(errno, EEXIST) << "the server knows better than what was found an instant ago";
  EXPECT_TRUE(isThere("a"));
}

TEST_F(SharedFiles, ComeAndGoWithTheirFolders) {
  for (const mode_t mode : {0777U, 0755U, 0700U}) {
    ASSERT_EQ(::mkdir(music("album").c_str(), mode), 0);
    EXPECT_EQ(::mkdir(music("album").c_str(), mode), -1);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(::chmod(music("album").c_str(), 0777), 0);
    EXPECT_EQ(factsOf(music("album")).st_mode, static_cast<mode_t>(S_IFDIR | 0777));
    put(music("album/a"), "x");
    EXPECT_EQ(::rmdir(music("album").c_str()), -1);
    EXPECT_EQ(errno, ENOTEMPTY);
    EXPECT_EQ(::unlink(music("album/a").c_str()), 0);
    EXPECT_EQ(::unlink(music("album/a").c_str()), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(::rmdir(music("album").c_str()), 0);
    EXPECT_FALSE(fs::exists(serverMusic("album")));
  }
}

TEST_F(SharedFiles, MoveWithTheirFolder) {
  fs::create_directory(music("album"));
  put(music("album/a"), "x");
  ASSERT_EQ(::rename(music("album").c_str(), music("other").c_str()), 0);
  EXPECT_EQ(bytes(music("other/a")), "x");
  EXPECT_FALSE(fs::exists(serverMusic("album")));
}

TEST_F(SharedFiles, TakeTimes) {
  put(music("a"), "x");
  const timespec first[2] = {timeAt(1'000'000'000), timeAt(1'100'000'000)};
  ASSERT_EQ(::utimensat(AT_FDCWD, music("a").c_str(), first, 0), 0);
  EXPECT_EQ(factsOf(serverMusic("a")).st_mtim.tv_sec, 1'100'000'000);
  EXPECT_EQ(factsOf(serverMusic("a")).st_atim.tv_sec, 1'000'000'000);
  const timespec second[2] = {{0, UTIME_OMIT}, timeAt(1'200'000'000)};
  ASSERT_EQ(::utimensat(AT_FDCWD, music("a").c_str(), second, 0), 0);
  EXPECT_EQ(factsOf(serverMusic("a")).st_mtim.tv_sec, 1'200'000'000);
  EXPECT_EQ(factsOf(serverMusic("a")).st_atim.tv_sec, 1'000'000'000);
  const timespec now[2] = {{0, UTIME_NOW}, {0, UTIME_NOW}};
  ASSERT_EQ(::utimensat(AT_FDCWD, music("a").c_str(), now, 0), 0);
  EXPECT_LT(std::abs(factsOf(serverMusic("a")).st_mtim.tv_sec - ::time(nullptr)), 3);
}

TEST_F(SharedFiles, CanBeWrittenWhenTheirMarkIsTakenOff) {
  put(music("a"), "x");
  ASSERT_EQ(run({"/usr/bin/smbclient", "-p", product().port(), "//localhost/VB-SHARE$", "-U", "vaultbox%p@ss;100%:x",
                 "-c", "setmode Music/a +r"})
                .status,
            0);
  std::this_thread::sleep_for(1100ms); // what the kernel remembers is forgotten
  EXPECT_EQ(factsOf(music("a")).st_mode & 0222U, 0U);
  ASSERT_EQ(::chmod(music("a").c_str(), 0666), 0);
  EXPECT_EQ(factsOf(music("a")).st_mode & 0222U, 0222U);
  put(music("a"), "y");
  EXPECT_EQ(bytes(serverMusic("a")), "y");
}

TEST_F(SharedFiles, AreListed) {
  for (int i = 0; i < 1200; ++i) {
    put(serverMusic("track " + std::to_string(i) + ".mp3"), "x");
  }
  size_t files = 0;
  for (const auto &entry : fs::directory_iterator(point() / "Music")) {
    EXPECT_TRUE(entry.is_regular_file());
    EXPECT_EQ(entry.file_size(), 1U);
    ++files;
  }
  EXPECT_EQ(files, 1200U);
}

TEST_F(SharedFiles, KeepOddNames) {
  const std::vector<std::string> names{std::string(255, 'n'),
                                       "composed \xc3\xa4\xc3\xb6\xc3\xbc.mp3",
                                       "decomposed a\xcc\x88o\xcc\x88u\xcc\x88.mp3",
                                       "[brackets] {and} (more).mp3",
                                       "100% #1 & 'quotes' `ticks` $HOME !.mp3",
                                       "\xf0\x9f\x8e\xb5 \xe6\x97\xa5\xe6\x9c\xac.mp3",
                                       ".hidden",
                                       "comma, semicolon; equals= plus+.mp3"};
  put(folder() / "song", "music");
  for (const std::string &name : names) {
    EXPECT_EQ(copy(folder() / "song", music(name)).status, 0) << name;
    EXPECT_EQ(bytes(serverMusic(name)), "music") << name;
    EXPECT_EQ(bytes(music(name)), "music") << name;
  }
  std::vector<std::string> listed;
  for (const auto &entry : fs::directory_iterator(point() / "Music")) {
    listed.push_back(entry.path().filename().string());
  }
  std::vector<std::string> expected = names;
  std::sort(listed.begin(), listed.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(listed, expected);
}

TEST_F(SharedFiles, HaveNoNamesThatServersCannotKeep) {
  const auto errorOf = [this](const std::string &name) {
    const FileDescriptor file(::open(music(name).c_str(), O_WRONLY | O_CREAT, 0666));
    return file.isOpen() ? 0 : errno;
  };
  EXPECT_EQ(errorOf("a\\b"), EINVAL);
  EXPECT_EQ(errorOf("a:b"), EINVAL);
  EXPECT_EQ(errorOf("a?"), EINVAL);
  EXPECT_EQ(errorOf(std::string(256, 'n')), ENAMETOOLONG);
  EXPECT_TRUE(fs::is_empty(tree() / "Music"));
}

TEST_F(SharedFiles, RefuseWritingOnAReadOnlyShare) {
  put(serverMusic("a"), "x");
  product().tell("read-only");
  EXPECT_EQ(bytes(music("a")), "x");
  EXPECT_NE(copy(folder().parent_path() / "product/port", music("b")).status, 0);
  EXPECT_EQ(::unlink(music("a").c_str()), -1);
  EXPECT_EQ(::truncate(music("a").c_str(), 0), -1);
  product().tell("writable");
  EXPECT_EQ(bytes(serverMusic("a")), "x");
  EXPECT_FALSE(fs::exists(serverMusic("b")));
}

} // namespace sonorel::test
