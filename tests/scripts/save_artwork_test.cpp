// The artwork exporter as the client runs it: arguments, status, and what then stands on the share.
#include "ScriptFolder.h"
#include "scripts/EmbeddedPicture.h"

#include "support/Printers.h"

#include <QImage>
#include <QtEndian>

#include <sys/stat.h>
#include <taglib/asffile.h>
#include <taglib/asfpicture.h>
#include <taglib/attachedpictureframe.h>
#include <taglib/id3v2tag.h>
#include <taglib/mpegfile.h>
#include <zlib.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::test {

namespace {

const QString kExporter = QStringLiteral(SONOREL_BUILT_SCRIPTS) + u"/SaveToFolder_jpegonly.scpt"_s;

class SaveArtwork : public testing::Test {
protected:
  ScriptFolder files;
  const QString music = files.makeFolder(u"share/Music/Mac/ABBA/Gold"_s);

  SaveArtwork() { files.makeFolder(u"album"_s); }

  [[nodiscard]] Ended save(const QString &track, const QString &folders = u"ABBA:Gold:"_s,
                           const QString &name = u"Waterloo"_s) const {
    return ScriptFolder::run(kExporter, {track, u"a title"_s, name, folders},
                             {u"SONOREL_MUSIC_FOLDER="_s + files.path(u"share/Music/Mac/"_s)});
  }
  // The same under the client's own temporary name; killed in the middle when kill says so.
  [[nodiscard]] Ended saveAs(const QString &temporaryName, const QString &track, bool kill = false) const {
    const QStringList arguments{track, u"a title"_s, u"Waterloo"_s, u"ABBA:Gold:"_s};
    const QStringList variables{u"SONOREL_MUSIC_FOLDER="_s + files.path(u"share/Music/Mac/"_s),
                                u"SONOREL_TEMPORARY_NAME="_s + temporaryName};
    return kill ? ScriptFolder::runAndKill(100, kExporter, arguments, variables)
                : ScriptFolder::run(kExporter, arguments, variables);
  }
  [[nodiscard]] QByteArray saved() const { return files.bytes(u"share/Music/Mac/ABBA/Gold/Waterloo.jpg"_s); }
  [[nodiscard]] QStringList onShare() const { return files.filesIn(u"share/Music/Mac/ABBA/Gold"_s); }

  QByteArray picture(const QString &name, const QString &colour, const QString &size = u"64x48"_s) const {
    files.ffmpeg({u"-f"_s, u"lavfi"_s, u"-i"_s, u"color=%1:s=%2"_s.arg(colour, size), u"-frames:v"_s, u"1"_s,
                  files.path(name)});
    return files.bytes(name);
  }
  // A track with the picture in it, as another program writes it; none when the picture is empty.
  QString track(const QString &name, const QString &picture = {}) const {
    QStringList arguments{u"-f"_s, u"lavfi"_s, u"-i"_s, u"anullsrc=r=44100:cl=mono"_s};
    if (!picture.isEmpty()) {
      arguments += {u"-i"_s,   files.path(picture), u"-map"_s,           u"0"_s,           u"-map"_s, u"1"_s,
                    u"-c:v"_s, u"copy"_s,           u"-disposition:v"_s, u"attached_pic"_s};
    }
    files.ffmpeg(arguments + QStringList{u"-t"_s, u"0.2"_s, files.path(u"album/"_s + name)});
    return files.path(u"album/"_s + name);
  }
  // An mp3 file whose only picture has these bytes.
  QString trackHolding(const QByteArray &bytes) const {
    QString name = track(u"holding.mp3"_s);
    TagLib::MPEG::File file(name.toUtf8().constData());
    add(file, bytes, TagLib::ID3v2::AttachedPictureFrame::Other);
    file.save();
    return name;
  }
  static void add(TagLib::MPEG::File &file, const QByteArray &bytes, TagLib::ID3v2::AttachedPictureFrame::Type type) {
    auto *frame = new TagLib::ID3v2::AttachedPictureFrame; // the tag owns it
    frame->setType(type);
    frame->setMimeType("image/jpeg");
    frame->setPicture(TagLib::ByteVector(bytes.constData(), static_cast<unsigned>(bytes.size())));
    file.ID3v2Tag(true)->addFrame(frame);
  }
};

qint64 bytesReadSoFar() {
  QFile counters(u"/proc/self/io"_s);
  EXPECT_TRUE(counters.open(QIODevice::ReadOnly));
  const QByteArray line = counters.readLine(); // "rchar: 12345"
  return line.mid(line.indexOf(' ') + 1).trimmed().toLongLong();
}

QColor middleOf(const QByteArray &jpeg) {
  const QImage image = QImage::fromData(jpeg, "jpeg");
  EXPECT_FALSE(image.isNull());
  return image.isNull() ? QColor() : image.pixelColor(image.width() / 2, image.height() / 2);
}

bool isNear(const QColor &colour, const QColor &wanted) {
  return qAbs(colour.red() - wanted.red()) < 8 && qAbs(colour.green() - wanted.green()) < 8 &&
         qAbs(colour.blue() - wanted.blue()) < 8;
}

} // namespace

