// A media file for the tag library that is not searched to its end. In a file that does not begin as its format does,
// the library looks for a mark block by block: seconds for a large file of noise, which nothing can interrupt. Blocks
// of the library's own size are read for that alone; behind the last one that is allowed the file seems to end.
// Standard library and tag library only, for the programs that are started once for each track.
#pragma once

#include "platform/linux/FileDescriptor.h"

#include <taglib/tfilestream.h>

namespace sonorel {

class SearchLimit final : public TagLib::FileStream {
public:
  explicit SearchLimit(FileDescriptor file) : FileStream(file.release(), true) {} // closes the descriptor

  TagLib::ByteVector readBlock(unsigned long length) override {
    if (length == bufferSize() && ++m_searched > kSearchedBytes / bufferSize()) {
      return {};
    }
    return FileStream::readBlock(length);
  }

private:
  static constexpr unsigned kSearchedBytes = 1024 * 1024;
  unsigned m_searched = 0; // blocks
};

} // namespace sonorel
