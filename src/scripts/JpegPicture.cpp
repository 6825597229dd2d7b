#include "scripts/JpegPicture.h"

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/RegularFile.h"

#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>

#include <cerrno>
#include <stdexcept>

namespace sonorel {

namespace {

constexpr unsigned char kStartOfImage = 0xD8;
constexpr unsigned char kEndOfImage = 0xD9;
constexpr unsigned char kStartOfScan = 0xDA;

unsigned char byteAt(std::string_view bytes, std::size_t place) {
  return static_cast<unsigned char>(bytes[place]);
}

// SOF0 to SOF15 without the three markers of that range which mean something else.
bool isFrameHeader(unsigned char marker) {
  return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

// Without a length behind it: TEM and the restart markers.
bool standsAlone(unsigned char marker) {
  return marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7);
}

FileDescriptor memoryFile(std::string_view bytes) {
  FileDescriptor file(::memfd_create("picture", MFD_CLOEXEC));
  while (file.isOpen() && !bytes.empty()) {
    const ssize_t written = ::write(file.get(), bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) {
      file.reset();
    } else if (written > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    }
  }
  if (!file.isOpen() || ::lseek(file.get(), 0, SEEK_SET) != 0) {
    throw std::runtime_error("there is no memory for the picture");
  }
  return file;
}

// The status of the converter, or -1 when it did not end by itself.
int runConverter(const std::string &converter, const FileDescriptor &input, const FileDescriptor &output) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input.get(), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output.get(), STDOUT_FILENO);
  std::string program = converter;
  char *arguments[] = {program.data(), nullptr};
  pid_t process = 0;
  const int error = ::posix_spawn(&process, converter.c_str(), &actions, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
    throw std::runtime_error("the converter of pictures cannot be started: " + converter);
  }
  int status = 0;
  while (::waitpid(process, &status, 0) < 0) {
    if (errno != EINTR) {
      return -1;
    }
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

bool isJpeg(std::string_view bytes) {
  if (bytes.size() < 4 || byteAt(bytes, 0) != 0xFF || byteAt(bytes, 1) != kStartOfImage) {
    return false;
  }
  bool hasFrame = false;
  std::size_t place = 2;
  while (place + 4 <= bytes.size() && byteAt(bytes, place) == 0xFF) {
    const unsigned char marker = byteAt(bytes, place + 1);
    if (marker == 0xFF) {
      ++place; // filling
      continue;
    }
    if (marker == kStartOfScan || marker == kEndOfImage) {
      return hasFrame && marker == kStartOfScan;
    }
    hasFrame = hasFrame || isFrameHeader(marker);
    place += standsAlone(marker) ? 2U : 2U + byteAt(bytes, place + 2) * 256U + byteAt(bytes, place + 3);
  }
  return false;
}

std::string jpegOf(std::string bytes, const std::string &converter) {
  if (isJpeg(bytes)) {
    return bytes;
  }
  const FileDescriptor input = memoryFile(bytes);
  const FileDescriptor output = memoryFile({});
  if (const int status = runConverter(converter, input, output); status != 0) {
    throw std::runtime_error("the picture was not converted");
  }
  auto converted = wholeOf(output, kLargestPicture);
  if (!converted || !isJpeg(*converted)) {
    throw std::runtime_error("the converter made no picture");
  }
  return std::move(*converted);
}

} // namespace sonorel
