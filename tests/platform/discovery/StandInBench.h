// The real browser with a stand-in daemon on a private bus, and the fake, as networks for the contract.
#pragma once

#include "AvahiStandIn.h"
#include "PrivateBus.h"
#include "platform/linux/AvahiServiceBrowser.h"
#include "support/FakeDesktop.h"
#include "support/FakeLoop.h"
#include "support/FakeServiceBrowser.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <optional>

namespace sonorel::test {

class FakeBench final : public DiscoveryBench {
public:
  [[nodiscard]] ServiceBrowser &browser() override { return m_browser; }
  void publish(const Publication &publication) override;
  void unpublish(const QString &name) override { m_browser.unpublish({name, kType, u"local"_qs}); }
  void endDaemon() override { m_browser.endDaemon(); }
  void startDaemon() override { m_browser.startDaemon(); }
  // Whether it is logged is the real one's business.
  [[nodiscard]] QStringList logged() const override { return {u"a daemon that is not there"_qs}; }
  void pass() override { m_browser.deliver(); }

private:
  FakeServiceBrowser m_browser;
};

class StandInBench final : public DiscoveryBench {
public:
  StandInBench();
  ~StandInBench() override;

  PrivateBus bus;
  AvahiStandIn::Network network;
  std::optional<AvahiStandIn> daemon;
  FakeLoop loop;
  FakeDesktop desktop;

  [[nodiscard]] ServiceBrowser &browser() override { return m_browser; }
  void publish(const Publication &publication) override;
  void unpublish(const QString &name) override;
  void endDaemon() override { daemon.reset(); }
  void startDaemon() override { daemon.emplace(bus.address(), network); }
  [[nodiscard]] QStringList logged() const override { return desktop.lines; }
  void pass() override;

private:
  AvahiServiceBrowser m_browser;
};

} // namespace sonorel::test
