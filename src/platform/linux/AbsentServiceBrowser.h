// A network without service discovery: nothing is ever found. Any thread.
#pragma once

#include "platform/ServiceBrowser.h"

namespace sonorel {

class AbsentServiceBrowser final : public ServiceBrowser {
public:
  void browse(const QString &, const QString &, Handlers) override {}
  void resolve(const Service &) override {}
  void stop() override {}
};

} // namespace sonorel
