// What discovery relies on in a browser of services, for the real one, the one on a stand-in daemon, and the fake.
#pragma once

#include "DiscoveryBench.h"
#include "platform/ContractRegistration.h"

namespace sonorel::test {

[[nodiscard]] const std::vector<ContractCase<DiscoveryBench>> &serviceBrowserContract();

} // namespace sonorel::test
