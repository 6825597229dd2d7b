// `appProperty`: the client property file, held in memory and written back whole. One lock covers get, set and
// save, because the connect flow and the transfer worker both use it. Unknown keys are kept. A value of the
// wrong type reads as absent. Any thread.
#pragma once

#include "platform/FileSystem.h"
#include "platform/PropertyLists.h"

#include <QVariantMap>

#include <functional>
#include <mutex>

namespace sonorel {

inline constexpr quint32 kPrivateFileMode = 0600; // for files that hold passwords

class Settings {
public:
  // files and lists must outlive the object.
  Settings(FileSystem &files, PropertyLists &lists, QString path);

  // A missing file leaves every setting empty; a damaged one is set aside first. Returns what was odd, for the
  // log, or an empty text.
  QString load();

  [[nodiscard]] QVariantMap all() const;
  [[nodiscard]] bool contains(const QString &key) const;
  [[nodiscard]] QString text(const QString &key) const;    // empty when absent or no text
  [[nodiscard]] QByteArray data(const QString &key) const; // empty when absent or no data
  [[nodiscard]] qint64 number(const QString &key, qint64 absent) const;
  void set(const QString &key, const QVariant &value);
  void remove(const QString &key);
  // Written atomically, the mode kept, 0600 when new. Throws Failure.
  void save();
  void setAndSave(const QString &key, const QVariant &value);
  // One change of several keys that nobody sees half done; saves afterwards. Throws Failure.
  void change(const std::function<void(QVariantMap &)> &change);

private:
  void write(const QVariantMap &values);

  FileSystem &m_files;
  PropertyLists &m_lists;
  QString m_path;
  mutable std::mutex m_mutex; // guards m_values and the order of writes
  QVariantMap m_values;
  bool m_unread = false; // a file stands there that could not be read: it is set aside before it is replaced
};

} // namespace sonorel