TEST_F(SaveArtwork, AJpegInTheTrackIsSavedByteForByte) {
  const QByteArray jpeg = picture(u"red.jpg"_s, u"red"_s);
  for (const QString &name : {u"a.mp3"_s, u"a.flac"_s, u"a.m4a"_s, u"A.MP3"_s}) {
    ASSERT_EQ(save(track(name, u"red.jpg"_s)).status, 0) << name.toStdString();
    EXPECT_EQ(saved(), jpeg) << name.toStdString();
    EXPECT_EQ(onShare(), QStringList{u"Waterloo.jpg"_s});
    QFile::remove(music + u"/Waterloo.jpg"_s);
  }
}

TEST_F(SaveArtwork, AJpegInAWmaFileIsSavedByteForByte) {
  const QByteArray jpeg = picture(u"red.jpg"_s, u"red"_s);
  const QString wma = track(u"a.wma"_s);
  {
    TagLib::ASF::File file(wma.toUtf8().constData());
    TagLib::ASF::Picture inside;
    inside.setType(TagLib::ASF::Picture::FrontCover);
    inside.setMimeType("image/jpeg");
    inside.setPicture(TagLib::ByteVector(jpeg.constData(), static_cast<unsigned>(jpeg.size())));
    file.tag()->setAttribute("WM/Picture", inside);
    ASSERT_TRUE(file.save());
  }
  ASSERT_EQ(save(wma).status, 0);
  EXPECT_EQ(saved(), jpeg);
}

TEST_F(SaveArtwork, APngInTheTrackBecomesAJpeg) {
  picture(u"blue.png"_s, u"blue"_s);
  for (const QString &name : {u"a.mp3"_s, u"a.flac"_s, u"a.m4a"_s}) {
    const Ended ended = save(track(name, u"blue.png"_s));
    ASSERT_EQ(ended.status, 0) << ended.said.toStdString();
    const QImage image = QImage::fromData(saved(), "jpeg");
    EXPECT_EQ(image.size(), QSize(64, 48));
    EXPECT_TRUE(isNear(middleOf(saved()), QColor(0, 0, 255))) << middleOf(saved()).name().toStdString();
  }
}

// The table of a JPEG tells its quality: at 90 the coarsest step of the brightness is 24, at 89 it is 27.
TEST_F(SaveArtwork, AConvertedPictureLosesLittle) {
  picture(u"blue.png"_s, u"blue"_s);
  ASSERT_EQ(save(track(u"a.mp3"_s, u"blue.png"_s)).status, 0);
  const QByteArray head = QByteArray::fromHex("ffdb004300"); // 64 steps of one byte follow
  const QByteArray jpeg = saved();
  const qsizetype at = jpeg.indexOf(head);
  ASSERT_GE(at, 0);
  const QByteArray steps = jpeg.mid(at + head.size(), 64);
  ASSERT_EQ(steps.size(), 64);
  for (const char step : steps) {
    EXPECT_LE(static_cast<quint8>(step), 24);
  }
}

TEST_F(SaveArtwork, WhatShinesThroughIsWhite) {
  picture(u"album/cover.png"_s, u"black@0.0"_s, u"64x48,format=rgba"_s);
  ASSERT_EQ(save(track(u"a.mp3"_s)).status, 0);
  EXPECT_TRUE(isNear(middleOf(saved()), QColor(255, 255, 255))) << middleOf(saved()).name().toStdString();
}

