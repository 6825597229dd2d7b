#include "platform/FileSystemContract.h"

#include "ContractRegistration.h"
#include "support/Printers.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QString kPoint = u"/Volumes/VB-SHARE$"_s;

void readsWhatWasWritten(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  const QString path = subject.folder() + u"/a"_s;
  files.write(path, QByteArray("first\0bytes", 11));
  EXPECT_EQ(files.read(path), QByteArray("first\0bytes", 11));
  files.write(path, "2nd");
  EXPECT_EQ(files.read(path), QByteArray("2nd"));
  const auto found = files.attributes(path, Links::NoFollow);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->kind, FileKind::File);
  EXPECT_EQ(found->size, 3U);
  EXPECT_EQ(files.attributes(subject.folder(), Links::Follow)->kind, FileKind::Folder);
}

void saysWhatIsAbsent(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  const QString path = subject.folder() + u"/nothing"_s;
  EXPECT_EQ(files.presence(path), Presence::Absent);
  EXPECT_EQ(files.presence(path + u"/below"_s), Presence::Absent);
  EXPECT_FALSE(files.attributes(path, Links::Follow));
  EXPECT_EQ(failureOf([&] { static_cast<void>(files.read(path)); }), FailureKind::Absent);
  EXPECT_EQ(failureOf([&] { static_cast<void>(files.list(path)); }), FailureKind::Absent);
  EXPECT_EQ(failureOf([&] { files.removeFile(path); }), FailureKind::Absent);
  EXPECT_EQ(failureOf([&] { files.removeTree(path); }), FailureKind::Absent);
  EXPECT_EQ(failureOf([&] { files.rename(path, path + u'2'); }), FailureKind::Absent);
  EXPECT_EQ(failureOf([&] { files.copy(path, path + u'2'); }), FailureKind::Absent);
  EXPECT_EQ(failureOf([&] { files.setMode(path, 0600); }), FailureKind::Absent);
  EXPECT_EQ(failureOf([&] { files.sync(path); }), FailureKind::Absent);
  EXPECT_EQ(failureOf([&] { files.write(path + u"/below"_s, "x"); }), FailureKind::Absent);
  EXPECT_EQ(failureOf([&] { files.writeAtomically(path + u"/below"_s, "x"); }), FailureKind::Absent);
  EXPECT_EQ(failureOf([&] { files.createFolder(path + u"/below"_s, 0777); }), FailureKind::Absent);
  EXPECT_EQ(files.list(subject.folder()), QStringList());
}

void refusesMoreThanTheLimit(FileSystemSubject &subject) {
  const QString path = subject.folder() + u"/a"_s;
  subject.files().write(path, "12345678");
  EXPECT_EQ(subject.files().read(path, 8), QByteArray("12345678"));
  EXPECT_EQ(failureOf([&] { static_cast<void>(subject.files().read(path, 7)); }), FailureKind::Other);
}

void createsExclusivelyOnce(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  const QString path = subject.folder() + u"/lock"_s;
  files.createExclusively(path, "mine");
  EXPECT_EQ(failureOf([&] { files.createExclusively(path, "yours"); }), FailureKind::Exists);
  EXPECT_EQ(files.read(path), QByteArray("mine"));
}

void replacesAtomically(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  const QString path = subject.folder() + u"/a"_s;
  files.writeAtomically(path, "new", 0640);
  EXPECT_EQ(files.attributes(path, Links::Follow)->mode, 0640U);
  const quint64 before = files.attributes(path, Links::Follow)->fileId;
  files.writeAtomically(path, "newer");
  EXPECT_EQ(files.read(path), QByteArray("newer"));
  EXPECT_EQ(files.attributes(path, Links::Follow)->mode, 0640U);
  EXPECT_NE(files.attributes(path, Links::Follow)->fileId, before);
  files.writeAtomically(path, "newest", 0777);
  EXPECT_EQ(files.attributes(path, Links::Follow)->mode, 0777U);
  EXPECT_EQ(files.list(subject.folder()), QStringList{u"a"_s});
}

