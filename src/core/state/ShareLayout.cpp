#include "core/state/ShareLayout.h"

#include <array>

namespace sonorel {

namespace {

constexpr std::array<QStringView, 4> kColours{u"Red", u"Green", u"Yellow", u"Blue"};
constexpr std::array<QStringView, 4> kColourMarkers{u"@!!!Red!!!@", u"@!!!Green!!!@", u"@!!!Yellow!!!@",
                                                    u"@!!!Blue!!!@"};

} // namespace

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
