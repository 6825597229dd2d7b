#include "transfer/DropIntake.h"

#include "core/state/DockImages.h"
#include "core/state/Report.h"
#include "core/state/ShareLayout.h"
#include "transfer/BookmarkNames.h"
#include "transfer/FileTypes.h"
#include "transfer/PathNames.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr QStringView kFinder = u"Finder";
constexpr std::chrono::milliseconds kPauseBeforeAgent{1000};

QueueEntry entryOf(const QString &path) {
  const bool isRadio = path.startsWith(kRadioPrefix);
  return {isRadio ? QueueEntry::Kind::Radio : QueueEntry::Kind::Path, path, {}};
}

struct Album {
  QString name;
  QStringList paths;
};

// Those that hold something.
QList<Album> albumsOf(const QVariantList &photoData) {
  QList<Album> albums;
  for (const QVariant &value : photoData) {
    const QVariantMap album = value.toMap();
    const QStringList paths = album.value(u"draggedFiles"_s).toStringList();
    if (!paths.isEmpty()) {
      albums.append({album.value(u"albumName"_s).toString(), paths});
    }
  }
  return albums;
}

// Pairs up to the shorter of the two lists.
Drop dropOfBookmarks(const QStringList &titles, const QStringList &urls) {
  Drop drop;
  for (qsizetype i = 0; i < qMin(titles.size(), urls.size()); ++i) {
    drop.items.append({QueueEntry::Kind::BookmarkPair, bookmarkFileName(titles[i]), shortcutText(urls[i])});
  }
  return drop;
}

bool isNotTransferable(const QString &name, const QStringList &paths) {
  return name == u"TV Shows" || name == u"iPod Games" || (paths.isEmpty() && name == kNoPlaylist);
}

} // namespace

DropIntake::DropIntake(FileSystem &files, TransferBoard &board, MessageLog &log, Strings &strings,
                       const Session &session, View &view, Desktop &desktop, Hooks hooks)
    : m_files(files), m_board(board), m_log(log), m_strings(strings), m_session(session), m_view(view),
      m_desktop(desktop), m_hooks(std::move(hooks)) {}

void DropIntake::setReady() {
  m_ready = true;
  for (const auto &handling : std::exchange(m_waiting, {})) {
    handling();
  }
}

void DropIntake::whenReady(std::function<void()> handling) {
  if (m_ready) {
    handling();
  } else {
    m_waiting.push_back(std::move(handling));
  }
}

void DropIntake::handleiTunesDragAndDrop(const Notification &notification) {
  whenReady([this, notification] {
    guarded(u"handleiTunesDragAndDrop"_s, OnException::Alert, [&] { handleMusic(notification); });
  });
}

void DropIntake::handleiPhotoDragAndDrop(const Notification &notification) {
  whenReady([this, notification] {
    guarded(u"handleiPhotoDragAndDrop"_s, OnException::Alert, [&] {
      if (isConnectedOrShown()) {
        handOver(dropOfAlbums(notification.userInfo.value(u"PhotoData"_s).toList()));
      }
    });
  });
}

void DropIntake::handleSafariDragAndDrop(const Notification &notification) {
  whenReady([this, notification] {
    guarded(u"handleSafariDragAndDrop"_s, OnException::LogOnly, [&] {
      if (isConnectedOrShown()) {
        handOver(dropOfBookmarks(notification.userInfo.value(u"Titles"_s).toStringList(),
                                 notification.userInfo.value(u"Urls"_s).toStringList()),
                 Refusal::Silent);
      }
    });
  });
}

void DropIntake::openFiles() {
  open();
  m_view.windowFrontCentre();
  m_hooks.pause(kPauseBeforeAgent);
  m_hooks.killTrackChuteAndLaunch();
}

void DropIntake::guarded(const QString &operation, OnException onException, const std::function<void()> &handling) {
  try {
    open();
    handling();
  } catch (const std::exception &exception) {
    logException(m_desktop, operation, exception);
    if (onException == OnException::Alert) {
      m_view.alert(m_strings.text(u"ExceptionText"_s), m_strings.text(u"ErrorDrag"_s));
    }
    m_hooks.dropsFinished(1);
  }
}

void DropIntake::open() {
  m_view.attention();
  m_strings.reload();
  if (m_board.transferComplete()) {
    m_log.clear();
  }
}

bool DropIntake::isConnectedOrShown() {
  if (m_hooks.isConnected()) {
    return true;
  }
  m_view.selectTab(Tab::Connection);
  m_view.setDockIcon(kDisconnectImage);
  m_view.setProgressBar(0);
  m_view.windowFrontCentre();
  m_hooks.dropsFinished(1);
  return false;
}

