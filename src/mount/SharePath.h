// Names on the share: which of them can be sent to a server at all, and the address by which libsmbclient knows them.
// Pure, any thread.
#pragma once

#include <string>
#include <string_view>

namespace sonorel {

// Every byte that means something in an address becomes "%XX"; "/" stays.
[[nodiscard]] std::string encodedPath(std::string_view path);

// 0, ENAMETOOLONG for a name above 255 bytes, or EINVAL for a character that no server takes in a name: a backslash
// would lead into another folder, a colon to a hidden stream of another file.
[[nodiscard]] int nameError(std::string_view path);

} // namespace sonorel
