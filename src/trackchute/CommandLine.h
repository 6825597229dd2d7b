// The agent's command line as a value. Pure; any thread.
#pragma once

#include <QString>
#include <QStringList>

#include <span>
#include <string>
#include <vector>

namespace sonorel::trackchute {

enum class DropKind { Nothing, Help, Playlist, Colour, NoPlaylist, Albums, Bookmarks };

struct Album {
  QString name;
  std::vector<std::string> files;
};

struct CommandLine {
  DropKind kind = DropKind::Nothing;
  QString name;                   // playlist name, or the colour key's name ("Red")
  std::vector<std::string> files; // bytes as the shell gave them
  std::vector<Album> albums;      // in the order of the drop
  QStringList titles;             // of the bookmarks
  QStringList urls;               // as many
};

// Throws Failure with the reason when the arguments do not make one drop.
[[nodiscard]] CommandLine parseCommandLine(std::span<const char *const> arguments);

[[nodiscard]] QString usage();

} // namespace sonorel::trackchute
