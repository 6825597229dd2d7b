// Random identifiers by QUuid. Any thread.
#pragma once

#include "platform/Identifiers.h"

namespace sonorel {

class QtIdentifiers final : public Identifiers {
public:
  [[nodiscard]] QString generateUUID() override;
  [[nodiscard]] QByteArray generateUUIDBytes() override;
};

} // namespace sonorel