TEST_F(SaveArtwork, TheFrontCoverIsTakenAmongSeveral) {
  const QString name = track(u"a.mp3"_s);
  {
    TagLib::MPEG::File file(name.toUtf8().constData());
    add(file, picture(u"red.jpg"_s, u"red"_s), TagLib::ID3v2::AttachedPictureFrame::BackCover);
    add(file, picture(u"green.jpg"_s, u"green"_s), TagLib::ID3v2::AttachedPictureFrame::FrontCover);
    file.save();
  }
  ASSERT_EQ(save(name).status, 0);
  EXPECT_EQ(saved(), files.bytes(u"green.jpg"_s));
}

TEST_F(SaveArtwork, PicturesBesideTheTrackServeInTheirOrder) {
  const QString name = track(u"a.mp3"_s);
  for (const char *beside : {"front.png", "FRONT.JPG", "Folder.jpeg", "folder.JPG", "cover.png", "Cover.jpg"}) {
    const QString file = u"album/"_s + QString::fromLatin1(beside);
    const QByteArray made = picture(file, u"red"_s);
    ASSERT_EQ(save(name).status, 0) << beside;
    EXPECT_EQ(saved() == made, !file.endsWith(u"png"_s)) << beside;
    EXPECT_TRUE(isNear(middleOf(saved()), QColor(255, 0, 0))) << beside;
  }
  const QByteArray inside = picture(u"blue.jpg"_s, u"blue"_s);
  ASSERT_EQ(save(track(u"b.mp3"_s, u"blue.jpg"_s)).status, 0);
  EXPECT_EQ(saved(), inside);
}

TEST_F(SaveArtwork, ATrackWithoutAPictureEndsWithAnotherStatus) {
  const Ended ended = save(track(u"a.mp3"_s));
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.said, u"the track has no picture"_s);
  EXPECT_EQ(onShare(), QStringList());
  EXPECT_EQ(save(files.path(u"album/none.mp3"_s)).status, 1);
}

TEST_F(SaveArtwork, BrokenPicturesArePassedOver) {
  const QByteArray jpeg = picture(u"red.jpg"_s, u"red"_s);
  const QByteArray png = picture(u"blue.png"_s, u"blue"_s);
  files.put(u"album/cover.jpg"_s, {});
  files.put(u"album/cover.png"_s, png.left(60));
  ASSERT_EQ(::mkfifo(files.path(u"album/folder.jpg"_s).toUtf8().constData(), 0600), 0);
  files.makeFolder(u"album/folder.jpeg"_s);
  files.put(u"album/folder.png"_s, "<svg xmlns=\"http://www.w3.org/2000/svg\"/>");
  for (const QByteArray &broken : {QByteArray("no picture"), png.left(60), jpeg.left(20), QByteArray(1, '\xFF')}) {
    const Ended ended = save(trackHolding(broken));
    EXPECT_EQ(ended.status, 1) << ended.said.toStdString();
    EXPECT_TRUE(ended.said.contains(u"in the track"_s)) << ended.said.toStdString();
    EXPECT_EQ(onShare(), QStringList());
  }
  files.put(u"album/front.jpg"_s, jpeg);
  ASSERT_EQ(save(trackHolding({})).status, 0);
  EXPECT_EQ(saved(), jpeg);
}

TEST_F(SaveArtwork, AHugePictureIsPassedOver) {
  QFile cover(files.path(u"album/cover.jpg"_s));
  ASSERT_TRUE(cover.open(QIODevice::WriteOnly));
  cover.write(picture(u"red.jpg"_s, u"red"_s));
  ASSERT_TRUE(cover.resize(2LL * 1024 * 1024 * 1024));
  cover.close();
  const Ended ended = save(track(u"a.mp3"_s));
  EXPECT_EQ(ended.status, 1);
  EXPECT_TRUE(ended.said.contains(u"too large"_s)) << ended.said.toStdString();
  EXPECT_EQ(onShare(), QStringList());
}

// It announces 40,000 x 40,000 pixels in a few hundred bytes.
TEST_F(SaveArtwork, APictureOfTooManyPixelsIsPassedOver) {
  constexpr qsizetype kHeader = 12; // of the first chunk, from its name on: name, width, height, five bytes more
  QByteArray png = picture(u"red.png"_s, u"red"_s);
  png.replace(kHeader + 4, 8, QByteArray::fromHex("00009c4000009c40"));
  const auto sum = static_cast<quint32>(
      ::crc32(0, reinterpret_cast<const Bytef *>(png.constData()) + kHeader, 17)); // NOLINT: zlib's own type
  qToBigEndian(sum, png.data() + kHeader + 17);
  files.put(u"album/cover.png"_s, png);
  const Ended ended = save(track(u"a.mp3"_s));
  EXPECT_EQ(ended.status, 1);
  EXPECT_TRUE(ended.said.contains(u"not converted"_s)) << ended.said.toStdString();
  EXPECT_EQ(onShare(), QStringList());
}