void leavesNoTemporaryBehindAfterAFailure(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  files.createFolder(subject.folder() + u"/folder"_s, 0777);
  EXPECT_EQ(failureOf([&] { files.writeAtomically(subject.folder() + u"/folder"_s, "x"); }), FailureKind::Other);
  EXPECT_EQ(files.list(subject.folder()), QStringList{u"folder"_s});
}

void createsFoldersWithTheirExactMode(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  const QString path = subject.folder() + u"/f"_s;
  files.createFolder(path, 0777);
  EXPECT_EQ(files.attributes(path, Links::Follow)->mode, 0777U);
  EXPECT_EQ(failureOf([&] { files.createFolder(path, 0700); }), FailureKind::Exists);
  EXPECT_EQ(files.attributes(path, Links::Follow)->mode, 0777U);
  files.createFolder(path + u"/private"_s, 0700);
  EXPECT_EQ(files.attributes(path + u"/private"_s, Links::Follow)->mode, 0700U);
  files.setMode(path, 0750);
  EXPECT_EQ(files.attributes(path, Links::Follow)->mode, 0750U);
}

void listsByCodeUnit(FileSystemSubject &subject) {
  const QStringList names{u".hidden"_s, u"B"_s, u"a"_s, u"b"_s, u"\u00E4"_s, u"\u540D"_s};
  for (const QString &name : names) {
    subject.files().write(subject.folder() + u'/' + name, "");
  }
  EXPECT_EQ(subject.files().list(subject.folder()), names);
  const QString file = subject.folder() + u"/a"_s;
  EXPECT_EQ(failureOf([&] { static_cast<void>(subject.files().list(file)); }), FailureKind::Other);
}

void keepsOddNamesApart(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  const QStringList names{u"-rf"_s,     u"a\nb"_s,    u"$(x) `y` \"z\" 'q'"_s,
                          u"\u00FC"_s,  u"u\u0308"_s, u"\U0001F3B5"_s,
                          u" blank "_s, u"*?[a]"_s};
  for (const QString &name : names) {
    files.createExclusively(subject.folder() + u'/' + name, name.toUtf8());
  }
  for (const QString &name : names) {
    EXPECT_EQ(files.read(subject.folder() + u'/' + name), name.toUtf8());
  }
  EXPECT_EQ(files.list(subject.folder()).size(), names.size());
}

void copiesBytesOnly(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  const QString from = subject.folder() + u"/from"_s;
  const QString to = subject.folder() + u"/to"_s;
  files.write(from, "the bytes");
  files.write(to, "something that was longer");
  files.setMode(from, 0600);
  files.setMode(to, 0644);
  files.copy(from, to);
  EXPECT_EQ(files.read(to), QByteArray("the bytes"));
  EXPECT_EQ(files.attributes(to, Links::Follow)->mode, 0644U);
}

void renamesFilesAndFolders(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  const QString base = subject.folder();
  files.write(base + u"/a"_s, "a");
  files.write(base + u"/b"_s, "b");
  files.rename(base + u"/a"_s, base + u"/b"_s);
  EXPECT_EQ(files.read(base + u"/b"_s), QByteArray("a"));
  files.createFolder(base + u"/folder"_s, 0777);
  files.write(base + u"/folder/x"_s, "x");
  files.rename(base + u"/folder"_s, base + u"/moved"_s);
  EXPECT_EQ(files.read(base + u"/moved/x"_s), QByteArray("x"));
  EXPECT_EQ(files.list(base), (QStringList{u"b"_s, u"moved"_s}));
}

