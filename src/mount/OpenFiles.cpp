#include "mount/OpenFiles.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <vector>

namespace sonorel {

namespace {

constexpr mode_t kIgnored = 0666; // a share keeps no modes
// How long a part of a block may take on its way before the next is a smaller one, or a larger one.
constexpr std::chrono::milliseconds kSlow{1500};
constexpr std::chrono::milliseconds kFast{500};

struct stat factsOfNewFile(const std::string &path) {
  struct stat facts = {};
  facts.st_mode = S_IFREG | kIgnored;
  facts.st_nlink = 1;
  facts.st_ino = std::hash<std::string>()(path) | 1U;
  ::clock_gettime(CLOCK_REALTIME, &facts.st_mtim);
  facts.st_atim = facts.st_ctim = facts.st_mtim;
  return facts;
}

bool isAtOrBelow(const std::string &path, const std::string &folder) {
  return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

} // namespace

int OpenFiles::open(const char *path, int flags, OpenFile **opened) {
  auto file = std::make_unique<OpenFile>();
  file->path = path;
  file->isWritable = (flags & O_ACCMODE) != O_RDONLY;
  const int result = openHandle(*file, flags);
  if (result < 0) {
    return result;
  }
  const bool isNew = (flags & O_EXCL) != 0;
  if (isNew) {
    file->ownFacts = factsOfNewFile(file->path);
  }
  // A new or emptied file is only certain to be there once its handle was closed without an error.
  file->isDirty = (flags & (O_CREAT | O_TRUNC)) != 0;
  *opened = file.get();
  m_files.emplace(file->path, std::move(file));
  return 0;
}

int OpenFiles::openHandle(OpenFile &file, int flags) {
  const std::string address = m_session.address(file.path.c_str());
  // A handle that can only write could not be asked for the file's size by every server.
  const int mode = file.isWritable ? O_RDWR : O_RDONLY;
  const int wanted = mode | (flags & (O_CREAT | O_EXCL | O_TRUNC));
  const Repeat repeat = (flags & O_EXCL) != 0 ? Repeat::No : Repeat::Yes;
  const int result = m_session.run(repeat, [&](SMBCCTX *context) {
    file.handle = ::smbc_getFunctionOpen(context)(context, address.c_str(), wanted, kIgnored);
    return file.handle != nullptr ? 0 : -1;
  });
  file.generation = m_session.generation();
  return result;
}

int OpenFiles::ensureHandle(OpenFile &file) {
  if (file.brokenBy != 0) {
    return -file.brokenBy;
  }
  if (file.isRemoved) {
    return -ESTALE;
  }
  m_session.noticeLoss();
  if (file.handle != nullptr && file.generation == m_session.generation()) {
    return 0;
  }
  file.handle = nullptr;
  if (file.isDirty) {
    file.brokenBy = EIO;
    return -EIO;
  }
  return openHandle(file, 0);
}

int OpenFiles::closeHandle(OpenFile &file) {
  file.ownFacts.reset();
  if (file.handle == nullptr) {
    return 0;
  }
  const int result = m_session.runOn(
      file.generation, [&](SMBCCTX *context) { return ::smbc_getFunctionClose(context)(context, file.handle); });
  file.handle = nullptr; // also after an error: nobody closes it twice
  const bool wasDirty = std::exchange(file.isDirty, false);
  return wasDirty ? result : 0; // what was only read is complete
}

int OpenFiles::flush(OpenFile &file) {
  int result = closeHandle(file);
  if (file.brokenBy != 0) {
    result = -file.brokenBy;
  }
  if (file.laterTimes && result == 0 && !file.isRemoved) {
    FileTimes times = *file.laterTimes;
    const std::string address = m_session.address(file.path.c_str());
    result = m_session.run(Repeat::Yes, [&](SMBCCTX *context) {
      return ::smbc_getFunctionUtimes(context)(context, address.c_str(), times.data());
    });
  }
  file.laterTimes.reset();
  file.brokenBy = std::max(file.brokenBy, -result);
  return result;
}

void OpenFiles::release(OpenFile *file) {
  static_cast<void>(flush(*file)); // nothing is left to do after a close(), and nobody to be told
  const auto [first, last] = m_files.equal_range(file->path);
  for (auto entry = first; entry != last; ++entry) {
    if (entry->second.get() == file) {
      m_files.erase(entry);
      return;
    }
  }
}

int OpenFiles::noteWrite(OpenFile &file, int result) {
  if (result < 0 && file.brokenBy == 0 && file.isDirty) {
    file.brokenBy = -result;
  }
  return result;
}

int OpenFiles::read(OpenFile &file, char *block, size_t size, off_t offset) {
  size_t done = 0;
  for (int attempt = 0; done < size;) {
    if (const int result = ensureHandle(file); result < 0) {
      return result;
    }
    const std::uint64_t generation = m_session.generation();
    const int result = movePart(file, std::min(m_part, size - done), offset + static_cast<off_t>(done),
                                [&](SMBCCTX *context, size_t part) {
                                  return ::smbc_getFunctionRead(context)(context, file.handle, block + done, part);
                                });
    if (result == 0) {
      break; // the end of the file
    }
    done += static_cast<size_t>(std::max(result, 0));
    // A connection that went away unnoticed is found out by the first read; nothing is lost, so it is tried again.
    if (result < 0 && (attempt++ > 0 || file.isDirty || generation == m_session.generation())) {
      return result;
    }
  }
  return static_cast<int>(done);
}

int OpenFiles::write(OpenFile &file, const char *block, size_t size, off_t offset) {
  if (const int result = ensureHandle(file); result < 0) {
    return result;
  }
  file.isDirty = true;
  for (size_t done = 0; done < size;) {
    const int result = movePart(file, std::min(m_part, size - done), offset + static_cast<off_t>(done),
                                [&](SMBCCTX *context, size_t part) {
                                  return ::smbc_getFunctionWrite(context)(context, file.handle, block + done, part);
                                });
    if (result <= 0) {
      return noteWrite(file, result < 0 ? result : -EIO);
    }
    done += static_cast<size_t>(result);
  }
  if (file.ownFacts) {
    file.ownFacts->st_size = std::max<off_t>(file.ownFacts->st_size, offset + static_cast<off_t>(size));
    ::clock_gettime(CLOCK_REALTIME, &file.ownFacts->st_mtim);
  }
  file.laterTimes.reset(); // a write makes times of its own
  return static_cast<int>(size);
}

template <typename Move> int OpenFiles::movePart(OpenFile &file, size_t size, off_t offset, Move move) {
  const auto start = std::chrono::steady_clock::now();
  const int result = m_session.runOn(file.generation, [&](SMBCCTX *context) -> ssize_t {
    return ::smbc_getFunctionLseek(context)(context, file.handle, offset, SEEK_SET) < 0 ? -1 : move(context, size);
  });
  const auto time = std::chrono::steady_clock::now() - start;
  if (time > kSlow) {
    m_part = std::max(m_part / 2, kSmallestPart);
  } else if (size == m_part && time < kFast) {
    m_part = std::min(m_part * 2, kLargestPart);
  }
  return result;
}

int OpenFiles::truncate(OpenFile &file, off_t size) {
  if (const int result = ensureHandle(file); result < 0) {
    return result;
  }
  file.isDirty = true;
  const int result = m_session.runOn(file.generation, [&](SMBCCTX *context) {
    return ::smbc_getFunctionFtruncate(context)(context, file.handle, size);
  });
  if (result >= 0 && file.ownFacts) {
    file.ownFacts->st_size = size;
  }
  return noteWrite(file, result);
}

void OpenFiles::letGo(const char *path) {
  for (auto &[name, file] : m_files) {
    if (isAtOrBelow(name, path) && file->handle != nullptr) {
      static_cast<void>(flush(*file)); // an error stays with the file
    }
  }
}

int OpenFiles::facts(OpenFile &file, struct stat *facts) {
  if (file.ownFacts && file.brokenBy == 0) {
    *facts = *file.ownFacts;
  } else {
    if (const int result = ensureHandle(file); result < 0) {
      return result;
    }
    const int result = m_session.runOn(file.generation, [&](SMBCCTX *context) {
      return ::smbc_getFunctionFstat(context)(context, file.handle, facts);
    });
    if (result < 0) {
      return result;
    }
  }
  if (file.laterTimes) {
    facts->st_atim = {(*file.laterTimes)[0].tv_sec, (*file.laterTimes)[0].tv_usec * 1000};
    facts->st_mtim = {(*file.laterTimes)[1].tv_sec, (*file.laterTimes)[1].tv_usec * 1000};
  }
  return 0;
}

OpenFile *OpenFiles::writable(const char *path) {
  const auto [first, last] = m_files.equal_range(path);
  const auto found = std::find_if(first, last, [](const auto &entry) {
    return entry.second->isWritable && entry.second->handle != nullptr && !entry.second->isRemoved;
  });
  return found == last ? nullptr : found->second.get();
}

void OpenFiles::renamed(const char *from, const char *to) {
  removed(to);
  std::vector<std::unique_ptr<OpenFile>> moved;
  for (auto entry = m_files.begin(); entry != m_files.end();) {
    if (isAtOrBelow(entry->first, from)) {
      moved.push_back(std::move(entry->second));
      entry = m_files.erase(entry);
    } else {
      ++entry;
    }
  }
  for (auto &file : moved) {
    file->path = to + file->path.substr(std::string_view(from).size());
    m_files.emplace(file->path, std::move(file));
  }
}

void OpenFiles::removed(const char *path) {
  const auto [first, last] = m_files.equal_range(path);
  std::for_each(first, last, [](auto &entry) { entry.second->isRemoved = true; });
}

} // namespace sonorel