TEST_F(SaveArtwork, TracksThatAnnounceMoreThanTheyHoldHaveNoPicture) {
  files.put(u"album/a.mp3"_s, QByteArray("ID3\x03\x00\x00\x0f\x7f\x7f\x7f", 10) +
                                  QByteArray("APIC\x7f\xff\xff\xf0\x00\x00\x00image/jpeg\x00\x03\x00", 24));
  files.put(u"album/a.flac"_s, QByteArray("fLaC\x86\xff\xff\xff", 8) + QByteArray(200, '\xff'));
  files.put(u"album/a.m4a"_s, QByteArray("\x00\x00\x00\x10"
                                         "ftypM4A \x00\x00\x00\x00",
                                         16) +
                                  QByteArray("\x7f\xff\xff\xff"
                                             "moov\x7f\xff\xff\xf0udta",
                                             16));
  files.put(u"album/a.wma"_s, QByteArray::fromHex("3026b2758e66cf11a6d900aa0062ce6cffffffffffffff7fffffffff0102"));
  files.put(u"album/b.mp3"_s, {});
  for (const QString &name : {u"a.mp3"_s, u"a.flac"_s, u"a.m4a"_s, u"a.wma"_s, u"b.mp3"_s}) {
    EXPECT_EQ(save(files.path(u"album/"_s + name)).status, 1) << name.toStdString();
  }
}

TEST_F(SaveArtwork, AnEqualPictureIsNotWrittenAgain) {
  picture(u"red.jpg"_s, u"red"_s);
  const QString name = track(u"a.mp3"_s, u"red.jpg"_s);
  ASSERT_EQ(save(name).status, 0);
  struct stat before = {};
  struct stat after = {};
  ASSERT_EQ(::stat((music + u"/Waterloo.jpg"_s).toUtf8().constData(), &before), 0);
  ASSERT_EQ(save(name).status, 0);
  ASSERT_EQ(::stat((music + u"/Waterloo.jpg"_s).toUtf8().constData(), &after), 0);
  EXPECT_EQ(before.st_ino, after.st_ino);
  EXPECT_EQ(before.st_ctim.tv_nsec, after.st_ctim.tv_nsec);
}

TEST_F(SaveArtwork, AnotherPictureIsReplaced) {
  const QByteArray jpeg = picture(u"red.jpg"_s, u"red"_s);
  files.put(u"share/Music/Mac/ABBA/Gold/Waterloo.jpg"_s, QByteArray(jpeg.size(), 'x'));
  ASSERT_EQ(save(track(u"a.mp3"_s, u"red.jpg"_s)).status, 0);
  EXPECT_EQ(saved(), jpeg);
  EXPECT_EQ(onShare(), QStringList{u"Waterloo.jpg"_s});
}

TEST_F(SaveArtwork, WhatAKilledRunLeftGoesWithTheNext) {
  const QByteArray jpeg = picture(u"red.jpg"_s, u"red"_s);
  const QString name = track(u"a.mp3"_s, u"red.jpg"_s);
  const QString own = u".sonorel-0123abcd-artwork"_s;
  const QString folder = u"share/Music/Mac/ABBA/Gold/"_s;
  files.put(folder + u".sonorel-ffff0000-artwork"_s, "another client's");
  EXPECT_EQ(saveAs(own, name, true).status, -1);
  ASSERT_EQ(onShare(), (QStringList{own, u".sonorel-ffff0000-artwork"_s}));
  ASSERT_EQ(files.bytes(folder + own).size(), 100);
  ASSERT_EQ(saveAs(own, name).status, 0);
  EXPECT_EQ(saved(), jpeg);
  EXPECT_EQ(onShare(), (QStringList{u".sonorel-ffff0000-artwork"_s, u"Waterloo.jpg"_s}));

  files.put(folder + own, "half");
  ASSERT_EQ(saveAs(own, name).status, 0) << "the picture stands there already";
  EXPECT_EQ(onShare(), (QStringList{u".sonorel-ffff0000-artwork"_s, u"Waterloo.jpg"_s}));

  files.put(folder + own, "half");
  EXPECT_EQ(saveAs(own, track(u"b.mp3"_s)).status, 1) << "a track without a picture";
  EXPECT_EQ(onShare(), (QStringList{u".sonorel-ffff0000-artwork"_s, u"Waterloo.jpg"_s}));
}

