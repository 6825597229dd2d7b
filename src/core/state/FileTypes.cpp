#include "core/state/FileTypes.h"

#include <algorithm>
#include <array>

namespace sonorel {

namespace {

constexpr std::array<QStringView, 7> kSound{u"mp3", u"flac", u"wma", u"aac", u"mp4", u"wav", u"m4a"};
constexpr std::array<QStringView, 14> kPhotoOrVideo{u"jpeg", u"jpg",  u"gif", u"tiff", u"tif", u"png", u"bmp",
                                                    u"avi",  u"mpeg", u"mpg", u"m1v",  u"mpe", u"asf", u"wmv"};
constexpr std::array<QStringView, 2> kBookmark{u"webloc", u"url"};

template <size_t N> bool holds(const std::array<QStringView, N> &table, QStringView extension) {
  return std::any_of(table.begin(), table.end(), [&](QStringView known) { return checkFileType(extension, known); });
}

} // namespace

bool checkFileType(QStringView extension, QStringView fileType) {
  return extension.compare(fileType, Qt::CaseInsensitive) == 0;
}

FileType fileTypeOf(QStringView extension) {
  if (holds(kSound, extension)) {
    return FileType::Sound;
  }
  if (holds(kPhotoOrVideo, extension)) {
    return FileType::PhotoOrVideo;
  }
  return holds(kBookmark, extension) ? FileType::Bookmark : FileType::Invalid;
}

} // namespace sonorel
