// The files that programs have open on the mount, each with its handle at the server. A handle is closed at every
// close() of the program, so that errors are told there and a following rename or change of times meets none; it is
// opened again when it is needed once more. What was written through a handle that was lost with its connection
// cannot be known to be on the server: such a file is broken, and says so at every further write and at its close().
// One thread at a time.
#pragma once

#include "mount/SmbSession.h"

#include <sys/stat.h>
#include <sys/time.h>

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

namespace sonorel {

using FileTimes = std::array<timeval, 2>; // access, modification

struct OpenFile {
  std::string path;
  bool isWritable = false;
  SMBCFILE *handle = nullptr;
  std::uint64_t generation = 0;
  bool isDirty = false;                // written to since its handle was opened
  bool isRemoved = false;              // its name is gone
  int brokenBy = 0;                    // the error that everything ends in from now on
  std::optional<struct stat> ownFacts; // of a file that was made here, until its handle is closed
  std::optional<FileTimes> laterTimes; // to be set when the handle is closed: closing would overwrite them
};

class OpenFiles {
public:
  // session must outlive the object.
  explicit OpenFiles(SmbSession &session) : m_session(session) {}

  // flags as in open(2). A file that must not exist yet is created. The result lives until release.
  [[nodiscard]] int open(const char *path, int flags, OpenFile **opened);
  void release(OpenFile *file);

  [[nodiscard]] int read(OpenFile &file, char *block, size_t size, off_t offset);
  [[nodiscard]] int write(OpenFile &file, const char *block, size_t size, off_t offset);
  [[nodiscard]] int truncate(OpenFile &file, off_t size);
  // Closes the handle, and sets the times that had to wait; the first error counts.
  [[nodiscard]] int flush(OpenFile &file);
  // Of all that is open under this name or below it, before the name changes its owner.
  void letGo(const char *path);

  // As the server has it, or as it is known here.
  [[nodiscard]] int facts(OpenFile &file, struct stat *facts);
  // The file open under this name that has a handle and can be written; null when there is none.
  [[nodiscard]] OpenFile *writable(const char *path);
  void renamed(const char *from, const char *to);
  void removed(const char *path);

private:
  [[nodiscard]] int openHandle(OpenFile &file, int flags);
  [[nodiscard]] int ensureHandle(OpenFile &file);
  [[nodiscard]] int closeHandle(OpenFile &file);
  // One operation on that place of the file; how long it took decides about the size of the next.
  template <typename Move> [[nodiscard]] int movePart(OpenFile &file, size_t size, off_t offset, Move move);
  // Remembers an error of a write, which the program may not look at before its close().
  int noteWrite(OpenFile &file, int result);

  static constexpr size_t kSmallestPart = 64 * 1024;
  static constexpr size_t kLargestPart = 1024 * 1024;

  SmbSession &m_session;
  size_t m_part = 2 * kSmallestPart; // so little that a slow road does not make an operation meet its limit
  std::unordered_multimap<std::string, std::unique_ptr<OpenFile>> m_files;
};

} // namespace sonorel
