#include "trackchute/PlaylistName.h"

#include "core/state/ShareLayout.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel::trackchute {

std::optional<QString> refusalOfPlaylistName(const QString &name) {
  if (name.trimmed().isEmpty()) {
    return u"a playlist needs a name"_s;
  }
  if (name.startsWith(u'@')) {
    return u"a playlist's name cannot begin with \"@\""_s;
  }
  if (name.contains(kFrame)) {
    return u"a playlist's name cannot contain \"@~\""_s;
  }
  if (name.contains(QChar(u'\0'))) {
    return u"a playlist's name cannot contain a NUL character"_s;
  }
  const bool isMarker = colourIndex(name) >= 0 || name == u"Finder" || name == u"TV Shows" || name == u"iPod Games" ||
                        name == kNoPlaylist;
  if (isMarker) {
    return u"\"%1\" has a meaning of its own and cannot name a playlist"_s.replace(u"%1"_s, name);
  }
  return std::nullopt;
}

QString postedPlaylistName(const QString &name, const QString &product, bool holdsPictures) {
  return appearsTwiceWhenDroppedAgain(product, holdsPictures) ? name : u"@~%1@~"_s.replace(u"%1"_s, name);
}

bool appearsTwiceWhenDroppedAgain(const QString &product, bool holdsPictures) {
  return product == kAuralis5 || (product == kAuracore5 && holdsPictures);
}

bool isKnownProduct(const QString &product) {
  return product == kAuralis5 || product == kAuracore5 || product == kVaultbox1;
}

} // namespace sonorel::trackchute
