// Turns what a person names on the command line into the paths that are posted: absolute, clean, regular files only,
// folders expanded in natural order. Reads the file system; any thread.
#pragma once

#include "platform/linux/DroppedPaths.h"

#include <QString>
#include <QStringList>

#include <span>
#include <string>

namespace sonorel::trackchute {

struct DroppedFiles {
  QStringList paths;
  QStringList leftOut;        // a line for each: a path, or a reason that names it
  bool holdsPictures = false; // pictures or films among the paths
};

// Throws Failure naming the argument that is missing, no regular file, no folder or not UTF-8. Left out is what lies
// in a folder and is no regular file or has no UTF-8 name, and every path that the client would refuse: fromOutside
// is its check. Hidden entries of a folder are passed over; only folders, and files that the client carries, are told
// of. Hidden are "._NAME", which another system keeps beside NAME, and what programs name so: a "." before one of
// "@~#", or before a letter in a name without blanks. Titles begin with a "." as well ("...And Justice for All",
// ".38 Special"): of those the files that the client carries are taken. What an argument names is always taken. A
// folder reached twice by links is read once.
[[nodiscard]] DroppedFiles expandDroppedFiles(std::span<const std::string> arguments, const FromOutside &fromOutside);

// Throws Failure when there was nothing, or all was left out.
void requireAnyFile(const DroppedFiles &dropped);

// Digit runs by value, the rest ignoring case, ties by code unit: "2 b" before "10 a".
[[nodiscard]] bool comesBefore(const QString &a, const QString &b);

} // namespace sonorel::trackchute
