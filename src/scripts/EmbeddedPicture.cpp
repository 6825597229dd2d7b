#include "scripts/EmbeddedPicture.h"

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/RegularFile.h"
#include "platform/linux/SearchLimit.h"

#include <taglib/asffile.h>
#include <taglib/attachedpictureframe.h>
#include <taglib/flacfile.h>
#include <taglib/id3v2tag.h>
#include <taglib/mp4file.h>
#include <taglib/mpegfile.h>

#include <algorithm>
#include <cctype>

namespace sonorel {

namespace {

std::string bytesOf(const TagLib::ByteVector &bytes) {
  return {bytes.data(), bytes.size()};
}

// The first front cover among the pictures, else the first picture.
class Choice {
public:
  void offer(const TagLib::ByteVector &bytes, bool isFrontCover) {
    if (!bytes.isEmpty() && (m_bytes.empty() || (isFrontCover && !m_isFrontCover))) {
      m_bytes = bytesOf(bytes);
      m_isFrontCover = isFrontCover;
    }
  }
  [[nodiscard]] std::string taken() { return std::move(m_bytes); }

private:
  std::string m_bytes;
  bool m_isFrontCover = false;
};

std::string inId3v2(TagLib::ID3v2::Tag *tag) {
  using Frame = TagLib::ID3v2::AttachedPictureFrame;
  Choice choice;
  if (tag != nullptr) {
    for (const TagLib::ID3v2::Frame *frame : tag->frameListMap()["APIC"]) {
      if (const auto *picture = dynamic_cast<const Frame *>(frame)) {
        choice.offer(picture->picture(), picture->type() == Frame::FrontCover);
      }
    }
  }
  return choice.taken();
}

std::string inMpeg(TagLib::IOStream &stream) {
  TagLib::MPEG::File file(&stream, TagLib::ID3v2::FrameFactory::instance(), false);
  return inId3v2(file.ID3v2Tag());
}

std::string inFlac(TagLib::IOStream &stream) {
  TagLib::FLAC::File file(&stream, TagLib::ID3v2::FrameFactory::instance(), false);
  Choice choice;
  for (const TagLib::FLAC::Picture *picture : file.pictureList()) {
    choice.offer(picture->data(), picture->type() == TagLib::FLAC::Picture::FrontCover);
  }
  std::string found = choice.taken();
  return found.empty() ? inId3v2(file.ID3v2Tag()) : found;
}

std::string inMp4(TagLib::IOStream &stream) {
  TagLib::MP4::File file(&stream, false);
  Choice choice;
  if (file.tag() != nullptr && file.tag()->contains("covr")) {
    for (const TagLib::MP4::CoverArt &picture : file.tag()->item("covr").toCoverArtList()) {
      choice.offer(picture.data(), false);
    }
  }
  return choice.taken();
}

std::string inAsf(TagLib::IOStream &stream) {
  TagLib::ASF::File file(&stream, false);
  Choice choice;
  if (file.tag() != nullptr) {
    for (const TagLib::ASF::Attribute &attribute : file.tag()->attribute("WM/Picture")) {
      const TagLib::ASF::Picture picture = attribute.toPicture();
      choice.offer(picture.picture(), picture.type() == TagLib::ASF::Picture::FrontCover);
    }
  }
  return choice.taken();
}

std::string lowerExtension(const std::string &path) {
  const std::size_t dot = path.find_last_of("./");
  std::string extension = dot == std::string::npos || path[dot] == '/' ? std::string() : path.substr(dot + 1);
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
  return extension;
}

std::string pictureIn(const std::string &extension, TagLib::IOStream &stream) {
  if (extension == "mp3" || extension == "aac") {
    return inMpeg(stream);
  }
  if (extension == "flac") {
    return inFlac(stream);
  }
  if (extension == "m4a" || extension == "mp4") {
    return inMp4(stream);
  }
  return extension == "wma" ? inAsf(stream) : std::string();
}

} // namespace

std::string embeddedPicture(const std::string &track) {
  FileDescriptor file = openRegularFile(track);
  if (!file.isOpen()) {
    return {};
  }
  try {
    SearchLimit stream(std::move(file));
    return pictureIn(lowerExtension(track), stream);
  } catch (const std::exception &) {
    return {}; // a picture that is larger than the memory is none
  }
}

} // namespace sonorel
