#include "trackchute/CommandLine.h"

#include "core/state/ShareLayout.h"
#include "platform/Failure.h"
#include "trackchute/PlaylistName.h"

#include <QStringDecoder>

using namespace Qt::Literals::StringLiterals;

namespace sonorel::trackchute {

namespace {

QString takeName(std::span<const char *const> &arguments, const QString &missing) {
  if (arguments.empty()) {
    throw Failure(missing);
  }
  QStringDecoder decoder(QStringDecoder::Utf8, QStringConverter::Flag::Stateless);
  const QString name = decoder(QByteArrayView(arguments.front()));
  if (decoder.hasError()) {
    throw Failure(u"the name is not UTF-8"_s);
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

} // namespace

CommandLine parseCommandLine(std::span<const char *const> arguments) {
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
    if (const auto refusal = refusalOfPlaylistName(line.name)) {
      throw Failure(*refusal);
    }
  } else if (option == u"--colour") {
    line.kind = DropKind::Colour;
    line.name = colourKey(takeName(arguments, u"--colour needs red, green, yellow or blue"_s));
  } else if (option == u"--no-playlist") {
    line.kind = DropKind::NoPlaylist;
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
         "\n"
         "Hands files and folders to the running Sonorel client, which puts them onto the connected product:\n"
         "  --playlist     as a playlist; dropped again, it replaces itself (not on \"Auralis 5\")\n"
         "  --colour       the files' albums onto one of the player's four colour keys\n"
         "  --no-playlist  without a playlist; albums of two and more songs become lists by themselves\n"
         "Folders are expanded in natural order. The status is 0 when the client has received the drop.\n"_s;
}

} // namespace sonorel::trackchute
