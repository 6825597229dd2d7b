#include "ServiceBrowserContract.h"
#include "StandInBench.h"

using namespace sonorel::test;

namespace {

const bool kFake = registerCases<DiscoveryBench>(
    "ServiceBrowserContract/Fake", [] { return std::make_unique<FakeBench>(); }, serviceBrowserContract());
const bool kStandIn = registerCases<DiscoveryBench>(
    "ServiceBrowserContract/StandIn", [] { return std::make_unique<StandInBench>(); }, serviceBrowserContract());

} // namespace
