// Tags by path; a path that was never set is a file that no reader knows. Any thread.
#pragma once

#include "platform/Metadata.h"

#include <QHash>

#include <mutex>

namespace sonorel::test {

class FakeMetadata : public Metadata {
public:
  void set(const QString &path, const TrackTags &tags) {
    const std::lock_guard guard(m_mutex);
    m_tags.insert(path, tags);
  }
  [[nodiscard]] int reads(const QString &path) const {
    const std::lock_guard guard(m_mutex);
    return m_reads.value(path);
  }

  std::optional<TrackTags> read(const QString &path) override {
    const std::lock_guard guard(m_mutex);
    ++m_reads[path];
    const auto found = m_tags.constFind(path);
    return found == m_tags.constEnd() ? std::nullopt : std::optional(*found);
  }

private:
  mutable std::mutex m_mutex; // guards everything below
  QHash<QString, TrackTags> m_tags;
  QHash<QString, int> m_reads;
};

} // namespace sonorel::test
