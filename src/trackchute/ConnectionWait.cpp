#include "trackchute/ConnectionWait.h"

#include "platform/Failure.h"

using namespace Qt::Literals::StringLiterals;

namespace sonorel::trackchute {

namespace {

constexpr std::chrono::milliseconds kPause{200};
constexpr std::chrono::milliseconds kLongestWait{60000};

} // namespace

void awaitConnection(const ConnectionWait &wait) {
  if (!wait.isBusy() || wait.selectedProducts() < 2) {
    return;
  }
  wait.tell();
  for (auto waited = kPause; waited <= kLongestWait; waited += kPause) {
    wait.pause(kPause);
    if (!wait.isBusy()) {
      return;
    }
  }
  throw Failure(u"the client is still connecting; drop again when it is connected"_s);
}

} // namespace sonorel::trackchute
