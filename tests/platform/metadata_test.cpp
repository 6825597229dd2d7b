#include "platform/linux/FileDescriptor.h"
#include "platform/linux/TagLibMetadata.h"
#include "support/Printers.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/inotify.h>
#include <sys/stat.h>
#include <taglib/fileref.h>
#include <taglib/tpropertymap.h>

using namespace sonorel;
using namespace Qt::Literals::StringLiterals;

namespace {

TagLib::String tagText(const QString &text) {
  return TagLib::String(text.toStdString(), TagLib::String::UTF8);
}

class MetadataTest : public testing::Test {
protected:
  QTemporaryDir folder;
  TagLibMetadata metadata{[](const QString &path) { return std::optional<QString>(path); }};

  [[nodiscard]] QString path(const QString &name) const { return folder.filePath(name); }

  QString put(const QString &name, const QByteArray &bytes) const {
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return path(name);
  }

  // A tenth of a second of silence in the codec that the arguments choose, with the tags given.
  QString make(const QString &name, const QStringList &codec, const QStringList &artists) const {
    QProcess ffmpeg;
    QStringList arguments{u"-loglevel"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s, u"anullsrc=r=44100:cl=mono"_s,
                          u"-t"_s,        u"0.1"_s};
    ffmpeg.start(u"ffmpeg"_s, arguments + codec + QStringList{path(name)});
    EXPECT_TRUE(ffmpeg.waitForFinished()) << name.toStdString();
    EXPECT_EQ(ffmpeg.exitCode(), 0) << ffmpeg.readAllStandardError().toStdString();
    tag(path(name), artists);
    return path(name);
  }

  static void tag(const QString &file, const QStringList &artists) {
    TagLib::FileRef media(file.toUtf8().constData());
    ASSERT_FALSE(media.isNull());
    TagLib::PropertyMap tags;
    for (const QString &artist : artists) {
      tags["ARTIST"].append(tagText(artist));
    }
    tags["ALBUM"] = tagText(u"Albüm €"_s);
    tags["TITLE"] = tagText(u"日本 🎵"_s);
    media.file()->setProperties(tags);
    ASSERT_TRUE(media.save());
  }

  void expectTags(const QString &file, const QStringList &codecs) {
    const auto tags = metadata.read(file);
    ASSERT_TRUE(tags) << file.toStdString();
    EXPECT_EQ(tags->title, u"日本 🎵"_s) << file.toStdString();
    EXPECT_EQ(tags->album, u"Albüm €"_s) << file.toStdString();
    EXPECT_EQ(tags->authors, (QStringList{u"Wham!"_s, u"A \"B\""_s})) << file.toStdString();
    EXPECT_EQ(tags->codecs, codecs) << file.toStdString();
  }

  void expectEmptyTags(const QString &file) {
    const auto tags = metadata.read(file);
    ASSERT_TRUE(tags) << file.toStdString();
    EXPECT_EQ(tags->title, QString());
    EXPECT_EQ(tags->album, QString());
    EXPECT_TRUE(tags->authors.isEmpty());
  }
};

class EncodedMetadataTest : public MetadataTest {
protected:
  const QStringList two{u"Wham!"_s, u"A \"B\""_s};

  void SetUp() override {
    if (QStandardPaths::findExecutable(u"ffmpeg"_s).isEmpty()) {
      GTEST_SKIP() << "ffmpeg is not installed";
    }
  }
};

} // namespace

TEST_F(EncodedMetadataTest, ReadsFlac) {
  expectTags(make(u"a.flac"_s, {}, two), {});
}

TEST_F(EncodedMetadataTest, ReadsMp3) {
  expectTags(make(u"a.mp3"_s, {}, two), {});
}

TEST_F(EncodedMetadataTest, ReadsWav) {
  expectTags(make(u"a.WAV"_s, {}, two), {});
}

TEST_F(EncodedMetadataTest, ReadsOggVorbis) {
  expectTags(make(u"a.ogg"_s, {u"-c:a"_s, u"libvorbis"_s}, two), {});
}

