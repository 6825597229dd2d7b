#include "mount/SambaSettings.h"

#include "platform/linux/FileDescriptor.h"

#include <sys/mman.h>

#include <string>
#include <string_view>

namespace sonorel {

namespace {

// The options that decide how a client logs in, what it takes from a server and how names are read: loading a file
// resets none that it does not name. The values are Samba's own defaults. The protocols are the session's to set.
constexpr std::string_view kSettings = R"([global]
client ntlmv2 auth = yes
client lanman auth = no
client plaintext auth = no
raw ntlmv2 auth = no
client use spnego = yes
client use spnego principal = no
client use kerberos = desired
client protection = default
client signing = default
client ipc signing = default
client smb encrypt = default
client smb3 encryption algorithms = AES-128-GCM, AES-128-CCM, AES-256-GCM, AES-256-CCM
client smb3 signing algorithms = AES-128-GMAC, AES-128-CMAC, HMAC-SHA256
client ipc min protocol = default
client ipc max protocol = default
nt status support = yes
unicode = yes
unix charset = UTF-8
dos charset = CP850
disable netbios = no
name resolve order = lmhosts wins host bcast
)";

} // namespace

bool useOwnSambaSettings(SMBCCTX *context) {
  const FileDescriptor file(::memfd_create("settings", MFD_CLOEXEC));
  if (!file.isOpen() ||
      ::write(file.get(), kSettings.data(), kSettings.size()) != static_cast<ssize_t>(kSettings.size())) {
    return false;
  }
  const std::string path = "/proc/self/fd/" + std::to_string(file.get());
  return ::smbc_setConfiguration(context, path.c_str()) == 0;
}

} // namespace sonorel
