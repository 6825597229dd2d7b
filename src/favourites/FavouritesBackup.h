// The backup of one favourites file of one product: NAME.next, the last three files that were replaced
// (NAME.previous, NAME.previous-2, NAME.previous-3) and the marker that says a rewrite is under way. On the
// client's own disk. One thread at a time; throws Failure.
#pragma once

#include "platform/FileSystem.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace sonorel {

// Every missing level of the folder, for this user only.
void makePrivateFolders(FileSystem &files, const QString &folder);

class FavouritesBackup {
public:
  // files must outlive the object; folder is the product's own, made when it is needed.
  FavouritesBackup(FileSystem &files, QString folder, QString name, qsizetype headerSize);

  // Keeps the new and the old bytes on the disk and says so in the marker. Old bytes that equal the last kept ones
  // behind the header take their place, so that reconnecting does not push older contents out.
  void prepare(const QByteArray &newBytes, const QByteArray &oldBytes);
  // A rewrite may be under way; cheap.
  [[nodiscard]] bool hasMarker();
  // The bytes of NAME.next when a marker of this product stands and they are the ones it means.
  [[nodiscard]] std::optional<QByteArray> interrupted();
  // Keeps bytes as the latest of the previous ones.
  void keepPrevious(const QByteArray &oldBytes);
  // Marker first, then NAME.next.
  void finish();

private:
  [[nodiscard]] QString path(const QString &suffix) const { return m_folder + u'/' + m_name + suffix; }
  void writeSynced(const QString &path, const QByteArray &bytes);
  void rotate();
  void removeIfThere(const QString &path);

  FileSystem &m_files;
  QString m_folder;
  QString m_name;
  qsizetype m_headerSize;
};

} // namespace sonorel
