// From the contents of lists to the bytes of a file. Pure; any thread; uses the machine's other processors when there
// is enough to compress.
#pragma once

#include <QByteArray>

#include <functional>
#include <vector>

namespace sonorel {

// Below so many bytes, starting threads costs more than it brings.
inline constexpr qsizetype kParallelFrom = 1024 * 1024;

// count chunks in their order; content makes the content of one of them and is called from several threads when the
// contents take more than kParallelFrom bytes, which expectedSize guesses.
[[nodiscard]] std::vector<QByteArray> compressedChunks(std::size_t count, qsizetype expectedSize,
                                                       const std::function<QByteArray(std::size_t)> &content);
// Header block, body length, chunks.
[[nodiscard]] QByteArray assembledFile(const QByteArray &header, const std::vector<QByteArray> &chunks);

} // namespace sonorel
