#include "core/state/Strings.h"

#include "platform/Failure.h"

namespace sonorel {

namespace {

// No strings file is anywhere near this; a larger one is no strings file.
constexpr quint64 kStringsLimit = 8ULL * 1024 * 1024;

bool sameFileState(const std::optional<FileAttributes> &a, const std::optional<FileAttributes> &b) {
  if (!a || !b) {
    return false;
  }
  return a->size == b->size && a->modifiedSeconds == b->modifiedSeconds &&
         a->modifiedNanoseconds == b->modifiedNanoseconds && a->fileId == b->fileId;
}

} // namespace

Strings::Strings(FileSystem &files, PropertyLists &lists, QString folder)
    : m_files(files), m_lists(lists), m_folder(std::move(folder)), m_table(std::make_shared<const Table>()) {}

void Strings::setLanguageFile(const QString &languageFile) {
  const std::lock_guard lock(m_mutex);
  m_languageFile = languageFile;
}

QString Strings::languageFile() const {
  const std::lock_guard lock(m_mutex);
  return m_languageFile;
}

void Strings::reload() {
  const QString wanted = languageFile();
  std::optional<FileAttributes> attributes;
  try {
    attributes = m_files.attributes(m_folder + wanted, Links::Follow);
  } catch (const Failure &) {
    // Told as a missing file: read below gives the empty table.
    attributes = std::nullopt;
  }
  {
    const std::lock_guard lock(m_mutex);
    if (m_loadedFile == wanted && sameFileState(m_loadedAttributes, attributes)) {
      return;
    }
  }
  const auto table = std::make_shared<const Table>(read(wanted));
  const std::lock_guard lock(m_mutex);
  m_loadedFile = wanted;
  m_loadedAttributes = attributes;
  m_table = table;
}

QString Strings::text(const QString &key) const {
  const std::lock_guard lock(m_mutex);
  return m_table->value(key, key);
}

bool Strings::contains(const QString &key) const {
  const std::lock_guard lock(m_mutex);
  return m_table->contains(key);
}

QString Strings::textIn(const QString &languageFile, const QString &key) const {
  return read(languageFile).value(key);
}

Strings::Table Strings::read(const QString &languageFile) const {
  Table table;
  try {
    const QVariantMap values = m_lists.decode(m_files.read(m_folder + languageFile, kStringsLimit)).toMap();
    table.reserve(values.size());
    for (auto value = values.begin(); value != values.end(); ++value) {
      if (value->typeId() == QMetaType::QString) {
        table.insert(value.key(), value->toString());
      }
    }
  } catch (const Failure &) {
    table.clear(); // a missing or damaged file shows the keys
  }
  return table;
}

QString withProductName(const QString &text, const QString &deviceName) {
  QString replaced = text;
  return replaced.replace(u'#', deviceName);
}

QString withFileName(const QString &text, const QString &name) {
  QString replaced = text;
  return replaced.replace(u'*', u'"' + name + u'"');
}

} // namespace sonorel
