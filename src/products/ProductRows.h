// What the product tables and the dock menu show for a record, and what the three tables hold. Pure.
#pragma once

#include "products/ProductRecord.h"

#include <QStringList>

#include <functional>

namespace sonorel {

enum class ProductTable { Detected, Added, Selected };

// A row as somebody saw it. Where the text is given, the row is left alone when it shows something else by now.
struct ProductRow {
  qsizetype index = -1;
  QString seen; // null: not checked
};

struct ProductTables {
  QStringList detected;
  QStringList added;
  QStringList selected;
  QStringList dockMenu;  // an entry for each selected row
  qsizetype active = -1; // the selected row of the active product
};

inline constexpr QStringView kAddedByHandMark = u" * ";

// "Product Name (Host Name,Location)", without the location when it is not known.
[[nodiscard]] QString detectedRowText(const ProductRecord &record);
// The host name, the address, or "host name (address)".
[[nodiscard]] QString addedRowText(const ProductRecord &record);
// As detectedRowText for a record with a product name; else as addedRowText with kAddedByHandMark.
[[nodiscard]] QString selectedRowText(const ProductRecord &record);
[[nodiscard]] QString productRowText(ProductTable table, const ProductRecord &record);
[[nodiscard]] QStringList productRowTexts(ProductTable table, const ProductRecords &records);

// The longest beginning that fits, with "..." when something was cut; fits tells whether a text has room beside the
// mark.
[[nodiscard]] QString chopStringforStar(const QString &text, const std::function<bool(const QString &)> &fits);

// "Product Name (Location, Host Name)", by hand "Host Name (IP Address)"; what is not known is left out.
[[nodiscard]] QString dockMenuEntry(const ProductRecord &record);
[[nodiscard]] QStringList dockMenuEntries(const ProductRecords &records);

} // namespace sonorel
