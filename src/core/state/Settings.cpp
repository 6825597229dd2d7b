#include "core/state/Settings.h"

#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

bool isNumber(const QVariant &value) {
  switch (value.typeId()) {
  case QMetaType::Int:
  case QMetaType::UInt:
  case QMetaType::LongLong:
  case QMetaType::ULongLong:
    return true;
  default:
    return false;
  }
}

} // namespace

Settings::Settings(FileSystem &files, PropertyLists &lists, QString path)
    : m_files(files), m_lists(lists), m_path(std::move(path)) {}

QString Settings::load() {
  const std::lock_guard lock(m_mutex);
  m_values.clear();
  m_unread = false;
  QByteArray bytes;
  try {
    bytes = m_files.read(m_path);
  } catch (const Failure &e) {
    m_unread = e.kind() != FailureKind::Absent;
    return e.reason();
  }
  QString reason;
  try {
    const QVariant value = m_lists.decode(bytes);
    if (value.typeId() == QMetaType::QVariantMap) {
      m_values = value.toMap();
      return {};
    }
    reason = u"no dictionary"_s;
  } catch (const Failure &e) {
    reason = e.reason();
  }
  try {
    return m_path + u" is damaged ("_s + reason + u"), kept as "_s + m_files.setAside(m_path);
  } catch (const Failure &e) {
    return m_path + u" is damaged ("_s + reason + u") and could not be set aside: "_s + e.reason();
  }
}

QVariantMap Settings::all() const {
  const std::lock_guard lock(m_mutex);
  return m_values;
}

bool Settings::contains(const QString &key) const {
  const std::lock_guard lock(m_mutex);
  return m_values.contains(key);
}

QString Settings::text(const QString &key) const {
  const std::lock_guard lock(m_mutex);
  return textAt(m_values, key);
}

QByteArray Settings::data(const QString &key) const {
  const std::lock_guard lock(m_mutex);
  const QVariant value = m_values.value(key);
  return value.typeId() == QMetaType::QByteArray ? value.toByteArray() : QByteArray();
}

qint64 Settings::number(const QString &key, qint64 absent) const {
  const std::lock_guard lock(m_mutex);
  const QVariant value = m_values.value(key);
  return isNumber(value) ? value.toLongLong() : absent;
}

void Settings::set(const QString &key, const QVariant &value) {
  const std::lock_guard lock(m_mutex);
  m_values.insert(key, value);
}

void Settings::remove(const QString &key) {
  const std::lock_guard lock(m_mutex);
  m_values.remove(key);
}

void Settings::save() {
  const std::lock_guard lock(m_mutex);
  write(m_values);
}

void Settings::setAndSave(const QString &key, const QVariant &value) {
  const std::lock_guard lock(m_mutex);
  m_values.insert(key, value);
  write(m_values);
}

void Settings::change(const std::function<void(QVariantMap &)> &change) {
  const std::lock_guard lock(m_mutex);
  QVariantMap changed = m_values;
  change(changed);
  m_values = changed;
  write(m_values);
}

void Settings::write(const QVariantMap &values) {
  const QByteArray bytes = m_lists.encodeXml(values);
  if (m_unread && m_files.presence(m_path) != Presence::Absent) {
    static_cast<void>(m_files.setAside(m_path));
  }
  m_unread = false;
  const auto old = m_files.attributes(m_path, Links::Follow);
  m_files.writeAtomically(m_path, bytes, old ? std::nullopt : std::optional(kPrivateFileMode));
}

} // namespace sonorel
