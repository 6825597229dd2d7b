// A product list on a fake disk, with the tables that it hands to the window.
#pragma once

#include "platform/linux/LibplistPropertyLists.h"
#include "products/ProductList.h"
#include "support/FakeDesktop.h"
#include "support/FakeFileSystem.h"
#include "support/FakeView.h"
#include "support/Fixtures.h"

#include <gtest/gtest.h>

namespace sonorel::test {

class ProductTest : public testing::Test {
protected:
  ProductTest() {
    installStrings(files);
    files.makeFolders(QStringLiteral("/Users/anna/Library/Application Support/Sonorel"));
    strings.setLanguageFile(QStringLiteral("StringsEnglish"));
    strings.reload();
  }

  static ProductRecord detected(const QString &name, const QString &mac, const QString &serial = {}) {
    ProductRecord record{{QStringLiteral("Product Name"), name},
                         {QStringLiteral("Host Name"), name.toLower()},
                         {QStringLiteral("IP Address"), QStringLiteral("10.0.0.1")},
                         {QStringLiteral("Mac Address"), mac},
                         {QStringLiteral("Location"), QStringLiteral("NOLOCATIONSET")},
                         {QStringLiteral("Detection Type"), QStringLiteral("0")}};
    if (!serial.isEmpty()) {
      record.insert(QStringLiteral("Serial Number"), serial);
    }
    return record;
  }
  static ProductRecord byHand(const QString &address, const QString &host = {}) {
    ProductRecord record{{QStringLiteral("Detection Type"), QStringLiteral("1")}};
    if (!address.isEmpty()) {
      record.insert(QStringLiteral("IP Address"), address);
    }
    if (!host.isEmpty()) {
      record.insert(QStringLiteral("Host Name"), host);
    }
    return record;
  }
  static ProductRecord with(ProductRecord record, const QString &key, const QVariant &value) {
    record.insert(key, value);
    return record;
  }
  static ProductRecord active(const ProductRecord &record) {
    return with(record, QStringLiteral("Is Selected"), QStringLiteral("Yes"));
  }
  static ProductRecord passive(const ProductRecord &record) {
    return with(record, QStringLiteral("Is Selected"), QStringLiteral("No"));
  }

  void put(const QVariantMap &content) { files.put(path, lists.encodeXml(content)); }
  void put(const QString &array, const QVariantList &records) { put({{array, records}}); }
  QVariantMap content() { return lists.decode(files.bytes(path)).toMap(); }
  QVariantList records(const QString &array) { return content().value(array).toList(); }
  QVariantList selected() { return records(QStringLiteral("Selected Devices")); }
  QVariantList earlier() { return records(QStringLiteral("Earlier Connected Devices")); }
  QStringList alerts() { return view.callsStartingWith(QStringLiteral("alert")); }
  // How often an operation has read ("read") and replaced ("write") the whole file, in its order.
  QStringList costOf(const std::function<void()> &operation) {
    files.clearLog();
    operation();
    QStringList cost;
    for (const QString &line : files.log()) {
      if (line == QStringLiteral("read ") + path) {
        cost.append(QStringLiteral("read"));
      } else if (line == QStringLiteral("writeAtomically ") + path) {
        cost.append(QStringLiteral("write"));
      }
    }
    return cost;
  }

  const QString path = QStringLiteral("/Users/anna/Library/Application Support/Sonorel/DevicesDetails.xml");
  const QString kAlreadyAdded = QStringLiteral("alert Please note|This product is already in the list.");
  const QString kNotChanged =
      QStringLiteral("alert Something went wrong|The list of products could not be changed. Please check that there "
                     "is free space on your disk and try again.");
  const QStringList kReadAndWritten{QStringLiteral("read"), QStringLiteral("write")};
  FakeFileSystem files;
  FakeDesktop desktop;
  FakeView view;
  LibplistPropertyLists lists;
  Strings strings{files, lists, resourceFolder()};
  Settings settings{files, lists, QStringLiteral("/unused")};
  Session session;
  ProductTables tables;
  int shown = 0;
  ProductList products{
      {files, lists, desktop, strings, view, settings, session}, path, [this](const ProductTables &now) {
        tables = now;
        ++shown;
      }};
};

} // namespace sonorel::test
