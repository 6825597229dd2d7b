#include "products/ProductList.h"

#include "core/state/LogException.h"
#include "products/PasswordArchive.h"

#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

QStringView arrayOf(ProductTable table) {
  switch (table) {
  case ProductTable::Detected:
    return kDetectedDevices;
  case ProductTable::Added:
    return kManuallyAddedDevices;
  case ProductTable::Selected:
    break;
  }
  return kSelectedDevices;
}

bool stands(ProductTable table, const ProductRecords &records, const ProductRow &row) {
  return row.index >= 0 && row.index < records.size() &&
         (row.seen.isNull() || row.seen == productRowText(table, records.at(row.index)));
}

} // namespace

ProductList::ProductList(const ProductTools &tools, const QString &path,
                         std::function<void(const ProductTables &)> show)
    : m_tools(tools), m_file(tools.files, tools.lists, tools.desktop, path), m_show(std::move(show)) {}

bool ProductList::change(const QString &operation, const Change &body) {
  try {
    const QVariantMap before = m_file.read().value_or(QVariantMap());
    QVariantMap after = before;
    body(after);
    if (after != before) {
      m_file.write(after);
    }
    refresh(after);
    return true;
  } catch (const std::exception &e) {
    logException(m_tools.desktop, operation, e);
    return false;
  }
}

bool ProductList::changeForUser(const QString &operation, const Change &body) {
  const bool changed = change(operation, body);
  if (!changed) {
    alert(u"ExceptionText"_s, u"ErrorProductList"_s);
  }
  return changed;
}

QVariantMap ProductList::content(const QString &operation) {
  try {
    return m_file.read().value_or(QVariantMap());
  } catch (const std::exception &e) {
    logException(m_tools.desktop, operation, e);
    return {};
  }
}

void ProductList::refresh(const QVariantMap &content) {
  const ProductRecords selected = productRecords(content, kSelectedDevices);
  m_tables.detected = productRowTexts(ProductTable::Detected, productRecords(content, kDetectedDevices));
  m_tables.added = productRowTexts(ProductTable::Added, productRecords(content, kManuallyAddedDevices));
  m_tables.selected = productRowTexts(ProductTable::Selected, selected);
  m_tables.dockMenu = dockMenuEntries(selected);
  m_tables.active = activeIndex(selected);
  m_show(m_tables);
}

void ProductList::load() {
  QVariantMap lists = content(u"awakeFromNib"_s);
  lists.remove(kDetectedDevices.toString());
  refresh(lists);
}

void ProductList::clearDetectedDevices() {
  change(u"clearDetectedDevices"_s, [](QVariantMap &lists) { lists.remove(kDetectedDevices.toString()); });
}

void ProductList::reloadSelectedProducts() {
  m_show(m_tables);
}

void ProductList::AddManualProduct(const QString &address, const QString &hostName) {
  if (address.isEmpty() && hostName.isEmpty()) {
    return;
  }
  ProductRecord record;
  if (!address.isEmpty()) {
    setProductText(record, kIpAddressKey, address);
  }
  if (!hostName.isEmpty()) {
    setProductText(record, kHostNameKey, hostName);
  }
  setProductText(record, kDetectionTypeKey, kAddedByHand);
  bool alreadyAdded = false;
  changeForUser(u"AddManualProduct"_s, [&](QVariantMap &lists) {
    ProductRecords added = productRecords(lists, kManuallyAddedDevices);
    alreadyAdded = std::any_of(added.begin(), added.end(),
                               [&](const ProductRecord &one) { return sameManualEntry(one, record); });
    if (!alreadyAdded) {
      added.append(record);
      setProductRecords(lists, kManuallyAddedDevices, added);
    }
  });
  if (alreadyAdded) {
    alertAlreadyAdded();
  }
}

void ProductList::AddDetectedProductToProductsList(const ProductRow &row) {
  addToSelected(u"AddDetectedProductToProductsList"_s, ProductTable::Detected, row);
}

void ProductList::AddManuallyAddedProductToProductsList(const ProductRow &row) {
  addToSelected(u"AddManuallyAddedProductToProductsList"_s, ProductTable::Added, row);
}

void ProductList::addToSelected(const QString &operation, ProductTable table, const ProductRow &row) {
  bool alreadyAdded = false;
  changeForUser(operation, [&](QVariantMap &lists) {
    const ProductRecords source = productRecords(lists, arrayOf(table));
    if (!stands(table, source, row)) {
      return;
    }
    ProductRecord record = source.at(row.index);
    ProductRecords selected = productRecords(lists, kSelectedDevices);
    const auto same = std::find_if(selected.begin(), selected.end(),
                                   [&](const ProductRecord &one) { return sameSelectedProduct(one, record); });
    alreadyAdded = same != selected.end();
    if (alreadyAdded) {
      setProductText(record, kIsSelectedKey, productText(*same, kIsSelectedKey, kSelectedNo));
      *same = record;
    } else {
      setProductText(record, kIsSelectedKey, kSelectedNo);
      selected.append(record);
    }
    setProductRecords(lists, kSelectedDevices, selected);
  });
  if (alreadyAdded) {
    alertAlreadyAdded();
  }
}

