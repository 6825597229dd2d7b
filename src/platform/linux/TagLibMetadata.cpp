#include "platform/linux/TagLibMetadata.h"

#include "platform/linux/RegularFile.h"
#include "platform/linux/SearchLimit.h"

#include <memory>
#include <taglib/aifffile.h>
#include <taglib/asffile.h>
#include <taglib/fileref.h>
#include <taglib/flacfile.h>
#include <taglib/id3v2framefactory.h>
#include <taglib/mp4file.h>
#include <taglib/mpegfile.h>
#include <taglib/opusfile.h>
#include <taglib/tpropertymap.h>
#include <taglib/vorbisfile.h>
#include <taglib/wavfile.h>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

enum class Format { None, Mpeg, Mp4, Flac, Wav, Aiff, Vorbis, Opus, Asf };

struct Extension {
  QStringView text;
  Format format;
};

constexpr Extension kExtensions[] = {{u"mp3", Format::Mpeg},   {u"aac", Format::Mpeg},   {u"mp2", Format::Mpeg},
                                     {u"m4a", Format::Mp4},    {u"m4p", Format::Mp4},    {u"m4b", Format::Mp4},
                                     {u"mp4", Format::Mp4},    {u"m4v", Format::Mp4},    {u"flac", Format::Flac},
                                     {u"wav", Format::Wav},    {u"aif", Format::Aiff},   {u"aiff", Format::Aiff},
                                     {u"ogg", Format::Vorbis}, {u"oga", Format::Vorbis}, {u"opus", Format::Opus},
                                     {u"wma", Format::Asf},    {u"asf", Format::Asf},    {u"wmv", Format::Asf}};

Format formatOf(const QString &path) {
  const QStringView name = QStringView(path).sliced(path.lastIndexOf(u'/') + 1);
  const qsizetype dot = name.lastIndexOf(u'.');
  if (dot < 0) {
    return Format::None;
  }
  for (const Extension &known : kExtensions) {
    if (name.sliced(dot + 1).compare(known.text, Qt::CaseInsensitive) == 0) {
      return known.format;
    }
  }
  return Format::None;
}

std::unique_ptr<TagLib::File> openTags(Format format, TagLib::IOStream &stream) {
  // Only MP4 is asked for its codec; looking through the audio of the others would cost time for nothing.
  switch (format) {
  case Format::Mpeg:
    return std::make_unique<TagLib::MPEG::File>(&stream, TagLib::ID3v2::FrameFactory::instance(), false);
  case Format::Mp4:
    return std::make_unique<TagLib::MP4::File>(&stream, true);
  case Format::Flac:
    return std::make_unique<TagLib::FLAC::File>(&stream, TagLib::ID3v2::FrameFactory::instance(), false);
  case Format::Wav:
    return std::make_unique<TagLib::RIFF::WAV::File>(&stream, false);
  case Format::Aiff:
    return std::make_unique<TagLib::RIFF::AIFF::File>(&stream, false);
  case Format::Vorbis:
    return std::make_unique<TagLib::Ogg::Vorbis::File>(&stream, false);
  case Format::Opus:
    return std::make_unique<TagLib::Ogg::Opus::File>(&stream, false);
  case Format::Asf:
    return std::make_unique<TagLib::ASF::File>(&stream, false);
  case Format::None:
    break;
  }
  return nullptr;
}

// Up to the first NUL: what follows one is padding of old tag writers.
QString textOf(const TagLib::String &text) {
  return QString::fromUtf8(text.to8Bit(true).c_str());
}

// The first value that holds text; joined values would name an album that nobody has.
QString firstTextOf(const TagLib::StringList &values) {
  for (const TagLib::String &value : values) {
    if (QString text = textOf(value); !text.isEmpty()) {
      return text;
    }
  }
  return {};
}

QStringList codecsOf(TagLib::File &file) {
  const auto *properties = dynamic_cast<TagLib::MP4::Properties *>(file.audioProperties());
  if (!properties) {
    return {};
  }
  return {properties->codec() == TagLib::MP4::Properties::ALAC ? u"Apple Lossless"_s : u"AAC"_s};
}

TrackTags tagsOf(TagLib::File &file) {
  TrackTags tags;
  if (!file.isValid() || !file.tag()) {
    return tags;
  }
  // A wave file's own tag stands only among the properties; an old tag beside a newer one only in the union.
  TagLib::PropertyMap properties = file.properties();
  tags.title = firstTextOf(properties["TITLE"]);
  if (tags.title.isEmpty()) {
    tags.title = textOf(file.tag()->title());
  }
  tags.album = firstTextOf(properties["ALBUM"]);
  if (tags.album.isEmpty()) {
    tags.album = textOf(file.tag()->album());
  }
  const TagLib::StringList artists = properties["ARTIST"];
  for (const TagLib::String &artist : artists) {
    if (const QString text = textOf(artist); !text.isEmpty()) {
      tags.authors.append(text);
    }
  }
  tags.codecs = codecsOf(file);
  return tags;
}

} // namespace

TagLibMetadata::TagLibMetadata(HostPath hostPath) : m_hostPath(std::move(hostPath)) {}

std::optional<TrackTags> TagLibMetadata::read(const QString &path) {
  const Format format = formatOf(path);
  const auto hostPath = m_hostPath(path);
  if (format == Format::None || !hostPath) {
    return std::nullopt;
  }
  FileDescriptor file = openRegularFile(hostPath->toStdString());
  if (!file.isOpen()) {
    return std::nullopt;
  }
  try {
    SearchLimit stream(std::move(file));
    const auto tags = openTags(format, stream);
    return tagsOf(*tags);
  } catch (const std::exception &) {
    return TrackTags{}; // a readable file whose tags make no sense has none
  }
}

} // namespace sonorel
