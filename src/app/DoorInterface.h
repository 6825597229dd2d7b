// The door as the logic's user interface: every call becomes an event of Qt's main thread, in order. Any thread.
#pragma once

#include "app/Door.h"
#include "platform/UserInterface.h"

#include <functional>

namespace sonorel {

class DoorInterface final : public UserInterface {
public:
  // quit runs on the main thread. The door must outlive the object.
  DoorInterface(Door &door, std::function<void(int)> quit);

  void publish(const UserInterfaceState &state) override;
  void open(const Question &question) override;
  void close(quint32 serial) override;
  void transferComplete() override;
  void raise() override {}
  void attention() override {}
  void quit(int status) override;

private:
  Door &m_door;
  std::function<void(int)> m_quit;
};

} // namespace sonorel
