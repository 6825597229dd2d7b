// The connections of this process. libsmbclient keeps its sockets to itself and waits in them as long as it likes;
// but in the mount program every TCP socket is one of its own, so that they can be found, looked at and cut from
// outside.
#pragma once

namespace sonorel {

// True while a connection to the server stands. It says nothing about whether the server still answers. Any thread.
[[nodiscard]] bool isConnectionAlive();

// Whoever waits in a connection, or for one to come about, is woken by an error at once. Any thread.
void cutConnections();

} // namespace sonorel
