// From the contents of lists to the bytes of a file. Pure; any thread; uses the machine's other processors when there
// is enough to compress.
#pragma once

#include <QByteArray>

#include <vector>

namespace sonorel {

// Below it, starting threads costs more than it brings.
inline constexpr qsizetype kParallelFrom = 1024 * 1024;

// One chunk for each content, in their order.
[[nodiscard]] std::vector<QByteArray> compressedChunks(const std::vector<QByteArray> &contents);
// Header block, body length, chunks.
[[nodiscard]] QByteArray assembledFile(const QByteArray &header, const std::vector<QByteArray> &chunks);

} // namespace sonorel
