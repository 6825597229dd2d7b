// Finds the products on the local network and keeps "Detected Devices" and the table of detected products up to date.
// What a product publishes becomes a record here; ProductList puts it into the file. Controller's thread. Read next:
// platform/ServiceBrowser.h.
#pragma once

#include "platform/ServiceBrowser.h"
#include "products/ProductList.h"

#include <QList>

namespace sonorel {

inline constexpr QStringView kProductServiceType = u"_qxproduct_-1._tcp.";

class BonjourDiscovery {
public:
  // Both must outlive the object.
  BonjourDiscovery(ServiceBrowser &bonjourServiceBrowser, ProductList &products);
  ~BonjourDiscovery();
  BonjourDiscovery(const BonjourDiscovery &) = delete;
  BonjourDiscovery &operator=(const BonjourDiscovery &) = delete;

  // Looks for products from now on.
  void init();
  // The client ends: no event changes the file any more.
  void stop();

private:
  void didFindService(const Service &service);
  void didRemoveService(const Service &service);
  void netServiceDidResolveAddress(const ResolvedService &service);
  [[nodiscard]] qsizetype indexOf(const Service &service) const;

  ServiceBrowser &m_bonjourServiceBrowser;
  ProductList &m_products;
  // The services found and not yet removed, each once. A removal brings no text record: the last one is kept.
  QList<ResolvedService> m_bonjourProductsArray;
};

// What a product publishes; the default text of its kind, or the whole service name, for what is missing.
[[nodiscard]] QString getHostNameForProduct(const ResolvedService &service);
[[nodiscard]] QString getMACAddressForProduct(const ResolvedService &service);
[[nodiscard]] QString getLocationForProduct(const ResolvedService &service);
[[nodiscard]] QString getProductNameForProduct(const ResolvedService &service);
[[nodiscard]] QString getSerialNumberForProduct(const ResolvedService &service);
[[nodiscard]] QString getIPAddressForProduct(const ResolvedService &service);
[[nodiscard]] ProductRecord recordOfService(const ResolvedService &service);

} // namespace sonorel
