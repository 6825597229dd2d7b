#include "transfer/MetadataCache.h"

#include "platform/Failure.h"

namespace sonorel {

std::optional<TrackTags> MetadataCache::tags(const QString &path) {
  std::optional<FileAttributes> facts;
  try {
    facts = m_files.attributes(path, Links::Follow);
  } catch (const Failure &) {
    facts.reset(); // a file that cannot be looked at cannot be read either
  }
  const auto known = m_entries.constFind(path);
  if (!facts) {
    return known != m_entries.constEnd() ? known->tags : std::nullopt;
  }
  if (known != m_entries.constEnd() && known->size == facts->size &&
      known->modifiedSeconds == facts->modifiedSeconds && known->modifiedNanoseconds == facts->modifiedNanoseconds) {
    return known->tags;
  }
  Entry entry{facts->size, facts->modifiedSeconds, facts->modifiedNanoseconds, m_metadata.read(path)};
  return m_entries.insert(path, entry)->tags;
}

} // namespace sonorel
