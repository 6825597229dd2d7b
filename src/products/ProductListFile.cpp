#include "products/ProductListFile.h"

#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

qsizetype oddEntries(const QVariant &array) {
  qsizetype odd = 0;
  for (const QVariant &entry : array.toList()) {
    odd += entry.typeId() == QMetaType::QVariantMap ? 0 : 1;
  }
  return odd;
}

} // namespace

ProductListFile::ProductListFile(FileSystem &files, PropertyLists &lists, Desktop &desktop, QString path)
    : m_files(files), m_lists(lists), m_desktop(desktop), m_path(std::move(path)) {}

std::optional<QVariantMap> ProductListFile::read() {
  const auto attributes = m_files.attributes(m_path, Links::Follow);
  if (!attributes) {
    return std::nullopt;
  }
  if (attributes->kind == FileKind::File && attributes->size > kSizeLimit) {
    setAside(u"too large"_s);
    return std::nullopt;
  }
  const QByteArray bytes = m_files.read(m_path, kSizeLimit);
  QString reason = u"no dictionary"_s;
  try {
    const QVariant content = m_lists.decode(bytes);
    if (content.typeId() == QMetaType::QVariantMap) {
      reportOddities(content.toMap());
      return content.toMap();
    }
  } catch (const Failure &e) {
    reason = e.reason();
  }
  setAside(reason);
  return std::nullopt;
}

void ProductListFile::write(const QVariantMap &content) {
  const QString left = oddities(content);
  if (left != m_reported) {
    keepCopy();
  }
  m_files.writeAtomically(m_path, m_lists.encodeXml(content), kMode);
  m_reported = left;
}

// Whoever changes a list writes only what he has understood of it.
void ProductListFile::keepCopy() {
  QString copy;
  for (int number = 1; copy.isEmpty() || m_files.presence(copy) != Presence::Absent; ++number) {
    copy = m_path + u".before-change-%1"_s.arg(number);
  }
  m_files.writeAtomically(copy, m_files.read(m_path, kSizeLimit), kMode);
  m_desktop.log(m_path + u" is written anew, what it held is kept as "_s + copy);
}

void ProductListFile::setAside(const QString &reason) {
  m_desktop.log(m_path + u" is no list of products ("_s + reason + u"), kept as "_s + m_files.setAside(m_path));
}

void ProductListFile::reportOddities(const QVariantMap &content) {
  const QString line = oddities(content);
  if (!line.isEmpty() && line != m_reported) {
    m_desktop.log(line);
  }
  m_reported = line;
}

QString ProductListFile::oddities(const QVariantMap &content) const {
  QStringList odd;
  for (const QStringView array :
       {kDetectedDevices, kManuallyAddedDevices, kSelectedDevices, kEarlierConnectedDevices}) {
    const QString name = array.toString();
    if (content.contains(name) && !hasProductRecords(content, array)) {
      odd.append(u"\"%1\" is no array"_s.arg(name));
    } else if (const qsizetype count = oddEntries(content.value(name)); count > 0) {
      odd.append(u"%1 of the entries of \"%2\" are no records"_s.arg(count).arg(name));
    }
  }
  return odd.isEmpty() ? QString() : m_path + u": "_s + odd.join(u"; "_s);
}

ProductRecords productRecords(const QVariantMap &content, QStringView array) {
  ProductRecords records;
  if (!hasProductRecords(content, array)) {
    return records;
  }
  for (const QVariant &entry : content.value(array.toString()).toList()) {
    if (entry.typeId() == QMetaType::QVariantMap) {
      records.append(entry.toMap());
    }
  }
  return records;
}

void setProductRecords(QVariantMap &content, QStringView array, const ProductRecords &records) {
  QVariantList entries;
  entries.reserve(records.size());
  for (const ProductRecord &record : records) {
    entries.append(record);
  }
  content.insert(array.toString(), entries);
}

bool hasProductRecords(const QVariantMap &content, QStringView array) {
  return content.value(array.toString()).typeId() == QMetaType::QVariantList;
}

} // namespace sonorel
