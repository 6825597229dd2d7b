// Pictures dragged out of the picture library may name a thumbnail or an edited copy; the server must get the
// library's image file. The library's list is read once for a drop and every path is looked up in two tables, with
// the same result as walking the whole list for each path. Controller's thread.
#pragma once

#include "platform/Desktop.h"
#include "platform/FileSystem.h"
#include "platform/PropertyLists.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace sonorel {

// The text in the form in which two texts are equal that differ only in case, exactly as QString compares them:
// character by character, so that its length never changes.
[[nodiscard]] QString foldedCase(const QString &text);

class PictureLibrary {
public:
  // masterImageList: key to entry; of two entries that match one path the one with the lower key counts.
  explicit PictureLibrary(const QVariantMap &masterImageList);

  // The image file behind the path, or the path itself.
  [[nodiscard]] QString imagePath(const QString &path) const;

private:
  using Places = QHash<QString, qsizetype>; // folded text to the lowest place

  QList<QString> m_images; // "ImagePath" of each entry; null when it has none
  Places m_byImage;
  Places m_byThumb;
};

// homePath has no "/" at its end. A library that is missing or cannot be read maps nothing; the log says why.
[[nodiscard]] QStringList changePhotosPaths(const QStringList &paths, const QString &homePath, FileSystem &files,
                                            PropertyLists &lists, Desktop &desktop);

} // namespace sonorel