void removesATreeButNotWhatLinksLeadTo(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  const QString base = subject.folder();
  for (const QString &folder : {u"/kept"_s, u"/tree"_s, u"/tree/deep"_s}) {
    files.createFolder(base + folder, 0777);
  }
  files.write(base + u"/kept/file"_s, "still here");
  files.write(base + u"/tree/deep/file"_s, "x");
  subject.putLink(base + u"/tree/deep/link"_s, base + u"/kept"_s);
  files.removeTree(base + u"/tree"_s);
  EXPECT_EQ(files.presence(base + u"/tree"_s), Presence::Absent);
  EXPECT_EQ(files.read(base + u"/kept/file"_s), QByteArray("still here"));
  subject.putLink(base + u"/link"_s, base + u"/kept"_s);
  files.removeTree(base + u"/link"_s);
  EXPECT_EQ(files.list(base), QStringList{u"kept"_s});
  EXPECT_EQ(files.read(base + u"/kept/file"_s), QByteArray("still here"));
}

void removesFilesOnly(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  files.createFolder(subject.folder() + u"/folder"_s, 0777);
  files.write(subject.folder() + u"/file"_s, "x");
  EXPECT_EQ(failureOf([&] { files.removeFile(subject.folder() + u"/folder"_s); }), FailureKind::Other);
  files.removeFile(subject.folder() + u"/file"_s);
  EXPECT_EQ(files.list(subject.folder()), QStringList{u"folder"_s});
}

void setsAsideUnderFreeNames(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  const QString path = subject.folder() + u"/list.xml"_s;
  files.write(path, "first");
  const QString first = files.setAside(path);
  files.write(path, "second");
  const QString second = files.setAside(path);
  EXPECT_NE(first, second);
  EXPECT_EQ(files.read(first), QByteArray("first"));
  EXPECT_EQ(files.read(second), QByteArray("second"));
  EXPECT_EQ(files.presence(path), Presence::Absent);
}

void knowsTheSameFile(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  const QString file = subject.folder() + u"/file"_s;
  files.write(file, "same");
  files.write(subject.folder() + u"/twin"_s, "same");
  subject.putLink(subject.folder() + u"/link"_s, file);
  EXPECT_TRUE(files.sameFile(file, file));
  EXPECT_TRUE(files.sameFile(file, subject.folder() + u"/link"_s));
  EXPECT_FALSE(files.sameFile(file, subject.folder() + u"/twin"_s));
  EXPECT_FALSE(files.sameFile(file, subject.folder() + u"/nothing"_s));
}

void tellsWhatCanBeRead(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  const QString base = subject.folder();
  files.write(base + u"/file"_s, {});
  subject.putLink(base + u"/link"_s, base + u"/file"_s);
  subject.putFifo(base + u"/other"_s);
  EXPECT_TRUE(files.canRead(base + u"/file"_s));
  EXPECT_TRUE(files.canRead(base + u"/link"_s));
  EXPECT_FALSE(files.canRead(base + u"/nothing"_s));
  EXPECT_FALSE(files.canRead(base));
  EXPECT_FALSE(files.canRead(base + u"/other"_s));
}

void followsLinksOrNot(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  const QString base = subject.folder();
  files.write(base + u"/file"_s, "12345");
  subject.putLink(base + u"/link"_s, base + u"/file"_s);
  subject.putLink(base + u"/broken"_s, base + u"/nothing"_s);
  EXPECT_EQ(files.attributes(base + u"/link"_s, Links::Follow)->kind, FileKind::File);
  EXPECT_EQ(files.attributes(base + u"/link"_s, Links::Follow)->size, 5U);
  EXPECT_EQ(files.attributes(base + u"/link"_s, Links::NoFollow)->kind, FileKind::Link);
  EXPECT_EQ(files.presence(base + u"/broken"_s), Presence::Absent);
  EXPECT_FALSE(files.attributes(base + u"/broken"_s, Links::Follow));
  EXPECT_EQ(files.attributes(base + u"/broken"_s, Links::NoFollow)->kind, FileKind::Link);
}

