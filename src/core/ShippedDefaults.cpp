#include "core/ShippedDefaults.h"

#include "core/PropertyFile.h"
#include "core/state/Settings.h"
#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

ShippedDefaults::ShippedDefaults(FileSystem &files, PropertyLists &lists, Desktop &desktop, const ClientPaths &paths)
    : m_files(files), m_lists(lists), m_desktop(desktop), m_paths(paths) {}

void ShippedDefaults::install() {
  install(m_paths.PFPath, kPrivateFileMode);
  install(m_paths.dropperPropertyFilePath, std::nullopt);
}

void ShippedDefaults::install(const QString &path, std::optional<quint32> mode) {
  const QString shippedPath = m_paths.resourceFilePath + u"App Data/"_s + path.mid(path.lastIndexOf(u'/') + 1);
  if (m_files.presence(shippedPath) != Presence::Present) {
    return;
  }
  try {
    const QVariantMap shipped = m_lists.decode(m_files.read(shippedPath)).toMap();
    PropertyFile copy(m_files, m_lists, m_desktop, path);
    const auto found = copy.read();
    if (!found) {
      copy.write(shipped, mode);
      return;
    }
    QVariantMap merged = *found;
    for (auto value = shipped.begin(); value != shipped.end(); ++value) {
      if (!merged.contains(value.key())) {
        merged.insert(value.key(), value.value());
      }
    }
    if (merged.size() > found->size()) {
      copy.write(merged);
    }
  } catch (const Failure &e) {
    m_desktop.log(path + u" could not be prepared: "_s + e.reason());
  }
}

} // namespace sonorel
