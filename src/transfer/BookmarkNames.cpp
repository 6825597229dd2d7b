#include "transfer/BookmarkNames.h"

#include "core/state/ShareLayout.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

const QString kExtension = u".url"_s;
constexpr qsizetype kLongestName = 255; // bytes that a share takes
constexpr qsizetype kSchemeLength = 4;

QString withoutOuterStops(const QString &name) {
  qsizetype begin = 0;
  qsizetype end = name.size();
  while (begin < end && name[begin] == u'.') {
    ++begin;
  }
  while (end > begin && name[end - 1] == u'.') {
    --end;
  }
  return name.mid(begin, end - begin);
}

// The beginning of the text that takes at most so many bytes, no character torn.
QString firstBytes(const QString &text, qsizetype bytes) {
  qsizetype kept = qMin(text.size(), bytes);
  while (text.left(kept).toUtf8().size() > bytes) {
    --kept;
  }
  if (kept > 0 && kept < text.size() && text[kept - 1].isHighSurrogate()) {
    --kept;
  }
  return text.left(kept);
}

} // namespace

QString shortcutText(const QString &address) {
  return kShortcutHead.toString() + address;
}

QString schemeOf(const QString &shortcutText) {
  return shortcutText.mid(kShortcutHead.size(), kSchemeLength);
}

QString bookmarkFileName(const QString &title) {
  const QString name = withoutOuterStops(cleanedName(title) + kExtension);
  if (name.size() < kExtension.size()) {
    return u'_' + kExtension; // of the title nothing is left, and without a name no player shows it
  }
  return firstBytes(name.chopped(kExtension.size()), kLongestName - kExtension.size()) + kExtension;
}

} // namespace sonorel
