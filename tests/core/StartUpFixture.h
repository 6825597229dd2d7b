// The start on a fake platform, with the steps of other roles as a list of their names.
#pragma once

#include "FakePlatform.h"
#include "core/StartUp.h"
#include "support/FakeView.h"

#include <gtest/gtest.h>

namespace sonorel::test {

class StartUpTest : public testing::Test {
protected:
  StartUp::Steps steps() {
    return {
        [this] { ran.append(QStringLiteral("createRoles")); },
        [this] {
          ran.append(QStringLiteral("observeNotifications"));
          if (onObserveNotifications) {
            onObserveNotifications();
          }
        },
        [this] { ran.append(QStringLiteral("terminate")); },
        [this] {
          ran.append(QStringLiteral("prepareProducts"));
          if (onPrepareProducts) {
            onPrepareProducts();
          }
        },
        [this] { ran.append(QStringLiteral("updateDeviceName")); },
        [this] {
          ran.append(QStringLiteral("registerForPower"));
          return powerRegisters;
        },
        [this] {
          ran.append(QStringLiteral("connectAutomatically"));
          if (onConnectAutomatically) {
            onConnectAutomatically();
          }
        },
        [this] { ran.append(QStringLiteral("showTrueState")); },
        [this] { ran.append(QStringLiteral("createDiscovery")); },
        [this](bool shown) { ran.append(shown ? QStringLiteral("indicator on") : QStringLiteral("indicator off")); }};
  }

  FakePlatform fakes;
  FakeView view;
  QStringList ran;
  bool powerRegisters = true;
  std::function<void()> onObserveNotifications;
  std::function<void()> onPrepareProducts;
  std::function<void()> onConnectAutomatically;
  Settings settings{fakes.files, fakes.propertyLists, fakes.paths.PFPath};
  Settings preferences{fakes.files, fakes.propertyLists, fakes.paths.preferences};
  Strings strings{fakes.files, fakes.propertyLists, fakes.paths.resourceFilePath};
  Session session;
  SystemIntegration system{
      fakes.runningApplications, fakes.processes, fakes.scripts, fakes.desktop, fakes.loop, settings, fakes.paths};
  StartUp startUp{fakes.platform, fakes.paths, {settings, preferences, strings, session}, system, view, steps()};
};

} // namespace sonorel::test
