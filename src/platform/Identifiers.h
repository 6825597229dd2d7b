// Random identifiers. Any thread.
#pragma once

#include <QByteArray>
#include <QString>

namespace sonorel {

class Identifiers {
public:
  virtual ~Identifiers() = default;
  [[nodiscard]] virtual QString generateUUID() = 0;         // 36 characters, upper case, no braces
  [[nodiscard]] virtual QByteArray generateUUIDBytes() = 0; // 16 bytes, RFC 4122 order
};

} // namespace sonorel