void ProductList::alertAlreadyAdded() {
  alert(u"AlertText"_s, u"productAlreadyAddedMessageText"_s);
}

void ProductList::alert(const QString &messageKey, const QString &informativeTextKey) {
  m_tools.strings.reload();
  m_tools.view.alert(m_tools.strings.text(messageKey), m_tools.strings.text(informativeTextKey));
}

void ProductList::RemoveAManualProductFromList(const ProductRow &row) {
  changeForUser(u"RemoveAManualProductFromList"_s, [&](QVariantMap &lists) {
    ProductRecords added = productRecords(lists, kManuallyAddedDevices);
    if (stands(ProductTable::Added, added, row)) {
      added.removeAt(row.index);
      setProductRecords(lists, kManuallyAddedDevices, added);
    }
  });
}

std::optional<ProductList::Marked> ProductList::markActive(const ProductRow &row) {
  std::optional<Marked> marked;
  const bool written = changeForUser(u"onProductSelection"_s, [&](QVariantMap &lists) {
    ProductRecords selected = productRecords(lists, kSelectedDevices);
    if (!stands(ProductTable::Selected, selected, row)) {
      return;
    }
    const bool wasActive = activeIndex(selected) == row.index;
    for (qsizetype i = 0; i < selected.size(); ++i) {
      setProductText(selected[i], kIsSelectedKey, i == row.index ? kSelectedYes : kSelectedNo);
    }
    setProductRecords(lists, kSelectedDevices, selected);
    marked = Marked{selected.at(row.index), wasActive, passwordFor(lists, selected.at(row.index))};
  });
  return written ? marked : std::nullopt;
}

QString ProductList::passwordFor(const QVariantMap &lists, const ProductRecord &record) const {
  const QString own = decrypt(m_tools.lists, record.value(kPasswordKey.toString()));
  if (!own.isEmpty()) {
    return own;
  }
  const ProductRecords earlier = productRecords(lists, kEarlierConnectedDevices);
  const QString address = connectionAddress(record);
  const QString type = productText(record, kDetectionTypeKey);
  const auto found = std::find_if(earlier.begin(), earlier.end(), [&](const ProductRecord &one) {
    return productText(one, kIpAddressKey) == address && productText(one, kDetectionTypeKey) == type;
  });
  return found == earlier.end() ? QString() : decrypt(m_tools.lists, found->value(kPasswordKey.toString()));
}

bool ProductList::isActiveProduct(const ProductRecord &record) {
  const ProductRecords selected = productRecords(content(u"RemoveAProductProductsList"_s), kSelectedDevices);
  const auto index = activeIndex(selected);
  return index >= 0 && sameSelectedProduct(selected.at(index), record);
}

std::optional<ProductRecord> ProductList::removeSelectedProduct(const ProductRow &row, Active active) {
  std::optional<ProductRecord> kept;
  changeForUser(u"RemoveAProductProductsList"_s, [&](QVariantMap &lists) {
    ProductRecords selected = productRecords(lists, kSelectedDevices);
    if (!stands(ProductTable::Selected, selected, row)) {
      return;
    }
    if (active == Active::Keep && isActive(selected.at(row.index))) {
      kept = selected.at(row.index);
      return;
    }
    selected.removeAt(row.index);
    setProductRecords(lists, kSelectedDevices, selected);
  });
  return kept;
}

void ProductList::removeSelectedProduct(const ProductRecord &record) {
  changeForUser(u"RemoveAProductProductsList"_s, [&](QVariantMap &lists) {
    ProductRecords selected = productRecords(lists, kSelectedDevices);
    const auto sameMarked = [&](bool mark) {
      return std::find_if(selected.begin(), selected.end(), [&](const ProductRecord &one) {
        return isActive(one) == mark && sameSelectedProduct(one, record);
      });
    };
    auto found = std::find(selected.begin(), selected.end(), record);
    if (found == selected.end()) {          // written anew since it was chosen: by discovery or by a connection
      found = sameMarked(isActive(record)); // others may lack a serial number as well
    }
    if (found == selected.end()) {
      found = sameMarked(!isActive(record)); // another one was chosen
    }
    if (found != selected.end()) {
      selected.erase(found);
      setProductRecords(lists, kSelectedDevices, selected);
    }
  });
}

bool ProductList::removeAllSelectedProducts(Active active) {
  bool removed = true;
  changeForUser(u"RemoveWholeProductsFromProductList"_s, [&](QVariantMap &lists) {
    removed = active == Active::Remove || activeIndex(productRecords(lists, kSelectedDevices)) < 0;
    if (removed) {
      lists.remove(kSelectedDevices.toString());
    }
  });
  return removed;
}

} // namespace sonorel
