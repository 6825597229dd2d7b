// What the mount program wants of Samba, laid over what stands in the user's and this machine's files: those might
// allow passwords in clear, refuse old products or garble names. The thread of the context.
#pragma once

#include <libsmbclient.h>

namespace sonorel {

// For a context that is initialised already: libsmbclient has read those files by then. False when it did not work;
// then the context is not to be used.
[[nodiscard]] bool useOwnSambaSettings(SMBCCTX *context);

} // namespace sonorel
