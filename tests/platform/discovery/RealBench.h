// Real daemons in two network namespaces that tests/network/discovery has made: the product's runs and publishes, the
// client's is started and ended here. The browser finds its bus by the environment.
#pragma once

#include "DiscoveryBench.h"
#include "platform/linux/AvahiServiceBrowser.h"
#include "support/FakeDesktop.h"
#include "support/FakeLoop.h"

#include <QDBusConnection>
#include <QHash>
#include <QProcess>

namespace sonorel::test {

class RealBench final : public DiscoveryBench {
public:
  // The test runs in such namespaces.
  [[nodiscard]] static bool isPossible();

  RealBench();
  ~RealBench() override;

  FakeLoop loop;
  FakeDesktop desktop;

  [[nodiscard]] ServiceBrowser &browser() override { return m_browser; }
  void publish(const Publication &publication) override;
  void unpublish(const QString &name) override;
  void endDaemon() override;
  void startDaemon() override;
  [[nodiscard]] QStringList logged() const override { return desktop.lines; }
  void pass() override;
  // "up" or "down": one of the client's two links to the product.
  static void setLink(const QString &link, const QString &state);

private:
  struct Groups {
    QString host;    // the host name that stands for the service
    QString service; // the paths of the two entry groups
    QString address;
  };

  QVariant call(const QString &path, const QString &interface, const QString &method, const QVariantList &arguments);
  [[nodiscard]] QString newGroup();
  void callGroup(const QString &path, const QString &method, const QVariantList &arguments = {});
  void publishAddress(const Groups &groups, const QString &address);

  QDBusConnection m_product;
  QHash<QString, Groups> m_groups; // by service name
  int m_lastHost = 0;
  QProcess m_daemon;
  AvahiServiceBrowser m_browser;
};

} // namespace sonorel::test
