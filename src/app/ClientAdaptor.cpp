#include "app/ClientAdaptor.h"

#include "app/DoorErrors.h"
#include "core/Labels.h"
#include "core/Languages.h"
#include "products/AddressField.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr qsizetype kLongestText = 1024; // of a field of one line

bool fitsField(const QString &text) {
  return text.size() <= kLongestText && std::none_of(text.begin(), text.end(), [](QChar character) {
           return character.category() == QChar::Other_Control;
         });
}

} // namespace

ClientAdaptor::ClientAdaptor(Door &door) : QDBusAbstractAdaptor(&door), m_door(door) {}

QString ClientAdaptor::version() const {
  return kFullVersion.toString();
}

void ClientAdaptor::onRow(const QStringList &rows, int row, const QString &text, const QDBusMessage &message,
                          const std::function<void(int, QString)> &action) const {
  if (m_door.refuses(message, Needs::NotConnecting)) {
    return;
  }
  if (row < 0) {
    refuse(m_door.bus(), message, DoorError::Invalid, u"rows are counted from 0"_s);
  } else if (row >= rows.size() || rows[row] != text) {
    refuse(m_door.bus(), message, DoorError::Changed, u"this row is another one now"_s);
  } else {
    action(row, text);
  }
}

void ClientAdaptor::AnswerAlert(uint serial, int button, const QDBusMessage &message) {
  if (!m_door.answer(serial, button)) {
    refuse(m_door.bus(), message, DoorError::Invalid, u"there is no such alert, or it has no such button"_s);
    return;
  }
  m_door.actions().answerAlert(serial, button);
}

void ClientAdaptor::EnterPassword(const QString &password, const QDBusMessage &message) {
  if (m_door.refuses(message, Needs::NotTransferring)) {
    return;
  }
  if (!m_door.state().passwordWanted) {
    refuse(m_door.bus(), message, DoorError::Invalid, u"no password is wanted"_s);
  } else if (password.isEmpty()) {
    refuse(m_door.bus(), message, DoorError::Invalid, u"the password is empty"_s);
  } else if (!fitsField(password)) {
    refuse(m_door.bus(), message, DoorError::Invalid, u"a password is one line of at most 1024 characters"_s);
  } else {
    m_door.actions().enterPassword(password);
  }
}

void ClientAdaptor::CancelPassword() {
  if (m_door.state().passwordWanted) { // it must not close a panel that nobody has seen yet
    m_door.actions().cancelPassword();
  }
}

void ClientAdaptor::AddManualProduct(const QString &address, const QString &hostName, const QDBusMessage &message) {
  if (m_door.refuses(message, Needs::NotConnecting)) {
    return;
  }
  if (address.isEmpty() && hostName.isEmpty()) {
    refuse(m_door.bus(), message, DoorError::Invalid, u"an address or a host name is needed"_s);
  } else if (!fitsAddressField(address)) {
    refuse(m_door.bus(), message, DoorError::Invalid, u"an address holds at most four numbers and three dots"_s);
  } else if (!fitsField(hostName)) {
    refuse(m_door.bus(), message, DoorError::Invalid, u"a host name is one line of at most 1024 characters"_s);
  } else {
    m_door.actions().addManualProduct(address, hostName);
  }
}

void ClientAdaptor::AddDetectedProduct(int row, const QString &text, const QDBusMessage &message) {
  onRow(detectedProducts(), row, text, message, m_door.actions().addDetectedProduct);
}

void ClientAdaptor::AddAddedProduct(int row, const QString &text, const QDBusMessage &message) {
  onRow(addedProducts(), row, text, message, m_door.actions().addAddedProduct);
}

void ClientAdaptor::SelectProduct(int row, const QString &text, const QDBusMessage &message) {
  onRow(selectedProducts(), row, text, message, m_door.actions().selectProduct);
}

void ClientAdaptor::RemoveProduct(int row, const QString &text, const QDBusMessage &message) {
  onRow(selectedProducts(), row, text, message, m_door.actions().removeProduct);
}

void ClientAdaptor::RemoveAddedProduct(int row, const QString &text, const QDBusMessage &message) {
  onRow(addedProducts(), row, text, message, m_door.actions().removeAddedProduct);
}

void ClientAdaptor::RemoveAllProducts(const QDBusMessage &message) {
  if (!m_door.refuses(message, Needs::NotConnecting)) {
    m_door.actions().removeAllProducts();
  }
}

void ClientAdaptor::SelectLanguage(int index, const QDBusMessage &message) {
  if (m_door.refuses(message, Needs::NotConnecting)) {
    return;
  }
  const qsizetype languages = languageFiles().size();
  if (index < 0 || index >= languages) {
    refuse(m_door.bus(), message, DoorError::Invalid, u"the languages are counted from 0 to %1"_s.arg(languages - 1));
  } else if (!m_door.state().languageEnabled) {
    refuse(m_door.bus(), message, DoorError::Busy, u"the language cannot be changed during a transfer"_s);
  } else {
    m_door.actions().selectLanguage(index);
  }
}

} // namespace sonorel
