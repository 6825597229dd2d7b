#include "mount/ShareFiles.h"

#include "mount/SharePath.h"

#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>

namespace sonorel {

namespace {

constexpr blksize_t kBlock = 1 << 20; // programs that copy take it for the size of their blocks
// Whoever creates a file asks twice whether it is there, within an instant; the server decides in the end.
constexpr std::chrono::milliseconds kAbsence{50};
constexpr mode_t kFolderMode = S_IFDIR | 0777;
constexpr mode_t kFileMode = S_IFREG | 0666;
constexpr mode_t kReadOnlyMode = S_IFREG | 0444;

FileTimes fileTimes(const timespec times[2], const struct stat &facts) {
  timespec now = {};
  ::clock_gettime(CLOCK_REALTIME, &now);
  const timespec kept[2] = {facts.st_atim, facts.st_mtim};
  FileTimes result = {};
  for (size_t i = 0; i < 2; ++i) {
    const timespec &time = times[i].tv_nsec == UTIME_NOW ? now : times[i].tv_nsec == UTIME_OMIT ? kept[i] : times[i];
    result[i] = {time.tv_sec, time.tv_nsec / 1000};
  }
  return result;
}

} // namespace

OpenFile *ShareFiles::fileOf(fuse_file_info *info) {
  return info == nullptr ? nullptr : reinterpret_cast<OpenFile *>(info->fh);
}

void ShareFiles::makeOurs(struct stat *facts) const {
  if (S_ISDIR(facts->st_mode)) {
    facts->st_mode = kFolderMode; // the read-only mark of a folder means nothing
    facts->st_nlink = 2;
  } else {
    facts->st_mode = (facts->st_mode & S_IWUSR) != 0 ? kFileMode : kReadOnlyMode;
    facts->st_nlink = 1;
  }
  facts->st_uid = ::getuid();
  facts->st_gid = ::getgid();
  facts->st_blksize = kBlock;
  facts->st_blocks = (facts->st_size + 511) / 512;
}

int ShareFiles::statPath(const char *path, struct stat *facts) {
  const std::string address = m_session.address(path);
  return m_session.run(Repeat::Yes, [&](SMBCCTX *context) {
    return ::smbc_getFunctionStat(context)(context, address.c_str(), facts);
  });
}

int ShareFiles::getattr(const char *path, struct stat *facts, fuse_file_info *info) {
  if (const int error = nameError(path)) {
    return -error;
  }
  OpenFile *file = fileOf(info);
  if (file == nullptr || file->handle == nullptr) {
    file = m_files.writable(path); // its size at the server may not be told to others yet
  }
  if (file == nullptr && isKnownAbsent(path)) {
    return -ENOENT;
  }
  const int result = file != nullptr ? m_files.facts(*file, facts) : statPath(path, facts);
  if (result == 0) {
    makeOurs(facts);
  } else if (result == -ENOENT) {
    m_absent = path;
    m_absentUntil = std::chrono::steady_clock::now() + kAbsence;
  }
  return result;
}

bool ShareFiles::isKnownAbsent(const char *path) const {
  return m_absent == path && std::chrono::steady_clock::now() < m_absentUntil;
}

int ShareFiles::readdir(const char *path, void *buffer, fuse_fill_dir_t fill) {
  const std::string address = m_session.address(path);
  return m_session.run(Repeat::Yes, [&](SMBCCTX *context) {
    SMBCFILE *folder = ::smbc_getFunctionOpendir(context)(context, address.c_str());
    if (folder == nullptr) {
      return -1;
    }
    struct stat facts = {};
    while (const auto *entry = ::smbc_getFunctionReaddirPlus2(context)(context, folder, &facts)) {
      if (std::strcmp(entry->name, ".") == 0 || std::strcmp(entry->name, "..") == 0) {
        continue;
      }
      makeOurs(&facts);
      if (fill(buffer, entry->name, &facts, 0, FUSE_FILL_DIR_PLUS) != 0) {
        break;
      }
      facts = {};
    }
    ::smbc_getFunctionClosedir(context)(context, folder);
    return 0;
  });
}

int ShareFiles::open(const char *path, int flags, fuse_file_info *info) {
  if (const int error = nameError(path)) {
    return -error;
  }
  m_absent.clear();
  OpenFile *file = nullptr;
  const int result = m_files.open(path, flags, &file);
  info->fh = reinterpret_cast<std::uint64_t>(file);
  return result;
}

int ShareFiles::read(char *block, size_t size, off_t offset, fuse_file_info *info) {
  return m_files.read(*fileOf(info), block, size, offset);
}

int ShareFiles::writeBehind(OpenFile &file, const char *block, size_t size, off_t offset) {
  const int result = m_files.write(file, block, size, offset);
  if (result < 0 && file.brokenBy == 0) {
    file.brokenBy = -result;
  }
  return result;
}

int ShareFiles::flush(fuse_file_info *info) {
  return m_files.flush(*fileOf(info));
}

void ShareFiles::release(fuse_file_info *info) {
  m_files.release(fileOf(info));
}

int ShareFiles::truncate(const char *path, off_t size, fuse_file_info *info) {
  OpenFile *file = fileOf(info);
  if (file == nullptr) {
    file = m_files.writable(path);
  }
  if (file != nullptr) {
    return m_files.truncate(*file, size);
  }
  OpenFile *own = nullptr;
  int result = m_files.open(path, O_RDWR, &own);
  if (result == 0) {
    result = m_files.truncate(*own, size);
    const int closed = m_files.flush(*own);
    m_files.release(own);
    result = result < 0 ? result : closed;
  }
  return result;
}

int ShareFiles::utimens(const char *path, const timespec times[2]) {
  OpenFile *file = m_files.writable(path);
  struct stat facts = {};
  if (times[0].tv_nsec == UTIME_OMIT || times[1].tv_nsec == UTIME_OMIT) {
    const int result = file != nullptr ? m_files.facts(*file, &facts) : statPath(path, &facts);
    if (result < 0) {
      return result;
    }
  }
  FileTimes wanted = fileTimes(times, facts);
  if (file != nullptr) {
    file->laterTimes = wanted;
    return 0;
  }
  const std::string address = m_session.address(path);
  return m_session.run(Repeat::Yes, [&](SMBCCTX *context) {
    return ::smbc_getFunctionUtimes(context)(context, address.c_str(), wanted.data());
  });
}

// The one thing that a share knows of modes is the read-only mark. It is taken off when somebody asks to write, and
// never put on: a marked file could not be replaced or removed any more.
int ShareFiles::chmod(const char *path, mode_t mode) {
  if (m_files.writable(path) != nullptr) {
    return 0;
  }
  struct stat facts = {};
  if (const int result = statPath(path, &facts); result < 0) {
    return result;
  }
  const bool isMarked = !S_ISDIR(facts.st_mode) && (facts.st_mode & S_IWUSR) == 0;
  if (!isMarked || (mode & S_IWUSR) == 0) {
    return 0;
  }
  const std::string address = m_session.address(path);
  return m_session.run(Repeat::Yes, [&](SMBCCTX *context) {
    return ::smbc_getFunctionChmod(context)(context, address.c_str(), kFileMode);
  });
}

int ShareFiles::mkdir(const char *path) {
  if (const int error = nameError(path)) {
    return -error;
  }
  m_absent.clear();
  const std::string address = m_session.address(path);
  return m_session.run(Repeat::No, [&](SMBCCTX *context) {
    return ::smbc_getFunctionMkdir(context)(context, address.c_str(), kFolderMode);
  });
}

int ShareFiles::rmdir(const char *path) {
  const std::string address = m_session.address(path);
  return m_session.run(Repeat::No,
                       [&](SMBCCTX *context) { return ::smbc_getFunctionRmdir(context)(context, address.c_str()); });
}

int ShareFiles::unlink(const char *path) {
  m_files.letGo(path);
  const std::string address = m_session.address(path);
  const int result = m_session.run(
      Repeat::No, [&](SMBCCTX *context) { return ::smbc_getFunctionUnlink(context)(context, address.c_str()); });
  if (result == 0) {
    m_files.removed(path);
  }
  return result;
}

int ShareFiles::rename(const char *from, const char *to, unsigned flags) {
  if (const int error = nameError(to)) {
    return -error;
  }
  if ((flags & ~static_cast<unsigned>(RENAME_NOREPLACE)) != 0) {
    return -EINVAL;
  }
  struct stat facts = {};
  if ((flags & RENAME_NOREPLACE) != 0) {
    const int result = statPath(to, &facts);
    if (result != -ENOENT) {
      return result == 0 ? -EEXIST : result;
    }
  }
  m_absent.clear();
  m_files.letGo(from);
  m_files.letGo(to);
  const std::string address = m_session.address(from);
  const std::string target = m_session.address(to);
  // An existing target is removed by libsmbclient first: servers know no other way that all of them understand.
  const int result = m_session.run(Repeat::No, [&](SMBCCTX *context) {
    return ::smbc_getFunctionRename(context)(context, address.c_str(), context, target.c_str());
  });
  if (result == 0) {
    m_files.renamed(from, to);
  }
  return result;
}

int ShareFiles::statfs(struct statvfs *facts) {
  const int result = m_session.run(Repeat::Yes, [&](SMBCCTX *context) {
    if (m_root == nullptr || m_rootGeneration != m_session.generation()) {
      m_root = ::smbc_getFunctionOpendir(context)(context, m_session.address("/").c_str());
      m_rootGeneration = m_session.generation();
    }
    if (m_root == nullptr || ::smbc_getFunctionFstatVFS(context)(context, m_root, facts) != 0) {
      return -1;
    }
    if (facts->f_bsize == 0) { // libsmbclient calls a question that got no answer a success
      errno = EIO;
      return -1;
    }
    return 0;
  });
  if (result == 0) {
    // Sectors, and sectors in a unit; an old server that speaks the UNIX extensions tells the unit alone.
    facts->f_bsize *= std::max(facts->f_frsize, 1UL);
    facts->f_frsize = facts->f_bsize;
    facts->f_namemax = 255;
  }
  return result;
}

} // namespace sonorel
