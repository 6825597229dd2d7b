#include "transfer/PictureLibrary.h"

#include "platform/Failure.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr QStringView kLibraryList = u"/Pictures/iPhoto Library/AlbumData.xml";
constexpr qsizetype kNowhere = -1;

void keepFirst(QHash<QString, qsizetype> &places, const QString &path, qsizetype place) {
  if (path.isEmpty()) {
    return; // an entry without a path matches nothing
  }
  const qsizetype before = places.size();
  qsizetype &kept = places[foldedCase(path)];
  if (places.size() != before) {
    kept = place;
  }
}

qsizetype placeIn(const QHash<QString, qsizetype> &places, const QString &folded) {
  return folded.isEmpty() ? kNowhere : places.value(folded, kNowhere);
}

qsizetype lowest(qsizetype a, qsizetype b) {
  return a == kNowhere ? b : b == kNowhere ? a : std::min(a, b);
}

// Edited pictures lie beside their originals under another folder name; empty when the path is in neither.
QString alternativePath(QString path) {
  const QString modified = u"/Modified/"_s;
  const QString data = u"/Data/"_s;
  if (path.contains(modified)) {
    return path.replace(modified, data);
  }
  return path.contains(data) ? path.replace(data, modified) : QString();
}

} // namespace

QString foldedCase(const QString &text) {
  QString folded = text;
  QChar *unit = folded.data();
  const QChar *const end = unit + folded.size();
  for (; unit < end; ++unit) {
    if (unit->unicode() < 0x80) {
      *unit = *unit >= u'A' && *unit <= u'Z' ? QChar(unit->unicode() + 0x20) : *unit;
    } else if (unit->isHighSurrogate() && unit + 1 < end && unit[1].isLowSurrogate()) {
      const char32_t character = QChar::toCaseFolded(QChar::surrogateToUcs4(unit[0], unit[1]));
      *unit = QChar(QChar::highSurrogate(character));
      *++unit = QChar(QChar::lowSurrogate(character));
    } else {
      *unit = unit->toCaseFolded();
    }
  }
  return folded;
}

PictureLibrary::PictureLibrary(const QVariantMap &masterImageList) {
  m_images.reserve(masterImageList.size());
  m_byImage.reserve(masterImageList.size());
  m_byThumb.reserve(masterImageList.size());
  // A QVariantMap is walked in the order of its keys, so that whoever comes first stays.
  for (const QVariant &value : masterImageList) {
    const QVariantMap entry = value.toMap();
    const QString image = textAt(entry, u"ImagePath"_s);
    const QString thumb = textAt(entry, u"ThumbPath"_s);
    const qsizetype place = m_images.size();
    m_images.append(image);
    keepFirst(m_byImage, image, place);
    keepFirst(m_byThumb, thumb, place);
  }
}

QString PictureLibrary::imagePath(const QString &path) const {
  if (path.split(u'/').contains(u"Originals"_s)) {
    return path;
  }
  // The lowest entry that matches by any of the three tests: a walk tries all of them on one entry before the next.
  const QString folded = foldedCase(path);
  qsizetype place = lowest(placeIn(m_byImage, folded), placeIn(m_byThumb, folded));
  place = lowest(place, placeIn(m_byThumb, foldedCase(alternativePath(path))));
  if (place == kNowhere || m_images.at(place).isEmpty()) {
    return path;
  }
  return m_images.at(place);
}

QStringList changePhotosPaths(const QStringList &paths, const QString &homePath, FileSystem &files,
                              PropertyLists &lists, Desktop &desktop) {
  const QString list = homePath + kLibraryList.toString();
  try {
    const PropertyLists::WantedKeys keys{{"Master Image List"}, {}, {"ImagePath", "ThumbPath"}};
    const QVariantMap library = lists.decode(files.read(list, PropertyLists::kSizeLimit), keys).toMap();
    const QVariant master = library.value(u"Master Image List"_s);
    if (master.typeId() != QMetaType::QVariantMap) {
      throw Failure(u"there is no \"Master Image List\" inside"_s, FailureKind::Damaged);
    }
    const PictureLibrary pictures(master.toMap());
    QStringList mapped;
    mapped.reserve(paths.size());
    for (const QString &path : paths) {
      mapped.append(pictures.imagePath(path));
    }
    return mapped;
  } catch (const Failure &failure) {
    desktop.log(u"The pictures are taken as they were dropped, the library %1 cannot be read: %2"_s.arg(
        list, failure.reason()));
    return paths;
  }
}

} // namespace sonorel
