#include "favourites/FavouritesBackup.h"

#include "platform/Failure.h"

#include <QCryptographicHash>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr quint32 kPrivateFolder = 0700;

QString nextSuffix() {
  return u".next"_s;
}
QString markerSuffix() {
  return u".marker"_s;
}
// 0 is the latest.
QString previousSuffix(int generation) {
  return generation == 0 ? u".previous"_s : u".previous-%1"_s.arg(generation + 1);
}
constexpr int kGenerations = 3;

QByteArray markerText(const QString &folder, const QByteArray &newBytes) {
  const QString key = folder.mid(folder.lastIndexOf(u'/') + 1);
  return key.toUtf8() + '\n' + QCryptographicHash::hash(newBytes, QCryptographicHash::Sha256).toHex() + '\n';
}

std::optional<QByteArray> readIfThere(FileSystem &files, const QString &path) {
  try {
    return files.read(path);
  } catch (const Failure &failure) {
    if (failure.kind() == FailureKind::Absent) {
      return std::nullopt;
    }
    throw;
  }
}

} // namespace

void makePrivateFolders(FileSystem &files, const QString &folder) {
  for (qsizetype end = folder.indexOf(u'/', 1);; end = folder.indexOf(u'/', end + 1)) {
    const QString level = end < 0 ? folder : folder.left(end);
    if (files.presence(level) != Presence::Present) {
      files.createFolder(level, kPrivateFolder);
    }
    if (end < 0) {
      return;
    }
  }
}

FavouritesBackup::FavouritesBackup(FileSystem &files, QString folder, QString name, qsizetype headerSize)
    : m_files(files), m_folder(std::move(folder)), m_name(std::move(name)), m_headerSize(headerSize) {}

void FavouritesBackup::prepare(const QByteArray &newBytes, const QByteArray &oldBytes) {
  makePrivateFolders(m_files, m_folder);
  keepPrevious(oldBytes);
  writeSynced(path(nextSuffix()), newBytes);
  m_files.sync(m_folder);
  writeSynced(path(markerSuffix()), markerText(m_folder, newBytes));
  m_files.sync(m_folder);
}

bool FavouritesBackup::hasMarker() {
  return m_files.presence(path(markerSuffix())) != Presence::Absent;
}

std::optional<QByteArray> FavouritesBackup::interrupted() {
  const auto marker = readIfThere(m_files, path(markerSuffix()));
  if (!marker) {
    return std::nullopt;
  }
  auto next = readIfThere(m_files, path(nextSuffix()));
  return next && *marker == markerText(m_folder, *next) ? next : std::nullopt;
}

void FavouritesBackup::keepPrevious(const QByteArray &oldBytes) {
  if (oldBytes.isEmpty()) {
    return;
  }
  const auto latest = readIfThere(m_files, path(previousSuffix(0)));
  const bool sameContent = latest && QByteArrayView(*latest).sliced(qMin(m_headerSize, latest->size())) ==
                                         QByteArrayView(oldBytes).sliced(qMin(m_headerSize, oldBytes.size()));
  if (latest && !sameContent) {
    rotate();
  }
  writeSynced(path(previousSuffix(0)), oldBytes);
}

void FavouritesBackup::finish() {
  removeIfThere(path(markerSuffix()));
  removeIfThere(path(nextSuffix()));
}

void FavouritesBackup::rotate() {
  for (int generation = kGenerations - 1; generation > 0; --generation) {
    const QString younger = path(previousSuffix(generation - 1));
    if (m_files.presence(younger) == Presence::Present) {
      m_files.rename(younger, path(previousSuffix(generation)));
    }
  }
}

void FavouritesBackup::writeSynced(const QString &path, const QByteArray &bytes) {
  m_files.writeAtomically(path, bytes);
  m_files.sync(path);
}

void FavouritesBackup::removeIfThere(const QString &path) {
  try {
    m_files.removeFile(path);
  } catch (const Failure &failure) {
    if (failure.kind() != FailureKind::Absent) {
      throw;
    }
  }
}

} // namespace sonorel
