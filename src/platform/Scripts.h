// What the first platform does by in-process scripts. May block; any thread.
#pragma once

#include <QString>

#include <optional>
#include <stop_token>

namespace sonorel {

class Scripts {
public:
  virtual ~Scripts() = default;
  // Ejects the mounted disk of that name, with the pause that follows a success. Errors are ignored.
  virtual void ejectDisk(const QString &name) = 0;
  // Converts a ".webloc" file into a ".url" file beside it; the error text when that failed, or was stopped.
  [[nodiscard]] virtual std::optional<QString> convertBookmark(const QString &path, std::stop_token stop) = 0;
};

} // namespace sonorel