TEST_F(SaveArtwork, OnlyATemporaryNameIsTakenForOne) {
  picture(u"red.jpg"_s, u"red"_s);
  const QString name = track(u"a.mp3"_s, u"red.jpg"_s);
  files.put(u"share/Music/Mac/ABBA/Gold/Song.mp3"_s, "a song");
  for (const QString &wrong : {u"Song.mp3"_s, u"../Gold/Song.mp3"_s, u".sonorel-/../Song.mp3"_s}) {
    EXPECT_EQ(saveAs(wrong, name).status, 2) << wrong.toStdString();
  }
  EXPECT_EQ(onShare(), QStringList{u"Song.mp3"_s});
}

TEST_F(SaveArtwork, ALongFileOfNoiseIsNotSearchedToItsEnd) {
  for (const QString &name : {u"a.mp3"_s, u"a.aac"_s, u"a.flac"_s}) {
    files.put(u"album/"_s + name, {});
    ASSERT_TRUE(QFile::resize(files.path(u"album/"_s + name), 32LL * 1024 * 1024));
    const qint64 before = bytesReadSoFar();
    EXPECT_EQ(embeddedPicture(files.path(u"album/"_s + name).toStdString()), std::string());
    EXPECT_LT(bytesReadSoFar() - before, 6LL * 1024 * 1024) << name.toStdString();
  }
}

TEST_F(SaveArtwork, AnEmptyFolderTextIsTheMusicFolderItself) {
  const QByteArray jpeg = picture(u"red.jpg"_s, u"red"_s);
  ASSERT_EQ(save(track(u"a.mp3"_s, u"red.jpg"_s), {}, u"Änd er. $(x)"_s).status, 0);
  EXPECT_EQ(files.bytes(u"share/Music/Mac/Änd er. $(x).jpg"_s), jpeg);
}

TEST_F(SaveArtwork, NothingIsWrittenElsewhere) {
  picture(u"red.jpg"_s, u"red"_s);
  const QString name = track(u"a.mp3"_s, u"red.jpg"_s);
  EXPECT_EQ(save(name, u"ABBA:..:..:"_s).status, 2);
  EXPECT_EQ(save(name, u"ABBA::"_s).status, 2);
  EXPECT_EQ(save(name, u"/tmp:"_s).status, 2);
  EXPECT_EQ(save(name, u"ABBA:Gold:"_s, u"../Waterloo"_s).status, 2);
  EXPECT_EQ(save(name, u"ABBA:Other:"_s).status, 3);
  EXPECT_EQ(save(name, u"ABBA:Gold:"_s, QString(260, u'n')).status, 3);
  files.makeFolder(u"share/Music/Mac/ABBA/Gold/Waterloo.jpg"_s);
  EXPECT_EQ(save(name).status, 3);
  EXPECT_EQ(onShare(), QStringList());
  EXPECT_EQ(files.filesIn(u"share/Music/Mac"_s), QStringList());
}

TEST_F(SaveArtwork, WrongUseIsTold) {
  EXPECT_EQ(ScriptFolder::run(kExporter, {u"track"_s}, {u"SONOREL_MUSIC_FOLDER=/"_s}).status, 2);
  EXPECT_EQ(ScriptFolder::run(kExporter, {u"a"_s, u"b"_s, u"c"_s, u"d"_s}).status, 2);
}

TEST_F(SaveArtwork, EmbeddingChangesNothing) {
  const QString name = track(u"a.mp3"_s);
  const QByteArray before = files.bytes(u"album/a.mp3"_s);
  EXPECT_EQ(
      ScriptFolder::run(QStringLiteral(SONOREL_BUILT_SCRIPTS) + u"/Embed Artwork.scpt"_s, {name, u"t"_s}).status, 0);
  EXPECT_EQ(files.bytes(u"album/a.mp3"_s), before);
}

} // namespace sonorel::test
