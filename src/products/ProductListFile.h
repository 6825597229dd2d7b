// The product list file: read whole, changed in memory, written back whole beside and by renaming, for this user
// only. A file that cannot be parsed is set aside before anything is written; of one with odd entries a copy is kept
// before they are written over. Controller's thread; blocks on the disk. Format: docs/product-list.md. Read next:
// ProductRecord.h, which holds the keys.
#pragma once

#include "platform/Desktop.h"
#include "platform/FileSystem.h"
#include "platform/PropertyLists.h"
#include "products/ProductRecord.h"

#include <optional>

namespace sonorel {

class ProductListFile {
public:
  // No list of products comes near this; a larger file is none.
  static constexpr quint64 kSizeLimit = 16ULL * 1024 * 1024;
  static constexpr quint32 kMode = 0600;

  // All references must outlive the object.
  ProductListFile(FileSystem &files, PropertyLists &lists, Desktop &desktop, QString path);

  [[nodiscard]] bool exists() const { return m_files.presence(m_path) == Presence::Present; }
  // nullopt when there is no file, or none that could be parsed. Throws Failure when it cannot be read.
  [[nodiscard]] std::optional<QVariantMap> read();
  // Throws Failure.
  void write(const QVariantMap &content);

private:
  void setAside(const QString &reason);
  void reportOddities(const QVariantMap &content);
  [[nodiscard]] QString oddities(const QVariantMap &content) const;
  void keepCopy();

  FileSystem &m_files;
  PropertyLists &m_lists;
  Desktop &m_desktop;
  QString m_path;
  QString m_reported; // the line about the odd entries that the file holds, so that it is written once
};

// The records of one array; empty when there is none. Entries that are no records are passed over.
[[nodiscard]] ProductRecords productRecords(const QVariantMap &content, QStringView array);
void setProductRecords(QVariantMap &content, QStringView array, const ProductRecords &records);
// The array is there, even when it is empty.
[[nodiscard]] bool hasProductRecords(const QVariantMap &content, QStringView array);

} // namespace sonorel