// A compilation tagger's second album, or the same one twice: the player's key shows one name.
TEST_F(EncodedMetadataTest, OfSeveralAlbumsAndTitlesTheFirstCounts) {
  for (const QString &name : {u"a.flac"_s, u"a.mp3"_s, u"a.ogg"_s}) {
    const QString file = make(name, {}, two);
    TagLib::FileRef media(file.toUtf8().constData());
    TagLib::PropertyMap tags = media.file()->properties();
    tags["ALBUM"] = TagLib::StringList(tagText(u"Gold"_s)).append(tagText(u"Arrival"_s));
    tags["TITLE"] = TagLib::StringList(tagText(u"Dancing Queen"_s)).append(tagText(u"Reine"_s));
    media.file()->setProperties(tags);
    ASSERT_TRUE(media.save()) << name.toStdString();
    const auto read = metadata.read(file);
    ASSERT_TRUE(read) << name.toStdString();
    EXPECT_EQ(read->album, u"Gold"_s) << name.toStdString();
    EXPECT_EQ(read->title, u"Dancing Queen"_s) << name.toStdString();
    EXPECT_EQ(read->authors, two) << name.toStdString();
  }
}

TEST_F(EncodedMetadataTest, AnAlbumWithoutTextDoesNotCount) {
  const QString file = make(u"a.flac"_s, {}, two);
  TagLib::FileRef media(file.toUtf8().constData());
  TagLib::PropertyMap tags = media.file()->properties();
  tags["ALBUM"] = TagLib::StringList(TagLib::String()).append(tagText(u"Gold"_s));
  media.file()->setProperties(tags);
  ASSERT_TRUE(media.save());
  EXPECT_EQ(metadata.read(file)->album, u"Gold"_s);
}

TEST_F(EncodedMetadataTest, TellsAppleLosslessFromAac) {
  expectTags(make(u"aac.m4a"_s, {u"-c:a"_s, u"aac"_s}, two), {u"AAC"_s});
  expectTags(make(u"alac.m4a"_s, {u"-c:a"_s, u"alac"_s}, two), {u"Apple Lossless"_s});
  ASSERT_TRUE(QFile::copy(path(u"alac.m4a"_s), path(u"alac.m4p"_s)));
  expectTags(path(u"alac.m4p"_s), {u"Apple Lossless"_s});
}

// As another program has written them: a wave file has its own kind of tag.
TEST_F(EncodedMetadataTest, ReadsTheTagsThatFfmpegWrites) {
  for (const QString &name : {u"a.wav"_s, u"a.mp3"_s, u"a.flac"_s, u"a.m4a"_s, u"a.ogg"_s, u"a.wma"_s, u"a.opus"_s}) {
    const QStringList silence{u"-loglevel"_s, u"error"_s,    u"-f"_s, u"lavfi"_s,
                              u"-i"_s,        u"anullsrc"_s, u"-t"_s, u"0.1"_s};
    const QStringList tags{u"-metadata"_s,       u"title=Long Wave"_s, u"-metadata"_s,
                           u"artist=The Band"_s, u"-metadata"_s,       u"album=Four Formats"_s};
    ASSERT_EQ(QProcess::execute(u"ffmpeg"_s, silence + tags + QStringList{path(name)}), 0) << name.toStdString();
    const auto read = metadata.read(path(name));
    ASSERT_TRUE(read) << name.toStdString();
    EXPECT_EQ(read->title, u"Long Wave"_s) << name.toStdString();
    EXPECT_EQ(read->album, u"Four Formats"_s) << name.toStdString();
    EXPECT_EQ(read->authors, QStringList{u"The Band"_s}) << name.toStdString();
  }
}

TEST_F(EncodedMetadataTest, FileWithoutTagsIsStillAnItem) {
  QProcess::execute(u"ffmpeg"_s, {u"-loglevel"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s, u"anullsrc"_s, u"-t"_s,
                                  u"0.1"_s, u"-fflags"_s, u"+bitexact"_s, path(u"plain.mp3"_s)});
  expectEmptyTags(path(u"plain.mp3"_s));
}

TEST_F(EncodedMetadataTest, CutFilesHaveNoTagsAndDoNoHarm) {
  const QString whole = make(u"whole.m4a"_s, {u"-c:a"_s, u"aac"_s}, two);
  QFile file(whole);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QByteArray bytes = file.readAll();
  for (qsizetype length = 0; length < bytes.size(); length += 97) {
    EXPECT_TRUE(metadata.read(put(u"cut.m4a"_s, bytes.left(length)))) << length;
  }
}

