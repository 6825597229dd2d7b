#include "trackchute/PlaylistName.h"

#include "core/state/ShareLayout.h"
#include "platform/DropNotifications.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::trackchute {

namespace {

// kind: "a playlist", "an album"
std::optional<QString> refusalOfName(const QString &kind, const QString &name) {
  if (name.trimmed().isEmpty()) {
    return kind + u" needs a name"_s;
  }
  if (name.startsWith(u'@')) {
    return u"the name of %1 cannot begin with \"@\""_s.arg(kind);
  }
  if (name.contains(kFrame)) {
    return u"the name of %1 cannot contain \"@~\""_s.arg(kind);
  }
  if (name.contains(QChar(u'\0'))) {
    return u"the name of %1 cannot contain a NUL character"_s.arg(kind);
  }
  const bool isMarker = colourIndex(name) >= 0 || name == kFinderName || name == kTvShowsName ||
                        name == kIpodGamesName || name == kNoPlaylist;
  if (isMarker) {
    return u"\"%1\" has a meaning of its own and cannot name %2"_s.arg(name, kind);
  }
  return std::nullopt;
}

} // namespace

std::optional<QString> refusalOfPlaylistName(const QString &name) {
  return refusalOfName(u"a playlist"_s, name);
}

std::optional<QString> refusalOfAlbumName(const QString &name) {
  return refusalOfName(u"an album"_s, name);
}

std::optional<QString> refusalOfAddress(const QString &address) {
  if (address.trimmed().isEmpty()) {
    return u"a bookmark needs an address"_s;
  }
  const bool hasControl = std::any_of(address.cbegin(), address.cend(),
                                      [](QChar character) { return character.category() == QChar::Other_Control; });
  if (hasControl) {
    return u"an address cannot contain control characters"_s;
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
