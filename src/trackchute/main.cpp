// The drop agent's command line. It needs no display: see CommandLine for the options.
#include "core/state/ShareLayout.h"
#include "platform/ApplicationPaths.h"
#include "platform/DropNotifications.h"
#include "platform/Failure.h"
#include "platform/linux/Installation.h"
#include "platform/linux/LibplistPropertyLists.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/PathMap.h"
#include "trackchute/CommandLine.h"
#include "trackchute/ConnectedProduct.h"
#include "trackchute/ConnectionWait.h"
#include "trackchute/DroppedFiles.h"
#include "trackchute/PlaylistName.h"
#include "trackchute/Poster.h"

#include <QCoreApplication>
#include <QVariantMap>

#include <cstdio>
#include <thread>
#include <vector>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;
using namespace sonorel::trackchute;

namespace {

constexpr int kRefused = 1;

void say(std::FILE *stream, const QString &text) {
  std::fputs((text + u'\n').toUtf8().constData(), stream);
}

void awaitProduct(const Poster &poster) {
  awaitConnection({[&poster] { return poster.isBusy(); }, [&poster] { return poster.selectedProducts(); },
                   [](std::chrono::milliseconds time) { std::this_thread::sleep_for(time); },
                   [] { say(stderr, u"trackchute: waiting until the client is connected"_s); }});
}

QString playlistObject(const QString &name, const DroppedFiles &dropped, const Poster &poster, const PathMap &map) {
  awaitProduct(poster);
  LinuxFileSystem files(map.roots());
  LibplistPropertyLists lists;
  const QString product =
      connectedProduct(files, lists, kAppDataPath.toString() + u'/' + kAgentPropertyFile.toString(),
                       [&poster] { return poster.deviceName(); });
  if (product.isEmpty()) {
    throw Failure(u"it is not known which product the client is connected to; connect it first"_s);
  }
  if (appearsTwiceWhenDroppedAgain(product, dropped.holdsPictures)) {
    say(stdout, u"Dropped again, \"%1\" appears as a second list on %2."_s.arg(name, product));
  }
  return postedPlaylistName(name, product, dropped.holdsPictures);
}

DroppedFiles expanded(const std::vector<std::string> &files, const PathMap &map) {
  const DroppedFiles dropped = expandDroppedFiles(
      files, [&map](const QString &path, QString *reason) { return map.fromOutside(path, reason); });
  for (const QString &line : dropped.leftOut) {
    say(stderr, u"trackchute: left out: "_s + line);
  }
  requireAnyFile(dropped);
  return dropped;
}

Poster dropAlbums(const CommandLine &line, const PathMap &map) {
  QVariantList photoData;
  for (const Album &album : line.albums) {
    photoData.append(QVariantMap{{kAlbumNameKey.toString(), album.name},
                                 {kDraggedFilesKey.toString(), expanded(album.files, map).paths}});
  }
  Poster poster;
  poster.postAlbums(photoData);
  return poster;
}

Poster dropBookmarks(const CommandLine &line) {
  Poster poster;
  poster.postBookmarks(line.titles, line.urls);
  return poster;
}

Poster dropFiles(const CommandLine &line, const PathMap &map) {
  const DroppedFiles dropped = expanded(line.files, map);
  Poster poster;
  switch (line.kind) {
  case DropKind::Playlist:
    poster.postDrag(playlistObject(line.name, dropped, poster, map), dropped.paths);
    break;
  case DropKind::Colour:
    poster.postDrag(colourMarker(line.name), dropped.paths);
    break;
  default:
    poster.postDrag(kNoPlaylist.toString(), dropped.paths);
    break;
  }
  return poster;
}

Poster drop(const CommandLine &line) {
  if (line.kind == DropKind::Bookmarks) {
    return dropBookmarks(line);
  }
  const PathMap map(rootsFromEnvironment(programFolder()));
  return line.kind == DropKind::Albums ? dropAlbums(line, map) : dropFiles(line, map);
}

// Asked in this order: a connection that is made in between is seen.
void tellWithoutConnection(const Poster &poster) {
  if (!poster.isBusy() && !poster.isConnected()) {
    say(stderr, u"trackchute: the client is not connected to a product and has shown its connection tab instead"_s);
  }
}

} // namespace

int main(int argc, char **argv) {
  const QCoreApplication application(argc, argv);
  const std::vector<const char *> arguments(argv + 1, argv + argc);
  try {
    const CommandLine line = parseCommandLine(arguments);
    if (line.kind == DropKind::Nothing) {
      say(stdout, u"trackchute hands files to the Sonorel client; see trackchute --help."_s);
    } else if (line.kind == DropKind::Help) {
      std::fputs(usage().toUtf8().constData(), stdout);
    } else {
      tellWithoutConnection(drop(line));
    }
  } catch (const std::exception &e) {
    say(stderr, u"trackchute: "_s + reasonOf(e));
    return kRefused;
  }
  return 0;
}
