#include "platform/linux/MountTable.h"
#include "platform/linux/SystemError.h"

#include <gtest/gtest.h>

#include "support/Printers.h"

#include <cerrno>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QByteArray kTable =
    "22 27 0:21 / /proc rw,relatime - proc proc rw\n"
    "27 1 254:0 / / rw,relatime - ext4 /dev/vda rw,discard\n"
    "40 27 0:30 / /run/user/1000 rw,nosuid shared:7 - tmpfs tmpfs rw\n"
    "61 40 0:52 / /run/user/1000/sonorel/Volumes/VB-SHARE$ rw,nosuid shared:9 master:3 - fuse.sonorel "
    "//nas/VB-SHARE$ rw,user_id=1000\n"
    "62 27 0:53 / /mnt/my\\040disk\\011a\\134b\\012c rw - cifs //server/a\\040share rw\n";

} // namespace

TEST(MountTable, ReadsEachLine) {
  const MountEntries entries = parseMountTable(kTable);
  ASSERT_EQ(entries.size(), 5U);
  EXPECT_EQ(entries[3].id, 61U);
  EXPECT_EQ(entries[3].device, QByteArray("0:52"));
  EXPECT_EQ(entries[3].point, QByteArray("/run/user/1000/sonorel/Volumes/VB-SHARE$"));
  EXPECT_EQ(entries[3].type, QByteArray("fuse.sonorel"));
  EXPECT_EQ(entries[3].source, QByteArray("//nas/VB-SHARE$"));
}

TEST(MountTable, UnescapesOctalNumbers) {
  const MountEntries entries = parseMountTable(kTable);
  EXPECT_EQ(entries[4].point, QByteArray("/mnt/my disk\ta\\b\nc"));
  EXPECT_EQ(entries[4].source, QByteArray("//server/a share"));
}

TEST(MountTable, PassesOverLinesWithoutTheForm) {
  EXPECT_TRUE(parseMountTable("").empty());
  EXPECT_TRUE(parseMountTable("garbage\n1 2 3\nx 27 0:1 / /a rw - ext4 /dev/a rw\n").empty());
  EXPECT_TRUE(parseMountTable("27 1 254:0 / /a rw,relatime ext4 /dev/vda rw\n").empty());
  EXPECT_TRUE(parseMountTable("27 1 254:0 / /a rw - ext4\n").empty());
  EXPECT_EQ(parseMountTable("27 1 254:0 / /a\\04 rw - ext4 x rw").front().point, QByteArray("/a\\04"));
}

TEST(MountTable, FindsTheMountOfAPath) {
  const MountEntries entries = parseMountTable(kTable);
  EXPECT_EQ(mountHolding(entries, "/run/user/1000/sonorel/Volumes/VB-SHARE$/Music/a")->id, 61U);
  EXPECT_EQ(mountHolding(entries, "/run/user/1000/sonorel/Volumes/VB-SHARE$2")->id, 40U);
  EXPECT_EQ(mountHolding(entries, "/run/user/10001")->id, 27U);
  EXPECT_EQ(mountHolding(entries, "/home")->id, 27U);
  EXPECT_EQ(mountAt(entries, "/run/user/1000")->id, 40U);
  EXPECT_EQ(mountAt(entries, "/run/user"), nullptr);
  EXPECT_TRUE(hasMountWithin(entries, "/run"));
  EXPECT_FALSE(hasMountWithin(entries, "/run/user/1000/sonorel/Volumes/VB"));
}

TEST(MountTable, TakesTheLastOfSeveralOnOnePoint) {
  const MountEntries entries = parseMountTable(
      "27 1 254:0 / / rw - ext4 a rw\n30 27 0:9 / /m rw - tmpfs t rw\n31 30 0:10 / /m rw - cifs //s/x rw\n");
  EXPECT_EQ(mountAt(entries, "/m")->id, 31U);
  EXPECT_EQ(mountHolding(entries, "/m/file")->type, QByteArray("cifs"));
}

TEST(MountTable, CallsEveryShareMountByTheSystemsName) {
  for (const char *type : {"cifs", "smb3", "fuse.sonorel"}) {
    EXPECT_EQ(systemTypeName(type), u"smbfs"_s) << type;
  }
  EXPECT_EQ(systemTypeName("fuse.sshfs"), u"fuse.sshfs"_s);
  EXPECT_EQ(systemTypeName("ext4"), u"ext4"_s);
}

TEST(MountTable, GivesAnotherMountAnotherIdentity) {
  const MountEntry first{61, "0:52", "/m", "cifs", "//nas/a"};
  MountEntry other = first;
  EXPECT_EQ(mountIdentity(first), mountIdentity(other));
  other.source = "//nas/b";
  EXPECT_NE(mountIdentity(first), mountIdentity(other));
  other = first;
  other.id = 62;
  EXPECT_NE(mountIdentity(first), mountIdentity(other));
}

TEST(MountTable, ReadsTheTableOfThisProcess) {
  MountTable table;
  const auto entries = table.entries();
  ASSERT_NE(mountAt(*entries, "/"), nullptr);
  EXPECT_EQ(table.entries(), entries) << "unchanged, so not read again";
}

TEST(SystemError, SaysWhatMayBeConcluded) {
  EXPECT_EQ(failureKind(ENOENT), FailureKind::Absent);
  EXPECT_EQ(failureKind(ENOTDIR), FailureKind::Absent);
  EXPECT_EQ(failureKind(EEXIST), FailureKind::Exists);
  for (const int error : {ENOSPC, EDQUOT}) {
    EXPECT_EQ(failureKind(error), FailureKind::DiskFull) << error;
  }
  for (const int error :
       {EIO, ENOTCONN, ESTALE, EHOSTDOWN, EHOSTUNREACH, ETIMEDOUT, ECONNRESET, ECONNABORTED, ENODEV}) {
    EXPECT_EQ(failureKind(error), FailureKind::Unknown) << error;
  }
  for (const int error : {EACCES, EPERM, EROFS, EXDEV, EISDIR, ENAMETOOLONG}) {
    EXPECT_EQ(failureKind(error), FailureKind::Other) << error;
  }
}

TEST(SystemError, ProvesAbsenceOnlyByTheName) {
  for (const int error : {ENOENT, ENOTDIR, ENAMETOOLONG, ELOOP}) {
    EXPECT_TRUE(provesAbsence(error)) << error;
  }
  for (const int error : {EIO, EACCES, ENOTCONN, ETIMEDOUT, ENOMEM}) {
    EXPECT_FALSE(provesAbsence(error)) << error;
  }
}

TEST(SystemError, SpeaksTheSystemsWords) {
  EXPECT_EQ(systemFailure(ENOSPC, u"/a/b"_s).reason(), u"No space left on device: /a/b"_s);
}

} // namespace sonorel::test
