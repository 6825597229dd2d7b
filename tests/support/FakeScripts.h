// Scripts that only remember that they ran. Any thread but one at a time.
#pragma once

#include "platform/Scripts.h"

#include <QStringList>

#include <functional>
#include <utility>

namespace sonorel::test {

class FakeScripts : public Scripts {
public:
  QStringList ejected;
  QStringList converted;
  std::stop_token stop; // of the last conversion
  // The error text of a conversion, and the place where the ".url" file is made.
  std::function<std::optional<QString>(const QString &path)> onConvert;

  void ejectDisk(const QString &name) override { ejected.append(name); }
  std::optional<QString> convertBookmark(const QString &path, std::stop_token token) override {
    stop = std::move(token);
    converted.append(path);
    return onConvert ? onConvert(path) : std::nullopt;
  }
};

} // namespace sonorel::test
