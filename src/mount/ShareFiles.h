// What the kernel asks of the mount, answered by the server: one method per question, paths begin with "/", results
// are 0 or more or a negative error number. The share keeps no owners and no modes: everything belongs to the user
// who mounted it and may be written, unless the server says that it is read-only. One thread at a time.
#pragma once

#include "mount/OpenFiles.h"

#include <fuse.h>

#include <chrono>

namespace sonorel {

class ShareFiles {
public:
  // session must outlive the object.
  explicit ShareFiles(SmbSession &session) : m_session(session), m_files(session) {}

  [[nodiscard]] int getattr(const char *path, struct stat *facts, fuse_file_info *info);
  [[nodiscard]] int readdir(const char *path, void *buffer, fuse_fill_dir_t fill);
  [[nodiscard]] int open(const char *path, int flags, fuse_file_info *info);
  [[nodiscard]] int read(char *block, size_t size, off_t offset, fuse_file_info *info);
  // Whoever wrote the block does not wait for the result: an error stays with the file.
  [[nodiscard]] int writeBehind(OpenFile &file, const char *block, size_t size, off_t offset);
  [[nodiscard]] int flush(fuse_file_info *info);
  void release(fuse_file_info *info);
  [[nodiscard]] int truncate(const char *path, off_t size, fuse_file_info *info);
  [[nodiscard]] int utimens(const char *path, const timespec times[2]);
  [[nodiscard]] int chmod(const char *path, mode_t mode);
  [[nodiscard]] int mkdir(const char *path);
  [[nodiscard]] int rmdir(const char *path);
  [[nodiscard]] int unlink(const char *path);
  [[nodiscard]] int rename(const char *from, const char *to, unsigned flags);
  [[nodiscard]] int statfs(struct statvfs *facts);

  [[nodiscard]] static OpenFile *fileOf(fuse_file_info *info);

private:
  [[nodiscard]] int statPath(const char *path, struct stat *facts);
  // The server has just said that there is no such file, and nothing was made here since.
  [[nodiscard]] bool isKnownAbsent(const char *path) const;
  void makeOurs(struct stat *facts) const;

  SmbSession &m_session;
  OpenFiles m_files;
  SMBCFILE *m_root = nullptr; // the root, for questions about the whole share
  std::uint64_t m_rootGeneration = 0;
  std::string m_absent; // the path that was last found absent
  std::chrono::steady_clock::time_point m_absentUntil;
};

} // namespace sonorel
