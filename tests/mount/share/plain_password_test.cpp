// A server that wants the password in clear: it gets none.
#include "mount/share/PlainServer.h"

namespace sonorel::test {

namespace {

class PlainPassword : public ShareFixture {};

} // namespace

TEST_F(PlainPassword, IsNeverSent) {
  const PlainServer server;
  server.expectNoPassword(mount(server.url()));
}

} // namespace sonorel::test
