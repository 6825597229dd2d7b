#include "trackchute/CommandLine.h"

#include "core/state/ShareLayout.h"
#include "platform/Failure.h"
#include "trackchute/PlaylistName.h"

#include <QStringDecoder>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::trackchute {

namespace {

using Arguments = std::span<const char *const>;

QString takeText(Arguments &arguments, const QString &what, const QString &missing) {
  if (arguments.empty()) {
    throw Failure(missing);
  }
  QStringDecoder decoder(QStringDecoder::Utf8, QStringConverter::Flag::Stateless);
  const QString name = decoder(QByteArrayView(arguments.front()));
  if (decoder.hasError()) {
    throw Failure(u"the %1 is not UTF-8"_s.arg(what));
  }
  arguments = arguments.subspan(1);
  return name;
}

QString colourKey(const QString &word) {
  for (int i = 0; i < 4; ++i) {
    if (colourName(i).compare(word, Qt::CaseInsensitive) == 0) {
      return colourName(i);
    }
  }
  throw Failure(u"there is no colour key \"%1\"; the keys are red, green, yellow and blue"_s.replace(u"%1"_s, word));
}

QString takeName(Arguments &arguments, const QString &missing) {
  return takeText(arguments, u"name"_s, missing);
}

void refuse(const std::optional<QString> &refusal) {
  if (refusal) {
    throw Failure(*refusal);
  }
}

bool isNext(const Arguments &arguments, QByteArrayView option) {
  return !arguments.empty() && QByteArrayView(arguments.front()) == option;
}

// Files up to the next album; one whose name looks like that option is named by its path ("./--album").
void takeAlbum(CommandLine &line, Arguments &arguments) {
  Album album{takeName(arguments, u"--album needs a name"_s), {}};
  refuse(refusalOfAlbumName(album.name));
  while (!arguments.empty() && !isNext(arguments, "--album")) {
    album.files.emplace_back(arguments.front());
    arguments = arguments.subspan(1);
  }
  if (album.files.empty()) {
    throw Failure(u"there is no file for the album \"%1\""_s.replace(u"%1"_s, album.name));
  }
  line.albums.push_back(std::move(album));
}

void takeBookmark(CommandLine &line, Arguments &arguments) {
  const QString missing = u"--bookmark needs a title and an address"_s;
  line.titles.append(takeText(arguments, u"title"_s, missing));
  line.urls.append(takeText(arguments, u"address"_s, missing));
  refuse(refusalOfAddress(line.urls.constLast()));
}

// One kind of drop is one notification.
void takeAll(CommandLine &line, Arguments &arguments, QByteArrayView option,
             void (*take)(CommandLine &, Arguments &)) {
  take(line, arguments);
  while (isNext(arguments, option)) {
    arguments = arguments.subspan(1);
    take(line, arguments);
  }
  if (!arguments.empty()) {
    throw Failure(
        u"\"%1\" is not understood behind %2"_s.arg(QString::fromUtf8(arguments.front()), QString::fromUtf8(option)));
  }
}

} // namespace

CommandLine parseCommandLine(Arguments arguments) {
  CommandLine line;
  if (arguments.empty()) {
    return line;
  }
  const QString option = QString::fromUtf8(arguments.front());
  arguments = arguments.subspan(1);
  if (option == u"--help" || option == u"-h") {
    line.kind = DropKind::Help;
    return line;
  }
  if (option == u"--playlist") {
    line.kind = DropKind::Playlist;
    line.name = takeName(arguments, u"--playlist needs a name"_s);
    refuse(refusalOfPlaylistName(line.name));
  } else if (option == u"--colour") {
    line.kind = DropKind::Colour;
    line.name = colourKey(takeName(arguments, u"--colour needs red, green, yellow or blue"_s));
  } else if (option == u"--no-playlist") {
    line.kind = DropKind::NoPlaylist;
  } else if (option == u"--album") {
    line.kind = DropKind::Albums;
    takeAll(line, arguments, "--album", takeAlbum);
    return line;
  } else if (option == u"--bookmark") {
    line.kind = DropKind::Bookmarks;
    takeAll(line, arguments, "--bookmark", takeBookmark);
    return line;
  } else {
    throw Failure(u"\"%1\" is not understood; see trackchute --help"_s.replace(u"%1"_s, option));
  }
  line.files.assign(arguments.begin(), arguments.end());
  if (line.files.empty()) {
    throw Failure(u"there is no file to drop"_s);
  }
  return line;
}

QString usage() {
  return u"Usage: trackchute --playlist NAME FILE...\n"
         "       trackchute --colour red|green|yellow|blue FILE...\n"
         "       trackchute --no-playlist FILE...\n"
         "       trackchute --album NAME FILE... [--album NAME FILE...]...\n"
         "       trackchute --bookmark TITLE URL [--bookmark TITLE URL]...\n"
         "\n"
         "Hands files, folders and bookmarks to the running Sonorel client, which puts them onto the connected "
         "product:\n"
         "  --playlist     as a playlist; dropped again, it replaces itself (not on \"Auralis 5\")\n"
         "  --colour       the files' albums onto one of the player's four colour keys\n"
         "  --no-playlist  without a playlist; albums of two and more songs become lists by themselves\n"
         "  --album        pictures as photo albums, in the order given, in one drop\n"
         "  --bookmark     web addresses under their titles, in one drop\n"
         "Folders are expanded in natural order, without what is hidden in them.\n"
         "The status is 0 when the client has received the drop.\n"_s;
}

} // namespace sonorel::trackchute
