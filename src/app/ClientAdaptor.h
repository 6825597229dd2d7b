// com.orv.Sonorel.Client at the door: the state as properties, the requests as methods. Arguments are checked here
// and every method returns at once. Main thread.
#pragma once

#include "app/Door.h"

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>

namespace sonorel {

class ClientAdaptor final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "com.orv.Sonorel.Client")
  Q_PROPERTY(QString Version READ version)
  Q_PROPERTY(bool Connected READ connected)
  Q_PROPERTY(bool Busy READ busy)
  Q_PROPERTY(bool Transferring READ transferring)
  Q_PROPERTY(uint Pending READ pending)
  Q_PROPERTY(QString DeviceName READ deviceName)
  Q_PROPERTY(double Progress READ progress)
  Q_PROPERTY(QString MessageLog READ messageLog)
  Q_PROPERTY(QString DockImage READ dockImage)
  Q_PROPERTY(int CurrentTab READ currentTab)
  Q_PROPERTY(QString Language READ language)
  Q_PROPERTY(sonorel::DoorAlert Alert READ alert)
  Q_PROPERTY(bool PasswordWanted READ passwordWanted)
  Q_PROPERTY(QStringList DetectedProducts READ detectedProducts)
  Q_PROPERTY(QStringList AddedProducts READ addedProducts)
  Q_PROPERTY(QStringList SelectedProducts READ selectedProducts)

public:
  explicit ClientAdaptor(Door &door);

  [[nodiscard]] QString version() const;
  [[nodiscard]] bool connected() const { return m_door.state().connected; }
  [[nodiscard]] bool busy() const { return m_door.state().busy; }
  [[nodiscard]] bool transferring() const { return m_door.state().transferring; }
  [[nodiscard]] uint pending() const { return m_door.pending(); }
  [[nodiscard]] QString deviceName() const { return m_door.state().deviceName; }
  [[nodiscard]] double progress() const { return m_door.state().progress; }
  [[nodiscard]] QString messageLog() const { return m_door.state().messageLog; }
  [[nodiscard]] QString dockImage() const { return m_door.state().dockImage; }
  [[nodiscard]] int currentTab() const { return m_door.state().currentTab; }
  [[nodiscard]] QString language() const { return m_door.state().languageFile; }
  [[nodiscard]] DoorAlert alert() const { return m_door.alert(); }
  [[nodiscard]] bool passwordWanted() const { return m_door.state().passwordWanted; }
  [[nodiscard]] QStringList detectedProducts() const { return m_door.state().detectedProducts; }
  [[nodiscard]] QStringList addedProducts() const { return m_door.state().addedProducts; }
  [[nodiscard]] QStringList selectedProducts() const { return m_door.state().selectedProducts; }

public Q_SLOTS:
  void AnswerAlert(uint serial, int button, const QDBusMessage &message);
  void EnterPassword(const QString &password, const QDBusMessage &message);
  void CancelPassword();
  void AddManualProduct(const QString &address, const QString &hostName, const QDBusMessage &message);
  void AddDetectedProduct(int row, const QString &text, const QDBusMessage &message);
  void AddAddedProduct(int row, const QString &text, const QDBusMessage &message);
  void SelectProduct(int row, const QString &text, const QDBusMessage &message);
  void RemoveProduct(int row, const QString &text, const QDBusMessage &message);
  void RemoveAddedProduct(int row, const QString &text, const QDBusMessage &message);
  void RemoveAllProducts(const QDBusMessage &message);
  void SelectLanguage(int index, const QDBusMessage &message);

Q_SIGNALS:
  void TransferComplete();

private:
  void onRow(const QStringList &rows, int row, const QString &text, const QDBusMessage &message,
             const std::function<void(int, QString)> &action) const;

  Door &m_door;
};

} // namespace sonorel