TEST_F(MetadataTest, ReadsTheTagOfARawAacFile) {
  put(u"a.mp3"_s, QByteArray("\xFF\xFB\x90\x00", 4) + QByteArray(1000, '\0'));
  tag(path(u"a.mp3"_s), {u"Wham!"_s, u"A \"B\""_s});
  ASSERT_TRUE(QFile::rename(path(u"a.mp3"_s), path(u"a.aac"_s)));
  expectTags(path(u"a.aac"_s), {});
}

TEST_F(MetadataTest, JunkUnderAKnownExtensionHasNoTags) {
  for (const QString &name : {u"x.mp3"_s, u"x.flac"_s, u"x.m4a"_s, u"x.wav"_s, u"x.ogg"_s, u"x.wma"_s, u"x.opus"_s}) {
    expectEmptyTags(put(name, QByteArray("this is no music\n").repeated(300)));
    expectEmptyTags(put(u"empty"_s + name, {}));
  }
}

// The longest search that is made in a file: to the end of a smaller one, and no further in a larger one.
constexpr qint64 kSearched = 1024 * 1024;

qint64 bytesReadSoFar() {
  QFile counters(u"/proc/self/io"_s);
  EXPECT_TRUE(counters.open(QIODevice::ReadOnly));
  const QByteArray line = counters.readLine(); // "rchar: 12345"
  return line.mid(line.indexOf(' ') + 1).trimmed().toLongLong();
}

TEST_F(MetadataTest, ALongFileWithoutAnyMarkIsNotSearchedToItsEnd) {
  for (const QString &name : {u"x.mp3"_s, u"x.aac"_s, u"x.flac"_s, u"x.wav"_s, u"x.m4a"_s, u"x.wma"_s, u"x.ogg"_s}) {
    put(name, {});
    ASSERT_TRUE(QFile::resize(path(name), 32 * kSearched));
    const qint64 before = bytesReadSoFar();
    expectEmptyTags(path(name));
    EXPECT_LT(bytesReadSoFar() - before, 6 * kSearched) << name.toStdString();
  }
}

TEST_F(MetadataTest, ATagBehindJunkIsFound) {
  const QByteArray frame = QByteArray("\xFF\xFB\x90\x00", 4) + QByteArray(413, '\0');
  const QByteArray title("TIT2\0\0\0\x05\0\0\0Gold", 15);
  const QByteArray tag = QByteArray("ID3\x03\0\0\0\0\0\x0F", 10) + title;
  const auto tags = metadata.read(put(u"junk.mp3"_s, QByteArray(kSearched / 2, 'j') + tag + frame.repeated(20)));
  ASSERT_TRUE(tags);
  EXPECT_EQ(tags->title, u"Gold"_s);
}

TEST_F(MetadataTest, UnknownFormatIsNoItem) {
  EXPECT_FALSE(metadata.read(put(u"x.txt"_s, "text")));
  EXPECT_FALSE(metadata.read(put(u"mp3"_s, "text")));
  ASSERT_TRUE(QDir(folder.path()).mkpath(u"folder.mp3/x"_s));
  EXPECT_FALSE(metadata.read(path(u"folder.mp3/x"_s)));
}

TEST_F(MetadataTest, OpensRegularFilesOnly) {
  EXPECT_FALSE(metadata.read(path(u"absent.mp3"_s)));
  EXPECT_FALSE(metadata.read(path(u"folder.mp3"_s)));
  ASSERT_EQ(::mkfifo(path(u"pipe.mp3"_s).toUtf8().constData(), 0600), 0);
  EXPECT_FALSE(metadata.read(path(u"pipe.mp3"_s))); // and does not wait for a writer
  ASSERT_TRUE(QFile::link(u"/dev/zero"_s, path(u"zero.mp3"_s)));
  EXPECT_FALSE(metadata.read(path(u"zero.mp3"_s)));
}

// A device may act when it is opened: a tape rewinds, a serial line rings.
TEST_F(MetadataTest, DoesNotEvenOpenWhatIsNoRegularFile) {
  const QByteArray pipe = path(u"pipe.mp3"_s).toUtf8();
  ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
  const FileDescriptor watch(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
  ASSERT_GE(::inotify_add_watch(watch.get(), pipe.constData(), IN_OPEN), 0);
  EXPECT_FALSE(metadata.read(path(u"pipe.mp3"_s)));
  char event[512];
  EXPECT_LT(::read(watch.get(), event, sizeof event), 0) << "it was opened";
}
