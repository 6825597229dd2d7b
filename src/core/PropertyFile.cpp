#include "core/PropertyFile.h"

#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

PropertyFile::PropertyFile(FileSystem &files, PropertyLists &lists, Desktop &desktop, QString path, QString asidePath)
    : m_files(files), m_lists(lists), m_desktop(desktop), m_path(std::move(path)), m_asidePath(std::move(asidePath)) {
}

std::optional<QVariantMap> PropertyFile::read() {
  QByteArray bytes;
  try {
    bytes = m_files.read(m_path);
  } catch (const Failure &e) {
    if (e.kind() == FailureKind::Absent) {
      return std::nullopt;
    }
    throw;
  }
  QString reason = u"no dictionary"_s;
  try {
    const QVariant value = m_lists.decode(bytes);
    if (value.typeId() == QMetaType::QVariantMap) {
      return value.toMap();
    }
  } catch (const Failure &e) {
    reason = e.reason();
  }
  setAside(reason);
  return std::nullopt;
}

void PropertyFile::setAside(const QString &reason) {
  QString damaged = m_path;
  if (!m_asidePath.isEmpty()) {
    m_files.rename(m_path, m_asidePath);
    damaged = m_asidePath;
  }
  m_desktop.log(m_path + u" is damaged ("_s + reason + u"), kept as "_s + m_files.setAside(damaged));
}

void PropertyFile::write(const QVariantMap &values, std::optional<quint32> mode) {
  m_files.writeAtomically(m_path, m_lists.encodeXml(values), mode);
}

} // namespace sonorel
