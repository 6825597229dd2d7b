// "sonorel-mount POINT" and "sonorel-umount [-f] POINT" from their arguments to their exit statuses.
#pragma once

#include <string>
#include <vector>

namespace sonorel {

[[nodiscard]] int runMount(const std::vector<std::string> &arguments);
[[nodiscard]] int runUnmount(const std::vector<std::string> &arguments);

} // namespace sonorel
