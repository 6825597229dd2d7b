// How the mount program ends: a status for programs and a line for people. The client looks for the words
// "Authentication" and "Permission" in the line, so they stand in it for those two ends and for no other.
#pragma once

#include <string>

namespace sonorel {

// Documented in --help and in the manual page: the numbers are fixed.
enum class ExitStatus : int {
  Done = 0,
  Failed = 1,             // none of the others
  RefusedCredentials = 2, // user name, password or account
  RefusedAccess = 3,      // the user may not use this share
  Unreachable = 4,        // nothing answers at the address, or not in time
  UnknownHost = 5,
  NoSuchShare = 6,
  NoCommonProtocol = 7, // what answers is no file server, or too old a one
  BadMountPoint = 8,    // missing, no folder, not empty, or in use
  NoFuse = 9,
  NotMounted = 10, // only to unmount
  Busy = 11,       // only to unmount
  Usage = 64,
};

struct Outcome {
  ExitStatus status = ExitStatus::Done;
  std::string text;

  [[nodiscard]] bool isDone() const { return status == ExitStatus::Done; }
};

// The whole line as it is printed: one of the two words first where it belongs, and taken out where it does not.
[[nodiscard]] std::string printedLine(const Outcome &outcome, const char *program);

} // namespace sonorel
