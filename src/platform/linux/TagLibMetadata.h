// Tags by TagLib. The file's kind is told by its extension, in any case; a known extension with other content is a
// file without tags. Stateless; any thread.
#pragma once

#include "platform/Metadata.h"
#include "platform/linux/HostPath.h"

namespace sonorel {

class TagLibMetadata final : public Metadata {
public:
  explicit TagLibMetadata(HostPath hostPath);
  [[nodiscard]] std::optional<TrackTags> read(const QString &path) override;

private:
  HostPath m_hostPath;
};

} // namespace sonorel
