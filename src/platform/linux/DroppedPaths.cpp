#include "platform/linux/DroppedPaths.h"

#include "platform/DropNotifications.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr qsizetype kLongestReason = 1024;
constexpr int kLinesPerDrop = 10; // a drop of 100,000 bad paths does not flood the log

class Cleaner {
public:
  Cleaner(const FromOutside &fromOutside, Desktop &desktop) : m_fromOutside(fromOutside), m_desktop(desktop) {}

  QStringList clean(const QStringList &items) {
    QStringList passed;
    passed.reserve(items.size());
    for (const QString &item : items) {
      if (item.startsWith(kRadioPrefix)) {
        passed.append(item);
        continue;
      }
      QString reason;
      if (const auto path = m_fromOutside(item, &reason)) {
        passed.append(*path);
      } else {
        refuse(reason);
      }
    }
    m_passed += passed.size();
    return passed;
  }

  // True when there was something and all of it was refused.
  [[nodiscard]] bool leftNothing() const { return m_refused > 0 && m_passed == 0; }

  void finish() {
    if (m_refused > kLinesPerDrop) {
      m_desktop.log(u"%1 more dropped items were refused"_s.arg(m_refused - kLinesPerDrop));
    }
  }

private:
  void refuse(const QString &reason) {
    if (++m_refused <= kLinesPerDrop) {
      m_desktop.log(u"a dropped item was refused: "_s + reason.left(kLongestReason));
    }
  }

  const FromOutside &m_fromOutside;
  Desktop &m_desktop;
  qsizetype m_passed = 0;
  qsizetype m_refused = 0;
};

} // namespace

std::optional<Notification> withCleanPaths(const Notification &notification, const FromOutside &fromOutside,
                                           Desktop &desktop) {
  const QString files = kDraggedFilesKey.toString();
  const QString photos = kPhotoDataKey.toString();
  Cleaner cleaner(fromOutside, desktop);
  Notification cleaned = notification;
  if (cleaned.userInfo.contains(files)) {
    cleaned.userInfo.insert(files, cleaner.clean(cleaned.userInfo.value(files).toStringList()));
  }
  if (cleaned.userInfo.contains(photos)) {
    QVariantList albums;
    const QVariantList given = cleaned.userInfo.value(photos).toList();
    for (const QVariant &value : given) {
      QVariantMap album = value.toMap();
      album.insert(files, cleaner.clean(album.value(files).toStringList()));
      albums.append(album);
    }
    cleaned.userInfo.insert(photos, albums);
  }
  cleaner.finish();
  if (cleaner.leftNothing()) {
    return std::nullopt;
  }
  return cleaned;
}

} // namespace sonorel
