// The agent's command line as a value. Pure; any thread.
#pragma once

#include <QString>

#include <span>
#include <string>
#include <vector>

namespace sonorel::trackchute {

enum class DropKind { Nothing, Help, Playlist, Colour, NoPlaylist };

struct CommandLine {
  DropKind kind = DropKind::Nothing;
  QString name;                   // playlist name, or the colour key's name ("Red")
  std::vector<std::string> files; // bytes as the shell gave them
};

// Throws Failure with the reason when the arguments do not make one drop.
[[nodiscard]] CommandLine parseCommandLine(std::span<const char *const> arguments);

[[nodiscard]] QString usage();

} // namespace sonorel::trackchute
