// Running programs as a list that the test fills. Not thread-safe.
#pragma once

#include "platform/RunningApplications.h"

#include <algorithm>

namespace sonorel::test {

class FakeRunningApplications : public RunningApplications {
public:
  std::vector<RunningApplication> applications;
  std::vector<RunningApplication> ended;

  std::vector<RunningApplication> launched() override { return applications; }
  void end(const RunningApplication &application) override {
    const auto gone = std::remove_if(applications.begin(), applications.end(), [&](const RunningApplication &one) {
      return one.processId == application.processId;
    });
    if (gone != applications.end()) {
      applications.erase(gone, applications.end());
      ended.push_back(application);
    }
  }
};

} // namespace sonorel::test
