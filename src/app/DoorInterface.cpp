#include "app/DoorInterface.h"

#include <QMetaObject>

namespace sonorel {

DoorInterface::DoorInterface(Door &door, std::function<void(int)> quit) : m_door(door), m_quit(std::move(quit)) {}

void DoorInterface::publish(const UserInterfaceState &state) {
  QMetaObject::invokeMethod(
      &m_door, [this, state] { m_door.publish(state); }, Qt::QueuedConnection);
}

void DoorInterface::open(const Question &question) {
  QMetaObject::invokeMethod(
      &m_door, [this, question] { m_door.openQuestion(question); }, Qt::QueuedConnection);
}

void DoorInterface::close(quint32 serial) {
  QMetaObject::invokeMethod(
      &m_door, [this, serial] { m_door.closeQuestion(serial); }, Qt::QueuedConnection);
}

void DoorInterface::transferComplete() {
  QMetaObject::invokeMethod(
      &m_door, [this] { m_door.announceTransferComplete(); }, Qt::QueuedConnection);
}

void DoorInterface::quit(int status) {
  QMetaObject::invokeMethod(
      &m_door, [this, status] { m_quit(status); }, Qt::QueuedConnection);
}

} // namespace sonorel
