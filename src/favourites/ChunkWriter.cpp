#include "favourites/ChunkWriter.h"

#include "favourites/Compression.h"
#include "favourites/FavouritesFormat.h"
#include "link/ByteWriter.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <numeric>
#include <thread>

namespace sonorel {

namespace {

constexpr unsigned kMostThreads = 8;

qsizetype sizeOfAll(const std::vector<QByteArray> &parts) {
  return std::accumulate(parts.begin(), parts.end(), qsizetype{0},
                         [](qsizetype sum, const QByteArray &part) { return sum + part.size(); });
}

} // namespace

std::vector<QByteArray> compressedChunks(std::size_t count, qsizetype expectedSize,
                                         const std::function<QByteArray(std::size_t)> &content) {
  std::vector<QByteArray> chunks(count);
  const unsigned processors = std::clamp(std::thread::hardware_concurrency(), 1U, kMostThreads);
  const bool parallel = expectedSize > kParallelFrom && count > 1;
  const std::size_t threads = parallel ? std::min<std::size_t>(processors, count) : 1;

  std::atomic<std::size_t> next{0};
  std::vector<std::exception_ptr> failures(threads);
  const auto work = [&](std::size_t worker) {
    try {
      for (std::size_t i = next++; i < count; i = next++) {
        Compression::compressData(content(i), chunks.at(i));
      }
    } catch (...) {
      failures.at(worker) = std::current_exception(); // memory ran out: thrown again by the caller's thread
    }
  };
  {
    std::vector<std::jthread> others;
    for (std::size_t worker = 1; worker < threads; ++worker) {
      others.emplace_back(work, worker);
    }
    work(0);
  }
  for (const std::exception_ptr &failure : failures) {
    if (failure) {
      std::rethrow_exception(failure);
    }
  }
  return chunks;
}

QByteArray assembledFile(const QByteArray &header, const std::vector<QByteArray> &chunks) {
  const qsizetype body = sizeOfAll(chunks);
  ByteWriter file(header.size() + kBodyLengthSize + body);
  file.bytes(header);
  file.u32(static_cast<quint32>(body));
  for (const QByteArray &chunk : chunks) {
    file.bytes(chunk);
  }
  return file.take();
}

} // namespace sonorel