void opensRegularFilesOnly(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  const QString fifo = subject.folder() + u"/fifo"_s;
  subject.putFifo(fifo);
  EXPECT_EQ(files.attributes(fifo, Links::NoFollow)->kind, FileKind::Other);
  EXPECT_EQ(failureOf([&] { static_cast<void>(files.read(fifo)); }), FailureKind::Other);
  EXPECT_EQ(failureOf([&] { files.write(fifo, "x"); }), FailureKind::Other);
  EXPECT_EQ(failureOf([&] { static_cast<void>(files.read(subject.folder())); }), FailureKind::Other);
  EXPECT_EQ(failureOf([&] { files.write(subject.folder(), "x"); }), FailureKind::Other);
}

void locksUntilReleased(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  const QString path = subject.folder() + u"/lock"_s;
  auto first = files.lock(path);
  ASSERT_TRUE(first);
  EXPECT_FALSE(files.lock(path));
  EXPECT_TRUE(files.lock(subject.folder() + u"/other"_s));
  first.reset();
  EXPECT_TRUE(files.lock(path));
}

void tellsTheTimeOfAFile(FileSystemSubject &subject) {
  const QString path = subject.folder() + u"/a"_s;
  subject.files().write(path, "x");
  subject.setModified(path, 1'234'567'890);
  EXPECT_EQ(subject.files().attributes(path, Links::Follow)->modifiedSeconds, 1'234'567'890);
}

void syncsFilesAndFolders(FileSystemSubject &subject) {
  subject.files().write(subject.folder() + u"/a"_s, "x");
  EXPECT_EQ(failureOf([&] { subject.files().sync(subject.folder() + u"/a"_s); }), std::nullopt);
  EXPECT_EQ(failureOf([&] { subject.files().sync(subject.folder()); }), std::nullopt);
}

void writesNothingBelowAPointThatIsNotMounted(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  files.createFolder(kPoint, 0777);
  EXPECT_EQ(failureOf([&] { files.createFolder(kPoint, 0777); }), FailureKind::Exists);
  const QString path = kPoint + u"/System"_s;
  files.write(subject.folder() + u"/local"_s, "x");
  EXPECT_EQ(files.presence(path), Presence::Absent);
  EXPECT_EQ(failureOf([&] { files.createFolder(path, 0777); }), FailureKind::Unknown);
  EXPECT_EQ(failureOf([&] { files.write(path, "x"); }), FailureKind::Unknown);
  EXPECT_EQ(failureOf([&] { files.writeAtomically(path, "x"); }), FailureKind::Unknown);
  EXPECT_EQ(failureOf([&] { files.createExclusively(path, "x"); }), FailureKind::Unknown);
  EXPECT_EQ(failureOf([&] { files.copy(subject.folder() + u"/local"_s, path); }), FailureKind::Unknown);
  EXPECT_EQ(failureOf([&] { files.rename(subject.folder() + u"/local"_s, path); }), FailureKind::Unknown);
  EXPECT_EQ(failureOf([&] { static_cast<void>(files.lock(path)); }), FailureKind::Unknown);
  EXPECT_EQ(files.list(kPoint), QStringList());
  const auto volume = files.volume(kPoint);
  EXPECT_TRUE(!volume || volume->mountRoot != kPoint);
}

void showsAVolumeWhileItIsMounted(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  subject.mountShare();
  const QString path = kPoint + u"/a file"_s;
  files.write(path, "on the share");
  const auto volume = files.volume(path);
  ASSERT_TRUE(volume);
  EXPECT_EQ(volume->mountRoot, kPoint);
  EXPECT_EQ(volume->typeName, u"smbfs"_s);
  EXPECT_GT(volume->freeBytes, 0U);
  EXPECT_EQ(files.volume(kPoint)->mountId, volume->mountId);
  EXPECT_EQ(files.attributes(kPoint, Links::NoFollow)->kind, FileKind::Folder);
  subject.unmountShare();
  EXPECT_EQ(files.presence(kPoint), Presence::Present);
  EXPECT_EQ(files.presence(path), Presence::Absent);
  EXPECT_EQ(failureOf([&] { static_cast<void>(files.read(path)); }), FailureKind::Absent);
  EXPECT_EQ(failureOf([&] { files.write(path, "lost"); }), FailureKind::Unknown);
  EXPECT_EQ(failureOf([&] { files.removeFile(path); }), FailureKind::Unknown);
  subject.mountShare();
  EXPECT_EQ(files.read(path), QByteArray("on the share"));
  EXPECT_NE(files.volume(kPoint)->mountId, volume->mountId);
}

void neverRemovesAMountedVolume(FileSystemSubject &subject) {
  FileSystem &files = subject.files();
  subject.mountShare();
  files.write(kPoint + u"/precious"_s, "x");
  EXPECT_NE(failureOf([&] { files.removeTree(kPoint); }), std::nullopt);
  EXPECT_NE(failureOf([&] { files.removeFile(kPoint); }), std::nullopt);
  EXPECT_EQ(files.read(kPoint + u"/precious"_s), QByteArray("x"));
  files.createFolder(kPoint + u"/folder"_s, 0777);
  files.write(kPoint + u"/folder/x"_s, "x");
  files.removeTree(kPoint + u"/folder"_s);
  EXPECT_EQ(files.presence(kPoint + u"/folder"_s), Presence::Absent);
}

void removesAnEmptyPoint(FileSystemSubject &subject) {
  subject.mountShare();
  subject.unmountShare();
  subject.files().removeTree(kPoint);
  EXPECT_EQ(subject.files().presence(kPoint), Presence::Absent);
}

} // namespace

bool registerFileSystemContract(const char *suite, std::function<std::unique_ptr<FileSystemSubject>()> make) {
  return registerCases<FileSystemSubject>(
      suite, make,
      {{"ReadsWhatWasWritten", readsWhatWasWritten},
       {"SaysWhatIsAbsent", saysWhatIsAbsent},
       {"RefusesMoreThanTheLimit", refusesMoreThanTheLimit},
       {"CreatesExclusivelyOnce", createsExclusivelyOnce},
       {"ReplacesAtomically", replacesAtomically},
       {"LeavesNoTemporaryBehindAfterAFailure", leavesNoTemporaryBehindAfterAFailure},
       {"CreatesFoldersWithTheirExactMode", createsFoldersWithTheirExactMode},
       {"ListsByCodeUnit", listsByCodeUnit},
       {"KeepsOddNamesApart", keepsOddNamesApart},
       {"CopiesBytesOnly", copiesBytesOnly},
       {"RenamesFilesAndFolders", renamesFilesAndFolders},
       {"RemovesATreeButNotWhatLinksLeadTo", removesATreeButNotWhatLinksLeadTo},
       {"RemovesFilesOnly", removesFilesOnly},
       {"SetsAsideUnderFreeNames", setsAsideUnderFreeNames},
       {"KnowsTheSameFile", knowsTheSameFile},
       {"TellsWhatCanBeRead", tellsWhatCanBeRead},
       {"FollowsLinksOrNot", followsLinksOrNot},
       {"OpensRegularFilesOnly", opensRegularFilesOnly},
       {"LocksUntilReleased", locksUntilReleased},
       {"TellsTheTimeOfAFile", tellsTheTimeOfAFile},
       {"SyncsFilesAndFolders", syncsFilesAndFolders},
       {"WritesNothingBelowAPointThatIsNotMounted", writesNothingBelowAPointThatIsNotMounted},
       {"ShowsAVolumeWhileItIsMounted", showsAVolumeWhileItIsMounted},
       {"NeverRemovesAMountedVolume", neverRemovesAMountedVolume},
       {"RemovesAnEmptyPoint", removesAnEmptyPoint}});
}

} // namespace sonorel::test
