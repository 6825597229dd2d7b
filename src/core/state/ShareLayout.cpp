#include "core/state/ShareLayout.h"

#include "core/state/Settings.h"

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr std::array<QStringView, 4> kColours{u"Red", u"Green", u"Yellow", u"Blue"};
constexpr std::array<QStringView, 4> kColourMarkers{u"@!!!Red!!!@", u"@!!!Green!!!@", u"@!!!Yellow!!!@",
                                                    u"@!!!Blue!!!@"};

} // namespace

ShareFolders shareFoldersOf(const Settings &settings) {
  ShareFolders folders;
  folders.volume = settings.text(u"Volume"_s);
  folders.sharedFolder = settings.text(u"Shared Folder"_s);
  folders.systemFolder = settings.text(u"SystemFolder"_s);
  folders.musicFolder = settings.text(u"MusicFolder"_s);
  folders.photoFolder = settings.text(u"PhotoFolder"_s);
  folders.videoFolder = settings.text(u"VideoFolder"_s);
  folders.favoriteFolder = settings.text(u"FavoriteFolder"_s);
  folders.macFolder = settings.text(u"MacFolder"_s);
  return folders;
}

QString colourNameOfMarker(const QString &playlistName) {
  for (size_t i = 0; i < kColourMarkers.size(); ++i) {
    if (playlistName == kColourMarkers[i]) {
      return kColours[i].toString();
    }
  }
  return playlistName;
}

bool isColourMarker(const QString &playlistName) {
  for (const QStringView marker : kColourMarkers) {
    if (playlistName == marker) {
      return true;
    }
  }
  return false;
}

QString colourMarker(const QString &name) {
  const int index = colourIndex(name);
  return index < 0 ? name : kColourMarkers.at(static_cast<size_t>(index)).toString();
}

int colourIndex(QStringView name) {
  for (size_t i = 0; i < kColours.size(); ++i) {
    if (name == kColours[i]) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

QString colourName(int index) {
  return kColours.at(static_cast<size_t>(index)).toString();
}

QString stringWithSubstitute(const QString &text, QStringView forCharactersFromSet, QChar replaceWith) {
  QString replaced = text;
  for (QChar &character : replaced) {
    if (forCharactersFromSet.contains(character)) {
      character = replaceWith;
    }
  }
  return replaced;
}

QString cleanedName(const QString &name) {
  return stringWithSubstitute(name, kInvalidChars, u'_');
}

} // namespace sonorel