void DropIntake::handleMusic(const Notification &notification) {
  const QStringList paths = notification.userInfo.value(u"draggedFiles"_s).toStringList();
  QString name = notification.object;
  if (!isConnectedOrShown()) {
    return;
  }
  if (isNotTransferable(name, paths)) {
    m_log.showOnly(m_strings.text(u"Message12"_s));
    m_view.windowFrontCentre();
    handOver({});
    return;
  }
  if (name.startsWith(kFrame) && m_session.deviceName() == kAuralis5) {
    name = kNoPlaylist.toString();
  }
  handOver(dropOf(name, paths));
}

Drop DropIntake::dropOf(const QString &name, const QStringList &paths) {
  Drop drop;
  if (!isColourMarker(name) && name != kNoPlaylist) {
    drop.purgedPlaylist = name;
  }
  for (const QString &path : paths) {
    if (name == kFinder || m_files.presence(path) != Presence::Absent) {
      addFile(drop, name, path);
    } else if (path.startsWith(kRadioPrefix)) {
      drop.items.append(entryOf(path));
    }
  }
  if (!drop.pictureRecords.isEmpty()) {
    drop.pictureRecords.append(PlaylistInfo()); // the end of the album
    drop.hasVideoOrPicture = true;
  }
  return drop;
}

void DropIntake::addFile(Drop &drop, const QString &name, const QString &path) {
  drop.items.append(entryOf(path));
  if (name == kFinder || drop.items.constLast().kind == QueueEntry::Kind::Radio) {
    return;
  }
  const FileType type = fileTypeOf(pathExtension(path));
  if (type == FileType::Sound) {
    drop.tracks.append(path);
    drop.musicRecords.append({name, path, {}, {}, u"N"_s}); // the worker names it
  } else if (type == FileType::PhotoOrVideo && name == kNoPlaylist) {
    drop.hasVideoOrPicture = true;
  } else if (type == FileType::PhotoOrVideo) {
    drop.pictureRecords.append({pictureAlbumName(name), path, {}, path, u"N"_s});
  }
}

QString DropIntake::pictureAlbumName(const QString &name) const {
  const QStringList pieces = name.split(kFrame.toString());
  if (m_session.deviceName() == kVaultbox1 && pieces.size() >= 2) {
    return pieces[1];
  }
  return colourNameOfMarker(name);
}

// The library's own list is no more to be trusted than a drag: nobody has looked at its paths yet.
const QString &DropIntake::imageFor(const QString &dropped, const QString &image) const {
  return isPlainPath(image) && m_hooks.isOutside(image) ? image : dropped;
}

// A marker ends each album, whatever its name; tracks stay empty.
Drop DropIntake::dropOfAlbums(const QVariantList &photoData) {
  const QList<Album> albums = albumsOf(photoData);
  QStringList all;
  for (const Album &album : albums) {
    all.append(album.paths);
  }
  const QStringList images = m_hooks.changePhotosPaths(all);
  Drop drop;
  qsizetype next = 0;
  for (const Album &album : albums) {
    const bool isRecorded = album.name != kFinder && album.name != kNoPlaylist;
    for (const QString &dropped : album.paths) {
      const QString image = imageFor(dropped, images.at(next++));
      drop.items.append(entryOf(image));
      if (isRecorded) {
        drop.pictureRecords.append({album.name, image, {}, image, u"N"_s});
      }
    }
    drop.pictureRecords.append(PlaylistInfo());
  }
  return drop;
}

// Without a thread there is no transfer, and the next drop must be able to start one.
void DropIntake::startTransfer() {
  try {
    m_hooks.startTransfer();
  } catch (const std::exception &) {
    (void)m_board.finish();
    m_view.transferStateChanged();
    throw;
  }
}

void DropIntake::handOver(const Drop &drop, Refusal refusal) {
  switch (m_board.offer(drop)) {
  case DropAnswer::Started:
    m_view.setProgressBar(0);
    m_view.transferStateChanged();
    startTransfer();
    break;
  case DropAnswer::Refused:
    if (refusal == Refusal::Told) {
      m_log.showOnly(m_strings.text(u"Message11"_s));
      m_view.windowFrontCentre();
    }
    m_hooks.dropsFinished(1);
    break;
  case DropAnswer::Appended:
  case DropAnswer::Waiting:
    break;
  }
}

} // namespace sonorel
