// The user's products: the four lists of the product list file, their tables, and what a connection writes into them.
// Every operation reads the file, changes it, writes it and refreshes the tables; a failure is logged and leaves file
// and tables as they were, and the user is told when it was his action. Controller's thread. Read next:
// ProductSelection.h.
#pragma once

#include "core/state/Session.h"
#include "core/state/Settings.h"
#include "core/state/Strings.h"
#include "core/state/View.h"
#include "products/ProductListFile.h"
#include "products/ProductRows.h"

#include <functional>
#include <optional>

namespace sonorel {

// What the product list works with. All of it must outlive the list.
struct ProductTools {
  FileSystem &files;
  PropertyLists &lists;
  Desktop &desktop;
  Strings &strings;
  View &view;
  const Settings &settings;
  const Session &session;
};

class ProductList {
public:
  struct ActiveProduct {
    QString address;         // empty when there is no active product
    QString password;        // empty when none is stored with the record
    bool listIsEmpty = true; // "Selected Devices"
  };
  struct Marked {
    ProductRecord record;
    bool wasActive = false;
    // The record's own, else that of the earlier connection with its address and detection type; may be empty.
    QString password;
  };
  enum class Active { Keep, Remove };

  // show hands the tables' rows to the window.
  ProductList(const ProductTools &tools, const QString &path, std::function<void(const ProductTables &)> show);

  // Start: the lists of selected and hand-added products into their tables. "Detected Devices" is left out.
  void load();
  // Start and quit.
  void clearDetectedDevices();
  // The marks of the selected table are drawn anew.
  void reloadSelectedProducts();

  // --- actions ---
  // Nothing happens when both are empty.
  void AddManualProduct(const QString &address, const QString &hostName);
  void AddDetectedProductToProductsList(const ProductRow &row);
  void AddManuallyAddedProductToProductsList(const ProductRow &row);
  void RemoveAManualProductFromList(const ProductRow &row);

  // --- for discovery ---
  // Replaces every equal detected record, or is appended; renews the same product among the selected ones.
  void addDetectedDevice(const ProductRecord &record);
  // Of the detected records the first with this one's hardware address, else the first with its serial number.
  void removeDetectedDevice(const ProductRecord &record);

  // --- for the selection ---
  // Makes that row the active one; nothing when there is no such row or the file could not be written.
  [[nodiscard]] std::optional<Marked> markActive(const ProductRow &row);
  [[nodiscard]] bool isActiveProduct(const ProductRecord &record);
  // The active product that was to be kept, and so was not removed.
  std::optional<ProductRecord> removeSelectedProduct(const ProductRow &row, Active active);
  void removeSelectedProduct(const ProductRecord &record);
  // False when an active product was to be kept, and so nothing was removed.
  bool removeAllSelectedProducts(Active active);

  // --- for the connect flow ---
  [[nodiscard]] ActiveProduct activeProduct();
  // After a successful connection to this address.
  void updateProductInfoInProductsLists(const QString &address);
  // "Mac Address" of the active product, else of the earlier connection with this address; empty when not known.
  [[nodiscard]] QString hardwareAddressFor(const QString &address);

private:
  using Change = std::function<void(QVariantMap &)>;
  // False when something failed.
  bool change(const QString &operation, const Change &body);
  // An action of the user's, who is told when it failed.
  bool changeForUser(const QString &operation, const Change &body);
  [[nodiscard]] QVariantMap content(const QString &operation);
  [[nodiscard]] QString passwordFor(const QVariantMap &lists, const ProductRecord &record) const;
  void addToSelected(const QString &operation, ProductTable table, const ProductRow &row);
  void refresh(const QVariantMap &content);
  void alert(const QString &messageKey, const QString &informativeTextKey);
  void alertAlreadyAdded();

  ProductTools m_tools;
  ProductListFile m_file;
  std::function<void(const ProductTables &)> m_show;
  ProductTables m_tables;
};

} // namespace sonorel
