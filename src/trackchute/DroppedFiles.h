// Turns what a person names on the command line into the paths that are posted: absolute, clean, regular files only,
// folders expanded in natural order. Reads the file system; any thread.
#pragma once

#include <QString>
#include <QStringList>

#include <span>
#include <string>

namespace sonorel::trackchute {

struct DroppedFiles {
  QStringList paths;
  QStringList leftOut;        // what lay in a folder and is no regular file or has no UTF-8 name
  bool holdsPictures = false; // pictures or films among the paths
};

// Throws Failure naming the argument that is missing, no regular file, no folder or not UTF-8. Hidden files and
// folders inside a folder are passed over; a folder reached twice by links is read once.
[[nodiscard]] DroppedFiles expandDroppedFiles(std::span<const std::string> arguments);

// Digit runs by value, the rest ignoring case, ties by code unit: "2 b" before "10 a".
[[nodiscard]] bool comesBefore(const QString &a, const QString &b);

} // namespace sonorel::trackchute
