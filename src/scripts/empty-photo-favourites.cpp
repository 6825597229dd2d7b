// empty-photo-favourites FILE: writes the resource "PhotoFavorites.orv". Run by the build, never installed.

#include "favourites/EmptyPhotoFavourites.h"

#include <QFile>

#include <cstdio>

int main(int argc, char **argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s FILE\n", argv[0]);
    return 2;
  }
  QFile file(QFile::decodeName(argv[1]));
  const QByteArray bytes = sonorel::emptyPhotoFavourites();
  if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush()) {
    std::fprintf(stderr, "%s: %s: %s\n", argv[0], argv[1], file.errorString().toLocal8Bit().constData());
    return 1;
  }
  return 0;
}
