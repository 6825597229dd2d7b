#include "mount/FuseLoop.h"

#include "mount/MountPoint.h"

#include <fcntl.h>
#include <pthread.h>

#include <cerrno>
#include <csignal>

namespace sonorel {

namespace {

constexpr unsigned kLargestRequest = 1U << 20U;
constexpr double kSecondsRemembered = 1.0;

FuseLoop &loop() {
  return *static_cast<FuseLoop *>(::fuse_get_context()->private_data);
}
// Nothing that was written is on its way any more.
ShareFiles &files() {
  loop().writes.settle();
  return loop().files;
}

void *init(fuse_conn_info *connection, fuse_config *config) {
  connection->max_write = kLargestRequest;
  connection->max_read = kLargestRequest; // as in the mount's options
  connection->max_readahead = kLargestRequest;
  // Through a pipe every request would take two calls, and every block another copy.
  connection->want &= ~static_cast<unsigned>(FUSE_CAP_SPLICE_READ | FUSE_CAP_SPLICE_WRITE | FUSE_CAP_SPLICE_MOVE);
  config->attr_timeout = kSecondsRemembered;
  config->entry_timeout = kSecondsRemembered;
  config->negative_timeout = 0; // "not there" is decided upon: it is asked each time
  config->use_ino = 1;
  config->hard_remove = 1; // no hidden remains of open files on the product
  loop().noteServed();
  return ::fuse_get_context()->private_data;
}

fuse_operations operations() {
  fuse_operations table = {};
  table.init = init;
  table.getattr = [](const char *path, struct stat *facts, fuse_file_info *info) {
    return files().getattr(path, facts, info);
  };
  table.readdir = [](const char *path, void *buffer, fuse_fill_dir_t fill, off_t /*offset*/,
                     fuse_file_info * /*info*/,
                     fuse_readdir_flags /*flags*/) { return files().readdir(path, buffer, fill); };
  table.open = [](const char *path, fuse_file_info *info) { return files().open(path, info->flags, info); };
  table.create = [](const char *path, mode_t /*mode*/, fuse_file_info *info) {
    return files().open(path, info->flags | O_CREAT, info);
  };
  table.read = [](const char * /*path*/, char *block, size_t size, off_t offset, fuse_file_info *info) {
    return files().read(block, size, offset, info);
  };
  table.write = [](const char * /*path*/, const char *block, size_t size, off_t offset, fuse_file_info *info) {
    return loop().writes.write(block, size, offset, ShareFiles::fileOf(info));
  };
  table.flush = [](const char * /*path*/, fuse_file_info *info) { return files().flush(info); };
  table.fsync = [](const char * /*path*/, int /*dataOnly*/, fuse_file_info *info) { return files().flush(info); };
  table.release = [](const char * /*path*/, fuse_file_info *info) {
    files().release(info);
    return 0;
  };
  table.truncate = [](const char *path, off_t size, fuse_file_info *info) {
    return files().truncate(path, size, info);
  };
  table.utimens = [](const char *path, const timespec times[2], fuse_file_info * /*info*/) {
    return files().utimens(path, times);
  };
  table.chmod = [](const char *path, mode_t mode, fuse_file_info * /*info*/) { return files().chmod(path, mode); };
  // A copy keeps the owner where it can; here everything has the same one.
  table.chown = [](const char * /*path*/, uid_t /*user*/, gid_t /*group*/, fuse_file_info * /*info*/) { return 0; };
  table.mkdir = [](const char *path, mode_t /*mode*/) { return files().mkdir(path); };
  table.rmdir = [](const char *path) { return files().rmdir(path); };
  table.unlink = [](const char *path) { return files().unlink(path); };
  table.rename = [](const char *from, const char *to, unsigned flags) { return files().rename(from, to, flags); };
  table.statfs = [](const char * /*path*/, struct statvfs *facts) { return files().statfs(facts); };
  return table;
}

void wake(int /*number*/) {}

// Only what cannot be mistaken for a separator of options.
std::string plainSource(const std::string &source) {
  std::string plain = source;
  for (char &c : plain) {
    if (c == ',' || c == '\\' || static_cast<unsigned char>(c) <= ' ') {
      c = '_';
    }
  }
  return plain;
}

bool hasFuse() {
  return FileDescriptor(::open("/dev/fuse", O_RDWR | O_CLOEXEC)).isOpen();
}

} // namespace

FuseLoop::FuseLoop(ShareFiles &shareFiles, const std::string &source, std::function<bool()> served)
    : files(shareFiles), writes(shareFiles), m_thread(::pthread_self()), m_served(std::move(served)) {
  struct sigaction action = {};
  action.sa_handler = wake; // no restart: the loop's read is to end
  ::sigaction(SIGUSR1, &action, nullptr);
  const fuse_operations table = operations();
  fuse_args arguments = FUSE_ARGS_INIT(0, nullptr);
  const std::string options = std::string("-osubtype=") + kFileSystemSubtype + ",fsname=" + plainSource(source) +
                              ",nosuid,nodev,noatime,max_read=" + std::to_string(kLargestRequest);
  ::fuse_set_log_func([](fuse_log_level /*level*/, const char * /*format*/, va_list /*values*/) {});
  ::fuse_opt_add_arg(&arguments, "sonorel-mount");
  ::fuse_opt_add_arg(&arguments, options.c_str());
  m_fuse = ::fuse_new(&arguments, &table, sizeof table, this);
  ::fuse_opt_free_args(&arguments);
}

FuseLoop::~FuseLoop() {
  if (m_isMounted) {
    ::fuse_unmount(m_fuse);
  }
  if (m_fuse != nullptr) {
    ::fuse_destroy(m_fuse);
  }
}

Outcome FuseLoop::mount(const std::string &point) {
  if (m_fuse != nullptr && ::fuse_mount(m_fuse, point.c_str()) == 0) {
    m_isMounted = true;
    return {};
  }
  if (!hasFuse()) {
    return {ExitStatus::NoFuse, "this machine or this user has no FUSE: /dev/fuse cannot be opened"};
  }
  return {ExitStatus::NoFuse, "FUSE does not mount here: is fusermount3 installed?"};
}

void FuseLoop::run() {
  ::fuse_loop(m_fuse);
  writes.settle();
}

void FuseLoop::exit() {
  ::fuse_exit(m_fuse);
  ::pthread_kill(m_thread, SIGUSR1);
}

void FuseLoop::noteServed() {
  if (!m_served()) {
    exit();
  }
}

} // namespace sonorel
