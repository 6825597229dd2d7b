// Property lists by libplist, behind the guard that checks what libplist does not. Stateless; any thread.
#pragma once

#include "platform/PropertyLists.h"

namespace sonorel {

class LibplistPropertyLists final : public PropertyLists {
public:
  [[nodiscard]] QVariant decode(const QByteArray &bytes) override;
  [[nodiscard]] QVariant decode(const QByteArray &bytes, const WantedKeys &keys) override;
  // Keys in the order of their code units. A value that a property list cannot hold (an invalid variant, a text
  // with a NUL character, an unsigned number above 63 bits) is a failure.
  [[nodiscard]] QByteArray encodeXml(const QVariant &value) override;
  [[nodiscard]] QByteArray encodeBinary(const QVariant &value) override;
  [[nodiscard]] QByteArray archive(const QString &text) override;
  [[nodiscard]] std::optional<QString> unarchive(const QByteArray &bytes) override;
};

} // namespace sonorel
